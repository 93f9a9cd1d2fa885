// The application's forms of opening and locking tables.
#include "sqltable/dbapp.h"

namespace {

void LockTable(const ShortText& path, bool exclusive) {
  PGLastOp = exclusive ? "LockTableExcl" : "LockTableShare";
  CheckDBError(PGTransBegin());
  // The waiting message stays up until the server gives the lock or the failure ends the program.
  (void)PGLockTableWaiting(path, exclusive, CheckDBError);
  PGLockRegister(PGSqlName(path), exclusive ? kPGLockExclusive : kPGLockShare);
}

}  // namespace

int16_t OpenTable(const ShortText& path, int16_t& tbl, int indexHandle, int flag) {
  lastOpenTable = path;
  return PGTblOpen(path, tbl, indexHandle, flag);
}

void LockTableExcl(const ShortText& path) { LockTable(path, true); }

void LockTableShare(const ShortText& path) { LockTable(path, false); }

ExclusiveTableLock::ExclusiveTableLock(const ShortText& path) : path_(path) { LockTableExcl(path_); }

ExclusiveTableLock::~ExclusiveTableLock() {
  if (!done_) (void)PGTransRollback();
  PGLockUnregister(path_);
}

int16_t ExclusiveTableLock::Commit() {
  done_ = true;
  return PGTransCommit();
}
