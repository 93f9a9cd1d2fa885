// The cash analyses: the day-by-day summary of the cash of chosen warehouses
// (payments of kasa____ and retail sales paid in cash), printable as a cash
// report with a symbol and an opening balance, and the check of the deposit
// marks of every goods document of the firm.
//
// Rules kept here:
// - a payment counts as income or expense by its kind's income mark in
//   dane\dok_plat ('N' is expense); a kind missing from the catalogue counts
//   as income, as the balance of a document takes it;
// - a retail sale (kind 1) paid " gotówką" is income of its day, so a till's
//   takings show without a payment row;
// - closing balance = opening + income - expense, each rounded to the grosz.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "base/mazovia.h"
#include "base/real.h"
#include "base/shorttext.h"

inline constexpr ShortText kCashAnalysesTitle = "Analizy dokumentów kasowych i ich podsumowania"_mz;
inline constexpr ShortText kCashDaySummaryText = "Podsumowanie kasy za wybrany dzień"_mz;

struct CashParams {
  int32_t from = 0;  // day serials, both days included
  int32_t to = 0;
  std::vector<int32_t> warehouses;  // in number order
  bool splitByWarehouse = false;
  ShortText symbol;  // blank: not a cash report
  Real opening = 0;  // opening balance of the cash report
};

// Income and expense of one day; warehouse 0 when the warehouses are summed.
struct CashDay {
  int32_t warehouse = 0;
  int32_t date = 0;
  Real income = 0;
  Real expense = 0;
};

struct CashTotals {
  Real income = 0;
  Real expense = 0;
  Real closing = 0;
};

// The days with any cash in the period, by warehouse (when split) and date.
std::vector<CashDay> ReadCashDays(const CashParams& params);
// Totals of days, closing from the opening balance; rounded to the grosz.
CashTotals SumCashDays(const std::vector<CashDay>& days, Real opening);
// The printed report: heads, a line a day, totals for each warehouse when
// split and for the whole, the opening and closing balance; pages of
// linesPerPage separated by form feeds.
std::string FormatCashReport(const CashParams& params, const std::vector<CashDay>& days, int linesPerPage);
// The dialog: period, warehouses, the split, the symbol and (with a symbol)
// the opening balance. False when the operator gave up.
bool AskCashParams(CashParams& params);

// --- The deposit marks of the whole database ---
enum class DepositFault : uint8_t {
  kNone,
  kHeaderWithoutLines,      // a deposit header with no lines at all
  kNoLineMarked,            // a deposit header, none of its lines on deposit
  kSomeLinesUnmarked,       // a deposit header, only some lines on deposit
  kHeaderUnmarked,          // lines on deposit under a header without the mark
};
// How a header's mark and its lines disagree: lines is the count of lines,
// onDeposit those with ilosc_w_depozycie other than 0.
DepositFault DepositFaultOf(bool headerMarked, int lines, int onDeposit);
// The system's text of a fault.
ShortText DepositFaultText(DepositFault fault);

struct DepositFinding {
  int32_t warehouse = 0;
  int16_t kind = 0;
  int32_t coded = 0;
  ShortText mark;
  int32_t date = 0;
  DepositFault fault = DepositFault::kNone;
};
// Every document of the warehouses of dane\magazyny whose mark and lines disagree.
std::vector<DepositFinding> CheckDepositMarks();
std::string FormatDepositReport(const std::vector<DepositFinding>& findings, int linesPerPage);

// The menu entry: the day summary of the cash or the check of the deposit marks.
void CashAnalysesEntry();
