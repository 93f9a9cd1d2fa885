// The layer's few uses of the screen, through the terminal layer.
#include "sqltable/pgui.h"

#include <algorithm>
#include <cstdlib>

#include "tui/msgbox.h"
#include "tui/screen.h"
#include "tui/term.h"

void PGUiMessageBox(const ShortText& text, int code) { (void)MessageBox(text, static_cast<int16_t>(code)); }

ShortText PGUiScreenRow(int row) { return RowText(row); }

void PGUiShowBadQuery(const std::string& sql) {
  const int x = WhereX(), y = WhereY();
  const unsigned char attr = CurrentAttr();
  const WindowRect window = CurrentWindow();
  ScreenCopyPtr copy;
  ScreenSave(copy);
  Window(1, 1, kScreenCols, kScreenRows);
  TextAttr(kAttrNormal);
  ClearWindow();
  WriteAt(1, 1, "Blednie sformulowane zapytanie:");
  // The statement runs on over the rows below, as far as the screen reaches.
  std::size_t pos = 0;
  for (int row = 2; row <= kScreenRows && pos < sql.size(); ++row, pos += kScreenCols) {
    const auto count = static_cast<int>(std::min<std::size_t>(kScreenCols, sql.size() - pos));
    WriteAt(1, row, sql.data() + pos, count);
  }
  TermFlush();
  ScreenRestore(copy);
  Window(window.left, window.top, window.right, window.bottom);
  GotoXY(x, y);
  TextAttr(attr);
}

void PGUiEndProgram() {
  TermFlush();
  std::exit(0);
}
