#include <gtest/gtest.h>

#include <limits>
#include <string>

#include "base/expect_rows.h"
#include "base/numbers_format.h"

namespace {

constexpr Real kNaN = std::numeric_limits<Real>::quiet_NaN();
constexpr Real kInf = std::numeric_limits<Real>::infinity();

ShortText Blanks(int n) { return ShortText(std::string(static_cast<std::size_t>(n), ' ')); }

void ExpectRows(std::initializer_list<test_rows::Row<ShortText>> rows) { test_rows::ExpectRows(rows); }

TEST(FormatInt, RightAligned) {
  ExpectRows({
      {IntText(42, 5), "   42"}, {IntText(-42, 5), "  -42"}, {IntText(123456, 3), "123456"}, {IntText(0, 0), "0"},
      {IntText(std::numeric_limits<int64_t>::min(), 1), "-9223372036854775808"},
  });
  EXPECT_EQ(IntText(7, 400).Length(), 255);
}

TEST(FormatFixed, FixedWithinLimitsAndExponentBeyond) {
  ExpectRows({
      {FormatFixed(8, 2, 12.346L), "   12.35"}, {FormatFixed(8, 2, 1.005L), "    1.01"},
      {FormatFixed(8, 2, 0.125L), "    0.13"}, {FormatFixed(8, 2, -0.125L), "   -0.13"},
      {FormatFixed(8, 2, 99999.99L), "99999.99"}, {FormatFixed(8, 2, -9999.99L), "-9999.99"},
      {FormatFixed(8, 2, 100000), " 1.0E+0005"}, {FormatFixed(8, 2, -10000), "-1.0E+0004"},
      {FormatFixed(12, 2, 123456789012.0L), " 1.235E+0011"}, {FormatFixed(20, 2, 1e30L), " 1.00000000000E+0030"},
      {FormatFixed(5, 0, 99999), "99999"}, {FormatFixed(5, 0, 100000), " 1.0E+0005"},
      {FormatFixed(5, 0, -9999), "-9999"}, {FormatFixed(5, 0, 2.5L), "    3"},
      {FormatFixed(10, 3, 0.1L + 0.2L), "     0.300"},
      {FormatFixed(3, 2, 1.5L), " 1.5E+0000"},  // 10^(3-2-1) = 1 is the limit
  });
  EXPECT_EQ(FormatFixed(300, 2, 1.5L), Blanks(251) + "1.50") << "width above 255 counts as 255";
}

TEST(FormatFixed, NeverMinusZero) {
  ExpectRows({
      {FormatFixed(8, 2, -0.001L), "    0.00"}, {FormatFixed(8, 2, -0.0L), "    0.00"},
      {FormatFixed(4, 2, -0.004L), "0.00"}, {FormatFixed(5, 0, -0.4L), "    0"},
      {FormatFixedOrBlank(8, 2, -0.001L), "        "}, {FormatFixedOrBlank(8, 2, 0.005L), "    0.01"},
      {FormatFixedZero(8, 2, 0), "       -"}, {FormatFixedZero(8, 2, -0.0L), "       -"},
      {FormatFixedZero(8, 2, 0.001L), "    0.00"},
  });
}

TEST(FormatAny, NaNAndInfinitiesGiveMarksToTheWidth) {
  for (Real bad : {kNaN, -kNaN, kInf, -kInf}) {
    ExpectRows({
        {FormatFixed(8, 2, bad), "????????"}, {FormatFixedOrBlank(6, 2, bad), "??????"},
        {FormatFixedZero(6, 2, bad), "??????"}, {FormatCompact(5, bad), "?????"}, {FormatRound(5, bad), "?????"},
        {FormatMoney(7, 2, bad), "???????"}, {FormatMoneyRounded(7, 2, bad), "???????"},
        {FormatFixed(0, 2, bad), "?"},
    });
  }
  EXPECT_EQ(FormatFixed(300, 2, kNaN).Length(), 255);
  ExpectRows({{FormatFull(kNaN), "?"}, {FormatFull(kInf), "!"}, {FormatFull(-kInf), "!"},
              {FormatShortest(8, kNaN), "?"}, {FormatShortest(8, -kInf), "!"}});
}

TEST(FormatCompact, TrimsAndFits) {
  ExpectRows({
      {FormatCompact(6, 0), "     -"}, {FormatCompact(6, -0.0L), "     -"}, {FormatCompact(6, 1.5L), "   1.5"},
      {FormatCompact(6, 100), "   100"}, {FormatCompact(6, -0.5L), "  -0.5"}, {FormatCompact(3, -0.5L), "-.5"},
      {FormatCompact(3, 0.25L), ".25"}, {FormatCompact(4, -0.00001L), "   0"}, {FormatCompact(4, -0.001234L), "   0"},
      {FormatCompact(5, -0.001234L), "-.001"}, {FormatCompact(3, 123.456L), "123"},
      {FormatCompact(4, 1234.5L), "1234"}, {FormatCompact(3, 1234), "???"}, {FormatCompact(1, 5), "5"},
      {FormatCompact(6, 1.0L / 3), ".33333"},
  });
}

TEST(FormatFull, AllDigitsTrimmed) {
  ExpectRows({
      {FormatFull(12.5L), "12.5"}, {FormatFull(-12.5L), "-12.5"}, {FormatFull(100), "100"}, {FormatFull(0), ""},
      {FormatFull(-0.0L), ""}, {FormatFull(0.1L), "0.1"}, {FormatFull(0.1L + 0.2L), "0.3"}, {FormatFull(1e-40L), "0"},
      {FormatFull(-1e-40L), "-0"}, {FormatFull(1.0L / 3), "0.333333333333333333"},
      {FormatFull(123456789012345678.0L), "123456789012345678"},
  });
}

TEST(FormatShortest, FitsByCuttingOrExponent) {
  ExpectRows({
      {FormatShortest(10, 12.5L), "12.5"}, {FormatShortest(4, 123.456L), "123"},
      {FormatShortest(5, 123.456L), "123.4"}, {FormatShortest(3, 123.456L), "123"}, {FormatShortest(2, -0.4L), "0"},
      {FormatShortest(4, -0.4L), "-0.4"}, {FormatShortest(5, -1e-40L), "0"}, {FormatShortest(8, 1.5e12L), "1.5E+12"},
      {FormatShortest(6, 1.5e12L), "2E+12"}, {FormatShortest(9, -1.25e15L), "-1.25E+15"},
      {FormatShortest(8, 123456789), "1.235E+8"}, {FormatShortest(3, 1.5e12L), "2E+12"}, {FormatShortest(5, 0), ""},
  });
}

TEST(FormatRound, RoundsToTheWidth) {
  ExpectRows({
      {FormatRound(6, 12.3456L), "12.346"}, {FormatRound(8, 12.3456L), "12.34560"}, {FormatRound(5, 0.5L), "0.500"},
      {FormatRound(5, -0.5L), "-.500"}, {FormatRound(5, 0.99996L), "1.000"}, {FormatRound(6, -12.3L), "-12.30"},
      {FormatRound(3, 12.6L), " 13"}, {FormatRound(6, -0.00001L), "0.0000"},
  });
}

TEST(FormatMoney, GroupedWithDecimalComma) {
  ExpectRows({
      {FormatMoney(14, 2, 1234567.891L), "  1 234 567,89"}, {FormatMoney(10, 2, -1234.5L), " -1 234,50"},
      {FormatMoney(6, 0, 999), "   999"}, {FormatMoney(8, 0, 1000), "   1 000"},
      {FormatMoney(10, 2, -0.001L), "      0,00"}, {FormatMoney(8, 2, 100000), "????????"},
      {FormatMoney(8, 2, 12345.67L), "12 345,67"}, {FormatMoneyRounded(10, 2, 2.675L), "      2,68"},
      {FormatMoneyRounded(10, 2, -2.675L), "     -2,68"}, {FormatMoneyRounded(10, 0, 1234.5L), "     1 235"},
  });
}

TEST(FormatGroup, InsertsBlanksWhileNarrower) {
  ExpectRows({
      {GroupThousands(20, 2, "1234567.89"), "1 234 567.89"}, {GroupThousands(20, 2, "-1234567.89"), "-1 234 567.89"},
      {GroupThousands(11, 2, "1234567.89"), "1234 567.89"}, {GroupThousands(20, 0, "1234"), "1 234"},
      {GroupThousands(20, 0, "123"), "123"}, {GroupThousands(20, 2, "   1234.00"), "   1 234.00"},
      {GroupThousands(20, 0, ""), ""},
  });
}

}  // namespace
