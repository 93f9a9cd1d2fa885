// Record writes: the statements built from record buffers and the state of
// the table after each.
#include "sqltable/pgwrite.h"

#include <algorithm>
#include <string>

#include "base/mazovia.h"
#include "sqltable/pglock.h"
#include "sqltable/pgnav.h"

namespace {

// The table and a buffer of its layout, or the code that says why not.
int16_t CheckPair(int16_t tbl, int16_t rec, PGTable*& t, PGRecordBuffer*& buf) {
  t = PGTableAt(tbl);
  if (!t) return kPGBadTableHandle;
  if (const int16_t code = PGRecCheck(rec, buf); code != 0) return code;
  return buf->nFields == t->nFields ? kPGOk : kPGLayoutDiffers;
}

// Rows of in-place updates remembered for the older snapshot; beyond this
// the next move takes a fresh snapshot instead.
constexpr std::size_t kMaxOwnWrites = 1000;

// After a write this process owes a counter bump and must re-read the table.
void MarkChanged(PGTable& t) {
  t.viewStale = true;
  t.changedByUs = true;
  t.rebuildCursor = true;
  t.controlStale = true;
}

// A write that moved rows in the order: cached rows and their numbers are
// void, and the current row floats until the next move places it.
void MarkMoved(PGTable& t) {
  PGCacheClear(t);
  t.posStale = true;
}

// An update in place: every copy of the row this process holds, in the row
// cache and for fetches from the older snapshot, takes the written values.
void RememberUpdatedRow(PGTable& t) {
  const std::string& oid = t.curValues[0];
  if (t.cacheOn)
    for (int i = 0; i < t.cacheCount; ++i)
      if (t.rowCache[i].values[0] == oid) t.rowCache[i].values = t.curValues;
  if (t.ownWrites.size() >= kMaxOwnWrites && !t.ownWrites.contains(oid)) {
    MarkMoved(t);  // the next move declares a fresh snapshot, which empties the list
    return;
  }
  t.ownWrites[oid] = t.curValues;
}

// Someone else deleted the row that a write aimed at: the table must be read
// again before anything of it is shown.
int16_t RowGone(PGTable& t) {
  t.viewStale = t.rebuildCursor = true;
  MarkMoved(t);
  return kPGRecordGone;
}

void CopyToCurrent(PGTable& t, const PGRecordBuffer& buf) {
  for (int f = 1; f <= t.nFields; ++f) t.curValues[f] = buf.fields[f].value;
}

std::string InsertStatement(const PGTable& t, const PGRecordBuffer& buf) {
  std::string sql;
  sql.reserve(64 + 32 * static_cast<std::size_t>(t.nFields));
  sql += "INSERT INTO ";
  sql += t.baseName.View();
  sql += " (";
  for (int f = 1; f <= t.nFields; ++f) {
    if (f > 1) sql += ',';
    sql += t.fields[f].name.View();
  }
  sql += ") VALUES (";
  for (int f = 1; f <= t.nFields; ++f) {
    if (f > 1) sql += ',';
    sql += PGValueLiteral(t.fields[f].kind, buf.fields[f].value);
  }
  sql += ") RETURNING oid";
  return sql;
}

// " WHERE " the current record's row id, or its key fields (the old key).
std::string CurrentRowCondition(const PGTable& t) {
  if (t.nKeyFields == 0) return " WHERE OID = " + PGValueLiteral(PGKind::Number, t.curValues[0]);
  std::string where = " WHERE ";
  for (int f = 1; f <= t.nKeyFields; ++f) {
    if (f > 1) where += " AND ";
    where += PGCondition(t.fields[f].name.View(), t.fields[f].kind, t.curValues[f], "=");
  }
  return where;
}

// Whether field f takes part in the table's current ordering; 75 when the
// composite ordering has lost its descriptor.
int16_t InOrdering(const PGTable& t, int f, bool& in) {
  in = false;
  if (t.indexHandle == 0) {
    in = f <= t.nKeyFields;
  } else if (t.indexHandle < kPGFirstComposite) {
    in = f == t.indexHandle;
  } else {
    const PGCompositeIndex* d = PGKeyDescriptor(t.indexHandle);
    if (!d) return kPGBadFieldHandle;
    in = std::find(d->fieldNumbers.begin(), d->fieldNumbers.end(), f) != d->fieldNumbers.end();
  }
  return kPGOk;
}

// Counts the fields that differ from the current record and tells whether the ordering may change.
int16_t CompareWithCurrent(const PGTable& t, const PGRecordBuffer& buf, int& changed, bool& orderMayChange) {
  changed = 0;
  orderMayChange = false;
  for (int f = 1; f <= t.nFields; ++f) {
    if (buf.fields[f].value == t.curValues[f]) continue;
    ++changed;
    bool in = false;
    if (const int16_t code = InOrdering(t, f, in); code != 0) return code;
    orderMayChange = orderMayChange || in;
  }
  return kPGOk;
}

std::string UpdateStatement(const PGTable& t, const PGRecordBuffer& buf) {
  std::string sql = "UPDATE " + t.baseName.Str() + " SET ";
  for (int f = 1; f <= t.nFields; ++f) {
    if (f > 1) sql += ',';
    sql += t.fields[f].name.Str() + "=" + PGValueLiteral(t.fields[f].kind, buf.fields[f].value);
  }
  return sql + CurrentRowCondition(t) + " RETURNING oid";
}

// A table not yet placed is placed on its first row.
int16_t EnsurePositioned(int16_t tbl, const PGTable& t) {
  return t.positioned ? kPGOk : PGRecFirst(tbl);
}

// One field (single), or the first fldOrCount key fields, equal to the buffer's values.
std::string RowLockCondition(const PGTable& t, const PGRecordBuffer& buf, bool single, int fldOrCount) {
  std::string where;
  for (int f = single ? fldOrCount : 1; f <= fldOrCount; ++f) {
    if (!where.empty()) where += " AND ";
    where += PGCondition(t.fields[f].name.View(), t.fields[f].kind, buf.fields[f].value, "=");
  }
  return where;
}

}  // namespace

int16_t PGRecAppend(int16_t tbl, int16_t rec) {
  PGTable* t = nullptr;
  PGRecordBuffer* buf = nullptr;
  if (const int16_t code = CheckPair(tbl, rec, t, buf); code != 0) return code;
  PGLastOp = "PGRecAppend";
  PGResult res;
  if (PGExec(res, InsertStatement(*t, *buf), true) != 0 || res.Rows() != 1) return kPGIndexInCatalogue;
  t->curValues[0].assign(res.Value(0, 0));
  CopyToCurrent(*t, *buf);
  t->positioned = true;
  MarkMoved(*t);
  MarkChanged(*t);
  ++t->rowCount;
  return kPGOk;
}

int16_t PGRecInsert(int16_t tbl, int16_t rec) { return PGRecAppend(tbl, rec); }

int16_t PGRecUpdate(int16_t tbl, int16_t rec) {
  PGTable* t = nullptr;
  PGRecordBuffer* buf = nullptr;
  if (const int16_t code = CheckPair(tbl, rec, t, buf); code != 0) return code;
  if (const int16_t code = EnsurePositioned(tbl, *t); code != 0) return code;
  int changed = 0;
  bool orderMayChange = false;
  if (const int16_t code = CompareWithCurrent(*t, *buf, changed, orderMayChange); code != 0) return code;
  if (changed == 0) return kPGOk;  // nothing is sent and the table is not marked changed
  PGLastOp = "PGRecUpdate";
  PGResult res;
  if (PGExec(res, UpdateStatement(*t, *buf), true) != 0) return kPGSqlFailed;
  if (res.Rows() == 0) return RowGone(*t);
  CopyToCurrent(*t, *buf);
  if (orderMayChange)
    MarkMoved(*t);
  else
    RememberUpdatedRow(*t);
  t->positioned = true;
  MarkChanged(*t);
  return kPGOk;
}

int16_t PGRecDelete(int16_t tbl) {
  PGTable* t = PGTableAt(tbl);
  if (!t) return kPGBadTableHandle;
  if (const int16_t code = EnsurePositioned(tbl, *t); code != 0) return code;
  PGLastOp = "PGRecDelete";
  PGResult res;
  // The real table, even while a snapshot stands in for reading.
  if (PGExec(res, "DELETE FROM " + t->baseName.Str() + CurrentRowCondition(*t) + " RETURNING oid", true) != 0)
    return kPGSqlFailed;
  if (res.Rows() == 0) return RowGone(*t);
  t->positioned = false;
  MarkMoved(*t);
  t->curRec = std::max(0, t->curRec - 1);
  t->rowCount = std::max(0, t->rowCount - 1);
  MarkChanged(*t);
  return kPGOk;
}

int16_t PGRecDeleteD(int16_t tbl) {
  PGTable* t = PGTableAt(tbl);
  if (!t) return kPGBadTableHandle;
  const int32_t saved = t->curRec;
  const int16_t code = PGRecDelete(tbl);
  if (saved <= 0 || code != 0) return code;
  // The snapshot before the delete still stands: move within it to the neighbour.
  t->viewStale = false;
  t->posStale = false;
  t->rebuildCursor = false;
  t->curRec = saved;
  t->positioned = true;
  t->changedByUs = false;
  if (PGRecNext(tbl) != 0 && PGRecPrev(tbl) != 0) t->positioned = false;
  t->viewStale = true;
  t->posStale = true;
  t->rebuildCursor = true;
  t->changedByUs = true;
  t->controlStale = true;
  return kPGOk;
}

int16_t LockRecords(int16_t tbl, int16_t rec, bool single, int fldOrCount) {
  PGTable* t = nullptr;
  PGRecordBuffer* buf = nullptr;
  if (const int16_t code = CheckPair(tbl, rec, t, buf); code != 0) return code;
  const int limit = single ? t->nFields : t->nKeyFields;
  if (fldOrCount < 1 || fldOrCount > limit) return kPGBadFieldHandle;
  PGLastOp = "LockRecords";
  ShortText text("Zaczekaj - blokada rekordów tablicy:@"_mz);
  text += t->name;
  text += "@...";
  (void)PGTransBegin();
  const std::string sql = "SELECT 1 FROM " + t->baseName.Str() + " WHERE " +
                          RowLockCondition(*t, *buf, single, fldOrCount) + " FOR UPDATE";
  PGResult res;
  if (const int16_t code = PGRunUnderMessage(text, sql, true, res); code != 0) return code;
  return res.Rows() == 0 ? kPGRecordLock : kPGOk;
}
