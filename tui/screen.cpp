// The logical screen: shadows, window, cursor and attribute.
#include "tui/screen.h"

#include <cstring>

#include "tui/termout_detail.h"

namespace {

using tui_detail::EmitRun;

constexpr int kRowBytes = kScreenCols + 1;

struct Screen {
  unsigned char chars[kScreenRows][kRowBytes];  // length byte, then 80 bytes
  unsigned char attrs[kScreenRows][kScreenCols];
  WindowRect window;
  int cursorCol = 1, cursorRow = 1;             // screen coordinates
  unsigned char attr = kAttrNormal;
};

Screen g_screen;

// The shadows start blank, so that a screen call before TermInit is harmless.
const bool g_shadowsBlank = [] {
  ScreenResetShadows();
  return true;
}();

bool InWindow(int col, int row) {
  const WindowRect& w = g_screen.window;
  return col >= w.left && col <= w.right && row >= w.top && row <= w.bottom;
}

// Writes count bytes from a screen position into the shadows and to the terminal.
void PutCells(int col, int row, const unsigned char* bytes, int count) {
  std::memcpy(&g_screen.chars[row - 1][col], bytes, static_cast<std::size_t>(count));
  std::memset(&g_screen.attrs[row - 1][col - 1], g_screen.attr, static_cast<std::size_t>(count));
  EmitRun(row, col, &g_screen.chars[row - 1][col], count, g_screen.attr);
}

int ClampLow(int v, int max) { return (v < 1 || v > max) ? 1 : v; }
int ClampHigh(int v, int max) { return (v < 1 || v > max) ? max : v; }

}  // namespace

void ScreenResetShadows() {
  for (auto& row : g_screen.chars) {
    row[0] = kScreenCols;
    std::memset(row + 1, ' ', kScreenCols);
  }
  std::memset(g_screen.attrs, kAttrNormal, sizeof g_screen.attrs);
}

void ScreenSave(ScreenCopyPtr& copy) {
  copy = std::make_unique<ScreenCopy>();
  std::memcpy(copy->bytes, g_screen.chars, sizeof g_screen.chars);
  std::memcpy(copy->bytes + sizeof g_screen.chars, g_screen.attrs, sizeof g_screen.attrs);
}

void ScreenRestore(ScreenCopyPtr& copy) {
  if (!copy) return;
  std::memcpy(g_screen.chars, copy->bytes, sizeof g_screen.chars);
  std::memcpy(g_screen.attrs, copy->bytes + sizeof g_screen.chars, sizeof g_screen.attrs);
  copy.reset();
  for (int row = 1; row <= kScreenRows; ++row) {
    const unsigned char* attrs = g_screen.attrs[row - 1];
    const unsigned char* chars = g_screen.chars[row - 1] + 1;
    int start = 0;
    for (int i = 1; i <= kScreenCols; ++i) {
      if (i == kScreenCols || attrs[i] != attrs[start]) {
        EmitRun(row, start + 1, chars + start, i - start, attrs[start]);
        start = i;
      }
    }
  }
}

void Window(int left, int top, int right, int bottom) {
  WindowRect& w = g_screen.window;
  w.left = ClampLow(left, kScreenCols);
  w.top = ClampLow(top, kScreenRows);
  w.right = ClampHigh(right, kScreenCols);
  w.bottom = ClampHigh(bottom, kScreenRows);
  if (w.right < w.left) w.right = w.left;
  if (w.bottom < w.top) w.bottom = w.top;
  g_screen.cursorCol = w.left;
  g_screen.cursorRow = w.top;
}

void WindowPacked(uint16_t upperLeft, uint16_t lowerRight) {
  Window((upperLeft & 0xFF) + 1, (upperLeft >> 8) + 1, (lowerRight & 0xFF) + 1, (lowerRight >> 8) + 1);
}

WindowRect CurrentWindow() { return g_screen.window; }

uint16_t WindowMinPacked() {
  return static_cast<uint16_t>(((g_screen.window.top - 1) << 8) | (g_screen.window.left - 1));
}

uint16_t WindowMaxPacked() {
  return static_cast<uint16_t>(((g_screen.window.bottom - 1) << 8) | (g_screen.window.right - 1));
}

void GotoXY(int x, int y) {
  const WindowRect& w = g_screen.window;
  if (x < 1 || x > w.right - w.left + 1) x = 1;
  if (y < 1 || y > w.bottom - w.top + 1) y = 1;
  g_screen.cursorCol = w.left + x - 1;
  g_screen.cursorRow = w.top + y - 1;
}

int WhereX() { return g_screen.cursorCol - g_screen.window.left + 1; }
int WhereY() { return g_screen.cursorRow - g_screen.window.top + 1; }

void TextAttr(unsigned char attr) { g_screen.attr = attr; }
unsigned char CurrentAttr() { return g_screen.attr; }

void PutCh(int x, int y, unsigned char byte) {
  int col = g_screen.window.left + x - 1, row = g_screen.window.top + y - 1;
  if (x < 1 || y < 1 || !InWindow(col, row)) return;
  PutCells(col, row, &byte, 1);
}

void WriteAt(int x, int y, const char* bytes, int count) {
  const WindowRect& w = g_screen.window;
  int col = w.left + x - 1, row = w.top + y - 1;
  if (x < 1 || y < 1 || !InWindow(col, row)) return;
  if (count > kScreenCols) count = kScreenCols;
  if (count > w.right - col + 1) count = w.right - col + 1;
  if (count > 0) PutCells(col, row, reinterpret_cast<const unsigned char*>(bytes), count);
  g_screen.cursorRow = row;
  g_screen.cursorCol = col + (count > 0 ? count : 0);
  if (g_screen.cursorCol > kScreenCols) g_screen.cursorCol = kScreenCols;
}

void WriteAt(int x, int y, const ShortText& text) { WriteAt(x, y, text.Data(), text.Length()); }

void ClearWindow() {
  const WindowRect& w = g_screen.window;
  char blanks[kScreenCols];
  std::memset(blanks, ' ', sizeof blanks);
  for (int y = 1; y <= w.bottom - w.top + 1; ++y) WriteAt(1, y, blanks, w.right - w.left + 1);
  GotoXY(1, 1);
}

void WriteCentred(const ShortText& text) {
  int width = g_screen.window.right - g_screen.window.left + 1;
  int x = text.Length() >= width ? 1 : (width - text.Length()) / 2 + 1;
  WriteAt(x, WhereY(), text);
}

ShortText RowText(int row) {
  if (row < 1 || row > kScreenRows) return ShortText();
  return ShortText(std::string_view(reinterpret_cast<const char*>(g_screen.chars[row - 1] + 1), kScreenCols));
}

ShortText RowAttrs(int row) {
  if (row < 1 || row > kScreenRows) return ShortText();
  return ShortText(std::string_view(reinterpret_cast<const char*>(g_screen.attrs[row - 1]), kScreenCols));
}

unsigned char CharAtCursor() { return g_screen.chars[g_screen.cursorRow - 1][g_screen.cursorCol]; }
unsigned char AttrAtCursor() { return g_screen.attrs[g_screen.cursorRow - 1][g_screen.cursorCol - 1]; }

void TermFlush() {
  tui_detail::EmitCursor(g_screen.cursorRow, g_screen.cursorCol);
  tui_detail::FlushBuffer();
}
