// Selection lists: a box of numbered choices from which the operator picks
// one by moving a bar or pressing the choice's key, and a list in which any
// number of rows can be marked. Both leave the screen, the window, the
// attribute and the cursor as they found them.
#pragma once

#include <cstdint>
#include <functional>
#include <vector>

#include "base/shorttext.h"
#include "tui/keydecode.h"

// Rows shown in one box; further choices go on in boxes titled "Wybierz dalej:".
inline constexpr int kPickRowsPerBox = 21;
// Choices a list takes; the rest of a longer list is left out.
inline constexpr int kPickMaxChoices = 255;
// Rows of a multiple selection (one bit of the result each).
inline constexpr int kPickMultiMaxRows = 21;

// The box attribute of a colour scheme: 0 0x07, 1 0x1F, 2 0x1E, 3 0x0F, 4 0x4F,
// 5 0x47, 6 0x4E, 7 0x0E, 8 the brown background with yellow (0x6E), else 0x07.
unsigned char PickListAttr(uint8_t scheme);

// One choice out of options ("@" between choices, numbered from 1). The title
// may hold byte 7: what follows it is the help shown on F1. End mode 0: only
// Enter ends; 1: Enter or Esc; 2: Enter, Esc, Left or Right. Column and row 0
// centre the box; otherwise it opens one cell inside (column, row), as
// MessageBoxHere places a box. A digit or key-cap letter of a choice ends the
// list at once. Returns the choice, 0 for Esc; outCh and outScan receive the
// key that ended the list.
int16_t PickList(uint8_t colour, int16_t initial, int16_t endMode, uint8_t column, uint8_t row,
                 const ShortText& title, const ShortText& options, unsigned char& outCh, unsigned char& outScan);

// What a menu bar adds to a list: keys that end it as Left and Right do
// (returning the choice under the bar), and a function told the choice under
// the bar whenever the list waits for a key.
struct PickListHooks {
  std::function<bool(KeyPair)> endsList;
  std::function<void(int16_t)> barAt;
};
// PickList with the hooks, over choices given one by one (a menu's entries
// together pass the 255 bytes of an option string); empty hooks make it PickList.
int16_t PickListHooked(uint8_t colour, int16_t initial, int16_t endMode, uint8_t column, uint8_t row,
                       const ShortText& title, const std::vector<ShortText>& choices, const PickListHooks& hooks,
                       unsigned char& outCh, unsigned char& outScan);

// PickList with each line of a text file as a choice (at most kPickMaxChoices);
// a file that cannot be read gives one empty choice.
int16_t PickListFile(uint8_t colour, int16_t initial, int16_t endMode, uint8_t column, uint8_t row,
                     const ShortText& title, const ShortText& fileName, unsigned char& outCh, unsigned char& outScan);

// Marks any number of the first 21 choices: Enter toggles the row under the
// bar, "+" marks it, "-" clears it, F1 shows the help, F10 confirms, Esc
// cancels (not in end mode 0), Left and Right confirm in end mode 2. Fields of
// a row separated by " ¥ " are aligned in columns, and a title with the same
// separators becomes the header of those columns. marks comes in with the
// rows marked at the start (bit n - 1 for row n) and goes out with the
// result. Returns the sum of 2^(row - 1) of the marked rows, 0 when cancelled
// (marks then unchanged); outKey receives the key that ended it.
uint32_t PickMulti(uint8_t colour, int16_t initial, int16_t endMode, uint8_t column, uint8_t row,
                   const ShortText& title, const ShortText& options, KeyPair& outKey, uint32_t& marks);
// PickMulti with each line of a text file as a row (at most kPickMultiMaxRows),
// for rows that do not fit in one text; a file that cannot be read gives one empty row.
uint32_t PickMultiFile(uint8_t colour, int16_t initial, int16_t endMode, uint8_t column, uint8_t row,
                       const ShortText& title, const ShortText& fileName, KeyPair& outKey, uint32_t& marks);
