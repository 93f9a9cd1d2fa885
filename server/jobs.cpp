#include "server/jobs.h"

#include <cerrno>

#include "base/jobfile.h"
#include "base/mazovia.h"
#include "base/numbers_format.h"
#include "base/numtext.h"
#include "base/text.h"
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
  for (int error = file.Reset(kFileModeReadOnly); error != 0; error = file.Reset(kFileModeReadOnly)) {
    // A file that is gone (taken back, or renamed over) is no job: the wait ends.
    if (error == ENOENT) return kJobNone;
    ++failures;
    SleepMs(kLockedRetryMs);
    if (failures > kLockedOpensBeforeNotice) {
      // The reason of the last failed open stands beside the notice.
      WriteLine("BLOKADA  [Ctrl+Break] - zakonczenie pracy servera (" + IntText(error, 0) + ")");
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

bool NoteSettledReceipt(ReceiptSettle settle, ShortText& resultText) {
  switch (settle) {
    case ReceiptSettle::kCancelled: resultText += "@Anulowano paragon pozostawiony otwarty w drukarce."; return true;
    case ReceiptSettle::kStillOpen: resultText += "@Nie mozna anulowac paragonu otwartego w drukarce."; return false;
    case ReceiptSettle::kNoneOpen:
    case ReceiptSettle::kNoAnswer: return true;
  }
  return true;
}

ShortText SettleStartLine(ReceiptSettle settle, int family, int port) {
  const ShortText printer = IntText(family, 0) + "," + IntText(port, 0);
  if (settle == ReceiptSettle::kCancelled) return "ANULOWANO PARAGON POZOSTAWIONY OTWARTY W DRUKARCE " + printer;
  if (settle == ReceiptSettle::kStillOpen) return "NIE MOZNA ANULOWAC PARAGONU OTWARTEGO W DRUKARCE " + printer;
  return ShortText();
}

namespace {

constexpr const char* kJobNames[] = {"NIEKOMPLETNE", "PARAGON", "RAPORT DOBOWY", "RAPORT OKRESOWY", "SZUFLADA"};

ShortText JobKindName(uint8_t kind) {
  if (kind == kJobWithdrawn) return "WYCOFANIE";
  return kind <= kJobDrawer ? ShortText(kJobNames[kind]) : ShortText(kJobNames[0]);
}

// Records 2 to 7 of a receipt, as far as they are there: number and total.
ShortText ReceiptSummary(FileVar& file) {
  ShortText record[7];
  for (int i = 2; i <= 7 && ReadJobRecord(file, record[i - 1]); ++i) {
  }
  const ShortText number = record[6].Empty() ? ShortText("-") : record[6];
  return " nr " + number + " suma " + TrimLeftAll(FormatFixed(15, 2, TextToReal(record[2]) / 100), ' ');
}

}  // namespace

ShortText StaleJobText(const ShortText& path) {
  FileVar file;
  AssignFile(file, path);
  // Read once: at the start nothing may hold the server.
  if (file.Reset(kFileModeReadOnly) != 0) return JobKindName(kJobNone);
  ShortText record;
  const uint8_t kind = ReadJobRecord(file, record) ? JobKindOfRecord(record) : kJobNone;
  ShortText text = JobKindName(kind);
  if (kind == kJobReceipt) text += ReceiptSummary(file);
  file.Close();
  return text;
}
