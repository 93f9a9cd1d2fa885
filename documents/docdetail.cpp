// Table handles, locks and SQL literals of the documents module.
#include "documents/docdetail.h"

#include "base/codepage.h"
#include "base/dates.h"
#include "sqltable/dbapp.h"
#include "sqltable/pglock.h"
#include "sqltable/pgrecord.h"
#include "sqltable/pgtable.h"

namespace docdetail {

TableRecord::TableRecord(const ShortText& path, int indexHandle) {
  code_ = OpenTable(path, tbl_, indexHandle);
  if (code_ == 0) code_ = PGRecBufOpen(tbl_, rec_);
}

TableRecord::~TableRecord() {
  if (rec_) (void)PGRecBufClose(rec_);
  if (tbl_) (void)PGTblClose(tbl_);
}

void TableRecord::MarkChanged() {
  if (PGTable* t = PGTableAt(tbl_)) t->changedByUs = true;
}

std::string TextLiteral(const ShortText& text) { return "'" + PGEscapeStr(MazToDb(text).View()) + "'"; }

std::string DateLiteral(int32_t serial) { return "'" + DaySerialToIsoText(serial).Str() + "'"; }

std::string SqlTable(const ShortText& path) { return PGSqlName(path).Str(); }

int YearOfSerial(int32_t serial) {
  int year = 0, month = 0, day = 0;
  return DecodeDaySerial(serial, year, month, day) ? year : 0;
}

int16_t QueryValue(const std::string& sql, std::string& value, bool& isNull) {
  PGResult res;
  value.clear();
  isNull = true;
  if (int16_t code = PGRunQueryWithTup(sql, res)) return code;
  if (res.Rows() > 0 && res.Cols() > 0) {
    value = std::string(res.Value(0, 0));
    isNull = value.empty();
  }
  return 0;
}

}  // namespace docdetail
