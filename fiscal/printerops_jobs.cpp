// Report and drawer jobs for the fiscal print server. Record 1 holds ESC
// "CZEKAJ" while the data records are written; the single write of the true
// keyword publishes the job, so the server never sees half of it.
#include "base/filevar.h"
#include "base/jobfile.h"
#include "base/mazovia.h"
#include "fiscal/fiscaljob.h"
#include "fiscal/printerops.h"
#include "tui/msgbox.h"

namespace {

constexpr int kReportWaitMs = 5000;

// Every record after the placeholder, then the end and the keyword; false at the first failed write.
bool WriteJobRecords(FileVar& file, uint8_t kind, const std::vector<ShortText>& records) {
  if (WriteJobRecordAt(file, 1, kJobKeywordWait) != 0) return false;
  for (const ShortText& record : records)
    if (WriteJobRecord(file, record) != 0) return false;
  return WriteJobRecord(file, kJobKeywordEnd) == 0 && WriteJobRecordAt(file, 1, JobKeyword(kind)) == 0;
}

}  // namespace

bool SubmitPrinterJob(const FiscalConfig& config, uint8_t kind, const std::vector<ShortText>& records) {
  FileVar file;
  if (OpenJobFile(config, file)) return false;
  const bool written = WriteJobRecords(file, kind, records);
  if (file.Close() != 0 || !written) {
    // A job left with ESC "CZEKAJ" would hold the printer: take it away.
    (void)file.Erase();
    MessageBox("Błąd zapisu"_mz, 0);
    return false;
  }
  StartServer(config, file.Name());
  if (!IsOneShotRow(config.serverRow)) WaitForPrinter(kReportWaitMs);
  return true;
}
