// The output path: logical bytes and attributes to what the terminal receives.
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>

#include "base/codepage.h"
#include "tui/termout_detail.h"

namespace tui_detail {

Output g_out;
TermSettings g_term;

void RebuildMaps();
void FlushBuffer();
// The maps hold the unknown kind's conversions until TermInit runs.
const bool g_mapsReady = [] {
  g_term.kind = 0;
  g_term.outCodePage = 4;
  RebuildMaps();
  // What is still buffered at the end reaches the terminal: the last restore of a box.
  std::atexit(FlushBuffer);
  return true;
}();

namespace {

// ISO 8859-2 from 0xA0 up as Unicode, for terminals that take UTF-8.
constexpr uint16_t kIso2High[96] = {
    0x00A0, 0x0104, 0x02D8, 0x0141, 0x00A4, 0x013D, 0x015A, 0x00A7, 0x00A8, 0x0160, 0x015E, 0x0164,
    0x0179, 0x00AD, 0x017D, 0x017B, 0x00B0, 0x0105, 0x02DB, 0x0142, 0x00B4, 0x013E, 0x015B, 0x02C7,
    0x00B8, 0x0161, 0x015F, 0x0165, 0x017A, 0x02DD, 0x017E, 0x017C, 0x0154, 0x00C1, 0x00C2, 0x0102,
    0x00C4, 0x0139, 0x0106, 0x00C7, 0x010C, 0x00C9, 0x0118, 0x00CB, 0x011A, 0x00CD, 0x00CE, 0x010E,
    0x0110, 0x0143, 0x0147, 0x00D3, 0x00D4, 0x0150, 0x00D6, 0x00D7, 0x0158, 0x016E, 0x00DA, 0x0170,
    0x00DC, 0x00DD, 0x0162, 0x00DF, 0x0155, 0x00E1, 0x00E2, 0x0103, 0x00E4, 0x013A, 0x0107, 0x00E7,
    0x010D, 0x00E9, 0x0119, 0x00EB, 0x011B, 0x00ED, 0x00EE, 0x010F, 0x0111, 0x0144, 0x0148, 0x00F3,
    0x00F4, 0x0151, 0x00F6, 0x00F7, 0x0159, 0x016F, 0x00FA, 0x0171, 0x00FC, 0x00FD, 0x0163, 0x02D9,
};

// DOS colour numbers to ANSI colour numbers.
constexpr char kAnsiColour[8] = {'0', '4', '2', '6', '1', '5', '3', '7'};

unsigned char ConvertByCodePage(unsigned char b, int codePage) {
  switch (codePage) {
    case 0: return b;
    case 1: return MazToAscii(b);
    case 2: return MazToLatin2(b);
    case 3: return MazToIsoScreen(MazToAscii(b));
    case 4: return MazToIsoScreen(b);
    default: return MazToPlain(b);
  }
}

// Control bytes that carry a meaning on the DOS screen keep a visible trace.
unsigned char SafeControl(unsigned char b) {
  if (b == 13) return '-';
  if (b == 24 || b == 25) return '|';
  if (b == 26) return '>';
  if (b == 27) return '<';
  return b < 32 ? ' ' : b;
}

// A small-capital cell (below 32) with the special font still cannot reach a
// terminal, so it goes out as its letter.
bool IsSmallCapCell(unsigned char b) { return b < 32 && b != 0x0D && KeyCapPlain(b) != 0; }

unsigned char OutputByte(unsigned char b, const TermSettings& t) {
  if (!t.specialFont) {
    if (unsigned char plain = KeyCapPlain(b)) b = plain;
  } else if (IsSmallCapCell(b)) {
    b = b == 0 ? ' ' : KeyCapPlain(b);
  }
  b = ConvertByCodePage(b, t.outCodePage);
  if (t.outputMode == 2 || t.outputMode == 4) b = SafeControl(b);
  return b < 32 ? ' ' : b;
}

void WriteAll(const char* p, std::size_t n) {
  while (n > 0) {
    ssize_t w = ::write(g_out.fd, p, n);
    if (w < 0 && errno == EINTR) continue;
    if (w <= 0) return;  // a terminal that went away: the screen goes on in the shadows
    p += w;
    n -= static_cast<std::size_t>(w);
  }
}

void Reserve(std::size_t n) {
  if (g_out.length + n > sizeof(g_out.buffer)) FlushBuffer();
}

void Put(char c) { g_out.buffer[g_out.length++] = c; }

void PutCursorMove(int row, int col) {
  Put('\x1b');
  Put('[');
  if (row >= 10) Put(static_cast<char>('0' + row / 10));
  Put(static_cast<char>('0' + row % 10));
  if (col > 1) {
    Put(';');
    if (col >= 10) Put(static_cast<char>('0' + col / 10));
    Put(static_cast<char>('0' + col % 10));
  }
  Put('H');
}

// Appends one parameter of a colour sequence, after a ';' unless it is the first.
void PutParam(bool& first, char a, char b = 0) {
  if (!first) Put(';');
  first = false;
  Put(a);
  if (b) Put(b);
}

// Sets the terminal's colour to an adjusted attribute, saying only what
// changed; taking bold or blink away needs a reset and the whole colour.
void PutColour(unsigned char adjusted) {
  int prev = g_out.attr;
  if (prev == adjusted) return;
  bool reset = prev < 0 || (prev & ~adjusted & 0x88) != 0;
  bool first = true;
  Put('\x1b');
  Put('[');
  if (reset) PutParam(first, '0');
  if (reset || ((prev ^ adjusted) & 0x07)) PutParam(first, '3', kAnsiColour[adjusted & 7]);
  if (reset || ((prev ^ adjusted) & 0x70)) PutParam(first, '4', kAnsiColour[(adjusted >> 4) & 7]);
  if ((adjusted & 0x08) && (reset || !(prev & 0x08))) PutParam(first, '1');
  if ((adjusted & 0x80) && (reset || !(prev & 0x80))) PutParam(first, '5');
  Put('m');
  g_out.attr = adjusted;
}

}  // namespace

unsigned char AdjustAttr(unsigned char a, const TermSettings& t) {
  if (t.mono) {
    unsigned char blink = a & 0x80, fg = a & 0x0F, bg = (a >> 4) & 0x07;
    unsigned char m;
    if (bg > (fg & 0x07)) m = 0x70;
    else if ((fg & 0x07) == 1) m = (fg & 0x08) ? 0x09 : 0x01;
    else m = (fg & 0x08) ? 0x0F : 0x07;
    return m | blink;
  }
  if (t.kind != 1 && t.kind != 2 && t.kind != 4) return a;
  if (a == 0x6E) return t.brownToGreen ? 0x2E : 0x4E;
  if (!t.fewColours) return a;
  if (a == 0x7E || a == 0x67) return 0x71;
  if (a == 0x7F || a == 0x64) return 0x74;
  if ((a & 0x0F) == 14) return (a & 0xF0) | 3;
  if ((a & 0x0F) == 15) return (a & 0xF0) | 4;
  return a;
}

void RebuildMaps() {
  for (int b = 0; b < 256; ++b) {
    g_out.charMap[b] = OutputByte(static_cast<unsigned char>(b), g_term);
    g_out.attrMap[b] = AdjustAttr(static_cast<unsigned char>(b), g_term);
  }
  g_out.utf8 = g_term.inCodePage == 1 && (g_term.outCodePage == 3 || g_term.outCodePage == 4);
  g_out.attr = -1;
  g_out.row = 0;
}

void FlushBuffer() {
  if (g_out.length == 0) return;
  g_out.sent += g_out.length;
  if (g_out.sink) g_out.sink->append(g_out.buffer, g_out.length);
  else if (g_out.fd >= 0) WriteAll(g_out.buffer, g_out.length);
  g_out.length = 0;
}

void EmitRaw(const char* bytes, std::size_t count) {
  Reserve(count);
  if (count > sizeof(g_out.buffer)) count = sizeof(g_out.buffer);
  std::memcpy(g_out.buffer + g_out.length, bytes, count);
  g_out.length += count;
}

void EmitCursor(int row, int col) {
  if (g_out.row == row && g_out.col == col) return;
  Reserve(8);
  PutCursorMove(row, col);
  g_out.row = row;
  g_out.col = col;
}

// The Esc key-cap is three cells whose last one alone reads as 'C'; as a
// whole, without the special font, it reads "Esc".
unsigned char PlainEscCapEnd(const unsigned char* chars, int i, int col, unsigned char mapped) {
  if (g_term.specialFont || chars[i] != 0x96 || col + i < 3) return mapped;
  return chars[i - 1] == 0xD2 && chars[i - 2] == 0xD1 ? 'c' : mapped;
}

void EmitRun(int row, int col, const unsigned char* chars, int count, unsigned char attr) {
  if (count <= 0) return;
  Reserve(static_cast<std::size_t>(count) * 2 + 32);
  if (g_out.row != row || g_out.col != col) PutCursorMove(row, col);
  PutColour(g_out.attrMap[attr]);
  const unsigned char* map = g_out.charMap;
  if (g_out.utf8) {
    for (int i = 0; i < count; ++i) {
      unsigned char b = PlainEscCapEnd(chars, i, col, map[chars[i]]);
      if (b < 0x80) {
        Put(static_cast<char>(b));
      } else {
        uint16_t cp = b >= 0xA0 ? kIso2High[b - 0xA0] : 0x20;
        Put(static_cast<char>(0xC0 | (cp >> 6)));
        Put(static_cast<char>(0x80 | (cp & 0x3F)));
      }
    }
  } else {
    for (int i = 0; i < count; ++i) Put(static_cast<char>(PlainEscCapEnd(chars, i, col, map[chars[i]])));
  }
  // After the last column the terminal's cursor waits at the edge in a way
  // that differs by terminal, so its place is stated again before the next write.
  int end = col + count;
  g_out.row = end > 80 ? 0 : row;
  g_out.col = end;
}

}  // namespace tui_detail
