#include <gtest/gtest.h>

#include <string>

#include "base/textcsv.h"

namespace {

TEST(CsvTwoPart, FieldsAcrossTheJoin) {
  ShortText first(std::string(250, 'a') + ",bb");
  ShortText second("b,\"c,d\"x,e,");
  EXPECT_EQ(CsvFieldTwoPart(first, second, 2), "bbb") << "a field across the two halves";
  EXPECT_EQ(CsvFieldTwoPart(first, second, 3), "c,d") << "a quoted field ends at the next quote";
  EXPECT_EQ(CsvFieldTwoPart(first, second, 4), "e");
  EXPECT_EQ(CsvFieldTwoPart(first, second, 5), "0") << "a trailing empty field reads as 0";
  EXPECT_EQ(CsvFieldTwoPart(first, second, 6), "");
  EXPECT_EQ(CsvFieldTwoPart(first, second, 0), "");
  EXPECT_EQ(CsvFieldTwoPart(first, second, 1).Length(), 250);
  EXPECT_EQ(CsvFieldTwoPart("", "", 1), "");
  EXPECT_EQ(CsvFieldTwoPart("", "x", 1), "x");
  ShortText full(std::string(255, 'y'));
  EXPECT_EQ(CsvFieldTwoPart(full, full, 1).Length(), 255) << "a 510-byte field is cut at 255";
}

TEST(CsvRebuild, PadAndReplace) {
  EXPECT_EQ(CsvPadToField("a", 3), "a,,");
  EXPECT_EQ(CsvPadToField("a,b,c", 2), "a,b,c");
  EXPECT_EQ(CsvPadToField("", 1), "");
  EXPECT_EQ(CsvPadToField("", 3), ",,");
  EXPECT_EQ(CsvPadToField(ShortText(std::string(255, 'x')), 3).Length(), 255);
  EXPECT_EQ(CsvReplaceField("a,b,c", "X", 2), "a,X,c");
  EXPECT_EQ(CsvReplaceField("a,\"b,c\",d", "X", 2), "a,X,d");
  EXPECT_EQ(CsvReplaceField("a", "X", 3), "a,,X");
  EXPECT_EQ(CsvReplaceField("", "X", 1), "X");
  EXPECT_EQ(CsvReplaceField("a,b", "1,5", 1), "\"1,5\",b");
  EXPECT_EQ(CsvReplaceField("a,b", "X", 0), "a,b");
  ShortText list(std::string(250, 'x') + ",b,c");
  ShortText r = CsvReplaceField(list, "123456789", 2);
  EXPECT_EQ(r.Length(), 255);
  EXPECT_EQ(r.View().substr(250), ",12,c") << "cut from the end of the field";
}

TEST(CsvRebuild, Normalize) {
  ShortText a = "x,,\"y,z\"", b = "1,2";
  int countA = 0, countB = 0;
  EXPECT_TRUE(CsvNormalize(a, b, countA, countB));
  EXPECT_EQ(a, "\"x\",,\"y,z\"");
  EXPECT_EQ(b, "\"1\",\"2\"");
  EXPECT_EQ(countA, 3);
  EXPECT_EQ(countB, 2);
  ShortText c = "p", d = "1,2,";
  EXPECT_FALSE(CsvNormalize(c, d, countA, countB)) << "b has fields left over";
  EXPECT_EQ(d, "\"1\",\"2\",");
  EXPECT_EQ(countB, 3);
  ShortText e, f;
  EXPECT_TRUE(CsvNormalize(e, f, countA, countB));
  EXPECT_EQ(countA, 0);
  EXPECT_EQ(e, "");
}

}  // namespace
