// The printer operations of the menu: daily and period reports, the clock
// and the drawer, each by the route of the configured printer type. POSNET
// and ELZAB are driven from this process; a printer of the fiscal print
// server gets a job file (RAPDOB, RAPOKR, SZUFLA) written in the order that
// never shows the server half a job. Every operation asks the operator what
// its dialog asks and tells failures in a message box; none of them changes
// a document.
#pragma once

#include <cstdint>
#include <vector>

#include "base/shorttext.h"
#include "fiscal/fiscalconfig.h"
#include "fiscal/posnet_wire.h"

// The operations that the menu offers for a printer type, in the order of its list.
enum class PrinterOp : uint8_t { kDailyReport, kPeriodReport, kClock, kDrawer };
// The operations the type has: the clock only on POSNET, the drawer where one may hang.
std::vector<PrinterOp> PrinterOpsOf(const FiscalConfig& config);

// Daily report, asked first ("Czy wykonać raport dobowy ?"; on POSNET with the
// computer's and the printer's clock). True when the printer or the server took it.
bool FiscalDailyReport(const FiscalConfig& config);
// Period report: asks the period (from the first of this month to today) and,
// on ELZAB and the server, whether it is fiscal. True when sent.
bool FiscalPeriodReport(const FiscalConfig& config);
// POSNET: sets the printer's clock to now after the question. True when set.
bool FiscalClockSync(const FiscalConfig& config, const PosnetClock& now);
// Opens the drawer (direct routes only with the drawer flag on). True when sent.
bool FiscalDrawer(const FiscalConfig& config);
// The menu entry's list of the operations of the current printer.
void FiscalPrinterMenu(const FiscalConfig& config);

// The system clock as the POSNET printer takes it (year in two digits).
PosnetClock ComputerClock();
// "DD-MM-RRRR GG.MM" of a printer's clock (its two-digit year in the 2000s).
ShortText PrinterClockText(const PosnetClock& clock);
// The date in words: day, month's name in the genitive, year ("5 stycznia 2024").
ShortText DateInWords(int day, int month, int year);

// A report or drawer job for the server: the keyword of the kind, the data
// records and ESC "KONIEC", published by the one write of record 1; then the
// server is started and, unless a one-shot row is configured, 5000 ms waited.
// True when published (false when refused or not written).
bool SubmitPrinterJob(const FiscalConfig& config, uint8_t kind, const std::vector<ShortText>& records);
