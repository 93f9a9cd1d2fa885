// The printer families the server can drive, and the dispatch of a job to the
// handler of its family and kind. A family without an entry has its jobs
// recognised and deleted, and nothing reaches a printer.
#pragma once

#include <cstdint>

#include "base/jobfile.h"
#include "fiscal/settle.h"

// The job handlers of one printer family, and what the exit procedure must do
// for its line (close a port, give its settings back, release it).
struct FamilyJobs {
  int family = 0;
  JobHandler receipt = nullptr;
  JobHandler dailyReport = nullptr;
  JobHandler periodReport = nullptr;
  JobHandler drawer = nullptr;
  void (*releaseLine)() = nullptr;
  // Brings the printer on the port out of a receipt left open (at the start).
  ReceiptSettle (*settleReceipt)(int port) = nullptr;
};

// The entry of the family, or null when the family drives no printer.
const FamilyJobs* FindFamilyJobs(int family);
// Runs the handler of the job's family and kind; gives JobResult (0 when no
// handler runs: another family, kind 0 or 255).
uint8_t DispatchJob(uint8_t kind, JobRequest& job);
// Releases the lines of every family (for the exit procedure; signal safe
// as far as the families' release functions are).
void ReleaseAllLines();
// At the start, for each printer (a family and port met first in the rows):
// cancels a receipt left open in it and writes a line when one was.
struct PrinterRows;
void SettlePrintersAtStart(const PrinterRows& rows);
