// Until the terminal layer is linked in, the layer's messages go to the
// standard error stream and no screen rows exist to dump.
#include "sqltable/pgui.h"

#include <cstdio>
#include <cstdlib>

namespace {

void WriteErr(const ShortText& text) {
  std::fwrite(text.Data(), 1, static_cast<std::size_t>(text.Length()), stderr);
  std::fputc('\n', stderr);
}

}  // namespace

void PGUiMessageBox(const ShortText& text, int /*code*/) { WriteErr(text); }

ShortText PGUiScreenRow(int /*row*/) { return ShortText(); }

void PGUiShowBadQuery(const std::string& sql) {
  WriteErr("Blednie sformulowane zapytanie:");
  std::fwrite(sql.data(), 1, sql.size(), stderr);
  std::fputc('\n', stderr);
}

void PGUiEndProgram() {
  std::fflush(nullptr);
  std::exit(0);
}
