// The entry function: the catalogue above, the line list below, and the
// keys that move between them, put items on the line list, change or
// remove lines, save and leave.
#include <algorithm>
#include <ctime>
#include <vector>

#include "base/dates.h"
#include "base/numbers.h"
#include "base/numbers_format.h"
#include "config/konfigur.h"
#include "documents/docentry.h"
#include "documents/docsave.h"
#include "documents/dockinds.h"
#include "documents/entry_detail.h"
#include "documents/kindrules.h"
#include "master/items.h"
#include "sqltable/dbapp.h"
#include "tui/askvalue.h"
#include "tui/keyboard.h"
#include "tui/msgbox.h"
#include "tui/screen.h"
#include "users/users.h"

namespace {

constexpr int kUpperTop = 3, kUpperRows = 9;   // catalogue rows 3..11
constexpr int kLowerTop = 14, kLowerRows = 9;  // line list rows 14..22

const ShortText kQuantityTitle = "Podaj ilość:"_mz;
const ShortText kSavedText = "Zapisano dokument nr "_mz;
constexpr KeyPair kDropKey{25, 21};  // Ctrl+Y
const ShortText kKeysText = " Tab-okno Enter-ilość Del-usuń F2-zapis Esc-wyjście"_mz;

int32_t TodaySerial() {
  const std::time_t now = std::time(nullptr);
  std::tm local{};
  localtime_r(&now, &local);
  return EncodeDaySerial(local.tm_year + 1900, local.tm_mon + 1, local.tm_mday);
}

bool SalePriced(int kind) {
  const TotalMethod m = KindTotalMethod(kind, 0);
  return m == TotalMethod::kGrossFromNetGroups || m == TotalMethod::kGrossLines;
}

struct Entry {
  int32_t warehouse = 0;
  int kind = 0;
  ShortText work;
  std::vector<ItemListRow> items;  // the catalogue's screenful
  std::vector<DocLine> lines;      // the line list
  int itemAt = 0, lineAt = 0;
  bool lower = false;              // the line list has the keys
  entrydetail::EntryExtras extra;  // date of entry, marks for joining, flags of the functions
  entrydetail::LineMemory memory;  // the answers that are not asked again
  DocumentHeader header;           // the header once asked, for the lines after it
  bool headerAsked = false;
};

const DocumentHeader* HeaderOf(const Entry& e) { return e.headerAsked ? &e.header : nullptr; }

void ReadItems(Entry& e, const ItemListKey& from, bool forward) {
  std::vector<ItemListRow> rows;
  CheckDBError(ItemListRead(ItemListKind{}, e.warehouse, from, forward, kUpperRows, rows));
  if (!rows.empty() || !from.set) e.items = std::move(rows);
  if (e.itemAt >= static_cast<int>(e.items.size())) e.itemAt = e.items.empty() ? 0 : static_cast<int>(e.items.size()) - 1;
}

void ReadLines(Entry& e) {
  CheckDBError(WorkLinesRead(e.work, e.lines));
  if (e.lineAt >= static_cast<int>(e.lines.size())) e.lineAt = e.lines.empty() ? 0 : static_cast<int>(e.lines.size()) - 1;
}

void Row(int y, const ShortText& text, bool bar) {
  TextAttr(bar ? kAttrReverse : kAttrNormal);
  ShortText padded = text.Copy(1, 80);
  while (padded.Length() < 80) padded.Append(' ');
  WriteAt(1, y, padded);
  TextAttr(kAttrNormal);
}

ShortText Column(const ShortText& text, int width) {
  ShortText t = text.Copy(1, width);
  while (t.Length() < width) t.Append(' ');
  return t;
}

void Draw(const Entry& e) {
  Window(1, 1, kScreenCols, kScreenRows);
  Row(1, KindName(e.kind) + " - magazyn nr "_mz + IntText(e.warehouse, 0), false);
  Row(2, "Towar                            Stan      Cena"_mz, false);
  for (int i = 0; i < kUpperRows; ++i) {
    ShortText text;
    if (i < static_cast<int>(e.items.size())) {
      const ItemListRow& r = e.items[static_cast<std::size_t>(i)];
      text = Column(r.item.name, 31) + " "_mz + FormatFixed(9, 2, r.quantity) + " "_mz + FormatFixed(10, 2, r.saleGross);
    }
    Row(kUpperTop + i, text, !e.lower && i == e.itemAt && !e.items.empty());
  }
  Row(12, ShortText(), false);
  Row(13, "Specyfikacja:                   Ilość     Cena      Wartość"_mz, false);
  for (int i = 0; i < kLowerRows; ++i) {
    ShortText text;
    if (i < static_cast<int>(e.lines.size())) {
      const DocLine& l = e.lines[static_cast<std::size_t>(i)];
      const Real price = SalePriced(e.kind) ? l.item.saleGross : l.item.buyNet;
      text = Column(l.item.name, 31) + " "_mz + FormatFixed(9, 2, l.quantity) + " "_mz + FormatFixed(9, 2, price) +
             " "_mz + FormatFixed(10, 2, LineValue(l.quantity, price));
      if (entrydetail::Marked(e.extra, l.rowId)) text.Append('*');
    }
    Row(kLowerTop + i, text, e.lower && i == e.lineAt && !e.lines.empty());
  }
  const TotalMethod method = KindTotalMethod(e.kind, 0);
  Row(23, "Suma: "_mz + FormatFixed(12, 2, ComputeTotals(e.lines, method).total) + " "_mz + TotalMethodText(method),
      false);
  Row(24, entrydetail::EntryKeysText(), false);
  Row(25, kKeysText, false);
}

// The quantity the kind, the stock, the orders and the returns allow; false when nothing may be taken.
bool CheckAvailability(Entry& e, const DocLine& line, Real& q) {
  return entrydetail::CheckLineQuantity(e.warehouse, e.kind, e.work, line, q, e.memory);
}

bool AskQuantity(Real& q) {
  ShortText text = q == 0 ? ShortText() : FormatShortest(12, q);
  if (!AskValue(kQuantityTitle, text, 12, 0, ShortText(), ShortText())) return false;
  q = TextToRealLoose(text);
  return AmountInRange(q);
}

// Enter on the catalogue: the item goes on the line list with its prices.
void AddItem(Entry& e) {
  if (e.items.empty()) return;
  const ItemListRow& row = e.items[static_cast<std::size_t>(e.itemAt)];
  DocLine line;
  line.item = row.item;
  if (!entrydetail::ItemFitsHeader(e.kind, HeaderOf(e), line.item)) return;
  if (SalePriced(e.kind)) {
    line.item.saleNet = row.saleNet;
    line.item.saleGross = row.saleGross;
  }
  Real q = 0;
  if (!entrydetail::TakePresetQuantity(e.extra, e.kind, q) && !AskQuantity(q)) return;
  q = entrydetail::QuantityInUnits(q, line.item);
  if (q == 0 || !CheckAvailability(e, line, q)) return;
  entrydetail::PriceNewLine(e.kind, HeaderOf(e), line);
  line.quantity = q;
  entrydetail::TakeFifoCost(e.warehouse, e.kind, line, e.lines);
  CheckDBError(WorkLineAppend(e.work, line));
  entrydetail::AutoSortWorkTable(e.warehouse, e.work, e.extra.marked);
  ReadLines(e);
  e.lineAt = static_cast<int>(e.lines.size()) - 1;
}

// Enter on the line list: a new quantity; the old one stays when the stock refuses.
void ChangeLine(Entry& e) {
  if (e.lines.empty()) return;
  const DocLine& line = e.lines[static_cast<std::size_t>(e.lineAt)];
  Real q = line.quantity;
  if (!AskQuantity(q) || !CheckAvailability(e, line, q)) return;
  CheckDBError(WorkLineSetQuantity(e.work, line.rowId, q));
  ReadLines(e);
}

void DeleteLine(Entry& e) {
  if (e.lines.empty()) return;
  CheckDBError(WorkLineDelete(e.work, e.lines[static_cast<std::size_t>(e.lineAt)].rowId));
  ReadLines(e);
}

// F2: the header of the new document and the save; true when saved.
bool Save(Entry& e) {
  if (e.lines.empty() || !entrydetail::PassesFiscalLimit(e.kind, e.lines)) return false;
  if (!e.headerAsked) {
    // The proposals of a new header, on the date of entry, with the default customer.
    e.header = entrydetail::NewHeader(e.warehouse, e.kind, entrydetail::EntryDate(e.extra, TodaySerial()));
    entrydetail::ApplyDefaultCustomer(e.extra, e.kind, e.header);
  }
  if (!entrydetail::PrepareHeader(e.warehouse, e.header, TodaySerial())) return false;
  e.headerAsked = true;
  e.extra.returnTransfer = entrydetail::IsReturnTransfer(
      e.kind, e.header.otherWarehouse, ConfigInt(entrydetail::kConfigLineReturnWarehouse));
  DocumentHeader header = e.header;
  SaveSettings settings = SaveSettingsFromConfig();
  settings.vatChanged = e.extra.vatChanged;
  const SaveResult r = SaveNewDocument(e.warehouse, header, e.work, settings);
  ReadLines(e);
  if (r.outcome != SaveOutcome::kSaved) return false;
  e.headerAsked = false;
  entrydetail::StartNewDocument(e.extra);
  ReadItems(e, ItemListKey{}, true);
  (void)MessageBox(kSavedText + DocNumberText(r.coded) + " "_mz + r.mark, 0);
  return true;
}

// Ctrl+Y: the whole line list goes, after the question.
void DropLines(Entry& e) {
  if (!MessageBox(entrydetail::DropQuestion(static_cast<int>(e.lines.size())), 1)) return;
  CheckDBError(WorkTableClear(e.work));
  e.headerAsked = false;
  entrydetail::StartNewDocument(e.extra);
  ReadLines(e);
}

void MoveBar(Entry& e, int delta) {
  if (e.lower) {
    e.lineAt = std::max(0, std::min(e.lineAt + delta, static_cast<int>(e.lines.size()) - 1));
    return;
  }
  const int to = e.itemAt + delta;
  if (to >= 0 && to < static_cast<int>(e.items.size())) {
    e.itemAt = to;
  } else if (!e.items.empty()) {
    ItemListKey key = ItemListKeyOf(e.items[static_cast<std::size_t>(to < 0 ? 0 : e.items.size() - 1)]);
    ReadItems(e, key, to >= 0);
    e.itemAt = to < 0 ? static_cast<int>(e.items.size()) - 1 : 0;
  }
}

// The loop of keys; true when the user leaves.
bool HandleKey(Entry& e, KeyPair key) {
  using namespace keys;
  if (key == kTab) e.lower = !e.lower;
  else if (key == kUp) MoveBar(e, -1);
  else if (key == kDown) MoveBar(e, 1);
  else if (key == kPgUp) MoveBar(e, -kUpperRows);
  else if (key == kPgDn) MoveBar(e, kUpperRows);
  else if (key == kEnter) e.lower ? ChangeLine(e) : AddItem(e);
  else if (key == kDel && e.lower) DeleteLine(e);
  else if (key == F(2)) Save(e);
  else if (key == kDropKey && !e.lines.empty()) DropLines(e);
  else if (const auto after = entrydetail::EntryFunctionKey(
               {e.warehouse, e.kind, e.work, e.lines, e.lineAt, e.items, e.itemAt, e.lower, e.extra}, key);
           after == entrydetail::EntryAfter::kReadLines)
    ReadLines(e);
  else if (after == entrydetail::EntryAfter::kAddAtBar) AddItem(e);
  else if (key == kEsc) {
    if (e.lines.empty()) return true;
    if (MessageBox(entrydetail::LeaveQuestion(false), 1)) {
      CheckDBError(WorkTableClear(e.work));
      return true;
    }
  }
  return false;
}

}  // namespace

void DocumentEntry(int32_t warehouse) {
  Entry e;
  e.warehouse = warehouse;
  e.work = WorkTablePath(CurrentUserNumber());
  CheckDBError(WorkTableEnsure(CurrentUserNumber()));
  e.kind = ChooseDocumentKind();
  if (e.kind == 0) return;
  ScreenCopyPtr saved;
  ScreenSave(saved);
  ReadItems(e, ItemListKey{}, true);
  ReadLines(e);
  for (bool done = false; !done;) {
    Draw(e);
    done = HandleKey(e, ReadKeyRaw());
  }
  ScreenRestore(saved);
}
