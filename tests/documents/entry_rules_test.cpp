// The rules under the entry's functions, against values worked out here
// (the key scripts cover the rest): the VAT-dependent discount, six decimals, packages, FIFO cost, what a digit
// search takes, where the sort runs and the joining of lines.
#include <gtest/gtest.h>

#include <cmath>

#include "documents/entry_detail.h"

namespace {

using namespace entrydetail;

// step * round-half-away(value / step), in double: an independent reckoning.
double Stepped(double value, double step) { return step * std::round(value / step); }

TEST(EntryDiscount, PricesFollowStepRateAndReduction) {
  struct Case {
    const char* what;
    double net, rate, percent, step, reduction;
    bool vatDependent;
    double expected;
  };
  const Case cases[] = {
      {"step 0.05", 7.77, 8, 3, 0.05, 0, false, Stepped(7.77 * 0.97, 0.05)},
      {"VAT-dependent: gross discount turns net", 12.30, 23, 10, 0.01, 0, true,
       Stepped(Stepped(12.30 * 0.9, 0.01) / 1.23, 0.01)},
      {"reduction of the VAT form", 12.30, 23, 0, 0.01, 5, true,
       Stepped(Stepped(12.30 / 1.23, 0.01) * (1.23 - 0.05) / 1.23, 0.01)},
  };
  for (const Case& c : cases) {
    DiscountSettings s;
    s.percent = c.percent;
    s.step = c.step;
    s.reduction = c.reduction;
    s.vatDependent = c.vatDependent;
    EXPECT_NEAR(static_cast<double>(DiscountNet(c.net, c.rate, s)), c.expected, 1e-9) << c.what;
  }
}

TEST(EntryDiscount, PercentageCarriesAtMostSixDecimals) {
  const struct {
    Real value;
    bool ok;
  } cases[] = {{10, true}, {12.5L, true}, {0.000001L, true}, {33.333333L, true}, {0.0000001L, false},
               {12.1234567L, false}, {-5.25L, true}};
  for (const auto& c : cases) EXPECT_EQ(SixDecimals(c.value), c.ok) << static_cast<double>(c.value);
}

TEST(EntryQuantity, PackagesOptionRecomputesTheEntry) {
  const struct {
    Real entered, pack;
    int option;
    Real expected;
  } cases[] = {{3, 12, 3, 36}, {36, 12, 4, 3}, {3, 12, 1, 3}, {3, 12, 0, 3}, {3, 0, 3, 3}, {3, -2, 4, 3}, {-2, 6, 3, -12}};
  for (const auto& c : cases) EXPECT_EQ(QuantityFromEntry(c.entered, c.pack, c.option), c.expected);
}

TEST(EntryQuantity, FifoTakesTheOldestRemainingReceipts) {
  const Receipt receipts[] = {{10, 2}, {10, 3}, {5, 4}};
  const struct {
    const char* what;
    Real issued, quantity, fallback, expected;
  } cases[] = {
      {"all from the first", 0, 4, 9, 2},
      {"across two receipts", 5, 10, (9), (5 * 2 + 5 * 3) / 10.0L},
      {"the last receipt only", 20, 5, 9, 4},
      {"beyond the receipts at the fallback", 22, 6, 9, (3 * 4 + 3 * 9) / 6.0L},
      {"nothing left", 30, 2, 9, 9},
      {"no quantity", 0, 0, 9, 9},
  };
  for (const auto& c : cases)
    EXPECT_NEAR(static_cast<double>(FifoUnitCost(receipts, c.issued, c.quantity, c.fallback)),
                static_cast<double>(c.expected), 1e-12)
        << c.what;
}

TEST(EntrySearch, DigitSearchDecidesByModeAndStock) {
  const struct {
    std::vector<Real> stocks;
    int mode;
    DigitFind what;
    int row;
    ShortText note;
  } cases[] = {
      {{}, 1, DigitFind::kNone, 0, ShortText()},
      {{0, 5, 7}, 1, DigitFind::kTake, 1, ShortText()},
      {{-1, -2}, 1, DigitFind::kAskOtherQuantity, 0, kNegativeStockText},
      {{0, -2}, 1, DigitFind::kAskOtherQuantity, 0, kZeroOrNegativeText},
      {{0}, 0, DigitFind::kTake, 0, kZeroStockText},
  };
  for (const auto& c : cases) {
    const DigitDecision d = DecideDigitFind(c.stocks, c.mode);
    EXPECT_EQ(d.what, c.what);
    EXPECT_EQ(d.row, c.row);
    EXPECT_EQ(d.note, c.note);
  }
  // Quantity modes: 0 enters nothing, 1 asks, 2 and 4 enter by themselves on sales only, 3 and 5 everywhere.
  const struct {
    int mode;
    const char* text;
    int kind;
    Real q;
  } quantities[] = {{0, "", 1, -1}, {1, "", 1, 0}, {2, "", 1, 1},  {2, "2.5", 4, 2.5}, {2, "3", 6, 0},
                    {3, "3", 6, 3}, {4, "x", 2, 1}, {5, "-4", 12, 1}, {2, "0", 1, 1}};
  for (const auto& c : quantities) {
    EXPECT_EQ(DigitSearchQuantity(c.mode, ShortText(c.text), c.kind), c.q) << c.mode;
    // Enter takes the automatic quantity in modes 4 and 5 only.
    EXPECT_EQ(EnterQuantity(c.mode, ShortText(c.text), c.kind), c.mode >= 4 ? c.q : 0) << c.mode;
  }
  // Letter keys of the embedded keypad read as digits; any other letter spoils the index.
  const struct {
    ShortText typed;
    const char* digits;
    bool ok;
  } keyed[] = {{ShortText("59mj"), "5901", true},   {ShortText("UIO789"), "456789", true},
               {ShortText("kl 0"), "23 0", true},   {ShortText("5a1"), "", false},
               {"5ą"_mz, "", false},               {ShortText(), "", true}};
  for (const auto& c : keyed) {
    ShortText digits("stale");
    EXPECT_EQ(DigitsFromKeys(c.typed, digits), c.ok) << c.typed.Str();
    EXPECT_EQ(digits.Str(), c.digits) << c.typed.Str();
  }
}

DocLine Line(int64_t row, int32_t item, const char* name, const char* place, Real q) {
  DocLine l;
  l.rowId = row;
  l.item.number = item;
  l.item.name = ShortText(name);
  l.item.place = ShortText(place);
  l.quantity = q;
  return l;
}

TEST(EntryLines, SortOnlyWhereConfiguredAndJoinOneItem) {
  const std::vector<DocLine> lines = {Line(1, 7, "Wkret", "A2", 1), Line(2, 8, "Mlotek", "B1", 2),
                                      Line(3, 7, "Wkret", "A2", 3), Line(4, 9, "Sruba", "A1", 4)};
  std::vector<DocLine> byPlace = lines;  // by place, then name; the same keep their order
  SortLines(byPlace, 2);
  EXPECT_EQ((std::vector<int64_t>{byPlace[0].rowId, byPlace[1].rowId, byPlace[2].rowId, byPlace[3].rowId}),
            (std::vector<int64_t>{4, 1, 3, 2}));
  EXPECT_EQ(AutoSortOrder(1, false, 3, 1), 1);
  EXPECT_EQ(AutoSortOrder(2, true, 3, 1), 0);
  EXPECT_EQ(AutoSortOrder(2, true, 1, 1), 2);
  EXPECT_EQ(AutoSortOrder(5, false, 1, 1), 0);

  // Marked lines of the current line's item join it; a marked line of another item stays.
  const int64_t marked[] = {1, 2, 3};
  const MergePlan plan = PlanMerge(lines, marked, 3);
  EXPECT_EQ(plan.quantity, 4);
  EXPECT_EQ(plan.drop, std::vector<int64_t>{1});
  EXPECT_TRUE(PlanMerge(lines, marked, 99).drop.empty());

  // After a rewrite the marks follow their lines to the new ids; a row gone loses its mark.
  std::vector<DocLine> rewritten = byPlace;
  std::vector<int64_t> before;
  for (DocLine& l : rewritten) {
    before.push_back(l.rowId);
    l.rowId += 100;
  }
  std::vector<int64_t> marks = {2, 4, 77};
  RemapRowIds(marks, before, rewritten);
  EXPECT_EQ(marks, (std::vector<int64_t>{102, 104}));
}

}  // namespace
