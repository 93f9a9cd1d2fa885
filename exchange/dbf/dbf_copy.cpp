// Whole-table operations built on the record functions: packing a table and
// appending one file's records to another.
#include <vector>

#include "exchange/dbf/dbf_io.h"

namespace {

std::vector<DbfFieldSpec> SpecsOf(const DbfFile& t) {
  std::vector<DbfFieldSpec> specs;
  for (const DbfField& f : t.fields) specs.push_back(DbfFieldSpec{f.name, f.type, f.width, f.decimals});
  return specs;
}

// Copies the live records into the packed table as they stand: the layout is the same.
int CopyLiveRecords(DbfFile& from, DbfFile& to) {
  for (int64_t n = 1; n <= from.recordCount; ++n) {
    if (int r = DbfReadRecord(from, n); r != 0) return r;
    if (DbfIsDeleted(from)) continue;
    to.record = from.record;
    if (int r = DbfAppendRecord(to); r != 0) return r;
  }
  return 0;
}

// For each field of the target, the source's field of the same name, or 0.
std::vector<int> FieldsByName(const DbfFile& source, const DbfFile& target) {
  std::vector<int> map(target.FieldCount() + 1, 0);
  for (int i = 1; i <= target.FieldCount(); ++i) map[i] = DbfFindField(source, ShortText(target.Field(i).name));
  return map;
}

int AppendLiveRecords(DbfFile& source, DbfFile& target, DbfProgressFn progress, void* context) {
  const std::vector<int> map = FieldsByName(source, target);
  for (int64_t n = 1; n <= source.recordCount; ++n) {
    if (int r = DbfReadRecord(source, n); r != 0) return r;
    if (!DbfIsDeleted(source)) {
      DbfBlankRecord(target);
      for (int i = 1; i <= target.FieldCount(); ++i)
        if (map[i] != 0)
          if (int r = DbfPutField(target, i, DbfGetField(source, map[i])); r != 0) return r;
      if (int r = DbfAppendRecord(target); r != 0) return r;
    }
    if (progress != nullptr) progress(context, n, source.recordCount);
  }
  return 0;
}

}  // namespace

int DbfPack(DbfFile& t) {
  if (!t.IsOpen()) return DbfStatus = kDbfNotOpen;
  if (t.readOnly) return DbfStatus = kDbfNotOpenForOutput;
  if (int r = DbfFlushPending(t); r != 0) return r;
  const ShortText path = t.io->path;
  DbfFile packed;
  if (int r = DbfCreateUnix(packed, path, SpecsOf(t), t.codePage); r != 0) return r;
  if (int r = CopyLiveRecords(t, packed); r != 0) {
    DbfDiscard(packed);
    return DbfStatus = r;
  }
  DbfClose(t);
  // The packed file replaces the table only when it is whole; otherwise the table stays.
  const int closed = DbfClose(packed);
  if (int r = DbfOpenUnix(t, path); r != 0) return r;
  return DbfStatus = closed;
}

int DbfAppendFromFiles(const ShortText& source, const ShortText& target, DbfProgressFn progress, void* context) {
  DbfFile from, to;
  if (int r = DbfOpen(from, source); r != 0) return r;
  if (int r = DbfOpen(to, target); r != 0) return r;
  if (to.readOnly) return DbfStatus = kDbfNotOpenForOutput;
  const int64_t before = to.recordCount;
  if (int r = AppendLiveRecords(from, to, progress, context); r != 0) {
    // All or nothing: the target keeps the records it had.
    DbfDropAppends(to, before);
    DbfClose(to);
    return DbfStatus = r;
  }
  return DbfClose(to);
}
