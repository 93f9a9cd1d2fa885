// What the terminal receives for each kind of terminal.
#include <gtest/gtest.h>

#include "base/file_fixture.h"
#include "base/mazovia.h"
#include "base/expect_rows.h"
#include "tui_fixture.h"

namespace {

using test_rows::ExpectRows;

class OutputTest : public tui_test::TuiTest {
 protected:
  // The bytes the terminal receives for text written at the top left.
  std::string Shown(const char* term, const ShortText& text, const char* klote = "", const char* cp = "") {
    tui_test::InitTerminal(term, klote, cp);
    Sent();
    WriteAt(1, 1, text);
    return StripSequences(Sent());
  }
  // The printed bytes without the escape sequences around them.
  static std::string StripSequences(const std::string& s) {
    std::string out;
    for (std::size_t i = 0; i < s.size(); ++i) {
      if (s[i] != '\x1b') {
        out += s[i];
        continue;
      }
      ++i;  // '['
      while (i + 1 < s.size() && !std::isalpha(static_cast<unsigned char>(s[i + 1]))) ++i;
      ++i;
    }
    return out;
  }
};

TEST_F(OutputTest, KindAndConversionsFollowTheEnvironment) {
  struct Case {
    const char *term, *klote, *cp, *colours;
    int kind, outCodePage, outputMode, inCodePage;
    bool special, few;
  } cases[] = {
      {"xterm", "", "", "", 2, 4, 4, 0, false, false}, {"XTerm", "", "utf", "", 2, 4, 4, 1, false, false},
      {"rxvt", "", "win", "1", 1, 0, 4, 2, true, true}, {"linux", "", "", "0", 3, 0, 4, 0, true, false},
      {"cp852", "", "", "", 4, 2, 2, 0, false, false}, {"orbel", "", "", "", 5, 0, 2, 0, true, false},
      {"vt100", "", "", "", 0, 4, 4, 0, false, false}, {"xterm-256color", "", "", "", 0, 4, 4, 0, false, false},
      {"rxvt", "poor", "", "", 2, 4, 4, 0, false, false}, {"linux", "POOR", "UTF", "", 2, 4, 4, 1, false, false},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(std::string(c.term) + "/" + c.klote + "/" + c.cp);
    tui_test::InitTerminal(c.term, c.klote, c.cp, c.colours);
    ExpectRows<int>({{Term().kind, c.kind}, {Term().outCodePage, c.outCodePage}, {Term().outputMode, c.outputMode},
                     {Term().inCodePage, c.inCodePage}, {Term().specialFont, c.special}, {Term().fewColours, c.few}});
  }
}

TEST_F(OutputTest, UnknownTermPrintsTheWarningOnThePlainTerminal) {
  tui_test::InitTerminal("dumb");
  std::string s = Sent();
  EXPECT_EQ(s.find("NIEWLASCIWA ZMIENNA \"TERM\"\r\n"), 0u);
  EXPECT_NE(s.find("ALBO PELNYM OKNIE WINDOWS 9.x ZE SPECJALNYM FONTEM (TERM=ORBEL)\r\n"), std::string::npos);
  EXPECT_NE(s.find("ZA 10 S.PROGRAM RUSZY DALEJ.\r\n"), std::string::npos);
  tui_test::InitTerminal("xterm");
  EXPECT_EQ(Sent().find("NIEWLASCIWA"), std::string::npos);
}

TEST_F(OutputTest, NoByteBelowThirtyTwoReachesAnyTerminal) {
  ShortText all;
  for (int b = 0; b < 256; ++b) all.Append(static_cast<char>(b == 255 ? 0 : b));
  for (const char* term : {"xterm", "rxvt", "linux", "cp852", "orbel", "unknown"}) {
    for (const char* cp : {"", "utf"}) {
      SCOPED_TRACE(std::string(term) + cp);
      tui_test::InitTerminal(term, "", cp);
      Sent();
      for (int part = 0; part < 4; ++part) WriteAt(1, part + 1, all.Copy(part * 64 + 1, 64));
      std::string shown = StripSequences(Sent());
      EXPECT_GE(shown.size(), 255u);
      for (unsigned char c : shown) EXPECT_GE(c, 32) << "byte " << int(c);
    }
  }
}

TEST_F(OutputTest, EachKindShowsKeyCapsLettersAndControlBytesItsWay) {
  const ShortText polish = "ąę Żółć"_mz, controls("\x07\x0D\x18\x19\x1A\x1B\x1D");
  struct Case {
    const char *term, *klote, *cp;
    ShortText text;
    std::string shown;
  } cases[] = {
      // Key-caps are plain text on a poor terminal.
      {"rxvt", "POOR", "", "ƒEnter⌐"_mz, "[Enter]"}, {"rxvt", "POOR", "", "╤╥û"_mz, "Esc"},
      {"rxvt", "POOR", "", "û"_mz, "C"}, {"rxvt", "POOR", "", "╫à - pomoc"_mz, "F1 - pomoc"},
      {"rxvt", "POOR", "", "╫ô"_mz, "F9"}, {"rxvt", "POOR", "", "╫╨ö"_mz, "F10"},
      {"rxvt", "POOR", "", "╧à╧ç╧ô"_mz, " 1 2 9"}, {"rxvt", "POOR", "", "╧Ö lub ╧Ü"_mz, " N lub  T"},
      {"rxvt", "POOR", "", "╪╓ü"_mz, "<+>"}, {"rxvt", "POOR", "", "╒¿"_mz, "<-"},
      // The special font takes the bytes as they are.
      {"rxvt", "", "", "╤╥û ą Ł"_mz, "\xD1\xD2\x96 \x86 \x9C"}, {"linux", "", "", "╫à"_mz, "\xD7\x85"},
      // Polish letters in each kind's code page.
      {"xterm", "", "", polish, "\xB1\xEA \xAF\xF3\xB3\xE6"}, {"cp852", "", "", polish, "\xA5\xA9 \xBD\xA2\x88\x86"},
      {"xterm", "", "UTF", polish, "ąę Żółć"}, {"xterm", "", "", "─┘│"_mz, "--|"},
      // Control bytes made safe; without the special font 13 and 29 are cells of key-caps and title letters
      // first; the ISO screen conversion has its own arrows: 0x18 "!" and 0x19 the soft hyphen.
      {"linux", "", "", controls, " -||><U"}, {"cp852", "", "", controls, " \xC0||><U"},
      {"xterm", "", "", controls, "  !\xAD><U"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.shown);
    EXPECT_EQ(Shown(c.term, c.text, c.klote, c.cp), c.shown);
  }
}

TEST_F(OutputTest, ColourAndCursorChangesSayOnlyWhatChanged) {
  struct Step {
    unsigned char attr;
    int x, y;
    const char* text;
    const char* sent;
  } steps[] = {
      // Text that goes on where the cursor is needs no move and no colour.
      {0x1E, 1, 1, "ab", "\x1b[0;33;44;1mab"}, {0x1E, 3, 1, "cd", "cd"}, {0x4F, 5, 1, "e", "\x1b[37;41me"},
      // A move says where; losing bold or blink needs a reset.
      {0x07, 10, 2, "f", "\x1b[2;10H\x1b[0;37;40mf"}, {0x17, 11, 2, "x", "\x1b[44mx"}, {0x1F, 12, 2, "x", "\x1b[1mx"},
      {0x1E, 13, 2, "x", "\x1b[33mx"}, {0x4E, 14, 2, "x", "\x1b[41mx"}, {0x47, 15, 2, "x", "\x1b[0;37;41mx"},
      {0xC7, 16, 2, "x", "\x1b[5mx"}, {0x07, 17, 2, "x", "\x1b[0;37;40mx"}, {0x07, 18, 2, "x", "x"},
  };
  tui_test::InitTerminal("linux");
  Sent();
  for (const auto& s : steps) {
    TextAttr(s.attr);
    WriteAt(s.x, s.y, ShortText(s.text));
    EXPECT_EQ(Sent(), s.sent) << int(s.attr);
  }
}

TEST_F(OutputTest, AttributeAdjustmentByKindAndSettings) {
  struct Case {
    const char *term, *colours;
    bool green, mono;
    unsigned char attr;
    const char* sgr;
  } cases[] = {
      {"xterm", "", false, false, 0x6E, "\x1b[0;33;41;1m"},   // brown background + yellow -> 0x4E
      {"xterm", "", true, false, 0x6E, "\x1b[0;33;42;1m"},    // -> 0x2E
      {"linux", "", false, false, 0x6E, "\x1b[0;33;43;1m"},   // the console shows brown itself
      {"xterm", "1", false, false, 0x7E, "\x1b[0;34;47m"},    // -> 0x71
      {"xterm", "1", false, false, 0x7F, "\x1b[0;31;47m"},    // -> 0x74
      {"xterm", "1", false, false, 0x1E, "\x1b[0;36;44m"},    // yellow -> cyan
      {"xterm", "1", false, false, 0x1F, "\x1b[0;31;44m"},    // white -> red
      {"xterm", "", false, true, 0x4F, "\x1b[0;37;40;1m"},    // mono: bright
      {"xterm", "", false, true, 0x70, "\x1b[0;30;47m"},      // mono: reverse
      {"xterm", "", false, true, 0xF1, "\x1b[0;30;47;5m"},    // mono keeps blink
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.sgr + 1);
    tui_test::InitTerminal(c.term, "", "", c.colours);
    TermSetBrownToGreen(c.green);
    TermSetMono(c.mono);
    Sent();
    TextAttr(c.attr);
    WriteAt(1, 1, ShortText("x"));
    std::string s = Sent();
    EXPECT_NE(s.find(std::string(c.sgr) + "x"), std::string::npos) << s;
    EXPECT_EQ(tui_test::AttrAt(1, 1), c.attr);  // the shadow keeps the logical attribute
    TermSetBrownToGreen(false);
    TermSetMono(false);
  }
}

TEST_F(OutputTest, RepaintWritesEachRunWithOneColourSequence) {
  for (int r = 1; r <= 25; ++r)
    for (int run = 0; run < 8; ++run) {
      TextAttr(static_cast<unsigned char>(0x10 * (run % 7) + 7));
      WriteAt(run * 10 + 1, r, ShortText("0123456789"));
    }
  ScreenCopyPtr copy;
  ScreenSave(copy);
  Sent();
  ScreenRestore(copy);
  std::string s = Sent();
  std::size_t colours = 0;
  for (std::size_t p = s.find('m'); p != std::string::npos; p = s.find('m', p + 1)) ++colours;
  EXPECT_LE(colours, 25u * 8u);
  EXPECT_EQ(StripSequences(s).size(), 2000u);
}

TEST_F(OutputTest, TitleTextAndDigitCaps) {
  tui_test::InitTerminal("xterm");
  EXPECT_EQ(TitleText("Ilość sztuk"_mz), ShortText("ILOSC SZTUK"));
  tui_test::InitTerminal("rxvt");
  EXPECT_EQ(TitleText(ShortText("Ab z")), ShortText(std::string_view("\x02\x03\x00\x1F", 4)));
  EXPECT_EQ(TitleText(ShortText("qx1")), ShortText("QX1"));
  // On the terminal the small capitals still read as letters.
  Sent();
  WriteAt(1, 1, TitleText(ShortText("Ab z")));
  EXPECT_EQ(StripSequences(Sent()), "AB Z");
  // Digits, then the letters: 9 is the last digit cell, A the first letter, P the last.
  ExpectRows<int>({{DigitCap(0), 0x94}, {DigitCap(9), 0x93}, {DigitCap(10), 0xF4}, {DigitCap(13), 0x05},
                   {DigitCap(25), 0x15}, {DigitCap(-1), 7}, {DigitCap(26), 7}});
}

TEST_F(OutputTest, CodePageFileNamesTheConversionForOtherPrograms) {
  file_test::ScratchDir scratch;
  ASSERT_TRUE(scratch.Entered());
  for (auto [term, digit] : {std::pair{"xterm", "3\r"}, {"vt52", "3\r"}, {"cp852", "2\r"}, {"linux", "7\r"}}) {
    tui_test::InitTerminal(term);
    ASSERT_TRUE(TermWriteCodePage());
    EXPECT_EQ(file_test::ReadBytes("str_kod_.cfg"), digit) << term;
  }
}

}  // namespace
