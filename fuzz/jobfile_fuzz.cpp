// Job files as the server finds them: the first record's keyword, a period
// report's records, or a receipt's records and each line's fields taken as
// the printer handlers take them.
#include <cstddef>
#include <cstdint>

#include "base/csv.h"
#include "base/jobfile.h"
#include "fiscal/jobs_amounts.h"
#include "fiscal/posnet_wire.h"
#include "fuzz/fuzz_support.h"
#include "server/job_records.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  // More than 50 line records is the reader's designed run-time error (the
  // process ends), which is no finding.
  if (size > (7 + kReceiptMaxLines) * kJobRecordSize) return 0;
  FuzzInputFile input("job", data, size);
  FileVar file;
  AssignFile(file, input.Path());
  if (file.Reset(kFileModeReadOnly) != 0) return 0;
  ShortText first;
  if (!ReadJobRecord(file, first)) return 0;
  if (JobKindOfRecord(first) == kJobPeriodReport) {
    PeriodJob period;
    (void)ReadPeriodJob(file, period);
    return 0;
  }
  ReceiptJob job;
  (void)ReadReceiptJob(file, job);
  for (int i = 0; i < job.lines; ++i) {
    const ShortText& line = job.line[i];
    Real quantity = CsvFieldReal(line, 2);
    Real price = CsvFieldReal(line, 4);
    (void)PosnetCleanName(CsvField(line, 1));
    (void)PosnetLineValueGrosz(quantity, price);
    (void)ElzabLineValueGrosz(quantity, price);
    (void)ElzabQuantityOf(quantity);
  }
  return 0;
}
