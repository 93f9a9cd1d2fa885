#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "base/bigcsv.h"
#include "base/expect_rows.h"

namespace {

using test_rows::ExpectRows;

// A full-size list buffer holding text.
std::vector<char> Buffer(std::string_view text) {
  std::vector<char> b(kBigCsvBytes, '\0');
  std::memcpy(b.data(), text.data(), text.size());
  return b;
}

std::string Text(const std::vector<char>& b) { return std::string(b.data()); }

ShortText Field(const std::vector<char>& b, int index) {
  ShortText out;
  (void)BigCsvField(b, index, ',', '"', out);
  return out;
}

TEST(BigCsv, CountAndFieldsCutAt255) {
  auto b = Buffer("a,\"b,c\",,d");
  auto longField = Buffer("x," + std::string(1000, 'y') + ",z");
  ExpectRows<ShortText>({{Field(b, 1), "a"}, {Field(b, 2), "b,c"}, {Field(b, 3), ""}, {Field(b, 4), "d"},
                         {Field(longField, 2), ShortText(std::string(255, 'y'))}, {Field(longField, 3), "z"}});
  ExpectRows<int>({{BigCsvFieldCount(b), 4}, {BigCsvFieldCount(Buffer("")), 0},
                   {BigCsvFieldCount(Buffer("x;'a;b';y"), ';', '\''), 3}, {BigCsvFieldCount(Buffer("a,")), 2}});
  ShortText out = "stale";
  EXPECT_FALSE(BigCsvField(b, 5, ',', '"', out));
  EXPECT_EQ(out, "");
  EXPECT_FALSE(BigCsvField(b, 0, ',', '"', out));
}

TEST(BigCsv, SetFieldMovesTheTailAndKeepsQuotes) {
  // A quoted field stays quoted, a value with a comma is quoted.
  struct Step { const char* value; int index; const char* text; };
  const Step steps[] = {{"longer", 1, "longer,\"b\",c"}, {"q", 2, "longer,\"q\",c"},
                        {"1,5", 3, "longer,\"q\",\"1,5\""}, {"", 1, ",\"q\",\"1,5\""}};
  auto b = Buffer("a,\"b\",c");
  for (const Step& step : steps) {
    ASSERT_TRUE(BigCsvSetField(b, step.value, step.index));
    EXPECT_EQ(Text(b), step.text);
  }
  EXPECT_EQ(BigCsvFieldCount(b), 3);
}

TEST(BigCsv, SetFieldRefusals) {
  auto b = Buffer("a,b");
  EXPECT_FALSE(BigCsvSetField(b, ShortText(std::string(254, 'x')), 1));
  EXPECT_EQ(Text(b), "a,b");
  EXPECT_TRUE(BigCsvSetField(b, ShortText(std::string(253, 'x')), 1));
  EXPECT_FALSE(BigCsvSetField(b, "v", 3));
  EXPECT_FALSE(BigCsvSetField(b, "v", 0));
  auto empty = Buffer("");
  EXPECT_TRUE(BigCsvSetField(empty, "v", 1));
  EXPECT_EQ(Text(empty), "v");
}

TEST(BigCsv, FullBufferStopsAtItsEnd) {
  std::string big(kBigCsvBytes - 3, 'x');
  auto b = Buffer("a," + big);  // one byte of room left before the zero
  ASSERT_EQ(Text(b).size(), static_cast<std::size_t>(kBigCsvBytes - 1));
  ASSERT_TRUE(BigCsvSetField(b, "abc", 1));
  EXPECT_EQ(Text(b).size(), static_cast<std::size_t>(kBigCsvBytes - 1)) << "never past the buffer";
  EXPECT_EQ(Text(b).substr(0, 2), "a,") << "only what fits was inserted";
  EXPECT_EQ(b[kBigCsvBytes - 1], '\0');
  EXPECT_FALSE(BigCsvAppend(b, "z"));
  std::vector<char> small(8, '\0');
  EXPECT_TRUE(BigCsvAppend(small, "12"));
  EXPECT_TRUE(BigCsvAppend(small, "34"));
  EXPECT_EQ(std::string(small.data()), ",12,34");
  EXPECT_FALSE(BigCsvAppend(small, "5"));
  std::vector<char> none;
  EXPECT_EQ(BigCsvFieldCount(none), 0);
  EXPECT_FALSE(BigCsvSetField(none, "v", 1));
  EXPECT_FALSE(BigCsvAppend(none, "v"));
}

TEST(BigCsv, AppendAddsALastField) {
  auto b = Buffer("a");
  EXPECT_TRUE(BigCsvAppend(b, "b"));
  EXPECT_TRUE(BigCsvAppend(b, "c,d"));
  EXPECT_EQ(Text(b), "a,b,\"c,d\"");
  EXPECT_EQ(BigCsvFieldCount(b), 3);
  EXPECT_EQ(Field(b, 3), "c,d");
}

}  // namespace
