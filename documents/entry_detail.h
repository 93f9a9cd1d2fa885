// Inside the entry function: the searches that put items on the line list,
// the discount of the whole document and the other functions over the
// line list, with the pure rules they follow. entry.cpp owns the loop and
// hands these a view of its state. Other folders do not include it.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "base/mazovia.h"
#include "base/real.h"
#include "base/shorttext.h"
#include "documents/doccalc.h"
#include "documents/docsave.h"
#include "master/items.h"
#include "tui/keydecode.h"

namespace entrydetail {

// --- Configuration lines the entry's functions read ---
inline constexpr int kConfigLineVatReduction = 12;      // VAT-dependent reduction 0/1
inline constexpr int kConfigLinePackages = 36;          // quantity through ilosc_w_opak 0..4
inline constexpr int kConfigLineEntryBrowse = 41;       // 2 and 3: FIFO cost on issues
inline constexpr int kConfigLineDiscountLock = 49;      // BLOK_RAB in use 0/1
inline constexpr int kConfigLineVatChange = 66;         // VAT may change on lines 0/1
inline constexpr int kConfigLineDigitField = 70;        // digits search 0 index, 1 char index, 2 internal number
inline constexpr int kConfigLineFallbackBase = 93;      // 2: working on the fallback database
inline constexpr int kConfigLineSortMainOnly = 106;     // automatic sort only in the main warehouse
inline constexpr int kConfigLineDigitTake = 150;        // 0 ask whether it is the item, 1 take the first
inline constexpr int kConfigLineDigitQuantity = 155;    // 0 nothing, 1 ask, 2.. enter the quantity below
inline constexpr int kConfigLineDigitAutoQuantity = 156;
inline constexpr int kConfigLineContractorFeatures = 169;  // contractors' discount column in use
inline constexpr int kConfigLineDigitMax = 190;         // digits of the searched index 1..15
inline constexpr int kConfigLineAutoSort = 199;         // 0 none, 1 name, 2 place in the warehouse
inline constexpr int kConfigLineProposedDiscount = 207;
inline constexpr int kConfigLineProposedStep = 209;

// --- Texts ---
inline constexpr ShortText kZeroOrNegativeText = "Jest, ale ma stan zerowy lub ujemny."_mz;
inline constexpr ShortText kZeroStockText = "Jest, ale ma stan zerowy."_mz;
inline constexpr ShortText kNegativeStockText = "Jest, ale ma stan ujemny."_mz;
inline constexpr ShortText kNoDigitIndexText = "Nie ma takiego indeksu cyfrowego !"_mz;
inline constexpr ShortText kNoPositiveText =
    "Nie znaleziono takiej pozycji o ilości większej od zera.@Czy przeszukać dane dla innej ilości ?"_mz;
inline constexpr ShortText kPatternSearchText = "Trwa wyszukanie pozycji, spełniających warunek:@LIKE "_mz;
inline constexpr ShortText kGroupedNegativeText =
    "W widoku zgrupowanym nie wolno wpisywać ilości ujemnych.@Należy przejść do widoku rozgrupowanego."_mz;
inline constexpr ShortText kGroupedUnknownText =
    "Wystąpił problem z identyfikacją pozycji z tego powodu, że kartoteki@są w widoku zgrupowanym.@Zmień widok na rozgrupowany (wyłącz ten komunikat i wciśnij ƒ╫ê⌐)."_mz;
inline constexpr ShortText kDiscountVatChangedText =
    "Zmieniono VAT na pozycjach.@Rabatowanie nie jest możliwe.@Nadal można jednak zmieniać ceny dla pojedynczych pozycji specyfikacji."_mz;
inline constexpr ShortText kDiscountReturnTransferText =
    "Przesunięcie zwrotowe.@Rabatowanie nie jest możliwe.@Nadal można jednak zmieniać ceny dla pojedynczych pozycji specyfikacji."_mz;
inline constexpr ShortText kAskRegistrationText = "Podaj kod rejestracyjny odbiorcy uprawnionego do rabatu:"_mz;
inline constexpr ShortText kNoSuchCustomerText =
    "Nie ma takiego odbiorcy.@Naliczenie rabatu nie może odbyć się automatycznie."_mz;
inline constexpr ShortText kDiscountForm =
    "Podanie rabatu od cen sprzedaży, który naliczony będzie@dla całości specyfikacji, od cen katalogowych.@───────────────────────────────────────────────────────@Zaokrąglanie cen wynikowych:        @Rabat:         %"_mz;
inline constexpr ShortText kDiscountFormVat =
    "Podanie rabatu i obniżki zal.od VAT, które naliczone będą@dla całości specyfikacji, od cen katalogowych sprzedaży.@─────────────────────────────────────────────────────────@Zaokrąglanie cen wynikowych:        @Rabat:         %@Obniżka:         %"_mz;
inline constexpr ShortText kDiscountProgressText = "Trwa zmiana cen...[   %]"_mz;
inline constexpr ShortText kReverseProgressText = "Trwa odwrócenie znaku ilości na specyfikacji...[          ]"_mz;
inline constexpr ShortText kZeroProgressText = "Trwa zerowanie ilości na specyfikacji...[          ]"_mz;
inline constexpr ShortText kMergeLimitText =
    "Nie można połączyć więcej, niż 100 pozycji.@Wykonaj zakończenie łączenia na aktualnej pozycji."_mz;
inline constexpr ShortText kPullKindTitle = "Wybierz typ dokumentu, z którego będą dodane towary do specyfikacji:"_mz;
inline constexpr ShortText kPullChoices = "wymiana towarów na te z wybranych dokumentów@dodanie towarów"_mz;
inline constexpr ShortText kFallbackVatText =
    "Pracujesz w trybie awaryjnym baz połączenia.@Zmiana VAT na specyfikacji nie będzie przeprowadzona.Dopisywanie jest możliwe poprzez plik roboczy."_mz;
inline constexpr ShortText kBuyPricesChangedText =
    "Nie można, kiedy zostały poprawione ceny zakupu, wprowadzać@dokumentów `"_mz;
inline constexpr ShortText kDateChangeTitle = "FUNKCJA ZMIANY DATY WPROWADZANIA"_mz;

inline constexpr int kMergeMax = 100;

// --- Pure rules ---
// The quantity a line takes from what was typed, by the packages option:
// 3 the entry is a count of standards, times ilosc_w_opak; 4 the entry is
// turned into standards, divided by it. Other options, or no package size, keep it.
Real QuantityFromEntry(Real entered, Real packQuantity, int option);

// One earlier receipt of an item, oldest first.
struct Receipt {
  Real quantity = 0;
  Real price = 0;  // net purchase price
};
// The unit cost of taking quantity first-in, first-out: the oldest
// receipts are taken to be gone first (issued units), the line takes what
// follows; what the receipts do not cover is valued at fallback.
Real FifoUnitCost(std::span<const Receipt> oldestFirst, Real issued, Real quantity, Real fallback);

// What a digit-index search does with the stocks of the rows it found.
enum class DigitFind : int8_t { kNone, kTake, kAskEach, kAskOtherQuantity };
struct DigitDecision {
  DigitFind what = DigitFind::kNone;
  int row = 0;        // the row to take (kTake)
  ShortText note;     // a stock note for the row taken, empty when it is above zero
};
// mode 0 asks about each found row in turn; mode 1 takes the first with
// stock above zero, and when none has, asks whether to look at other quantities.
DigitDecision DecideDigitFind(std::span<const Real> stocks, int mode);
// The note for a stock of 0 or below; for several rows, the common note.
ShortText StockNote(std::span<const Real> stocks);
// The quantity that a digit search enters by itself (0: ask, -1: enter nothing).
Real DigitSearchQuantity(int mode, const ShortText& autoText, int kind);
// The same for an item chosen with Enter: modes 4 and 5 only; 0 to ask.
Real EnterQuantity(int mode, const ShortText& autoText, int kind);

// The discount of the whole document.
struct DiscountSettings {
  Real percent = 0;    // Rabat
  Real reduction = 0;  // Obniżka (VAT-dependent form only)
  Real step = 0.01L;   // rounding of the resulting prices
  bool vatDependent = false;  // configuration line 12
  bool vatMode = false;       // invoices with VAT from gross (line 176 other than 0)
};
// Whether a percentage has at most 6 decimal places (checked times 1,000,000).
bool SixDecimals(Real percent);
// The net sale price of a line from the catalogue's net price.
Real DiscountNet(Real catalogueNet, Real rate, const DiscountSettings& s);

// The order of the automatic sort: 0 none, 1 name, 2 place in the warehouse.
void SortLines(std::vector<DocLine>& lines, int order);
// The automatic sort's order in a warehouse: none elsewhere than in the
// main warehouse when the setting asks for that.
int AutoSortOrder(int configured, bool mainOnly, int32_t warehouse, int32_t mainWarehouse);

// Joins the marked lines of the current line's item into it: the quantity
// of the current line, and the rows to delete.
struct MergePlan {
  Real quantity = 0;
  std::vector<int64_t> drop;
};
MergePlan PlanMerge(std::span<const DocLine> lines, std::span<const int64_t> marked, int64_t into);

// --- The entry's state seen by these functions ---
struct EntryExtras {
  int32_t entryDate = 0;        // 0: today
  bool vatChanged = false;       // the VAT of a line was changed
  bool buyPricesChanged = false;  // purchase prices were corrected
  bool returnTransfer = false;   // the transfer being written is a return
  int32_t defaultCustomer = 0;
  std::vector<int64_t> marked;  // lines marked for joining
  bool presetSet = false;        // the next AddItem takes presetQuantity without asking
  Real presetQuantity = 0;
};

struct EntryView {
  int32_t warehouse;
  int& kind;
  const ShortText& work;
  std::vector<DocLine>& lines;
  int& lineAt;
  std::vector<ItemListRow>& items;
  int& itemAt;
  bool lower;
  EntryExtras& x;
};

// What a key asks the loop to do after it.
enum class EntryAfter : int8_t { kNotMine, kDone, kReadLines, kAddAtBar };
// Whether the line is marked for joining.
bool Marked(const EntryExtras& x, int64_t rowId);
// The keys of the functions here; kNotMine for any other.
EntryAfter EntryFunctionKey(EntryView v, KeyPair key);
// The key line of the entry with these functions.
ShortText EntryKeysText();
// The date the document takes: the changed one, else today.
int32_t EntryDate(const EntryExtras& x, int32_t today);
// Called by the save for the header: the default customer on kinds that name customers.
void ApplyDefaultCustomer(const EntryExtras& x, int kind, DocumentHeader& header);
// Called by AddItem before it asks: true with the quantity a search decided,
// or with the automatic quantity when the setting enters it on Enter too.
bool TakePresetQuantity(EntryExtras& x, int kind, Real& q);
// Called by AddItem for the quantity typed: the packages option applied.
Real QuantityInUnits(Real entered, const ItemData& item);
// Called by AddItem for a new line: the FIFO cost on issues when configured.
void TakeFifoCost(int32_t warehouse, int kind, DocLine& line, std::span<const DocLine> lines);
// Called after a line was added: the configured automatic sort of the work table.
void AutoSortWorkTable(int32_t warehouse, const ShortText& work);

// --- Parts with the table layer (each returns the layer's code) ---
[[nodiscard]] int16_t ReadReceipts(int32_t warehouse, int32_t item, std::vector<Receipt>& oldestFirst);
[[nodiscard]] int16_t WorkLineSetPrices(const ShortText& work, int64_t rowId, Real net, Real gross);
[[nodiscard]] int16_t WorkRewriteInOrder(const ShortText& work, const std::vector<DocLine>& lines);
// The internal numbers of the items whose digit field (by line 70) holds value, in name order.
[[nodiscard]] int16_t FindByDigits(int field, int64_t value, std::vector<int32_t>& numbers);
// The internal numbers of the items whose name matches the LIKE pattern, in name order.
[[nodiscard]] int16_t FindByPattern(const ShortText& pattern, std::vector<int32_t>& numbers);

// The searches from the entry; the bar of the catalogue goes to what they find.
EntryAfter SearchDigits(EntryView v, unsigned char first);
EntryAfter SearchNameStart(EntryView v);
EntryAfter SearchPattern(EntryView v);
EntryAfter SearchAnyField(EntryView v);

// ApplyDocumentDiscount: the discount of the whole line list with its questions; true when prices changed.
bool ApplyDocumentDiscount(EntryView v);

}  // namespace entrydetail
