// Key-cap and small-capital cells of the system's screen font, and their
// plain forms for terminals without that font.
#include <array>

#include "base/codepage.h"
#include "tui/termout_detail.h"

namespace {

using Table = std::array<unsigned char, 256>;

constexpr void Letters(Table& t, unsigned char first, const char* letters) {
  for (int i = 0; letters[i]; ++i) t[first + i] = static_cast<unsigned char>(letters[i]);
}

// Plain form of each cell; 0 where a byte is no cell. Frame pieces become the
// Mazovia frame byte of the same shape, which the code-page step then reduces.
constexpr Table BuildPlain() {
  Table t{};
  Letters(t, 0x94, "0");
  Letters(t, 0x85, "1");
  Letters(t, 0x87, "234567");
  Letters(t, 0x8E, "8");
  Letters(t, 0x93, "9");
  Letters(t, 0x96, "C");
  Letters(t, 0x99, "NT");
  Letters(t, 0xCB, "F");
  Letters(t, 0xD0, "1Es(");
  Letters(t, 0xD5, "<+F<");
  Letters(t, 0xEA, "*1");
  Letters(t, 0xEF, "*");
  Letters(t, 0xF4, "AB-");
  Letters(t, 0xFF, ")");
  Letters(t, 0x60, "\"");
  Letters(t, 0x7E, ")");
  Letters(t, 0x80, "$>");
  Letters(t, 0xCE, "  ");
  Letters(t, 0xC6, "c");
  Letters(t, 0x9F, "[");
  Letters(t, 0xA9, "]");
  t[0x83] = t[0xA8] = 0xD9;             // lower-right corner
  t[0x84] = t[0x9D] = t[0xC1] = 0xB3;   // vertical bar
  t[0x97] = t[0xC5] = 0xBF;             // upper-right corner
  t[0xC2] = t[0xC7] = 0xDA;             // upper-left corner
  t[0xC3] = 0xC4;                       // horizontal bar
  t[0x0D] = 0xC0;                       // lower-left corner
  // Small capitals.
  t[0x00] = '_';
  Letters(t, 0x01, "YABCDE");
  Letters(t, 0x0A, "FGH");
  Letters(t, 0x0E, "IJKLMNOPRS");
  Letters(t, 0x1C, "TUWZ");
  return t;
}

constexpr Table kPlain = BuildPlain();

// Small-capital cell of each capital letter; 0 where the font has none.
constexpr Table BuildSmallCaps() {
  Table t{};
  for (int b = 1; b < 32; ++b)
    if (b != 0x0D && kPlain[b] >= 'A' && kPlain[b] <= 'Z') t[kPlain[b]] = static_cast<unsigned char>(b);
  return t;
}

constexpr Table kSmallCaps = BuildSmallCaps();

constexpr unsigned char kDigitCaps[26] = {0x94, 0x85, 0x87, 0x88, 0x89, 0x8A, 0x8B, 0x8C, 0x8E,
                                          0x93, 0xF4, 0xF5, 0x96, 0x05, 0x06, 0x0A, 0x0B, 0x0C,
                                          0x0E, 0x0F, 0x10, 0x11, 0x12, 0x13, 0x14, 0x15};

}  // namespace

namespace tui_detail {

unsigned char KeyCapPlain(unsigned char byte) { return kPlain[byte]; }

}  // namespace tui_detail

unsigned char DigitCap(int index) {
  return (index >= 0 && index <= 25) ? kDigitCaps[index] : 7;
}

ShortText TitleText(const ShortText& text) {
  ShortText up = MazUpCaseText(text);
  if (!tui_detail::g_term.specialFont) return MazToAscii(up);
  for (int i = 1; i <= up.Length(); ++i) {
    unsigned char c = up.At(i);
    if (c == ' ') up[i] = 0;
    else if (kSmallCaps[c]) up[i] = static_cast<char>(kSmallCaps[c]);
  }
  return up;
}
