// The server's printer rows: the configuration file read line by line as the
// server reads it, each row split into its fields. (Loading the rows also
// deletes the job files they name, which a fuzzer must not do.)
#include <cstddef>
#include <cstdint>

#include "base/csv.h"
#include "base/filevar.h"
#include "fuzz/fuzz_support.h"
#include "fiscal/posnet_wire.h"
#include "server/rows.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  FuzzInputFile input("rows", data, size);
  FileVar file;
  AssignFile(file, input.Path());
  if (file.Reset(kFileModeReadOnly) != 0) return 0;
  ShortText line;
  for (int rows = 0; rows < kMaxPrinterRows && file.ReadLine(line); ++rows) {
    if (CsvFieldCount(line) < kPrinterRowMinFields) break;
    PrinterRowFields f = SplitPrinterRow(line);
    (void)PosnetCleanName(f.heading);
  }
  return 0;
}
