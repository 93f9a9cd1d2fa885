// Functions over the whole line list: sign reversal and zeroing, the default
// customer, items pulled from saved documents, the VAT of a line, joining
// lines of one item, the automatic sort, the date of entry and the change
// of the kind; and the key map that reaches them from the entry loop.
#include <algorithm>
#include <string>

#include "base/dates.h"
#include "base/numbers.h"
#include "base/numbers_format.h"
#include "base/text.h"
#include "config/konfigur.h"
#include "documents/docdetail.h"
#include "documents/docentry.h"
#include "documents/docnumber.h"
#include "documents/entry_detail.h"
#include "documents/save_detail.h"
#include "master/contractor_screens.h"
#include "master/contractors.h"
#include "master/dictionary_screens.h"
#include "master/tables.h"
#include "sqltable/dbapp.h"
#include "tui/askvalue.h"
#include "tui/keyboard.h"
#include "tui/msgbox.h"
#include "tui/picklist.h"
#include "tui/screen.h"

namespace entrydetail {

// --- Pure rules ---

void SortLines(std::vector<DocLine>& lines, int order) {
  auto name = [](const DocLine& l) { return l.item.name.Str() + l.item.name2.Str(); };
  if (order == 1)
    std::stable_sort(lines.begin(), lines.end(), [&](const DocLine& a, const DocLine& b) { return name(a) < name(b); });
  if (order == 2)
    std::stable_sort(lines.begin(), lines.end(), [&](const DocLine& a, const DocLine& b) {
      return a.item.place.Str() != b.item.place.Str() ? a.item.place.Str() < b.item.place.Str() : name(a) < name(b);
    });
}

int AutoSortOrder(int configured, bool mainOnly, int32_t warehouse, int32_t mainWarehouse) {
  if (configured != 1 && configured != 2) return 0;
  return mainOnly && warehouse != mainWarehouse ? 0 : configured;
}

MergePlan PlanMerge(std::span<const DocLine> lines, std::span<const int64_t> marked, int64_t into) {
  MergePlan plan;
  const auto target = std::find_if(lines.begin(), lines.end(), [&](const DocLine& l) { return l.rowId == into; });
  if (target == lines.end()) return plan;
  plan.quantity = target->quantity;
  for (const DocLine& l : lines) {
    const bool isMarked = std::find(marked.begin(), marked.end(), l.rowId) != marked.end();
    if (!isMarked || l.rowId == into || l.item.number != target->item.number) continue;
    plan.quantity += l.quantity;
    plan.drop.push_back(l.rowId);
  }
  return plan;
}

void RemapRowIds(std::vector<int64_t>& ids, std::span<const int64_t> before, std::span<const DocLine> after) {
  std::vector<int64_t> mapped;
  for (const int64_t id : ids) {
    const auto at = std::find(before.begin(), before.end(), id);
    const auto i = static_cast<std::size_t>(at - before.begin());
    if (at != before.end() && i < after.size()) mapped.push_back(after[i].rowId);
  }
  ids = std::move(mapped);
}

bool Marked(const EntryExtras& x, int64_t rowId) {
  return std::find(x.marked.begin(), x.marked.end(), rowId) != x.marked.end();
}

int32_t EntryDate(const EntryExtras& x, int32_t today) { return x.entryDate != 0 ? x.entryDate : today; }

void ApplyDefaultCustomer(const EntryExtras& x, int kind, DocumentHeader& header) {
  const DocumentKind* k = DocumentKindOf(kind);
  if (x.defaultCustomer == 0 || header.contractor != 0 || !k || k->contractor != ContractorCatalogue::kCustomers) return;
  Contractor customer;
  bool found = false;
  CheckDBError(ContractorFind(ContractorKind::kCustomer, x.defaultCustomer, customer, found));
  if (!found) return;
  header.contractor = x.defaultCustomer;
  header.contractorName = customer[KontrahentCol::nazwa];
}

// --- Tables ---

int16_t WorkRewriteInOrder(const ShortText& work, std::vector<DocLine>& lines) {
  docdetail::ExclusiveLock lock(work);
  if (const int16_t code = WorkTableClear(work)) return code;
  for (DocLine& line : lines)
    if (const int16_t code = WorkLineAppend(work, line)) return code;
  return lock.Commit();
}

namespace {

// The main warehouse: the lowest number among those with their own tables.
int32_t MainWarehouse() {
  std::string value;
  bool isNull = true;
  CheckDBError(docdetail::QueryValue("SELECT MIN(numer) FROM " + docdetail::SqlTable(ShortText("dane\\magazyny")) +
                                         " WHERE czy_podmiot_gosp='Z'",
                                     value, isNull));
  return isNull ? 0 : static_cast<int32_t>(savedetail::IntOf(value));
}

}  // namespace

void AutoSortWorkTable(int32_t warehouse, const ShortText& work, std::vector<int64_t>& marked) {
  const int configured = ConfigInt(kConfigLineAutoSort);
  if (configured != 1 && configured != 2) return;
  const bool mainOnly = ConfigInt(kConfigLineSortMainOnly) == 1;
  const int order = AutoSortOrder(configured, mainOnly, warehouse, mainOnly ? MainWarehouse() : warehouse);
  if (order == 0) return;
  std::vector<DocLine> lines;
  CheckDBError(WorkLinesRead(work, lines));
  std::vector<DocLine> sorted = lines;
  SortLines(sorted, order);
  const bool same = std::equal(lines.begin(), lines.end(), sorted.begin(),
                               [](const DocLine& a, const DocLine& b) { return a.rowId == b.rowId; });
  if (same) return;
  std::vector<int64_t> before;
  for (const DocLine& l : sorted) before.push_back(l.rowId);
  CheckDBError(WorkRewriteInOrder(work, sorted));
  RemapRowIds(marked, before, sorted);
}

// --- The functions ---

namespace {

// Every line's quantity through f, under a progress box.
void ChangeAllQuantities(EntryView& v, const ShortText& progress, Real (*f)(Real)) {
  const ScreenKeeper keeper;
  (void)MessageBox(progress, 2);
  const ProgressBar bar = FindProgressBar(progress);
  for (std::size_t i = 0; i < v.lines.size(); ++i) {
    CheckDBError(WorkLineSetQuantity(v.work, v.lines[i].rowId, f(v.lines[i].quantity)));
    ShowProgress(bar, static_cast<long>(i + 1), static_cast<long>(v.lines.size()));
  }
}

EntryAfter DefaultCustomer(EntryView& v) {
  const int32_t number = ChooseContractor(ContractorKind::kCustomer, ChoosePurpose::kAny);
  if (number != 0) v.x.defaultCustomer = number;
  return EntryAfter::kDone;
}

EntryAfter ChangeLineVat(EntryView& v) {
  if (!v.lower || v.lines.empty() || ConfigInt(kConfigLineVatChange) != 1) return EntryAfter::kDone;
  if (ConfigInt(kConfigLineFallbackBase) == 2) {
    (void)MessageBox(kFallbackVatText, 0);
    return EntryAfter::kDone;
  }
  const DocLine& line = v.lines[static_cast<std::size_t>(v.lineAt)];
  ShortText vat = line.item.vat;
  if (!DictionaryList("vat"_mz, ShortText("dane\\pola_ind\\vat"), true, vat) || vat == line.item.vat)
    return EntryAfter::kDone;
  const Real rate = VatRateOf(vat);
  CheckDBError(PGRunQueryNoTup("UPDATE " + docdetail::SqlTable(v.work) + " SET vat=" + savedetail::TextSql(vat) +
                               ",cena_z_b=" + savedetail::NumberSql(GrossOfNet(line.item.buyNet, rate)) +
                               ",cena_s_b=" + savedetail::NumberSql(GrossOfNet(line.item.saleNet, rate)) +
                               " WHERE oid=" + std::to_string(line.rowId)));
  v.x.vatChanged = true;
  return EntryAfter::kReadLines;
}

// F8 on the line list: marks or clears the line for joining.
EntryAfter MarkForMerge(EntryView& v) {
  if (!v.lower || v.lines.empty()) return EntryAfter::kDone;
  const int64_t row = v.lines[static_cast<std::size_t>(v.lineAt)].rowId;
  const auto at = std::find(v.x.marked.begin(), v.x.marked.end(), row);
  if (at != v.x.marked.end()) {
    v.x.marked.erase(at);
  } else if (static_cast<int>(v.x.marked.size()) >= kMergeMax) {
    (void)MessageBox(kMergeLimitText, 0);
  } else {
    v.x.marked.push_back(row);
  }
  return EntryAfter::kDone;
}

// Shift+F8: the marked lines of the current line's item join it.
EntryAfter EndMerge(EntryView& v) {
  if (!v.lower || v.lines.empty()) return EntryAfter::kDone;
  const int64_t into = v.lines[static_cast<std::size_t>(v.lineAt)].rowId;
  const MergePlan plan = PlanMerge(v.lines, v.x.marked, into);
  {
    docdetail::ExclusiveLock lock(v.work);
    CheckDBError(WorkLineSetQuantity(v.work, into, plan.quantity));
    for (const int64_t row : plan.drop) CheckDBError(WorkLineDelete(v.work, row));
    CheckDBError(lock.Commit());
  }
  v.x.marked.clear();
  return EntryAfter::kReadLines;
}

ShortText DateText(int32_t serial) {
  int y = 0, m = 0, d = 0;
  if (!DecodeDaySerial(serial, y, m, d)) return ShortText();
  return DateFromParts(d, m, y);
}

int32_t Today() {
  const DatePartValues p = DateParts(::Today(10));
  return EncodeDaySerial(p.year, p.month, p.day);
}

EntryAfter ChangeEntryDate(EntryView& v) {
  ShortText text = DateText(EntryDate(v.x, Today()));
  if (!AskValue(kDateChangeTitle, text, 10, 7, ShortText(), ShortText())) return EntryAfter::kDone;
  const DatePartValues p = DateParts(text);
  int32_t serial = 0;
  if (!DateValid(text, 10) || !TryEncodeDaySerial(p.year, p.month, p.day, serial)) return EntryAfter::kDone;
  v.x.entryDate = serial == Today() ? 0 : serial;
  if (v.x.entryDate != 0) (void)MessageBox(kNotTodayText, 0);
  return EntryAfter::kDone;
}

// F4 on the line list, where purchase prices are edited on lines: the
// line's net purchase price, its gross by the line's VAT.
EntryAfter EditBuyPrice(EntryView& v) {
  if (!v.lower || v.lines.empty() || ConfigInt(kConfigLineBuyPrices) != 2) return EntryAfter::kDone;
  const DocLine& line = v.lines[static_cast<std::size_t>(v.lineAt)];
  ShortText text = TrimBoth(FormatShortest(16, line.item.buyNet), ' ');
  if (!AskValue(kBuyPriceTitle, text, 16, 0, ShortText(), ShortText())) return EntryAfter::kDone;
  const Real net = TextToRealLoose(TrimBoth(text, ' '));
  if (!AmountInRange(net) || net < 0 || net == line.item.buyNet) return EntryAfter::kDone;
  CheckDBError(PGRunQueryNoTup("UPDATE " + docdetail::SqlTable(v.work) + " SET cena_z_n=" + savedetail::NumberSql(net) +
                               ",cena_z_b=" + savedetail::NumberSql(GrossOfNet(net, VatRateOf(line.item.vat))) +
                               " WHERE oid=" + std::to_string(line.rowId)));
  v.x.buyPricesChanged = true;
  return EntryAfter::kReadLines;
}

EntryWorkFileHook gWorkFileHook = nullptr;

// Ctrl+F7: the work file taken into the line list, which is read again.
EntryAfter TakeWorkFile(EntryView& v) {
  if (gWorkFileHook == nullptr) return EntryAfter::kNotMine;
  gWorkFileHook(v.warehouse);
  return EntryAfter::kReadLines;
}

bool KindNeedsPurchasePrices(int kind) {
  const TotalMethod m = KindTotalMethod(kind, 0);
  return m == TotalMethod::kPurchaseGrossFromGroups || m == TotalMethod::kPurchaseNet;
}

EntryAfter ChangeKind(EntryView& v) {
  const int kind = ChooseDocumentKind();
  if (kind == 0 || kind == v.kind) return EntryAfter::kDone;
  if (v.x.buyPricesChanged && !KindNeedsPurchasePrices(kind)) {
    (void)MessageBox(kBuyPricesChangedText + TrimRight(KindName(kind), ' ') + "\""_mz, 0);
    return EntryAfter::kDone;
  }
  v.kind = kind;
  return EntryAfter::kReadLines;
}

}  // namespace

// Defined in entry_pull.cpp.
EntryAfter PullFromDocuments(EntryView& v);

namespace {

Real Negated(Real q) { return -q; }
Real Zeroed(Real) { return 0; }

KeyPair Shifted(int n) { return KeyPair{0, static_cast<unsigned char>(83 + n)}; }
KeyPair Ctrl(int n) { return KeyPair{0, static_cast<unsigned char>(93 + n)}; }

struct KeyAction {
  KeyPair key;
  EntryAfter (*run)(EntryView&);
};

const KeyAction kActions[] = {
    {keys::F(3), [](EntryView& v) { return SearchNameStart(v); }},
    {Shifted(3), [](EntryView& v) { return SearchPattern(v); }},
    {keys::F(4), EditBuyPrice},
    {Ctrl(3), [](EntryView& v) { return SearchAnyField(v); }},
    {keys::F(5), [](EntryView& v) { return ApplyDocumentDiscount(v) ? EntryAfter::kReadLines : EntryAfter::kDone; }},
    {Shifted(5), ChangeLineVat},
    {keys::F(6),
     [](EntryView& v) {
       ChangeAllQuantities(v, kReverseProgressText, Negated);
       return EntryAfter::kReadLines;
     }},
    {Shifted(6),
     [](EntryView& v) {
       ChangeAllQuantities(v, kZeroProgressText, Zeroed);
       return EntryAfter::kReadLines;
     }},
    {keys::F(7), PullFromDocuments},
    {Shifted(7), DefaultCustomer},
    {Ctrl(7), TakeWorkFile},
    {keys::F(8), MarkForMerge},
    {Shifted(8), EndMerge},
    {keys::F(9), ChangeEntryDate},
    {Shifted(9), ChangeKind},
};

}  // namespace

EntryAfter EntryFunctionKey(EntryView v, KeyPair key) {
  if (!v.lower && key.ch >= '0' && key.ch <= '9') return SearchDigits(v, key.ch);
  for (const KeyAction& a : kActions)
    if (a.key == key) return a.run(v);
  return EntryAfter::kNotMine;
}

ShortText EntryKeysText() {
  ShortText text = "0-9 indeks F3 nazwa"_mz;
  if (ConfigInt(kConfigLineBuyPrices) == 2) text += " F4 c.zak"_mz;
  text += " F5 rabat F6 znak F7 z dok"_mz;
  if (gWorkFileHook != nullptr) text += " ^F7 plik"_mz;
  return text + " F8 łącz F9 data"_mz;
}

bool IsReturnTransfer(int kind, int32_t targetWarehouse, int32_t returnWarehouse) {
  return kind == 15 && returnWarehouse > 0 && targetWarehouse == returnWarehouse;
}

void StartNewDocument(EntryExtras& x) {
  x.vatChanged = false;
  x.buyPricesChanged = false;
  x.returnTransfer = false;
  x.marked.clear();
}

}  // namespace entrydetail

void SetEntryWorkFileHook(EntryWorkFileHook hook) { entrydetail::gWorkFileHook = hook; }
