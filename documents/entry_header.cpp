// The header of a new document, asked before its lines are saved: the
// number that the save will give and the mark, the contractor from the
// catalogue that the kind names (for a transfer the warehouse "do"), the
// dates, the form of payment, the additional document, the deposit mark and
// the comment. A retail sale asks it only when the receipt-data option says
// so, so that the till stays one key from the printer.
#include <vector>

#include "base/csv.h"
#include "base/dates.h"
#include "base/numbers.h"
#include "base/text.h"
#include "config/konfigur.h"
#include "documents/docentry.h"
#include "documents/entry_detail.h"
#include "documents/numbering.h"
#include "documents/payments.h"
#include "master/contractor_screens.h"
#include "master/dictionary_screens.h"
#include "sqltable/dbapp.h"
#include "tui/datedialogs.h"
#include "tui/editfield.h"
#include "tui/msgbox.h"
#include "tui/screen.h"
#include "users/users.h"

namespace entrydetail {

namespace {

constexpr ShortText kCashPayment = " gotówką"_mz;
constexpr ShortText kTaxIdText =
    "W przypadku wystawiania takiego dokumentu, jak aktualny,@kontrahent powinien mieć w danych NIP, PESEL lub REGON."_mz;
constexpr ShortText kNoSuchNumberText = "Nie ma takiego numeru !"_mz;
constexpr ShortText kOtherDateRetailText =
    "@Próbujesz zapisać sprzedaż detaliczną z datą inną, niż dziesiejsza.@"_mz + "Czy chcesz ją tak zapisać ?"_mz;
constexpr const char* kPaymentDictionary = "dane\\pola_ind\\forma_p";

// Key codes that end a field (KeyCodeOf).
constexpr unsigned char kKeyEnter = 13, kKeyEsc = 27, kKeyF1 = 229, kKeyF2 = 230, kKeyF10 = 238, kKeyUp = 242;

enum Field : int8_t { kNumber, kMark, kContractor, kDate, kSaleDate, kSettleDate, kPayment, kExtraName, kExtraNumber,
                      kDeposit, kComment, kFieldCount };

struct FieldDef {
  ShortText label;
  int width;
  int mode;  // EditField mode; 0 for the comment's line editor
};

constexpr int kLabelWidth = 20;
constexpr int kCommentVisible = 50;

const FieldDef kFields[kFieldCount] = {
    {"numer:"_mz, 12, 1},           {"znak:"_mz, 4, 1},
    {"kontrahent:"_mz, 10, 3},      {"data dokumentu:"_mz, 10, 7},
    {"data sprzedaży:"_mz, 10, 7},  {"data rozliczenia:"_mz, 10, 7},
    {"forma płatności:"_mz, 15, 1}, {"dokument dodatkowy:"_mz, 15, 1},
    {"nr dok.dodatkowego:"_mz, 17, 1}, {"depozyt (T/N):"_mz, 1, 8},
    {"komentarz:"_mz, kCommentVisible, 0},
};

// The form's state: the texts of the fields and what the kind shows.
struct Form {
  int32_t warehouse = 0;
  DocumentHeader* header = nullptr;
  HeaderRules rules;
  bool shown[kFieldCount] = {};
  bool markFixed = false;
  ShortText text[kFieldCount];
  std::vector<int> rows;  // fields shown, in order
};

ShortText ContractorLabel(const Form& f) {
  return f.rules.catalogue == ContractorKind::kWarehouse ? "magazyn \"do\":"_mz : kFields[kContractor].label;
}

// The number the save is about to give, as text; empty when none can be drawn.
ShortText ExpectedNumber(int32_t warehouse, const DocumentHeader& h) {
  const NumberingSettings numbering = NumberingSettingsFromConfig();
  NextNumber next;
  if (NextDocNumber(h.date, h.kind, NumberTablePath(h.kind, warehouse, numbering), numbering, next) != 0 ||
      next.failed)
    return {};
  return DocNumberText(next.coded);
}

void FillTexts(Form& f) {
  const DocumentHeader& h = *f.header;
  f.text[kNumber] = ExpectedNumber(f.warehouse, h);
  f.text[kMark] = h.mark;
  f.text[kContractor] = h.contractor ? ShortText(std::to_string(h.contractor)) : ShortText();
  f.text[kDate] = DateText(h.date);
  f.text[kSaleDate] = DateText(h.saleDate);
  f.text[kSettleDate] = DateText(h.settleDate);
  f.text[kPayment] = h.payment;
  f.text[kExtraName] = h.extraName;
  f.text[kExtraNumber] = h.extraNumber;
  f.text[kDeposit] = ShortText(std::string(1, h.deposit));
  f.text[kComment] = h.comment;
}

void DrawRow(const Form& f, std::size_t r) {
  const int field = f.rows[r];
  const int y = 3 + static_cast<int>(r);
  WriteAt(2, y, PadRight(field == kContractor ? ContractorLabel(f) : kFields[field].label, " ", kLabelWidth));
  WriteAt(2 + kLabelWidth, y, PadRight(f.text[field].Copy(1, kFields[field].width), " ", kFields[field].width));
  if (field == kContractor) WriteAt(2 + kLabelWidth + 11, y, PadRight(f.header->contractorName.Copy(1, 40), " ", 40));
}

// The contractor of the number in the field: its name into the header; false when there is none.
bool TakeContractor(Form& f) {
  const int32_t number = static_cast<int32_t>(TextToRealLoose(TrimRightAll(f.text[kContractor], ' ')));
  f.header->contractor = 0;
  f.header->contractorName = {};
  if (number <= 0) return true;
  Contractor c;
  bool found = false;
  CheckDBError(ContractorFind(f.rules.catalogue, number, c, found));
  if (!found) {
    (void)MessageBox(kNoSuchNumberText, 0);
    return false;
  }
  f.header->contractor = number;
  f.header->contractorName = TrimRightAll(c[KontrahentCol::nazwa], ' ');
  if (f.rules.needsTaxId && !ContractorHasTaxId(c)) (void)MessageBox(kTaxIdText, 0);
  return true;
}

// The catalogue's list; the chosen number goes into the field.
void ChooseFromCatalogue(Form& f) {
  const ChoosePurpose purpose =
      f.rules.catalogue == ContractorKind::kWarehouse ? ChoosePurpose::kTransferTo : ChoosePurpose::kAny;
  const int32_t number = ChooseContractor(f.rules.catalogue, purpose);
  if (number == 0) return;
  f.text[kContractor] = ShortText(std::to_string(number));
  (void)TakeContractor(f);
}

// One field's edit; the key that ended it.
unsigned char EditOne(Form& f, std::size_t r) {
  const int field = f.rows[r];
  GotoXY(2 + kLabelWidth, 3 + static_cast<int>(r));
  TextAttr(kAttrReverse);
  unsigned char key = 0;
  if (field == kComment) {
    ShortText out;
    EditLine(false, 4, ' ', kCommentVisible, 255, f.text[field], key, out);
    f.text[field] = out;
  } else {
    EditField(kFields[field].mode, 4, ' ', kFields[field].width, f.text[field], key);
  }
  TextAttr(kAttrBoxBody);
  return key;
}

// The checks of a field as it is left; false keeps the cursor in it.
bool FieldPasses(Form& f, int field, unsigned char key) {
  if (field == kDate || field == kSaleDate || field == kSettleDate) return DateValidWithMessage(f.text[field], 10);
  if (field == kContractor) {
    if (TrimRightAll(f.text[kContractor], ' ').Empty() && (key == kKeyEnter || key == kKeyF1)) ChooseFromCatalogue(f);
    else if (key == kKeyF1) ChooseFromCatalogue(f);
    else return TakeContractor(f);
  }
  if (field == kPayment && key == kKeyF1) {
    ShortText value = f.text[kPayment];
    if (DictionaryList("forma płatności"_mz, ShortText(kPaymentDictionary), true, value)) f.text[kPayment] = value;
    return false;
  }
  if (field == kDeposit) {
    const ShortText v = TrimRightAll(f.text[kDeposit], ' ');
    if (v != ShortText("T") && v != ShortText("N")) {
      (void)MessageBox("Ta dana może przyjąć wartość `T\" lub `N\""_mz, 0);
      return false;
    }
  }
  return true;
}

// The header from the fields; the contractor the kind needs is chosen here
// when it is missing. false sends the cursor back to the field in at.
bool TakeForm(Form& f, std::size_t& at) {
  DocumentHeader& h = *f.header;
  for (std::size_t r = 0; r < f.rows.size(); ++r) {
    const int field = f.rows[r];
    if ((field == kDate || field == kSaleDate || field == kSettleDate) && !DateValidWithMessage(f.text[field], 10)) {
      at = r;
      return false;
    }
    if (field == kContractor && !f.text[kContractor].Empty() && !TakeContractor(f)) {
      at = r;
      return false;
    }
  }
  if (f.rules.required && h.contractor == 0) {
    ChooseFromCatalogue(f);
    if (h.contractor == 0) {
      for (std::size_t r = 0; r < f.rows.size(); ++r)
        if (f.rows[r] == kContractor) at = r;
      return false;
    }
  }
  h.mark = TrimRightAll(f.text[kMark], ' ');
  h.date = DateOfText(f.text[kDate]);
  h.saleDate = DateOfText(f.text[kSaleDate]);
  h.settleDate = DateOfText(f.text[kSettleDate]);
  h.payment = f.text[kPayment];
  h.cash = h.payment == kCashPayment ? kCashDocument : 'N';
  h.extraName = TrimRightAll(f.text[kExtraName], ' ');
  h.extraNumber = TrimRightAll(f.text[kExtraNumber], ' ');
  h.deposit = f.text[kDeposit].Empty() ? 'N' : static_cast<char>(f.text[kDeposit].At(1));
  h.comment = TrimRightAll(f.text[kComment], ' ');
  h.otherWarehouse = f.rules.catalogue == ContractorKind::kWarehouse ? h.contractor : 0;
  return true;
}

void LayOut(Form& f) {
  const int kind = f.header->kind;
  f.shown[kNumber] = f.shown[kMark] = f.shown[kDate] = f.shown[kSaleDate] = f.shown[kSettleDate] = true;
  f.shown[kExtraName] = f.shown[kExtraNumber] = f.shown[kComment] = true;
  f.shown[kContractor] = f.rules.hasContractor;
  f.shown[kPayment] = kind != 1 || ConfigInt(kConfigRetailPayments) == 1;
  f.shown[kDeposit] = ConfigInt(kConfigDepositQuestion) == 1;
  for (int i = 0; i < kFieldCount; ++i)
    if (f.shown[i]) f.rows.push_back(i);
}

}  // namespace

bool AskDocumentHeader(int32_t warehouse, DocumentHeader& header) {
  Form f;
  f.warehouse = warehouse;
  f.header = &header;
  f.rules = HeaderRulesOf(header.kind, ReadKindRow(header.kind).contractorLetter);
  f.markFixed = ConfigInt(kConfigMarkFixed) == 1 && !ReadKindRow(header.kind).mark.Empty() &&
                ConfigInt(kConfigProposedMarks) != 0;
  LayOut(f);
  FillTexts(f);
  ScreenKeeper keeper;
  ShortText box = PadRight(KindName(header.kind), " ", kLabelWidth + 55);
  for (std::size_t r = 0; r < f.rows.size(); ++r) box += '@';
  (void)MessageBox(box, 2);
  for (std::size_t r = 0; r < f.rows.size(); ++r) DrawRow(f, r);
  const std::size_t last = f.rows.size() - 1;
  std::size_t at = 1;  // the number is the save's; the mark is the first field
  for (;;) {
    const int field = f.rows[at];
    const bool readOnly = field == kNumber || (field == kMark && f.markFixed);
    const unsigned char key = readOnly ? kKeyEnter : EditOne(f, at);
    if (key == kKeyEsc) return false;
    const bool passes = readOnly || FieldPasses(f, field, key);
    DrawRow(f, at);
    if (!passes) continue;
    if (key == kKeyF2 || key == kKeyF10 || (key == kKeyEnter && at == last)) {
      if (TakeForm(f, at)) return true;
      for (std::size_t r = 0; r < f.rows.size(); ++r) DrawRow(f, r);
      continue;
    }
    if (key == kKeyUp) at = at > 1 ? at - 1 : 1;
    else at = at < last ? at + 1 : last;
  }
}

bool PrepareHeader(int32_t warehouse, DocumentHeader& header, int32_t today) {
  const bool form = HeaderFormShown(header.kind, ConfigInt(kConfigReceiptHeader));
  for (;;) {
    if (form && !AskDocumentHeader(warehouse, header)) return false;
    if (header.kind != 1 || header.date == today || MessageBox(kOtherDateRetailText, 1)) return true;
    if (!form) return false;
  }
}

// The contractor linked to the warehouse, proposed when the configuration says so.
void ProposeLinkedContractor(int32_t warehouse, char dokPlatLetter, DocumentHeader& h) {
  const HeaderRules rules = HeaderRulesOf(h.kind, dokPlatLetter);
  if (ConfigInt(kConfigLinkedContractor) != 1 || !rules.hasContractor) return;
  int32_t linked = 0;
  CheckDBError(WarehouseHolder(rules.catalogue, 0, warehouse, linked));
  Contractor c;
  bool found = false;
  if (linked != 0) CheckDBError(ContractorFind(rules.catalogue, linked, c, found));
  if (!found) return;
  h.contractor = linked;
  h.contractorName = TrimRightAll(c[KontrahentCol::nazwa], ' ');
}

DocumentHeader NewHeader(int32_t warehouse, int kind, int32_t today) {
  DocumentHeader h;
  const KindRow row = ReadKindRow(kind);
  h.kind = static_cast<int16_t>(kind);
  h.mark = ProposedMark(kind, row.mark, ConfigInt(kConfigProposedMarks));
  h.date = h.saleDate = today;
  h.settleDate = ProposedSettleDate(kind, h.date, h.saleDate, ConfigInt(kConfigInvoiceDays),
                                    ConfigInt(kConfigSettleFromSale) == 1);
  h.payment = ProposedPayment(kind, ConfigText(kConfigLinePaymentDefaults), ConfigInt(kConfigRetailPayments) == 1);
  h.cash = h.payment == kCashPayment ? kCashDocument : 'N';
  h.deposit = ProposedDepositMark(ConfigInt(kConfigDepositQuestion), kind) ? 'T' : 'N';
  h.operatorNumber = CurrentUserNumber();
  ProposeLinkedContractor(warehouse, row.contractorLetter, h);
  return h;
}

// --- Pure rules ---
HeaderRules HeaderRulesOf(int kind, char dokPlatLetter) {
  HeaderRules r;
  const DocumentKind* k = DocumentKindOf(kind);
  if (!k || kind == 12) return r;  // the opening balance names nobody
  r.hasContractor = true;
  switch (KindContractor(kind, dokPlatLetter)) {
    case ContractorCatalogue::kCustomers: r.catalogue = ContractorKind::kCustomer; break;
    case ContractorCatalogue::kSuppliers: r.catalogue = ContractorKind::kSupplier; break;
    case ContractorCatalogue::kWarehouses: r.catalogue = ContractorKind::kWarehouse; break;
  }
  // A retail sale and the other receipts and issues may go without one.
  r.required = k->group == KindGroup::kDocumentedSale || k->group == KindGroup::kPurchases ||
               k->group == KindGroup::kOrders || kind == 15;
  r.needsTaxId = kind == 2 || kind == 3;
  return r;
}

bool HeaderFormShown(int kind, int receiptDataOption) {
  return kind != 1 || receiptDataOption == 2 || receiptDataOption == 3;
}

ShortText ProposedPayment(int kind, const ShortText& defaultsCsv, bool retailForms) {
  if (kind == 1 && !retailForms) return kCashPayment;
  const int field = kind == 1 ? 1 : (kind == 2 || kind == 4) ? 2 : (kind == 3 || kind == 5) ? 3 : 0;
  if (field == 0) return kCashPayment;
  const ShortText value = CsvField(defaultsCsv, field);
  return TrimRightAll(value, ' ').Empty() ? kCashPayment : value;
}

int32_t ProposedSettleDate(int kind, int32_t date, int32_t saleDate, int days, bool fromSale) {
  if (kind < 2 || kind > 5) return date;
  return (fromSale ? saleDate : date) + (days > 0 ? days : 0);
}

ShortText ProposedMark(int kind, const ShortText& dokPlatMark, int proposedMarksOption) {
  const ShortText mark = TrimRightAll(dokPlatMark, ' ');
  if (proposedMarksOption != 0 && !mark.Empty()) return mark.Copy(1, 4);
  const DocumentKind* k = DocumentKindOf(kind);
  return k ? ShortText(k->shortCode) : ShortText();
}

ShortText DateText(int32_t serial) {
  int y = 0, m = 0, d = 0;
  if (!DecodeDaySerial(serial, y, m, d)) return {};
  return DateFromParts(d, m, y);
}

int32_t DateOfText(const ShortText& text) {
  if (!DateValid(text, 10)) return 0;
  const DatePartValues p = DateParts(text);
  return EncodeDaySerial(p.year, p.month, p.day);
}

}  // namespace entrydetail
