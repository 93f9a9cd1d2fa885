// Navigation: a table seen as a key-ordered file with a current record.
// A table is read through one server-side "SCROLL CURSOR WITH HOLD" over the
// ordered, filtered table, fetched in batches of 61 rows (the row asked for
// and a cache of 60). Key searches are single indexed "LIMIT 1" selects; a
// record number is computed lazily by indexed COUNT statements; freshness is
// checked by one read of the table's change counter il_zm at those moments.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "sqltable/pgrecord.h"
#include "sqltable/pgtable.h"

// --- Moves over the cursor (76 bad table, 118 failed statement) ---
// First row: 105 on an empty table.
[[nodiscard]] int16_t PGRecFirst(int16_t tbl);
// Last row (its number stays unknown until asked): 105 on an empty table.
[[nodiscard]] int16_t PGRecLast(int16_t tbl);
// Next row: 101 past the last (the current record stays), 50 when the
// current row is gone.
[[nodiscard]] int16_t PGRecNext(int16_t tbl);
// Previous row: 102 before the first (the position stays), 50 when gone.
[[nodiscard]] int16_t PGRecPrev(int16_t tbl);
// Row n of the order, from 1: 31 when there is none.
[[nodiscard]] int16_t PGRecGoto(int16_t tbl, int32_t recno);
// PGRecGoto through the row cache (for list screens).
[[nodiscard]] int16_t PGRecGoto_c(int16_t tbl, int32_t recno);
// The next row through the row cache; 105 when the record number is unknown.
[[nodiscard]] int16_t PGRecNext_c(int16_t tbl);

// --- Cursorless moves: one "LIMIT 1" select each, nothing cached ---
[[nodiscard]] int16_t PGRecFirst_noc(int16_t tbl);
[[nodiscard]] int16_t PGRecLast_noc(int16_t tbl);
[[nodiscard]] int16_t PGRecNext_noc(int16_t tbl);
[[nodiscard]] int16_t PGRecPrev_noc(int16_t tbl);
[[nodiscard]] int16_t PGRecGoto_noc(int16_t tbl, int32_t recno);

// --- Positions and counts ---
// Place of the current row in the order, counted when not known; 50 when the
// row is gone.
[[nodiscard]] int16_t PGRecNum(int16_t tbl, int32_t& recno);
// Rows of the filtered table.
[[nodiscard]] int16_t PGTblNRecs(int16_t tbl, int32_t& count);

// --- Searches (modes: 0 first exact, 1 next exact after the current, 2 closest) ---
// Over the first nFields fields with the values of buffer rec. 89 when not
// found; mode 2 then places the table on the next higher row, or the highest.
[[nodiscard]] int16_t PGSrchKey(int16_t tbl, int16_t rec, int nFields, int mode);
// Over one field (1..255) or the fields of a composite index handle.
[[nodiscard]] int16_t PGSrchFld(int16_t tbl, int16_t rec, int fieldOrIndex, int mode);
// Over a comma list of field numbers ("3,1"); 74 for an empty list.
[[nodiscard]] int16_t PGSrchFlds(int16_t tbl, int16_t rec, const ShortText& fieldList, int mode);
// Whether a row with all key values of rec exists; loads it (0) or gives 89.
[[nodiscard]] int16_t PGSrchKeyFull(int16_t tbl, int16_t rec);
// The next PGSrchFld or PGSrchFlds also keeps the table's where clause.
[[nodiscard]] int16_t PGSrchWithFilter(int16_t tbl);

// --- Cursor and freshness ---
// Opens the cursor, or declares it again when this process changed the
// table or a search placed it elsewhere: 0, 76, 118.
[[nodiscard]] int16_t PGopC(int16_t tbl);
// The same over a free query (reports browsing a joined result).
[[nodiscard]] int16_t PGopCQ(int16_t tbl, const std::string& query);
// Closes and re-opens the cursor; true on failure.
[[nodiscard]] bool PGOdswK(int16_t tbl);
// Re-aligns the cursor on the current row, refreshing the snapshot when the
// table changed; true on failure (the row is gone).
[[nodiscard]] bool PGPozK0(int16_t tbl);
// The same for the cursorless road's position.
[[nodiscard]] bool PGPoz0(int16_t tbl);
// Whether another process published a change since the counter was read last.
[[nodiscard]] bool PGTblChanged(int16_t tbl);
// The first 60 rows of the order into the row cache, numbered from 1.
[[nodiscard]] int16_t fill_c_forw(int16_t tbl);
// The last 60 rows into the row cache, numbered down from the row count.
[[nodiscard]] int16_t fill_c_back(int16_t tbl);
// Changes the ordering; a table with a cache in use and unpublished changes
// is closed and opened again (tbl and rec may then change).
[[nodiscard]] int16_t PGIndexSwitch(int16_t& tbl, int16_t& rec, int indexHandle);

// --- Filters ---
// One table name and condition for the whole process; a second call before
// PGClearGlobalFilter keeps the first and warns noisily.
void PGSetGlobalFilter(const ShortText& name, const std::string& condition);
void PGClearGlobalFilter();
// Sets the table's where clause and marks the cursor for a re-declaration.
[[nodiscard]] int16_t PGTblWhereClauseSet(int16_t tbl, const std::string& condition);
// Drops the where clause.
[[nodiscard]] int16_t PGTblWhereClauseDrop(int16_t tbl);
// " WHERE ..." of the where clause and the global filter, or empty.
std::string PGFilterText(const PGTable& t);
// The ordering columns (field numbers): the key fields, or the index field or
// composite fields followed by the key fields; empty without key fields.
std::vector<int> PGOrderColumns(const PGTable& t);
// " ORDER BY ..." of the ordering, " DESC" on each column when descending;
// " ORDER BY OID" without key fields.
std::string PGOrderText(const PGTable& t, bool descending);
// The select of the row id and all fields: "SELECT * FROM ", since the row
// id is every table's and view's first column.
std::string PGSelectAll(const PGTable& t);
// Loads result row r as the current record (slot 0 the row id); a row this
// process updated since the snapshot comes as it was written.
void PGLoadCurrent(PGTable& t, const PGResult& res, int r);
// Replaces row values (slot 0 the row id) by this process's own later write
// of that row, when there is one.
void PGApplyOwnWrite(const PGTable& t, std::vector<std::string>& values);
// Empties the row cache.
void PGCacheClear(PGTable& t);
