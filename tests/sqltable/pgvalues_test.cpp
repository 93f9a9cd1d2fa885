// Every byte that a text field can hold survives a round trip through an
// escaped literal.
#include <string>

#include "sqltest.h"

namespace {

class ValueTest : public ConnectedTest {
 protected:
  void SetUp() override {
    ConnectedTest::SetUp();
    ASSERT_EQ(PGRunQueryNoTup("CREATE TABLE v (n int, t text)"), 0);
  }
  // Stores text with key n and reads it back.
  static std::string RoundTrip(int n, const std::string& text) {
    const std::string sql = "INSERT INTO v VALUES (" + std::to_string(n) + ",'" + PGEscapeStr(text) + "')";
    EXPECT_EQ(PGRunQueryNoTup(sql), 0) << sql;
    PGResult res;
    EXPECT_EQ(PGRunQueryWithTup("SELECT t FROM v WHERE n=" + std::to_string(n), res), 0);
    EXPECT_EQ(res.Rows(), 1);
    return std::string(res.Value(0, 0));
  }
};

TEST_F(ValueTest, EveryByteValueSurvives) {
  std::string all;
  for (int c = 1; c <= 255; ++c) all += static_cast<char>(c);
  EXPECT_EQ(RoundTrip(1, all), all);
  for (int c = 1; c <= 255; ++c) {
    const std::string one(1, static_cast<char>(c));
    EXPECT_EQ(RoundTrip(100 + c, one), one) << "byte " << c;
  }
  // A zero byte cannot travel in a statement: it becomes a blank.
  EXPECT_EQ(RoundTrip(2, std::string("a\0b", 3)), "a b");
}

}  // namespace
