#include "tui/editmemo.h"

#include <gtest/gtest.h>

#include "base/expect_rows.h"
#include "base/file_fixture.h"
#include "form_fixture.h"
#include "tui/askvalue.h"

namespace {

using test_rows::ExpectRows;

using namespace form_test;

constexpr KeyPair kCtrlBackspace{127, 14};
const MemoWindow kWindow{10, 5, 40, 8};  // three rows of text, the keys on row 8

class EditMemoTest : public FormTest {};

TEST_F(EditMemoTest, EditsLinesAndConfirmsWithF10) {
  std::string block = "jeden\ndwa\n";
  Play({Keys("X", {keys::kDown, kCtrlBackspace}), Keys("trzy", {keys::kTab}), Keys("cztery", {keys::F(10)})});
  EXPECT_TRUE(EditMemo(block, kWindow, false));
  EXPECT_EQ(block, "jedenX\ntrzycztery\n") << "Tab on the last line stays there";
  const Snapshot& s = Seen().at(0);
  ExpectCells(s, {{5, 10, "jeden ", 0x1F}, {6, 10, "dwa "}, {8, 10, "╪╓ü - przemieszczanie kursora ╫"_mz.Str(), 0x47}});
  EXPECT_EQ(s.x, 6);  // the cursor after "jeden"
}

TEST_F(EditMemoTest, EscLeavesTheTextAsItWas) {
  for (int i = 0; i < 2; ++i) {
    std::string block = "jeden\ndwa\n";
    Play({Keys("zmiana", {keys::kDown, keys::kEsc})});
    EXPECT_FALSE(EditMemo(block, kWindow, false));
    EXPECT_EQ(block, "jeden\ndwa\n");
  }
}

TEST_F(EditMemoTest, EnterOnTheLastLineAddsOneAndTheWindowScrolls) {
  std::string block;
  Play({Keys("a", {keys::kEnter}), Keys("b", {keys::kEnter}), Keys("c", {keys::kEnter}), Keys("d", {keys::F(10)})});
  EXPECT_TRUE(EditMemo(block, kWindow, false));
  EXPECT_EQ(block, "a\nb\nc\nd\n");
  ExpectCells(Seen().back(), {{5, 10, "b"}, {6, 10, "c"}, {7, 10, " "}});
}

TEST_F(EditMemoTest, ReadOnlyShowsAndScrollsUntilEsc) {
  std::string block = "1\n2\n3\n4\n5\n6\n";
  Play({{keys::kDown, keys::kDown}, {keys::kEnd}, {keys::kHome}, Keys("x", {keys::F(10), keys::kEsc})});
  EXPECT_FALSE(EditMemo(block, kWindow, true));
  EXPECT_EQ(block, "1\n2\n3\n4\n5\n6\n");
  ExpectRows<std::string>({{Seen().at(0).Cells(8, 10, 13), "╤╥û - koniec "_mz.Str()}, {Seen().at(0).Cells(5, 10, 1), "1"},
                           {Seen().at(1).Cells(5, 10, 1), "3"}, {Seen().at(2).Cells(7, 10, 1), "6"},
                           {Seen().at(3).Cells(5, 10, 1), "1"}});
}

TEST_F(EditMemoTest, FileIsWrittenBackOnlyOnF10AndLongLinesKeepTheirTail) {
  file_test::ScratchDir scratch;
  ASSERT_TRUE(scratch.Entered());
  const std::string longLine(100, 'q');
  file_test::WriteBytes("notatka.txt", "pierwsza\n" + longLine + "\n");
  Play({{keys::kDown, keys::kDown, keys::kEsc}});
  EXPECT_FALSE(EditMemo(ShortText("notatka.txt"), kWindow, false));
  EXPECT_EQ(file_test::ReadBytes("notatka.txt"), "pierwsza\n" + longLine + "\n");
  Play({Keys("!", {keys::kDown, keys::kDown, keys::F(10)})});
  EXPECT_TRUE(EditMemo(ShortText("notatka.txt"), kWindow, false));
  EXPECT_EQ(file_test::ReadBytes("notatka.txt"), "pierwsza!\n" + longLine + "\n");
  EXPECT_EQ(file_test::Listing(), "notatka.txt ") << "no work file is left behind";
  Play({Keys("nowa", {keys::F(10)})});
  EXPECT_TRUE(EditMemo(ShortText("nowy.txt"), kWindow, false));
  EXPECT_EQ(file_test::ReadBytes("nowy.txt"), "nowa\n");
}

TEST_F(EditMemoTest, ScreenWindowAttributeAndCursorAsFound) {
  Window(2, 2, 70, 20);
  GotoXY(3, 4);
  TextAttr(0x2A);
  Snapshot before = Capture();
  std::string block = "a\n";
  Play({Keys("b", {keys::F(10)})});
  EXPECT_TRUE(EditMemo(block, kWindow, false));
  EXPECT_TRUE(Capture() == before);
}

// AskValue.

class AskValueTest : public FormTest {};

TEST_F(AskValueTest, OneFieldEnterAndEsc) {
  ShortText value("AB");
  Play({Keys("c", {keys::kEnter})});
  EXPECT_TRUE(AskValue(ShortText("Podaj kod:"), value, 10, 8, ShortText("Kod to litery."), ShortText()));
  EXPECT_EQ(value, ShortText("ABC"));
  const Snapshot& s = Seen().at(0);
  // Three lines of 10: columns 35..46, rows 11..15; the field on the last line.
  ExpectCells(s, {{12, 35, "\xB3Podaj kod:"}, {13, 36, "╫à - pomoc"_mz.Str()}, {14, 36, "AB        \xBA", 0x70}});
  EXPECT_EQ(s.x, 4);  // the cursor after "AB", in the box
  Play({Keys("xyz", {keys::kEsc})});
  Snapshot before = Capture();
  EXPECT_FALSE(AskValue(ShortText("Podaj kod:"), value, 10, 8, ShortText(), ShortText()));
  EXPECT_EQ(value, ShortText("ABC"));
  EXPECT_TRUE(Capture() == before);
}

TEST_F(AskValueTest, F1PicksAnExampleOrShowsTheHelp) {
  ShortText value;
  Play({{keys::F(1)}, Keys("3"), {keys::kEnter}});
  EXPECT_TRUE(AskValue(ShortText("Wzorzec:"), value, 20, 1, ShortText("Pomoc"), ShortText("Jeden,Dwa,\"Trzy, cztery\"")));
  EXPECT_EQ(value, ShortText("Trzy, cztery"));
  EXPECT_NE(Seen().at(0).RowOf("╫à - lista przykładowych wartości"_mz.View()), 0);
  EXPECT_NE(Seen().at(1).RowOf("Lista przykładowych wartości:"_mz.View()), 0);
  EXPECT_NE(Seen().at(1).RowOf("\xCF\x88 Trzy, cztery"), 0);
  Play({{keys::F(1)}, {keys::kEnter}, Keys("x", {keys::kEnter})});
  EXPECT_TRUE(AskValue(ShortText("Wzorzec:"), value, 20, 1, ShortText("Tekst pomocy"), ShortText()));
  EXPECT_NE(Seen().at(1).RowOf("Tekst pomocy"), 0);
  EXPECT_EQ(value, ShortText("Trzy, czteryx"));
}

TEST_F(AskValueTest, TwoFieldsFromAndTo) {
  ShortText from("1"), to("9");
  Play({Keys("0", {keys::kEnter}), Keys("5", {keys::kUp}), Keys("2", {keys::kTab}), {keys::kEnter}});
  EXPECT_TRUE(AskValueRange(ShortText("Zakres:"), from, to, 6, 3, ShortText(), ShortText()));
  EXPECT_EQ(from, ShortText("102"));
  EXPECT_EQ(to, ShortText("95"));
  EXPECT_NE(Seen().at(0).RowOf("od: 1     "), 0);
  EXPECT_NE(Seen().at(0).RowOf("do: 9     "), 0);
  Play({Keys("7", {keys::kDown, keys::kEsc})});
  EXPECT_FALSE(AskValueRange(ShortText("Zakres:"), from, to, 6, 3, ShortText(), ShortText()));
  EXPECT_EQ(from, ShortText("102"));
}

}  // namespace
