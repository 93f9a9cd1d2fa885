// Logical transactions. The server knows one transaction; the program nests
// them and only the outermost begin, commit or rollback reaches the server.
// An inner rollback therefore rolls nothing back until the outermost runs.
#include <string>

#include "base/mazovia.h"
#include "base/text.h"
#include "sqltable/pgconn.h"
#include "sqltable/pgui.h"

namespace {

// A failed transaction statement leaves the data unsafe: show why, then end.
[[noreturn]] void TransactionFatal(int16_t code, const ShortText& tail) {
  PGUiMessageBox("Błąd:@"_mz + WrapAt76(PGLastOp), 0);
  ShortText text("Błąd "_mz);
  text += std::to_string(code);
  text += tail;
  PGUiMessageBox(text, 0);
  PGUiEndProgram();
}

void RunOrDie(const char* sql, const ShortText& tail) {
  PGResult res;
  const int16_t code = PGExec(res, sql, false);
  if (code != 0) TransactionFatal(code, tail);
}

constexpr ShortText kBeginTail = " otwarcia transakcji.@Program musi zakończyć działanie."_mz;
constexpr ShortText kCommitTail = " zatwierdzenia transakcji.@Program musi zakończyć działanie."_mz;
constexpr ShortText kRollbackTail = " wycofania transakcji.@Program musi zakończyć działanie."_mz;

}  // namespace

int16_t PGTransBegin() {
  if (PGTransDepth != 0) {
    ++PGTransDepth;
    return kPGOk;
  }
  RunOrDie("BEGIN", kBeginTail);
  PGTransDepth = 1;
  return kPGOk;
}

int16_t PGTransCommit() {
  if (PGTransDepth > 1) {
    --PGTransDepth;
  } else if (PGTransDepth == 1) {
    RunOrDie("COMMIT", kCommitTail);
    PGTransDepth = 0;
  }
  return kPGOk;
}

int16_t PGTransRollback() {
  if (PGTransDepth > 1) {
    --PGTransDepth;
  } else if (PGTransDepth == 1) {
    RunOrDie("ROLLBACK", kRollbackTail);
    PGTransDepth = 0;
  }
  return kPGOk;
}

int16_t PGTransCommitAll() {
  if (PGTransDepth > 0) {
    RunOrDie("COMMIT", kCommitTail);
    PGTransDepth = 0;
  }
  return kPGOk;
}

int16_t PGTransRollbackAll() {
  if (PGTransDepth > 0) {
    RunOrDie("ROLLBACK", kRollbackTail);
    PGTransDepth = 0;
  }
  return kPGOk;
}
