#include "server/posnet_jobs.h"

#include "base/codepage.h"
#include "base/csv.h"
#include "base/mazovia.h"
#include "base/numbers.h"
#include "base/numbers_format.h"
#include "fiscal/jobs_amounts.h"
#include "fiscal/posnet.h"
#include "fiscal/serial.h"
#include "server/job_records.h"
#include "server/jobs.h"

namespace {

// These characters of a DD-MM-YYYY date are read as the POSNET report's year: the
// century digits. The printer is given them as they are.
constexpr int kPosnetYearPos = 7;
constexpr Real kLargestGrosz = 9.0e18L;

// A grosz amount as an integer; beyond the 64-bit range it is held at the limit.
int64_t GroszInt(Real grosz) {
  if (!(grosz > -kLargestGrosz)) return static_cast<int64_t>(-kLargestGrosz);
  if (!(grosz < kLargestGrosz)) return static_cast<int64_t>(kLargestGrosz);
  return static_cast<int64_t>(grosz);
}

ShortText Fixed(const ShortText& text, int width) {
  ShortText out = text.Copy(1, width);
  while (out.Length() < width) out += ' ';
  return out;
}

// The i-th sale line (from 1) of a CSV record: name, quantity, VAT letter, price.
int SendSaleLine(int i, const ShortText& record, int width) {
  const Real quantity = CsvFieldReal(record, 2);
  const Real price = CsvFieldReal(record, 4);
  return PosnetReceiptLine(i, Fixed(CsvField(record, 1), width), FormatShortest(23, quantity),
                           CsvField(record, 3).Copy(1, 1), GroszInt(PriceGrosz(price)),
                           GroszInt(PosnetLineValueGrosz(quantity, price)));
}

// Steps of a receipt after the job is read; false (the text told) at the first failure.
bool PrintReceipt(const JobRequest& job, const ReceiptJob& receipt, ShortText& text) {
  const int width = PosnetReceiptWidth(job.family);
  PosnetOpen(job.port);
  if (!NoteSettledReceipt(PosnetSettleReceipt(), text)) return false;
  if (PosnetCheck(text, PosnetModeX(1)) || PosnetCheck(text, PosnetErrorMode(1))) return false;
  // A drawer on the printer opens at the start of each receipt.
  if (job.drawerFlag == 1 && PosnetCheck(text, PosnetDisplayText(1, "SZUFLADA"))) return false;
  if (PosnetCheck(text, PosnetBeginReceipt(receipt.lines, CentredLine(job.heading, width), receipt.documentNumber, "")))
    return false;
  for (int i = 0; i < receipt.lines; ++i)
    if (PosnetCheck(text, SendSaleLine(i + 1, receipt.line[i], width))) return false;
  const int64_t total = GroszInt(RoundHalfAway(receipt.total));
  const bool cash = IsCashPayment(receipt.paymentForm);
  const ShortText payment = cash ? ShortText() : "zapłata: "_mz + receipt.paymentForm;
  return !PosnetCheck(text, PosnetEndReceipt("0", receipt.cashierCode, PosnetFooterText(job.family), payment, "",
                                             cash ? total : 0, total));
}

// Open, error mode 1 and the job's command, each checked, then the close; false
// (the text told) at the first failure.
template <typename Command>
bool RunPosnetCommand(const JobRequest& job, ShortText& text, Command command) {
  PosnetConfig().oldFirmware = job.oldFirmware;
  PosnetOpen(job.port);
  if (PosnetCheck(text, PosnetErrorMode(1)) || PosnetCheck(text, command())) return false;
  PosnetClose();
  return true;
}

}  // namespace

int PosnetReceiptWidth(int family) { return family == 3 ? 24 : 40; }

ShortText CentredLine(const ShortText& text, int width) {
  const ShortText cut = text.Copy(1, width);
  ShortText line = Fixed("", (width - cut.Length()) / 2) + cut;
  return Fixed(line, width);
}

ShortText PosnetFooterText(int family) {
  return family == 3 ? ShortText("zachowaj do ew.reklamacji") : ShortText("** zachowaj paragon do ew. reklamacji **");
}

bool IsCashPayment(const ShortText& paymentForm) { return paymentForm == " gotówką"_mz; }

bool PosnetCheck(ShortText& resultText, int code) {
  if (code == 0) return false;
  ShortText error;
  if (!PosnetErrorText(code, error)) return false;  // -8 of another maker is no error
  resultText += "@" + MazToAscii(error);
  PosnetClose();
  return true;
}

uint8_t PosnetReceipt(JobRequest& job) {
  ShortText& text = *job.resultText;
  text = "PARAGON";
  PosnetConfig().oldFirmware = job.oldFirmware;
  static ReceiptJob receipt;  // 50 lines of 256 bytes: kept off the stack
  if (!ReadReceiptJob(*job.file, receipt) || !PrintReceipt(job, receipt, text)) return kJobReceipt;
  PosnetClose();
  return 0;
}

uint8_t PosnetDailyReport(JobRequest& job) {
  ShortText& text = *job.resultText;
  text = "RAPORT DOBOWY";
  return RunPosnetCommand(job, text, [] { return PosnetDailyReportCommand(); }) ? 0 : kJobDailyReport;
}

uint8_t PosnetPeriodReport(JobRequest& job) {
  ShortText& text = *job.resultText;
  text = "RAPORT OKRESOWY";
  PeriodJob period;
  if (!ReadPeriodJob(*job.file, period)) return kJobPeriodReport;
  text += " " + period.flag + " " + period.dateFrom + " - " + period.dateTo + " ";
  int from[3], to[3];
  if (!ParseDateFields(period.dateFrom, kPosnetYearPos, from) || !ParseDateFields(period.dateTo, kPosnetYearPos, to))
    return kJobPeriodReport;
  const auto report = [&] { return PosnetPeriodReportCommand(from[0], from[1], from[2], to[0], to[1], to[2]); };
  return RunPosnetCommand(job, text, report) ? 0 : kJobPeriodReport;
}

uint8_t PosnetDrawer(JobRequest& job) {
  ShortText& text = *job.resultText;
  text = "SZUFLADA";
  if (job.drawerFlag != 1) return kJobDrawer;
  return RunPosnetCommand(job, text, [] { return PosnetDisplayText(1, "SZUFLADA"); }) ? 0 : kJobDrawer;
}

ReceiptSettle PosnetSettleAtPort(int port) {
  PosnetOpen(port);
  const ReceiptSettle settle = PosnetSettleReceipt();
  PosnetClose();
  return settle;
}
