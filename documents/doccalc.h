// The arithmetic of a document: line values, VAT groups, totals, stock
// effects with their reductions, and the prices of a discount. Everything
// here is a pure function of its arguments: the entry screen and the save
// call it, the tables stay with them.
//
// Rules kept here:
// - a line's value is RoundHalfAway(100 * quantity * price) / 100, and the
//   VAT groups sum those rounded values, never a rounded sum;
// - at most 29 VAT groups, keyed by the whole number of the line's VAT text;
//   a 30th goes into the last group and marks the table as overflowed;
// - the total is rounded once more at the end.
#pragma once

#include <array>
#include <cstdint>
#include <map>
#include <span>
#include <vector>

#include "base/mazovia.h"
#include "base/real.h"
#include "base/shorttext.h"
#include "documents/dockinds.h"
#include "master/items.h"

inline constexpr int kMaxVatGroups = 29;
inline constexpr ShortText kTooManyVatGroupsText =
    "Wykryto więcej, niż 29 stawek VAT.@Obliczenie będzie niepoprawne."_mz;

// One document line as praca___ holds it: the 24 catalogue
// columns (with the line's own prices in cena_z_*, cena_s_*) and the quantity.
struct DocLine {
  int64_t rowId = 0;  // the row of praca___; 0 for a line not stored
  ItemData item;
  Real quantity = 0;                         // column 20
  Real catalogueNet = 0, catalogueGross = 0;  // the catalogue's sale prices at the save
};

// RoundHalfAway(100 * quantity * price) / 100, on the decimal value of the product.
Real LineValue(Real quantity, Real price);
// A money value rounded half away from zero to the grosz, as its decimal value would be.
Real RoundMoney(Real value);

struct VatGroup {
  int rate = 0;  // whole number of the VAT text
  Real net = 0, vat = 0, gross = 0;
};

// The groups of one document in order of first appearance.
class VatGroups {
 public:
  // Adds a line's amounts to the group of the rate (a new group when first seen).
  void Add(int rate, Real net, Real vat, Real gross);
  int Count() const { return count_; }
  const VatGroup& operator[](int i) const { return groups_[static_cast<std::size_t>(i)]; }
  // A 30th rate was seen; its amounts went into the last group.
  bool Overflowed() const { return overflowed_; }

 private:
  std::array<VatGroup, kMaxVatGroups> groups_{};
  int count_ = 0;
  bool overflowed_ = false;
};

// The group key of a VAT text: its whole number ("23" 23, "zw" 0).
int VatGroupKey(const ShortText& vat);

// How a document's total is made.
enum class TotalMethod : int8_t {
  kGrossFromNetGroups,       // sale prices: net lines, VAT added per group
  kGrossLines,               // sale prices: the sum of gross line values
  kPurchaseGrossFromGroups,  // purchase prices: net lines, VAT added per group
  kPurchaseNet,              // purchase prices net, no VAT
};

// The VAT mode of invoices (configuration line 176).
inline constexpr int kConfigLineInvoiceVatMode = 176;

// The method of a kind under the invoice VAT mode (0..3; another value counts
// as 0). Retail sale sums gross prices; invoices to firms (2, 3) and to
// others (4, 5) follow the mode; purchases add VAT to purchase prices; other
// moves of goods are valued net at purchase prices.
TotalMethod KindTotalMethod(int kind, int vatMode);
// The line of the sum screen that names the method.
ShortText TotalMethodText(TotalMethod method);

struct DocumentTotals {
  Real total = 0;
  Real buyNet = 0, buyGross = 0;    // values in purchase prices
  Real saleNet = 0, saleGross = 0;  // values in sale prices
  Real catalogueNet = 0, catalogueGross = 0;
  Real discount = 0;  // catalogue gross less sale gross
  VatGroups groups;
};

// The totals of the lines by the method; lines with quantity 0 count nothing.
DocumentTotals ComputeTotals(std::span<const DocLine> lines, TotalMethod method);

// --- Stock ---
struct StockLevel {
  Real quantity = 0;  // ilosc
  Real ordered = 0;   // ilosc_zamowiona_odb
  bool exists = false;
  bool operator==(const StockLevel&) const = default;
};
using StockLevels = std::map<int32_t, StockLevel>;

// What the save does to stock: the quantity of each line after reductions
// (same order as the lines), the levels after the document, and whether any
// line was reduced.
struct StockPlan {
  std::vector<Real> quantities;
  StockLevels after;
  bool reduced = false;
};
// Applies the lines one after another to the levels before the document.
// An issue by a user who may not go below zero takes at most what is in
// stock (nothing when the stock is 0 or less); a second line of an item
// sees what the first left. Items without a level start at 0; an effect
// other than kNone gives every touched item a level.
StockPlan PlanStock(std::span<const DocLine> lines, StockEffect effect, bool mayGoBelowZero,
                    const StockLevels& before);
// The quantity of an issue that the stock allows; reduced tells whether it is less than asked.
Real AllowedIssue(Real asked, Real stock, bool mayGoBelowZero, bool& reduced);

// --- Entry ---
// Available stock of an item: the warehouse's quantity less what the
// line list already holds of it (other lines than skipRow).
Real AvailableStock(Real stock, std::span<const DocLine> lines, int32_t item, int64_t skipRow);
// Whether the kind's quantities are checked against stock when entered.
bool KindChecksAvailability(int kind);

// The discounted price of a line: p less d percent, rounded to the step;
// with a VAT-dependent reduction a gross discount turns into net through the
// rate. Rates 0 and -100 mean no VAT.
Real DiscountedPrice(Real price, Real percent, Real step, bool vatDependent, Real rate);
// The gross price of a net price by the rate: RoundHalfAway(p * (100 + r)) / 100, p for 0 and -100.
Real GrossOfNet(Real net, Real rate);
