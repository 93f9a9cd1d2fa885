#include <gtest/gtest.h>

#include "base/expect_rows.h"
#include "base/barcode.h"

namespace {

using test_rows::ExpectRows;

TEST(Barcode, Ean13CheckDigit) {
  // A 13th character is ignored, a rest of 0 stays 0, fewer than 12 digits give nothing.
  ExpectRows<ShortText>({{Ean13CheckDigit("590123412345"), "7"}, {Ean13CheckDigit("5901234123457"), "7"},
                         {Ean13CheckDigit("978030640615"), "7"}, {Ean13CheckDigit("000000000000"), "0"},
                         {Ean13CheckDigit("59012341234"), ""}, {Ean13CheckDigit(""), ""},
                         {Ean13CheckDigit("59012341234x"), ""}});
}

TEST(Barcode, Ean13AndIsbnValidity) {
  struct Row { const char* code; bool ean, either; };
  const Row rows[] = {
      {"5901234123457", true, true},     {"5901234123458", false, false},
      {"590-1234-12345-7", true, true},  {"590123412345", false, false},
      {"0306406152", false, true},       {"0-306-40615-2", false, true},
      {"0306406153", false, false},      {"080442957X", false, true},
      {"080442957x", false, true},       {"08044295X7", false, false},
      {"", false, false},                {"97803064061575", false, false},
  };
  for (const auto& r : rows) {
    EXPECT_EQ(Ean13Valid(r.code), r.ean) << r.code;
    EXPECT_EQ(IsbnOrEanValid(r.code), r.either) << r.code;
  }
}

TEST(Barcode, EanToIsbn) {
  // 12 characters are enough; 968 is not a book code.
  ExpectRows<ShortText>({{EanToIsbn("9780306406157"), "03-06406-15-2"}, {EanToIsbn("978080442957"), "08-04429-57-X"},
                         {EanToIsbn("9990306406157"), "03-06406-15-2"}, {EanToIsbn("9680306406157"), ""},
                         {EanToIsbn("97803064061"), ""}, {EanToIsbn("978030640a157"), ""}});
}

}  // namespace
