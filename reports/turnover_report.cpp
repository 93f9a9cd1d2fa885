// The printed layout of the turnover analysis.
#include <algorithm>
#include <string>

#include "base/dates.h"
#include "base/mazovia.h"
#include "base/numbers_format.h"
#include "base/text.h"
#include "reports/turnover.h"

namespace {

std::string Str(const ShortText& t) { return std::string(t.View()); }

std::string Cell(const ShortText& text, int width) { return Str(PadRight(text.Copy(1, width), " ", width)); }

std::string DisplayDate(int32_t serial) {
  int y = 1, m = 1, d = 1;
  (void)DecodeDaySerial(serial, y, m, d);
  return Str(DateFromParts(d, m, y));
}

std::vector<std::string> HeadLines(const TurnoverParams& p) {
  std::vector<std::string> head;
  head.push_back(Str("Dynamika obrotów dla: "_mz + p.title));
  head.push_back(Str("Okres: od "_mz) + DisplayDate(p.from) + " do " +
                 DisplayDate(p.to));
  if (p.issuesPositive) head.push_back(Str("Uwaga ! rozchody wyjątkowo przyjęto ze znakiem \"+\"."_mz));
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
          Str("SUMA ILOŚCI                               :"_mz) + Str(FormatFixed(16, 3, t.turnover)),
          Str("SUMA WG CEN ZAKUPU BRUTTO                 :"_mz) + Str(FormatFixed(16, 2, t.purchaseGross)),
          Str("SUMA WG CEN ZAKUPU NETTO :"_mz) + Str(FormatFixed(16, 2, t.purchaseNet)),
          Str("SUMA WG CEN SPRZEDAŻY BRUTTO :"_mz) + Str(FormatFixed(16, 2, t.saleGross))};
}

}  // namespace

std::string FormatTurnoverReport(const TurnoverParams& p, const std::vector<TurnoverRow>& rows, int linesPerPage) {
  const std::vector<std::string> head = HeadLines(p);
  std::vector<std::string> body;
  for (const TurnoverRow& r : rows) body.push_back(RowLine(r));
  for (std::string& line : TotalLines(SumTurnover(rows))) body.push_back(std::move(line));
  const int room = std::max(1, linesPerPage - static_cast<int>(head.size()));
  std::string out;
  for (std::size_t i = 0; i < body.size(); ++i) {
    if (i % static_cast<std::size_t>(room) == 0) {
      if (i > 0) out.push_back('\f');
      for (const std::string& line : head) out += line + "\r\n";
    }
    out += body[i] + "\r\n";
  }
  return out;
}
