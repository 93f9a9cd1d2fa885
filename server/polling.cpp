#include "server/polling.h"

#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <thread>

#include "base/jobfile.h"
#include "base/numbers_format.h"
#include "base/numtext.h"
#include "base/platform.h"
#include "server/families.h"
#include "server/jobs.h"
#include "server/output.h"
#include "tui/keypoll.h"

namespace {

// At most this much of an overrun is taken off the next sleep, so that a
// stalled machine does not shorten the sleeps that follow it.
constexpr int64_t kMaxOverrunCarryUs = 20000;

// Sleeps the poll time less the last overrun.
void PollSleep(ServerState& state) {
  using namespace std::chrono;
  const int64_t wantUs = std::max<int64_t>(0, int64_t{state.pollDelay} * 1000 - state.sleepOverrunUs);
  const auto start = steady_clock::now();
  std::this_thread::sleep_for(microseconds(wantUs));
  const int64_t overrun = duration_cast<microseconds>(steady_clock::now() - start).count() - wantUs;
  state.sleepOverrunUs = std::clamp<int64_t>(overrun, 0, kMaxOverrunCarryUs);
}

bool IsReportedKind(uint8_t kind) {
  return (kind >= kJobReceipt && kind <= kJobDrawer) || kind == kJobWithdrawn;
}

// "START SERVERA DRUKAREK FISKALNYCH d-m-yyyy h:m:s", numbers without padding.
ShortText StartLine(const ClockReading& now) {
  return "START SERVERA DRUKAREK FISKALNYCH " + IntText(now.day, 0) + "-" + IntText(now.month, 0) + "-" +
         IntText(now.year, 0) + " " + IntText(now.hour, 0) + ":" + IntText(now.minute, 0) + ":" +
         IntText(now.second, 0);
}

void WriteStartLines(bool withLog) {
  WriteLine(StartLine(ReadClock()));
  WriteLine("PID: " + IntText(::getpid(), 0));
  if (!withLog) WriteLine("ZAKONCZENIE PRACY: F10");
}

// Reads the rows and writes their line; false (the line of the failure
// written) when the server cannot go on.
bool ConfigureRows(ServerState& state, const ShortText& configPath) {
  switch (LoadPrinterRows(configPath, state.rows)) {
    case RowsOutcome::kCannotOpen: WriteLine("BLAD OTWARCIA PLIKU KONFIGURACYJNEGO."); return false;
    case RowsOutcome::kBadStructure: WriteLine("BLAD SRUKTURY PLIKU KONFIGURACYJNEGO."); return false;
    case RowsOutcome::kNoRows: WriteLine("W PLIKU KONFIGURACYJNYM NIE ZDEFINIOWANO DANYCH."); return false;
    case RowsOutcome::kLoaded: break;
  }
  WriteLine("SKONFIGUROWANO " + IntText(state.rows.count, 0));
  return true;
}

// Steps 4 to 8 of a row whose job file was found: classify, run, report.
void ServeJobFile(ServerState& state, const PrinterRowFields& row) {
  state.jobKind = ClassifyJobFile(row.jobPath, state.jobFile);
  if (!IsReportedKind(state.jobKind)) return;  // still being written: left alone
  if (LogIsOpen()) WriteOut(ClockText(ReadClock()) + " ");
  state.jobResult = 0;
  state.resultText.Clear();
  JobRequest job{row.family, row.port, row.heading, row.oldFirmware, row.drawerFlag, &state.jobFile,
                 &state.resultText};
  state.jobResult = DispatchJob(state.jobKind, job);
  // A job is tried once: the file goes after the attempt, whatever its result.
  DeleteJobFileLogged(state.jobFile);
  WriteLine(JobResultLine(state.jobKind, state.jobResult, state.resultText, ReadClock()));
  if (LogIsOpen()) ReopenLog();
}

// Step 10: the running clock, the sleep and the look at the keyboard; true
// when the stop pair was read.
bool SleepAndPollKeys(ServerState& state) {
  const bool screen = !LogIsOpen();
  if (screen) {
    WriteOut("\r" + ClockText(ReadClock()) + " ");
    FlushOut();
  }
  PollSleep(state);
  state.jobResult = 0;
  if (KeyPair key; screen && KeyPollRead(key)) {
    state.jobKind = key.ch;
    state.jobResult = key.scan;
  }
  return state.jobKind == 0 && state.jobResult == kStopResult;
}

}  // namespace

uint16_t PollDelayFromParam(const ShortText& text) {
  const int32_t value = TextToInt(text);
  if (value < 0 || value > 65535) RunTimeError(kRangeCheckError, "poll time out of range 0..65535");
  return value == 0 ? kDefaultPollDelay : static_cast<uint16_t>(value);
}

bool RowPass(ServerState& state) {
  for (int i = 0; i < state.rows.count; ++i) {
    const PrinterRowFields row = SplitPrinterRow(state.rows.row[i]);
    if (!row.program.Empty()) (void)RunProgram(row.program, row.commandLine);
    {
      FileSearch search;
      if (search.First(row.jobPath, kAttrArchive)) ServeJobFile(state, row);
    }  // the search is released here
    if (SleepAndPollKeys(state)) return false;
  }
  return true;
}

int RunPollingMode(ServerState& state) {
  state.pollDelay = PollDelayFromParam(ParamStr(2));
  state.logFileName = ParamStr(3);
  state.fourthParameter = ParamStr(4);
  if (!state.logFileName.Empty() && !OpenLogAsOutput(state.logFileName)) state.logFileName.Clear();
  WriteStartLines(LogIsOpen());
  if (!ConfigureRows(state, ParamStr(1))) return 0;
  SettlePrintersAtStart(state.rows);
  if (LogIsOpen()) ReopenLog();
  else KeyPollBegin();

  while (RowPass(state)) {
  }
  WriteLine("");
  WriteLine("KONIEC PRACY SERVERA DRUKAREK FISKALNYCH");
  return 0;
}
