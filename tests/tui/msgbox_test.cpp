#include "tui/msgbox.h"

#include <gtest/gtest.h>

#include <array>
#include <vector>

#include "base/mazovia.h"
#include "base/expect_rows.h"
#include "form_fixture.h"

namespace {

using test_rows::ExpectRows;

using tui_test::CharAt;
using tui_test::Cells;

using form_test::Capture;
using form_test::Snapshot;

class MessageBoxTest : public form_test::FormTest {
 protected:
  void SetUp() override {
    FormTest::SetUp();
    tui_test::FillBackground(0x1F);
  }
  // The answer is pushed when the box first wants a key; the screen is kept as it was then.
  static void Answer(std::vector<KeyPair> keys) { form_test::Play({std::move(keys)}); }
  static const Snapshot& First() { return form_test::Seen().at(0); }
  // A screen as it must be after a box that gave back everything: the attribute is the normal one.
  static Snapshot Restored(Snapshot s) {
    s.attr = 0x07;
    return s;
  }
};

TEST_F(MessageBoxTest, EmptyTextWithCodeZeroIsFourteenWideWithOneEmptyLine) {
  Answer({keys::kEnter});
  EXPECT_FALSE(MessageBox(ShortText(), 0));
  // Left (78 - 14) / 2 + 1 = 33, top 12, bottom 15, 16 columns wide.
  const Snapshot& s = First();
  // An empty line writes nothing in the body colour; the bottom line's row outside its text keeps the frame
  // colour; the cursor waits in the lower right corner.
  ExpectRows<int>({{s.window.left, 33}, {s.window.right, 48}, {s.window.top, 12}, {s.window.bottom, 15},
                   {s.Attr(33, 12), 0x4E}, {s.Attr(34, 13), 0x4E}, {s.Attr(35, 14), 0x47}, {s.Attr(34, 14), 0x4E},
                   {s.x, 16}, {s.y, 4}});
  ExpectRows<std::string>({{s.Cells(12, 33, 16), "\xDA" + std::string(14, '\xC4') + "\xB7"},
                           {s.Cells(13, 33, 16), "\xB3" + std::string(14, ' ') + "\xBA"},
                           {s.Cells(14, 33, 16), std::string("\xB3 ") + " Wciśnij ╒¿."_mz.Str() + " \xBA"},
                           {s.Cells(15, 33, 16), "\xD4" + std::string(14, '\xCD') + "\xBC"}});
}

TEST_F(MessageBoxTest, EveryCodeHasItsBottomLineAndWidth) {
  struct Case {
    int16_t code;
    KeyPair key;
    int width;
    ShortText bottom;
  } cases[] = {
      {0, keys::kEsc, 14, " Wciśnij ╒¿."_mz}, {-1, keys::kEsc, 14, " Wciśnij ╤╥û."_mz},
      {1, KeyPair{'n', 49}, 36, " Odpowiedz naciskając ╧Ö lub ╧Ü."_mz},
      {1, KeyPair{'t', 20}, 36, " Odpowiedz naciskając ╧Ö lub ╧Ü."_mz},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.code);
    Answer({c.key});
    MessageBox(ShortText("Abc"), c.code);
    EXPECT_EQ(First().window.right - First().window.left - 1, c.width);
    int left = (78 - c.width) / 2 + 1;
    int x = left + (c.width + 2 - c.bottom.Length()) / 2;
    EXPECT_EQ(First().Cells(13, left + 1, 3), "Abc");
    EXPECT_EQ(First().Attr(left + 1, 13), 0x4F);
    EXPECT_EQ(First().Cells(14, x, c.bottom.Length()), c.bottom.Str());
  }
}

TEST_F(MessageBoxTest, TimedBoxShowsItsWaitLineAndLeavesTypedKeysAlone) {
  (void)PushKey('q', 16);
  Snapshot before = Capture();
  MessageBox(ShortText("Krótko"), 20);
  EXPECT_EQ(Capture(), Restored(before));
  EXPECT_EQ(KeysBuffered(), 1);
  EXPECT_EQ(ReadKeyRaw(), (KeyPair{'q', 16}));
}

TEST_F(MessageBoxTest, YesNoTakesEnterAsYesAndEscAsNoAndIgnoresOtherKeys) {
  struct Case {
    std::vector<KeyPair> keys;
    bool yes;
  } cases[] = {
      {{keys::kEnter}, true}, {{keys::kEsc}, false}, {{KeyPair{'T', 20}}, true}, {{KeyPair{'N', 49}}, false},
      {{KeyPair{'x', 45}, KeyPair{'1', 2}, KeyPair{'t', 20}}, true}, {{keys::F(1), KeyPair{'n', 49}}, false},
  };
  for (const auto& c : cases) {
    for (KeyPair k : c.keys) (void)PushKey(k.ch, k.scan);
    EXPECT_EQ(MessageBox(ShortText("Czy?"), 1), c.yes);
    EXPECT_EQ(KeysBuffered(), 0);
  }
}

TEST_F(MessageBoxTest, CodeZeroWaitsForEnterOrEscOnly) {
  for (KeyPair k : {KeyPair{'a', 30}, keys::F(2), KeyPair{' ', 57}, keys::kEnter, KeyPair{'b', 48}})
    (void)PushKey(k.ch, k.scan);
  MessageBox(ShortText("x"), 0);
  EXPECT_EQ(KeysBuffered(), 1);
  EXPECT_EQ(ReadKeyRaw(), (KeyPair{'b', 48}));
}

TEST_F(MessageBoxTest, CodeMinusOneLetsAnyOtherKeyThroughAndEscDiscardsTheRest) {
  (void)PushKey('z', 44);
  (void)PushKey('y', 21);
  EXPECT_FALSE(MessageBox(ShortText("Uwaga"), -1));
  EXPECT_EQ(ReadKeyRaw(), (KeyPair{'z', 44}));
  EXPECT_EQ(ReadKeyRaw(), (KeyPair{'y', 21}));
  (void)PushKey(27, 1);
  (void)PushKey('y', 21);
  EXPECT_FALSE(MessageBox(ShortText("Uwaga"), -1));
  EXPECT_EQ(KeysBuffered(), 0);
}

TEST_F(MessageBoxTest, EveryCodeButTwoRestoresScreenWindowAndCursorAndLeavesAttributeNormal) {
  for (int16_t code : {0, -1, 1, 3}) {
    SCOPED_TRACE(code);
    Snapshot before = Capture();
    (void)PushKey(27, 1);
    MessageBox(ShortText("Jeden@Dwa@Trzy"), code);
    DiscardPendingKeys();
    EXPECT_EQ(Capture(), Restored(before));
  }
}

TEST_F(MessageBoxTest, CodeTwoLeavesTheBoxUpAndTheCallersRestoreRemovesIt) {
  Snapshot before = Capture();
  ScreenCopyPtr copy;
  ScreenSave(copy);
  MessageBox(ShortText("Trwa kasowanie...@[          ]"), 2);
  // No bottom line: one row shorter; the window is the box.
  WindowRect w = CurrentWindow();
  EXPECT_EQ(w.top, 11);
  EXPECT_EQ(w.bottom, 14);
  EXPECT_EQ(Cells(12, w.left + 1, 17), "Trwa kasowanie...");
  EXPECT_EQ(CharAt(w.left, 14), 0xD4);
  EXPECT_EQ(CurrentAttr(), 0x07);
  ScreenRestore(copy);
  Window(before.window.left, before.window.top, before.window.right, before.window.bottom);
  GotoXY(before.x, before.y);
  EXPECT_EQ(Capture(), Restored(before));
}

TEST_F(MessageBoxTest, TwentyTwoAndMoreBreaksShowTwentyTwoLinesTheLastWithTheRest) {
  ShortText text;
  for (int i = 0; i < 25; ++i) {
    text.Append(static_cast<char>('A' + i));
    text.Append('@');
  }
  text.Append('Z');
  Answer({keys::kEnter});
  MessageBox(text, 0);
  EXPECT_EQ(First().window.top, 1);
  EXPECT_EQ(First().window.bottom, 25);
  EXPECT_EQ(First().Cells(2, 34, 1), "A");
  EXPECT_EQ(First().Cells(22, 34, 1), "U");
  // The 22nd line holds everything after the 21st break, "@" included.
  EXPECT_EQ(First().Cells(23, 34, 9), "V@W@X@Y@Z");
  EXPECT_EQ(First().window.right - First().window.left - 1, 14);
  EXPECT_EQ(First().Cells(24, 35, 12), " Wciśnij ╒¿."_mz.Str());
}

TEST_F(MessageBoxTest, LongLinesAreCutAtSeventyEight) {
  ShortText text(std::string(100, 'x'));
  Answer({keys::kEnter});
  MessageBox(text, 0);
  EXPECT_EQ(First().window.left, 1);
  EXPECT_EQ(First().window.right, 80);
  EXPECT_EQ(First().Cells(13, 2, 78), std::string(78, 'x'));
  EXPECT_EQ(First().Cells(13, 80, 1), "\xBA");
}

TEST_F(MessageBoxTest, ColourBoxDrawsFrameAndBodyInTheGivenAttribute) {
  Answer({keys::kEnter});
  MessageBoxColour(ShortText("Kolor"), 0, 0x1F);
  EXPECT_EQ(First().Attr(33, 12), 0x1F);
  EXPECT_EQ(First().Attr(34, 13), 0x1F);
  EXPECT_EQ(First().Attr(36, 14), 0x47);
}

TEST_F(MessageBoxTest, HereBoxOpensInsideTheWindowAndMovesBackFromTheEdges) {
  Window(10, 5, 30, 9);
  Answer({keys::kEnter});
  MessageBoxHere(ShortText("Obok pola"), 0, 0x4F);
  EXPECT_EQ(First().window.left, 11);
  EXPECT_EQ(First().window.top, 6);
  EXPECT_EQ(First().window.right, 11 + 15);
  Window(75, 24, 80, 25);
  Answer({keys::kEnter});
  MessageBoxHere(ShortText("Obok pola"), 0, 0x4F);
  EXPECT_EQ(First().window.right, 80);
  EXPECT_EQ(First().window.bottom, 25);
  EXPECT_EQ(First().window.top, 22);
}

TEST_F(MessageBoxTest, BottomBoxSitsOnRowsTwentyOneOrTwentyTwoToTwentyFour) {
  Answer({keys::kEnter});
  MessageBoxBottom(ShortText(std::string(90, 'y')), 0);
  EXPECT_EQ(First().window.left, 2);
  EXPECT_EQ(First().window.top, 21);
  EXPECT_EQ(First().window.bottom, 24);
  EXPECT_EQ(First().Cells(22, 3, 77), std::string(76, 'y') + "\xBA");

  ScreenCopyPtr copy;
  ScreenSave(copy);
  MessageBoxBottom(ShortText("Notka"), 2);
  EXPECT_EQ(CurrentWindow().top, 22);
  EXPECT_EQ(Cells(23, 3, 5), "Notka");
  ScreenRestore(copy);
}

TEST_F(MessageBoxTest, TimedBottomBoxWritesItsWaitLineOverTheBottomFrame) {
  std::string sent;
  TermOutputToBuffer(&sent);
  tui_test::InitTerminal("linux");
  MessageBoxBottom(ShortText("Notka"), 10);
  TermFlush();
  // Row 24 receives the wait line where the frame was.
  EXPECT_NE(sent.find("\x1b[24;"), std::string::npos);
  std::size_t row24 = sent.find("Zaczekaj");
  ASSERT_NE(row24, std::string::npos);
  TermOutputToBuffer(&out_);
}

TEST_F(MessageBoxTest, IsoTerminalLeavesTheSingleFrameLinesBlank) {
  tui_test::InitTerminal("xterm");
  Answer({keys::kEnter});
  MessageBox(ShortText("Iso"), 0);
  EXPECT_EQ(First().Cells(12, 33, 15), std::string(15, ' '));
  EXPECT_EQ(First().Cells(12, 48, 1), "\xB7");
  EXPECT_EQ(First().Cells(13, 33, 1), " ");
  EXPECT_EQ(First().Cells(15, 33, 1), "\xD4");
}

TEST_F(MessageBoxTest, ProgressBarFillsCountsAndPercents) {
  struct Case {
    const char* text;
    long done, total;
    const char* shown;
  } cases[] = {
      {"Trwa kasowanie...@[          ]", 3, 10, "\xDB\xDB\xDB       "},
      {"Liczenie@[          /          ]", 42, 1000, "        42/1000      "}, {"Zapis [   %]", 1, 3, " 33"},
      {"Koniec [          ]", 12, 10, "\xDB\xDB\xDB\xDB\xDB\xDB\xDB\xDB\xDB\xDB"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.text);
    ShortText text(c.text);
    ScreenCopyPtr copy;
    ScreenSave(copy);
    MessageBox(text, 2);
    ProgressBar bar = FindProgressBar(text);
    ASSERT_NE(bar.kind, ProgressBar::kNone);
    ShowProgress(bar, c.done, c.total);
    WindowRect w = CurrentWindow();
    EXPECT_EQ(Cells(w.top + bar.y - 1, w.left + bar.x - 1, 1), "[");
    EXPECT_EQ(Cells(w.top + bar.y - 1, w.left + bar.x, static_cast<int>(strlen(c.shown))), c.shown);
    ScreenRestore(copy);
  }
  EXPECT_EQ(FindProgressBar(ShortText("Bez paska [x]")).kind, ProgressBar::kNone);
}

TEST_F(MessageBoxTest, ClipboardCopyKeepsTheFieldAndSaysSoBriefly) {
  Snapshot before = Capture();
  std::string sent;
  TermOutputToBuffer(&sent);
  ClipboardCopy("Zażółć"_mz, 5);
  TermFlush();
  TermOutputToBuffer(&out_);
  EXPECT_EQ(ClipboardText(), "Zażółć"_mz);
  EXPECT_NE(sent.find("Pobrano do schowka."), std::string::npos);
  EXPECT_EQ(Capture(), Restored(before));
}

}  // namespace
