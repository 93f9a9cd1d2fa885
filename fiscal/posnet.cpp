#include "fiscal/posnet.h"

#include "fiscal/serial.h"

namespace {

constexpr double kShortWait = 10;  // seconds for most commands
constexpr double kLongWait = 30;   // closing a receipt and the reports
constexpr double kSendLimit = 1;   // seconds for a message to leave
constexpr double kFrameLimit = 10; // seconds for the status record to come
constexpr double kDrainLimit = 0.5;
// Seconds for the status byte of the check before a receipt: a printer that is
// off must not hold the server's start for long; the receipt's own commands wait
// their full time and report it.
constexpr double kSettleWait = 3;
constexpr std::size_t kLongestReply = 1024;  // a reply frame longer than this is no reply

struct PosnetDriver {
  PosnetSettings settings;
  ShortText receiptNumber;
};

PosnetDriver& Driver() {
  static PosnetDriver driver;
  return driver;
}

bool PortClosed() { return PosnetLine().portClosed; }

// Sends a framed command body and asks for its status, unless the port is closed.
int Command(const std::string& body, double wait) {
  if (PortClosed()) return -5;
  return PosnetFrame(body, wait);
}

// Waits for a status byte; other bytes are passed over. -1 when time runs out.
int WaitForStatusByte() {
  for (;;) {
    int b = PosnetGetByteWaiting();
    if (b < 0 || IsPosnetStatusByte(b)) return b;
  }
}

// Takes away the answer to the second ENQ, and status bytes already received behind it.
// It stops when nothing more is at hand rather than reading the line dry: a read that
// finds nothing marks the line failed, and a healthy job must leave the port open.
void DrainSecondAnswer() {
  SetTimeout(kDrainLimit);
  int b = PosnetGetByteWaiting();
  while (IsPosnetStatusByte(b) && PosnetHasBufferedByte()) b = PosnetGetByte();
}

// Takes away what the printer still sends to a sender that is gone (the answers
// to a killed server's enquiries come after the port's flush): the first status
// byte read next must answer this process's question.
void DiscardUntilQuiet() {
  constexpr double kQuietLimit = 0.15;
  constexpr int kMostBytes = 4096;
  int n = 0;
  do {
    SetTimeout(kQuietLimit);
  } while (PosnetGetByteWaiting() >= 0 && ++n < kMostBytes);
}

}  // namespace

PosnetSettings& PosnetConfig() { return Driver().settings; }
const ShortText& ReceiptNumberText() { return Driver().receiptNumber; }

int PosnetFrame(std::string_view body, double wait) {
  if (PortClosed()) return -5;
  if (PosnetSend(kSendLimit, PosnetCheckedFrame(body)) != 0) return -1;
  return PosnetResult(wait);
}

int PosnetEnquire(double wait) {
  // An answer that came after its drain gave up (a printer slowed by a busy
  // machine) must not stand for the answer to this enquiry.
  PosnetDiscardReceived();
  const char enq[] = {kPosnetEnq};
  if (PosnetSend(kSendLimit, {enq, 1}) != 0) return -1;
  if (PosnetSend(kSendLimit, {enq, 1}) != 0) return -1;
  SetTimeout(wait);
  int status = WaitForStatusByte();
  if (status < 0) return -2;
  DrainSecondAnswer();
  return status;
}

int PosnetResult(double wait) {
  int status = PosnetEnquire(wait);
  if (status < 0) return status;
  if (status & kPosnetAccepted) return 0;
  if (PosnetSend(kSendLimit, PosnetPlainFrame("0#s")) != 0) return -1;
  std::string reply;
  int read = PosnetReadFrame(kFrameLimit, reply);
  if (read == -2) return -2;
  auto record = read == 0 ? ParsePosnetStatusRecord(reply) : std::nullopt;
  if (!record) return -3;
  long code = record->ErrorCode();
  if (code == 0) return -7;
  return code > 32767 || code < -32768 ? 32767 : static_cast<int>(code);
}

int PosnetReadFrame(double seconds, std::string& collected) {
  collected.clear();
  SetTimeout(seconds);
  int b;
  do {
    b = PosnetGetByteWaiting();
    if (b < 0) return -2;
  } while (b != kPosnetEsc);
  for (;;) {
    b = PosnetGetByteWaiting();
    if (b < 0) return -2;
    if (b == kPosnetEsc) break;
    if (collected.size() >= kLongestReply) return -3;
    collected += static_cast<char>(b);
  }
  if (PosnetGetByteWaiting() != '\\') return -2;
  return collected.starts_with('P') ? 0 : -3;
}

int PosnetModeX(int n) { return Command(PosnetNumber(n) + "#x", kShortWait); }

int PosnetErrorMode(int n) { return Command(PosnetNumber(n) + "#e", kShortWait); }

int PosnetSetClock(int y, int m, int d, int h, int mi) {
  std::string body;
  for (int v : {y, m, d, h, mi}) body += PosnetNumber(v) + ";";
  return Command(body + "0$c", kShortWait);
}

int PosnetBeginReceipt(int lines, const ShortText& a, const ShortText& b, const ShortText& c) {
  if (PortClosed()) return -5;
  PosnetDriver& drv = Driver();
  PosnetLineBlock block;
  if (drv.settings.oldFirmware) {
    drv.receiptNumber.Clear();
    block = LineBlock(a, b, c);
  } else {
    drv.receiptNumber = b.Copy(1, 10);
    block = LineBlock(a, ShortText(), c);
  }
  return PosnetFrame(PosnetBeginReceiptBody(lines, block), kShortWait);
}

int PosnetReceiptLine(int i, const ShortText& name, const ShortText& qty, const ShortText& vat,
                      int64_t price, int64_t value) {
  return Command(PosnetReceiptLineBody(i, name, qty, vat, price, value), kShortWait);
}

int PosnetReceiptLineDiscount(int i, int kind, const ShortText& name, const ShortText& qty,
                              const ShortText& vat, const ShortText& text, int64_t price,
                              int64_t value) {
  return Command(PosnetReceiptLineDiscountBody(i, kind, name, qty, vat, text, price, value),
                 kShortWait);
}

int PosnetEndReceipt(const ShortText& a, const ShortText& b, const ShortText& c,
                     const ShortText& d, const ShortText& e, int64_t paid, int64_t total) {
  PosnetLineBlock block;
  if (Driver().settings.oldFirmware) {
    block = LineBlock(c, d, e);
  } else {
    PosnetFoot foot = PosnetNewFirmwareFoot(Driver().receiptNumber, c, d);
    block = LineBlock(foot.c, foot.d, foot.e);
  }
  return Command(PosnetEndReceiptBody(a, b, block, paid, total), kLongWait);
}

int PosnetEndReceiptDiscount(int n, int p, int q, const ShortText& b, const ShortText& c,
                             const ShortText& d, const ShortText& e, int64_t paid,
                             int64_t total, int64_t discount) {
  return Command(
      PosnetEndReceiptDiscountBody(n, p, q, b, LineBlock(c, d, e), paid, total, discount),
      kLongWait);
}

int PosnetPrintLine(const ShortText& text) { return Command(PosnetPrintLineBody(text), kShortWait); }

int PosnetCancelReceipt() {
  if (PortClosed()) return -5;
  const char can[] = {kPosnetCan};
  if (PosnetSend(kSendLimit, {can, 1}) != 0) return -1;
  if (PosnetSend(kSendLimit, PosnetCheckedFrame("0$e")) != 0) return -1;
  int status = PosnetEnquire(1);
  if (status < 0) return status;
  return (status & kPosnetInTransaction) ? -8 : 0;
}

ReceiptSettle PosnetSettleReceipt() {
  if (PortClosed()) return ReceiptSettle::kNoAnswer;
  const char can[] = {kPosnetCan};
  if (PosnetSend(kSendLimit, {can, 1}) != 0) return ReceiptSettle::kNoAnswer;
  DiscardUntilQuiet();
  const int status = PosnetEnquire(kSettleWait);
  if (status < 0) return ReceiptSettle::kNoAnswer;
  if (!(status & kPosnetInTransaction)) return ReceiptSettle::kNoneOpen;
  switch (PosnetCancelReceipt()) {
    case 0: return ReceiptSettle::kCancelled;
    case -8: return ReceiptSettle::kStillOpen;
    default: return ReceiptSettle::kNoAnswer;
  }
}

int PosnetCashIn(int64_t amount) { return Command("0#i" + MoneyField(amount), kShortWait); }

int PosnetCashOut(int64_t amount) { return Command("0#d" + MoneyField(amount), kShortWait); }

int PosnetCommandT() { return Command("0#t", kShortWait); }

int PosnetCommandK(const ShortText& a, const ShortText& b) {
  std::string body = "0#k";
  body.append(a.View());
  body += kPosnetCr;
  body.append(b.View());
  body += kPosnetCr;
  return Command(body, kLongWait);
}

int PosnetDailyReportCommand() { return Command("0#r", kLongWait); }

int PosnetPeriodReportCommand(int y1, int m1, int d1, int y2, int m2, int d2) {
  if (PortClosed()) return -5;
  if (PosnetPeriodDayNumber(y1, m1, d1) >= PosnetPeriodDayNumber(y2, m2, d2)) return -6;
  std::string body;
  for (int v : {y1, m1, d1, y2, m2}) body += PosnetNumber(v) + ";";
  return PosnetFrame(body + PosnetNumber(d2) + "#o", kLongWait);
}

int PosnetDisplayText(int n, const ShortText& text) {
  if (PortClosed()) return -5;
  return PosnetSend(kSendLimit, PosnetDisplayFrame(n, text)) != 0 ? -1 : 0;
}

int PosnetReadClock(PosnetClock& clock) {
  if (PortClosed()) return -5;
  if (PosnetSend(kSendLimit, PosnetPlainFrame("0#c")) != 0) return -2;
  std::string reply;
  if (PosnetReadFrame(2, reply) != 0) return -2;
  auto parsed = ParsePosnetClock(reply);
  if (!parsed) return -2;
  clock = *parsed;
  return 0;
}

bool PosnetErrorText(int code, ShortText& text) {
  text.Clear();
  if (code == -8 && Driver().settings.otherThanPosnet == 0) code = 0;
  if (code == 0) return false;
  text = PosnetErrorMessage(code);
  (void)PosnetCancelReceipt();
  return true;
}
