// Finding items from the entry: the digit index first (with the configured
// way of taking what it finds and of entering its quantity), the start of a
// name, a LIKE pattern and any field; then the quantity through the package
// size and the FIFO cost of an issue.
#include <algorithm>
#include <string>

#include "base/numbers.h"
#include "base/numbers_format.h"
#include "base/text.h"
#include "config/konfigur.h"
#include "documents/docdetail.h"
#include "documents/entry_detail.h"
#include "documents/save_detail.h"
#include "master/tables.h"
#include "sqltable/dbapp.h"
#include "tui/editfield.h"
#include "tui/msgbox.h"
#include "tui/screen.h"

namespace entrydetail {

Real QuantityFromEntry(Real entered, Real packQuantity, int option) {
  if (packQuantity <= 0) return entered;
  if (option == 3) return entered * packQuantity;
  if (option == 4) return entered / packQuantity;
  return entered;
}

Real FifoUnitCost(std::span<const Receipt> oldestFirst, Real issued, Real quantity, Real fallback) {
  if (quantity <= 0) return fallback;
  Real skip = std::max<Real>(issued, 0), left = quantity, value = 0;
  for (const Receipt& r : oldestFirst) {
    Real here = std::max<Real>(r.quantity, 0);
    const Real skipped = std::min(skip, here);
    skip -= skipped;
    here -= skipped;
    const Real taken = std::min(left, here);
    value += taken * r.price;
    left -= taken;
    if (left <= 0) break;
  }
  return (value + left * fallback) / quantity;
}

ShortText StockNote(std::span<const Real> stocks) {
  bool zero = false, negative = false;
  for (const Real s : stocks) {
    if (s > 0) return ShortText();
    (s == 0 ? zero : negative) = true;
  }
  if (zero && negative) return kZeroOrNegativeText;
  if (zero) return kZeroStockText;
  return negative ? kNegativeStockText : ShortText();
}

DigitDecision DecideDigitFind(std::span<const Real> stocks, int mode) {
  if (stocks.empty()) return {};
  if (mode == 0) return {stocks.size() == 1 ? DigitFind::kTake : DigitFind::kAskEach, 0, StockNote(stocks.first(1))};
  for (std::size_t i = 0; i < stocks.size(); ++i)
    if (stocks[i] > 0) return {DigitFind::kTake, static_cast<int>(i), ShortText()};
  return {DigitFind::kAskOtherQuantity, 0, StockNote(stocks)};
}

bool DigitsFromKeys(const ShortText& typed, ShortText& digits) {
  static constexpr std::string_view kKeypadLetters = "MJKLUIO";  // the letter at position n is the digit n
  digits = ShortText();
  for (const char c : typed.View()) {
    const char upper = c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
    const std::size_t at = kKeypadLetters.find(upper);
    if ((c >= '0' && c <= '9') || c == ' ') {
      digits.Append(c);
    } else if (at != std::string_view::npos) {
      digits.Append(static_cast<char>('0' + at));
    } else {
      digits = ShortText();
      return false;
    }
  }
  return true;
}

Real DigitSearchQuantity(int mode, const ShortText& autoText, int kind) {
  const bool sale = kind >= 1 && kind <= 5;
  if (mode == 0) return -1;
  const bool automatic = ((mode == 2 || mode == 4) && sale) || mode == 3 || mode == 5;
  if (!automatic) return 0;
  const Real q = TextToRealLoose(TrimBoth(autoText, ' '));
  return q > 0 && AmountInRange(q) ? q : 1;
}

Real EnterQuantity(int mode, const ShortText& autoText, int kind) {
  return mode == 4 || mode == 5 ? std::max<Real>(DigitSearchQuantity(mode, autoText, kind), 0) : 0;
}

// --- Tables ---

namespace {

std::string KatTowSql() { return docdetail::SqlTable(ShortText(kKatTowTable)); }

int16_t NumbersOf(const std::string& where, std::vector<int32_t>& numbers) {
  numbers.clear();
  PGResult res;
  if (const int16_t code = PGRunQueryWithTup(
          "SELECT nr_wewn FROM " + KatTowSql() + " WHERE " + where + " ORDER BY nazwa,nazwa_,oid LIMIT 100", res))
    return code;
  for (int r = 0; r < res.Rows(); ++r) numbers.push_back(static_cast<int32_t>(savedetail::IntOf(res.Value(r, 0))));
  return 0;
}

std::string ReceiptKinds() {
  std::string kinds;
  for (int k = kFirstGoodsKind; k <= kLastGoodsKind; ++k)
    if (KindStockEffect(k, false) == StockEffect::kReceipt) kinds += (kinds.empty() ? "" : ",") + std::to_string(k);
  return kinds;
}

}  // namespace

int16_t FindByDigits(int field, int64_t value, std::vector<int32_t>& numbers) {
  const std::string v = std::to_string(value);
  if (field == 1) return NumbersOf("TRIM(indeks_znakowy_isbn)='" + v + "'", numbers);
  if (field == 2) return NumbersOf("nr_wewn=" + v, numbers);
  return NumbersOf("indeks_numeryczny=" + v, numbers);
}

int16_t FindByPattern(const ShortText& pattern, std::vector<int32_t>& numbers) {
  return NumbersOf("(nazwa||nazwa_) LIKE " + docdetail::TextLiteral(pattern), numbers);
}

int16_t ReadReceipts(int32_t warehouse, int32_t item, std::vector<Receipt>& oldestFirst) {
  oldestFirst.clear();
  PGResult res;
  if (const int16_t code = PGRunQueryWithTup(
          "SELECT ilosc,c_zak_netto FROM " + docdetail::SqlTable(WarehouseTablePath(warehouse, "specyfik")) +
              " WHERE nr_towaru=" + std::to_string(item) + " AND ilosc>0 AND typ_dok IN (" + ReceiptKinds() +
              ") ORDER BY data_dok,oid",
          res))
    return code;
  for (int r = 0; r < res.Rows(); ++r)
    oldestFirst.push_back({savedetail::RealOf(res.Value(r, 0)), savedetail::RealOf(res.Value(r, 1))});
  return 0;
}

// --- Hooks of AddItem ---

namespace {

bool GroupedView() {
  const int browse = ConfigInt(kConfigLineEntryBrowse);
  return browse == 2 || browse == 3;
}

}  // namespace

bool TakePresetQuantity(EntryExtras& x, int kind, Real& q) {
  if (!x.presetSet) {
    q = EnterQuantity(ConfigInt(kConfigLineDigitQuantity), ConfigText(kConfigLineDigitAutoQuantity), kind);
    return q > 0;
  }
  x.presetSet = false;
  q = x.presetQuantity;
  return true;
}

Real QuantityInUnits(Real entered, const ItemData& item) {
  if (entered < 0 && GroupedView()) {
    (void)MessageBox(kGroupedNegativeText, 0);
    return 0;
  }
  return QuantityFromEntry(entered, item.packQuantity, ConfigInt(kConfigLinePackages));
}

void TakeFifoCost(int32_t warehouse, int kind, DocLine& line, std::span<const DocLine> lines) {
  if (!GroupedView() || KindStockEffect(kind, false) != StockEffect::kIssue || line.quantity <= 0) return;
  std::vector<Receipt> receipts;
  CheckDBError(ReadReceipts(warehouse, line.item.number, receipts));
  StockRow stock;
  bool found = false;
  CheckDBError(StockRead(warehouse, line.item.number, stock, found));
  Real received = 0;
  for (const Receipt& r : receipts) received += r.quantity;
  const Real onList = -AvailableStock(0, lines, line.item.number, line.rowId);
  const Real issued = std::max<Real>(received - (found ? stock.quantity : 0), 0) + onList;
  line.item.buyNet = FifoUnitCost(receipts, issued, line.quantity, line.item.buyNet);
  line.item.buyGross = GrossFromNet(line.item.buyNet, line.item.vat);
}

// --- The searches ---

namespace {

const ShortText kIndexSearch = "Wprowadź szukany indeks cyfrowy:                 "_mz;
const ShortText kNameSearch = "Wprowadź początek szukanej nazwy: ------------------------------- "_mz;
const ShortText kFragmentSearch = "Wprowadź ciąg znaków z nazwy: --------------------------------------------- "_mz;
const ShortText kGoOnText = "Jest ! Czy szukać dalej ?"_mz;
constexpr int kUpperRowsShown = 9;

// A one-line box whose field follows the label's ": ".
bool AskAfterLabel(const ShortText& text, int mode, int width, ShortText& value) {
  const ScreenKeeper keeper;
  const std::size_t colon = text.View().find(':');
  (void)MessageBox(text, 2);
  GotoXY(2 + static_cast<int>(colon) + 2, 2);
  unsigned char key = 0;
  const unsigned char fill = text.View().find('-') == std::string_view::npos ? ' ' : '-';
  return EditField(mode, 1, fill, width, value, key) != 27;
}

// Puts the catalogue's screenful from the item on; false when the list does not hold it.
bool ShowItem(EntryView& v, int32_t number) {
  std::vector<ItemListRow> rows;
  CheckDBError(ItemListRowOf(ItemListKind{}, v.warehouse, number, rows));
  if (rows.empty()) return false;
  ItemListKey key = ItemListKeyOf(rows.front());
  key.inclusive = true;
  CheckDBError(ItemListRead(ItemListKind{}, v.warehouse, key, true, kUpperRowsShown, v.items));
  v.itemAt = 0;
  return !v.items.empty();
}

std::vector<ItemListRow> RowsOf(const EntryView& v, const std::vector<int32_t>& numbers) {
  std::vector<ItemListRow> found;
  for (const int32_t n : numbers) {
    std::vector<ItemListRow> rows;
    CheckDBError(ItemListRowOf(ItemListKind{}, v.warehouse, n, rows));
    if (!rows.empty()) found.push_back(rows.front());
  }
  return found;
}

// Mode 0 of the take: each found item in turn until the user stops; -1 when he goes past the last.
int AskEach(EntryView& v, const std::vector<ItemListRow>& rows) {
  for (std::size_t i = 0; i < rows.size(); ++i) {
    (void)ShowItem(v, rows[i].item.number);
    if (i + 1 == rows.size() || !MessageBox(kGoOnText, 1)) return static_cast<int>(i);
  }
  return -1;
}

int DigitWidth() {
  const int n = ConfigInt(kConfigLineDigitMax);
  return n >= 1 && n <= 15 ? n : 15;
}

}  // namespace

EntryAfter SearchDigits(EntryView v, unsigned char first) {
  const bool letters = ConfigInt(kConfigLineDigitLetters) == 1;
  ShortText typed;
  typed.Append(static_cast<char>(first));
  if (!AskAfterLabel(kIndexSearch, letters ? 16 : 3, DigitWidth(), typed) || TrimBoth(typed, ' ').Empty())
    return EntryAfter::kDone;
  ShortText digits;
  std::vector<int32_t> numbers;
  if (DigitsFromKeys(typed, digits))  // a letter off the keypad finds nothing
    CheckDBError(
        FindByDigits(ConfigInt(kConfigLineDigitField), static_cast<int64_t>(TextToRealLoose(digits)), numbers));
  const std::vector<ItemListRow> rows = RowsOf(v, numbers);
  if (numbers.empty()) {
    (void)MessageBox(kNoDigitIndexText, 0);
    return EntryAfter::kDone;
  }
  if (rows.empty()) {
    (void)MessageBox(kGroupedUnknownText, 0);
    return EntryAfter::kDone;
  }
  std::vector<Real> stocks;
  for (const ItemListRow& r : rows) stocks.push_back(r.quantity);
  const DigitDecision d = DecideDigitFind(stocks, ConfigInt(kConfigLineDigitTake));
  int pick = d.row;
  if (d.what == DigitFind::kAskEach) pick = AskEach(v, rows);
  if (d.what == DigitFind::kAskOtherQuantity && !MessageBox(kNoPositiveText, 1)) return EntryAfter::kDone;
  if (pick < 0) return EntryAfter::kDone;
  (void)ShowItem(v, rows[static_cast<std::size_t>(pick)].item.number);
  const ShortText note = StockNote(std::span<const Real>(&stocks[static_cast<std::size_t>(pick)], 1));
  if (!note.Empty()) (void)MessageBox(note, 0);
  const Real q = DigitSearchQuantity(ConfigInt(kConfigLineDigitQuantity), ConfigText(kConfigLineDigitAutoQuantity),
                                     v.kind);
  if (q < 0) return EntryAfter::kDone;
  v.x.presetSet = q > 0;
  v.x.presetQuantity = q;
  return EntryAfter::kAddAtBar;
}

EntryAfter SearchNameStart(EntryView v) {
  ShortText prefix;
  if (!AskAfterLabel(kNameSearch, 1, 31, prefix) || prefix.Empty()) return EntryAfter::kDone;
  ItemData item;
  bool found = false;
  CheckDBError(ItemFindByName(prefix, item, found));
  if (found) (void)ShowItem(v, item.number);
  return EntryAfter::kDone;
}

EntryAfter SearchPattern(EntryView v) {
  ShortText fragment;
  if (!AskAfterLabel(kFragmentSearch, 1, 45, fragment) || TrimRight(fragment, ' ').Empty()) return EntryAfter::kDone;
  const ShortText pattern = "%"_mz + TrimRight(fragment, ' ') + "%"_mz;
  std::vector<int32_t> numbers;
  {
    const ScreenKeeper keeper;
    (void)MessageBox(kPatternSearchText + pattern, 2);
    CheckDBError(FindByPattern(pattern, numbers));
  }
  if (!numbers.empty()) (void)ShowItem(v, numbers.front());
  return EntryAfter::kDone;
}

EntryAfter SearchAnyField(EntryView v) {
  ItemData item;
  if (FindItemByAnyField(item)) (void)ShowItem(v, item.number);
  return EntryAfter::kDone;
}

}  // namespace entrydetail
