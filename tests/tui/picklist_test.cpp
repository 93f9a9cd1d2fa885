#include "tui/picklist.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>
#include <fstream>

#include "base/expect_rows.h"
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

class PickListTest : public form_test::FormTest {
 protected:
  int16_t Pick(const ShortText& options, int16_t initial = 1, int16_t endMode = 1, uint8_t column = 0,
               uint8_t row = 0, const ShortText& title = ShortText("Wybierz:")) {
    return PickList(1, initial, endMode, column, row, title, options, ch_, scan_);
  }
  unsigned char ch_ = 0, scan_ = 0;
};

TEST_F(PickListTest, CentredBoxShowsKeyCapsBarAndEscLine) {
  Play({{keys::kEnter}});
  EXPECT_EQ(Pick(kThree), 1);
  const Snapshot& s = Seen().at(0);
  // 5 lines of 29 (the Esc line is the widest): columns 25..55, rows 10..16.
  ExpectRows<std::string>({{s.Cells(10, 25, 1), "\xDA"}, {s.Cells(10, 55, 1), "\xB7"}, {s.Cells(11, 26, 8), "Wybierz:"},
                           {s.Cells(12, 26, 29), "\xCF\x85 Alfa " + std::string(21, ' ')},
                           {s.Cells(13, 26, 8), "\xCF\x87 Beta "}, {s.Cells(14, 26, 8), "\xCF\x88 Gamma"},
                           {s.Cells(15, 26, 29), "╤╥û - rezygnacja z wybierania"_mz.Str()}, {s.Cells(16, 25, 1), "\xD4"}});
  ExpectRows<int>({{s.Attr(26, 12), 0x30}, {s.Attr(54, 12), 0x30}, {s.Attr(26, 13), 0x1F}, {s.Attr(25, 10), 0x1F}});
  EXPECT_EQ(ch_, 13);
}

TEST_F(PickListTest, ColourSchemes) {
  const unsigned char want[] = {0x07, 0x1F, 0x1E, 0x0F, 0x4F, 0x47, 0x4E, 0x0E, 0x6E, 0x07, 0x07};
  for (int i = 0; i < 11; ++i) EXPECT_EQ(PickListAttr(static_cast<uint8_t>(i)), want[i]) << i;
  EXPECT_EQ(PickListAttr(255), 0x07);
}

TEST_F(PickListTest, InitialChoiceOutOfRangeStartsOnTheFirstRow) {
  for (int16_t initial : {0, -1, 4, 1000}) {
    Play({{keys::kEnter}});
    EXPECT_EQ(Pick(kThree, initial), 1) << initial;
  }
  Play({{keys::kEnter}});
  EXPECT_EQ(Pick(kThree, 3), 3);
  // An initial choice beyond the first box opens the box that holds it.
  Play({{keys::kEnter}});
  EXPECT_EQ(Pick(Numbered(25), 23), 23);
  EXPECT_NE(Seen().at(0).rows[10].Pos("Wybierz dalej:"), 0);
  EXPECT_EQ(Seen().at(0).Attr(27, 12), 0x30) << "the bar on 23, the second row of that box";
}

TEST_F(PickListTest, TitleOfThreeLinesLeavesNineteenRowsInABox) {
  Play({{keys::kPgDn}, {keys::kPgUp, keys::kEnter}});
  EXPECT_EQ(Pick(Numbered(25), 1, 0, 0, 0, ShortText("A@B@C")), 1);
  int first = 0, further = 0;
  for (int r = 1; r <= 25; ++r) {
    first += Seen().at(0).rows[r].Pos("\xCF") > 0;
    further += Seen().at(1).rows[r].Pos("\xCF") > 0;
  }
  EXPECT_EQ(first, 19);
  EXPECT_EQ(further, 6);
}

TEST_F(PickListTest, MovesStopAtTheEnds) {
  struct Case {
    std::vector<KeyPair> keys;
    int16_t want;
  } cases[] = {
      {{keys::kDown, keys::kDown, keys::kDown, keys::kDown, keys::kEnter}, 3},
      {{keys::kUp, keys::kUp, keys::kEnter}, 1}, {{keys::kEnd, keys::kUp, keys::kEnter}, 2},
      {{keys::kEnd, keys::kHome, keys::kEnter}, 1}, {{keys::kTab, keys::kEnter}, 2},
  };
  for (const auto& c : cases) {
    Play({c.keys});
    EXPECT_EQ(Pick(kThree), c.want);
  }
}

TEST_F(PickListTest, EndModes) {
  Play({{keys::kEsc, keys::kLeft, keys::kDown, keys::kEnter}});
  EXPECT_EQ(Pick(kThree, 1, 0), 2) << "end mode 0 ignores Esc and Left";
  EXPECT_EQ(ch_, 13);
  Play({{keys::kLeft, keys::kEsc}});
  EXPECT_EQ(Pick(kThree, 2, 1), 0);
  EXPECT_EQ(ch_, 27);
  EXPECT_EQ(scan_, 1);
  Play({{keys::kDown, keys::kRight}});
  EXPECT_EQ(Pick(kThree, 1, 2), 2);
  EXPECT_EQ(ch_, 224);
  EXPECT_EQ(scan_, 77);
  Play({{keys::kLeft}});
  EXPECT_EQ(Pick(kThree, 3, 2), 3);
  EXPECT_EQ(scan_, 75);
}

TEST_F(PickListTest, EndModeZeroHasNoEscLine) {
  Play({{keys::kEnter}});
  Pick(kThree, 1, 0);
  // Only the title and rows: 4 lines of 8, columns 36..45, rows 10..15.
  EXPECT_EQ(Seen().at(0).Cells(10, 36, 1), "\xDA");
  EXPECT_EQ(Seen().at(0).Cells(14, 37, 8), "\xCF\x88 Gamma");
  EXPECT_EQ(Seen().at(0).Cells(15, 36, 1), "\xD4");
}

TEST_F(PickListTest, DigitAndLetterKeysChooseAtOnce) {
  struct Case {
    int count;
    std::string key;
    int16_t want;
  } cases[] = {{3, "3", 3}, {12, "0", 10}, {12, "a", 11}, {12, "B", 12}, {26, "p", 26}, {3, "5", 1}, {3, "a", 1}};
  for (const auto& c : cases) {
    KeyboardReset();  // a key that chooses leaves the Enter behind it
    Play({Keys(c.key, {keys::kEnter})});
    EXPECT_EQ(Pick(Numbered(c.count)), c.want) << c.key;
  }
  // The key-caps of 10 and 11: the digit 0 and the letter A.
  Play({{keys::kEnter}});
  Pick(Numbered(11), 1, 0);
  const Snapshot& s = Seen().at(0);
  bool zero = false, letterA = false;
  for (int r = 1; r <= 25; ++r) {
    zero = zero || s.rows[r].Pos("\xCF\x94 n10") > 0;
    letterA = letterA || s.rows[r].Pos("\xCF\xF4 n11") > 0;
  }
  EXPECT_TRUE(zero && letterA);
}

TEST_F(PickListTest, TwentyFiveChoicesGoOnInASecondBox) {
  Play({{keys::kEnd}, {keys::kUp, keys::kUp, keys::kUp, keys::kUp}, {keys::kEnter}});
  EXPECT_EQ(Pick(Numbered(25)), 21);
  const Snapshot& first = Seen().at(0);
  const Snapshot& second = Seen().at(1);
  // First box: title and 21 rows in 22 lines, the Esc line over the bottom frame.
  EXPECT_EQ(first.Cells(1, 25, 1), "\xDA");
  EXPECT_NE(first.rows[2].Pos("Wybierz:"), 0);
  EXPECT_NE(first.rows[23].Pos("\xCF\x10 n21"), 0) << "choice 21 has the key-cap of letter K";
  EXPECT_NE(first.rows[24].Pos("╤╥û - rezygnacja z wybierania"_mz.View()), 0);
  EXPECT_EQ(first.rows[24].Pos("n22"), 0);
  // End goes to the further box: its title and choices 22 to 25.
  bool further = false;
  for (int r = 1; r <= 25; ++r) further = further || second.rows[r].Pos("Wybierz dalej:") > 0;
  EXPECT_TRUE(further);
  int rowsShown = 0;
  for (int r = 1; r <= 25; ++r) rowsShown += second.rows[r].Pos(" n2") > 0 && second.rows[r].Pos(" n2 ") == 0;
  EXPECT_EQ(rowsShown, 4);
  // Up from the further box's first row comes back to the first box.
  EXPECT_EQ(Seen().size(), 3u);
  EXPECT_NE(Seen().at(2).rows[23].Pos("n21"), 0);
}

TEST_F(PickListTest, HelpAfterByteSevenOpensOnF1) {
  Play({{keys::F(1)}, {keys::kEnter}, {keys::kDown, keys::kEnter}});
  EXPECT_EQ(Pick(kThree, 1, 1, 0, 0, ShortText("Tytu\x92\x07Pomoc do listy")), 2);
  bool title = false, help = false;
  for (int r = 1; r <= 25; ++r) {
    title = title || Seen().at(0).rows[r].Pos("Tytu\x92 ") > 0;
    help = help || Seen().at(1).rows[r].Pos("Pomoc do listy") > 0;
  }
  EXPECT_TRUE(title);
  EXPECT_TRUE(help);
  EXPECT_EQ(Seen().at(0).rows[11].Pos("\x07"), 0);
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

TEST_F(PickListTest, PlacedBoxOpensOneCellInside) {
  Play({{keys::kEnter}});
  Pick(kThree, 1, 0, 10, 5);
  const Snapshot& s = Seen().at(0);
  EXPECT_EQ(s.Cells(6, 11, 1), "\xDA");
  EXPECT_EQ(s.Cells(7, 12, 8), "Wybierz:");
  EXPECT_EQ(s.Cells(8, 12, 6), "\xCF\x85 Alf");
  // Near the corner of the screen it moves left and up as far as it must.
  Play({{keys::kEnter}});
  Pick(kThree, 1, 0, 78, 24);
  EXPECT_EQ(Seen().at(0).Cells(25, 80, 1), "\xBC");
}

TEST_F(PickListTest, EmptyOptionsAndWideOptions) {
  Play({{keys::kEnter}});
  EXPECT_EQ(Pick(ShortText()), 1);
  EXPECT_EQ(Seen().at(0).Cells(13, 26, 3), "\xCF\x85 ");
  Play({{keys::kDown, keys::kEnter}});
  EXPECT_EQ(Pick(ShortText(std::string(120, 'x') + "@y")), 2);
  // The box is as wide as the screen allows: 78 inside.
  EXPECT_EQ(Seen().at(0).Cells(10, 1, 1), "\xDA");
  EXPECT_EQ(Seen().at(0).Cells(12, 2, 78), "\xCF\x85 " + std::string(75, 'x'));
}

TEST_F(PickListTest, ChoicesFromAFile) {
  char name[] = "/tmp/picklistXXXXXX";
  int fd = mkstemp(name);
  ASSERT_GE(fd, 0);
  close(fd);
  std::ofstream(name) << "COM1\r\nCOM2\nCOM3\n";
  Play({Keys("2")});
  EXPECT_EQ(PickListFile(0, 1, 1, 0, 0, ShortText("Port:"), ShortText(name), ch_, scan_), 2);
  EXPECT_NE(Seen().at(0).rows[13].Pos("\xCF\x87 COM2"), 0);
  std::remove(name);
  Play({{keys::kDown, keys::kEnter}});
  EXPECT_EQ(PickListFile(0, 1, 1, 0, 0, ShortText("Port:"), ShortText(name), ch_, scan_), 1);
}

// PickMulti.

class PickMultiTest : public form_test::FormTest {};

TEST_F(PickMultiTest, MarksPlusMinusToggleAndF10) {
  KeyPair out;
  uint32_t marks = 0;
  Play({Keys("+", {keys::kDown, keys::kEnter, keys::kDown}), Keys("+-", {keys::kDown}), Keys("+", {keys::F(10)})});
  EXPECT_EQ(PickMulti(1, 1, 1, 0, 0, ShortText("Co:"), ShortText("a@b@c@d"), out, marks), 0b1011u);
  EXPECT_EQ(marks, 0b1011u);
  EXPECT_EQ(out, keys::F(10));
  // The bar row in 0x30, others in 0x70, a marked row with its mark.
  const Snapshot& s = Seen().at(1);
  int barRow = 0, markedRows = 0;
  for (int r = 1; r <= 25; ++r) {
    if (s.rows[r].Pos(" \xFB a") > 0) ++markedRows;
    if (s.rows[r].Pos(" \xFB b") > 0) ++markedRows;
    if (s.rows[r].Pos("   c") > 0) barRow = r;
  }
  EXPECT_EQ(markedRows, 2);
  ASSERT_NE(barRow, 0);
  EXPECT_EQ(s.Attr(40, barRow), 0x30);
  EXPECT_EQ(s.Attr(40, barRow - 1), 0x70);
}

TEST_F(PickMultiTest, EscCancelsUnlessEndModeZero) {
  KeyPair out;
  uint32_t marks = 0b10;
  Play({Keys("+", {keys::kEsc})});
  EXPECT_EQ(PickMulti(0, 1, 1, 0, 0, ShortText("Co:"), ShortText("a@b"), out, marks), 0u);
  EXPECT_EQ(marks, 0b10u);
  Play({Keys("+", {keys::kEsc, keys::F(10)})});
  EXPECT_EQ(PickMulti(0, 1, 0, 0, 0, ShortText("Co:"), ShortText("a@b"), out, marks), 0b11u);
  Play({{keys::kDown, keys::kEnter, keys::kRight}});
  EXPECT_EQ(PickMulti(0, 1, 2, 0, 0, ShortText("Co:"), ShortText("a@b"), out, marks), 0b01u);
  EXPECT_EQ(out, keys::kRight);
}

TEST_F(PickMultiTest, ColumnsAlignUnderTheHeader) {
  KeyPair out;
  uint32_t marks = 0;
  Play({{keys::F(10)}});
  PickMulti(0, 1, 1, 0, 0, ShortText("Nazwa \x9D Nr"), ShortText("Ab \x9D 1@Cdefgh \x9D 22"), out, marks);
  const Snapshot& s = Seen().at(0);
  int header = 0;
  for (int r = 1; r <= 25; ++r)
    if (s.rows[r].Pos("   Nazwa  \x9D Nr") > 0) header = r;
  ASSERT_NE(header, 0);
  EXPECT_NE(s.rows[header + 1].Pos("   Ab     \x9D 1"), 0);
  EXPECT_NE(s.rows[header + 2].Pos("   Cdefgh \x9D 22"), 0);
}

TEST_F(PickMultiTest, AtMostTwentyOneRows) {
  KeyPair out;
  uint32_t marks = 0;
  Play({{keys::kEnd, keys::kEnter, keys::F(10)}});
  EXPECT_EQ(PickMulti(0, 1, 1, 0, 0, ShortText("Co:"), Numbered(30), out, marks), 1u << 20);
}

}  // namespace
