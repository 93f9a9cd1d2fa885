#include "server/jobs.h"

#include <cstdio>

#include "base/jobfile.h"
#include "base/mazovia.h"
#include "server/output.h"

namespace {

// Failed opens of a locked job file before the operator is told about it.
constexpr int kLockedOpensBeforeNotice = 3;
constexpr int kLockedRetryMs = 1000;

ShortText Printf(const char* format, int a, int b, int c) {
  char text[64];
  const int n = std::snprintf(text, sizeof text, format, a, b, c);
  return ShortText(std::string_view(text, n > 0 ? static_cast<std::size_t>(n) : 0));
}

}  // namespace

uint8_t ClassifyJobFile(const ShortText& path, FileVar& file) {
  AssignFile(file, path);
  // Read only: the application may still hold the file open for writing.
  int failures = 0;
  while (file.Reset(kFileModeReadOnly) != 0) {
    ++failures;
    SleepMs(kLockedRetryMs);
    if (failures > kLockedOpensBeforeNotice) {
      WriteLine("BLOKADA  [Ctrl+Break] - zakonczenie pracy servera");
      FlushOut();
      failures = 0;
    }
  }
  ShortText record;
  const uint8_t kind = ReadJobRecord(file, record) ? JobKindOfRecord(record) : kJobNone;
  if (kind == kJobNone) file.Close();
  return kind;
}

void DeleteJobFileLogged(FileVar& file) {
  if (file.Erase() != 0) WriteLine("Wystąpil problem usuniecia pliku posredniego."_mz);
}

ShortText ClockText(const ClockReading& when) {
  return Printf("%2d:%2d:%2d", when.hour, when.minute, when.second);
}

ShortText JobFailureStampAt(const ClockReading& when) {
  return " nie wyk.zad. " + Printf("%2d-%2d-%4d", when.day, when.month, when.year) + " " + ClockText(when);
}

ShortText JobFailureStamp() { return JobFailureStampAt(ReadClock()); }

ShortText JobResultLine(uint8_t kind, uint8_t result, const ShortText& resultText, const ClockReading& when) {
  if (kind == kJobWithdrawn) return resultText + " Wycofanie komendy.";
  if (result != 0) return resultText + JobFailureStampAt(when);
  return resultText + " O.K.";
}
