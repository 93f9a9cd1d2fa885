// The job handlers of the ELZAB family (family 1): receipt, daily report,
// period report and drawer. Each fills the job's result text with the job's
// name and what went wrong, and gives JobResult: 0, or the job kind on failure.
#pragma once

#include <string>
#include <vector>

#include "base/jobfile.h"

// The commands of a receipt job, in the order they go to the printer: open
// with the total, the sale lines, end of items, the document number (only when
// given), the payment form, the cashier and the close.
std::vector<std::string> ElzabReceiptCommands(const ReceiptJob& receipt);

// Prints the receipt; a refused command is followed by the cancel.
uint8_t ElzabReceipt(JobRequest& job);
// Prints the daily report; a refusal replaces the result text by the printer's.
uint8_t ElzabDailyReport(JobRequest& job);
// Writes "<flag> <from> - <to> " to standard output, then prints the period
// report (ESC "(" for FISK, ESC ")" otherwise).
uint8_t ElzabPeriodReport(JobRequest& job);
// Opens the drawer; refused at once unless the row's drawer flag is 1.
uint8_t ElzabDrawer(JobRequest& job);
// The exit procedure's step: marks the line as released.
void ElzabReleaseAtExit();
