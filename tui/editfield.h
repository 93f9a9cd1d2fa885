// The field editors of the input forms. A form is a run of these calls, each
// at a position already set by GotoXY, and a loop in the caller that moves
// between fields on the key that ended the edit. Key codes are those of
// KeyCodeOf (Enter 13, Esc 27, F1 229, F2 230, F10 238, Up 242, Down 250...).
#pragma once

#include "base/shorttext.h"

// Widest field an editor draws; a wider request works at this width.
inline constexpr int kEditMaxWidth = 79;
// Longest text of the line editor.
inline constexpr int kEditLineMaxLength = 254;
// How long the note "Pobrano do schowka." stays in each editor.
inline constexpr int kFieldClipboardMs = 500;
inline constexpr int kLineClipboardMs = 1500;

// The global ClearOnFirstKey flag: when on, every field opens empty (as if
// Ctrl+Backspace were its first key).
void SetClearOnFirstKey(bool on);
bool ClearOnFirstKey();

// True if the key code ends an edit in the end mode: 0 Enter, F1; 1 also Esc;
// 2 also Up and Down (Tab, Shift+Tab); 3 also F10; 4 also F2; 5 also F5;
// 6 also F3; any other end mode every key that does not edit.
bool EndsEdit(int endMode, unsigned char code);

// The masked field editor. Modes 1 to 16 say which bytes it takes (1 text,
// 2 DD.MM.RR, 3 digits, 4 and 6 numbers, 5 file names, 7 DD-MM-RR(RR),
// 8 capitals, 9 signed whole number, 10 list of digits, 11 a number that ends
// when full, 12 tax number with country prefix, 13 number with sign, 14 number
// with at most two decimals, 15 secret shown as "*", 16 letters and digits).
// Draws text padded with fill at the cursor, width cut to 79, the text cut to
// the width; the cursor starts after the last character. In the fixed-format
// modes 2, 7 and 12 the text comes back as the whole field, fill and
// separators included, less trailing blanks. Returns the key code that ended the edit, also in key.
unsigned char EditField(int mode, int endMode, unsigned char fill, int width, ShortText& text, unsigned char& key);

// EditField with mode 1 taken as 8. In mode 7, unless F2 ended it, a text that
// is not as long as the width with "-" at positions 3 and 6 is questioned
// ("Taka data jest niepoprawna. Czy tak ma być ?"); on no the edit starts again.
unsigned char EditFieldChecked(int mode, int endMode, unsigned char fill, int width, const ShortText& text,
                               unsigned char& key, ShortText& out);

// The look of an empty fixed-format field (modes 2, 7, 12): fill, with the
// separators at their places; for other modes fill only.
ShortText FieldMask(int mode, unsigned char fill, int width);
// Writes the mask at the cursor, in the current attribute; the cursor stays.
void DrawMask(int mode, unsigned char fill, int width);

// The scrolling line editor: a text of up to maxLength (at most 254) bytes in
// a field of visibleWidth (at most 79) cells at the cursor, scrolled so that
// the cursor stays in view. With capitals every typed letter is upper-cased.
// out receives the edited text, or the text as it came when Esc ended the
// edit. Returns the key code that ended it (F1 always ends), also in key.
unsigned char EditLine(bool capitals, int endMode, unsigned char fill, int visibleWidth, int maxLength,
                       const ShortText& text, unsigned char& key, ShortText& out);
