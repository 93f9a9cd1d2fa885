// The ELZAB printer protocol (ELZAB FP-600, Omega): unframed commands of ESC and
// a command byte, binary amounts least significant byte first, one response
// byte per command (only NAK, 21, is a refusal) and two status bytes that tell
// why a command was refused. Texts go out in CP852. The byte line is in
// fiscal/elzab_line.h.
#pragma once

#include <cstdint>
#include <string>

#include "base/real.h"
#include "base/shorttext.h"
#include "fiscal/settle.h"

inline constexpr uint8_t kElzabNak = 21;

// Customer display types of the fiscal configuration: 0 none, 1 LED of nine digits.
inline constexpr int kElzabDisplayNone = 0;
inline constexpr int kElzabDisplayLed = 1;

// Settings of the ELZAB protocol that come from the fiscal configuration.
struct ElzabSettings {
  int displayType = kElzabDisplayNone;  // ElzabDisplayAmount works only when not 0
};
// The protocol's settings, one for the process.
ElzabSettings& ElzabConfig();

// Four bytes of a signed 32-bit amount rounded half away from zero, least significant
// first; outside -2147483647..2147483647 (and NaN) the four bytes 0xFF.
std::string ElzabAmount32(Real value);
// Tax code of a VAT letter's first character: A..D 1..4, Z (exempt) 5, E 6, F 7, else 1.
uint8_t ElzabTaxCode(const ShortText& letter);

// One sale line as it goes to the printer: texts already in CP852.
struct ElzabSaleLine {
  ShortText name;     // cut and padded to 28 bytes by the command
  Real quantity = 0;  // the quantity times 10^decimals, whole
  uint8_t decimals = 0;
  ShortText unit;     // cut and padded to 4 bytes by the command
  Real priceGrosz = 0;
  uint8_t taxCode = 1;
  Real valueGrosz = 0;
};

// ESC 0x20 and the total in grosz: opens a receipt.
std::string ElzabOpenReceiptCommand(Real totalGrosz);
// ESC 0x06 0x20 and the 48 bytes of a sale line.
std::string ElzabSaleLineCommand(const ElzabSaleLine& line);
// ESC 0x07: the end of the items.
std::string ElzabEndItemsCommand();
// ESC 0x09, the digit, the text and a line feed (6 number, 2 payment form, 5 cashier).
std::string ElzabFreeTextCommand(char digit, const ShortText& text);
// ESC "$": closes the receipt.
std::string ElzabCloseReceiptCommand();
// ESC "#": cancels the open receipt.
std::string ElzabCancelCommand();
// ESC "%": the daily report.
std::string ElzabDailyReportCommand();
// ESC "(" (fiscal) or ")" (plain) and the twelve digit values of from and to, each
// date as year, month, day in tens and units; false when a value is not 0..99.
[[nodiscard]] bool ElzabPeriodReportCommand(bool fiscal, const int from[3], const int to[3], std::string& command);
// ESC "W": opens the drawer.
std::string ElzabDrawerCommand();

// The text of a status byte pair: the first set bit of the first byte from the lowest
// up, else of the second, else "błąd nie sklasyfikowany" (Mazovia).
ShortText ElzabStatusByteText(uint8_t first, uint8_t second);
// Asks the printer why it refused (ESC 0x94, and ESC 0x95 when the first byte is 0);
// a line time-out gives "błąd łącza szeregowego przy próbie kontroli błędu drukarki".
ShortText ElzabStatusText(int port);
// The amount text as the customer display shows it: blanks stripped, the first 10
// characters when it holds a point or comma, else 9, and a line feed.
ShortText ElzabDisplayText(const ShortText& text);
// Shows the amount on the customer display (only with a display configured); each
// step that times out stops it.
void ElzabDisplayAmount(int port, const ShortText& text);

// After a sent command: " Timeout nadawania." when the send timed out; else reads the
// response byte, and a NAK gives "@Blad drukarki ELZAB.@(" + status text in plain
// letters + ")". True when the command passed; text is empty then.
[[nodiscard]] bool ElzabResponse(int port, ShortText& text);
// Sends the command and reads its response; on failure sends the cancel (while the line
// works), purges and appends "@" and the response's text to resultText. True on failure.
[[nodiscard]] bool ElzabCommand(int port, const std::string& command, ShortText& resultText);

// Brings the printer to a known state before a receipt, whatever a killed sender
// left in it: line feeds end a half-received command (a free text ends at the
// first, a fixed one is filled; outside a command they are passed over), the
// answers are taken away, then the cancel (refused when no receipt is open), then
// the first status byte, whose bit 1 tells that a document is still held.
[[nodiscard]] ReceiptSettle ElzabSettleReceipt(int port);
