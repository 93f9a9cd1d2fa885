// The catalogue's smaller dialogues: the price rounding and discount box,
// the choice of the list's view, the search by any field, and the menu of
// the maintenance functions with their questions and reports.
#include <iterator>
#include <string>
#include <vector>

#include "base/dates.h"
#include "base/mazovia.h"
#include "base/numbers.h"
#include "base/numbers_format.h"
#include "base/text.h"
#include "master/columns.h"
#include "master/items.h"
#include "master/items_detail.h"
#include "tui/askvalue.h"
#include "tui/editfield.h"
#include "tui/msgbox.h"
#include "tui/picklist.h"
#include "users/users.h"

using items_detail::AskInLine;
using items_detail::Checked;

namespace {

constexpr unsigned char kEnter = 13, kEsc = 27, kF10 = 238, kUp = 242;

const ShortText kRoundingBox = "Zaokrąglenie ceny wynikowej:----- @Cena wynikowa:--------- @Rabat:------- "_mz;

ShortText Amount(Real value, int decimals) { return TrimBoth(FormatFixed(16, decimals, value), ' '); }
Real ValueOf(const ShortText& text) { return TextToRealLoose(TrimBoth(text, ' ')); }

// The rounding and discount box: the step and the discount give the resulting
// price from the base; the price may also be typed. False for Esc.
bool RoundingDialogue(Real base, Real& result) {
  const ScreenKeeper keeper;
  (void)MessageBox(kRoundingBox, 2);
  struct Line {
    int column, width;
  };
  const Line lines[3] = {{2 + 28, 5}, {2 + 14, 9}, {2 + 6, 7}};
  ShortText values[3] = {"0.01", Amount(RoundToStep(base, 0.01L), 2), "0"};
  int at = 0;
  for (;;) {
    for (int i = 0; i < 3; ++i) {
      WriteAt(lines[i].column, 2 + i, PadRight(values[i], "-", lines[i].width));
    }
    GotoXY(lines[at].column, 2 + at);
    unsigned char key = 0;
    const ShortText before = values[at];
    const unsigned char code = EditField(at == 1 ? 13 : 6, 3, '-', lines[at].width, values[at], key);
    if (code == kEsc) return false;
    if (at != 1 && values[at] != before) {
      const Real discounted = base * (100 - ValueOf(values[2])) / 100;
      values[1] = Amount(RoundToStep(discounted, ValueOf(values[0])), 2);
    }
    if (code == kF10 || (code == kEnter && at == 2)) break;
    at = (at + (code == kUp ? 2 : 1)) % 3;
  }
  result = ValueOf(values[1]);
  return true;
}

ShortText CountsText(const ShortText& title, const StockCounts& c) {
  auto n = [](long v) { return ShortText(std::to_string(v)); };
  return title + "@   dodatni = "_mz + n(c.positive) + "@   ujemny  = "_mz + n(c.negative) + "@   zerowy  = "_mz +
         n(c.zero) + "@ wszystkie = "_mz + n(c.all);
}

void CountStock() {
  std::vector<int32_t> numbers;
  Checked(items_detail::WarehouseNumbers(numbers));
  std::vector<StockCounts> counts(numbers.size());
  {
    const ScreenKeeper keeper;
    const ShortText box = "Trwa zliczanie...[          ]"_mz;
    (void)MessageBox(box, 2);
    const ProgressBar bar = FindProgressBar(box);
    for (std::size_t i = 0; i < numbers.size(); ++i) {
      if (items_detail::WarehouseHas(numbers[i], "stany_mg")) Checked(StockCountIn(numbers[i], counts[i]));
      ShowProgress(bar, static_cast<long>(i + 1), static_cast<long>(numbers.size()));
    }
  }
  for (std::size_t i = 0; i < numbers.size(); ++i)
    (void)MessageBox(CountsText("Magazyn nr "_mz + ShortText(std::to_string(numbers[i])), counts[i]), 0);
  StockCounts own;
  bool exists = false;
  Checked(WorkFileCountIn(CurrentUserNumber(), own, exists));
  if (exists) (void)MessageBox(CountsText("Ilości w Twoim pliku roboczym"_mz, own), 0);
}

void RemoveEmpty(int32_t warehouse) {
  unsigned char ch = 0, scan = 0;
  const int choice = PickList(2, 1, 1, 0, 0, ShortText(),
                              "usunięcie ilości zerowych (ale nie kartotek) w stanach aktualnego magazynu@"
                              "usunięcie ilości zerowych (ale nie kartotek) w stanach wszystkich mag.@"
                              "usunięcie ilości zerowych i kartotek bez obrotu"_mz,
                              ch, scan);
  long removed = 0;
  if (choice == 1 || choice == 2) {
    Checked(RemoveZeroStock(choice == 1 ? warehouse : 0, removed));
    return;
  }
  if (choice != 3) return;
  if (!MessageBox("Skasujesz wszystkie kartoteki, które nie wykazują obrotu@i nie są zamówione. Potrwa to długo.@"
                  "Nikt nie może pracować w programie.@Czy nikt już nie pracuje ?"_mz,
                  1))
    return;
  {
    const ScreenKeeper keeper;
    (void)MessageBox("Trwa kasowanie. Trochę to potrwa..."_mz, 2);
    Checked(RemoveItemsWithoutTurnover(removed));
  }
  (void)MessageBox("Usuwanie kartotek bez obrotu zakończone.@Wszyscy mogą już pracować w programie."_mz, 0);
}

void MarkUnused() {
  ShortText date;
  if (!AskValue("Podaj datę, do której (włącznie) wstecz obroty są istotne:"_mz, date, 10, 7, ShortText(), ShortText()))
    return;
  const ScreenKeeper keeper;
  const ShortText box = "Trwa oznaczanie pozycji nie używanych...[ ]@(Zmiany licznika będą następowały bardzo powoli,@dojdzie on do 4). Należy uzbroić się w cierpliwość..."_mz;
  (void)MessageBox(box, 2);
  const ProgressBar bar = FindProgressBar(box);
  long hidden = 0;
  const int16_t code = HideUnusedItems(DateExpand(date), [&bar](int step) { ShowProgress(bar, step, 4); }, hidden);
  if (code == kPGArgRange) (void)MessageBox(PGErrText(code), 0);
  else Checked(code);
}

void ZeroIndexes() {
  if (!MessageBox("Na pewno chcesz wyzerować indeksy ujemne lub przekraczające@pewną wartość graniczną ?"_mz, 1)) return;
  ShortText limit;
  if (!AskInLine("Podaj wartość graniczną indeksu numerycznego:                 "_mz, 3, limit) || limit.Empty()) return;
  const Real value = ValueOf(limit);
  long changed = 0;
  Checked(ZeroDigitIndexes(value > kDigitIndexMax ? kDigitIndexMax : static_cast<int64_t>(value), changed));
}

void RepairIndexes() {
  if (!MessageBox("Na pewno chcesz skorygować powtarzające się indeksy ?"_mz, 1)) return;
  long changed = 0;
  ShortText refusal;
  Checked(RepairDigitIndexes(changed, refusal));
  if (!refusal.Empty()) (void)MessageBox(refusal, 0);
}

}  // namespace

namespace items_detail {

bool StoreSalePrice(int32_t warehouse, const ItemListRow& shown, Real gross) {
  unsigned char ch = 0, scan = 0;
  const int scope = PickList(2, 2, 1, 0, 0, "Jak zmienić dane (jeśli nie wiesz, wybierz zaznaczoną opcję)"_mz,
                             "w magazynie aktualnym@w katalogu towarów i magazynie aktualnym@w katalogu towarów i wszystkich magazynach"_mz,
                             ch, scan);
  if (scope == 0) return false;
  if (scope == 3 && !MessageBox("Zmiany muszą być wprowadzone we wszystkich magazynach@i katalogu głównym.@Wykonać korektę ?"_mz, 1))
    return false;
  ShortText refusal;
  bool found = false;
  Checked(ItemChangeSalePrice(shown.item.number, gross, static_cast<ItemPriceScope>(scope), warehouse, found, refusal));
  if (!refusal.Empty()) (void)MessageBox(refusal, 0);
  else if (!found) (void)MessageBox(GoneText(shown.item), 0);
  return found && refusal.Empty();
}

ShortText GoneText(const ItemData& item) {
  return TrimRight(item.name, ' ') + "\"@został usunięty z katalogu przez innego użytkownika."_mz;
}

}  // namespace items_detail

bool ChangePrices(int32_t warehouse, const ItemListRow& shown) {
  ItemData item;
  bool found = false;
  Checked(ItemFindByNumber(shown.item.number, item, found));
  if (!found) {
    (void)MessageBox(items_detail::GoneText(shown.item), 0);
    return true;
  }
  Real gross = 0;
  return RoundingDialogue(shown.saleGross, gross) && items_detail::StoreSalePrice(warehouse, shown, gross);
}

bool ChooseListKind(ItemListKind& kind) {
  unsigned char ch = 0, scan = 0;
  const int choice = PickList(2, 1, 1, 0, 0, ShortText(),
                              "tylko z ilością niezerową@na których były obroty@pokazuj aktywne i nieaktywne@"
                              "pokazuj tylko aktywne@pokazuj rozgrupowane"_mz,
                              ch, scan);
  switch (choice) {
    case 1: kind.stock = kind.stock == ItemListStock::kNonZero ? ItemListStock::kAll : ItemListStock::kNonZero; break;
    case 2:
      kind.stock = kind.stock == ItemListStock::kWithTurnover ? ItemListStock::kAll : ItemListStock::kWithTurnover;
      break;
    case 3: kind.activeOnly = false; break;
    case 4: kind.activeOnly = true; break;
    case 5:
      if (kind.grouped) {
        kind.grouped = false;
      } else {
        // The grouped view sums the warehouses: it is built (again) when chosen.
        int spanned = 0;
        Checked(BuildStockView(spanned));
        kind.grouped = spanned > 0;
      }
      break;
    default: return false;
  }
  return true;
}

bool FindItemByAnyField(ItemData& item) {
  static const char* const names[] = {
#define KLOTE_ITEM_NAME(name, type) #name,
      KLOTE_COLUMNS_KAT_TOW(KLOTE_ITEM_NAME)
#undef KLOTE_ITEM_NAME
  };
  std::vector<ShortText> choices;
  for (const char* n : names) choices.emplace_back(n);
  unsigned char ch = 0, scan = 0;
  const int field = PickListHooked(2, 1, 1, 0, 0, "Wybierz, według jakiego pola szukać:"_mz, choices, PickListHooks{},
                                   ch, scan);
  if (field == 0) return false;
  ShortText value;
  if (!AskValue("Podaj pełną wartość pola: "_mz, value, 40, 1, ShortText(), ShortText())) return false;
  bool found = false;
  Checked(ItemFindByField(field, value, item, found));
  return found;
}

void CatalogueMaintenance(int32_t warehouse) {
  unsigned char ch = 0, scan = 0;
  const int choice = PickList(2, 1, 1, 0, 0, ShortText(),
                              "zliczanie kartotek@usuwanie ilości zerowych i kartotek bez obrotu@"
                              "oznaczanie pozycji nie używanych@zerowanie indeksów cyfrowych@"
                              "korekta powtarzających się indeksów cyfrowych"_mz,
                              ch, scan);
  const bool full = CurrentUserMaxRights() || CurrentUserIsManager();
  if (choice == 2 && !full) {
    (void)MessageBox("Nie masz uprawnień do kasowania kartotek towarów."_mz, 0);
    return;
  }
  switch (choice) {
    case 1: CountStock(); break;
    case 2: RemoveEmpty(warehouse); break;
    case 3: MarkUnused(); break;
    case 4: ZeroIndexes(); break;
    case 5: RepairIndexes(); break;
    default: break;
  }
}
