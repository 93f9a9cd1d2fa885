// Turnover and stock analyses over many warehouses. The documents of each
// warehouse lie in tables of their own, so an analysis is a pipeline of SQL
// statements into the session's temporary tables (TMP_A, TMP_S), one
// statement per warehouse and step, the joins and sums done on the
// server: no line of specyfik is ever walked by the program. The result is
// the table "obrotydb" in the user's directory, one row per item:
//   ilosc      turnover (A): quantities of the chosen kinds in the period,
//              issues with their minus sign unless issuesPositive
//   stan_pocz  stock before the period (B): every line dated before it, by its kind's stock sign
//   bil_na_st  100 * A / B, 0 where B is 0
//   sp_nett, sp_brutt, zak_nett, zak_brutt  values of the turnover at the lines' sale and purchase prices
//   nazwa, nazwa_, vat, gr_tow/grtow, dost_nr, dost_naz, pkwiu  from the item catalogue
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "base/real.h"
#include "base/shorttext.h"

// Sort orders of the dynamics of turnover, as its dialog numbers them.
enum class TurnoverSort : uint8_t { kName = 1, kSupplier, kTurnover, kStock, kPercent, kSalePrice };

struct TurnoverParams {
  ShortText title;
  int32_t from = 0;  // day serials, both days included
  int32_t to = 0;
  std::vector<int32_t> warehouses;  // in number order
  std::vector<int16_t> kinds;       // document kinds counted as turnover
  std::vector<int32_t> suppliers;   // empty: every supplier
  std::vector<int32_t> items;       // empty: every item
  bool issuesPositive = false;      // the operator switched the sign of issues
  TurnoverSort sort = TurnoverSort::kName;
  bool descending = false;
};

struct TurnoverRow {
  int32_t item = 0;
  ShortText name;
  ShortText supplierName;
  Real turnover = 0;
  Real stockBefore = 0;
  Real percent = 0;
  Real saleNet = 0, saleGross = 0, purchaseNet = 0, purchaseGross = 0;
};

struct TurnoverTotals {
  Real turnover = 0, purchaseGross = 0, purchaseNet = 0, saleGross = 0, saleNet = 0;
};

// Told each step ("1-A" ... "X-G") and, within the per-warehouse steps, the
// warehouse done of the count; the screen shows it while the run goes on.
using AnalysisProgress = void (*)(const char* step, int done, int total);

// The result table of the current user.
ShortText TurnoverTablePath();
// Runs the pipeline into the result table; a failing statement ends the
// program through the table layer's check. Items of the result missing from
// the catalogue come back in missingItems.
void RunTurnoverAnalysis(const TurnoverParams& params, AnalysisProgress progress, std::vector<int32_t>& missingItems);
// The rows of the result table in the order asked.
std::vector<TurnoverRow> ReadTurnoverRows(const TurnoverParams& params);
TurnoverTotals SumTurnover(const std::vector<TurnoverRow>& rows);
// The printed report: title, period, column heads, rows, pages of linesPerPage
// separated by form feeds, and the totals at the end.
std::string FormatTurnoverReport(const TurnoverParams& params, const std::vector<TurnoverRow>& rows, int linesPerPage);
