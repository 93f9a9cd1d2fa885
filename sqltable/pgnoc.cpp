// The cursorless road: one "LIMIT 1" select per move, for a quick look at an
// end of a table without paying for a snapshot. Nothing is cached.
#include "sqltable/pgcatalog.h"
#include "sqltable/pgnav.h"

namespace {

// Loads the row at offset (0-based) of the order; false when there is none,
// code set on a failed statement.
bool LoadAt(PGTable& t, bool descending, int32_t offset, int16_t& code) {
  code = kPGOk;
  std::string sql = PGSelectAll(t) + t.sqlName.Str() + PGFilterText(t) + PGOrderText(t, descending);
  if (offset > 0) sql += " OFFSET " + PGNum(offset);
  sql += " LIMIT 1";
  PGResult res;
  if (PGRunSelect(sql, res) != 0) {
    code = kPGSqlFailed;
    return false;
  }
  if (res.Rows() < 1) return false;
  PGLoadCurrent(t, res, 0);
  // The cursor's place no longer matches the current row.
  t.curRec = 0;
  t.positioned = true;
  t.posStale = true;
  return true;
}

int16_t End(int16_t tbl, bool last) {
  PGTable* t = PGTableAt(tbl);
  if (!t) return kPGBadTableHandle;
  PGLastOp = last ? "PGRecLast_noc" : "PGRecFirst_noc";
  int16_t code = kPGOk;
  if (!LoadAt(*t, last, 0, code)) return code ? code : kPGEmptyTable;
  t->nocPos = last ? 0 : 1;
  return kPGOk;
}

// The place on this road, counted when not known: 50 when the row is gone,
// 105 when it is still unknown.
int16_t KnownPlace(int16_t tbl, PGTable& t) {
  if (t.nocPos > 0) return kPGOk;
  if (PGPoz0(tbl)) return kPGRecordGone;
  return t.nocPos > 0 ? kPGOk : kPGEmptyTable;
}

}  // namespace

int16_t PGRecFirst_noc(int16_t tbl) { return End(tbl, false); }

int16_t PGRecLast_noc(int16_t tbl) { return End(tbl, true); }

int16_t PGRecNext_noc(int16_t tbl) {
  PGTable* t = PGTableAt(tbl);
  if (!t) return kPGBadTableHandle;
  PGLastOp = "PGRecNext_noc";
  if (int16_t code = KnownPlace(tbl, *t)) return code;
  int16_t code = kPGOk;
  if (!LoadAt(*t, false, t->nocPos, code)) return code ? code : kPGEndOfTable;
  ++t->nocPos;
  return kPGOk;
}

int16_t PGRecPrev_noc(int16_t tbl) {
  PGTable* t = PGTableAt(tbl);
  if (!t) return kPGBadTableHandle;
  PGLastOp = "PGRecPrev_noc";
  if (int16_t code = KnownPlace(tbl, *t)) return code;
  if (t->nocPos <= 1) return kPGStartOfTable;
  int16_t code = kPGOk;
  if (!LoadAt(*t, false, t->nocPos - 2, code)) return code ? code : kPGStartOfTable;
  --t->nocPos;
  return kPGOk;
}

int16_t PGRecGoto_noc(int16_t tbl, int32_t recno) {
  PGTable* t = PGTableAt(tbl);
  if (!t) return kPGBadTableHandle;
  PGLastOp = "PGRecGoto_noc";
  if (recno < 1) return kPGArgRange;
  int16_t code = kPGOk;
  if (!LoadAt(*t, false, recno - 1, code)) return code ? code : kPGArgRange;
  t->nocPos = recno;
  return kPGOk;
}
