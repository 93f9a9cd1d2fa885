#include "base/numtext.h"

#include <gtest/gtest.h>

#include "base/mazovia.h"

namespace {

TEST(TextToInt, FindsTheNumberInsideTheText) {
  struct Case {
    ShortText text;
    int32_t value;
  };
  const Case cases[] = {
      {"500", 500},         {" 500 ms", 500},     {"abc", 0},          {"", 0},
      {"0", 0},             {"-17", -17},         {"+8", 8},           {"x-3y", -3},
      {"007", 7},           {"12abc34", 0},       {"+-5", 0},          {"- 5", 0},
      {"-", 0},             {"+", 0},             {"1.5", 0},          {"70000", 70000},
      {"2147483647", 2147483647}, {"-2147483648", INT32_MIN}, {"2147483648", 0},
      {"99999999999999999999", 0}, {"nr 12", 12},  {"12 szt.", 12},
  };
  for (const Case& c : cases) EXPECT_EQ(TextToInt(c.text), c.value) << c.text.Str();
}

// Decimal fractions read as the nearest extended value, which differs from the double one.
TEST(TextToReal, FindsTheNumberAndReadsTheFirstCommaAsPoint) {
  struct Case {
    ShortText text;
    Real value;
  };
  const Case cases[] = {
      {"12,5 zł"_mz, 12.5L}, {"12.5", 12.5L},   {"abc", 0},       {"", 0},
      {".5", 0.5L},          {"5.", 5},         {".", 0},         {"-.25", -0.25L},
      {"+3", 3},             {"1,234.5", 0},    {"1.2.3", 0},     {"1e3", 1000},
      {"cena: -0,01", -0.01L}, {"1e", 1},       {"--1", 0},        {"12345678901234567890", 12345678901234567890.0L},
      {"1e99999", 0},        {"0.1", 0.1L},     {"199.99", 199.99L},
  };
  for (const Case& c : cases) EXPECT_EQ(TextToReal(c.text), c.value) << c.text.Str();
}

}  // namespace
