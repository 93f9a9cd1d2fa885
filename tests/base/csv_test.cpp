#include "base/expect_rows.h"
#include "base/csv.h"

#include <gtest/gtest.h>

namespace {

using test_rows::ExpectRows;

struct FieldCase {
  const char* list;
  int index;
  const char* field;
};

TEST(CsvFieldCount, CountsSeparatorsOutsideQuotes) {
  ExpectRows<int>({{CsvFieldCount(""), 0}, {CsvFieldCount("a"), 1}, {CsvFieldCount(","), 2},
                   {CsvFieldCount("a,b,"), 3}, {CsvFieldCount("\"x,y\",z"), 2}, {CsvFieldCount("\"open,quote"), 1},
                   {CsvFieldCount("1,2,\"srvfisk\\1\",,0"), 5}});
}

TEST(CsvField, EdgeCases) {
  const FieldCase cases[] = {
      {"a,b,", 3, "0"},          // a trailing ',' reads as a "0" behind it
      {"a,b,", 2, "b"}, {"\"x,y\",z", 1, "x,y"}, {"\"x,y\",z", 2, "z"}, {"a,b", 0, ""}, {"a,b", -1, ""},
      {"a,b", 3, ""}, {"", 1, ""}, {"a,,c", 2, ""}, {",b", 1, ""},
      {"\"\",b", 1, ""},           // an empty quoted field
      {"\",b", 1, "\",b"},          // an unclosed quote runs to the end
      {"\"a\"b,c", 1, "\"a\"b"},     // quotes not at both ends stay
      {"  x  ,y", 1, "  x  "},       // blanks are kept
      {"9,1,\"srvfisk\\1\",,0,,", 7, "0"}, {"9,1,\"srvfisk\\1\",,0", 6, ""},
      {"9,1,\"srvfisk\\1\",,0", 3, "srvfisk\\1"},
  };
  for (const FieldCase& c : cases)
    EXPECT_EQ(CsvField(c.list, c.index).Str(), c.field) << c.list << " @" << c.index;
}

TEST(CsvField, TrailingSeparatorOnFullListKeepsLastField) {
  ShortText list(std::string(254, 'x') + ",");
  EXPECT_EQ(list.Length(), 255);
  EXPECT_EQ(CsvFieldCount(list), 2);
  EXPECT_EQ(CsvField(list, 2).Str(), "0");
  EXPECT_EQ(CsvField(list, 1).Length(), 254);
}

TEST(CsvField, NumbersThroughTheLenientParsers) {
  const ShortText line = "\"Chleb\",1.5,\"A\",\"3,20 zł\",szt";
  // "1.5" is no integer as a whole.
  ExpectRows<Real>({{CsvFieldReal(line, 2), 1.5L}, {CsvFieldReal(line, 4), 3.2L}, {Real(CsvFieldInt(line, 2)), 0},
                    {Real(CsvFieldInt(line, 1)), 0}, {Real(CsvFieldInt(line, 9)), 0}});
}

}  // namespace
