// Terminal input to PC key pairs: a pure function of the bytes that came from
// the terminal and of the time since the last of them. The pairs are those of
// a PC keyboard: (character, scan code); extended keys have character 0
// (function keys, Alt combinations) or 224 (the grey editing keys). F10 is
// (0, 68). Covered: xterm, rxvt and the Linux console, with the modifiers
// they report on function and editing keys.
#pragma once

#include <cstdint>
#include <string_view>

struct KeyPair {
  uint8_t ch = 0;
  uint8_t scan = 0;
  friend bool operator==(KeyPair, KeyPair) = default;
};

// The terminals whose sequences differ: Shift with F1..F8 ("ESC [25~" ...)
// means F3.. on rxvt and xterm, F1.. on the Linux console.
enum class KeyTerminal : uint8_t { kXterm, kRxvt, kLinux };

enum class KeyDecodeStatus : uint8_t {
  kEmpty,       // no bytes
  kKey,         // key holds a key made of the first consumed bytes
  kIncomplete,  // the bytes begin a sequence that may go on: wait for more
  kIgnored,     // the first consumed bytes are a sequence of no known key
};

struct KeyDecodeResult {
  KeyDecodeStatus status = KeyDecodeStatus::kEmpty;
  int consumed = 0;
  KeyPair key;
};

// After this many milliseconds without a further byte, an ESC that starts no
// complete sequence is the Esc key (or Alt with the byte behind it).
inline constexpr int kKeyEscapeWaitMs = 40;

// Decodes the first key of bytes. idleMs is the time since the last byte
// came; below kKeyEscapeWaitMs an unfinished escape sequence is kIncomplete.
KeyDecodeResult DecodeKey(std::string_view bytes, int idleMs, KeyTerminal terminal = KeyTerminal::kXterm);

// The pair of a single byte typed without Alt: ASCII by the US key layout,
// control bytes as Ctrl+letter, bytes from 128 with the scan of their low 7 bits.
KeyPair KeyOfByte(uint8_t byte);
