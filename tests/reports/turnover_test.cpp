// The turnover analysis against figures the test computes from the lines it saved.
#include <algorithm>
#include <map>

#include "base/mazovia.h"
#include "docfixture.h"
#include "reports/turnover.h"

namespace {

struct Expected {
  Real turnover = 0, stock = 0, purchaseGross = 0, saleGross = 0, saleNet = 0;
};

class TurnoverTest : public DocumentsTest {
 protected:
  void SetUp() override {
    DocumentsTest::SetUp();
    SaveQuarter();
  }

  std::map<int32_t, Expected> Compute(const TurnoverParams& p) const {
    std::map<int32_t, Expected> out;
    const auto chosen = [&](int32_t w) { return std::count(p.warehouses.begin(), p.warehouses.end(), w) > 0; };
    const auto itemWanted = [&](int32_t item) {
      if (!p.items.empty() && std::count(p.items.begin(), p.items.end(), item) == 0) return false;
      return p.suppliers.empty() || std::count(p.suppliers.begin(), p.suppliers.end(), suppliers_[static_cast<std::size_t>(item)]) > 0;
    };
    for (const SavedLine& l : saved_) {
      const bool inKinds = std::count(p.kinds.begin(), p.kinds.end(), l.kind) > 0;
      if (!chosen(l.warehouse) || !inKinds || l.date < p.from || l.date > p.to || !itemWanted(l.item)) continue;
      const Real q = kIssues.count(l.kind) && !p.issuesPositive ? -l.quantity : l.quantity;
      Expected& e = out[l.item];
      e.turnover += q;
      e.purchaseGross += q * l.purchaseGross;
      e.saleGross += q * l.saleGross;
      e.saleNet += q * l.saleNet;
    }
    for (const SavedLine& l : saved_) {
      if (!chosen(l.warehouse) || l.date >= p.from || out.count(l.item) == 0) continue;
      out[l.item].stock += kIssues.count(l.kind) ? -l.quantity : kReceipts.count(l.kind) ? l.quantity : 0;
    }
    return out;
  }

  static TurnoverParams February() {
    TurnoverParams p;
    p.from = Day(2026, 2, 1);
    p.to = Day(2026, 2, 28);
    p.warehouses = {1, 2, 3};
    p.kinds = {1, 2, 4};
    return p;
  }
};

TEST_F(TurnoverTest, EveryItemAndTotalMatchesTheSavedLines) {
  struct Case {
    const char* name;
    void (*change)(TurnoverParams&);
  };
  const Case cases[] = {
      {"sales of all warehouses", [](TurnoverParams&) {}},
      {"every kind, issues counted plus, warehouses 1 and 3",
       [](TurnoverParams& p) {
         p.kinds.clear();
         for (int16_t k = 1; k <= 18; ++k) p.kinds.push_back(k);
         p.issuesPositive = true;
         p.warehouses = {1, 3};
       }},
      {"receipts of two items", [](TurnoverParams& p) { p.kinds = {6, 7, 10, 11}; p.items = {2, 3}; }},
      {"issues of one supplier's items", [](TurnoverParams& p) { p.kinds = {1, 2, 4, 14, 15}; p.suppliers = {100}; }},
      {"a period without documents", [](TurnoverParams& p) { p.from = p.to = Day(2027, 5, 5); }},
      {"one day", [](TurnoverParams& p) { p.kinds = {6, 7, 8}; p.to = p.from = Day(2026, 2, 24); }},
  };
  for (const Case& c : cases) {
    TurnoverParams p = February();
    c.change(p);
    std::vector<int32_t> missing;
    RunTurnoverAnalysis(p, nullptr, missing);
    const std::map<int32_t, Expected> expected = Compute(p);
    const std::vector<TurnoverRow> rows = ReadTurnoverRows(p);
    ASSERT_EQ(rows.size(), expected.size()) << c.name;
    Expected total;
    for (const TurnoverRow& r : rows) {
      ASSERT_EQ(expected.count(r.item), 1u) << c.name << " item " << r.item;
      const Expected& e = expected.at(r.item);
      const std::string what = std::string(c.name) + " item " + std::to_string(r.item);
      ExpectNear(r.turnover, e.turnover, what + " turnover");
      ExpectNear(r.stockBefore, e.stock, what + " stock");
      ExpectNear(r.percent, e.stock == 0 ? 0 : 100 * e.turnover / e.stock, what + " percent");
      ExpectNear(r.purchaseGross, e.purchaseGross, what + " purchase");
      EXPECT_TRUE(r.item != 5 || r.name == "Jabłka"_mz) << c.name;  // the catalogue's name, Polish letters kept
      ExpectNear(r.saleGross, e.saleGross, what + " sale");
      total.turnover += e.turnover;
      total.saleNet += e.saleNet;
    }
    const TurnoverTotals sums = SumTurnover(rows);
    ExpectNear(sums.turnover, total.turnover, std::string(c.name) + " total");
    ExpectNear(sums.saleNet, total.saleNet, std::string(c.name) + " total sale net");
    EXPECT_EQ(missing, expected.count(6) ? std::vector<int32_t>{6} : std::vector<int32_t>{}) << c.name;
  }
  // No temporary table outlives a run.
  EXPECT_EQ(TemporaryTablesLeft(), "0");
}

TEST_F(TurnoverTest, NumberColumnsSortByTheirTextKeys) {
  const struct {
    TurnoverSort sort;
    bool descending;
    std::vector<int16_t> kinds;
    Real TurnoverRow::*value;
  } cases[] = {
      {TurnoverSort::kTurnover, false, {1, 2, 4}, &TurnoverRow::turnover},  // sales: all below 0
      {TurnoverSort::kTurnover, true, {1, 2, 4}, &TurnoverRow::turnover},
      {TurnoverSort::kTurnover, false, {1, 6, 7}, &TurnoverRow::turnover},  // signs mixed
      {TurnoverSort::kStock, false, {1, 2, 4}, &TurnoverRow::stockBefore},
      {TurnoverSort::kPercent, true, {1, 6, 7}, &TurnoverRow::percent},
      {TurnoverSort::kSalePrice, false, {1, 2, 4}, &TurnoverRow::saleGross},
  };
  for (const auto& c : cases) {
    TurnoverParams p = February();
    p.kinds = c.kinds;
    p.sort = c.sort;
    p.descending = c.descending;
    std::vector<int32_t> missing;
    RunTurnoverAnalysis(p, nullptr, missing);
    const std::vector<TurnoverRow> rows = ReadTurnoverRows(p);
    ASSERT_GE(rows.size(), 3u);
    for (std::size_t i = 1; i < rows.size(); ++i) {
      std::string before = SortKey(rows[i - 1].*c.value), after = SortKey(rows[i].*c.value);
      if (c.descending) std::swap(before, after);
      EXPECT_TRUE(before < after || (before == after && rows[i - 1].item < rows[i].item))
          << static_cast<int>(c.sort) << " row " << i << ": " << before << " " << after;
    }
  }
}

}  // namespace
