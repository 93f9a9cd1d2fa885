#include "tui/msgbox.h"

#include <gtest/gtest.h>

#include <array>
#include <vector>

#include "base/mazovia.h"
#include "tui_fixture.h"

namespace {

using tui_test::AttrAt;
using tui_test::CharAt;
using tui_test::Cells;

// The screen: both shadows, the window and the cursor.
struct ScreenState {
  std::array<ShortText, 26> rows, attrs;
  WindowRect window;
  int x = 0, y = 0;
  bool operator==(const ScreenState& o) const {
    return rows == o.rows && attrs == o.attrs && window.left == o.window.left && window.top == o.window.top &&
           window.right == o.window.right && window.bottom == o.window.bottom && x == o.x && y == o.y;
  }
};

ScreenState Capture() {
  ScreenState s;
  for (int r = 1; r <= 25; ++r) {
    s.rows[r] = RowText(r);
    s.attrs[r] = RowAttrs(r);
  }
  s.window = CurrentWindow();
  s.x = WhereX();
  s.y = WhereY();
  return s;
}

// The screen as the box shows it while it waits for its first key.
ScreenState g_seen;
std::vector<KeyPair> g_answer;

// Looks at the screen when the box first wants a key, then gives the answer.
void LookThenAnswer() {
  g_seen = Capture();
  for (KeyPair k : g_answer) (void)PushKey(k.ch, k.scan);
  g_answer.clear();
  SetKeyIdleHook(nullptr);
}

class MessageBoxTest : public tui_test::TuiTest {
 protected:
  void SetUp() override {
    TuiTest::SetUp();
    tui_test::InitTerminal("linux");  // special font: the frame's bytes stay as drawn
    tui_test::FillBackground(0x1F);
  }
  void TearDown() override {
    SetKeyIdleHook(nullptr);
    TuiTest::TearDown();
  }
  static void Answer(std::vector<KeyPair> keys) {
    g_answer = std::move(keys);
    g_seen = ScreenState{};
    SetKeyIdleHook(LookThenAnswer);
  }
  static std::string Seen(int row, int first, int count) {
    return std::string(g_seen.rows[row].View().substr(first - 1, count));
  }
  static unsigned char SeenAttr(int col, int row) { return g_seen.attrs[row].At(col); }
};

TEST_F(MessageBoxTest, EmptyTextWithCodeZeroIsFourteenWideWithOneEmptyLine) {
  Answer({keys::kEnter});
  EXPECT_FALSE(MessageBox(ShortText(), 0));
  // Left (78 - 14) / 2 + 1 = 33, top 12, bottom 15, 16 columns wide.
  EXPECT_EQ(g_seen.window.left, 33);
  EXPECT_EQ(g_seen.window.right, 48);
  EXPECT_EQ(g_seen.window.top, 12);
  EXPECT_EQ(g_seen.window.bottom, 15);
  EXPECT_EQ(Seen(12, 33, 16), "\xDA" + std::string(14, '\xC4') + "\xB7");
  EXPECT_EQ(Seen(13, 33, 16), "\xB3" + std::string(14, ' ') + "\xBA");
  EXPECT_EQ(Seen(14, 33, 16), std::string("\xB3 ") + " Wciśnij ╒¿."_mz.Str() + " \xBA");
  EXPECT_EQ(Seen(15, 33, 16), "\xD4" + std::string(14, '\xCD') + "\xBC");
  EXPECT_EQ(SeenAttr(33, 12), 0x4E);
  EXPECT_EQ(SeenAttr(34, 13), 0x4E);  // an empty line writes nothing in the body colour
  EXPECT_EQ(SeenAttr(35, 14), 0x47);
  EXPECT_EQ(SeenAttr(34, 14), 0x4E);  // the bottom line's row outside its text keeps the frame colour
  // The cursor waits in the lower right corner.
  EXPECT_EQ(g_seen.x, 16);
  EXPECT_EQ(g_seen.y, 4);
}

TEST_F(MessageBoxTest, EveryCodeHasItsBottomLineAndWidth) {
  struct Case {
    int16_t code;
    KeyPair key;
    int width;
    ShortText bottom;
  } cases[] = {
      {0, keys::kEsc, 14, " Wciśnij ╒¿."_mz},
      {-1, keys::kEsc, 14, " Wciśnij ╤╥û."_mz},
      {1, KeyPair{'n', 49}, 36, " Odpowiedz naciskając ╧Ö lub ╧Ü."_mz},
      {1, KeyPair{'t', 20}, 36, " Odpowiedz naciskając ╧Ö lub ╧Ü."_mz},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.code);
    Answer({c.key});
    MessageBox(ShortText("Abc"), c.code);
    EXPECT_EQ(g_seen.window.right - g_seen.window.left - 1, c.width);
    int left = (78 - c.width) / 2 + 1;
    int x = left + (c.width + 2 - c.bottom.Length()) / 2;
    EXPECT_EQ(Seen(13, left + 1, 3), "Abc");
    EXPECT_EQ(SeenAttr(left + 1, 13), 0x4F);
    EXPECT_EQ(Seen(14, x, c.bottom.Length()), c.bottom.Str());
  }
}

TEST_F(MessageBoxTest, TimedBoxShowsItsWaitLineAndLeavesTypedKeysAlone) {
  (void)PushKey('q', 16);
  ScreenState before = Capture();
  MessageBox(ShortText("Krótko"), 20);
  EXPECT_EQ(Capture(), before);
  EXPECT_EQ(KeysBuffered(), 1);
  EXPECT_EQ(ReadKeyRaw(), (KeyPair{'q', 16}));
}

TEST_F(MessageBoxTest, YesNoTakesEnterAsYesAndEscAsNoAndIgnoresOtherKeys) {
  struct Case {
    std::vector<KeyPair> keys;
    bool yes;
  } cases[] = {
      {{keys::kEnter}, true},
      {{keys::kEsc}, false},
      {{KeyPair{'T', 20}}, true},
      {{KeyPair{'N', 49}}, false},
      {{KeyPair{'x', 45}, KeyPair{'1', 2}, KeyPair{'t', 20}}, true},
      {{keys::F(1), KeyPair{'n', 49}}, false},
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
    ScreenState before = Capture();
    (void)PushKey(27, 1);
    MessageBox(ShortText("Jeden@Dwa@Trzy"), code);
    DiscardPendingKeys();
    EXPECT_EQ(Capture(), before);
    EXPECT_EQ(CurrentAttr(), 0x07);
  }
}

TEST_F(MessageBoxTest, CodeTwoLeavesTheBoxUpAndTheCallersRestoreRemovesIt) {
  ScreenState before = Capture();
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
  EXPECT_EQ(Capture(), before);
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
  EXPECT_EQ(g_seen.window.top, 1);
  EXPECT_EQ(g_seen.window.bottom, 25);
  EXPECT_EQ(Seen(2, 34, 1), "A");
  EXPECT_EQ(Seen(22, 34, 1), "U");
  // The 22nd line holds everything after the 21st break, "@" included.
  EXPECT_EQ(Seen(23, 34, 9), "V@W@X@Y@Z");
  EXPECT_EQ(g_seen.window.right - g_seen.window.left - 1, 14);
  EXPECT_EQ(Seen(24, 35, 12), " Wciśnij ╒¿."_mz.Str());
}

TEST_F(MessageBoxTest, LongLinesAreCutAtSeventyEight) {
  ShortText text(std::string(100, 'x'));
  Answer({keys::kEnter});
  MessageBox(text, 0);
  EXPECT_EQ(g_seen.window.left, 1);
  EXPECT_EQ(g_seen.window.right, 80);
  EXPECT_EQ(Seen(13, 2, 78), std::string(78, 'x'));
  EXPECT_EQ(Seen(13, 80, 1), "\xBA");
}

TEST_F(MessageBoxTest, ColourBoxDrawsFrameAndBodyInTheGivenAttribute) {
  Answer({keys::kEnter});
  MessageBoxColour(ShortText("Kolor"), 0, 0x1F);
  EXPECT_EQ(SeenAttr(33, 12), 0x1F);
  EXPECT_EQ(SeenAttr(34, 13), 0x1F);
  EXPECT_EQ(SeenAttr(36, 14), 0x47);
}

TEST_F(MessageBoxTest, HereBoxOpensInsideTheWindowAndMovesBackFromTheEdges) {
  Window(10, 5, 30, 9);
  Answer({keys::kEnter});
  MessageBoxHere(ShortText("Obok pola"), 0, 0x4F);
  EXPECT_EQ(g_seen.window.left, 11);
  EXPECT_EQ(g_seen.window.top, 6);
  EXPECT_EQ(g_seen.window.right, 11 + 15);
  Window(75, 24, 80, 25);
  Answer({keys::kEnter});
  MessageBoxHere(ShortText("Obok pola"), 0, 0x4F);
  EXPECT_EQ(g_seen.window.right, 80);
  EXPECT_EQ(g_seen.window.bottom, 25);
  EXPECT_EQ(g_seen.window.top, 22);
}

TEST_F(MessageBoxTest, BottomBoxSitsOnRowsTwentyOneOrTwentyTwoToTwentyFour) {
  Answer({keys::kEnter});
  MessageBoxBottom(ShortText(std::string(90, 'y')), 0);
  EXPECT_EQ(g_seen.window.left, 2);
  EXPECT_EQ(g_seen.window.top, 21);
  EXPECT_EQ(g_seen.window.bottom, 24);
  EXPECT_EQ(Seen(22, 3, 77), std::string(76, 'y') + "\xBA");

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
  EXPECT_EQ(Seen(12, 33, 15), std::string(15, ' '));
  EXPECT_EQ(Seen(12, 48, 1), "\xB7");
  EXPECT_EQ(Seen(13, 33, 1), " ");
  EXPECT_EQ(Seen(15, 33, 1), "\xD4");
}

TEST_F(MessageBoxTest, ProgressBarFillsCountsAndPercents) {
  struct Case {
    const char* text;
    long done, total;
    const char* shown;
  } cases[] = {
      {"Trwa kasowanie...@[          ]", 3, 10, "\xDB\xDB\xDB       "},
      {"Liczenie@[          /          ]", 42, 1000, "        42/1000      "},
      {"Zapis [   %]", 1, 3, " 33"},
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
  ScreenState before = Capture();
  std::string sent;
  TermOutputToBuffer(&sent);
  ClipboardCopy("Zażółć"_mz, 5);
  TermFlush();
  TermOutputToBuffer(&out_);
  EXPECT_EQ(ClipboardText(), "Zażółć"_mz);
  EXPECT_NE(sent.find("Pobrano do schowka."), std::string::npos);
  EXPECT_EQ(Capture(), before);
}

}  // namespace
