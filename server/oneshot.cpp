#include "server/oneshot.h"

#include "base/jobfile.h"
#include "base/mazovia.h"
#include "base/platform.h"
#include "server/families.h"
#include "server/jobs.h"
#include "server/rows.h"
#include "tui/msgbox.h"
#include "tui/screen.h"
#include "tui/term.h"

namespace {

constexpr unsigned char kNoticeAttr = 23;  // white on blue

bool IsPrintingKind(uint8_t kind) { return kind >= kJobReceipt && kind <= kJobDrawer; }

// Step 8 in one-shot mode: the result in a box. Kind 0 shows nothing and
// leaves the file for the application to finish.
void ReportResult(ServerState& state) {
  if (state.jobKind == kJobWithdrawn) {
    DeleteJobFileShown(state.jobFile);
    MessageBox(state.resultText + "@Wycofanie komendy drukarki fiskalnej."_mz, 3000);
  } else if (IsPrintingKind(state.jobKind)) {
    DeleteJobFileShown(state.jobFile);
    if (state.jobResult != 0) MessageBox(state.resultText + "@" + JobFailureStamp(), 5000);
    else MessageBox(state.resultText + " O.K.", 500);
  }
}

// Steps 4 to 8 for a job file that was found.
void ServeFoundJobFile(ServerState& state, const PrinterRowFields& row) {
  state.jobKind = ClassifyJobFile(row.jobPath, state.jobFile);
  ScreenCopyPtr underNotice;
  const bool printing = IsPrintingKind(state.jobKind);
  if (printing) {
    ScreenSave(underNotice);
    MessageBoxColour("Trwa wysyłanie danych do drukarki fiskalnej..."_mz, 2, kNoticeAttr);
  }
  state.jobResult = 0;
  state.resultText.Clear();
  JobRequest job{row.family, row.port, row.heading, row.oldFirmware, row.drawerFlag, &state.jobFile,
                 &state.resultText};
  state.jobResult = DispatchJob(state.jobKind, job);
  if (printing) {
    ScreenRestore(underNotice);
    Window(1, 1, kScreenCols, kScreenRows);
  }
  ReportResult(state);
  // Any file found ends the server after this pass: the stop pair.
  state.jobKind = 0;
  state.jobResult = kStopResult;
}

// One pass over the single row; the job file's absence means another pass at once.
void OneShotPass(ServerState& state) {
  const PrinterRowFields row = SplitPrinterRow(state.rows.row[0]);
  if (!row.program.Empty()) (void)RunProgram(row.program, row.commandLine);
  FileSearch search;
  if (search.First(row.jobPath, kAttrArchive)) ServeFoundJobFile(state, row);
}

}  // namespace

bool IsOneShotMarker(const ShortText& parameter) { return parameter == kOneShotMarker; }

int RunOneShotMode(ServerState& state) {
  state.rows.count = 1;
  state.rows.row[0] = ParamStr(2);
  TermInit();
  // No key is read in this mode: the terminal stays as the application left
  // it, so Ctrl+C still breaks the wait on a locked job file.
  TermRestoreInput();
  while (!(state.jobKind == 0 && state.jobResult == kStopResult)) OneShotPass(state);
  TermFlush();
  return 0;
}

void DeleteJobFileShown(FileVar& file) {
  if (file.Erase() != 0) MessageBox("Wystąpił problem usunięcia pliku pośredniego."_mz, 3000);
}
