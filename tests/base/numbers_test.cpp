#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "base/numbers.h"
#include "base/platform.h"

namespace {

constexpr Real kNaN = std::numeric_limits<Real>::quiet_NaN();
constexpr Real kInf = std::numeric_limits<Real>::infinity();

TEST(NumberParse, LooseReadsDigitsAndFirstPoint) {
  EXPECT_EQ(TextToRealLoose("12.5 zł"), 12.5L);
  EXPECT_EQ(TextToRealLoose("1 234.5.6"), 1234.56L) << "only the first point counts";
  EXPECT_EQ(TextToRealLoose("12-"), -12.0L) << "a minus anywhere";
  EXPECT_EQ(TextToRealLoose("a,b"), 0.0L);
  EXPECT_EQ(TextToRealLoose(""), 0.0L);
  EXPECT_EQ(TextToRealLoose("-"), 0.0L);
  EXPECT_FALSE(std::signbit(TextToRealLoose("-0")));
}

TEST(NumberParse, SumExpression) {
  EXPECT_EQ(SumExpression("12.5+3-1"), "14.5");
  EXPECT_EQ(SumExpression("-5+2"), "-3");
  EXPECT_EQ(SumExpression("0.1+0.2", 10), "0.3") << "written by the shortest form";
  EXPECT_EQ(SumExpression("7"), "7");
  EXPECT_EQ(SumExpression("1-1"), "") << "a pure zero is an empty text";
}

TEST(NumberParse, Base36) {
  EXPECT_EQ(ParseBase36("Z"), 35);
  EXPECT_EQ(ParseBase36("10"), 36);
  EXPECT_EQ(ParseBase36("-1A"), -46);
  EXPECT_EQ(ParseBase36("1a"), 0);
  EXPECT_EQ(ParseBase36(""), 0);
  EXPECT_EQ(ParseBase36("-"), 0);
  for (int64_t v : {int64_t{0}, int64_t{1}, int64_t{35}, int64_t{36}, int64_t{-99}, int64_t{123456789012}, std::numeric_limits<int64_t>::max()})
    EXPECT_EQ(ParseBase36(ToBase36(v)), v) << v;
}

TEST(NumberParse, NumericCheckGivesFirstBadPosition) {
  struct Row { const char* text; bool integers; int want; };
  const Row rows[] = {
      {"123", true, 0},   {"-12", true, 0},    {"+1.5", false, 0}, {"1.5", true, 2},
      {"1.5.2", false, 4}, {"12a", false, 3},  {" 1", false, 1},   {"1-", false, 2},
      {"", false, 0},     {".5", false, 0},
  };
  for (const auto& r : rows) EXPECT_EQ(NumericCheck(r.text, r.integers), r.want) << r.text;
}

TEST(NumberRound, HalfAwayFromZero) {
  struct Row { Real in, want; };
  const Row rows[] = {
      {2.5L, 3},   {-2.5L, -3}, {2.4999L, 2}, {-0.4L, 0},  {0.5L, 1},
      {-0.5L, -1}, {0, 0},      {2147483646.5L, 2147483647.0L},
      {1e15L + 0.5L, 1e15L + 1}, {-1e15L - 0.5L, -1e15L - 1}, {1e30L, 1e30L},
  };
  for (const auto& r : rows) EXPECT_EQ(RoundHalfAway(r.in), r.want) << static_cast<double>(r.in);
  EXPECT_FALSE(std::signbit(RoundHalfAway(-0.4L))) << "never a negative zero";
  EXPECT_FALSE(std::signbit(RoundHalfAway(-0.0L)));
  EXPECT_TRUE(std::isnan(RoundHalfAway(kNaN)));
  EXPECT_EQ(RoundHalfAway(-kInf), -kInf);
}

TEST(NumberRound, GroszOfLineValueNeedsTheLongMantissa) {
  // Round(100 * quantity * price) / 100 for values where double precision
  // lands on the wrong side of the half grosz.
  struct Row { Real quantity, price, want; };
  const Row rows[] = {
      {3, 0.335L, 1.01L},   // 100.5 grosz
      {1, 1.005L, 1.01L},   // 1.005 is below the half in double
      {7, 0.145L, 1.02L},   // 101.5 grosz
      {1000, 12.34567L, 12345.67L},
      {-3, 0.335L, -1.01L},
  };
  for (const auto& r : rows) {
    Real value = RoundHalfAway(100 * r.quantity * r.price) / 100;
    EXPECT_EQ(value, r.want) << static_cast<double>(r.quantity) << " x " << static_cast<double>(r.price);
  }
}

TEST(NumberRound, ToIntAndHalfEven) {
  EXPECT_EQ(RoundToInt(2.5L), 3);
  EXPECT_EQ(RoundToInt(-2147483647.4L), -2147483647);
  EXPECT_EQ(RoundToInt(2147483647.4L), 2147483647);
}

// Outside the 32-bit range the conversion is a run-time error that ends the process.
TEST(RoundToIntDeathTest, OutsideRangeEndsTheProcess) {
  EXPECT_EXIT(RoundToInt(2147483647.5L), testing::ExitedWithCode(kRangeCheckError), "Runtime error 201");
  EXPECT_EXIT(RoundToInt(kNaN), testing::ExitedWithCode(kRangeCheckError), "Runtime error 201");
  EXPECT_EXIT(RoundToInt(-kInf), testing::ExitedWithCode(kRangeCheckError), "Runtime error 201");
  EXPECT_EQ(RoundHalfEven(2.5L), 2);
  EXPECT_EQ(RoundHalfEven(3.5L), 4);
  EXPECT_EQ(RoundHalfEven(-2.5L), -2);
  EXPECT_EQ(RoundHalfEven(2.6L), 3);
  EXPECT_EQ(RoundHalfEven(-0.5L), 0);
  EXPECT_FALSE(std::signbit(RoundHalfEven(-0.5L)));
}

TEST(NumberRound, PowersAndDecimalCount) {
  EXPECT_EQ(PowerReal(10, 3), 1000);
  EXPECT_EQ(PowerReal(10, -2), 0.01L);
  EXPECT_EQ(PowerReal(-2, 3), -8);
  EXPECT_EQ(PowerReal(5, 0), 1);
  EXPECT_EQ(PowerReal(1.0000001L, 2000000000) > 1, true) << "a huge exponent ends";
  EXPECT_EQ(PowerReal(10, 27), 1e27L) << "exact through the long mantissa";
  EXPECT_EQ(PowerInt(2, 10), 1024);
  EXPECT_EQ(PowerInt(-3, 3), -27);
  EXPECT_EQ(PowerInt(7, 0), 1);
  EXPECT_EQ(PowerInt(2, -1), 0);
  EXPECT_EQ(PowerInt(-1, -3), -1);
  EXPECT_EQ(PowerInt(10, 40), 0) << "overflow gives the neutral 0";
  EXPECT_EQ(DecimalCount(12.5L), 1);
  EXPECT_EQ(DecimalCount(12.05L), 2);
  EXPECT_EQ(DecimalCount(12), 0);
  EXPECT_EQ(DecimalCount(0.999L), 0) << "written with 2 decimals it is 1.00";
  EXPECT_EQ(DecimalCount(kNaN), 0);
  EXPECT_EQ(DecimalCount(1e40L), 0) << "the exponent form has no decimals to count";
  EXPECT_EQ(DecimalCount(-0.001L), 0);
}

TEST(NumberBases, DigitTables) {
  struct Row { ShortText got, want; };
  const Row rows[] = {
      {ToHex(255), "FF"},        {ToHex(0), "0"},          {ToHex(-26), "-1A"},
      {ToOctal(8), "10"},        {ToBase36(35), "Z"},      {ToBase26(0), "A"},
      {ToBase26(26), "BA"},      {ToBase63(62), "_"},      {ToBase63(63), "10"},
      {ToBase220(0), "!"},       {ToBase220(93), "~"},     {ToBase220(94), "\x80"},
      {ToBase220(219), "\xFD"},  {ToBase220(220), "\"!"},
      {ToHex(std::numeric_limits<int64_t>::min()), "-8000000000000000"},
  };
  for (const auto& r : rows) EXPECT_EQ(r.got, r.want);
  for (int d = 0; d < 220; ++d) EXPECT_NE(ToBase220(d).At(1), 0x7F) << "0x7F is skipped";
}

}  // namespace
