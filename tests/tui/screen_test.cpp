// The logical screen: window, cursor, writes and copies, read from the shadows.
#include <gtest/gtest.h>

#include <algorithm>

#include "base/mazovia.h"
#include "base/expect_rows.h"
#include "tui_fixture.h"

namespace {

using test_rows::ExpectRows;

using tui_test::AttrAt;
using tui_test::CharAt;
using tui_test::Cells;

class ScreenTest : public tui_test::TuiTest {};

TEST_F(ScreenTest, WriteAtStoresBytesAndAttributeInTheShadows) {
  TextAttr(0x1E);
  WriteAt(5, 3, ShortText("abc"));
  EXPECT_EQ(Cells(3, 5, 3), "abc");
  ExpectRows<int>({{AttrAt(5, 3), 0x1E}, {AttrAt(8, 3), 0x07}, {WhereX(), 8}, {WhereY(), 3}, {CharAtCursor(), ' '}});
  GotoXY(6, 3);
  ExpectRows<int>({{CharAtCursor(), 'b'}, {AttrAtCursor(), 0x1E}});
}

TEST_F(ScreenTest, WindowValuesOutOfRangeFallBack) {
  struct Case {
    int l, t, r, b;
    WindowRect want;
  } cases[] = {
      {5, 6, 70, 20, {5, 6, 70, 20}},  {0, 0, 81, 26, {1, 1, 80, 25}},
      {-3, 30, 100, -1, {1, 1, 80, 25}}, {80, 25, 80, 25, {80, 25, 80, 25}},
  };
  for (const auto& c : cases) {
    Window(c.l, c.t, c.r, c.b);
    const WindowRect w = CurrentWindow();
    ExpectRows<int>({{w.left, c.want.left}, {w.top, c.want.top}, {w.right, c.want.right}, {w.bottom, c.want.bottom}});
  }
  Window(5, 6, 70, 20);
  uint16_t lo = WindowMinPacked(), hi = WindowMaxPacked();
  EXPECT_EQ(lo, (5 << 8) | 4);
  Window(1, 1, 80, 25);
  WindowPacked(lo, hi);
  EXPECT_EQ(CurrentWindow().right, 70);
  EXPECT_EQ(CurrentWindow().bottom, 20);
}

TEST_F(ScreenTest, GotoOutsideTheWindowBecomesOne) {
  Window(11, 6, 20, 10);
  // Each place asked and where the cursor is after it: a coordinate outside the window becomes 1.
  const struct {
    int x, y, whereX, whereY;
  } moves[] = {{10, 5, 10, 5}, {11, 3, 1, 3}, {0, 6, 1, 1}};
  for (const auto& m : moves) {
    GotoXY(m.x, m.y);
    ExpectRows<int>({{WhereX(), m.whereX}, {WhereY(), m.whereY}});
  }
}

TEST_F(ScreenTest, WritesAreCutAtTheWindowAndNothingOutsideIsTouched) {
  Window(11, 6, 20, 10);
  WriteAt(8, 1, ShortText("abcdef"));
  EXPECT_EQ(Cells(6, 18, 3), "abc");
  EXPECT_EQ(CharAt(21, 6), ' ');
  WriteAt(11, 1, ShortText("x"));
  WriteAt(1, 6, ShortText("y"));
  PutCh(0, 1, 'z');
  PutCh(1, 6, 'z');
  PutCh(10, 5, 'q');
  EXPECT_EQ(CharAt(20, 10), 'q');
  std::string screen;
  for (int r = 1; r <= 25; ++r) screen += RowText(r).Str();
  EXPECT_EQ(std::count(screen.begin(), screen.end(), ' '), 2000 - 4) << "nothing but abc and q is written";
  Window(1, 1, 80, 25);
  WriteAt(1, 25, ShortText(std::string(100, 'w')));
  EXPECT_EQ(Cells(25, 1, 80), std::string(80, 'w'));
  EXPECT_EQ(WhereX(), 80);
}

TEST_F(ScreenTest, ClearWindowAndWriteCentred) {
  TextAttr(0x70);
  WriteAt(1, 5, ShortText(std::string(80, '#')));
  Window(21, 4, 40, 6);
  TextAttr(0x1F);
  ClearWindow();
  EXPECT_EQ(Cells(5, 19, 24), "##" + std::string(20, ' ') + "##");
  ExpectRows<int>({{AttrAt(21, 4), 0x1F}, {AttrAt(40, 6), 0x1F}, {AttrAt(20, 5), 0x70}, {WhereX(), 1}, {WhereY(), 1}});
  GotoXY(1, 2);
  WriteCentred(ShortText("abcd"));  // (20 - 4) / 2 + 1 = 9
  EXPECT_EQ(Cells(5, 29, 4), "abcd");
  GotoXY(1, 3);
  WriteCentred(ShortText(std::string(30, 'l')));
  EXPECT_EQ(Cells(6, 21, 20), std::string(20, 'l'));
}

TEST_F(ScreenTest, RowTextOfEveryRowAndNoneOutside) {
  WriteAt(1, 25, "Ąż"_mz);
  EXPECT_EQ(RowText(25).Length(), 80);
  EXPECT_EQ(RowText(25).Copy(1, 2), "Ąż"_mz);
  EXPECT_TRUE(RowText(0).Empty());
  EXPECT_TRUE(RowText(26).Empty());
}

TEST_F(ScreenTest, SaveAndRestoreBringBackBothShadowsAndKeepCursorWindowAttribute) {
  TextAttr(0x1E);
  WriteAt(3, 3, ShortText("saved"));
  ScreenCopyPtr copy;
  ScreenSave(copy);
  ASSERT_TRUE(copy);
  EXPECT_EQ(copy->bytes[2 * 81], 80);  // each row of the copy starts with its length byte
  TextAttr(0x4F);
  WriteAt(1, 3, ShortText("overwritten"));
  Window(5, 5, 30, 10);
  GotoXY(4, 2);
  ScreenRestore(copy);
  EXPECT_FALSE(copy);
  EXPECT_EQ(Cells(3, 1, 11), "  saved    ");
  ExpectRows<int>({{AttrAt(3, 3), 0x1E}, {AttrAt(1, 3), 0x07}, {CurrentWindow().left, 5}, {WhereX(), 4},
                   {WhereY(), 2}, {CurrentAttr(), 0x4F}});
  Sent();
  ScreenRestore(copy);  // empty: nothing at all
  EXPECT_EQ(Sent(), "");
}

}  // namespace
