// Moves over a table's cursor and its row cache: first, last, next, previous,
// go to, the cache roads for list screens and the page prefetches.
#include <algorithm>

#include "sqltable/pgcatalog.h"
#include "sqltable/pgnav.h"

namespace {

// One FETCH gives the row asked for and a full cache.
constexpr int kBatch = kPGRowCacheSize + 1;

int16_t Fetch(PGTable& t, const std::string& what, PGResult& res) {
  return PGExecCur(res, "FETCH " + what + " IN " + t.cursorName.Str(), true) == 0 ? kPGOk : kPGSqlFailed;
}

void AllocateCache(PGTable& t) {
  if (t.cacheAlloc) return;
  t.rowCache.assign(kPGRowCacheSize, PGCachedRow{});
  for (PGCachedRow& row : t.rowCache) {
    row.values.resize(t.curValues.size());
    row.values[0].reserve(22);
    for (int f = 1; f <= t.nFields; ++f) row.values[f].reserve(static_cast<std::size_t>(t.fields[f].bufSize));
  }
  t.cacheAlloc = true;
}

void StoreRow(PGCachedRow& slot, int32_t recNo, const PGResult& res, int r) {
  slot.recNo = recNo;
  const int n = std::min(res.Cols(), static_cast<int>(slot.values.size()));
  for (int c = 0; c < n; ++c) slot.values[c].assign(res.Value(r, c));
}

// Stores result row r in a cache slot, as this process last wrote it.
void StoreFetchedRow(const PGTable& t, PGCachedRow& slot, int32_t recNo, const PGResult& res, int r) {
  StoreRow(slot, recNo, res, r);
  PGApplyOwnWrite(t, slot.values);
}

// Copies the current record into the cache by the insertion rule: fill up
// to 60, then overwrite in turn, wrapping from the last slot to the first.
void CacheInsert(PGTable& t, int32_t recNo) {
  AllocateCache(t);
  if (t.cacheCount < kPGRowCacheSize) {
    ++t.cacheCount;
    t.cachePos = t.cacheCount;
  } else {
    t.cachePos = t.cachePos % kPGRowCacheSize + 1;
  }
  PGCachedRow& slot = t.rowCache[t.cachePos - 1];
  slot.recNo = recNo;
  for (std::size_t c = 0; c < t.curValues.size(); ++c) slot.values[c].assign(t.curValues[c]);
}

// Makes cached row recNo the current record; false when not cached.
bool CacheHit(PGTable& t, int32_t recNo) {
  if (!t.cacheOn) return false;
  for (int i = 0; i < t.cacheCount; ++i) {
    const PGCachedRow& row = t.rowCache[i];
    if (row.recNo != recNo) continue;
    for (std::size_t c = 0; c < row.values.size(); ++c) t.curValues[c].assign(row.values[c]);
    return true;
  }
  return false;
}

// Brings the server cursor to stand on row recNo, when it is elsewhere, so
// that the next batch continues after it.
int16_t AlignCursor(PGTable& t, int32_t recNo) {
  if (t.cursorAt == recNo) return kPGOk;
  PGResult res;
  if (PGExecCur(res, "MOVE ABSOLUTE " + PGNum(recNo) + " IN " + t.cursorName.Str(), false) != 0)
    return kPGSqlFailed;
  t.cursorAt = recNo;
  return kPGOk;
}

// The next batch: its first row becomes current, the rest fill the cache.
int16_t NextBatch(PGTable& t) {
  if (AlignCursor(t, t.curRec) != 0) return kPGSqlFailed;
  AllocateCache(t);
  PGCacheClear(t);
  PGResult res;
  if (Fetch(t, "FORWARD " + PGNum(kBatch), res) != 0) return kPGSqlFailed;
  const int rows = res.Rows();
  t.cursorAt = t.curRec + rows;
  if (rows == 0) return kPGEndOfTable;
  PGLoadCurrent(t, res, 0);
  for (int r = 1; r < rows; ++r) StoreFetchedRow(t, t.rowCache[r - 1], t.curRec + 1 + r, res, r);
  t.cacheCount = t.cachePos = rows - 1;
  t.cacheOn = true;
  ++t.curRec;
  return kPGOk;
}

// Steps 1 and 2 of a relative move: an unplaced table starts at the first
// row; a floating one is re-aligned first.
int16_t PrepareRelativeMove(int16_t tbl, PGTable& t, bool& done) {
  done = false;
  if (!t.positioned) {
    done = true;
    if (int16_t code = PGopC(tbl)) return code;
    return PGRecFirst(tbl);
  }
  if (t.posStale) {
    // A search may have placed a table that has no cursor yet.
    if (!t.cursorOpen && PGopC(tbl) != 0) return kPGSqlFailed;
    if (PGPozK0(tbl)) return kPGRecordGone;
  }
  return kPGOk;
}

// Reads row n through the cursor as the current record: 31 when there is none.
int16_t FetchAbsolute(PGTable& t, int32_t n) {
  if (n < 1) return kPGArgRange;
  PGResult res;
  if (Fetch(t, "ABSOLUTE " + PGNum(n), res) != 0) return kPGSqlFailed;
  if (res.Rows() < 1) {
    t.cursorAt = -1;
    return kPGArgRange;
  }
  t.cursorAt = n;
  PGLoadCurrent(t, res, 0);
  return kPGOk;
}

int16_t FillCache(int16_t tbl, bool fromEnd) {
  PGTable* t = PGTableAt(tbl);
  if (!t) return kPGBadTableHandle;
  PGLastOp = fromEnd ? "fill_c_back" : "fill_c_forw";
  int32_t count = 0;
  if (fromEnd)
    if (int16_t code = PGTblNRecs(tbl, count)) return code;
  PGResult res;
  if (PGRunSelect(PGSelectAll(*t) + t->sqlName.Str() + PGFilterText(*t) + PGOrderText(*t, fromEnd) + " LIMIT " +
                      PGNum(kPGRowCacheSize),
                  res) != 0)
    return kPGSqlFailed;
  AllocateCache(*t);
  PGCacheClear(*t);
  for (int r = 0; r < res.Rows(); ++r) StoreRow(t->rowCache[r], fromEnd ? count - r : r + 1, res, r);
  t->cacheCount = t->cachePos = res.Rows();
  t->cacheOn = true;
  return kPGOk;
}

// First or last row of the cursor as the current record: 105 when empty.
// The last row's number is not known until someone asks for it.
int16_t FetchEnd(int16_t tbl, bool last) {
  PGTable* t = PGTableAt(tbl);
  if (!t) return kPGBadTableHandle;
  PGLastOp = last ? "PGRecLast" : "PGRecFirst";
  if (int16_t code = PGopC(tbl)) return code;
  PGResult res;
  if (Fetch(*t, last ? "LAST" : "FIRST", res) != 0) return kPGSqlFailed;
  if (res.Rows() < 1) return kPGEmptyTable;
  PGLoadCurrent(*t, res, 0);
  t->curRec = last ? 0 : 1;
  t->cursorAt = last ? -1 : 1;
  t->positioned = true;
  t->posStale = last;
  PGCacheClear(*t);
  return kPGOk;
}

}  // namespace

int16_t PGRecFirst(int16_t tbl) { return FetchEnd(tbl, false); }

int16_t PGRecLast(int16_t tbl) { return FetchEnd(tbl, true); }

int16_t PGRecGoto(int16_t tbl, int32_t recno) {
  PGTable* t = PGTableAt(tbl);
  if (!t) return kPGBadTableHandle;
  PGLastOp = "PGRecGoto";
  if (int16_t code = PGopC(tbl)) return code;
  if (int16_t code = FetchAbsolute(*t, recno)) return code;
  t->curRec = recno;
  t->positioned = true;
  t->posStale = false;
  PGCacheClear(*t);
  return kPGOk;
}

int16_t PGRecGoto_c(int16_t tbl, int32_t recno) {
  PGTable* t = PGTableAt(tbl);
  if (!t) return kPGBadTableHandle;
  PGLastOp = "PGRecGoto_c";
  if (!CacheHit(*t, recno)) {
    if (int16_t code = PGopC(tbl)) return code;
    if (!CacheHit(*t, recno)) {  // the open may have cleared the cache
      AllocateCache(*t);
      if (!t->cacheOn) PGCacheClear(*t);
      t->cacheOn = true;
      if (int16_t code = FetchAbsolute(*t, recno)) return code;
      CacheInsert(*t, recno);
    }
  }
  t->curRec = recno;
  t->positioned = true;
  t->posStale = false;
  return kPGOk;
}

int16_t PGRecNext_c(int16_t tbl) {
  PGTable* t = PGTableAt(tbl);
  if (!t) return kPGBadTableHandle;
  if (t->curRec <= 0) return kPGEmptyTable;
  return PGRecGoto_c(tbl, t->curRec + 1);
}

int16_t PGRecNext(int16_t tbl) {
  PGTable* t = PGTableAt(tbl);
  if (!t) return kPGBadTableHandle;
  PGLastOp = "PGRecNext";
  bool done = false;
  if (int16_t code = PrepareRelativeMove(tbl, *t, done); code != 0 || done) return code;
  if (CacheHit(*t, t->curRec + 1)) {
    ++t->curRec;
    return kPGOk;
  }
  return NextBatch(*t);
}

int16_t PGRecPrev(int16_t tbl) {
  PGTable* t = PGTableAt(tbl);
  if (!t) return kPGBadTableHandle;
  PGLastOp = "PGRecPrev";
  bool done = false;
  if (int16_t code = PrepareRelativeMove(tbl, *t, done); code != 0 || done) return code;
  const int32_t n = t->curRec - 1;
  if (n <= 0) return kPGStartOfTable;
  const bool cached = CacheHit(*t, n);
  if (!cached) {
    const int16_t code = FetchAbsolute(*t, n);
    if (code == kPGArgRange) return PGRecFirst(tbl) == 0 ? kPGStartOfTable : code;
    if (code != 0) return code;
  }
  t->curRec = std::max(t->curRec - 1, 0);
  t->nocPos = 0;
  if (t->curRec <= 0)
    PGCacheClear(*t);
  else if (!cached)  // a row already cached is not stored twice
    CacheInsert(*t, t->curRec);
  return kPGOk;
}

int16_t fill_c_forw(int16_t tbl) { return FillCache(tbl, false); }

int16_t fill_c_back(int16_t tbl) { return FillCache(tbl, true); }
