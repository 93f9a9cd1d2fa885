// The POSNET wire format as pure functions over bytes: frames and their check
// value, amounts, text blocks, command bodies, the printer's replies, the
// receipt name filter and the error table. Nothing here touches a line.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "base/shorttext.h"

inline constexpr char kPosnetEsc = 0x1B;
inline constexpr char kPosnetEnq = 0x05;
inline constexpr char kPosnetBel = 0x07;
inline constexpr char kPosnetCan = 0x18;
inline constexpr char kPosnetCr = 0x0D;

// Status byte bits: bits 5 and 6 mark the byte, bit 2 the accepted command, bit 1 an open transaction.
inline constexpr int kPosnetStatusMark = 0x60;
inline constexpr int kPosnetAccepted = 0x04;
inline constexpr int kPosnetInTransaction = 0x02;

// True when b (a byte or -1) is a status byte: bits 5 and 6 both set.
bool IsPosnetStatusByte(int b);

// The two upper-case hexadecimal digits of 0xFF xor every byte of the body.
std::string PosnetCheckValue(std::string_view body);
// ESC "P" body check ESC "\": the frame of a command that has a check value.
std::string PosnetCheckedFrame(std::string_view body);
// ESC "P" body ESC "\": the frame of a message without a check value.
std::string PosnetPlainFrame(std::string_view body);

// Grosz written as zloty: 1234 "12.34/", 1205 "12.05/", 1200 "12/"; a negative amount gets "-".
std::string MoneyField(int64_t grosz);
// Decimal digits of an integer without padding, as numbers stand in a body.
std::string PosnetNumber(long value);

// Head or foot lines: every non-empty text followed by CR, and how many there were.
struct PosnetLineBlock {
  int count = 0;
  std::string text;
};
PosnetLineBlock LineBlock(const ShortText& a, const ShortText& b, const ShortText& c);

// Bodies of the commands (see posnet.h for what each command does).
std::string PosnetReceiptLineBody(int i, const ShortText& name, const ShortText& qty,
                                  const ShortText& vat, int64_t price, int64_t value);
std::string PosnetReceiptLineDiscountBody(int i, int kind, const ShortText& name,
                                          const ShortText& qty, const ShortText& vat,
                                          const ShortText& text, int64_t price, int64_t value);
std::string PosnetBeginReceiptBody(int lines, const PosnetLineBlock& block);
std::string PosnetEndReceiptBody(const ShortText& a, const ShortText& b,
                                 const PosnetLineBlock& block, int64_t paid, int64_t total);
std::string PosnetEndReceiptDiscountBody(int n, int p, int q, const ShortText& b,
                                         const PosnetLineBlock& block, int64_t paid,
                                         int64_t total, int64_t discount);
std::string PosnetPrintLineBody(const ShortText& text);
// The bytes of a display message: text gets FF in front and LF CR behind unless it has them.
std::string PosnetDisplayFrame(int n, const ShortText& text);

// The foot texts of new firmware: c becomes "#" number (or "#x"), joined with the
// payment text d in capitals, e takes the old c. Old firmware leaves them as given.
struct PosnetFoot {
  ShortText c, d, e;
};
PosnetFoot PosnetNewFirmwareFoot(const ShortText& receiptNumber, const ShortText& c,
                                 const ShortText& d);

// y * 1000 + month * 50 + day, with y + 100 for years below 50: the order of report dates.
long PosnetPeriodDayNumber(int y, int m, int d);

// The printer's reply to the status query. Only errorCode is used by the system.
struct PosnetStatusRecord {
  long integers[9] = {};
  int rateCount = 0;  // r: the record has r - 1 rates and r amounts
  long double rates[16] = {};
  long receiptCount = 0;
  long double amounts[16] = {};
  long double cash = 0;
  std::string text;
  long ErrorCode() const { return integers[0]; }
  bool AmountsInGrosz() const { return integers[4] == 1; }
};
// Parses the collected text of a reply frame ("P..." up to the closing ESC); empty when
// the text is no status record.
std::optional<PosnetStatusRecord> ParsePosnetStatusRecord(std::string_view collected);

struct PosnetClock {
  int year = 0, month = 0, day = 0, hour = 0, minute = 0;  // year in two digits
};
// Five integers from the fifth character of a clock reply; empty when they are not there.
std::optional<PosnetClock> ParsePosnetClock(std::string_view collected);

// A receipt name that the printer takes: at least 10 plain letters and digits where possible.
ShortText PosnetCleanName(const ShortText& name);

// The explanation of a code from the printer's error table, without quotes.
ShortText PosnetErrorTableText(int code);
// "Błąd drukarki fiskalnej nr <code>:@`<text>"." as the operator sees it.
ShortText PosnetErrorMessage(int code);
