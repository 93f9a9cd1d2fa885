#include "tui/keydecode.h"

#include <array>

namespace {

// Scan codes of the 128 ASCII characters on a US PC keyboard (0 where none).
constexpr std::array<uint8_t, 128> MakeScanTable() {
  std::array<uint8_t, 128> t{};
  constexpr std::string_view kRows[] = {"1234567890-=", "qwertyuiop[]", "asdfghjkl;'`", "\\zxcvbnm,./"};
  constexpr std::string_view kShifted[] = {"!@#$%^&*()_+", "QWERTYUIOP{}", "ASDFGHJKL:\"~", "|ZXCVBNM<>?"};
  constexpr uint8_t kRowStart[] = {2, 16, 30, 43};
  for (int r = 0; r < 4; ++r)
    for (std::size_t i = 0; i < kRows[r].size(); ++i) {
      t[static_cast<uint8_t>(kRows[r][i])] = static_cast<uint8_t>(kRowStart[r] + i);
      t[static_cast<uint8_t>(kShifted[r][i])] = static_cast<uint8_t>(kRowStart[r] + i);
    }
  t[' '] = 57;
  t[27] = 1;
  t[8] = 14;
  t[127] = 14;
  t[9] = 15;
  t[13] = 28;
  t[10] = 28;
  for (int c = 1; c <= 26; ++c)
    if (c != 8 && c != 9 && c != 10 && c != 13) t[c] = t['a' + c - 1];
  t[0] = 3;    // Ctrl+@ is Ctrl+2
  t[28] = 43;  // Ctrl+backslash
  t[29] = 27;  // Ctrl+]
  t[30] = 7;   // Ctrl+^
  t[31] = 12;  // Ctrl+_
  return t;
}
constexpr std::array<uint8_t, 128> kScan = MakeScanTable();

// Keys that escape sequences name, before modifiers.
enum class Named : uint8_t {
  kNone, kF1, kF2, kF3, kF4, kF5, kF6, kF7, kF8, kF9, kF10, kF11, kF12,
  kHome, kUp, kPgUp, kLeft, kRight, kEnd, kDown, kPgDn, kIns, kDel, kBackTab,
};

// Modifier bits, as xterm counts them in its parameter minus 1.
constexpr int kShift = 1, kAlt = 2, kCtrl = 4;

struct GreyKey {
  Named key;
  uint8_t plain, ctrl, alt;  // plain and Ctrl with character 224, Alt with 0
};
constexpr GreyKey kGreyKeys[] = {
    {Named::kHome, 71, 119, 151}, {Named::kUp, 72, 141, 152},    {Named::kPgUp, 73, 132, 153},
    {Named::kLeft, 75, 115, 155}, {Named::kRight, 77, 116, 157}, {Named::kEnd, 79, 117, 159},
    {Named::kDown, 80, 145, 160}, {Named::kPgDn, 81, 118, 161},  {Named::kIns, 82, 146, 162},
    {Named::kDel, 83, 147, 163},
};

// Scans of F1..F12: plain, with Shift, Ctrl, Alt.
struct FunctionScans {
  uint8_t plain, shift, ctrl, alt;
};
constexpr FunctionScans FunctionKeyScans(int n) {
  if (n <= 10) return {static_cast<uint8_t>(58 + n), static_cast<uint8_t>(83 + n), static_cast<uint8_t>(93 + n),
                       static_cast<uint8_t>(103 + n)};
  return {static_cast<uint8_t>(122 + n), static_cast<uint8_t>(124 + n), static_cast<uint8_t>(126 + n),
          static_cast<uint8_t>(128 + n)};
}

KeyPair PairOf(Named key, int mods) {
  if (key == Named::kBackTab) return {0, 15};
  if (key >= Named::kF1 && key <= Named::kF12) {
    const FunctionScans s = FunctionKeyScans(static_cast<int>(key) - static_cast<int>(Named::kF1) + 1);
    if (mods & kCtrl) return {0, s.ctrl};
    if (mods & kAlt) return {0, s.alt};
    if (mods & kShift) return {0, s.shift};
    return {0, s.plain};
  }
  for (const GreyKey& g : kGreyKeys)
    if (g.key == key) {
      if (mods & kCtrl) return {224, g.ctrl};
      if (mods & kAlt) return {0, g.alt};
      return {224, g.plain};
    }
  return {};
}

// "ESC [ n ~": the key of the number n.
Named KeyOfNumber(int n, KeyTerminal terminal) {
  switch (n) {
    case 1: case 7: return Named::kHome;
    case 2: return Named::kIns;
    case 3: return Named::kDel;
    case 4: case 8: return Named::kEnd;
    case 5: return Named::kPgUp;
    case 6: return Named::kPgDn;
    case 11: case 12: case 13: case 14: case 15:
      return static_cast<Named>(static_cast<int>(Named::kF1) + n - 11);
    case 17: case 18: case 19: case 20: case 21:
      return static_cast<Named>(static_cast<int>(Named::kF6) + n - 17);
    case 23: return Named::kF11;
    case 24: return Named::kF12;
    default: break;
  }
  // 25..34 are the shifted function keys; the terminals count them differently.
  constexpr int kShiftedNumbers[] = {25, 26, 28, 29, 31, 32, 33, 34};
  for (int i = 0; i < 8; ++i)
    if (kShiftedNumbers[i] == n) {
      const int first = terminal == KeyTerminal::kLinux ? 1 : 3;
      return static_cast<Named>(static_cast<int>(Named::kF1) + first - 1 + i);
    }
  return Named::kNone;
}

// The number ranges 25..34 carry Shift by themselves.
int ImpliedModifiers(int n) { return n >= 25 && n <= 34 ? kShift : 0; }

Named KeyOfFinal(char final) {
  switch (final) {
    case 'A': case 'a': return Named::kUp;
    case 'B': case 'b': return Named::kDown;
    case 'C': case 'c': return Named::kRight;
    case 'D': case 'd': return Named::kLeft;
    case 'H': return Named::kHome;
    case 'F': return Named::kEnd;
    case 'P': return Named::kF1;
    case 'Q': return Named::kF2;
    case 'R': return Named::kF3;
    case 'S': return Named::kF4;
    case 'Z': return Named::kBackTab;
    default: return Named::kNone;
  }
}

KeyDecodeResult Key(int consumed, KeyPair key) { return {KeyDecodeStatus::kKey, consumed, key}; }
KeyDecodeResult Ignored(int consumed) { return {KeyDecodeStatus::kIgnored, consumed, {}}; }
KeyDecodeResult Incomplete() { return {KeyDecodeStatus::kIncomplete, 0, {}}; }

// What a sequence of known shape names, with its modifiers.
KeyDecodeResult FinishSequence(Named key, int mods, int consumed) {
  if (key == Named::kNone) return Ignored(consumed);
  return Key(consumed, PairOf(key, mods));
}

// A control sequence longer than this is given up on.
constexpr int kMaxSequence = 24;

// Parameters of a control sequence: up to two numbers separated by ';'.
struct Params {
  int first = -1, second = -1;
};

// The key of a control sequence ended by final, with its parameters.
KeyDecodeResult FinishCsi(char final, const Params& p, int consumed, KeyTerminal terminal) {
  // xterm says modifiers in a second number; rxvt in the final byte.
  int mods = p.second > 1 ? p.second - 1 : 0;
  if (final == '~' || final == '^' || final == '$' || final == '@') {
    if (final == '^') mods |= kCtrl;
    if (final == '$') mods |= kShift;
    if (final == '@') mods |= kCtrl | kShift;
    return FinishSequence(KeyOfNumber(p.first, terminal), mods | ImpliedModifiers(p.first), consumed);
  }
  // Lower-case a..d without numbers are rxvt's Shift+arrows, which a PC
  // reports as arrows.
  const bool lower = final >= 'a' && final <= 'z';
  return FinishSequence(lower && p.first >= 0 ? Named::kNone : KeyOfFinal(final), mods, consumed);
}

// "ESC [" ... : bytes from index 2 on. Incomplete until a final byte comes.
KeyDecodeResult DecodeCsi(std::string_view b, KeyTerminal terminal) {
  if (b.size() < 3) return Incomplete();
  if (b[2] == '[') {  // Linux console F1..F5: "ESC [ [ A" .. "ESC [ [ E"
    if (b.size() < 4) return Incomplete();
    const char c = b[3];
    if (c >= 'A' && c <= 'E') return Key(4, PairOf(static_cast<Named>(static_cast<int>(Named::kF1) + c - 'A'), 0));
    return Ignored(4);
  }
  Params p;
  int* current = &p.first;
  bool privateMarker = false;  // '<' .. '?': answers and reports, never keys
  for (std::size_t i = 2; i < b.size() && i < static_cast<std::size_t>(kMaxSequence); ++i) {
    const char c = b[i];
    const int consumed = static_cast<int>(i) + 1;
    if (c >= '0' && c <= '9') {
      *current = (*current < 0 ? 0 : *current * 10) + (c - '0');
      if (*current > 999) return Ignored(consumed);
    } else if (c == ';') {
      if (current == &p.second) return Ignored(consumed);
      current = &p.second;
    } else if (c >= '<' && c <= '?') {
      privateMarker = true;
    } else if ((c >= 0x40 && c <= 0x7E) || c == '$') {
      return privateMarker ? Ignored(consumed) : FinishCsi(c, p, consumed, terminal);
    } else if (c < 0x20 || c > 0x3F) {
      return Ignored(consumed);
    }
  }
  return b.size() >= static_cast<std::size_t>(kMaxSequence) ? Ignored(kMaxSequence) : Incomplete();
}

// "ESC O" ...: an optional modifier number, then a final letter.
KeyDecodeResult DecodeSs3(std::string_view b) {
  int mods = 0;
  for (std::size_t i = 2; i < b.size() && i < 6; ++i) {
    const char c = b[i];
    const int consumed = static_cast<int>(i) + 1;
    if (c >= '0' && c <= '9') {
      mods = c - '0' > 1 ? c - '0' - 1 : 0;
      continue;
    }
    if (c >= 'a' && c <= 'd') return FinishSequence(KeyOfFinal(c), mods | kCtrl, consumed);  // rxvt Ctrl+arrows
    return FinishSequence(KeyOfFinal(c), mods, consumed);
  }
  return b.size() >= 6 ? Ignored(6) : Incomplete();
}

// Alt with a character: (0, scan); Alt with a digit has scans of its own.
KeyPair AltPair(uint8_t c) {
  if (c >= '1' && c <= '9') return {0, static_cast<uint8_t>(120 + c - '1')};
  if (c == '0') return {0, 129};
  return {0, kScan[c & 0x7F]};
}

// The Alt form of an extended key; other keys as they are.
KeyPair WithAlt(KeyPair key) {
  if (key.ch == 0 && key.scan >= 59 && key.scan <= 68) return {0, static_cast<uint8_t>(key.scan + 45)};
  if (key.ch == 0 && (key.scan == 133 || key.scan == 134)) return {0, static_cast<uint8_t>(key.scan + 6)};
  if (key.ch == 224)
    for (const GreyKey& g : kGreyKeys)
      if (g.plain == key.scan) return {0, g.alt};
  return key;
}

// rxvt says Alt on function and editing keys with an ESC before their
// sequence: "ESC ESC [ 11 ~" is Alt+F1 (xterm has modifier numbers for
// that, so there the same bytes are Esc and F1). Two ESCs with nothing known behind
// them are the Esc key, once per ESC.
KeyDecodeResult DecodeEscapedSequence(std::string_view bytes, int idleMs, KeyTerminal terminal) {
  if (bytes.size() == 2) return idleMs >= kKeyEscapeWaitMs ? Key(1, {27, 1}) : Incomplete();
  if (bytes[2] != '[' && bytes[2] != 'O') return Key(1, {27, 1});
  KeyDecodeResult inner = DecodeKey(bytes.substr(1), idleMs, terminal);
  if (inner.status == KeyDecodeStatus::kIncomplete) return inner;
  if (inner.status == KeyDecodeStatus::kIgnored) return Ignored(inner.consumed + 1);
  return Key(inner.consumed + 1, WithAlt(inner.key));
}

}  // namespace

KeyPair KeyOfByte(uint8_t byte) {
  const uint8_t ch = byte == 127 ? 8 : byte;
  return {ch, kScan[byte & 0x7F]};
}

KeyDecodeResult DecodeKey(std::string_view bytes, int idleMs, KeyTerminal terminal) {
  if (bytes.empty()) return {};
  const auto first = static_cast<uint8_t>(bytes[0]);
  if (first != 27) return Key(1, KeyOfByte(first));
  const bool waited = idleMs >= kKeyEscapeWaitMs;
  if (bytes.size() == 1) return waited ? Key(1, {27, 1}) : Incomplete();
  const auto second = static_cast<uint8_t>(bytes[1]);
  if (second == 27)
    return terminal == KeyTerminal::kRxvt ? DecodeEscapedSequence(bytes, idleMs, terminal) : Key(1, {27, 1});
  KeyDecodeResult r;
  if (second == '[') r = DecodeCsi(bytes, terminal);
  else if (second == 'O') r = DecodeSs3(bytes);
  else return Key(2, AltPair(second));
  // A sequence cut short for good was Alt with the byte after ESC.
  if (r.status == KeyDecodeStatus::kIncomplete && waited) return Key(2, AltPair(second));
  return r;
}
