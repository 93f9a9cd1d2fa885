// System texts are written in UTF-8 source and become Mazovia bytes at compile
// time: "Błąd zapisu"_mz. The 18 Polish letters take their Mazovia bytes; any
// other non-ASCII glyph takes the byte that has that glyph in code page 437,
// which shares those positions with Mazovia ("╤╥û" is 0xD1 0xD2 0x96).
#pragma once

#include <cstddef>
#include <string_view>

#include "base/shorttext.h"

namespace mazovia_detail {

// Unicode code point of each code page 437 glyph from 0x80 to 0xFF.
inline constexpr char32_t kCp437High[128] = {
    0x00C7, 0x00FC, 0x00E9, 0x00E2, 0x00E4, 0x00E0, 0x00E5, 0x00E7,  // 80
    0x00EA, 0x00EB, 0x00E8, 0x00EF, 0x00EE, 0x00EC, 0x00C4, 0x00C5,  // 88
    0x00C9, 0x00E6, 0x00C6, 0x00F4, 0x00F6, 0x00F2, 0x00FB, 0x00F9,  // 90
    0x00FF, 0x00D6, 0x00DC, 0x00A2, 0x00A3, 0x00A5, 0x20A7, 0x0192,  // 98
    0x00E1, 0x00ED, 0x00F3, 0x00FA, 0x00F1, 0x00D1, 0x00AA, 0x00BA,  // A0
    0x00BF, 0x2310, 0x00AC, 0x00BD, 0x00BC, 0x00A1, 0x00AB, 0x00BB,  // A8
    0x2591, 0x2592, 0x2593, 0x2502, 0x2524, 0x2561, 0x2562, 0x2556,  // B0
    0x2555, 0x2563, 0x2551, 0x2557, 0x255D, 0x255C, 0x255B, 0x2510,  // B8
    0x2514, 0x2534, 0x252C, 0x251C, 0x2500, 0x253C, 0x255E, 0x255F,  // C0
    0x255A, 0x2554, 0x2569, 0x2566, 0x2560, 0x2550, 0x256C, 0x2567,  // C8
    0x2568, 0x2564, 0x2565, 0x2559, 0x2558, 0x2552, 0x2553, 0x256B,  // D0
    0x256A, 0x2518, 0x250C, 0x2588, 0x2584, 0x258C, 0x2590, 0x2580,  // D8
    0x03B1, 0x00DF, 0x0393, 0x03C0, 0x03A3, 0x03C3, 0x00B5, 0x03C4,  // E0
    0x03A6, 0x0398, 0x03A9, 0x03B4, 0x221E, 0x03C6, 0x03B5, 0x2229,  // E8
    0x2261, 0x00B1, 0x2265, 0x2264, 0x2320, 0x2321, 0x00F7, 0x2248,  // F0
    0x00B0, 0x2219, 0x00B7, 0x221A, 0x207F, 0x00B2, 0x25A0, 0x00A0,  // F8
};

// Code page 437 glyphs of the control range, used for arrows and marks on screen.
inline constexpr char32_t kCp437Low[32] = {
    0x0000, 0x263A, 0x263B, 0x2665, 0x2666, 0x2663, 0x2660, 0x2022,
    0x25D8, 0x25CB, 0x25D9, 0x2642, 0x2640, 0x266A, 0x266B, 0x263C,
    0x25BA, 0x25C4, 0x2195, 0x203C, 0x00B6, 0x00A7, 0x25AC, 0x21A8,
    0x2191, 0x2193, 0x2192, 0x2190, 0x221F, 0x2194, 0x25B2, 0x25BC,
};

struct PolishLetter {
  char32_t code;
  unsigned char mazovia;
};

inline constexpr PolishLetter kPolishLetters[18] = {
    {0x0105, 0x86}, {0x0107, 0x8D}, {0x0119, 0x91}, {0x0142, 0x92}, {0x0144, 0xA4},
    {0x00F3, 0xA2}, {0x015B, 0x9E}, {0x017A, 0xA6}, {0x017C, 0xA7}, {0x0104, 0x8F},
    {0x0106, 0x95}, {0x0118, 0x90}, {0x0141, 0x9C}, {0x0143, 0xA5}, {0x00D3, 0xA3},
    {0x015A, 0x98}, {0x0179, 0xA0}, {0x017B, 0xA1},
};

// Mazovia byte for a code point; a glyph with no byte stops the compilation.
consteval unsigned char ByteForCodePoint(char32_t cp) {
  if (cp < 0x80) return static_cast<unsigned char>(cp);
  for (const auto& l : kPolishLetters)
    if (l.code == cp) return l.mazovia;
  for (int i = 0; i < 128; ++i)
    if (kCp437High[i] == cp) return static_cast<unsigned char>(0x80 + i);
  for (int i = 1; i < 32; ++i)
    if (kCp437Low[i] == cp) return static_cast<unsigned char>(i);
  throw "glyph without a Mazovia byte";
}

template <std::size_t N>
struct Utf8Source {
  char bytes[N];
  consteval Utf8Source(const char (&s)[N]) {
    for (std::size_t i = 0; i < N; ++i) bytes[i] = s[i];
  }
};

// Decodes UTF-8 (without the terminating zero) into Mazovia bytes.
// Calls put(byte) for each Mazovia byte of the UTF-8 source text.
template <std::size_t N, typename Put>
consteval void ForEachMazoviaByte(const Utf8Source<N>& src, Put put) {
  std::size_t i = 0;
  const std::size_t n = N - 1;
  while (i < n) {
    auto b = static_cast<unsigned char>(src.bytes[i]);
    char32_t cp = 0;
    int extra = 0;
    if (b < 0x80) { cp = b; }
    else if ((b & 0xE0) == 0xC0) { cp = b & 0x1F; extra = 1; }
    else if ((b & 0xF0) == 0xE0) { cp = b & 0x0F; extra = 2; }
    else if ((b & 0xF8) == 0xF0) { cp = b & 0x07; extra = 3; }
    else throw "bad UTF-8 in a system text";
    if (extra > 0 && i + extra >= n) throw "truncated UTF-8";
    for (int k = 1; k <= extra; ++k) {
      auto c = static_cast<unsigned char>(src.bytes[i + k]);
      if ((c & 0xC0) != 0x80) throw "bad UTF-8 continuation";
      cp = (cp << 6) | (c & 0x3F);
    }
    i += 1 + extra;
    put(static_cast<char>(ByteForCodePoint(cp)));
  }
}

template <std::size_t N>
consteval ShortText ToMazovia(const Utf8Source<N>& src) {
  ShortText out;
  ForEachMazoviaByte(src, [&out](char c) {
    if (out.Length() >= 255) throw "system text longer than 255 bytes";
    out.Append(c);
  });
  return out;
}

// The Mazovia bytes of a text of any length (at most N - 1 bytes).
template <std::size_t N>
struct LongMazovia {
  char bytes[N] = {};
  std::size_t length = 0;
};

template <std::size_t N>
consteval LongMazovia<N> ToLongMazovia(const Utf8Source<N>& src) {
  LongMazovia<N> out;
  ForEachMazoviaByte(src, [&out](char c) { out.bytes[out.length++] = c; });
  return out;
}

template <Utf8Source S>
inline constexpr auto kLongMazovia = ToLongMazovia(S);

}  // namespace mazovia_detail

// A system text in Mazovia bytes, made at compile time.
template <mazovia_detail::Utf8Source S>
consteval ShortText operator""_mz() {
  return mazovia_detail::ToMazovia(S);
}

// A system text longer than a ShortText holds (a description written to a
// file, say), in Mazovia bytes made at compile time and kept in static storage.
template <mazovia_detail::Utf8Source S>
consteval std::string_view operator""_mzl() {
  return std::string_view(mazovia_detail::kLongMazovia<S>.bytes, mazovia_detail::kLongMazovia<S>.length);
}
