// "Katalog towarów": the joined list of the catalogue and the current
// warehouse's stock, read a screenful at a time in name order, with the
// searches and the change of an item's sale price.
#include <string>
#include <vector>

#include "base/mazovia.h"
#include "base/numbers.h"
#include "base/numbers_format.h"
#include "base/text.h"
#include "master/items.h"
#include "master/items_detail.h"
#include "sqltable/dbapp.h"
#include "tui/askvalue.h"
#include "tui/editfield.h"
#include "tui/keyboard.h"
#include "tui/msgbox.h"
#include "tui/pagedrows.h"
#include "tui/picklist.h"
#include "tui/screen.h"
#include "tui/term.h"

namespace items_detail {

// A box with one line whose field is the run of '-' (or of trailing blanks)
// in the text; the edited value, false for Esc.
bool AskInLine(const ShortText& text, int mode, ShortText& value) {
  const ScreenKeeper keeper;
  const std::string_view view = text.View();
  std::size_t start = view.find('-');
  if (start == std::string_view::npos) start = view.find_last_not_of(' ') + 2;
  if (start >= view.size()) return false;
  const std::size_t end = view.find_last_not_of(view[start] == '-' ? ' ' : '\0');
  const int width = static_cast<int>((view[start] == '-' ? view.find_last_of('-') + 1 : end + 1) - start);
  (void)MessageBox(text, 2);
  GotoXY(2 + static_cast<int>(start), 2);
  unsigned char key = 0;
  value.Clear();
  return EditField(mode, 1, view[start] == '-' ? '-' : ' ', width, value, key) != 27;
}

void Checked(int16_t code) {
  if (code != 0) CheckDBError(code);
}

}  // namespace items_detail

using items_detail::AskInLine;
using items_detail::Checked;

namespace {

constexpr int kRows = 20;
constexpr int kFirstRow = 3;
constexpr unsigned char kListAttr = 0x1F, kBarAttr = 0x30, kTitleAttr = 0x4F;
constexpr unsigned char kEnter = 13, kF2 = 230, kF3 = 231, kF4 = 232, kF5 = 233, kF6 = 234, kF7 = 235,
                        kF8 = 236, kF9 = 221, kF10 = 238, kF11 = 133, kIns = 252, kDel = 253;

const ShortText kHeader = " nazwa                       indeks cyfrowy  indeks znak.        ilość  cena sp.br."_mz;
const ShortText kKeys = " F2-nazwa F3-fragm. F4-ind. F7-pole Ins-nowy F5-kor. Del-kas. F6-widok F9-kons."_mz;
const ShortText kNameSearch = "Wprowadź początek szukanej nazwy: ------------------------------- "_mz;
const ShortText kFragmentSearch = "Wprowadź ciąg znaków z nazwy: --------------------------------------------- "_mz;
const ShortText kReadFault =
    "Wystąpiły zakłócenia odczytu bazy.@@Wyjdź do głównego menu programu, rezygnując z wprowadzanych zmian,@a potem wróć do wykonywanych czynności."_mz;
const ShortText kIndexSearch = "Wprowadź szukany indeks cyfrowy:                 "_mz;

ShortText RowText(const ItemListRow& row) {
  const ShortText name = (TrimRight(row.item.name, ' ') + " "_mz + row.item.name2).Copy(1, 27);
  return " " + PadRight(name, " ", 27) + " " + IntText(row.item.digitIndex, 15) + " " +
         PadRight(row.item.code.Copy(1, 13), " ", 13) + " " + FormatFixed(10, 3, row.quantity) + " " +
         FormatFixed(10, 2, row.saleGross);
}

class CatalogueScreen {
 public:
  explicit CatalogueScreen(int32_t warehouse) : warehouse_(warehouse) {}

  void Run() {
    RunPagedList(
        list_, [this] { Draw(); }, [this](unsigned char code) { return Act(code); }, kReadFault);
  }

 private:
  bool Act(unsigned char code) {
    switch (code) {
      case kF2: return SearchName();
      case kF3: return SearchFragment();
      case kF4: return SearchIndex();
      case kEnter: return EditPrice();
      case kF10: return Changed(list_.Current() && ChangePrices(warehouse_, *list_.Current()));
      case kIns: return AddNew();
      case kF5: return Changed(list_.Current() && EditItem(warehouse_, list_.Current()->item.number));
      case kDel: return Changed(list_.Current() && DeleteItem(list_.Current()->item));
      case kF8: return Changed(list_.Current() && AskItemActive(list_.Current()->item));
      case kF11: return Changed(list_.Current() && AskDiscountLock(list_.Current()->item));
      case kF6: return Changed(ChooseListKind(kind_));
      case kF7: return SearchAnyField();
      case kF9: CatalogueMaintenance(warehouse_); return Changed(true);
      default: return false;
    }
  }

  void Draw() {
    TextAttr(kTitleAttr);
    WriteAt(1, 1, PadRight(" Katalog towarów - magazyn nr "_mz + ShortText(std::to_string(warehouse_)), " ", 80));
    TextAttr(kListAttr);
    WriteAt(1, 2, PadRight(kHeader, " ", 80));
    DrawPagedRows(list_, kFirstRow, kRows, [](const ItemListRow& r) { return RowText(r); }, kListAttr, kBarAttr);
    WriteAt(1, 24, PadRight(kKeys, " ", 80));
    GotoXY(1, kFirstRow + list_.Bar());
    TermFlush();
  }

  // Shows the list from the found row.
  bool ShowFrom(const ItemData& item, int64_t rowId) {
    ItemListKey key;
    key.set = key.inclusive = true;
    key.name = item.name;
    key.name2 = item.name2;
    key.rowId = rowId;
    list_.LoadFrom(key, true);
    return !list_.Rows().empty();
  }

  bool SearchName() {
    ShortText prefix;
    if (!AskInLine(kNameSearch, 1, prefix) || prefix.Empty()) return true;
    ItemData item;
    bool found = false;
    Checked(ItemFindByName(prefix, item, found));
    return found && ShowFromNumber(item.number);
  }

  bool SearchFragment() {
    ShortText fragment;
    if (!AskInLine(kFragmentSearch, 1, fragment) || fragment.Empty()) return true;
    std::vector<ItemListRow> rows;
    ItemListKey from = list_.Current() ? ItemListKeyOf(*list_.Current()) : ItemListKey{};
    Checked(ItemListFind(kind_, warehouse_, from, fragment, rows));
    if (rows.empty()) return false;
    return ShowFrom(rows.front().item, rows.front().rowId);
  }

  bool SearchIndex() {
    ShortText digits;
    if (!AskInLine(kIndexSearch, 3, digits) || digits.Empty()) return true;
    ItemData item;
    bool found = false;
    Checked(ItemFindByDigitIndex(static_cast<int64_t>(TextToRealLoose(digits)), item, found));
    return found && ShowFromNumber(item.number);
  }

  bool ShowFromNumber(int32_t number) {
    std::vector<ItemListRow> rows;
    Checked(ItemListRowOf(kind_, warehouse_, number, rows));
    return !rows.empty() && ShowFrom(rows.front().item, rows.front().rowId);
  }

  bool EditPrice();

  // After a change the screen is read again from its first row, the bar kept.
  bool Changed(bool changed) {
    if (changed) list_.Reload();
    return true;
  }

  bool AddNew() {
    int32_t number = 0;
    return !AddItem(warehouse_, ItemRules{}, number) || ShowFromNumber(number);
  }

  bool SearchAnyField() {
    ItemData item;
    return FindItemByAnyField(item) && ShowFromNumber(item.number);
  }

  int32_t warehouse_;
  ItemListKind kind_;
  PagedRows<ItemListRow, ItemListKey> list_{
      kRows,
      [this](const ItemListKey& key, bool forward, int limit, std::vector<ItemListRow>& rows) {
        return ItemListRead(kind_, warehouse_, key, forward, limit, rows) == 0;
      },
      ItemListKeyOf};
};

bool CatalogueScreen::EditPrice() {
  if (!list_.Current()) return false;
  const ItemListRow shown = *list_.Current();
  ItemData item;
  bool found = false;
  Checked(ItemFindByNumber(shown.item.number, item, found));
  if (!found) {
    (void)MessageBox(items_detail::GoneText(shown.item), 0);
    list_.LoadFrom(ItemListKeyOf(shown), true);
    return true;
  }
  ShortText price = TrimBoth(FormatFixed(12, 2, shown.saleGross), ' ');
  if (!AskValue("Korekta danych oznaczonej ciemnym pasem kartoteki towarowej:"_mz, price, 12, 4, ShortText(), ShortText()))
    return true;
  return Changed(items_detail::StoreSalePrice(warehouse_, shown, TextToRealLoose(price)));
}

}  // namespace

void ItemCatalogue(int32_t warehouse) { CatalogueScreen(warehouse).Run(); }
