// Line values, VAT groups, totals, stock plans and discounts, by tables of
// cases whose expected values are worked out here by hand.
#include <gtest/gtest.h>

#include <vector>

#include "documents/doccalc.h"

namespace {

DocLine Line(int32_t item, Real q, const char* vat, Real saleNet, Real saleGross, Real buyNet = 0) {
  DocLine l;
  l.item.number = item;
  l.item.vat = vat;
  l.item.saleNet = saleNet;
  l.item.saleGross = saleGross;
  l.item.buyNet = buyNet;
  l.quantity = q;
  return l;
}

TEST(SaveCalcTest, LineValuesRoundEachLineToTheGrosz) {
  struct Case {
    Real q, price, value;
  } const cases[] = {
      {1, 0.125L, 0.13L}, {-1, 0.125L, -0.13L}, {0.5L, 0.01L, 0.01L}, {3, 33.333L, 100.00L},
      {0, 99.99L, 0},     {1000, 0.0049L, 4.9L}, {2, 0.0024L, 0},
      {3, 1.115L, 3.35L},  // 3.345 in decimal: a half grosz goes up
      {1, 0.005L, 0.01L}, {-1, 0.005L, -0.01L}, {7, 0.335L, 2.35L},
  };
  for (const Case& c : cases) EXPECT_NEAR(static_cast<double>(LineValue(c.q, c.price)), static_cast<double>(c.value), 1e-9)
      << static_cast<double>(c.q) << " x " << static_cast<double>(c.price);
}

TEST(SaveCalcTest, GroupsSumRoundedLinesAndTheTotalFollowsTheMethod) {
  // Two lines of 0.125 net at 23 %: 0.13 each, so the group holds 0.26, not 0.25.
  const std::vector<DocLine> lines = {Line(1, 1, "23", 0.125L, 0.15L), Line(2, 1, "23", 0.125L, 0.15L),
                                      Line(3, 2, "8", 5, 5.40L), Line(4, 1, "zw", 7, 7), Line(5, 0, "5", 100, 105)};
  const DocumentTotals up = ComputeTotals(lines, TotalMethod::kGrossFromNetGroups);
  ASSERT_EQ(up.groups.Count(), 3);  // the line of quantity 0 opens no group
  EXPECT_EQ(up.groups[0].rate, 23);
  EXPECT_NEAR(static_cast<double>(up.groups[0].net), 0.26, 1e-9);
  EXPECT_NEAR(static_cast<double>(up.groups[0].vat), 0.0598, 1e-9);
  EXPECT_NEAR(static_cast<double>(up.groups[1].vat), 0.80, 1e-9);
  EXPECT_EQ(up.groups[2].rate, 0);
  EXPECT_NEAR(static_cast<double>(up.total), 18.12, 1e-9);  // 0.26 + 0.0598 + 10.80 + 7, to the grosz

  const DocumentTotals down = ComputeTotals(lines, TotalMethod::kGrossLines);
  EXPECT_NEAR(static_cast<double>(down.total), 0.15 + 0.15 + 10.80 + 7, 1e-9);
  EXPECT_NEAR(static_cast<double>(down.groups[1].net), 10.0, 1e-9);  // 10.80 gross at 8 %
  EXPECT_NEAR(static_cast<double>(down.saleNet), 0.26 + 10 + 7, 1e-9);
}

TEST(SaveCalcTest, PurchaseTotalsUsePurchasePrices) {
  const std::vector<DocLine> lines = {Line(1, 4, "23", 9, 9, 2.5L), Line(2, 1, "8", 9, 9, 10)};
  EXPECT_NEAR(static_cast<double>(ComputeTotals(lines, TotalMethod::kPurchaseGrossFromGroups).total),
              10 * 1.23 + 10 * 1.08, 1e-9);
  EXPECT_NEAR(static_cast<double>(ComputeTotals(lines, TotalMethod::kPurchaseNet).total), 20, 1e-9);
}

TEST(SaveCalcTest, TheThirtiethRateGoesIntoTheLastGroup) {
  std::vector<DocLine> lines;
  for (int rate = 1; rate <= 30; ++rate) lines.push_back(Line(rate, 1, std::to_string(rate).c_str(), 1, 1));
  const DocumentTotals t = ComputeTotals(lines, TotalMethod::kGrossFromNetGroups);
  EXPECT_TRUE(t.groups.Overflowed());
  ASSERT_EQ(t.groups.Count(), kMaxVatGroups);
  EXPECT_EQ(t.groups[kMaxVatGroups - 1].rate, 29);
  EXPECT_NEAR(static_cast<double>(t.groups[kMaxVatGroups - 1].net), 2, 1e-9);
}

TEST(SaveCalcTest, MethodsOfKindsUnderEachVatMode) {
  using M = TotalMethod;
  struct Case {
    int kind;
    M byMode[4];
  } const cases[] = {
      {1, {M::kGrossLines, M::kGrossLines, M::kGrossLines, M::kGrossLines}},
      {2, {M::kGrossFromNetGroups, M::kGrossFromNetGroups, M::kGrossLines, M::kGrossFromNetGroups}},
      {4, {M::kGrossFromNetGroups, M::kGrossLines, M::kGrossLines, M::kGrossFromNetGroups}},
      {5, {M::kGrossFromNetGroups, M::kGrossLines, M::kGrossLines, M::kGrossFromNetGroups}},
      {6, {M::kPurchaseGrossFromGroups, M::kPurchaseGrossFromGroups, M::kPurchaseGrossFromGroups,
           M::kPurchaseGrossFromGroups}},
      {12, {M::kPurchaseNet, M::kPurchaseNet, M::kPurchaseNet, M::kPurchaseNet}},
  };
  for (const Case& c : cases)
    for (int mode = 0; mode < 4; ++mode) EXPECT_EQ(KindTotalMethod(c.kind, mode), c.byMode[mode]) << c.kind << "/" << mode;
  EXPECT_EQ(KindTotalMethod(4, 9), M::kGrossFromNetGroups);  // an unknown mode counts as 0
}

TEST(SaveCalcTest, StockPlansByEffectAndRight) {
  const StockLevels before = {{1, {5, 0, true}}, {2, {0, 0, true}}, {3, {-2, 1, true}}};
  struct Case {
    const char* what;
    StockEffect effect;
    bool mayGoBelowZero;
    std::vector<Real> asked;  // items 1, 1, 2, 3, 4 (4 has no row)
    std::vector<Real> taken;
    Real after1, after4;
    bool reduced;
  } const cases[] = {
      {"issue cut to stock, the second line sees the first", StockEffect::kIssue, false, {3, 4, 1, 1, 1},
       {3, 2, 0, 0, 0}, 0, 0, true},
      {"issue with the right goes below zero", StockEffect::kIssue, true, {3, 4, 1, 1, 1}, {3, 4, 1, 1, 1}, -2, -1,
       false},
      {"a return (negative issue) is never cut", StockEffect::kIssue, false, {-3, 1, 0, 0, 0}, {-3, 1, 0, 0, 0}, 7,
       0, false},
      {"receipt adds", StockEffect::kReceipt, false, {3, 4, 1, 1, 2}, {3, 4, 1, 1, 2}, 12, 2, false},
  };
  for (const Case& c : cases) {
    const std::vector<DocLine> lines = {Line(1, c.asked[0], "23", 1, 1), Line(1, c.asked[1], "23", 1, 1),
                                        Line(2, c.asked[2], "23", 1, 1), Line(3, c.asked[3], "23", 1, 1),
                                        Line(4, c.asked[4], "23", 1, 1)};
    const StockPlan plan = PlanStock(lines, c.effect, c.mayGoBelowZero, before);
    for (std::size_t i = 0; i < lines.size(); ++i)
      EXPECT_EQ(plan.quantities[i], c.taken[i]) << c.what << " line " << i;
    EXPECT_EQ(plan.after.at(1).quantity, c.after1) << c.what;
    EXPECT_EQ(plan.after.count(4) ? plan.after.at(4).quantity : 0, c.after4) << c.what;
    EXPECT_EQ(plan.reduced, c.reduced) << c.what;
  }
  const std::vector<DocLine> order = {Line(1, 2, "23", 1, 1), Line(4, 3, "23", 1, 1)};
  const StockPlan ordered = PlanStock(order, StockEffect::kOrdered, false, before);
  EXPECT_EQ(ordered.after.at(1).quantity, 5);
  EXPECT_EQ(ordered.after.at(1).ordered, 2);
  EXPECT_EQ(ordered.after.at(4).ordered, 3);
  EXPECT_TRUE(ordered.after.at(4).exists);
  EXPECT_EQ(PlanStock(order, StockEffect::kNone, false, before).after, before);
}

TEST(SaveCalcTest, AvailabilityCountsEveryLineOfTheItem) {
  std::vector<DocLine> lines = {Line(1, 2, "23", 1, 1), Line(2, 5, "23", 1, 1), Line(1, 3, "23", 1, 1)};
  lines[0].rowId = 10;
  lines[2].rowId = 12;
  EXPECT_EQ(AvailableStock(10, lines, 1, 0), 5);
  EXPECT_EQ(AvailableStock(10, lines, 1, 12), 8);  // the line being changed does not count against itself
  EXPECT_EQ(AvailableStock(10, lines, 3, 0), 10);
  for (int kind = 1; kind <= 18; ++kind)
    EXPECT_EQ(KindChecksAvailability(kind), KindStockEffect(kind, true) == StockEffect::kIssue) << kind;
}

TEST(SaveCalcTest, DiscountsRoundToTheStepAndKeepExemptPricesEqual) {
  struct Case {
    Real price, percent, step;
    bool vatDependent;
    Real rate, expected;
  } const cases[] = {
      {10, 15, 0.01L, false, 23, 8.5L},   {9.99L, 10, 0.01L, false, 23, 8.99L}, {9.99L, 10, 1, false, 23, 9},
      {12.3L, 0, 0.01L, true, 23, 10},    {12.3L, 0, 0.01L, true, 0, 12.3L},    {12.3L, 0, 0.01L, true, -100, 12.3L},
      {10, 0, 0.01L, false, 23, 10},
  };
  for (const Case& c : cases)
    EXPECT_NEAR(static_cast<double>(DiscountedPrice(c.price, c.percent, c.step, c.vatDependent, c.rate)),
                static_cast<double>(c.expected), 1e-9);
  for (Real exempt : {Real(0), Real(-100)}) EXPECT_EQ(GrossOfNet(8.5L, exempt), 8.5L);
  EXPECT_NEAR(static_cast<double>(GrossOfNet(10, 23)), 12.3, 1e-9);
}

}  // namespace
