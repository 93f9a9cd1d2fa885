// Inside the selection lists: the box they open and the choices they show.
#pragma once

#include <vector>

#include "base/shorttext.h"
#include "tui/screen.h"

namespace tui_detail {

// Choices split at "@"; an empty text gives one empty choice.
std::vector<ShortText> SplitChoices(const ShortText& options, int limit);

// A list box on the screen: where its rows are, in screen coordinates.
struct ListBox {
  WindowRect rows;    // the rows' window, one row per choice shown
  int innerWidth = 0;
};

// What a list box shows: the title lines, rows of a given width, and hint
// lines under the rows (each with its own "@").
struct ListBoxSpec {
  ShortText title;
  ShortText hints;
  int rowCount = 0;
  int rowWidth = 0;
  unsigned char attr = 0x07;
  uint8_t column = 0, row = 0;
};

// The lines of a text file as choices, at most limit; a file that cannot be
// read, or an empty one, gives one empty choice.
std::vector<ShortText> ReadChoiceLines(const ShortText& fileName, int limit);
// Number of lines of a text with "@" breaks.
int LineCount(const ShortText& text);
// How many rows fit in one box under a title of titleLines lines with hintLines
// lines of hints: at most kPickRowsPerBox, at least 1.
int RowsThatFit(int titleLines, int hintLines);
// Draws the box (a MessageBox of code 2) and narrows the window to its rows.
// Hints that would pass the box's last line are written over its bottom frame.
ListBox OpenListBox(const ListBoxSpec& layout);
// Writes one row of a list box: text padded with blanks to the inner width.
void WriteListRow(const ListBox& box, int index, const ShortText& text, unsigned char attr);

using ::ScreenKeeper;

}  // namespace tui_detail
