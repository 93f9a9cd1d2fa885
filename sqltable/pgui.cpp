// The layer's few uses of the screen, through the terminal layer.
#include "sqltable/pgui.h"

#include <algorithm>
#include <cstdlib>
#include <string>

#include "base/mazovia.h"
#include "base/text.h"
#include "sqltable/pgconn.h"

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

void PGUiFatal(int16_t code, const ShortText& tail) {
  PGUiMessageBox("Błąd:@"_mz + WrapAt76(PGLastOp), 0);
  ShortText text("Błąd "_mz);
  text += std::to_string(code);
  text += tail;
  PGUiMessageBox(text, 0);
  PGUiEndProgram();
}

void PGUiEndProgram() {
  TermFlush();
  std::exit(0);
}

struct PGUiNotice::Saved {
  int x = 1, y = 1;
  unsigned char attr = kAttrNormal;
  WindowRect window{};
  ScreenCopyPtr copy;
};

PGUiNotice::PGUiNotice(const ShortText& text) : saved_(std::make_unique<Saved>()) {
  saved_->x = WhereX();
  saved_->y = WhereY();
  saved_->attr = CurrentAttr();
  saved_->window = CurrentWindow();
  ScreenSave(saved_->copy);
  (void)MessageBox(text, 2);
  TermFlush();
}

PGUiNotice::~PGUiNotice() {
  ScreenRestore(saved_->copy);
  Window(saved_->window.left, saved_->window.top, saved_->window.right, saved_->window.bottom);
  GotoXY(saved_->x, saved_->y);
  TextAttr(saved_->attr);
  TermFlush();
}
