#include "tui/editfield.h"

#include <gtest/gtest.h>

#include "base/expect_rows.h"
#include "form_fixture.h"
#include "tui/msgbox.h"

namespace {

using test_rows::ExpectRows;

using namespace form_test;

constexpr KeyPair kCtrlBackspace{127, 14};
constexpr KeyPair kCtrlC{3, 46};
constexpr KeyPair kPaste{22, 47};  // Ctrl+V, which only editors read as paste

class EditFieldTest : public form_test::FormTest {
 protected:
  void SetUp() override {
    FormTest::SetUp();
    GotoXY(5, 3);
    TextAttr(0x70);
  }
  void TearDown() override {
    SetClearOnFirstKey(false);
    FormTest::TearDown();
  }
  // Edits at column 5 of row 3; the keys end with Enter unless they end by themselves.
  ShortText Edit(int mode, int width, const ShortText& start, std::vector<KeyPair> keys, unsigned char fill = ' ',
                 int endMode = 1) {
    GotoXY(5, 3);
    Play(keys.empty() ? std::vector<std::vector<KeyPair>>{{keys::kEnter}} : std::vector{keys, {keys::kEnter}});
    ShortText text = start;
    EditField(mode, endMode, fill, width, text, key_);
    return text;
  }
  std::string Shown(int width) { return tui_test::Cells(3, 5, width); }
  unsigned char key_ = 0;
};

TEST_F(EditFieldTest, EditsGiveTheTextOfTheirMode) {
  const KeyPair home = keys::kHome, left = keys::kLeft, right = keys::kRight, del = keys::kDel, bs = keys::kBackspace;
  struct Case {
    int mode, width;
    const char* start;
    std::vector<KeyPair> keys;
    unsigned char fill;
    const char* want;
  } cases[] = {
      // What each mode takes of typed bytes.
      {1, 10, "", Keys("Ab 1,;"), ' ', "Ab 1,;"}, {2, 8, "", Keys("311299"), ' ', "31.12.99"},
      {3, 10, "", Keys("a1b2-."), ' ', "12"}, {4, 10, "", Keys("1-2,5,3"), ' ', "12.53"},
      {4, 10, "", Keys("--1"), ' ', "-1"}, {5, 12, "", Keys("a b/X_-.9*"), ' ', "ab/X_-.9"},
      {6, 10, "", Keys("3,14"), ' ', "3.14"}, {7, 8, "", Keys("010203"), ' ', "01-02-03"},
      {7, 10, "", Keys("3112a2001"), ' ', "31-12-2001"}, {8, 10, "", Keys("abc"), ' ', "ABC"},
      {9, 10, "", Keys("1-2"), ' ', "12"}, {9, 10, "", Keys("-12.5"), ' ', "-125"},
      {10, 10, "", Keys("1,2-3."), ' ', "1,23"}, {12, 15, "", Keys("PL1234567890"), ' ', "PL123-456-78-90"},
      {12, 17, "", Keys("DEx1234567890ab"), ' ', "DE123-456-78-90ab"}, {13, 10, "", Keys("+1,5a"), ' ', "+1.5"},
      {14, 10, "", Keys("1.234"), ' ', "1.23"}, {14, 10, "", Keys("12,3456"), ' ', "12.34"},
      {15, 10, "", Keys("Tajne"), ' ', "Tajne"}, {16, 10, "", Keys("a-b1_Z"), ' ', "ab1Z"},
      // Mazovia letters, and capitals.
      {1, 10, "", {{0x86, 30}, {0x92, 38}}, ' ', "\x86\x92"}, {8, 10, "", {{0x86, 30}, {'z', 44}}, ' ', "\x8FZ"},
      {16, 10, "", {{0x86, 30}, {'z', 44}}, ' ', "z"},
      // Mode 14 refuses a third decimal but not a digit before the point.
      {14, 10, "1.23", Keys("4"), ' ', "1.23"}, {14, 10, "1.23", {home, {'5', 6}}, ' ', "51.23"},
      {4, 10, "1.23", Keys("4."), ' ', "1.234"},
      // Fixed formats: Backspace and Del clear a cell to the fill and never touch a separator; typing over a
      // filled field passes the separators; Ctrl+Backspace empties it and starts again at its beginning.
      {7, 8, "", {}, '_', "__-__-__"}, {7, 8, "", Keys("0102"), '_', "01-02-__"},
      {7, 8, "01-02-03", {bs}, '_', "01-02-0_"}, {7, 8, "01-02-03", {left, left, bs}, '_', "01-0_-03"},
      {2, 8, "01.02.03", {home, right, right, del}, '_', "01._2.03"},
      {7, 8, "01-02-03", {home, {'1', 2}, {'1', 2}, {'1', 2}}, ' ', "11-12-03"},
      {7, 8, "01-02-03", {kCtrlBackspace, {'9', 10}}, '_', "9_-__-__"},
      // The editing keys of a free field four wide.
      {1, 4, "abc", {left, left, del}, ' ', "ac"}, {1, 4, "abc", {home, {'x', 45}}, ' ', "xabc"},
      {1, 4, "abc", {bs}, ' ', "ab"}, {1, 4, "abc", {home, bs, del}, ' ', "bc"},
      {1, 4, "abc", {home, keys::kEnd, {'d', 32}}, ' ', "abcd"}, {1, 4, "abc", {right, right, {'d', 32}}, ' ', "abcd"},
      {1, 4, "abc", {kCtrlBackspace, {'z', 44}}, ' ', "z"}, {1, 4, "abcdef", {}, ' ', "abcd"},
      {1, 4, "abcd", {{'e', 18}}, ' ', "abcd"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(::testing::Message() << c.mode << " " << c.start << " " << c.want);
    EXPECT_EQ(Edit(c.mode, c.width, ShortText(c.start), c.keys, c.fill), ShortText(c.want));
    EXPECT_EQ(key_, 13);
  }
}

TEST_F(EditFieldTest, ShownFieldsStarsAndMasks) {
  Edit(15, 8, ShortText(), Keys("haslo"));
  EXPECT_EQ(Shown(8), "*****   ");
  Edit(7, 8, ShortText(), {}, '_');
  EXPECT_EQ(Shown(8), "__-__-__");
  EXPECT_EQ(FieldMask(12, '.', 16), ShortText(".....-...-..-..."));
  EXPECT_EQ(FieldMask(1, '.', 3), ShortText("..."));
  GotoXY(1, 5);
  DrawMask(2, '_', 8);
  EXPECT_EQ(tui_test::Cells(5, 1, 8), "__.__.__");
  EXPECT_EQ(WhereX(), 1);
}

TEST_F(EditFieldTest, WidthAboveSeventyNineWorksAtSeventyNine) {
  for (const std::string& start : {std::string(100, 'w'), std::string()}) {
    GotoXY(1, 3);
    Play({{keys::kEnter}});
    ShortText text(start);
    EditField(1, 1, '.', 120, text, key_);
    EXPECT_EQ(text, ShortText(start.substr(0, 79)));
    EXPECT_EQ(tui_test::Cells(3, 1, 80), std::string(79, start.empty() ? '.' : 'w') + " ");
  }
}

TEST_F(EditFieldTest, Mode11EndsWhenFull) {
  GotoXY(5, 3);
  Play({Keys("12345")});
  ShortText text;
  EXPECT_EQ(EditField(11, 1, ' ', 3, text, key_), '4');
  EXPECT_EQ(text, ShortText("123"));
  EXPECT_EQ(KeysBuffered(), 1);  // the 5 is left for the next field
}

TEST_F(EditFieldTest, EndModes) {
  struct Case {
    int endMode;
    KeyPair key;
    bool ends;
  } cases[] = {
      {0, keys::kEnter, true},   {0, keys::F(1), true},    {0, keys::kEsc, false},  {1, keys::kEsc, true},
      {1, keys::kDown, false},   {2, keys::kDown, true},   {2, keys::kTab, true},   {2, keys::kShiftTab, true},
      {2, keys::kUp, true},      {2, keys::F(10), false},  {3, keys::F(10), true},  {3, keys::F(2), false},
      {4, keys::F(2), true},     {4, keys::F(5), false},   {5, keys::F(5), true},   {5, keys::F(3), false},
      {6, keys::F(3), true},     {6, keys::F(2), false},   {7, keys::F(7), true},   {7, keys::kPgDn, true},
      {-1, keys::kIns, true},    {3, keys::kPgDn, false},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.endMode);
    KeyboardReset();
    GotoXY(5, 3);
    Play({{c.key, {'x', 45}, keys::kEnter}});
    ShortText text;
    unsigned char code = EditField(1, c.endMode, ' ', 5, text, key_);
    EXPECT_EQ(code, c.ends ? KeyCodeOf(c.key) : 13) << int(c.key.scan);
    EXPECT_EQ(text, ShortText(c.ends ? "" : "x"));
  }
  // Typing and editing keys never end, whatever the end mode.
  EXPECT_EQ(Edit(1, 5, ShortText(), Keys("ab", {keys::kLeft}), ' ', 9), ShortText("ab"));
}

TEST_F(EditFieldTest, ClearOnFirstKeyOpensTheFieldEmpty) {
  SetClearOnFirstKey(true);
  EXPECT_EQ(Edit(1, 5, ShortText("stare"), Keys("n")), ShortText("n"));
  EXPECT_EQ(Edit(7, 8, ShortText("01-02-03"), {}, '_'), ShortText("__-__-__"));
  SetClearOnFirstKey(false);
  EXPECT_EQ(Edit(1, 5, ShortText("sta"), Keys("n")), ShortText("stan"));
}

TEST_F(EditFieldTest, ClipboardCopyAndPaste) {
  EXPECT_EQ(Edit(1, 10, ShortText("kopia"), {kCtrlC}), ShortText("kopia"));
  EXPECT_EQ(ClipboardText(), ShortText("kopia"));
  EXPECT_EQ(Edit(1, 3, ShortText("x"), {kPaste}), ShortText("kop"));
  EXPECT_EQ(Edit(7, 8, ShortText(), {kPaste}), ShortText("kopia-"));
  EXPECT_EQ(Edit(7, 8, ShortText(), Keys("01"), ' '), ShortText("01-  -")) << "trailing blanks go";
}

TEST_F(EditFieldTest, CheckedDateAsksAndStartsAgain) {
  GotoXY(5, 3);
  ShortText out;
  // Incomplete: asked, "no", completed, passes.
  Play({Keys("0102", {keys::kEnter}), Keys("n"), Keys("03", {keys::kEnter})});
  EditFieldChecked(7, 1, ' ', 8, ShortText(), key_, out);
  EXPECT_EQ(out, ShortText("01-02-03"));
  EXPECT_NE(Seen().at(1).RowOf("Taka data jest niepoprawna. Czy tak ma b"_mz.View()), 0);
  EXPECT_EQ(CurrentAttr(), 0x70);
  // "yes" keeps the incomplete date; F2 is never asked about.
  Play({Keys("01", {keys::kEnter}), Keys("t")});
  EditFieldChecked(7, 1, ' ', 10, ShortText(), key_, out);
  EXPECT_EQ(out, ShortText("01-  -"));
  Play({Keys("1", {keys::F(2)})});
  EXPECT_EQ(EditFieldChecked(7, 4, ' ', 8, ShortText(), key_, out), 230);
  EXPECT_EQ(Seen().size(), 1u);
  // The empty field with fill "_" passes as it is; mode 1 is taken in capitals.
  Play({{keys::kEnter}});
  EditFieldChecked(7, 1, '_', 8, ShortText(), key_, out);
  EXPECT_EQ(out, ShortText("__-__-__"));
  Play({Keys("abc", {keys::kEnter})});
  EditFieldChecked(1, 1, ' ', 8, ShortText(), key_, out);
  EXPECT_EQ(out, ShortText("ABC"));
}

// EditLine.

class EditLineTest : public EditFieldTest {
 protected:
  ShortText Line(const ShortText& start, std::vector<KeyPair> keys, int width = 5, int max = 254, bool caps = false) {
    GotoXY(5, 3);
    Play({keys});
    ShortText out("untouched");
    EditLine(caps, 1, '.', width, max, start, key_, out);
    return out;
  }
};

TEST_F(EditLineTest, EscGivesBackTheTextAsItCame) {
  EXPECT_EQ(Line(ShortText("adres"), Keys("xyz", {kCtrlBackspace, keys::kEsc})), ShortText("adres"));
  EXPECT_EQ(key_, 27);
  EXPECT_EQ(Shown(5), "adres");
  EXPECT_EQ(Line(ShortText("adres"), Keys("xyz", {keys::kEnter})), ShortText("adresxyz"));
}

TEST_F(EditLineTest, ScrollsToKeepTheCursorInView) {
  GotoXY(5, 3);
  Play({Keys("abcdefgh"), {keys::kHome}, {keys::kEnd, keys::kLeft, keys::kLeft, keys::kLeft, keys::kLeft, keys::kLeft},
        {keys::kEnter}});
  ShortText out;
  EditLine(false, 1, '.', 5, 254, ShortText(), key_, out);
  EXPECT_EQ(out, ShortText("abcdefgh"));
  ExpectRows<std::string>({{Seen().at(1).Cells(3, 5, 6), "efgh. "}, {Seen().at(2).Cells(3, 5, 5), "abcde"},
                           {Seen().at(3).Cells(3, 5, 5), "defgh"}});
  ExpectRows<int>({{Seen().at(1).x, 9}, {Seen().at(2).x, 5}, {Seen().at(3).x, 5}});
}

TEST_F(EditLineTest, MaximumLengthCapitalsAndKeys) {
  EXPECT_EQ(Line(ShortText(), Keys("abcdefg", {keys::kEnter}), 5, 4), ShortText("abcd"));
  EXPECT_EQ(Line(ShortText(), Keys("ab", {{0x86, 30}, keys::kEnter}), 5, 10, true), ShortText("AB\x8F"));
  EXPECT_EQ(Line(ShortText(std::string(254, 'a')), Keys("b", {keys::kEnter}), 5, 400), ShortText(std::string(254, 'a')));
  EXPECT_EQ(Line(ShortText("abc"), {keys::kHome, keys::kDel, keys::kEnd, keys::kBackspace, keys::kEnter}), ShortText("b"));
  EXPECT_EQ(Line(ShortText("abc"), {keys::F(1)}), ShortText("abc"));
  EXPECT_EQ(key_, 229);
  EXPECT_EQ(Line(ShortText("abc"), {keys::kDown, keys::F(10), keys::kEnter}), ShortText("abc"));
  EXPECT_EQ(key_, 13);
  EXPECT_EQ(Line(ShortText("abc"), {kCtrlC, keys::kEnter}), ShortText("abc"));
  EXPECT_EQ(ClipboardText(), ShortText("abc"));
  EXPECT_EQ(Line(ShortText("x"), {kPaste, keys::kEnter}), ShortText("abc"));
}

}  // namespace
