#include "tui/picklist.h"

#include <gtest/gtest.h>

#include "base/expect_rows.h"
#include "base/file_fixture.h"
#include "form_fixture.h"

namespace {

using test_rows::ExpectRows;

using namespace form_test;

const ShortText kThree("Alfa@Beta@Gamma");

// Numbered options "n1@n2@...".
ShortText Numbered(int count) {
  ShortText t;
  for (int i = 1; i <= count; ++i) {
    if (i > 1) t += '@';
    t += ShortText(("n" + std::to_string(i)).c_str());
  }
  return t;
}

class PickListTest : public FormTest {
 protected:
  int16_t Pick(const ShortText& options, int16_t initial = 1, int16_t endMode = 1, uint8_t column = 0,
               uint8_t row = 0, const ShortText& title = ShortText("Wybierz:")) {
    return PickList(1, initial, endMode, column, row, title, options, ch_, scan_);
  }
  unsigned char ch_ = 0, scan_ = 0;
};

TEST_F(PickListTest, ColourSchemes) {
  const unsigned char want[] = {0x07, 0x1F, 0x1E, 0x0F, 0x4F, 0x47, 0x4E, 0x0E, 0x6E, 0x07, 0x07};
  for (int i = 0; i < 11; ++i) EXPECT_EQ(PickListAttr(static_cast<uint8_t>(i)), want[i]) << i;
  EXPECT_EQ(PickListAttr(255), 0x07);
}

TEST_F(PickListTest, KeysMoveChooseOrEndByTheEndMode) {
  const std::string wide = std::string(120, 'x') + "@y";
  struct Case {
    ShortText options;
    int16_t initial, endMode;
    std::vector<KeyPair> keys;
    int16_t want;
    KeyPair ended;
  } cases[] = {
      // Moves stop at the ends.
      {kThree, 1, 1, {keys::kDown, keys::kDown, keys::kDown, keys::kDown, keys::kEnter}, 3, keys::kEnter},
      {kThree, 1, 1, {keys::kUp, keys::kUp, keys::kEnter}, 1, keys::kEnter},
      {kThree, 1, 1, {keys::kEnd, keys::kUp, keys::kEnter}, 2, keys::kEnter},
      {kThree, 1, 1, {keys::kEnd, keys::kHome, keys::kEnter}, 1, keys::kEnter},
      {kThree, 1, 1, {keys::kTab, keys::kEnter}, 2, keys::kEnter}, {ShortText(), 1, 1, {keys::kEnter}, 1, keys::kEnter},
      {ShortText(wide), 1, 1, {keys::kDown, keys::kEnter}, 2, keys::kEnter},
      // An initial choice out of range starts on the first row.
      {kThree, 0, 1, {keys::kEnter}, 1, keys::kEnter}, {kThree, -1, 1, {keys::kEnter}, 1, keys::kEnter},
      {kThree, 4, 1, {keys::kEnter}, 1, keys::kEnter}, {kThree, 1000, 1, {keys::kEnter}, 1, keys::kEnter},
      {kThree, 3, 1, {keys::kEnter}, 3, keys::kEnter},
      // End mode 0 ignores Esc and Left; 1 ends on Esc; 2 on Left and Right too.
      {kThree, 1, 0, {keys::kEsc, keys::kLeft, keys::kDown, keys::kEnter}, 2, keys::kEnter},
      {kThree, 2, 1, {keys::kLeft, keys::kEsc}, 0, keys::kEsc}, {kThree, 3, 2, {keys::kLeft}, 3, keys::kLeft},
      {kThree, 1, 2, {keys::kDown, keys::kRight}, 2, keys::kRight},
      // A digit or key-cap letter of a choice ends the list at once; any other does nothing.
      {kThree, 1, 1, Keys("3", {keys::kEnter}), 3, KeyOfByte('3')},
      {Numbered(12), 1, 1, Keys("0", {keys::kEnter}), 10, KeyOfByte('0')},
      {Numbered(12), 1, 1, Keys("a", {keys::kEnter}), 11, KeyOfByte('a')},
      {Numbered(12), 1, 1, Keys("B", {keys::kEnter}), 12, KeyOfByte('B')},
      {Numbered(26), 1, 1, Keys("p", {keys::kEnter}), 26, KeyOfByte('p')},
      {kThree, 1, 1, Keys("5", {keys::kEnter}), 1, keys::kEnter},
      {kThree, 1, 1, Keys("a", {keys::kEnter}), 1, keys::kEnter},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(::testing::PrintToString(c.options.Str().substr(0, 12)) + " " + std::to_string(c.initial));
    KeyboardReset();  // a key that chooses leaves the Enter behind it
    Play({c.keys});
    EXPECT_EQ(Pick(c.options, c.initial, c.endMode), c.want);
    EXPECT_EQ((KeyPair{ch_, scan_}), c.ended);
  }
}

TEST_F(PickListTest, BoxPlaceAndSize) {
  struct Case {
    const char* name;
    ShortText options;
    int16_t endMode;
    uint8_t column, row;
    std::vector<Cell> cells;
  } cases[] = {
      // 5 lines of 29 (the Esc line is the widest): columns 25..55, rows 10..16; the bar in 0x30.
      {"centred", kThree, 1, 0, 0,
       {{10, 25, "\xDA", 0x1F}, {10, 55, "\xB7"}, {11, 26, "Wybierz:"},
        {12, 26, "\xCF\x85 Alfa " + std::string(21, ' '), 0x30}, {12, 54, " ", 0x30}, {13, 26, "\xCF\x87 Beta ", 0x1F},
        {14, 26, "\xCF\x88 Gamma"}, {15, 26, "╤╥û - rezygnacja z wybierania"_mz.Str()}, {16, 25, "\xD4"}}},
      // Only the title and rows: 4 lines of 8, columns 36..45, rows 10..15.
      {"no Esc line in end mode 0", kThree, 0, 0, 0, {{10, 36, "\xDA"}, {14, 37, "\xCF\x88 Gamma"}, {15, 36, "\xD4"}}},
      {"placed one cell inside", kThree, 0, 10, 5, {{6, 11, "\xDA"}, {7, 12, "Wybierz:"}, {8, 12, "\xCF\x85 Alf"}}},
      {"moved back from the corner", kThree, 0, 78, 24, {{25, 80, "\xBC"}}},
      {"no options", ShortText(), 1, 0, 0, {{13, 26, "\xCF\x85 "}}},
      // As wide as the screen allows: 78 inside.
      {"wide", ShortText(std::string(120, 'x') + "@y"), 1, 0, 0,
       {{10, 1, "\xDA"}, {12, 2, "\xCF\x85 " + std::string(75, 'x')}}},
      // The key-caps of 10 and 11: the digit 0 and the letter A.
      {"key-caps", Numbered(11), 0, 0, 0, {{17, 37, "\xCF\x94 n10"}, {18, 37, "\xCF\xF4 n11"}}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    Play({{keys::kEnter}});
    Pick(c.options, 1, c.endMode, c.column, c.row);
    ExpectCells(Seen().at(0), c.cells);
  }
}

TEST_F(PickListTest, InitialChoiceBeyondTheFirstBoxOpensTheBoxThatHoldsIt) {
  Play({{keys::kEnter}});
  EXPECT_EQ(Pick(Numbered(25), 23), 23);
  EXPECT_EQ(Seen().at(0).RowOf("Wybierz dalej:"), 10);
  EXPECT_EQ(Seen().at(0).Attr(27, 12), 0x30) << "the bar on 23, the second row of that box";
}

TEST_F(PickListTest, TitleOfThreeLinesLeavesNineteenRowsInABox) {
  Play({{keys::kPgDn}, {keys::kPgUp, keys::kEnter}});
  EXPECT_EQ(Pick(Numbered(25), 1, 0, 0, 0, ShortText("A@B@C")), 1);
  EXPECT_EQ(Seen().at(0).RowsWith("\xCF"), 19);
  EXPECT_EQ(Seen().at(1).RowsWith("\xCF"), 6);
}

TEST_F(PickListTest, TwentyFiveChoicesGoOnInASecondBox) {
  Play({{keys::kEnd}, {keys::kUp, keys::kUp, keys::kUp, keys::kUp}, {keys::kEnter}});
  EXPECT_EQ(Pick(Numbered(25)), 21);
  const Snapshot& first = Seen().at(0);
  const Snapshot& second = Seen().at(1);
  // First box: title and 21 rows in 22 lines, the Esc line over the bottom frame.
  // Choice 21 has the key-cap of letter K.
  EXPECT_EQ(first.Cells(1, 25, 1), "\xDA");
  ExpectRows<int>({{first.RowOf("Wybierz:"), 2}, {first.RowOf("\xCF\x10 n21"), 23},
                   {first.RowOf("╤╥û - rezygnacja z wybierania"_mz.View()), 24}, {first.RowOf("n22"), 0}});
  // End goes to the further box: its title and choices 22 to 25.
  EXPECT_NE(second.RowOf("Wybierz dalej:"), 0);
  EXPECT_EQ(second.RowsWith(" n2") - second.RowsWith(" n2 "), 4);
  // Up from the further box's first row comes back to the first box.
  EXPECT_EQ(Seen().size(), 3u);
  EXPECT_EQ(Seen().at(2).RowOf("n21"), 23);
}

TEST_F(PickListTest, HelpAfterByteSevenOpensOnF1) {
  Play({{keys::F(1)}, {keys::kEnter}, {keys::kDown, keys::kEnter}});
  EXPECT_EQ(Pick(kThree, 1, 1, 0, 0, ShortText("Tytu\x92\x07Pomoc do listy")), 2);
  EXPECT_NE(Seen().at(0).RowOf("Tytu\x92 "), 0);
  EXPECT_NE(Seen().at(1).RowOf("Pomoc do listy"), 0);
  EXPECT_EQ(Seen().at(0).RowOf("\x07"), 0);
}

TEST_F(PickListTest, ScreenWindowAttributeAndCursorAsFound) {
  tui_test::FillBackground(0x2A);
  Snapshot before = Capture();
  Play({{keys::kDown, keys::F(1)}, {keys::kEsc}, {keys::kEnter}});
  EXPECT_EQ(Pick(kThree, 1, 1, 0, 0, ShortText("T\x07H")), 2);
  EXPECT_TRUE(Capture() == before);
  Play({{keys::kEnd}, {keys::kEsc}});
  EXPECT_EQ(Pick(Numbered(30), 1, 1, 10, 2), 0);
  EXPECT_TRUE(Capture() == before);
}

TEST_F(PickListTest, ChoicesFromAFile) {
  file_test::ScratchDir scratch;
  ASSERT_TRUE(scratch.Entered());
  file_test::WriteBytes("porty.txt", "COM1\r\nCOM2\nCOM3\n");
  Play({Keys("2")});
  EXPECT_EQ(PickListFile(0, 1, 1, 0, 0, ShortText("Port:"), ShortText("porty.txt"), ch_, scan_), 2);
  EXPECT_NE(Seen().at(0).rows[13].Pos("\xCF\x87 COM2"), 0);
  // A file that cannot be read gives one empty choice.
  Play({{keys::kDown, keys::kEnter}});
  EXPECT_EQ(PickListFile(0, 1, 1, 0, 0, ShortText("Port:"), ShortText("brak.txt"), ch_, scan_), 1);
}

// PickMulti.

class PickMultiTest : public FormTest {
 protected:
  uint32_t Multi(int16_t endMode, const ShortText& options, const ShortText& title = ShortText("Co:")) {
    return PickMulti(0, 1, endMode, 0, 0, title, options, out_, marks_);
  }
  KeyPair out_;
  uint32_t marks_ = 0;
};

TEST_F(PickMultiTest, MarksPlusMinusToggleAndF10) {
  Play({Keys("+", {keys::kDown, keys::kEnter, keys::kDown}), Keys("+-", {keys::kDown}), Keys("+", {keys::F(10)})});
  EXPECT_EQ(Multi(1, ShortText("a@b@c@d")), 0b1011u);
  EXPECT_EQ(marks_, 0b1011u);
  EXPECT_EQ(out_, keys::F(10));
  // The bar row in 0x30, others in 0x70, a marked row with its mark.
  const Snapshot& s = Seen().at(1);
  EXPECT_EQ(s.RowsWith(" \xFB a") + s.RowsWith(" \xFB b"), 2);
  const int barRow = s.RowOf("   c");
  ASSERT_NE(barRow, 0);
  EXPECT_EQ(s.Attr(40, barRow), 0x30);
  EXPECT_EQ(s.Attr(40, barRow - 1), 0x70);
}

TEST_F(PickMultiTest, EscCancelsUnlessEndModeZero) {
  marks_ = 0b10;
  Play({Keys("+", {keys::kEsc})});
  EXPECT_EQ(Multi(1, ShortText("a@b")), 0u);
  EXPECT_EQ(marks_, 0b10u);
  Play({Keys("+", {keys::kEsc, keys::F(10)})});
  EXPECT_EQ(Multi(0, ShortText("a@b")), 0b11u);
  Play({{keys::kDown, keys::kEnter, keys::kRight}});
  EXPECT_EQ(Multi(2, ShortText("a@b")), 0b01u);
  EXPECT_EQ(out_, keys::kRight);
}

TEST_F(PickMultiTest, ColumnsAlignUnderTheHeader) {
  Play({{keys::F(10)}});
  Multi(1, ShortText("Ab \x9D 1@Cdefgh \x9D 22"), ShortText("Nazwa \x9D Nr"));
  const Snapshot& s = Seen().at(0);
  const int header = s.RowOf("   Nazwa  \x9D Nr");
  ASSERT_NE(header, 0);
  EXPECT_NE(s.rows[header + 1].Pos("   Ab     \x9D 1"), 0);
  EXPECT_NE(s.rows[header + 2].Pos("   Cdefgh \x9D 22"), 0);
}

TEST_F(PickMultiTest, AtMostTwentyOneRows) {
  Play({{keys::kEnd, keys::kEnter, keys::F(10)}});
  EXPECT_EQ(Multi(1, Numbered(30)), 1u << 20);
}

}  // namespace
