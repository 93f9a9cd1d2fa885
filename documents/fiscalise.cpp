#include "documents/fiscalise.h"

#include <algorithm>
#include <string>
#include <vector>

#include "base/mazovia.h"
#include "base/numbers_format.h"
#include "base/text.h"
#include "documents/docnumber.h"
#include "documents/dockinds.h"
#include "master/columns.h"
#include "master/tables.h"
#include "sqltable/dbapp.h"
#include "sqltable/pgnav.h"
#include "sqltable/pgrecord.h"
#include "sqltable/pgtable.h"
#include "sqltable/pgwrite.h"
#include "tui/msgbox.h"
#include "users/users.h"

namespace {

constexpr int16_t kNotFound = 89;

// A table open with one record buffer, both released on every path.
class OpenRecord {
 public:
  explicit OpenRecord(const ShortText& path) {
    code_ = OpenTable(path, tbl_, 0);
    if (code_ == 0) code_ = PGRecBufOpen(tbl_, rec_);
  }
  ~OpenRecord() {
    if (rec_) (void)PGRecBufClose(rec_);
    if (tbl_) (void)PGTblClose(tbl_);
  }
  OpenRecord(const OpenRecord&) = delete;
  OpenRecord& operator=(const OpenRecord&) = delete;
  int16_t code() const { return code_; }
  int16_t tbl() const { return tbl_; }
  int16_t rec() const { return rec_; }

 private:
  int16_t tbl_ = 0, rec_ = 0, code_ = 0;
};

// Places the table on the first row whose field equals the number.
int16_t SeekLong(OpenRecord& t, int field, int32_t value) {
  if (int16_t code = PGPutLong(t.rec(), field, value)) return code;
  if (int16_t code = PGSrchFld(t.tbl(), t.rec(), field, 0)) return code;
  return PGRecGet(t.tbl(), t.rec());
}

int16_t PutDocumentKey(int16_t rec, const DocumentKey& key) {
  if (int16_t code = PGPutShort(rec, NaglowkiCol::typ_dok, key.kind)) return code;
  if (int16_t code = PGPutLong(rec, NaglowkiCol::nr_dok, key.coded)) return code;
  return PGPutAlpha(rec, NaglowkiCol::znak_dok, key.mark);
}

// The item's name parts and unit from the catalogue; left empty when it is not there.
void ReadItem(OpenRecord& items, int32_t itemNumber, FiscalSaleLine& line) {
  if (items.code() != 0 || SeekLong(items, KatTowCol::nr_wewn, itemNumber) != 0) return;
  (void)PGGetAlpha(items.rec(), KatTowCol::nazwa, line.name1);
  (void)PGGetAlpha(items.rec(), KatTowCol::nazwa_, line.name2);
  (void)PGGetAlpha(items.rec(), KatTowCol::jednostka, line.unit);
}

std::string LinesCondition(const DocumentKey& key) {
  return PGCondition("typ_dok", PGKind::Number, std::to_string(key.kind), "=") + " AND " +
         PGCondition("nr_dok", PGKind::Number, std::to_string(key.coded), "=") + " AND " +
         PGCondition("znak_dok", PGKind::Text, key.mark.Str(), "=");
}

int16_t ReadLine(const OpenRecord& lines, OpenRecord& items, FiscalSaleLine& line, int32_t& position) {
  const int16_t rec = lines.rec();
  int32_t item = 0;
  if (int16_t code = PGRecGet(lines.tbl(), rec)) return code;
  if (int16_t code = PGGetLong(rec, SpecyfikCol::pozycja, position)) return code;
  if (int16_t code = PGGetLong(rec, SpecyfikCol::nr_towaru, item)) return code;
  if (int16_t code = PGGetAlpha(rec, SpecyfikCol::vat, line.vat)) return code;
  if (int16_t code = PGGetExt(rec, SpecyfikCol::ilosc, line.quantity)) return code;
  if (int16_t code = PGGetExt(rec, SpecyfikCol::c_spr_brutto, line.price)) return code;
  ReadItem(items, item, line);
  return 0;
}

// The lines in the order of their positions.
int16_t ReadLines(const DocumentKey& key, FiscalSale& sale) {
  OpenRecord lines(WarehouseTablePath(key.warehouse, "specyfik"));
  OpenRecord items("dane\\kat_tow_");
  if (lines.code()) return lines.code();
  if (int16_t code = PGTblWhereClauseSet(lines.tbl(), LinesCondition(key))) return code;
  std::vector<std::pair<int32_t, FiscalSaleLine>> read;
  for (int16_t step = PGRecFirst(lines.tbl()); step == 0; step = PGRecNext(lines.tbl())) {
    FiscalSaleLine line;
    int32_t position = 0;
    if (int16_t code = ReadLine(lines, items, line, position)) return code;
    read.emplace_back(position, line);
  }
  std::stable_sort(read.begin(), read.end(), [](const auto& a, const auto& b) { return a.first < b.first; });
  for (auto& [position, line] : read) sale.lines.push_back(line);
  return 0;
}

// The customer's firm field; a customer not found counts as a firm.
bool ContractorIsFirm(int32_t contractor) {
  OpenRecord customers("dane\\odbiorcy");
  if (customers.code() != 0 || SeekLong(customers, KontrahentCol::numer, contractor) != 0) return true;
  ShortText firm;
  (void)PGGetAlpha(customers.rec(), KontrahentCol::czy_podmiot_gosp, firm);
  return firm == "T";
}

}  // namespace

FiscalSale DocumentSaleHead(int kind, int32_t coded, const ShortText& sign, int32_t contractor) {
  FiscalSale sale;
  sale.kind = kind;
  sale.mode = FiscalModeOfKind(kind);
  const ShortText mark = TrimBoth(sign, ' ');
  sale.number = IntText(DecodeDocNumberSoft(coded), 0) + (mark.Empty() ? ShortText() : "/" + mark);
  sale.cashierNumber = CurrentUserNumber();
  sale.cashierName = CurrentUserName();
  if (sale.mode == kFiscalModePrivate) sale.contractorIsFirm = ContractorIsFirm(contractor);
  return sale;
}

namespace {

// The header of the document placed in its table; kGone when it is not there.
SavedSaleRead FindHeader(const DocumentKey& key, OpenRecord& headers) {
  if (headers.code() || PutDocumentKey(headers.rec(), key)) return SavedSaleRead::kFailed;
  const int16_t found = PGSrchKey(headers.tbl(), headers.rec(), 3, 0);
  if (found == kNotFound) return SavedSaleRead::kGone;
  return found == 0 && PGRecGet(headers.tbl(), headers.rec()) == 0 ? SavedSaleRead::kRead : SavedSaleRead::kFailed;
}

bool IsFiscalMark(const ShortText& cash) { return cash == "F" || cash == "f"; }

// czy_gotowkowy: "F" or "f" once the document is in the printer's memory.
bool HasFiscalMark(const DocumentKey& key) {
  OpenRecord headers(WarehouseTablePath(key.warehouse, "naglowki"));
  ShortText cash;
  return FindHeader(key, headers) == SavedSaleRead::kRead &&
         PGGetAlpha(headers.rec(), NaglowkiCol::czy_gotowkowy, cash) == 0 && IsFiscalMark(cash);
}

// Marks the printed document: "F" for a cash document, "f" for another.
void SetFiscalMark(const DocumentKey& key) {
  OpenRecord headers(WarehouseTablePath(key.warehouse, "naglowki"));
  ShortText cash;
  if (FindHeader(key, headers) != SavedSaleRead::kRead ||
      PGGetAlpha(headers.rec(), NaglowkiCol::czy_gotowkowy, cash) != 0 || IsFiscalMark(cash))
    return;
  const ShortText mark(std::string(1, FiscalMark(cash == ShortText(std::string(1, kCashDocument)))));
  CheckDBError(PGPutAlpha(headers.rec(), NaglowkiCol::czy_gotowkowy, mark));
  CheckDBError(PGRecUpdate(headers.tbl(), headers.rec()));
}

}  // namespace

SavedSaleRead ReadSavedSale(const DocumentKey& key, FiscalSale& sale, ShortText& paymentText) {
  sale = FiscalSale{};
  int32_t contractor = 0;
  {
    OpenRecord headers(WarehouseTablePath(key.warehouse, "naglowki"));
    if (const SavedSaleRead found = FindHeader(key, headers); found != SavedSaleRead::kRead) return found;
    (void)PGGetAlpha(headers.rec(), NaglowkiCol::sposob_rozlicz, paymentText);
    (void)PGGetLong(headers.rec(), NaglowkiCol::nr_kontrahenta, contractor);
  }
  sale = DocumentSaleHead(key.kind, key.coded, key.mark, contractor);
  return ReadLines(key, sale) == 0 ? SavedSaleRead::kRead : SavedSaleRead::kFailed;
}

bool FiscaliseDocument(const FiscalConfig& config, const DocumentKey& key) {
  MessageBox("Trwa wydruk fiskalny..."_mz, 2);
  FiscalSale sale;
  ShortText payment;
  const SavedSaleRead read = ReadSavedSale(key, sale, payment);
  if (read == SavedSaleRead::kGone) {
    MessageBox("Ktoś w międzyczasie skasował fiskalizowany dokument !"_mz, 0);
    return false;
  }
  if (read != SavedSaleRead::kRead || !SaleGoesToPrinter(config, sale)) return false;
  // A document goes into the printer's memory once: the mark of the first print stops a second.
  if (HasFiscalMark(key)) {
    MessageBox("Dokument jest już zapisany w drukarce fiskalnej."_mz, 0);
    return false;
  }
  if (!RunFiscalRoute(config, payment, sale)) return false;
  SetFiscalMark(key);
  return true;
}
