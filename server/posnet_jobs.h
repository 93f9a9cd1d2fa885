// The job handlers of the POSNET family (family 2: 40-column receipts, family 3:
// 24-column receipts): receipt, daily report, period report and drawer. Each
// fills the job's result text with the job's name and what went wrong, and gives
// JobResult: 0, or the job kind on failure.
#pragma once

#include <cstdint>

#include "base/jobfile.h"
#include "base/shorttext.h"
#include "fiscal/settle.h"

// Receipt width of the family: 24 for family 3, 40 otherwise.
int PosnetReceiptWidth(int family);
// The text centred in a blank line of the width (cut to it when longer).
ShortText CentredLine(const ShortText& text, int width);
// The retention footer of the family's width.
ShortText PosnetFooterText(int family);
// True for exactly " gotówką": the only form of cash payment.
bool IsCashPayment(const ShortText& paymentForm);

// 0 passes; otherwise appends "@" and the code's error text in plain letters (the
// error text operation sends the cancel), closes the port and gives true.
[[nodiscard]] bool PosnetCheck(ShortText& resultText, int code);

// Prints the receipt of the job at the width of its family.
uint8_t PosnetReceipt(JobRequest& job);
// Prints the daily report.
uint8_t PosnetDailyReport(JobRequest& job);
// Appends " <flag> <from> - <to> " to the result text and prints the period report,
// the year read from characters 7 and 8 of each date.
uint8_t PosnetPeriodReport(JobRequest& job);
// Opens the drawer; refused at once unless the row's drawer flag is 1.
uint8_t PosnetDrawer(JobRequest& job);
// Opens the port and brings the printer out of a receipt left open.
ReceiptSettle PosnetSettleAtPort(int port);
