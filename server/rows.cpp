#include "server/rows.h"

#include "base/csv.h"
#include "base/filevar.h"
#include "base/paths.h"
#include "base/platform.h"
#include "server/jobs.h"
#include "server/output.h"

namespace {

// Drops a job left from an earlier run with a line naming it; "." and ".." are
// never deleted, and a failed deletion is of no concern.
void DeleteStaleJobFile(const ShortText& jobPath) {
  if (jobPath == "." || jobPath == "..") return;
  FileSearch search;
  if (!search.First(jobPath, kAttrArchive)) return;
  // A job lost this way is told: the application learns of it from the log only.
  WriteLine("USUNIETO ZALEGLE ZADANIE " + jobPath + ": " + StaleJobText(jobPath));
  (void)DeleteFile(jobPath);
}

}  // namespace

PrinterRowFields SplitPrinterRow(const ShortText& row) {
  PrinterRowFields f;
  f.family = CsvFieldInt(row, 1);
  f.port = CsvFieldInt(row, 2);
  f.jobPath = CsvField(row, 3);
  f.heading = CsvField(row, 4);
  f.oldFirmware = !f.heading.Empty();
  f.drawerFlag = CsvFieldInt(row, 5);
  f.program = CsvField(row, 6);
  f.commandLine = CsvField(row, 7);
  return f;
}

RowsOutcome LoadPrinterRows(const ShortText& path, PrinterRows& rows) {
  rows.count = 0;
  FileVar file;
  AssignFile(file, path);
  if (file.Reset(kFileModeReadOnly) != 0) return RowsOutcome::kCannotOpen;
  ShortText line;
  while (file.ReadLine(line)) {
    // The line is taken into the next entry before it is looked at, so a
    // 21st line of any kind is out of the table's range.
    if (rows.count == kMaxPrinterRows) RunTimeError(kRangeCheckError, "more than 20 printer rows");
    if (CsvFieldCount(line) < kPrinterRowMinFields) {
      if (rows.count == 0) return RowsOutcome::kBadStructure;
      break;  // a short line ends the list without complaint
    }
    rows.row[rows.count++] = line;
    DeleteStaleJobFile(CsvField(line, 3));
  }
  return rows.count == 0 ? RowsOutcome::kNoRows : RowsOutcome::kLoaded;
}
