// The application's wrappers around the table layer. Application code does
// not handle database errors: it passes every code to CheckDBError, which
// ends the program in an orderly way on anything but 0.
#pragma once

#include <cstdint>

#include "base/shorttext.h"
#include "sqltable/pglock.h"
#include "sqltable/pgtable.h"

// The path given to the last OpenTable, shown when the program fails.
extern ShortText lastOpenTable;

// Remembers the path in lastOpenTable, then PGTblOpen; its code.
[[nodiscard]] int16_t OpenTable(const ShortText& path, int16_t& tbl, int indexHandle, int flag = 0);

// 0 does nothing. Any other code: the report in "error.log" when that file
// exists, the yes/no box and on yes the detail boxes, rollback to depth 0,
// the session's end when a user is logged in, a cleared screen, exit status 0.
void CheckDBError(int16_t code);

// Called by CheckDBError to close the logged-in user's session when the
// server still answers; set while a user is logged in, null otherwise.
using DBSessionLeaveFn = void (*)();
void SetDBSessionLeave(DBSessionLeaveFn leave);

// The description of a table for the failure message, from its upper-cased
// path ("DANE\1\NAGLOWKI"); empty when the name is not one of the known ones.
ShortText DBTableDescription(const ShortText& upperPath);

// Opens a logical transaction and locks the table exclusively, showing
// "Zaczekaj - blokada wyłączna tablicy:" while the server makes us wait;
// registers the lock (kind 1). Any failure ends the program.
void LockTableExcl(const ShortText& path);
// The same with a share lock (kind 2) and "Zaczekaj - blokada do zapisu tablicy:".
void LockTableShare(const ShortText& path);

// LockTableExcl for the life of the object: the transaction is rolled back
// and the lock released on every road unless Commit() ran first.
class ExclusiveTableLock {
 public:
  explicit ExclusiveTableLock(const ShortText& path);
  ~ExclusiveTableLock();
  ExclusiveTableLock(const ExclusiveTableLock&) = delete;
  ExclusiveTableLock& operator=(const ExclusiveTableLock&) = delete;
  // Commits the lock's transaction; the commit's code.
  int16_t Commit();

 private:
  ShortText path_;
  bool done_ = false;
};
