// What the table layer needs of the screen: the message box of its fatal
// paths, the rows of the logical screen for the logs, and a glimpse of a
// failed statement when no log can be written. Private to sqltable/.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "base/shorttext.h"

// Shows text in the system's message box; code as MessageBox (0 waits for Enter or Esc).
void PGUiMessageBox(const ShortText& text, int code);
// Row 1..25 of the logical screen as Mazovia text.
ShortText PGUiScreenRow(int row);
// Saves cursor, attribute and screen, shows "Blednie sformulowane zapytanie:"
// and the statement on a cleared screen, and restores everything.
void PGUiShowBadQuery(const std::string& sql);
// Shows "Błąd:" with the folded PGLastOp, then "Błąd " code and the tail,
// and ends the program (exit status 0).
[[noreturn]] void PGUiFatal(int16_t code, const ShortText& tail);
// Ends the program after a fatal database failure (exit status 0).
[[noreturn]] void PGUiEndProgram();

// A box shown without waiting, with screen, window, cursor and attribute
// saved; the destructor puts them back.
class PGUiNotice {
 public:
  explicit PGUiNotice(const ShortText& text);
  ~PGUiNotice();
  PGUiNotice(const PGUiNotice&) = delete;
  PGUiNotice& operator=(const PGUiNotice&) = delete;

 private:
  struct Saved;
  std::unique_ptr<Saved> saved_;
};
