// Copying a whole table row by row through the record layer, written in
// batches of many rows per statement, inside one transaction.
#include <string>
#include <vector>

#include "base/mazovia.h"
#include "sqltable/pgnav.h"
#include "sqltable/pgrecord.h"
#include "users/bulk.h"
#include "users/bulk_detail.h"

using namespace bulk_detail;

namespace {

// Rows per INSERT: few round trips, statements of a modest size.
constexpr int kRowsPerInsert = 500;

// An open table with a record buffer, closed on every road out.
class OpenedTable {
 public:
  ~OpenedTable() {
    if (rec_ != 0) (void)PGRecBufClose(rec_);
    if (tbl_ != 0) (void)PGTblClose(tbl_);
  }
  [[nodiscard]] int16_t Open(const ShortText& path) {
    if (int16_t code = PGTblOpen(path, tbl_, 0)) return code;
    return PGRecBufOpen(tbl_, rec_);
  }
  int16_t tbl() const { return tbl_; }
  int16_t rec() const { return rec_; }

 private:
  int16_t tbl_ = 0;
  int16_t rec_ = 0;
};

// Multi-row INSERT statements of the source's fields into the target.
class InsertBatch {
 public:
  InsertBatch(const std::string& target, const PGTable& source) : source_(source) {
    head_ = "INSERT INTO " + target + " (";
    for (int f = 1; f <= source.nFields; ++f) head_ += (f > 1 ? "," : "") + source.fields[f].name.Str();
    head_ += ") VALUES ";
  }
  // Adds the buffer's values as one row; sends a full batch.
  [[nodiscard]] int16_t Add(const PGRecordBuffer& buf) {
    sql_ += rows_ == 0 ? head_ + "(" : ",(";
    for (int f = 1; f <= buf.nFields; ++f)
      sql_ += (f > 1 ? "," : "") + PGValueLiteral(source_.fields[f].kind, buf.fields[f].value);
    sql_ += ")";
    ++written_;
    return ++rows_ == kRowsPerInsert ? Flush() : kPGOk;
  }
  [[nodiscard]] int16_t Flush() {
    if (rows_ == 0) return kPGOk;
    rows_ = 0;
    const int16_t code = Run(sql_);
    sql_.clear();
    return code;
  }
  long written() const { return written_; }

 private:
  const PGTable& source_;
  std::string head_;
  std::string sql_;
  int rows_ = 0;
  long written_ = 0;
};

// Walks the open source from its first row, every row into the batch.
int16_t CopyRows(const OpenedTable& src, InsertBatch& batch, ProgressBoxTen& box) {
  int16_t code = PGRecFirst(src.tbl());
  if (code == kPGEmptyTable) return kPGOk;
  while (code == 0) {
    if ((code = PGRecGet(src.tbl(), src.rec())) != 0) return code;
    if ((code = batch.Add(*PGRecordAt(src.rec()))) != 0) return code;
    box.Show(batch.written());
    code = PGRecNext(src.tbl());
  }
  return code == kPGEndOfTable ? batch.Flush() : code;
}

// Every written row must be in the target before the copy counts as done.
int16_t CheckCount(const std::string& target, long written) {
  PGResult res;
  if (int16_t code = PGRunQueryWithTup("SELECT COUNT(*) FROM " + target, res)) return code;
  return res.Value(0, 0) == std::to_string(written) ? kPGOk : kPGSqlFailed;
}

int16_t CopySteps(const ShortText& source, const ShortText& target) {
  if (int16_t code = PGTblCloneIdx(source, target)) return code;
  PGLastOp = "TblCopyData";
  OpenedTable src;
  if (int16_t code = src.Open(source)) return code;
  int32_t total = 0;
  if (int16_t code = PGTblNRecs(src.tbl(), total)) return code;
  ProgressBoxTen box("Trwa kopiowanie danych...[          ]"_mz, total);
  const std::string t = SqlName(target);
  InsertBatch batch(t, *PGTableAt(src.tbl()));
  if (int16_t code = CopyRows(src, batch, box)) return code;
  return CheckCount(t, batch.written());
}

}  // namespace

int16_t TblCopyData(const ShortText& source, const ShortText& target) {
  PGLastOp = "TblCopyData";
  if (SqlName(source) == SqlName(target)) return kPGBadArgument;  // the clone would drop the source
  bool exists = false;
  (void)PGTblExist(source, exists);
  if (!exists) return kPGTableNotFound;
  // The target's counter row is made inside: the bump finds it there.
  return RewriteInTransaction(SqlName(target), [&] { return CopySteps(source, target); });
}
