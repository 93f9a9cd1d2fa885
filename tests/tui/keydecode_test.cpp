#include "tui/keydecode.h"

#include <gtest/gtest.h>

#include <string>

namespace {

struct SequenceCase {
  const char* bytes;
  KeyTerminal terminal;
  KeyPair key;
};

constexpr KeyTerminal X = KeyTerminal::kXterm, R = KeyTerminal::kRxvt, L = KeyTerminal::kLinux;

// One complete sequence each: the whole of it is one key.
const SequenceCase kSequences[] = {
    // Function keys.
    {"\x1bOP", X, {0, 59}},     {"\x1bOQ", X, {0, 60}},     {"\x1bOR", X, {0, 61}},     {"\x1bOS", X, {0, 62}},
    {"\x1b[11~", R, {0, 59}},   {"\x1b[14~", R, {0, 62}},   {"\x1b[15~", X, {0, 63}},   {"\x1b[17~", X, {0, 64}},
    {"\x1b[18~", X, {0, 65}},   {"\x1b[19~", X, {0, 66}},   {"\x1b[20~", X, {0, 67}},   {"\x1b[21~", X, {0, 68}},
    {"\x1b[21~", R, {0, 68}},   {"\x1b[21~", L, {0, 68}},   {"\x1b[23~", X, {0, 133}},  {"\x1b[24~", X, {0, 134}},
    {"\x1b[[A", L, {0, 59}},    {"\x1b[[E", L, {0, 63}},
    // Editing keys: the grey keys of a PC keyboard, character 224.
    {"\x1b[A", X, {224, 72}},   {"\x1b[B", X, {224, 80}},   {"\x1b[C", X, {224, 77}},   {"\x1b[D", X, {224, 75}},
    {"\x1bOA", X, {224, 72}},   {"\x1bOD", X, {224, 75}},   {"\x1b[H", X, {224, 71}},   {"\x1b[F", X, {224, 79}},
    {"\x1bOH", X, {224, 71}},   {"\x1bOF", X, {224, 79}},   {"\x1b[1~", L, {224, 71}},  {"\x1b[4~", L, {224, 79}},
    {"\x1b[7~", R, {224, 71}},  {"\x1b[8~", R, {224, 79}},  {"\x1b[2~", X, {224, 82}},  {"\x1b[3~", X, {224, 83}},
    {"\x1b[5~", X, {224, 73}},  {"\x1b[6~", X, {224, 81}},  {"\x1b[Z", X, {0, 15}},
    // Modifiers: xterm's second number, rxvt's final byte.
    {"\x1b[1;2P", X, {0, 84}},  {"\x1b[1;5P", X, {0, 94}},  {"\x1b[1;3P", X, {0, 104}}, {"\x1b[21;2~", X, {0, 93}},
    {"\x1b[21;5~", X, {0, 103}}, {"\x1b[21;3~", X, {0, 113}}, {"\x1b[23;2~", X, {0, 135}}, {"\x1b[24;5~", X, {0, 138}},
    {"\x1b[24;3~", X, {0, 140}}, {"\x1b[1;5A", X, {224, 141}}, {"\x1b[1;5B", X, {224, 145}}, {"\x1b[1;5D", X, {224, 115}},
    {"\x1b[1;5C", X, {224, 116}}, {"\x1b[1;5H", X, {224, 119}}, {"\x1b[1;5F", X, {224, 117}}, {"\x1b[5;5~", X, {224, 132}},
    {"\x1b[6;5~", X, {224, 118}}, {"\x1b[3;5~", X, {224, 147}}, {"\x1b[1;3A", X, {0, 152}}, {"\x1b[1;2A", X, {224, 72}},
    {"\x1b[13^", R, {0, 96}},   {"\x1b[2^", R, {224, 146}}, {"\x1b[3$", R, {224, 83}},  {"\x1b[23$", R, {0, 135}},
    {"\x1bOa", R, {224, 141}},  {"\x1bOd", R, {224, 115}},  {"\x1b[a", R, {224, 72}},
    // Shifted function keys numbered 25..34: F3.. on rxvt, F1.. on the console.
    {"\x1b[25~", R, {0, 86}},   {"\x1b[34~", R, {0, 93}},   {"\x1b[25~", L, {0, 84}},   {"\x1b[34~", L, {0, 91}},
    // Alt with a key.
    {"\x1bx", X, {0, 45}},      {"\x1b" "e", X, {0, 18}},   {"\x1bN", X, {0, 49}},      {"\x1b" "1", X, {0, 120}},
    {"\x1b" "0", X, {0, 129}},
    // rxvt's Esc before a sequence is Alt with that key.
    {"\x1b\x1b[11~", R, {0, 104}}, {"\x1b\x1b[21~", R, {0, 113}}, {"\x1b\x1b[24~", R, {0, 140}},
    {"\x1b\x1bOA", R, {0, 152}},   {"\x1b\x1b[3~", R, {0, 163}},
};

TEST(DecodeKey, CompleteSequencesGiveOneKey) {
  for (const SequenceCase& c : kSequences) {
    const std::string bytes = c.bytes;
    const KeyDecodeResult r = DecodeKey(bytes, 0, c.terminal);
    EXPECT_EQ(r.status, KeyDecodeStatus::kKey) << testing::PrintToString(bytes);
    EXPECT_EQ(r.consumed, static_cast<int>(bytes.size())) << testing::PrintToString(bytes);
    EXPECT_EQ(r.key, c.key) << testing::PrintToString(bytes) << " gave " << int(r.key.ch) << "," << int(r.key.scan);
  }
}

TEST(DecodeKey, SequencesCutShortWaitThenFallBack) {
  const std::pair<const char*, KeyTerminal> prefixes[] = {
      {"\x1b", X},   {"\x1b[", X}, {"\x1b[2", X},   {"\x1b[21", X}, {"\x1b[1;", X},
      {"\x1b[1;5", X}, {"\x1bO", X}, {"\x1b[[", X}, {"\x1b\x1b", R}, {"\x1b\x1b[1", R},
  };
  for (auto [prefix, terminal] : prefixes) {
    SCOPED_TRACE(testing::PrintToString(std::string(prefix)));
    EXPECT_EQ(DecodeKey(prefix, 0, terminal).status, KeyDecodeStatus::kIncomplete);
    EXPECT_EQ(DecodeKey(prefix, kKeyEscapeWaitMs, terminal).status, KeyDecodeStatus::kKey);
  }
  EXPECT_EQ(DecodeKey("\x1b", kKeyEscapeWaitMs).key, (KeyPair{27, 1}));
  EXPECT_EQ(DecodeKey("\x1b\x1b", kKeyEscapeWaitMs, R).key, (KeyPair{27, 1}));
  // Alt+O (the Polish ó) is ESC O with nothing behind it.
  EXPECT_EQ(DecodeKey("\x1bO", kKeyEscapeWaitMs).key, (KeyPair{0, 24}));
}

TEST(DecodeKey, KeysFollowingEachOtherAreTakenOneAtATime) {
  const std::string input = "\x1b[21~a\x1b\x1b[A";
  std::string_view rest = input;
  std::vector<KeyPair> keys;
  while (!rest.empty()) {
    const KeyDecodeResult r = DecodeKey(rest, 0);
    ASSERT_EQ(r.status, KeyDecodeStatus::kKey);
    keys.push_back(r.key);
    rest.remove_prefix(r.consumed);
  }
  const std::vector<KeyPair> expected = {{0, 68}, {'a', 30}, {27, 1}, {224, 72}};
  EXPECT_EQ(keys, expected);
  // On rxvt an Esc before a plain key is the Esc key first; Alt with the key comes from the rest.
  const KeyDecodeResult esc = DecodeKey("\x1b\x1bx", 0, R);
  EXPECT_EQ(esc.consumed, 1);
  EXPECT_EQ(esc.key, (KeyPair{27, 1}));
}

TEST(DecodeKey, UnknownSequencesAreDroppedWhole) {
  const std::pair<const char*, KeyTerminal> unknown[] = {
      {"\x1b[99~", X}, {"\x1b[200~", X}, {"\x1b[1;5X", X}, {"\x1bOz", X}, {"\x1b[[Z", X}, {"\x1b[?1;2c", X},
      {"\x1b\x1b[99~", R},
  };
  for (auto [bytes, terminal] : unknown) {
    SCOPED_TRACE(testing::PrintToString(std::string(bytes)));
    const KeyDecodeResult r = DecodeKey(bytes, 0, terminal);
    EXPECT_EQ(r.status, KeyDecodeStatus::kIgnored);
    EXPECT_EQ(r.consumed, static_cast<int>(std::string(bytes).size()));
  }
  // Endless parameters are given up on without waiting for ever.
  const std::string flood = "\x1b[" + std::string(40, '1');
  EXPECT_EQ(DecodeKey(flood, 0).status, KeyDecodeStatus::kIgnored);
  EXPECT_EQ(DecodeKey("", 0).status, KeyDecodeStatus::kEmpty);
}

TEST(KeyOfByte, PcPairsOfSingleBytes) {
  struct Case {
    uint8_t byte;
    KeyPair key;
  };
  const Case cases[] = {
      {'a', {'a', 30}},  {'A', {'A', 30}},   {'1', {'1', 2}},    {'!', {'!', 2}},   {'0', {'0', 11}},
      {' ', {' ', 57}},  {13, {13, 28}},     {9, {9, 15}},       {127, {8, 14}},    {8, {8, 14}},
      {5, {5, 18}},      {22, {22, 47}},     {2, {2, 48}},       {12, {12, 38}},    {3, {3, 46}},
      {28, {28, 43}},    {'`', {'`', 41}},   {'\\', {'\\', 43}}, {'/', {'/', 53}},  {'~', {'~', 41}},
      // Bytes from 128 carry the scan of their low 7 bits: UTF-8 lead bytes
      // 0xC4, 0xC3 and 0xC5 read as scans 32, 46 and 18.
      {0xC4, {0xC4, 32}}, {0xC3, {0xC3, 46}}, {0xC5, {0xC5, 18}},
  };
  for (const Case& c : cases) EXPECT_EQ(KeyOfByte(c.byte), c.key) << int(c.byte);
}

}  // namespace
