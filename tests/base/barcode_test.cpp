#include <gtest/gtest.h>

#include "base/barcode.h"

namespace {

TEST(Barcode, Ean13CheckDigit) {
  EXPECT_EQ(Ean13CheckDigit("590123412345"), "7");
  EXPECT_EQ(Ean13CheckDigit("5901234123457"), "7") << "a 13th character is ignored";
  EXPECT_EQ(Ean13CheckDigit("978030640615"), "7");
  EXPECT_EQ(Ean13CheckDigit("000000000000"), "0") << "a rest of 0 stays 0";
  EXPECT_EQ(Ean13CheckDigit("59012341234"), "") << "fewer than 12 characters";
  EXPECT_EQ(Ean13CheckDigit(""), "");
  EXPECT_EQ(Ean13CheckDigit("59012341234x"), "");
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
  EXPECT_EQ(EanToIsbn("9780306406157"), "03-06406-15-2");
  EXPECT_EQ(EanToIsbn("978080442957"), "08-04429-57-X") << "12 characters are enough";
  EXPECT_EQ(EanToIsbn("9990306406157"), "03-06406-15-2");
  EXPECT_EQ(EanToIsbn("9680306406157"), "") << "not a book code";
  EXPECT_EQ(EanToIsbn("97803064061"), "");
  EXPECT_EQ(EanToIsbn("978030640a157"), "");
}

}  // namespace
