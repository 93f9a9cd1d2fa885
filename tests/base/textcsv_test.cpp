#include <gtest/gtest.h>

#include <string>

#include "base/expect_rows.h"
#include "base/textcsv.h"

namespace {

using test_rows::ExpectRows;

TEST(CsvTwoPart, FieldsAcrossTheJoin) {
  ShortText first(std::string(250, 'a') + ",bb");
  ShortText second("b,\"c,d\"x,e,");
  // Field 2 runs across the two halves, a quoted field ends at the next quote, a trailing empty field reads as 0.
  ExpectRows<ShortText>({{CsvFieldTwoPart(first, second, 2), "bbb"}, {CsvFieldTwoPart(first, second, 3), "c,d"},
                         {CsvFieldTwoPart(first, second, 4), "e"}, {CsvFieldTwoPart(first, second, 5), "0"},
                         {CsvFieldTwoPart(first, second, 6), ""}, {CsvFieldTwoPart(first, second, 0), ""},
                         {CsvFieldTwoPart("", "", 1), ""}, {CsvFieldTwoPart("", "x", 1), "x"}});
  EXPECT_EQ(CsvFieldTwoPart(first, second, 1).Length(), 250);
  ShortText full(std::string(255, 'y'));
  EXPECT_EQ(CsvFieldTwoPart(full, full, 1).Length(), 255) << "a 510-byte field is cut at 255";
}

TEST(CsvRebuild, PadAndReplace) {
  ExpectRows<ShortText>({{CsvPadToField("a", 3), "a,,"}, {CsvPadToField("a,b,c", 2), "a,b,c"},
                         {CsvPadToField("", 1), ""}, {CsvPadToField("", 3), ",,"},
                         {CsvReplaceField("a,b,c", "X", 2), "a,X,c"}, {CsvReplaceField("a,\"b,c\",d", "X", 2), "a,X,d"},
                         {CsvReplaceField("a", "X", 3), "a,,X"}, {CsvReplaceField("", "X", 1), "X"},
                         {CsvReplaceField("a,b", "1,5", 1), "\"1,5\",b"}, {CsvReplaceField("a,b", "X", 0), "a,b"}});
  EXPECT_EQ(CsvPadToField(ShortText(std::string(255, 'x')), 3).Length(), 255);
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
