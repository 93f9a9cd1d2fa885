// DBF files from outside: the header and field descriptors opened, every
// record read and every field taken as text and as a date.
#include <cstddef>
#include <cstdint>

#include "exchange/dbf/dbf.h"
#include "fuzz/fuzz_support.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  FuzzInputFile input("dbf.dbf", data, size);
  DbfFile table;
  if (DbfOpen(table, input.Path()) != 0) return 0;
  int64_t records = table.recordCount < 64 ? table.recordCount : 64;
  for (int64_t n = 0; n <= records + 1; ++n) {
    (void)DbfReadRecord(table, n);
    (void)DbfIsDeleted(table);
    for (int f = 0; f <= table.FieldCount() + 1; ++f) {
      (void)DbfGetField(table, f);
      if (f >= 1 && f <= table.FieldCount() && table.Field(f).type == 'D') (void)DbfGetDate(table, f);
    }
  }
  if (table.FieldCount() > 0) (void)DbfFindValue(table, 1, "A");
  (void)DbfClose(table);
  return 0;
}
