// What the table layer needs of the screen: the message box of its fatal
// paths, the rows of the logical screen for the logs, and a glimpse of a
// failed statement when no log can be written. Private to sqltable/.
#pragma once

#include <string>

#include "base/shorttext.h"

// Shows text in the system's message box; code as MessageBox (0 waits for Enter or Esc).
void PGUiMessageBox(const ShortText& text, int code);
// Row 1..25 of the logical screen as Mazovia text.
ShortText PGUiScreenRow(int row);
// Saves cursor, attribute and screen, shows "Blednie sformulowane zapytanie:"
// and the statement on a cleared screen, and restores everything.
void PGUiShowBadQuery(const std::string& sql);
// Ends the program after a fatal database failure (exit status 0).
[[noreturn]] void PGUiEndProgram();
