#include "server/elzab_jobs.h"

#include "base/codepage.h"
#include "base/csv.h"
#include "base/mazovia.h"
#include "fiscal/elzab.h"
#include "fiscal/elzab_line.h"
#include "fiscal/jobs_amounts.h"
#include "server/job_records.h"
#include "server/jobs.h"
#include "server/output.h"

namespace {

constexpr int kNameBytes = 28;
// The year of an ELZAB period report date is read from its last two digits.
constexpr int kElzabYearPos = 9;

bool TimedOut() { return ElzabLine().timedOut; }

// CSV line: name, quantity, VAT letter, price, unit.
std::string SaleLineCommand(const ShortText& record) {
  const ShortText vat = CsvField(record, 3);
  const Real quantity = CsvFieldReal(record, 2);
  const Real price = CsvFieldReal(record, 4);
  const ElzabQuantity q = ElzabQuantityOf(quantity);
  ElzabSaleLine line;
  line.name = MazToLatin2(CsvField(record, 1)).Copy(1, kNameBytes - vat.Length()) + vat;
  line.quantity = q.value;
  line.decimals = q.decimals;
  line.unit = MazToLatin2(MazLowCaseText(CsvField(record, 5)));
  line.priceGrosz = PriceGrosz(price);
  line.taxCode = ElzabTaxCode(vat);
  line.valueGrosz = ElzabLineValueGrosz(quantity, price);
  return ElzabSaleLineCommand(line);
}

// Open, purge and send the report command; "@Timeout nadawania." after a step that
// timed out.
bool SendReportCommand(int port, const std::string& command, ShortText& text) {
  ElzabOpen(port);
  if (!TimedOut()) ElzabPurge(port);
  if (!TimedOut()) ElzabSendText(port, command);
  if (!TimedOut()) return true;
  text += "@Timeout nadawania.";
  return false;
}

}  // namespace

std::vector<std::string> ElzabReceiptCommands(const ReceiptJob& receipt) {
  std::vector<std::string> commands;
  commands.push_back(ElzabOpenReceiptCommand(receipt.total));
  for (int i = 0; i < receipt.lines; ++i) commands.push_back(SaleLineCommand(receipt.line[i]));
  commands.push_back(ElzabEndItemsCommand());
  if (!receipt.documentNumber.Empty())
    commands.push_back(ElzabFreeTextCommand('6', MazToLatin2(receipt.documentNumber)));
  commands.push_back(ElzabFreeTextCommand('2', MazToLatin2(receipt.paymentForm) + " "));
  // The cashier goes through the conversion twice: the printer expects it so.
  commands.push_back(ElzabFreeTextCommand('5', MazToLatin2(" " + MazToLatin2(receipt.cashierName) + ".")));
  commands.push_back(ElzabCloseReceiptCommand());
  return commands;
}

uint8_t ElzabReceipt(JobRequest& job) {
  ShortText& text = *job.resultText;
  text = "PARAGON";
  static ReceiptJob receipt;  // 50 lines of 256 bytes: kept off the stack
  if (!ReadReceiptJob(*job.file, receipt)) return kJobReceipt;
  ElzabOpen(job.port);
  if (TimedOut()) {
    text += " Blad inicjacji portu.";
    return kJobReceipt;
  }
  ElzabPurge(job.port);
  if (TimedOut()) {
    text += " Przeterminowanie przy czyszczeniu portu.";
    return kJobReceipt;
  }
  if (!NoteSettledReceipt(ElzabSettleReceipt(job.port), text)) return kJobReceipt;
  for (const std::string& command : ElzabReceiptCommands(receipt))
    if (ElzabCommand(job.port, command, text)) return kJobReceipt;
  ElzabPurge(job.port);
  // The receipt is printed already: a late time-out is told, not failed.
  if (TimedOut()) text += "@Przeterminowanie czyszczenia portu po wyslaniu paragonu.";
  return 0;
}

uint8_t ElzabDailyReport(JobRequest& job) {
  ShortText& text = *job.resultText;
  text = "RAPORT DOBOWY";
  if (!SendReportCommand(job.port, ElzabDailyReportCommand(), text)) return kJobDailyReport;
  ShortText refusal;
  const bool accepted = ElzabResponse(job.port, refusal);
  if (!accepted) text = refusal;
  ElzabPurge(job.port);
  return accepted ? 0 : kJobDailyReport;
}

uint8_t ElzabPeriodReport(JobRequest& job) {
  ShortText& text = *job.resultText;
  text = "RAPORT OKRESOWY";
  PeriodJob period;
  if (!ReadPeriodJob(*job.file, period)) return kJobPeriodReport;
  WriteOut(period.flag + " " + period.dateFrom + " - " + period.dateTo + " ");
  int from[3], to[3];
  std::string command;
  if (!ParseDateFields(period.dateFrom, kElzabYearPos, from) || !ParseDateFields(period.dateTo, kElzabYearPos, to) ||
      !ElzabPeriodReportCommand(period.flag == "FISK", from, to, command))
    return kJobPeriodReport;
  if (!SendReportCommand(job.port, command, text)) return kJobPeriodReport;
  ShortText refusal;
  const bool accepted = ElzabResponse(job.port, refusal);
  if (!accepted) text += refusal;
  ElzabPurge(job.port);
  return accepted ? 0 : kJobPeriodReport;
}

uint8_t ElzabDrawer(JobRequest& job) {
  *job.resultText = "SZUFLADA";
  if (job.drawerFlag != 1) return kJobDrawer;
  ElzabOpen(job.port);
  if (!TimedOut()) ElzabPurge(job.port);
  if (!TimedOut()) ElzabSendText(job.port, ElzabDrawerCommand());
  if (!TimedOut()) ElzabPurge(job.port);
  return TimedOut() ? kJobDrawer : 0;
}

void ElzabReleaseAtExit() { ElzabLine().ready = true; }
