// The POSNET printer driver (POSNET DF-300/301/302, Thermal, NOVITUS, DUO-PRO).
// Every command builds a body, sends its frame, asks for the status and
// answers a code: 0 success, negative from the driver, positive from the printer.
//   -1 the bytes could not leave (long XOFF)   -2 no or bad status or frame
//   -3 a bad reply                             -5 the port is not open (nothing sent)
//   -6 the period is not valid                 -7 refused without an error code
//   -8 a transaction stayed open after the cancel
// The line itself is in fiscal/serial.h (PosnetOpen, PosnetClose, ...).
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "base/shorttext.h"
#include "fiscal/posnet_wire.h"
#include "fiscal/settle.h"

// Settings of the driver that come from the server's row or the fiscal configuration.
struct PosnetSettings {
  // OldFirmwareFlag: prints "PARAGON FISKALNY" itself, no discounts or numbers in the foot.
  bool oldFirmware = false;
  // "produkt inny, niz POSNET 1-nie 0-tak": 0 (another maker) makes code -8 no error.
  int otherThanPosnet = 0;
};

// The driver's settings, to be filled by the caller before the commands.
PosnetSettings& PosnetConfig();
// ReceiptNumberText: the document number kept from the head for the foot (new firmware).
const ShortText& ReceiptNumberText();

// Sends the framed body with a one-second limit, then answers PosnetResult(wait); -5 when closed.
[[nodiscard]] int PosnetFrame(std::string_view body, double wait);
// The status step: 0 when the printer accepted, else its error code, -1, -2, -3 or -7.
[[nodiscard]] int PosnetResult(double wait);
// Sends ENQ twice and answers the first status byte within wait seconds (-1, -2 on failure);
// the answer to the second ENQ is taken away within half a second.
[[nodiscard]] int PosnetEnquire(double wait);
// Reads one reply frame within seconds into collected ("P..." up to its closing ESC):
// 0, -2 when none or a bad end came, -3 when it does not start with "P".
[[nodiscard]] int PosnetReadFrame(double seconds, std::string& collected);

// n "#x" (its meaning is the printer's).
[[nodiscard]] int PosnetModeX(int n);
// n "#e": how the printer reports errors.
[[nodiscard]] int PosnetErrorMode(int n);
// Sets the printer's clock; y in two digits.
[[nodiscard]] int PosnetSetClock(int y, int m, int d, int h, int mi);
// Opens a receipt of the given lines with up to three head texts; b is the document
// number, which new firmware keeps for the foot instead of printing it here.
[[nodiscard]] int PosnetBeginReceipt(int lines, const ShortText& a, const ShortText& b,
                                     const ShortText& c);
// One sale line: name, quantity text, VAT letter, price and value in grosz.
[[nodiscard]] int PosnetReceiptLine(int i, const ShortText& name, const ShortText& qty,
                                    const ShortText& vat, int64_t price, int64_t value);
// The discount form of a sale line; the value goes out only when kind is not 0.
[[nodiscard]] int PosnetReceiptLineDiscount(int i, int kind, const ShortText& name,
                                            const ShortText& qty, const ShortText& vat,
                                            const ShortText& text, int64_t price, int64_t value);
// Closes the receipt with cashier code b and foot texts c, d, e; new firmware puts the
// kept number and the payment text d on the first foot line.
[[nodiscard]] int PosnetEndReceipt(const ShortText& a, const ShortText& b, const ShortText& c,
                                   const ShortText& d, const ShortText& e, int64_t paid,
                                   int64_t total);
// The discount form of the close; a discount amount goes out when p is not 0.
[[nodiscard]] int PosnetEndReceiptDiscount(int n, int p, int q, const ShortText& b,
                                           const ShortText& c, const ShortText& d,
                                           const ShortText& e, int64_t paid, int64_t total,
                                           int64_t discount);
// Prints a free line.
[[nodiscard]] int PosnetPrintLine(const ShortText& text);
// Sends CAN and "0$e": 0 when no transaction stays open, -8 when one does, -1, -2, -5.
[[nodiscard]] int PosnetCancelReceipt();
// Brings the printer to a known state before a receipt: CAN ends a frame that a
// killed sender left half sent, the status byte tells whether a receipt is open,
// and an open one is cancelled. Needs the port open (else kNoAnswer).
[[nodiscard]] ReceiptSettle PosnetSettleReceipt();
// Cash put into the drawer, in grosz.
[[nodiscard]] int PosnetCashIn(int64_t amount);
// Cash taken from the drawer, in grosz.
[[nodiscard]] int PosnetCashOut(int64_t amount);
// "0#t" (its meaning is the printer's).
[[nodiscard]] int PosnetCommandT();
// "0#k" a CR b CR (its meaning is the printer's).
[[nodiscard]] int PosnetCommandK(const ShortText& a, const ShortText& b);
// The daily fiscal report.
[[nodiscard]] int PosnetDailyReportCommand();
// The period report; -6 and nothing sent unless the from date is strictly earlier.
[[nodiscard]] int PosnetPeriodReportCommand(int y1, int m1, int d1, int y2, int m2, int d2);
// Shows text on display n without a status step (also opens the drawer): 0 when sent.
[[nodiscard]] int PosnetDisplayText(int n, const ShortText& text);
// Asks the printer's clock: 0 and the clock, or -2 (-5 with the port closed).
[[nodiscard]] int PosnetReadClock(PosnetClock& clock);

// The operator's text of a code: false and empty for no error (and for -8 from another
// maker); otherwise the message, after sending the cancel of the receipt.
[[nodiscard]] bool PosnetErrorText(int code, ShortText& text);
