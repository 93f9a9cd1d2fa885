// The item analyses beside the dynamics of turnover: turnover of items (over
// one period or a table of date ranges), stock with turnover, deposit totals
// at customers and remanent differences. All run one pipeline of SQL into the
// session's temporary tables, one statement per warehouse and part, joined
// and summed on the server:
//   TMP_R  the date ranges (N, OD, DD); one range unless the operator made more
//   TMP_A  the analysis's own lines of each warehouse by range, item and purchase price:
//          turnover of the chosen kinds, counted quantities of the remanent
//          (opening balances in the range) or quantities still on deposit
//   TMP_S  stock by range and item: every line dated up to the range's end
//          (before its start for the remanent), signed by its kind's effect
//   TMP_B  the count of purchase prices of each item's own lines (more than
//          one is told as an anomaly of the data)
//   TMP_Y  the item group filter
// Stock is valued at the catalogue's purchase price (gross) of the item.
// The result is the table "analizdb" in the user's directory, one row per
// range and item. No line of specyfik is walked by the program.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "base/real.h"
#include "base/shorttext.h"
#include "reports/turnover.h"

enum class ItemAnalysis : uint8_t { kItemTurnover, kStockTurnover, kDeposits, kRemanent };

// Sort orders of the turnover of items, as its dialog numbers them.
enum class ItemSort : uint8_t { kName = 1, kQuantity, kMargin, kPurchase, kSale };

struct DateRange {
  int32_t from = 0, to = 0;  // day serials, both days included
};

struct ItemAnalysisParams {
  ItemAnalysis analysis = ItemAnalysis::kItemTurnover;
  ShortText title;
  std::vector<DateRange> ranges;      // at least one
  std::vector<int32_t> warehouses;    // in number order
  std::vector<int16_t> kinds;         // turnover kinds (turnover of items, stock with turnover)
  std::vector<ShortText> groups;      // item groups (k3_grupa_tow or k4); empty: every item
  bool issuesPositive = false;        // the operator switched the sign of issues
  bool dropZeroStock = false;         // stock with turnover: rows of stock 0 left out
  Real noTurnoverFrom = 0, noTurnoverTo = 0;  // percent of turnover counted as "bez obrotu"
  ItemSort sort = ItemSort::kName;
  bool descending = false;
};

struct ItemAnalysisRow {
  int32_t range = 0;  // 1-based index into params.ranges
  int32_t item = 0;
  ShortText name;
  Real quantity = 0;                   // turnover (signed issues unless switched)
  Real purchaseNet = 0, saleNet = 0, saleGross = 0, margin = 0;
  Real stock = 0;                      // at the range's end; before its start for the remanent
  Real price = 0;                      // the catalogue's purchase price, gross
  Real stockValue = 0;                 // stock * price
  Real percent = 0;                    // 100 * turnover / stock, 0 where stock is 0
  Real counted = 0, difference = 0, differenceValue = 0;  // remanent: counted, counted - book
  Real fromSuppliers = 0, atCustomers = 0;                 // still on deposit
  bool noTurnover = false;
};

struct ItemAnalysisOutcome {
  std::vector<int32_t> missingItems;  // in the result, not in the catalogue
  bool priceAnomaly = false;          // an item of the result whose own lines carry several purchase prices
};

// The result table of the current user.
ShortText ItemAnalysisTablePath();
// Runs the pipeline into the result table, telling each step to progress; the
// stock with turnover locks each warehouse's lines in turn while it reads them.
void RunItemAnalysis(const ItemAnalysisParams& params, AnalysisProgress progress, ItemAnalysisOutcome& outcome);
// The rows of the result table: by range, then in the order asked.
std::vector<ItemAnalysisRow> ReadItemAnalysisRows(const ItemAnalysisParams& params);
// The printed report: heads, rows, pages of linesPerPage separated by form
// feeds, and the analysis's totals at the end.
std::string FormatItemAnalysis(const ItemAnalysisParams& params, const std::vector<ItemAnalysisRow>& rows,
                               int linesPerPage);

// The dialog of an analysis (title, period or ranges, warehouses, kinds and
// what the analysis asks besides). False when the operator gave up or a
// choice left nothing to analyse (the system's message told).
bool AskItemAnalysisParams(ItemAnalysisParams& params);
// Runs with progress on the screen, tells the anomalies, writes the print
// file and hands it to PrintDestination. False when nothing was printed.
bool RunItemAnalysisReport(const ItemAnalysisParams& params);

// Menu entries: "Analizy towarowe - rozszerzone" (turnover of items),
// "Zestawienia stanów i towary bez obrotu", "Zestawienia specjalne" (a choice
// of the deposit totals and the remanent differences).
void ItemTurnoverEntry();
void StockTurnoverEntry();
void SpecialListsEntry();
