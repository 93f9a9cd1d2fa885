// The printed layouts of the item analyses: one table of columns and totals per analysis.
#include <string>

#include "base/mazovia.h"
#include "base/numbers_format.h"
#include "base/text.h"
#include "documents/dockinds.h"
#include "reports/itemanalyses.h"
#include "reports/reportlines.h"

namespace {

using Field = Real ItemAnalysisRow::*;

struct Column {
  ShortText head;
  int width;
  int decimals;
  Field field;
};

struct Total {
  ShortText label;
  int decimals;
  Real (*value)(const ItemAnalysisRow&);
};

struct Layout {
  std::vector<Column> columns;
  std::vector<Total> totals;
  bool markNoTurnover = false;
  ShortText closing;  // a line before the totals
};

Real Quantity(const ItemAnalysisRow& r) { return r.quantity; }
Real PurchaseNet(const ItemAnalysisRow& r) { return r.purchaseNet; }
Real SaleGross(const ItemAnalysisRow& r) { return r.saleGross; }
Real Stock(const ItemAnalysisRow& r) { return r.stock; }
Real StockValue(const ItemAnalysisRow& r) { return r.stockValue; }
Real StockLessDeposits(const ItemAnalysisRow& r) { return (r.stock - r.fromSuppliers) * r.price; }
Real StockWithDeposits(const ItemAnalysisRow& r) { return (r.stock + r.atCustomers) * r.price; }
Real Difference(const ItemAnalysisRow& r) { return r.difference; }
Real DifferenceValue(const ItemAnalysisRow& r) { return r.differenceValue; }

// Indexed by ItemAnalysis.
const Layout& LayoutOf(ItemAnalysis a) {
  using R = ItemAnalysisRow;
  static const Layout kLayouts[] = {
      {{{"Ilość"_mz, 13, 3, &R::quantity},
        {"Wart.zakupu", 14, 2, &R::purchaseNet},
        {"Wart.sprzedaży"_mz, 15, 2, &R::saleGross},
        {"Marża"_mz, 13, 2, &R::margin},
        {"Stan", 13, 3, &R::stock},
        {"Wart.zakupu stanów"_mz, 19, 2, &R::stockValue},
        {"%ilość/stan"_mz, 12, 2, &R::percent}},
       {{kSumQuantityText, 3, Quantity},
        {kSumPurchaseNetText, 2, PurchaseNet},
        {kSumSaleGrossText, 2, SaleGross},
        {kSumPurchaseGrossText, 2, StockValue}},
       false,
       {}},
      {{{"Stan", 13, 3, &R::stock},
        {"Obrót"_mz, 13, 3, &R::quantity},
        {"%obrotu", 9, 2, &R::percent},
        {"Wart.zakupu stanów"_mz, 19, 2, &R::stockValue}},
       {{kSumQuantityText, 3, Stock}, {kSumPurchaseGrossText, 2, StockValue}},
       true,
       {}},
      {{{"ilość"_mz, 13, 3, &R::stock},
        {"od dos.", 13, 3, &R::fromSuppliers},
        {"u odb.", 13, 3, &R::atCustomers},
        {"Cena zak.br.", 13, 2, &R::price}},
       {{kSumQuantityText, 3, Stock},
        {kSumPurchaseGrossText, 2, StockValue},
        {kSumStockLessDepositsText, 2, StockLessDeposits},
        {kSumStockWithDepositsText, 2, StockWithDeposits}},
       false,
       {}},
      {{{"księgowa"_mz, 13, 3, &R::stock},
        {"faktyczna", 13, 3, &R::counted},
        {"różnica"_mz, 13, 3, &R::difference},
        {"Wart.różnicy"_mz, 14, 2, &R::differenceValue}},
       {{kSumQuantityText, 3, Difference}, {kSumPurchaseGrossText, 2, DifferenceValue}},
       false,
       "PODSUMOWANIE:"},
  };
  return kLayouts[static_cast<int>(a)];
}

ShortText AnalysisHeading(const ItemAnalysisParams& p) {
  uint32_t bits = 0;
  for (int16_t k : p.kinds) bits |= KindBit(k);
  switch (p.analysis) {
    case ItemAnalysis::kItemTurnover: return KindSetName(bits);
    case ItemAnalysis::kStockTurnover: return "Analizy stanów towarów z pokazaniem obrotu"_mz;
    case ItemAnalysis::kDeposits: return "Podsumowania depozytów u odbiorców:"_mz;
    case ItemAnalysis::kRemanent: return "RÓŻNICE REMANENTOWE"_mz;
  }
  return {};
}

std::string Period(const DateRange& r) { return "od " + DisplayDate(r.from) + " do " + DisplayDate(r.to); }

std::string ColumnHeads(const Layout& layout) {
  std::string line = "Nr wewn. " + Cell("Nazwa towaru", 31);
  for (const Column& c : layout.columns) line += " " + Str(PadLeft(c.head, ' ', c.width));
  return line;
}

std::vector<std::string> HeadLines(const ItemAnalysisParams& p, const Layout& layout) {
  const std::string heads = ColumnHeads(layout);
  const std::string dashes(heads.size() + (layout.markNoTurnover ? 11 : 0), '-');
  std::vector<std::string> head = {Str(p.title), Str(AnalysisHeading(p))};
  if (p.ranges.size() == 1) head.push_back("Okres: " + Period(p.ranges.front()));
  if (p.issuesPositive && p.analysis == ItemAnalysis::kItemTurnover) head.push_back(Str(kIssuesPositiveText));
  head.insert(head.end(), {dashes, heads, dashes});
  return head;
}

std::string RowLine(const ItemAnalysisRow& r, const Layout& layout) {
  std::string line = Str(IntText(r.item, 8)) + " " + Cell(r.name, 31);
  for (const Column& c : layout.columns) line += " " + Str(FormatFixed(c.width, c.decimals, r.*c.field));
  if (layout.markNoTurnover && r.noTurnover) line += " bez obrotu";
  return line;
}

}  // namespace

std::string FormatItemAnalysis(const ItemAnalysisParams& p, const std::vector<ItemAnalysisRow>& rows, int linesPerPage) {
  const Layout& layout = LayoutOf(p.analysis);
  const std::vector<std::string> head = HeadLines(p, layout);
  std::vector<std::string> body;
  int32_t range = 0;
  for (const ItemAnalysisRow& r : rows) {
    const auto index = static_cast<std::size_t>(r.range - 1);
    if (p.ranges.size() > 1 && r.range != range && index < p.ranges.size())
      body.push_back("Okres " + std::to_string(r.range) + ": " + Period(p.ranges[index]));
    range = r.range;
    body.push_back(RowLine(r, layout));
  }
  body.push_back(head[head.size() - 1]);
  if (!layout.closing.Empty()) body.push_back(Str(layout.closing));
  for (const Total& t : layout.totals) {
    Real sum = 0;
    for (const ItemAnalysisRow& r : rows) sum += t.value(r);
    body.push_back(Str(t.label) + Str(FormatFixed(16, t.decimals, sum)));
  }
  return Paginate(head, body, linesPerPage);
}
