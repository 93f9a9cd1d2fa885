// The printed layout of the turnover analysis.
#include <string>

#include "base/dates.h"
#include "base/mazovia.h"
#include "base/numbers_format.h"
#include "base/text.h"
#include "reports/reportlines.h"
#include "reports/turnover.h"

namespace {

std::vector<std::string> HeadLines(const TurnoverParams& p) {
  std::vector<std::string> head;
  head.push_back(Str("Dynamika obrotów dla: "_mz + p.title));
  head.push_back(Str("Okres: od "_mz) + DisplayDate(p.from) + " do " +
                 DisplayDate(p.to));
  if (p.issuesPositive) head.push_back(Str(kIssuesPositiveText));
  head.push_back(std::string(110, '-'));
  head.push_back(Str("Nr wewn. Nazwa towaru                         Obrót (A)      Stan (B)   %(A/B) Wart.zak.brutto"
                     " Wart.sprz.brutto"_mz));
  head.push_back(std::string(110, '-'));
  return head;
}

std::string RowLine(const TurnoverRow& r) {
  return Str(IntText(r.item, 8)) + " " + Cell(r.name, 31) + " " + Str(FormatFixed(13, 3, r.turnover)) + " " +
         Str(FormatFixed(13, 3, r.stockBefore)) + " " + Str(FormatFixed(8, 2, r.percent)) + " " +
         Str(FormatFixed(15, 2, r.purchaseGross)) + " " + Str(FormatFixed(16, 2, r.saleGross));
}

std::vector<std::string> TotalLines(const TurnoverTotals& t) {
  return {std::string(110, '-'),
          Str(kSumQuantityText) + Str(FormatFixed(16, 3, t.turnover)),
          Str(kSumPurchaseGrossText) + Str(FormatFixed(16, 2, t.purchaseGross)),
          Str(kSumPurchaseNetText) + Str(FormatFixed(16, 2, t.purchaseNet)),
          Str(kSumSaleGrossText) + Str(FormatFixed(16, 2, t.saleGross))};
}

}  // namespace

std::string FormatTurnoverReport(const TurnoverParams& p, const std::vector<TurnoverRow>& rows, int linesPerPage) {
  const std::vector<std::string> head = HeadLines(p);
  std::vector<std::string> body;
  for (const TurnoverRow& r : rows) body.push_back(RowLine(r));
  for (std::string& line : TotalLines(SumTurnover(rows))) body.push_back(std::move(line));
  return Paginate(head, body, linesPerPage);
}
