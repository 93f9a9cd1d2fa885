// Where the current row stands: re-alignment by indexed counting, record
// numbers, row counts and the switch of ordering.
#include <cstdlib>

#include "sqltable/pgcatalog.h"
#include "sqltable/pgnav.h"

namespace {

// The filter as a condition to put before others, or empty.
std::string FilterPrefix(const PGTable& t) {
  const std::string filter = PGFilterText(t);
  if (filter.empty()) return filter;
  return "(" + filter.substr(7) + ") AND ";  // the text after " WHERE "
}

std::string CurrentLiteral(const PGTable& t, int f) { return PGValueLiteral(t.fields[f].kind, t.curValues[f]); }

std::string Column(const PGTable& t, int f) { return t.fields[f].name.Str(); }

// Field f compared with the current record's value.
std::string CurrentCondition(const PGTable& t, int f, std::string_view op) {
  return PGCondition(t.fields[f].name.View(), t.fields[f].kind, t.curValues[f], op);
}

bool Count(const std::string& sql, int32_t& n) {
  PGResult res;
  if (PGRunSelect(sql, res) != 0 || res.Rows() < 1) return false;
  n = static_cast<int32_t>(std::atol(std::string(res.Value(0, 0)).c_str()));
  return true;
}

// Place of the current row id among the rows of a select, scanned from the
// last; 0 when it is not there.
int32_t PlaceAmong(const std::string& sql, std::string_view oid) {
  PGResult res;
  if (PGRunSelect(sql, res) != 0) return 0;
  for (int r = res.Rows() - 1; r >= 0; --r)
    if (res.Value(r, 0) == oid) return r + 1;
  return 0;
}

// Counts the current row's place in the order; 0 when it is gone.
int32_t CountPosition(const PGTable& t) {
  const std::string from = " FROM " + t.sqlName.Str() + " WHERE " + FilterPrefix(t);
  const std::string& oid = t.curValues[0];
  const std::vector<int> cols = PGOrderColumns(t);
  int32_t base = 0;
  if (cols.empty()) return Count("SELECT COUNT(*)" + from + "OID <= " + PGValueLiteral(PGKind::Number, oid), base)
                               ? base
                               : 0;
  const int k1 = cols[0];
  const std::string eq1 = Column(t, k1) + "=" + CurrentLiteral(t, k1);
  // A filter that fixes the first column leaves nothing before it to count.
  if (t.whereClause.find(eq1) == std::string::npos &&
      !Count("SELECT COUNT(*)" + from + CurrentCondition(t, k1, " < "), base))
    return 0;
  std::string same = CurrentCondition(t, k1, " = ");
  // An alpha or date second column is not counted by "<": SQL's order of
  // those need not match the counted order, so its rows are scanned.
  if (cols.size() >= 2 && t.fields[cols[1]].kind == PGKind::Number) {
    int32_t second = 0;
    if (!Count("SELECT COUNT(*)" + from + same + " AND " + CurrentCondition(t, cols[1], " < "), second)) return 0;
    base += second;
    same += " AND " + CurrentCondition(t, cols[1], " = ");
  }
  const int32_t place = PlaceAmong("SELECT OID" + from + same + PGOrderText(t, false), oid);
  return place == 0 ? 0 : base + place;
}

// Freezes the table for the time of a refresh and the counting, unless the
// application holds a lock on it already.
bool NeedsOwnLock(const PGTable& t) {
  return !PGHooks().lockKindOf || PGHooks().lockKindOf(t.baseName) == 0;
}

}  // namespace

namespace {

// What one attempt at re-aligning found.
enum class Alignment { Placed, Gone, Elsewhere };

// Counts the current row's place (after a refresh of the snapshot when asked)
// and fetches that place from the cursor.
Alignment AlignOnCurrent(int16_t tbl, PGTable& t, bool refresh) {
  const bool locked = refresh && NeedsOwnLock(t);
  if (locked) {
    (void)PGTransBegin();
    if (PGRunStatement("LOCK TABLE " + t.baseName.Str() + " IN SHARE MODE") != 0) {
      (void)PGTransCommit();
      return Alignment::Gone;
    }
  }
  const bool failed = refresh && PGOdswK(tbl);
  const int32_t position = failed ? 0 : CountPosition(t);
  if (locked) (void)PGTransCommit();
  if (position <= 0) return Alignment::Gone;
  PGResult res;
  if (PGExecCur(res, "FETCH ABSOLUTE " + PGNum(position) + " IN " + t.cursorName.Str(), true) != 0 ||
      res.Rows() < 1) {
    t.cursorAt = -1;
    return Alignment::Elsewhere;
  }
  t.cursorAt = position;
  if (res.Value(0, 0) != t.curValues[0]) return Alignment::Elsewhere;
  PGLoadCurrent(t, res, 0);
  t.viewStale = t.posStale = false;
  t.curRec = position;
  return Alignment::Placed;
}

}  // namespace

bool PGPozK0(int16_t tbl) {
  PGTable* t = PGTableAt(tbl);
  if (!t || !t->cursorOpen) return true;
  PGLastOp += " PGPozK0";
  const bool refresh = t->rebuildCursor || PGTblChanged(tbl);
  const Alignment found = AlignOnCurrent(tbl, *t, refresh);
  if (found == Alignment::Placed) return false;
  // The row is in the table, but the snapshot has other rows at its place:
  // someone wrote before it and has not published yet. A fresh snapshot
  // decides whether it is really gone.
  if (found == Alignment::Elsewhere && !refresh) return AlignOnCurrent(tbl, *t, true) != Alignment::Placed;
  return true;
}

bool PGPoz0(int16_t tbl) {
  PGTable* t = PGTableAt(tbl);
  if (!t) return true;
  PGLastOp += " PGPoz0";
  const std::string from = " FROM " + t->sqlName.Str() + " WHERE " + FilterPrefix(*t);
  const std::string& oid = t->curValues[0];
  const std::vector<int> cols = PGOrderColumns(*t);
  int32_t position = 0;
  if (cols.empty()) {
    if (!Count("SELECT COUNT(*)" + from + "OID <= " + PGValueLiteral(PGKind::Number, oid), position)) return true;
  } else {
    position = PlaceAmong("SELECT OID" + from + CurrentCondition(*t, cols[0], " <= ") + PGOrderText(*t, false), oid);
    if (position == 0) return true;
  }
  t->nocPos = position;
  t->viewStale = t->posStale = true;
  return false;
}

int16_t PGRecNum(int16_t tbl, int32_t& recno) {
  recno = 0;
  PGTable* t = PGTableAt(tbl);
  if (!t) return kPGBadTableHandle;
  PGLastOp = "PGRecNum";
  if (int16_t code = PGopC(tbl)) return code;
  if (!t->positioned) {
    if (int16_t code = PGRecFirst(tbl)) return code;
  } else {
    if (t->viewStale && PGOdswK(tbl)) return kPGEmptyTable;
    if ((t->posStale || t->curRec <= 0) && PGPozK0(tbl)) return kPGRecordGone;
  }
  recno = t->curRec;
  return kPGOk;
}

int16_t PGTblNRecs(int16_t tbl, int32_t& count) {
  count = 0;
  PGTable* t = PGTableAt(tbl);
  if (!t) return kPGBadTableHandle;
  PGLastOp = "PGTblNRecs";
  if (!Count("SELECT COUNT(*) FROM " + t->sqlName.Str() + PGFilterText(*t), count)) return kPGSqlFailed;
  t->rowCount = count;
  t->viewStale = t->posStale = true;
  return kPGOk;
}

int16_t PGIndexSwitch(int16_t& tbl, int16_t& rec, int indexHandle) {
  PGTable* t = PGTableAt(tbl);
  if (!t) return kPGBadTableHandle;
  PGLastOp = "PGIndexSwitch";
  if (t->cacheOn && t->changedByUs) {
    // Closing publishes the changes; the table comes back in the new order.
    const ShortText name = t->name;
    (void)PGTblClose(tbl);
    if (int16_t code = PGTblOpen(name, tbl, indexHandle)) return code;
    return PGRecBufOpen(tbl, rec);
  }
  t->indexHandle = indexHandle;
  if (t->cursorOpen && PGOdswK(tbl)) return kPGSqlFailed;
  return PGBumpChangeCounter(*t);
}
