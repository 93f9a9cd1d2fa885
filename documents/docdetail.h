// Inside the documents module: an open table with one record buffer, the
// exclusive lock of a table, and SQL literals. Other folders do not include it.
#pragma once

#include <cstdint>
#include <string>

#include "base/shorttext.h"
#include "sqltable/dbapp.h"

namespace docdetail {

// A table open with one record buffer; both released on every path.
// code() is the first failure, 0 when open.
class TableRecord {
 public:
  explicit TableRecord(const ShortText& path, int indexHandle = 0);
  ~TableRecord();
  TableRecord(const TableRecord&) = delete;
  TableRecord& operator=(const TableRecord&) = delete;
  int16_t code() const { return code_; }
  int16_t tbl() const { return tbl_; }
  int16_t rec() const { return rec_; }
  // Other users' views of the table are told to refresh when it closes.
  void MarkChanged();

 private:
  int16_t tbl_ = 0;
  int16_t rec_ = 0;
  int16_t code_ = 0;
};

// The exclusive lock of a table in its own transaction.
using ExclusiveLock = ExclusiveTableLock;

// A Mazovia text as a quoted SQL literal in the connection's LATIN2.
std::string TextLiteral(const ShortText& text);
// A day serial as a quoted SQL date.
std::string DateLiteral(int32_t serial);
// The SQL name of a table path.
std::string SqlTable(const ShortText& path);
// The year of a day serial; 0 when it is not a date.
int YearOfSerial(int32_t serial);
// The single value of a one-row query (empty when NULL or no row); the layer's code.
[[nodiscard]] int16_t QueryValue(const std::string& sql, std::string& value, bool& isNull);

}  // namespace docdetail
