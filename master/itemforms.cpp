// The catalogue's forms and dialogues: adding and editing an item with the
// rights of the current user, deleting one, the price rounding and discount
// dialogue, and the change of an item's price in a scope.
#include <algorithm>
#include <iterator>
#include <string>
#include <vector>

#include "base/mazovia.h"
#include "base/numbers.h"
#include "base/numbers_format.h"
#include "base/text.h"
#include "master/items.h"
#include "master/items_detail.h"
#include "tui/editfield.h"
#include "tui/keyboard.h"
#include "tui/msgbox.h"
#include "tui/picklist.h"
#include "users/users.h"

using items_detail::Checked;

namespace {

constexpr unsigned char kFormAttr = 0x1F, kFieldAttr = 0x70;
constexpr unsigned char kEnter = 13, kEsc = 27, kF10 = 238, kUp = 242;
constexpr int kLabelColumn = 3, kValueColumn = 28, kFirstFieldRow = 4;

const ShortText kAddTitle = "Dopisanie nowej kartoteki towarowej:"_mz;
const ShortText kEditTitle = "Korekta danych oznaczonej ciemnym pasem kartoteki towarowej:"_mz;
const ShortText kNoPriceRights = "Nie masz praw do edycji cen."_mz;

// What guards a field of the form.
enum class Guard : uint8_t { kNone, kKey, kPurchase, kNewOnly };

struct FormField {
  ShortText label;
  int width;
  int mode;
  Guard guard;
};

// The fields in the order of the form; the numbers of FieldIndex follow it.
const FormField kFields[] = {
    {"Nazwa"_mz, 31, 1, Guard::kKey},           {"Nazwa cd."_mz, 30, 1, Guard::kKey},
    {"Indeks znakowy"_mz, 13, 1, Guard::kNone}, {"Indeks cyfrowy"_mz, 16, 9, Guard::kNone},
    {"VAT"_mz, 5, 1, Guard::kKey},              {"SWW"_mz, 10, 1, Guard::kKey},
    {"Płatnik VAT"_mz, 13, 1, Guard::kKey},     {"Dostawca nr"_mz, 10, 9, Guard::kNone},
    {"Jednostka"_mz, 7, 1, Guard::kNone},       {"Cena zakupu netto"_mz, 16, 13, Guard::kPurchase},
    {"Cena sprzedaży brutto"_mz, 16, 13, Guard::kNone}, {"Miejsce w magazynie"_mz, 9, 1, Guard::kNone},
    {"Ilość w opakowaniu"_mz, 16, 13, Guard::kNone},    {"Ilość w magazynie"_mz, 16, 13, Guard::kNewOnly},
};
enum FieldIndex { kName, kName2, kCode, kDigit, kVat, kSww, kPayer, kSupplier, kUnit, kBuy, kSale, kPlace, kPack,
                  kStock, kFieldCount };
static_assert(std::size(kFields) == kFieldCount);

// Numbers of a new item's form start empty; an edited item's show their values.
ShortText Amount(Real value, bool adding) { return adding && value == 0 ? ShortText() : TrimBoth(FormatFixed(16, 2, value), ' '); }
ShortText Whole(int64_t value, bool adding) { return adding && value == 0 ? ShortText() : ShortText(std::to_string(value)); }

std::vector<ShortText> FieldsOf(const ItemData& item, bool adding) {
  return {item.name, item.name2, item.code, Whole(item.digitIndex, adding), item.vat, item.sww, item.vatPayer,
          Whole(item.supplier, adding), item.unit, Amount(item.buyNet, adding), Amount(item.saleGross, adding),
          item.place, Amount(item.packQuantity, adding), Amount(0, adding)};
}

bool NumberOk(const ShortText& text) {
  const ShortText t = TrimBoth(text, ' ');
  return t.Empty() || NumericCheck(t, false) == 0;
}

// The item from the form; false (with the system's message) when a price or quantity cannot be had.
bool ItemFromFields(const std::vector<ShortText>& f, ItemData& item, Real& stock) {
  for (int i : {kDigit, kSupplier, kBuy, kSale, kPack, kStock})
    if (!NumberOk(f[i])) return false;
  item.name = f[kName];
  item.name2 = f[kName2];
  item.code = f[kCode];
  const Real digit = TextToRealLoose(TrimBoth(f[kDigit], ' '));
  item.digitIndex = digit > 9e18L || digit < -9e18L ? -1 : static_cast<int64_t>(digit);
  item.vat = f[kVat];
  item.sww = f[kSww];
  item.vatPayer = f[kPayer];
  const Real supplier = TextToRealLoose(TrimBoth(f[kSupplier], ' '));
  item.supplier = supplier > kItemNumberMax || supplier < 0 ? 0 : static_cast<int32_t>(supplier);
  item.unit = f[kUnit];
  item.buyNet = TextToRealLoose(TrimBoth(f[kBuy], ' '));
  item.buyGross = GrossFromNet(item.buyNet, item.vat);
  item.saleGross = TextToRealLoose(TrimBoth(f[kSale], ' '));
  item.saleNet = NetFromGross(item.saleGross, item.vat);
  item.place = f[kPlace];
  item.packQuantity = TextToRealLoose(TrimBoth(f[kPack], ' '));
  stock = TextToRealLoose(TrimBoth(f[kStock], ' '));
  return item.buyNet >= 0 && item.saleGross >= 0 && item.packQuantity >= 0 && AmountInRange(stock);
}

// Whether the current user may edit the field; telling why when a rule says so.
bool MayEnter(const FormField& field, bool adding) {
  switch (field.guard) {
    case Guard::kKey: return adding || CurrentUserRight(UserRight::kCatalogueKey);
    case Guard::kPurchase:
      if (CurrentUserRight(UserRight::kPurchasePrices)) return true;
      (void)MessageBox(kNoPriceRights, 0);
      return false;
    case Guard::kNewOnly: return adding;
    case Guard::kNone: return true;
  }
  return true;
}

void DrawForm(const ShortText& title, const std::vector<ShortText>& values, bool adding) {
  Window(1, 1, 80, 25);
  TextAttr(kFormAttr);
  for (int row = 2; row <= kFirstFieldRow + kFieldCount; ++row) WriteAt(1, row, PadRight(ShortText(), " ", 80));
  WriteAt(kLabelColumn, 2, title);
  for (int i = 0; i < kFieldCount; ++i) {
    if (i == kStock && !adding) continue;
    TextAttr(kFormAttr);
    WriteAt(kLabelColumn, kFirstFieldRow + i, kFields[i].label);
    TextAttr(kFieldAttr);
    const bool hidden = kFields[i].guard == Guard::kPurchase && !CurrentUserRight(UserRight::kPurchasePrices);
    WriteAt(kValueColumn, kFirstFieldRow + i, PadRight(hidden ? ShortText() : values[i], " ", kFields[i].width));
  }
  TextAttr(kFormAttr);
}

// The form's loop: Enter and Down go on, Up goes back, F10 or Enter on the
// last field confirm, Esc gives up. False for Esc.
bool RunForm(const ShortText& title, std::vector<ShortText>& values, bool adding) {
  const int last = adding ? kStock : kPack;
  int at = 0;
  int direction = 1;
  for (;;) {
    DrawForm(title, values, adding);
    if (!MayEnter(kFields[at], adding)) {
      at = std::clamp(at + direction, 0, last);
      if ((at == 0 || at == last) && !MayEnter(kFields[at], adding)) direction = -direction;
      continue;
    }
    GotoXY(kValueColumn, kFirstFieldRow + at);
    TextAttr(kFieldAttr);
    unsigned char key = 0;
    const unsigned char code = EditField(kFields[at].mode, 3, ' ', kFields[at].width, values[at], key);
    if (code == kEsc) return false;
    if (code == kF10 || (code == kEnter && at == last)) return true;
    direction = code == kUp ? -1 : 1;
    at = std::clamp(at + direction, 0, last);
  }
}

// The supplier's closed mark admits only a person of maximum rights or the System Manager.
bool SupplierAllowed(int32_t supplier) {
  bool closed = false;
  Checked(SupplierClosed(supplier, closed));
  if (!closed || CurrentUserMaxRights() || CurrentUserIsManager()) return true;
  (void)MessageBox("Prawo do ręcznego wpisywania towarów tego dostawcy mają tylko osoby@o uprawnieniach maksymalnych w programie, lub `Kierownik Systemu\"."_mz, 0);
  return false;
}

ShortText GoneText(const ItemData& item, bool byOther) {
  return TrimRight(item.name, ' ') + (byOther ? "\"@został usunięty z katalogu przez innego użytkownika."_mz
                                              : "\"@został usunięty z katalogu.@Edycja nie jest możliwa."_mz);
}

// "Jak zmienić dane ...": the scope, 0 for Esc.
int AskScope(int marked) {
  unsigned char ch = 0, scan = 0;
  return PickList(2, static_cast<int16_t>(marked), 1, 0, 0,
                  "Jak zmienić dane (jeśli nie wiesz, wybierz zaznaczoną opcję)"_mz,
                  "w magazynie aktualnym@w katalogu towarów i magazynie aktualnym@w katalogu towarów i wszystkich magazynach"_mz,
                  ch, scan);
}

bool FullRights() { return CurrentUserMaxRights() || CurrentUserIsManager(); }

// The walk's steps shown one after another in a box that does not wait.
void ShowStep(const ShortText& text) { (void)MessageBox(text, 2); }

}  // namespace

bool AddItem(int32_t warehouse, const ItemRules& rules, int32_t& number) {
  const ScreenKeeper keeper;
  ItemData item;
  item.vatPayer = "";
  std::vector<ShortText> values = FieldsOf(item, true);
  for (;;) {
    if (!RunForm(kAddTitle, values, true)) return false;
    Real stock = 0;
    if (!ItemFromFields(values, item, stock)) {
      (void)MessageBox(items_detail::BadAmountText(), 0);
      continue;
    }
    const ShortText check = CheckItemData(item, rules);
    if (!check.Empty()) {
      (void)MessageBox(check, 0);
      continue;
    }
    if (!SupplierAllowed(item.supplier)) continue;
    StockRow row;
    row.quantity = stock;
    ShortText refusal;
    Checked(ItemAdd(item, rules, warehouse, row, refusal));
    if (refusal.Empty()) {
      number = item.number;
      return true;
    }
    (void)MessageBox(refusal, 0);
  }
}

bool EditItem(int32_t warehouse, int32_t number) {
  const ScreenKeeper keeper;
  ItemData stored;
  bool found = false;
  Checked(ItemFindByNumber(number, stored, found));
  if (!found) {
    (void)MessageBox(GoneText(stored, false), 0);
    return false;
  }
  std::vector<ShortText> values = FieldsOf(stored, false);
  for (;;) {
    if (!RunForm(kEditTitle, values, false)) return false;
    ItemData item = stored;
    Real stock = 0;
    if (!ItemFromFields(values, item, stock)) {
      (void)MessageBox(items_detail::BadAmountText(), 0);
      continue;
    }
    if (const ShortText check = CheckItemData(item, ItemRules{}); !check.Empty()) {
      (void)MessageBox(check, 0);
      continue;
    }
    if (item.supplier != stored.supplier && !SupplierAllowed(item.supplier)) continue;
    const bool keyChanged = ItemKeyChanged(stored, item);
    int scope = AskScope(keyChanged ? 3 : 2);
    if (scope == 0) return false;
    if (scope > 1 && !MessageBox(keyChanged ? "Zmiany muszą być wprowadzone we wszystkich magazynach,@katalogu głównym oraz specyfikacjach wszystkich kiedyś@wprowadzanych operacji towarowych.@Wykonać korektę ?"_mz
                                            : "Zmiany muszą być wprowadzone we wszystkich magazynach@i katalogu głównym.@Wykonać korektę ?"_mz,
                                 1))
      return false;
    if (scope == 2 && item.saleGross != stored.saleGross &&
        MessageBox("Czy ustawić we wszystkich magazynach ceny sprzedaży@na takie, jak aktualna widoczna ?"_mz, 1))
      scope = 3;
    ShortText refusal;
    {
      const ScreenKeeper walk;
      Checked(ItemEdit(item, static_cast<ItemPriceScope>(scope), warehouse, ShowStep, found, refusal));
    }
    if (!found) (void)MessageBox(GoneText(stored, true), 0);
    else if (!refusal.Empty()) (void)MessageBox(refusal, 0);
    return found && refusal.Empty();
  }
}

bool DeleteItem(const ItemData& shown) {
  if (!FullRights()) {
    (void)MessageBox("Nie masz uprawnień do kasowania kartotek towarów."_mz, 0);
    return false;
  }
  (void)MessageBox("Utracisz dane tej kartoteki."_mz, 0);
  if (!MessageBox("Na pewno skasować tę pozycję ?"_mz, 1)) return false;
  bool found = false, hadTurnover = false;
  Checked(ItemDelete(shown.number, found, hadTurnover));
  if (!found) (void)MessageBox(GoneText(shown, true), 0);
  else if (hadTurnover)
    (void)MessageBox("Na towarze przeprowadzano obroty.@Nie można go skasować.@Usunięte zostały tylko ewentualne zerowe stany w magazynach."_mz, 0);
  return found && !hadTurnover;
}

bool AskItemActive(const ItemData& shown) {
  if (!FullRights()) {
    (void)MessageBox("Nie masz uprawnień do aktywacji/dezaktywacji kartotek.@Może to robić operator o pełnych uprawnieniach."_mz, 0);
    return false;
  }
  const bool activate = !shown.active;
  if (!MessageBox(activate ? "Czy na pewno uczynić tę pozycję aktywną ?"_mz : "Czy na pewno uczynić tę pozycję nieaktywną ?"_mz, 1))
    return false;
  Checked(SetItemActive(shown.number, activate));
  return true;
}

bool AskDiscountLock(const ItemData& shown) {
  if (!FullRights()) {
    (void)MessageBox("Nie masz uprawnień do blokowania/odblokowania kartotek do rabatowania.@Może to robić operator o pełnych uprawnieniach."_mz, 0);
    return false;
  }
  Checked(SetItemDiscountLock(shown.number, shown.discountLock != 0 ? 0 : 1));
  return true;
}
