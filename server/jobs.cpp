#include "server/jobs.h"

#include "base/jobfile.h"
#include "base/mazovia.h"
#include "base/numbers_format.h"
#include "server/output.h"

namespace {

// Failed opens of a locked job file before the operator is told about it.
constexpr int kLockedOpensBeforeNotice = 3;
constexpr int kLockedRetryMs = 1000;

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
  return IntText(when.hour, 2) + ":" + IntText(when.minute, 2) + ":" + IntText(when.second, 2);
}

ShortText JobFailureStampAt(const ClockReading& when) {
  return " nie wyk.zad. " + IntText(when.day, 2) + "-" + IntText(when.month, 2) + "-" + IntText(when.year, 4) + " " +
         ClockText(when);
}

ShortText JobFailureStamp() { return JobFailureStampAt(ReadClock()); }

ShortText JobResultLine(uint8_t kind, uint8_t result, const ShortText& resultText, const ClockReading& when) {
  if (kind == kJobWithdrawn) return resultText + " Wycofanie komendy.";
  if (result != 0) return resultText + JobFailureStampAt(when);
  return resultText + " O.K.";
}
