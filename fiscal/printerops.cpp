// The printer operations of the menu by route: POSNET and ELZAB from this
// process, jobs for the fiscal print server otherwise.
#include "fiscal/printerops.h"

#include <ctime>

#include "base/dates.h"
#include "base/jobfile.h"
#include "base/mazovia.h"
#include "base/numbers_format.h"
#include "fiscal/elzab.h"
#include "fiscal/elzab_line.h"
#include "fiscal/posnet.h"
#include "fiscal/serial.h"
#include "tui/askvalue.h"
#include "tui/datedialogs.h"
#include "tui/msgbox.h"
#include "tui/picklist.h"

namespace {

constexpr int kDateWidth = 10;
constexpr int kDateMode = 7;  // DD-MM-RRRR
constexpr int kRuleWidth = 74;

bool IsPosnet(const FiscalConfig& c) { return c.printerType == kFiscalPosnet || c.printerType == kFiscalPosnet24; }

// --- POSNET: each result through the error operation, which cancels and is shown ---

// True when the code is an error: its text is shown and the port closed.
bool PosnetFailed(int code) {
  ShortText text;
  if (code == 0 || !PosnetErrorText(code, text)) return false;
  MessageBox(text, 0);
  PosnetClose();
  return true;
}

bool PosnetStart(const FiscalConfig& config) {
  ApplyFiscalConfigToDrivers(config);
  PosnetOpen(config.port);
  return !PosnetFailed(PosnetErrorMode(1));
}

// Sends the command on a started line; closes the line either way.
bool PosnetFinish(int code) {
  if (PosnetFailed(code)) return false;
  PosnetClose();
  return true;
}

// --- ELZAB: one command, its response byte, the status texts on a refusal ---

void TellElzabFailure(const ShortText& why) { MessageBox("Błąd drukarki ELZAB.@("_mz + why + ")", 0); }

bool ElzabTimedOut() { return ElzabLine().timedOut; }

// Open, purge, the command; with a response the byte is tested, NAK showing the printer's reason.
bool ElzabRun(const FiscalConfig& config, const std::string& command, bool response) {
  ApplyFiscalConfigToDrivers(config);
  ElzabOpen(config.port);
  if (!ElzabTimedOut()) ElzabPurge(config.port);
  if (!ElzabTimedOut()) ElzabSendText(config.port, command);
  if (ElzabTimedOut()) {
    TellElzabFailure("Timeout nadawania.");
    return false;
  }
  const bool refused = response && ElzabReadResponse(config.port) == kElzabNak;
  if (refused) TellElzabFailure(ElzabStatusText(config.port));
  ElzabPurge(config.port);
  return !refused;
}

// --- The questions ---

ShortText TimeText(int hour, int minute) { return MinutesToTime(hour * 60 + minute); }

ShortText PosnetDailyQuestion(const ShortText& printerClock) {
  const PosnetClock now = ComputerClock();
  return "Czy wykonać raport dobowy ?@(To samo pytanie powtórzy też drukarka)."_mz + "@@" + "Czas komputera: " +
         DateInWords(now.day, now.month, 2000 + now.year) + ", " + TimeText(now.hour, now.minute) + "@" +
         "Czas drukarki : " + printerClock;
}

bool AskFiscalPeriod(const ShortText& from, const ShortText& to) {
  ShortText rule;
  while (rule.Length() < kRuleWidth) rule += "─"_mz;
  return MessageBox("Raport za okres: "_mz + from + " ÷ "_mz + to + "@" + rule + "@Czy ma to być raport fiskalny ?"_mz, 1);
}

// The period, from the first of this month to today by default; false on Esc.
bool AskReportPeriod(ShortText& from, ShortText& to) {
  to = Today(kDateWidth);
  from = "01-" + to.Copy(4, 7);
  for (;;) {
    if (!AskValueRange("Podaj okres, za jaki wykonac raport z drukarki fiskalnej:"_mz, from, to, kDateWidth, kDateMode,
                       ShortText(), ShortText()))
      return false;
    if (DateValidWithMessage(from, kDateWidth) && DateValidWithMessage(to, kDateWidth)) return true;
  }
}

// Year (two digits), month and day of a date, as the ELZAB command takes them.
void ShortDate(const ShortText& date, int out[3]) {
  const DatePartValues p = DateParts(date);
  out[0] = p.year % 100;
  out[1] = p.month;
  out[2] = p.day;
}

// --- The operations by route ---

bool PosnetDailyReport(const FiscalConfig& config) {
  if (!PosnetStart(config)) return false;
  PosnetClock clock;
  const ShortText printer =
      PosnetReadClock(clock) == 0 ? PrinterClockText(clock) : "(błąd - drukarka nie podała czasu)"_mz;
  if (!MessageBox(PosnetDailyQuestion(printer), 1)) {
    PosnetClose();
    return false;
  }
  return PosnetFinish(PosnetDailyReportCommand());
}

bool PosnetPeriodReport(const FiscalConfig& config, const ShortText& from, const ShortText& to) {
  int a[3], b[3];
  ShortDate(from, a);
  ShortDate(to, b);
  return PosnetStart(config) && PosnetFinish(PosnetPeriodReportCommand(a[0], a[1], a[2], b[0], b[1], b[2]));
}

bool ElzabPeriodReport(const FiscalConfig& config, const ShortText& from, const ShortText& to, bool fiscal) {
  int a[3], b[3];
  ShortDate(from, a);
  ShortDate(to, b);
  std::string command;
  return ElzabPeriodReportCommand(fiscal, a, b, command) && ElzabRun(config, command, true);
}

ShortText OperationTitle(PrinterOp op) {
  switch (op) {
    case PrinterOp::kDailyReport: return "- raport dobowy"_mz;
    case PrinterOp::kPeriodReport: return "- raport okresowy"_mz;
    case PrinterOp::kClock: return "- synchronizacja zegara drukarki z komputerem"_mz;
    case PrinterOp::kDrawer: return "- otwarcie szuflady"_mz;
  }
  return ShortText();
}

void RunOperation(const FiscalConfig& config, PrinterOp op) {
  switch (op) {
    case PrinterOp::kDailyReport: (void)FiscalDailyReport(config); return;
    case PrinterOp::kPeriodReport: (void)FiscalPeriodReport(config); return;
    case PrinterOp::kClock: (void)FiscalClockSync(config, ComputerClock()); return;
    case PrinterOp::kDrawer: (void)FiscalDrawer(config); return;
  }
}

}  // namespace

std::vector<PrinterOp> PrinterOpsOf(const FiscalConfig& config) {
  if (config.printerType < kFiscalElzab || config.printerType > kFiscalServer) return {};
  std::vector<PrinterOp> ops = {PrinterOp::kDailyReport, PrinterOp::kPeriodReport};
  if (IsPosnet(config)) ops.push_back(PrinterOp::kClock);
  // The server's row says whether a drawer hangs there; it refuses the job otherwise.
  if (config.printerType == kFiscalServer || config.drawer != 0) ops.push_back(PrinterOp::kDrawer);
  return ops;
}

bool FiscalDailyReport(const FiscalConfig& config) {
  if (IsPosnet(config)) return PosnetDailyReport(config);
  if (config.printerType != kFiscalElzab && config.printerType != kFiscalServer) return false;
  if (!MessageBox("Czy wykonać raport dobowy ?"_mz, 1)) return false;
  if (config.printerType == kFiscalServer) return SubmitPrinterJob(config, kJobDailyReport, {});
  return ElzabRun(config, ElzabDailyReportCommand(), true);
}

bool FiscalPeriodReport(const FiscalConfig& config) {
  ShortText from, to;
  if (PrinterOpsOf(config).empty() || !AskReportPeriod(from, to)) return false;
  if (IsPosnet(config)) return PosnetPeriodReport(config, from, to);
  if (config.printerType == kFiscalServer && !MessageBox("Czy wykonać raport okresowy ?"_mz, 1)) return false;
  const bool fiscal = AskFiscalPeriod(from, to);
  if (config.printerType == kFiscalElzab) return ElzabPeriodReport(config, from, to, fiscal);
  return SubmitPrinterJob(config, kJobPeriodReport, {from, to, fiscal ? "FISK" : "NFISK"});
}

bool FiscalClockSync(const FiscalConfig& config, const PosnetClock& now) {
  if (!IsPosnet(config) ||
      !MessageBox("Na pewno chcesz zsynchronizować zegar w drukarce fiskalnej z komputerem ?"_mz, 1))
    return false;
  return PosnetStart(config) && PosnetFinish(PosnetSetClock(now.year, now.month, now.day, now.hour, now.minute));
}

bool FiscalDrawer(const FiscalConfig& config) {
  if (config.printerType == kFiscalServer) return SubmitPrinterJob(config, kJobDrawer, {});
  if (config.drawer == 0) return false;
  if (config.printerType == kFiscalElzab) return ElzabRun(config, ElzabDrawerCommand(), false);
  return IsPosnet(config) && PosnetStart(config) && PosnetFinish(PosnetDisplayText(1, "SZUFLADA"));
}

void FiscalPrinterMenu(const FiscalConfig& config) {
  const std::vector<PrinterOp> ops = PrinterOpsOf(config);
  if (ops.empty()) {
    MessageBox("drukarka fiskalna nie jest używana."_mz, 0);
    return;
  }
  ShortText options;
  for (PrinterOp op : ops) options += (options.Empty() ? ShortText() : ShortText("@")) + OperationTitle(op);
  for (int16_t at = 1;;) {
    unsigned char ch = 0, scan = 0;
    at = PickList(1, at, 1, 0, 0, "Wybierz operację drukarki fiskalnej:"_mz, options, ch, scan);
    if (at <= 0) return;
    RunOperation(config, ops[static_cast<std::size_t>(at - 1)]);
  }
}

PosnetClock ComputerClock() {
  const std::time_t now = std::time(nullptr);
  std::tm local{};
  localtime_r(&now, &local);
  return PosnetClock{local.tm_year % 100, local.tm_mon + 1, local.tm_mday, local.tm_hour, local.tm_min};
}

ShortText PrinterClockText(const PosnetClock& clock) {
  return DateFromParts(clock.day, clock.month, 2000 + clock.year) + " " + TimeText(clock.hour, clock.minute);
}

ShortText DateInWords(int day, int month, int year) {
  static const ShortText kMonths[] = {"stycznia"_mz, "lutego"_mz,  "marca"_mz,     "kwietnia"_mz,
                                      "maja"_mz,     "czerwca"_mz, "lipca"_mz,     "sierpnia"_mz,
                                      "września"_mz, "października"_mz, "listopada"_mz, "grudnia"_mz};
  if (month < 1 || month > 12) return DateFromParts(day, month, year);
  return IntText(day, 0) + " " + kMonths[month - 1] + " " + IntText(year, 0);
}
