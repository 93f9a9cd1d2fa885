// The free-SQL wrappers that reports use, and the log of failed statements.
#include <errno.h>

#include <cstdio>
#include <memory>
#include <string>

#include "base/codepage.h"
#include "base/platform.h"
#include "sqltable/pgconn.h"
#include "sqltable/pgui.h"

namespace {

struct FileCloser {
  void operator()(std::FILE* f) const { std::fclose(f); }
};
using File = std::unique_ptr<std::FILE, FileCloser>;

constexpr const char* kBadQueryTitle = "Blednie sformulowane zapytanie:";

void PutLine(std::FILE* f, std::string_view text) {
  std::fwrite(text.data(), 1, text.size(), f);
  std::fputc('\n', f);
}

// "D-M-Y/H:M:S.C": plain numbers without padding, C in hundredths.
std::string StampNow() {
  const ClockReading t = ReadClock();
  char buf[64];
  std::snprintf(buf, sizeof buf, "%d-%d-%d/%d:%d:%d.%d", t.day, t.month, t.year, t.hour, t.minute, t.second,
                t.millisecond / 10);
  return buf;
}

}  // namespace

void PGLogBadQuery(const std::string& sql) {
  File log(std::fopen("error.log", "a"));
  if (!log) {
    PGUiShowBadQuery(sql);
    return;
  }
  std::FILE* f = log.get();
  const std::string stars(80, '*');
  PutLine(f, stars);
  PutLine(f, std::string(program_invocation_short_name) + ":");
  PutLine(f, StampNow());
  PutLine(f, PGLastOp.View());
  PutLine(f, kBadQueryTitle);
  PutLine(f, sql);
  // The screen shows what the user was looking at when the statement failed.
  for (int row = 1; row <= 25; ++row) PutLine(f, MazToIsoFile(PGUiScreenRow(row)).View());
  PutLine(f, stars);
}

int16_t PGRunQueryNoTup(const std::string& sql) {
  PGLastOp = "PGRunQueryNoTup";
  PGResult res;
  const int16_t code = PGExec(res, sql, false);
  if (code != 0) PGLogBadQuery(sql);
  return code;
}

int16_t PGRunQueryWithTup(const std::string& sql, PGResult& out) {
  PGLastOp = "PGRunQueryWithTup";
  const int16_t code = PGExec(out, sql, true);
  if (code != 0) PGLogBadQuery(sql);
  return code;
}
