// Inside the entry and the save. The searches that put items on the line
// list, the discount of the whole document and the other functions over the
// line list; the header form of a new document, the checks that a line's
// quantity and prices pass before it goes on the line list, and the checks
// of the whole line list before it is saved. The decisions are pure
// functions over values (tested by tables); entry.cpp owns the loop and
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
#include "master/contractors.h"
#include "master/items.h"
#include "tui/keydecode.h"

namespace entrydetail {

// --- Configuration lines the entry's functions read ---
inline constexpr int kConfigLineDigitLetters = 2;       // letter keys typed into the digit search count as digits 0/1
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
inline constexpr int kConfigLineReturnWarehouse = 62;  // the warehouse that return transfers go to (0 none)
inline constexpr int kConfigLineBuyPrices = 166;       // 2: purchase prices are edited on the lines
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
inline constexpr ShortText kBuyPriceTitle = "Cena zakupu netto:"_mz;
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
// The digits of an index typed with the letter keys of a laptop's embedded
// keypad (NumLock off): M 0, J 1, K 2, L 3, U 4, I 5, O 6, either case;
// digits and blanks stay. False, with digits empty, for any other byte.
bool DigitsFromKeys(const ShortText& typed, ShortText& digits);
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
// A rewrite of the work table gives its rows new ids: each id of ids that
// stood at position i of before becomes the id of after[i]; ids of rows no
// longer there are dropped.
void RemapRowIds(std::vector<int64_t>& ids, std::span<const int64_t> before, std::span<const DocLine> after);

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

// A transfer to the warehouse that return transfers go to.
bool IsReturnTransfer(int kind, int32_t targetWarehouse, int32_t returnWarehouse);
// The flags of the document just saved or dropped are cleared for the next one.
void StartNewDocument(EntryExtras& x);

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
// Called after a line was added: the configured automatic sort of the work
// table; the marks for joining follow their lines to the new row ids.
void AutoSortWorkTable(int32_t warehouse, const ShortText& work, std::vector<int64_t>& marked);

// --- Parts with the table layer (each returns the layer's code) ---
[[nodiscard]] int16_t ReadReceipts(int32_t warehouse, int32_t item, std::vector<Receipt>& oldestFirst);
[[nodiscard]] int16_t WorkLineSetPrices(const ShortText& work, int64_t rowId, Real net, Real gross);
// Empties the work table and writes the lines in their order; each line takes its new row id.
[[nodiscard]] int16_t WorkRewriteInOrder(const ShortText& work, std::vector<DocLine>& lines);
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



// --- Configuration lines read here ---
inline constexpr int kConfigPurchaseLessBy = 7;        // real: sale price less this gives the purchase price
inline constexpr int kConfigDiscountReminder = 8;      // 1: remind of the contractor's discount
inline constexpr int kConfigLongReceipt = 24;          // 0 off, < 0 refuses, > 0 asks past |n| lines
inline constexpr int kConfigLinkedContractor = 88;    // 1: the contractor linked to the warehouse is proposed
inline constexpr int kConfigOrdersReserve = 115;       // 1 orders reserve goods, 2 and the reserve is kept
inline constexpr int kConfigInvoiceDays = 120;         // days to the settlement of an invoice
inline constexpr int kConfigSettleFromSale = 122;      // 1: the settlement counts from the sale date
inline constexpr int kConfigProposedMarks = 132;       // 1 or 2: dok_plat's mark is proposed
inline constexpr int kConfigRetailPayments = 142;      // 1: retail sales take a form of payment
inline constexpr int kConfigMarkFixed = 144;           // 1: a proposed mark cannot be changed
inline constexpr int kConfigDepositQuestion = 197;     // deposit option 0..3
inline constexpr int kConfigReceiptHeader = 203;       // 2 or 3: the retail sale asks its header
inline constexpr int kConfigInvoiceMinimum = 204;      // text: the least value of a kind 2 invoice

// --- The header ---
// Whom the header names and whether it must.
struct HeaderRules {
  bool hasContractor = false;
  ContractorKind catalogue = ContractorKind::kCustomer;
  bool required = false;   // the save waits for a contractor
  bool needsTaxId = false; // the contractor should have a NIP, PESEL or REGON
};
// The rules of a kind; dokPlatLetter is column 3 of its dok_plat row (' ' when none).
HeaderRules HeaderRulesOf(int kind, char dokPlatLetter);
// Whether the header form is shown before the save: always but for a
// retail sale, which asks it only when the receipt-data option is 2 or 3.
bool HeaderFormShown(int kind, int receiptDataOption);
// The proposed form of payment: the field of the configured defaults (receipts,
// invoices, invoice returns) when it is given, " gotówką" otherwise; a retail
// sale without forms of payment is always paid in cash.
ShortText ProposedPayment(int kind, const ShortText& defaultsCsv, bool retailForms);
// The proposed settlement date: invoices and their returns (2..5) some days
// after the document's or the sale's date, the others on the document's date.
int32_t ProposedSettleDate(int kind, int32_t date, int32_t saleDate, int days, bool fromSale);
// The proposed mark: dok_plat's when marks are proposed and it has one, else the kind's short code.
ShortText ProposedMark(int kind, const ShortText& dokPlatMark, int proposedMarksOption);
// A day serial as "DD-MM-RRRR"; a text back to a serial, 0 when it names no day.
ShortText DateText(int32_t serial);
int32_t DateOfText(const ShortText& text);

// A new header of the kind with every proposal filled (configuration,
// dok_plat, today, the contractor linked to the warehouse).
DocumentHeader NewHeader(int32_t warehouse, int kind, int32_t today);
// The form over the header; Enter goes on, F2 or F10 confirms, Esc gives up.
// The contractor field opens its catalogue's list on F1, or on Enter when empty.
// true when confirmed with its checks passed.
bool AskDocumentHeader(int32_t warehouse, DocumentHeader& header);
// The header before a save of the lines: the form when the kind shows it,
// then the retail sale's date question. false when the user gave up.
bool PrepareHeader(int32_t warehouse, DocumentHeader& header, int32_t today);

// --- The checks of one line ---
// What the entry remembers of the answers in the question on going below zero.
enum class BelowZeroChoice : int8_t { kNegative = 1, kReduce, kAlwaysNegative, kAlwaysReduce };
struct LineMemory {
  bool alwaysNegative = false;
  bool alwaysReduce = false;
};
// Returns: kinds 3, 5, 8, 9 and 13.
bool IsReturnKind(int kind);
// Step of a user without the right to go below zero: how much of q the
// available amount lets in; 0 or less means the line falls back.
enum class StockVerdict : int8_t { kFits, kNothing, kReduced };
StockVerdict JudgeStock(Real q, Real available);
// The reduction notice to available for a user without the right.
ShortText ReductionText(Real available);
// The order notice when q cuts into the ordered amount, or empty: ordered is
// the stock's ordered amount, and with keep the quantity is cut to what is
// left beyond the orders (cut receives it).
ShortText OrdersNotice(Real q, Real available, Real ordered, bool keep, Real& cut);
// The question on a return quantity above or below the available stock; empty when not strange.
ShortText ReturnQuestion(int kind, Real q, Real available);
// Item not from the header's supplier on a kind that takes one supplier; empty when fine.
ShortText SupplierRefusal(int kind, int32_t headerSupplier, int32_t itemSupplier, const ShortText& kindName);
// The purchase price from the sale price less the configured value (0 keeps the item's own).
void PurchasePriceFromSale(ItemData& item, Real lessBy);
// The reminder of a contractor's discount on a sale kind; empty when none.
ShortText DiscountReminder(int kind, Real discount, bool remind);

// The screens: the stock check of steps 5 and 6, the orders, the returns.
// previous is the quantity the line had (0 for a new one). false when the
// line must stay as it was; q receives the quantity that goes in.
bool CheckLineQuantity(int32_t warehouse, int kind, const ShortText& workTable, const DocLine& line, Real& q,
                       LineMemory& memory);
// The sum of the item's quantity on the work table, other rows than skipRow.
[[nodiscard]] int16_t QuantityOnList(const ShortText& workTable, int32_t item, int64_t skipRow, Real& sum);
// The prices of a new line by the kind, with the discount reminder; header may be null.
void PriceNewLine(int kind, const DocumentHeader* header, DocLine& line);
// false (after the refusal) when the item cannot go on a line list of this header.
bool ItemFitsHeader(int kind, const DocumentHeader* header, const ItemData& item);

// --- Leaving and dropping ---
inline constexpr int kLongListLines = 20;
ShortText DropQuestion(int lines);
ShortText LeaveQuestion(bool changeMode);
// The fiscal limit of a retail sale's lines by the long-receipt option.
enum class LineLimit : int8_t { kFine, kAsk, kRefuse };
LineLimit FiscalLineLimit(int kind, int lines, int option);
ShortText FiscalLimitText(LineLimit verdict, int option);
// The limit's question or refusal for the lines; false when the save must not go on.
bool PassesFiscalLimit(int kind, std::span<const DocLine> lines);

// --- The save's checks of the whole line list ---
enum class SupplierRule : int8_t { kAny, kWarn, kRequire };
SupplierRule KindSupplierRule(int kind);
// The 1-based position of the first line whose supplier differs from the
// first line's (lines of supplier 0 and quantity 0 left out); 0 when none.
int DifferentSupplierAt(std::span<const DocLine> lines);
// The refusal of a kind 2 document under the least value; empty when it passes.
ShortText MinimumValueRefusal(int kind, Real total, Real limit, const ShortText& name, const ShortText& otherName);
// With orders kept, each positive issue is cut to what the stock holds
// beyond the ordered amount (a later line of the item sees what the earlier
// left); true when a line was cut.
bool LimitToUnreserved(std::vector<DocLine>& lines, const StockLevels& levels);
// Steps before the writes: the least value, the suppliers. false when the save is given up.
bool PassesSaveChecks(const DocumentHeader& header, std::span<const DocLine> lines, int vatMode);

}  // namespace entrydetail
