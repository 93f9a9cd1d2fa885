// The item analyses against figures the test computes from the lines it saved.
#include <algorithm>
#include <map>
#include <utility>

#include "base/mazovia.h"
#include "docfixture.h"
#include "reports/itemanalyses.h"

namespace {

struct Expected {
  Real quantity = 0, purchaseNet = 0, saleGross = 0, stock = 0, counted = 0, fromSuppliers = 0, atCustomers = 0;
  bool own = false;  // the analysis's own lines name the item
  std::set<Real> prices;  // purchase prices (gross) of those lines
};
using Key = std::pair<int32_t, int32_t>;  // range, item

class ItemAnalysesTest : public DocumentsTest {
 protected:
  void SetUp() override {
    DocumentsTest::SetUp();
    SaveQuarter();
  }

  static Real Signed(const SavedLine& l) {
    return kIssues.count(l.kind) ? -l.quantity : kReceipts.count(l.kind) ? l.quantity : 0;
  }

  // The analysis's own lines of one range.
  void AddOwnLine(const ItemAnalysisParams& p, const SavedLine& l, Expected& e) const {
    if (p.analysis == ItemAnalysis::kRemanent) {
      if (l.kind != 12) return;
      e.counted += l.quantity;
    } else if (p.analysis == ItemAnalysis::kDeposits) {
      const bool depositDocument = std::any_of(saved_.begin(), saved_.end(), [&](const SavedLine& o) {
        return o.warehouse == l.warehouse && o.kind == l.kind && o.date == l.date && o.onDeposit != 0;
      });
      if (!depositDocument || l.onDeposit == 0 || (!kReceipts.count(l.kind) && !kIssues.count(l.kind))) return;
      (kReceipts.count(l.kind) ? e.fromSuppliers : e.atCustomers) += l.onDeposit;
    } else {
      if (std::count(p.kinds.begin(), p.kinds.end(), l.kind) == 0) return;
      const bool minus = p.analysis == ItemAnalysis::kItemTurnover && kIssues.count(l.kind) && !p.issuesPositive;
      const Real q = minus ? -l.quantity : l.quantity;
      e.quantity += q;
      e.purchaseNet += q * l.purchaseNet;
      e.saleGross += q * l.saleGross;
    }
    e.own = true;
    e.prices.insert(l.purchaseGross);
  }

  std::map<Key, Expected> Compute(const ItemAnalysisParams& p) const {
    std::map<Key, Expected> all;
    const bool remanent = p.analysis == ItemAnalysis::kRemanent;
    for (std::size_t r = 0; r < p.ranges.size(); ++r)
      for (const SavedLine& l : saved_) {
        if (std::count(p.warehouses.begin(), p.warehouses.end(), l.warehouse) == 0) continue;
        Expected& e = all[{static_cast<int32_t>(r + 1), l.item}];
        if (l.date >= p.ranges[r].from && l.date <= p.ranges[r].to) AddOwnLine(p, l, e);
        if (remanent ? l.date < p.ranges[r].from : l.date <= p.ranges[r].to) e.stock += Signed(l);
      }
    std::map<Key, Expected> out;
    for (const auto& [key, e] : all) {
      const bool listed = p.analysis == ItemAnalysis::kStockTurnover ? !(p.dropZeroStock && e.stock == 0)
                          : remanent ? e.stock != 0 || e.counted != 0
                                     : e.own;
      const std::string group = key.second <= 5 ? kGroups[key.second] : "";
      const bool inGroups = p.groups.empty() || std::count(p.groups.begin(), p.groups.end(), ShortText(group)) > 0;
      if (listed && inGroups && (e.own || e.stock != 0 || p.analysis == ItemAnalysis::kStockTurnover)) out[key] = e;
    }
    return out;
  }

  // Whether an item of the result has own lines, in any range, with different purchase prices.
  static bool SeveralPrices(const std::map<Key, Expected>& result) {
    std::map<int32_t, std::set<Real>> prices;
    for (const auto& [key, e] : result) prices[key.second].insert(e.prices.begin(), e.prices.end());
    return std::any_of(prices.begin(), prices.end(), [](auto& p) { return p.second.size() > 1; });
  }

  static ItemAnalysisParams Params(ItemAnalysis analysis) {
    ItemAnalysisParams p;
    p.analysis = analysis;
    p.ranges = {{Day(2026, 2, 1), Day(2026, 2, 28)}};
    p.warehouses = {1, 2, 3};
    p.kinds = {1, 2, 4};
    return p;
  }
};

// The steps told while a run goes on, as the status line shows them.
std::vector<std::string> gSteps;
void RecordStep(const char* step, int done, int total) {
  gSteps.push_back(std::string(step) + " " + std::to_string(done) + "/" + std::to_string(total));
}

TEST_F(ItemAnalysesTest, EveryAnalysisMatchesTheSavedLines) {
  struct Case {
    const char* name;
    ItemAnalysis analysis;
    void (*change)(ItemAnalysisParams&);
  };
  const Case cases[] = {
      {"turnover of sales", ItemAnalysis::kItemTurnover, [](ItemAnalysisParams&) {}},
      {"turnover of receipts in two ranges, warehouses 1 and 3", ItemAnalysis::kItemTurnover,
       [](ItemAnalysisParams& p) {
         p.kinds = {6, 7, 10, 11};
         p.warehouses = {1, 3};
         p.ranges = {{Day(2026, 1, 1), Day(2026, 1, 31)}, {Day(2026, 3, 1), Day(2026, 3, 31)}};
       }},
      {"turnover of the groups NABIAL and OWOCE, issues plus", ItemAnalysis::kItemTurnover,
       [](ItemAnalysisParams& p) {
         p.groups = {"NABIAL", "OWOCE"};
         p.kinds = {1, 2, 4, 14, 15};
         p.issuesPositive = true;
       }},
      {"a period without documents", ItemAnalysis::kItemTurnover,
       [](ItemAnalysisParams& p) { p.ranges = {{Day(2027, 5, 5), Day(2027, 5, 5)}}; }},
      {"stock with turnover under 20%, zero stock dropped", ItemAnalysis::kStockTurnover,
       [](ItemAnalysisParams& p) {
         p.noTurnoverTo = 20;
         p.dropZeroStock = true;
       }},
      {"stock with turnover, no limit, one warehouse", ItemAnalysis::kStockTurnover,
       [](ItemAnalysisParams& p) { p.warehouses = {2}; }},
      {"deposits of the first quarter", ItemAnalysis::kDeposits,
       [](ItemAnalysisParams& p) { p.ranges = {{Day(2026, 1, 1), Day(2026, 3, 31)}}; }},
      {"remanent from the day of a balance in warehouse 1", ItemAnalysis::kRemanent,
       [](ItemAnalysisParams& p) { p.ranges = {{Day(2026, 2, 4), Day(2026, 2, 28)}}; }},
  };
  for (const Case& c : cases) {
    ItemAnalysisParams p = Params(c.analysis);
    c.change(p);
    ItemAnalysisOutcome outcome;
    gSteps.clear();
    RunItemAnalysis(p, RecordStep, outcome);
    const int n = static_cast<int>(p.warehouses.size());
    EXPECT_EQ(gSteps.front(), "1-A 1/" + std::to_string(n)) << c.name;
    EXPECT_EQ(std::count(gSteps.begin(), gSteps.end(), "1-A " + std::to_string(n) + "/" + std::to_string(n)), 1) << c.name;
    EXPECT_EQ(gSteps.back(), "1-H " + std::to_string(n) + "/" + std::to_string(n)) << c.name;
    const std::map<Key, Expected> expected = Compute(p);
    const std::vector<ItemAnalysisRow> rows = ReadItemAnalysisRows(p);
    ASSERT_EQ(rows.size(), expected.size()) << c.name;
    Real totalStockValue = 0, expectedStockValue = 0;
    for (const ItemAnalysisRow& r : rows) {
      const std::string what = std::string(c.name) + " range " + std::to_string(r.range) + " item " + std::to_string(r.item);
      ASSERT_EQ(expected.count({r.range, r.item}), 1u) << what;
      const Expected& e = expected.at({r.range, r.item});
      const Real price = r.item <= 5 ? kPrices[r.item] : 0;
      const Real percent = e.stock == 0 ? 0 : 100 * e.quantity / e.stock;
      ExpectNear(r.quantity, e.quantity, what + " quantity");
      ExpectNear(r.purchaseNet, e.purchaseNet, what + " purchase");
      ExpectNear(r.saleGross, e.saleGross, what + " sale");
      ExpectNear(r.stock, e.stock, what + " stock");
      ExpectNear(r.percent, percent, what + " percent");
      ExpectNear(r.difference, e.counted - e.stock, what + " difference");
      ExpectNear(r.fromSuppliers, e.fromSuppliers, what + " from suppliers");
      ExpectNear(r.atCustomers, e.atCustomers, what + " at customers");
      EXPECT_EQ(r.noTurnover, c.analysis == ItemAnalysis::kStockTurnover && percent >= p.noTurnoverFrom &&
                                  percent <= p.noTurnoverTo + 1e-9L) << what;
      totalStockValue += r.stockValue;
      expectedStockValue += e.stock * price;
    }
    ExpectNear(totalStockValue, expectedStockValue, std::string(c.name) + " stock value");
    const bool six = std::any_of(expected.begin(), expected.end(), [](auto& e) { return e.first.second == 6; });
    EXPECT_EQ(outcome.missingItems, six ? std::vector<int32_t>{6} : std::vector<int32_t>{}) << c.name;
    EXPECT_EQ(outcome.priceAnomaly, SeveralPrices(expected)) << c.name;
  }
  EXPECT_EQ(TemporaryTablesLeft(), "0");
}

TEST_F(ItemAnalysesTest, NumberColumnsSortByTheirTextKeysWithinARange) {
  const struct {
    ItemSort sort;
    bool descending;
    Real ItemAnalysisRow::*value;
  } cases[] = {{ItemSort::kQuantity, false, &ItemAnalysisRow::quantity},
               {ItemSort::kMargin, true, &ItemAnalysisRow::margin},
               {ItemSort::kPurchase, false, &ItemAnalysisRow::purchaseNet},
               {ItemSort::kSale, true, &ItemAnalysisRow::saleGross}};
  for (const auto& c : cases) {
    ItemAnalysisParams p = Params(ItemAnalysis::kItemTurnover);
    p.kinds = {1, 6, 7};  // issues and receipts: signs mixed
    p.ranges = {{Day(2026, 1, 1), Day(2026, 1, 31)}, {Day(2026, 2, 1), Day(2026, 3, 31)}};
    p.sort = c.sort;
    p.descending = c.descending;
    ItemAnalysisOutcome outcome;
    RunItemAnalysis(p, nullptr, outcome);
    const std::vector<ItemAnalysisRow> rows = ReadItemAnalysisRows(p);
    ASSERT_GE(rows.size(), 4u);
    for (std::size_t i = 1; i < rows.size(); ++i) {
      const ItemAnalysisRow &a = rows[i - 1], &b = rows[i];
      std::string before = SortKey(a.*c.value), after = SortKey(b.*c.value);
      if (c.descending) std::swap(before, after);
      EXPECT_TRUE(a.range < b.range || (a.range == b.range && (before < after || (before == after && a.item < b.item))))
          << static_cast<int>(c.sort) << " row " << i << ": " << before << " " << after;
    }
  }
}

}  // namespace
