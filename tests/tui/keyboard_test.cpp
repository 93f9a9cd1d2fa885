// Key pairs through the translations of ReadKeyRaw, and the key codes.
#include <gtest/gtest.h>

#include <unistd.h>

#include <vector>

#include "base/codepage.h"
#include "base/mazovia.h"
#include "base/expect_rows.h"
#include "tui_fixture.h"

namespace {

using test_rows::ExpectRows;

using tui_test::AttrAt;
using tui_test::CharAt;

class KeyboardTest : public tui_test::TuiTest {
 protected:
  void TearDown() override {
    DiscardPendingKeys();
    TuiTest::TearDown();
  }
  // Every key that the bytes give when the terminal sends them and then closes.
  static std::vector<KeyPair> KeysFromBytes(const std::string& bytes) {
    int fds[2];
    EXPECT_EQ(pipe(fds), 0);
    EXPECT_EQ(write(fds[1], bytes.data(), bytes.size()), static_cast<ssize_t>(bytes.size()));
    close(fds[1]);
    TermInputFromFd(fds[0]);
    std::vector<KeyPair> keys;
    while (KeyPressed()) keys.push_back(ReadKeyRaw());
    TermInputFromFd(-1);
    close(fds[0]);
    return keys;
  }
  static KeyPair Translate(std::vector<KeyPair> in) {
    for (KeyPair k : in) EXPECT_TRUE(PushKey(k.ch, k.scan));
    KeyPair out = ReadKeyRaw();
    EXPECT_EQ(KeysBuffered(), 0);
    return out;
  }
};

TEST_F(KeyboardTest, BufferHoldsThirtyTwoKeysAndDropsTheRest) {
  (void)PushKey('b', 48);
  EXPECT_TRUE(PushKeyFront('a', 30));  // before the waiting key
  for (int i = 2; i < 32; ++i) EXPECT_TRUE(PushKey(static_cast<unsigned char>('a' + i % 26), 30));
  EXPECT_FALSE(PushKey('x', 45));
  EXPECT_FALSE(PushKeyFront('y', 21));
  EXPECT_TRUE(KeyPressed());
  EXPECT_EQ(ReadKeyRaw(), (KeyPair{'a', 30}));
  EXPECT_TRUE(PushKey('z', 44));  // room again after one read
  EXPECT_EQ(ReadKeyRaw(), (KeyPair{'b', 48}));
  for (int i = 2; i < 32; ++i) EXPECT_EQ(ReadKeyRaw().ch, 'a' + i % 26);
  EXPECT_EQ(ReadKeyRaw(), (KeyPair{'z', 44}));
  EXPECT_FALSE(KeyPressed());
}

TEST_F(KeyboardTest, FixedTranslationsAndTheGravePrefixForKeysATerminalCannotSend) {
  const KeyPair g{0x60, 41}, a{'a', 30}, s{'S', 31}, c{'c', 46};
  struct Case {
    std::vector<KeyPair> in;
    KeyPair out;
  } cases[] = {
      {{{5, 18}}, {10, 28}}, {{{22, 47}}, {224, 79}}, {{{2, 48}}, {127, 14}}, {{{0, 6}}, {224, 147}},
      {{{28, 43}}, {224, 147}}, {{{0, 165}}, {0, 15}}, {{{0, 20}}, {0, 15}}, {{a}, a}, {{keys::F(1)}, keys::F(1)},
      {{g, keys::kUp}, {224, 141}}, {{g, keys::kDown}, {224, 145}}, {{g, keys::kIns}, {224, 146}},
      {{g, keys::kDel}, {224, 147}}, {{g, keys::kBackspace}, {127, 14}}, {{g, keys::F(1)}, keys::F(11)},
      {{g, keys::F(2)}, keys::F(12)}, {{g, keys::kPgUp}, {0, 153}}, {{g, keys::kPgDn}, {0, 161}},
      {{g, keys::kTab}, {0, 15}}, {{g, g}, g}, {{g, KeyPair{'x', 45}}, {'x', 45}}, {{g, a, keys::F(1)}, {0, 104}},
      {{g, a, keys::F(10)}, {0, 113}}, {{g, a, keys::F(12)}, {0, 140}}, {{g, s, keys::F(3)}, {0, 86}},
      {{g, s, keys::F(11)}, {0, 135}}, {{g, s, keys::kTab}, {0, 15}}, {{g, c, keys::F(3)}, {0, 96}},
      {{g, c, keys::F(12)}, {0, 138}}, {{g, c, keys::kHome}, {224, 119}}, {{g, c, keys::kEnd}, {224, 117}},
      {{g, c, keys::kUp}, {224, 141}}, {{g, c, keys::kDown}, {224, 145}}, {{g, c, keys::kPgUp}, {224, 132}},
      {{g, c, keys::kPgDn}, {224, 118}}, {{g, c, keys::kDel}, {224, 147}}, {{g, c, keys::kBackspace}, {127, 14}},
      {{g, c, keys::kTab}, {0, 148}}, {{g, c, keys::kEnter}, {10, 28}}, {{g, c, KeyPair{'q', 16}}, {'q', 16}},
  };
  for (const auto& k : cases) {
    SCOPED_TRACE(::testing::Message() << int(k.out.ch) << "," << int(k.out.scan));
    EXPECT_EQ(Translate(k.in), k.out);
  }
}

TEST_F(KeyboardTest, SingleByteInputPagesGiveMazoviaLettersFromTheTerminal) {
  tui_test::InitTerminal("xterm");
  EXPECT_EQ(KeysFromBytes("\xB1\xAF\xE6x"), (std::vector<KeyPair>{{0x86, 30}, {0xA1, 44}, {0x8D, 46}, {'x', 45}}));
  (void)PushKey(0xB1, 30);  // a pushed pair with another scan is no typed letter
  EXPECT_EQ(ReadKeyRaw(), (KeyPair{0xB1, 30}));
  tui_test::InitTerminal("xterm", "", "WIN");
  EXPECT_EQ(KeysFromBytes("\xB9\x9C\xA3"), (std::vector<KeyPair>{{0x86, 30}, {0x9E, 31}, {0x9C, 38}}));
  tui_test::InitTerminal("cp852");
  // Latin 2: \xA5 is ą, \xBD is Ż (which in ISO would be another byte).
  EXPECT_EQ(KeysFromBytes("\xA5\xBD"), (std::vector<KeyPair>{{0x86, 6}, {0xA1, 13}}));
}

TEST_F(KeyboardTest, Utf8LettersFromTheTerminalBecomeMazoviaWithTheirScans) {
  tui_test::InitTerminal("xterm", "", "UTF");
  // Each Polish letter takes the scan of the Latin letter under it on the keyboard.
  const ShortText mazovia = "ęĘąĄćĆóÓśŚłŁżŻźŹńŃ"_mz;
  const std::string under = "eeaaccoossllzzxxnn";
  std::vector<KeyPair> want = {KeyOfByte('Z'), KeyOfByte('a')};
  for (int i = 0; i < 18; ++i) want.push_back({static_cast<unsigned char>(mazovia.At(i + 1)), KeyOfByte(under[i]).scan});
  EXPECT_EQ(KeysFromBytes("ZaęĘąĄćĆóÓśŚłŁżŻźŹńŃ"), want);
  // Bytes already in the key buffer combine the same way.
  (void)PushKey(0xC4, 32);
  (void)PushKey(0x99, 0);
  EXPECT_EQ(ReadKeyRaw(), want[2]);
  // Another two-byte letter is not Polish, nor is a lead byte before a plain one: the bytes come as they are.
  EXPECT_EQ(KeysFromBytes("\xC3\xA9\xC4x"), (std::vector<KeyPair>{{0xC3, 46}, KeyOfByte(0xA9), {0xC4, 32}, {'x', 45}}));
}

TEST_F(KeyboardTest, EscapeSequencesAndTheGravePrefixFromTheTerminal) {
  struct Case {
    const char* term;
    std::string bytes;
    std::vector<KeyPair> keys;
  } cases[] = {
      {"xterm", "`c\x1bOR", {{0, 96}}},                // ` C F3: Ctrl+F3
      {"xterm", "`a\x1b[24~", {{0, 140}}},             // ` A F12
      {"xterm", "`s\x1bOP", {{0, 84}}},                // ` S F1
      {"xterm", "`\x1bOP`\x1b[A", {{0, 133}, {224, 141}}}, {"xterm", "`c\x1b[H`c\r", {{224, 119}, {10, 28}}},
      {"rxvt", "\x1b[11~\x1b[3~\x1b[5^", {{0, 59}, {224, 83}, {224, 132}}},
      {"linux", "\x1b[[A\x1b[4~\x1b[25~", {{0, 59}, {224, 79}, {0, 84}}},
      {"xterm", "\x1b[21~\r\x7f\t\x1b[Z", {{0, 68}, {13, 28}, {8, 14}, {9, 15}, {0, 15}}},
      {"xterm", "\x05\x16\x02", {{10, 28}, {224, 79}, {127, 14}}},
      {"xterm", "\x1b" "e", {{0, 18}}},                 // Alt+E
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(::testing::PrintToString(c.bytes));
    tui_test::InitTerminal(c.term);
    EXPECT_EQ(KeysFromBytes(c.bytes), c.keys);
  }
}

TEST_F(KeyboardTest, AloneEscAfterAPauseIsTheEscKeyAndEndOfInputReadsAsEsc) {
  EXPECT_EQ(KeysFromBytes("\x1b"), (std::vector<KeyPair>{keys::kEsc}));
  EXPECT_EQ(KeysFromBytes("q"), (std::vector<KeyPair>{{'q', 16}}));
  EXPECT_EQ(ReadKeyRaw(), keys::kEsc);
}

TEST_F(KeyboardTest, CtrlVIsPasteOnlyInEditorReads) {
  const KeyPair ctrlV{22, 47}, grave{0x60, 41};
  for (auto read : {ReadKeyEdit, ReadKeyUpper, +[] { return ReadKeyRaw(); }}) {
    (void)PushKey(ctrlV.ch, ctrlV.scan);
    EXPECT_EQ(read(), read == ReadKeyEdit ? ctrlV : keys::kEnd);
  }
  (void)PushKey(grave.ch, grave.scan);
  (void)PushKey(ctrlV.ch, ctrlV.scan);
  EXPECT_EQ(ReadKeyEdit(), ctrlV) << "behind the prefix key too";
}

TEST_F(KeyboardTest, PolishAltKeysGiveLettersInEditAndUpperReads) {
  const unsigned char small[] = {0x91, 0xA2, 0x86, 0x9E, 0x92, 0xA7, 0xA6, 0x8D, 0xA4};
  const unsigned char scans[] = {18, 24, 30, 31, 38, 44, 45, 46, 49};
  for (int i = 0; i < 9; ++i) {
    (void)PushKey(0, scans[i]);
    EXPECT_EQ(ReadKeyEdit(), (KeyPair{small[i], scans[i]}));
    (void)PushKey(0, scans[i]);
    EXPECT_EQ(ReadKeyUpper(), (KeyPair{MazUpCase(small[i]), scans[i]}));
    (void)PushKey(0, scans[i]);
    EXPECT_EQ(ReadKeyRaw(), (KeyPair{0, scans[i]}));
  }
  (void)PushKey(0, 59);
  EXPECT_EQ(ReadKeyEdit(), keys::F(1));
}

TEST_F(KeyboardTest, CtrlLTogglesTheCapsIndicatorInTheTopRow) {
  TextAttr(0x17);
  WriteAt(1, 1, ShortText("abc"));
  Window(10, 10, 20, 20);
  GotoXY(3, 4);
  TextAttr(0x1F);
  EXPECT_EQ(Translate({{12, 38}}), (KeyPair{12, 38}));
  EXPECT_TRUE(CapsIndicator());
  ExpectRows<int>({{CharAt(2, 1), 237}, {AttrAt(2, 1), 0x47}, {WhereX(), 3}, {WhereY(), 4}, {CurrentAttr(), 0x1F},
                   {CurrentWindow().left, 10}});
  Translate({{12, 38}});
  EXPECT_FALSE(CapsIndicator());
  EXPECT_EQ(CharAt(2, 1), ' ');
  EXPECT_EQ(AttrAt(2, 1), 0x17);
}

TEST(KeyCodes, EveryKeyOfTheTable) {
  struct Case {
    KeyPair key;
    unsigned char code;
  } cases[] = {
      {keys::kEnter, 13},       {keys::kEsc, 27},        {keys::kBackspace, 8},  {{127, 14}, 127},
      {{10, 28}, 10},           {{224, 115}, 224},       {{224, 116}, 225},      {{224, 117}, 226},
      {{224, 118}, 227},        {{224, 119}, 228},       {{224, 132}, 132},      {keys::kIns, 252},
      {keys::F(1), 229},        {keys::F(8), 236},       {keys::F(9), 221},      {keys::F(10), 238},
      {keys::kHome, 241},       {keys::kUp, 242},        {keys::kShiftTab, 242}, {keys::kPgUp, 243},
      {keys::kLeft, 245},       {keys::kRight, 247},     {keys::kEnd, 249},      {keys::kDown, 250},
      {keys::kTab, 250},        {keys::kPgDn, 251},      {keys::kDel, 253},      {{'a', 30}, 'a'},
      {{0x86, 30}, 0x86},       {{0, 25}, 195},          {{0, 37}, 207},         {{0, 111}, 220},
      {{0, 71}, 241},           {{0, 104}, 104},
  };
  for (const auto& c : cases)
    EXPECT_EQ(KeyCodeOf(c.key), c.code) << int(c.key.ch) << "," << int(c.key.scan);
}

}  // namespace
