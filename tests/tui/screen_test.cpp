#include <gtest/gtest.h>

#include "base/mazovia.h"
#include "tui_fixture.h"

namespace {

using tui_test::AttrAt;
using tui_test::CharAt;
using tui_test::Cells;

class ScreenTest : public tui_test::TuiTest {};

TEST_F(ScreenTest, WriteAtStoresBytesAndAttributeInTheShadows) {
  TextAttr(0x1E);
  WriteAt(5, 3, ShortText("abc"));
  EXPECT_EQ(Cells(3, 5, 3), "abc");
  EXPECT_EQ(AttrAt(5, 3), 0x1E);
  EXPECT_EQ(AttrAt(8, 3), 0x07);
  EXPECT_EQ(WhereX(), 8);
  EXPECT_EQ(WhereY(), 3);
}
}  // namespace
