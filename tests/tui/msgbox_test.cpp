#include "tui/msgbox.h"

#include <gtest/gtest.h>

#include <functional>
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

TEST_F(MessageBoxTest, EachCodeTakesItsKeysLeavesTheRestAndRestoresTheScreen) {
  const KeyPair esc = keys::kEsc, y{'y', 21}, z{'z', 44}, b{'b', 48};
  struct Case {
    int16_t code;
    std::vector<KeyPair> pushed;
    bool yes;
    std::vector<KeyPair> left;
  } cases[] = {
      // Yes or no: Enter or T is yes, Esc or N is no, other keys are ignored.
      {1, {keys::kEnter}, true, {}}, {1, {esc}, false, {}}, {1, {{'T', 20}}, true, {}}, {1, {{'N', 49}}, false, {}},
      {1, {{'x', 45}, {'1', 2}, {'t', 20}}, true, {}}, {1, {keys::F(1), {'n', 49}}, false, {}},
      // Code 0 waits for Enter or Esc only.
      {0, {{'a', 30}, keys::F(2), {' ', 57}, keys::kEnter, b}, false, {b}},
      // Code -1 lets any other key through; Esc ends it and takes the rest.
      {-1, {z, y}, false, {z, y}}, {-1, {esc, y}, false, {}},
      // A timed box leaves typed keys alone.
      {20, {{'q', 16}}, false, {{'q', 16}}}, {3, {esc}, false, {esc}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.code);
    for (KeyPair k : c.pushed) (void)PushKey(k.ch, k.scan);
    Snapshot before = Capture();
    EXPECT_EQ(MessageBox(ShortText("Jeden@Dwa@Trzy"), c.code), c.yes);
    EXPECT_EQ(Capture(), Restored(before));
    std::vector<KeyPair> left;
    while (KeysBuffered() > 0) left.push_back(ReadKeyRaw());
    EXPECT_EQ(left, c.left);
  }
}

TEST_F(MessageBoxTest, EachKindOfBoxSitsWhereItsTextAndPlacePutIt) {
  const WindowRect kAsFilled{3, 4, 60, 20};  // the window that FillBackground leaves
  ShortText manyLines;                       // 25 breaks
  for (char c = 'A'; c < 'Z'; ++c) manyLines += ShortText(std::string{c, '@'});
  manyLines += 'Z';
  struct Case {
    const char* name;
    const char* term;
    WindowRect caller;
    std::function<void()> show;
    WindowRect box;
    std::vector<form_test::Cell> cells;
  } cases[] = {
      // Empty text: 14 wide with one empty line. An empty line writes nothing in the body colour; the bottom
      // line's row outside its text keeps the frame colour.
      {"empty text", "linux", kAsFilled, [] { MessageBox(ShortText(), 0); }, {33, 12, 48, 15},
       {{12, 33, "\xDA" + std::string(14, '\xC4') + "\xB7", 0x4E}, {13, 33, "\xB3" + std::string(14, ' ') + "\xBA"},
        {13, 34, " ", 0x4E}, {14, 33, std::string("\xB3 ") + " Wciśnij ╒¿."_mz.Str() + " \xBA"}, {14, 34, " ", 0x4E},
        {14, 35, " ", 0x47}, {15, 33, "\xD4" + std::string(14, '\xCD') + "\xBC"}}},
      // Each code has its bottom line and the width it needs, the body in 0x4F and the bottom line in 0x47.
      {"code 0", "linux", kAsFilled, [] { MessageBox(ShortText("Abc"), 0); }, {33, 12, 48, 15},
       {{13, 34, "Abc", 0x4F}, {14, 35, " Wciśnij ╒¿."_mz.Str(), 0x47}}},
      {"code -1", "linux", kAsFilled, [] { MessageBox(ShortText("Abc"), -1); }, {33, 12, 48, 15},
       {{13, 34, "Abc", 0x4F}, {14, 34, " Wciśnij ╤╥û."_mz.Str()}}},
      {"code 1", "linux", kAsFilled, [] { MessageBox(ShortText("Abc"), 1); }, {22, 12, 59, 15},
       {{13, 23, "Abc", 0x4F}, {14, 25, " Odpowiedz naciskając ╧Ö lub ╧Ü."_mz.Str()}}},
      {"colour", "linux", kAsFilled, [] { MessageBoxColour(ShortText("Kolor"), 0, 0x1F); }, {33, 12, 48, 15},
       {{12, 33, "\xDA", 0x1F}, {13, 34, "Kolor", 0x1F}, {14, 36, "Wciśnij ╒¿."_mz.Str(), 0x47}}},
      // The 22nd line holds everything after the 21st break, "@" included.
      {"22 lines and more", "linux", kAsFilled, [&] { MessageBox(manyLines, 0); }, {33, 1, 48, 25},
       {{2, 34, "A"}, {22, 34, "U"}, {23, 34, "V@W@X@Y@Z"}, {24, 35, " Wciśnij ╒¿."_mz.Str()}}},
      {"a line cut at 78", "linux", kAsFilled, [] { MessageBox(ShortText(std::string(100, 'x')), 0); }, {1, 12, 80, 15},
       {{13, 2, std::string(78, 'x') + "\xBA"}}},
      {"one cell inside the window", "linux", {10, 5, 30, 9}, [] { MessageBoxHere(ShortText("Obok pola"), 0, 0x4F); },
       {11, 6, 26, 9}, {{7, 12, "Obok pola"}}},
      {"moved back from the edges", "linux", {75, 24, 80, 25},
       [] { MessageBoxHere(ShortText("Obok pola"), 0, 0x4F); }, {65, 22, 80, 25}, {{23, 66, "Obok pola"}}},
      {"bottom line of 76", "linux", kAsFilled, [] { MessageBoxBottom(ShortText(std::string(90, 'y')), 0); },
       {2, 21, 79, 24}, {{22, 3, std::string(76, 'y') + "\xBA"}}},
      // An ISO terminal leaves the single frame lines blank.
      {"iso frame", "xterm", {}, [] { MessageBox(ShortText("Iso"), 0); }, {33, 12, 48, 15},
       {{12, 33, std::string(15, ' ') + "\xB7"}, {13, 33, " "}, {15, 33, "\xD4"}}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    tui_test::InitTerminal(c.term);
    Window(c.caller.left, c.caller.top, c.caller.right, c.caller.bottom);
    Answer({keys::kEsc});
    c.show();
    const WindowRect& w = First().window;
    ExpectRows<int>({{w.left, c.box.left}, {w.top, c.box.top}, {w.right, c.box.right}, {w.bottom, c.box.bottom}});
    // The cursor waits in the lower right corner.
    ExpectRows<int>({{First().x, w.right - w.left + 1}, {First().y, w.bottom - w.top + 1}});
    form_test::ExpectCells(First(), c.cells);
  }
}

TEST_F(MessageBoxTest, BottomBoxWithoutWaitSitsOnRowsTwentyTwoToTwentyFour) {
  ScreenCopyPtr copy;
  ScreenSave(copy);
  MessageBoxBottom(ShortText("Notka"), 2);
  EXPECT_EQ(CurrentWindow().top, 22);
  EXPECT_EQ(Cells(23, 3, 5), "Notka");
  ScreenRestore(copy);
}

TEST_F(MessageBoxTest, TimedBottomBoxWritesItsWaitLineOverTheBottomFrame) {
  Sent();
  MessageBoxBottom(ShortText("Notka"), 10);
  // Row 24 receives the wait line where the frame was.
  const std::string sent = Sent();
  EXPECT_NE(sent.find("\x1b[24;"), std::string::npos);
  EXPECT_NE(sent.find("Zaczekaj"), std::string::npos);
}

TEST_F(MessageBoxTest, CodeTwoLeavesTheBoxUpForItsProgressBarUntilTheCallerRestores) {
  struct Case {
    const char* text;
    long done, total;
    const char* shown;
    int top;  // of a box without a bottom line: one row shorter, ending on row 14
  } cases[] = {
      {"Trwa kasowanie...@[          ]", 3, 10, "\xDB\xDB\xDB       ", 11},
      {"Liczenie@[          /          ]", 42, 1000, "        42/1000      ", 11}, {"Zapis [   %]", 1, 3, " 33", 12},
      {"Koniec [          ]", 12, 10, "\xDB\xDB\xDB\xDB\xDB\xDB\xDB\xDB\xDB\xDB", 12},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.text);
    const Snapshot before = Capture();
    const ShortText text(c.text);
    ScreenCopyPtr copy;
    ScreenSave(copy);
    MessageBox(text, 2);
    // The window is the box.
    const WindowRect w = CurrentWindow();
    const ShortText firstLine = text.Copy(1, text.Pos('@') > 0 ? text.Pos('@') - 1 : text.Length());
    EXPECT_EQ(Cells(w.top + 1, w.left + 1, firstLine.Length()), firstLine.Str());
    ExpectRows<int>({{w.top, c.top}, {w.bottom, 14}, {CharAt(w.left, 14), 0xD4}, {CurrentAttr(), 0x07}});
    ProgressBar bar = FindProgressBar(text);
    ASSERT_NE(bar.kind, ProgressBar::kNone);
    ShowProgress(bar, c.done, c.total);
    EXPECT_EQ(Cells(w.top + bar.y - 1, w.left + bar.x - 1, 1), "[");
    EXPECT_EQ(Cells(w.top + bar.y - 1, w.left + bar.x, static_cast<int>(strlen(c.shown))), c.shown);
    ScreenRestore(copy);
    Window(before.window.left, before.window.top, before.window.right, before.window.bottom);
    GotoXY(before.x, before.y);
    EXPECT_EQ(Capture(), Restored(before));
  }
  EXPECT_EQ(FindProgressBar(ShortText("Bez paska [x]")).kind, ProgressBar::kNone);
}

TEST_F(MessageBoxTest, ClipboardCopyKeepsTheFieldAndSaysSoBriefly) {
  Snapshot before = Capture();
  Sent();
  ClipboardCopy("Zażółć"_mz, 5);
  EXPECT_EQ(ClipboardText(), "Zażółć"_mz);
  EXPECT_NE(Sent().find("Pobrano do schowka."), std::string::npos);
  EXPECT_EQ(Capture(), Restored(before));
}

}  // namespace
