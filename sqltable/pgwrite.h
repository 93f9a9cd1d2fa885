// Writes through record buffers: append, update and delete of the current
// record, and row locks. Every value goes into the statement as a literal of
// its kind (text escaped between single quotes), so no value can change it.
#pragma once

#include <cstdint>

#include "sqltable/pgrecord.h"
#include "sqltable/pgtable.h"

// Adds the buffer as a new row ("INSERT ... RETURNING oid"); the row becomes
// the current record. 76 bad table, 104 bad buffer, 81 other layout, 97 failed.
[[nodiscard]] int16_t PGRecAppend(int16_t tbl, int16_t rec);
// The same operation under its second name.
[[nodiscard]] int16_t PGRecInsert(int16_t tbl, int16_t rec);
// Writes the buffer over the current record (found by its old key, or by its
// row id without key fields); sends nothing when no field differs. 75 for a
// lost composite ordering, 118 failed, or the code of placing an unplaced table.
[[nodiscard]] int16_t PGRecUpdate(int16_t tbl, int16_t rec);
// Deletes the current record; the table is then unplaced. 118 failed.
[[nodiscard]] int16_t PGRecDelete(int16_t tbl);
// Deletes the current record and stays in place: on the next row, or the
// previous one at the end of the table.
[[nodiscard]] int16_t PGRecDeleteD(int16_t tbl);
// Opens a logical transaction and locks the rows whose field fldOrCount
// (single) or whose first fldOrCount key fields equal the buffer's values,
// until the commit; 110 when no such row is left.
[[nodiscard]] int16_t LockRecords(int16_t tbl, int16_t rec, bool single, int fldOrCount);
