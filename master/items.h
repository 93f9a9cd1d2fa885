// The item catalogue and the stock of the warehouses. Every item has one row
// in dane\kat_tow_ under its internal number nr_wewn (1..2,147,483,647, never
// reused, never changed); each warehouse keeps its quantities and sale
// prices in its own dane\<folder>\stany_mg, tied to the catalogue only by
// that number. A catalogue row without a stock row stands for zero stock.
// An item is active while column ilosc of the catalogue is 0.0, hidden
// while it is NULL.
//
// Functions here have no screens: the demo firm, the catalogue's screens and
// the document save call them. Table codes go back to the caller (who passes
// them to CheckDBError); a refusal of the data is a system message in
// `refusal`, with nothing written.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "base/real.h"
#include "base/shorttext.h"

inline constexpr const char* kKatTowTable = "dane\\kat_tow_";
// The copy of the items deleted for having no turnover (the catalogue's columns).
inline constexpr const char* kKeptItemsTable = "dane\\kat_towz";
inline constexpr int32_t kItemNumberMax = 2147483647;
inline constexpr int64_t kDigitIndexMax = 999999999999999LL;
// The grouped stock view sums at most this many warehouses; the rest are left out.
inline constexpr int kStockViewMaxWarehouses = 320;

// One row of the catalogue (the 24 columns and the discount lock).
struct ItemData {
  ShortText name, name2;          // nazwa, nazwa_
  Real buyNet = 0, buyGross = 0;  // cena_z_n, cena_z_b
  ShortText vat;                  // VAT group, "23", "8", "zwol." ...
  ShortText sww;
  ShortText vatPayer;             // czy_od_pl_vat
  int32_t number = 0;             // nr_wewn, given by ItemAdd
  ShortText code;                 // indeks_znakowy_isbn
  int64_t digitIndex = 0;         // indeks_numeryczny
  int32_t supplier = 0;           // dostawca
  ShortText place;                // miejsce_w_magazynie
  ShortText keys[5];              // k1..k5
  Real saleNet = 0, saleGross = 0;  // cena_s_n, cena_s_b
  bool active = true;             // ilosc: 0.0 active, NULL hidden
  ShortText unit;                 // jednostka
  Real packQuantity = 0;          // ilosc_w_opak
  ShortText supplierText;         // dostawca_opis
  Real ordered = 0;               // il_zamowiona
  int16_t discountLock = 0;       // blok_rab
};

class PGResult;
// The catalogue's item columns of a query row whose column c+1 is nazwa (the
// first 24 columns of kat_tow_ and of the users' work tables). Column 20 is
// left out: the catalogue keeps whether the item is active there, a work
// table the line's quantity.
void ItemFieldsFromRow(const PGResult& res, int r, int c, ItemData& item);

// One row of a warehouse's stany_mg.
struct StockRow {
  int32_t number = 0;    // nr_wewn
  Real quantity = 0;     // ilosc
  Real ordered = 0;      // ilosc_zamowiona_odb
  Real saleNet = 0;      // csn
  Real saleGross = 0;    // csb
  int32_t link = 0;      // nr_zwiaz
  ShortText mark;        // oznacz
};

// What the configuration says about new items.
struct ItemRules {
  int minCodeLength = 0;          // 0: no minimum for the character index
  bool digitIndexAfterHighest = false;  // a missing digit index: highest + 1, else the first free one
};

// --- Pure rules ---
// The number of a VAT group text ("23" -> 23, "zwol." -> 0): a text that is no number gives 0.
Real VatRateOf(const ShortText& vat);
// Gross from net and net from gross through the rate of the group; a rate of 0 or -100 means no VAT.
Real GrossFromNet(Real net, const ShortText& vat);
Real NetFromGross(Real gross, const ShortText& vat);
// price rounded to a step: RoundHalfAway(price / step) * step; a step of 0 leaves the price.
Real RoundToStep(Real price, Real step);
// A sale price from a purchase price: by a margin (part of the sale price)
// or by a mark-up (part of the purchase price), percent given.
Real SaleFromPurchase(Real purchase, Real percent, bool margin);
// The refusal of a new item's data, checked in the order of the form; empty when fine.
ShortText CheckItemData(const ItemData& item, const ItemRules& rules);
// Quantities and prices beyond the column (28 digits, 7 decimals) or not finite.
bool AmountInRange(Real value);

// --- The catalogue ---
// Adds an item: checks the data, refuses a row equal on both names, vat, sww
// and czy_od_pl_vat or one with the same (not blank) character index, gives it the next internal number (and a digit index
// when it has 0) under the catalogue's lock, and writes it with its stock
// row in the warehouse (when warehouse > 0): the quantity, link and mark of
// stock, nothing ordered, the item's sale prices. item.number receives the number.
[[nodiscard]] int16_t ItemAdd(ItemData& item, const ItemRules& rules, int32_t warehouse, const StockRow& stock,
                              ShortText& refusal);
// The row of an internal number; found false when there is none.
[[nodiscard]] int16_t ItemFindByNumber(int32_t number, ItemData& item, bool& found);
// The first row (in internal-number order) with that character index.
[[nodiscard]] int16_t ItemFindByCode(const ShortText& code, ItemData& item, bool& found);
// The first row with that digit index.
[[nodiscard]] int16_t ItemFindByDigitIndex(int64_t digitIndex, ItemData& item, bool& found);
// The first row (in internal-number order) equal to item on the catalogue's
// key: both names, vat, sww and czy_od_pl_vat.
[[nodiscard]] int16_t ItemFindByFeatures(const ItemData& item, ItemData& found, bool& exists);
// The first row by name order whose name starts with prefix.
[[nodiscard]] int16_t ItemFindByName(const ShortText& prefix, ItemData& item, bool& found);
// Writes the item's prices over its catalogue row; found false (nothing written) when it is gone.
[[nodiscard]] int16_t ItemStorePrices(const ItemData& item, bool& found, ShortText& refusal);
// Activates or hides an item by the columns 8 and 20 named in tables_list.
[[nodiscard]] int16_t SetItemActive(int32_t number, bool active);
// Sets the discount lock.
[[nodiscard]] int16_t SetItemDiscountLock(int32_t number, int16_t value);

// --- Stock ---
// The stock row of an item in a warehouse; found false when there is none.
[[nodiscard]] int16_t StockRead(int32_t warehouse, int32_t number, StockRow& row, bool& found);
// Writes the row (adds it when missing).
[[nodiscard]] int16_t StockSet(int32_t warehouse, const StockRow& row, ShortText& refusal);
// Adds delta to the quantity (a missing row starts at 0 with the catalogue's
// sale prices). The caller holds the locks of the document save.
[[nodiscard]] int16_t StockChange(int32_t warehouse, int32_t number, Real delta, ShortText& refusal);
// Sets the warehouse's sale prices of the item.
[[nodiscard]] int16_t StockStorePrices(int32_t warehouse, int32_t number, Real net, Real gross);

// Where a changed sale price goes: the numbers of the scope question.
enum class ItemPriceScope : uint8_t { kWarehouse = 1, kCatalogueAndWarehouse = 2, kEverywhere = 3 };
// Sets an item's gross sale price (net through its VAT group) in the scope:
// the current warehouse's stock row (added with quantity 0 when missing),
// and the catalogue (with the users' tables, ItemWalkUserTables), and every
// warehouse of dane\magazyny marked Z. found false when the item is gone; a
// refusal leaves everything as it was.
[[nodiscard]] int16_t ItemChangeSalePrice(int32_t number, Real gross, ItemPriceScope scope, int32_t warehouse,
                                          bool& found, ShortText& refusal);

// --- Changes and maintenance ---
// Told what an item change is walking through ("Zmiana pozycji w magazynie nr 2"...).
using ItemWalkReport = std::function<void(const ShortText&)>;
// True when the catalogue's key of the item changes: the names, vat, sww or the VAT-payer text.
bool ItemKeyChanged(const ItemData& before, const ItemData& after);
// Writes a changed item in the scope: the current warehouse's sale prices
// only; or the whole catalogue row and those prices; or the row and the
// sale prices of every warehouse. A changed key goes into the lines of
// goods documents of every warehouse; a change of the catalogue row goes
// into the users' work tables and work files (ItemWalkUserTables). A row that would repeat another's key
// or character index is refused; found false when the item is gone; on any
// refusal or failure nothing is written.
[[nodiscard]] int16_t ItemEdit(const ItemData& item, ItemPriceScope scope, int32_t warehouse,
                               const ItemWalkReport& report, bool& found, ShortText& refusal);
// Carries a changed item into every user's praca___ and plikrob_: their
// rows of the item take its names, VAT group, indexes and the other
// descriptive columns; a row's price pair follows only when it held the
// catalogue's old pair (a price of the row's own stays). Told per table.
[[nodiscard]] int16_t ItemWalkUserTables(const ItemData& before, const ItemData& after, const ItemWalkReport& report);
// Deletes an item with its stock rows. An item with lines in any warehouse,
// or stock held or ordered, stays (hadTurnover), only its empty stock rows go.
[[nodiscard]] int16_t ItemDelete(int32_t number, bool& found, bool& hadTurnover);
// Stock rows of a warehouse by the sign of the quantity.
struct StockCounts {
  long positive = 0, negative = 0, zero = 0, all = 0;
};
[[nodiscard]] int16_t StockCountIn(int32_t warehouse, StockCounts& counts);
// The rows of a user's work file by the sign of their quantity; exists false (all 0) when he has none.
[[nodiscard]] int16_t WorkFileCountIn(int32_t user, StockCounts& counts, bool& exists);
// Deletes the stock rows with nothing in stock and nothing ordered, in one
// warehouse or (warehouse 0) in all; removed receives how many.
[[nodiscard]] int16_t RemoveZeroStock(int32_t warehouse, long& removed);
// Also deletes the items without any line in any warehouse and with nothing
// in stock or ordered, keeping their rows in dane\kat_towz; removed
// receives how many items went.
[[nodiscard]] int16_t RemoveItemsWithoutTurnover(long& removed);
// Hides the active items without a line dated on or after since
// ("DD-MM-RRRR") and with nothing in stock or ordered, telling step 1..4.
[[nodiscard]] int16_t HideUnusedItems(const ShortText& since, const std::function<void(int)>& step, long& hidden);
// Sets to 0 the digit indexes below 0 or above limit.
[[nodiscard]] int16_t ZeroDigitIndexes(int64_t limit, long& changed);
// Gives every repeated digit index (but its first holder) a new one above the
// highest; refused with the system's message when they would pass the range.
[[nodiscard]] int16_t RepairDigitIndexes(long& changed, ShortText& refusal);
// The first item (name order) whose catalogue column field (1..24) holds the
// whole value (texts without trailing blanks, numbers by value).
[[nodiscard]] int16_t ItemFindByField(int field, const ShortText& value, ItemData& item, bool& found);
// Whether the supplier's row bears the closed mark (Z in its status column).
[[nodiscard]] int16_t SupplierClosed(int32_t supplier, bool& closed);

// (Re)creates the session's TMP_VIEW_STANYX over the warehouses of
// dane\magazyny marked Z (at most 320); warehouses receives how many it spans
// (0: no view, no such warehouse).
[[nodiscard]] int16_t BuildStockView(int& warehouses);

// --- The joined list ---
enum class ItemListStock : uint8_t { kAll, kNonZero, kWithTurnover };
struct ItemListKind {
  ItemListStock stock = ItemListStock::kAll;
  bool activeOnly = false;
  bool grouped = false;  // stock over all warehouses (TMP_VIEW_STANYX), else the current one
};
// One row of the list: the catalogue row and its stock.
struct ItemListRow {
  int64_t rowId = 0;
  ItemData item;
  Real quantity = 0;
  Real saleNet = 0, saleGross = 0;
};
// The position of a row in the list's order, for reading on from it.
struct ItemListKey {
  bool set = false;        // false: from the start (or the end)
  bool inclusive = false;  // the row of the key itself is read too
  ShortText name, name2;
  int64_t rowId = 0;
};
// The select of up to limit rows of the list after (forward) or before the
// key, in name order; the joined form of the kind.
std::string ItemListQuery(const ItemListKind& kind, int32_t warehouse, const ItemListKey& from, bool forward,
                          int limit);
// The same with a further SQL condition on the catalogue row K (and stock S).
std::string ItemListQueryWhere(const ItemListKind& kind, int32_t warehouse, const ItemListKey& from, bool forward,
                               int limit, const std::string& condition);
// Runs it; rows in list order (also when read backwards).
[[nodiscard]] int16_t ItemListRead(const ItemListKind& kind, int32_t warehouse, const ItemListKey& from,
                                   bool forward, int limit, std::vector<ItemListRow>& rows);
// The first row after the key whose name (both parts) holds the fragment.
[[nodiscard]] int16_t ItemListFind(const ItemListKind& kind, int32_t warehouse, const ItemListKey& from,
                                   const ShortText& fragment, std::vector<ItemListRow>& rows);
// The list's row of an internal number (none when the kind leaves it out).
[[nodiscard]] int16_t ItemListRowOf(const ItemListKind& kind, int32_t warehouse, int32_t number,
                                    std::vector<ItemListRow>& rows);
// The key of a row.
ItemListKey ItemListKeyOf(const ItemListRow& row);

// --- Screens ---
// The "Katalog towarów" function over the current warehouse.
void ItemCatalogue(int32_t warehouse);
// The form "Dopisanie nowej kartoteki towarowej:"; the key fields are open to
// everyone, the purchase price to those who may see purchase prices. True
// with the new item's number when it was added.
bool AddItem(int32_t warehouse, const ItemRules& rules, int32_t& number);
// The form "Korekta danych ...": key fields for those who may edit the
// catalogue's key, purchase price for those who may see purchase prices;
// then the scope question and the change. True when the change was written.
bool EditItem(int32_t warehouse, int32_t number);
// Deletes the shown item after the questions (full rights only); true when it went.
bool DeleteItem(const ItemData& shown);
// Activates a hidden item or hides an active one after the question (full rights only).
bool AskItemActive(const ItemData& shown);
// Switches the discount lock (full rights only).
bool AskDiscountLock(const ItemData& shown);
// The rounding and discount dialogue over the shown sale price, then the
// scope question and the change. True when a price was written.
bool ChangePrices(int32_t warehouse, const ItemListRow& shown);
// Chooses the list's view; false for Esc.
bool ChooseListKind(ItemListKind& kind);
// "Wybierz, według jakiego pola szukać:" and "Podaj pełną wartość pola: ";
// found receives the item.
bool FindItemByAnyField(ItemData& item);
// The maintenance functions of the catalogue, from their menu.
void CatalogueMaintenance(int32_t warehouse);
