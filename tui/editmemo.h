// The note editor: the lines of a text file, or of a block of bytes in
// memory, edited one line at a time with EditField inside a window.
#pragma once

#include <string>

#include "base/shorttext.h"

// Lines a memo holds; a longer text is only shown, up to there.
inline constexpr int kMemoMaxLines = 500;

// Where a memo is shown, in screen coordinates: its lines fill the rows
// above the bottom one, which holds the line of keys.
struct MemoWindow {
  int left = 1, top = 1, right = 80, bottom = 25;
};

// Edits the text file's lines (a missing file is an empty note): Up, Down,
// Tab and Enter move between lines, F10 writes the file back (each line ended
// by byte 10) and gives true, Esc leaves the file as it was and gives false.
// Read-only: the lines are shown and scrolled until Esc; false. Lines longer
// than the window keep their tail unless edited. Screen, window, attribute
// and cursor are given back as found.
bool EditMemo(const ShortText& path, const MemoWindow& window, bool readOnly);
// The same over a block of lines each ended by byte 10; on F10 the block is
// rewritten, otherwise it stays as it was.
bool EditMemo(std::string& block, const MemoWindow& window, bool readOnly);
