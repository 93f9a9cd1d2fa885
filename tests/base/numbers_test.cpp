#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "base/expect_rows.h"
#include "base/numbers.h"
#include "base/platform.h"

namespace {

using test_rows::ExpectRows;

constexpr Real kNaN = std::numeric_limits<Real>::quiet_NaN();
constexpr Real kInf = std::numeric_limits<Real>::infinity();

TEST(NumberParse, LooseReadsDigitsAndFirstPoint) {
  // Only the first point counts; a minus anywhere makes the number negative.
  ExpectRows<Real>({{TextToRealLoose("12.5 zł"), 12.5L}, {TextToRealLoose("1 234.5.6"), 1234.56L},
                    {TextToRealLoose("12-"), -12.0L}, {TextToRealLoose("a,b"), 0}, {TextToRealLoose(""), 0},
                    {TextToRealLoose("-"), 0}});
  EXPECT_FALSE(std::signbit(TextToRealLoose("-0")));
}

TEST(NumberParse, SumExpression) {
  // Written by the shortest form; a pure zero is an empty text.
  ExpectRows<ShortText>({{SumExpression("12.5+3-1"), "14.5"}, {SumExpression("-5+2"), "-3"},
                         {SumExpression("0.1+0.2", 10), "0.3"}, {SumExpression("7"), "7"}, {SumExpression("1-1"), ""}});
}

TEST(NumberParse, Base36) {
  ExpectRows<int64_t>({{ParseBase36("Z"), 35}, {ParseBase36("10"), 36}, {ParseBase36("-1A"), -46},
                       {ParseBase36("1a"), 0}, {ParseBase36(""), 0}, {ParseBase36("-"), 0}});
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
      {1000, 12.34567L, 12345.67L}, {-3, 0.335L, -1.01L},
  };
  for (const auto& r : rows) {
    Real value = RoundHalfAway(100 * r.quantity * r.price) / 100;
    EXPECT_EQ(value, r.want) << static_cast<double>(r.quantity) << " x " << static_cast<double>(r.price);
  }
}

TEST(NumberRound, ToIntAndHalfEven) {
  ExpectRows<int32_t>({{RoundToInt(2.5L), 3}, {RoundToInt(-2147483647.4L), -2147483647},
                       {RoundToInt(2147483647.4L), 2147483647}});
}

// Outside the 32-bit range the conversion is a run-time error that ends the process.
TEST(RoundToIntDeathTest, OutsideRangeEndsTheProcess) {
  EXPECT_EXIT(RoundToInt(2147483647.5L), testing::ExitedWithCode(kRangeCheckError), "Runtime error 201");
  EXPECT_EXIT(RoundToInt(kNaN), testing::ExitedWithCode(kRangeCheckError), "Runtime error 201");
  EXPECT_EXIT(RoundToInt(-kInf), testing::ExitedWithCode(kRangeCheckError), "Runtime error 201");
  ExpectRows<Real>({{RoundHalfEven(2.5L), 2}, {RoundHalfEven(3.5L), 4}, {RoundHalfEven(-2.5L), -2},
                    {RoundHalfEven(2.6L), 3}, {RoundHalfEven(-0.5L), 0}});
  EXPECT_FALSE(std::signbit(RoundHalfEven(-0.5L)));
}

TEST(NumberRound, PowersAndDecimalCount) {
  // 10^27 is exact through the long mantissa.
  ExpectRows<Real>({{PowerReal(10, 3), 1000}, {PowerReal(10, -2), 0.01L}, {PowerReal(-2, 3), -8},
                    {PowerReal(5, 0), 1}, {PowerReal(10, 27), 1e27L}});
  EXPECT_GT(PowerReal(1.0000001L, 2000000000), 1) << "a huge exponent ends";
  // An overflow gives the neutral 0.
  ExpectRows<int64_t>({{PowerInt(2, 10), 1024}, {PowerInt(-3, 3), -27}, {PowerInt(7, 0), 1}, {PowerInt(2, -1), 0},
                       {PowerInt(-1, -3), -1}, {PowerInt(10, 40), 0}});
  // 0.999 written with 2 decimals is 1.00; the exponent form of 1e40 has no decimals to count.
  ExpectRows<int>({{DecimalCount(12.5L), 1}, {DecimalCount(12.05L), 2}, {DecimalCount(12), 0},
                   {DecimalCount(0.999L), 0}, {DecimalCount(kNaN), 0}, {DecimalCount(1e40L), 0},
                   {DecimalCount(-0.001L), 0}});
}

TEST(NumberBases, DigitTables) {
  ExpectRows<ShortText>({
      {ToHex(255), "FF"},        {ToHex(0), "0"},          {ToHex(-26), "-1A"},
      {ToOctal(8), "10"},        {ToBase36(35), "Z"},      {ToBase26(0), "A"},
      {ToBase26(26), "BA"},      {ToBase63(62), "_"},      {ToBase63(63), "10"},
      {ToBase220(0), "!"},       {ToBase220(93), "~"},     {ToBase220(94), "\x80"},
      {ToBase220(219), "\xFD"},  {ToBase220(220), "\"!"},
      {ToHex(std::numeric_limits<int64_t>::min()), "-8000000000000000"},
  });
  for (int d = 0; d < 220; ++d) EXPECT_NE(ToBase220(d).At(1), 0x7F) << "0x7F is skipped";
}

}  // namespace
