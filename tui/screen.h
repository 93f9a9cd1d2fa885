// The logical screen of 25 rows by 80 cells: a character shadow and an
// attribute shadow that hold what is shown, a DOS-style current window,
// cursor and text attribute. Every write goes to the shadows and to the
// terminal; coordinates are 1-based and relative to the current window.
#pragma once

#include <cstdint>
#include <memory>

#include "base/shorttext.h"

inline constexpr int kScreenCols = 80;
inline constexpr int kScreenRows = 25;

// Common attributes: background in the high nibble, foreground in the low one.
inline constexpr unsigned char kAttrNormal = 0x07;
inline constexpr unsigned char kAttrPrompt = 0x47;
inline constexpr unsigned char kAttrBoxFrame = 0x4E;
inline constexpr unsigned char kAttrBoxBody = 0x4F;
inline constexpr unsigned char kAttrReverse = 0x70;

// A saved screen: all of the character shadow (25 rows of a length byte and
// 80 bytes) then all of the attribute shadow (25 rows of 80 bytes).
struct ScreenCopy {
  unsigned char bytes[kScreenRows * (kScreenCols + 1) + kScreenRows * kScreenCols];
};
static_assert(sizeof(ScreenCopy) == 4025);
using ScreenCopyPtr = std::unique_ptr<ScreenCopy>;

// The current window in screen coordinates.
struct WindowRect {
  int left = 1, top = 1, right = kScreenCols, bottom = kScreenRows;
};

// Copies the shadows into a new ScreenCopy held by copy.
void ScreenSave(ScreenCopyPtr& copy);
// Empty copy: nothing. Else copies it back, frees it and repaints all 25 rows
// run by run of equal attribute; cursor, window and attribute stay as they were.
void ScreenRestore(ScreenCopyPtr& copy);
// Sets the current window; a value outside 1..80 or 1..25 falls back to 1 or the maximum.
void Window(int left, int top, int right, int bottom);
// Sets the window from its packed form: column - 1 in the low byte, row - 1 in the high byte.
void WindowPacked(uint16_t upperLeft, uint16_t lowerRight);
// The current window.
WindowRect CurrentWindow();
// The window's corners in packed form (column - 1 low byte, row - 1 high byte).
uint16_t WindowMinPacked();
uint16_t WindowMaxPacked();
// Moves the cursor within the window; a coordinate outside the window becomes 1.
void GotoXY(int x, int y);
// The cursor, relative to the window.
int WhereX();
int WhereY();
// Sets and reads the current text attribute.
void TextAttr(unsigned char attr);
unsigned char CurrentAttr();
// Writes one byte at a window position, in the current attribute; outside the window nothing.
void PutCh(int x, int y, unsigned char byte);
// Writes at most 80 bytes at a window position, cut at the window's right
// edge; the cursor ends after the last byte written. No allocation.
void WriteAt(int x, int y, const ShortText& text);
void WriteAt(int x, int y, const char* bytes, int count);
// Blanks every row of the window in the current attribute; the cursor goes to 1, 1.
void ClearWindow();
// Writes text centred in the window's width on the cursor's row.
void WriteCentred(const ShortText& text);
// The 80 bytes of shadow row 1..25; an empty text for any other row.
ShortText RowText(int row);
// The attribute bytes of shadow row 1..25 (80 of them); empty for any other row.
ShortText RowAttrs(int row);
// The character and the attribute under the cursor, from the shadows.
unsigned char CharAtCursor();
unsigned char AttrAtCursor();
// Blanks both shadows (attribute 0x07) without writing to the terminal.
void ScreenResetShadows();

// The window, cursor and attribute of the caller, given back on destruction
// together with the screen saved at construction.
class ScreenKeeper {
 public:
  ScreenKeeper();
  ~ScreenKeeper();
  ScreenKeeper(const ScreenKeeper&) = delete;
  ScreenKeeper& operator=(const ScreenKeeper&) = delete;
  // Puts the saved screen back and keeps a fresh copy (before a new box).
  void Repaint();

 private:
  ScreenCopyPtr saved_;
  uint16_t windowMin_, windowMax_;
  int x_, y_;
  unsigned char attr_;
};
