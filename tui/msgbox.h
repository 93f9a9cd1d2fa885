// The message boxes: every dialog with the operator that is not a list or a
// form. A text has "@" for line breaks; the code says what the box waits for:
// 0 Enter or Esc, -1 Esc only, 1 yes or no, 2 no wait (the box stays up),
// any other value a time in milliseconds (below -1 taken as unsigned).
#pragma once

#include <cstdint>

#include "base/shorttext.h"

// The box centred on the screen, frame 0x4E, body 0x4F; true if answered yes.
bool MessageBox(const ShortText& text, int16_t code);
// As MessageBox with frame and body in the given attribute.
bool MessageBoxColour(const ShortText& text, int16_t code, unsigned char attr);
// As MessageBoxColour, its corner one cell inside the current window's, moved
// left or up only as far as the screen's edge needs.
bool MessageBoxHere(const ShortText& text, int16_t code, unsigned char attr);
// One line of at most 76 characters in a box from column 2 ending on row 24.
bool MessageBoxBottom(const ShortText& text, int16_t code);

// Copies an editor's field to the clipboard and says "Pobrano do schowka."
// in a box that goes away by itself after the given milliseconds.
void ClipboardCopy(const ShortText& field, int16_t milliseconds);

// A progress bar in the text of a code-2 box: "[          ]" to fill,
// "[          /          ]" for a count, "[   %]" for a percentage.
struct ProgressBar {
  enum Kind { kNone, kFill, kCount, kPercent };
  Kind kind = kNone;
  int x = 0, y = 0;  // the "[" relative to the box's window
};

// Finds the bar in the text given to MessageBox(text, 2) (a centred box).
ProgressBar FindProgressBar(const ShortText& text);
// Writes done of total into the bar of the box still on the screen:
// blocks for a fill, "done/total" for a count, the whole percent for a percentage.
void ShowProgress(const ProgressBar& bar, long done, long total);
// The text of a bar for done of total, without the brackets' positions.
ShortText ProgressText(ProgressBar::Kind kind, long done, long total);
