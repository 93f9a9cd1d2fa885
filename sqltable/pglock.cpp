// The lock register and the layer's own table lock.
#include "sqltable/pglock.h"

#include <array>
#include <string>

#include "base/mazovia.h"
#include "sqltable/pgtable.h"
#include "sqltable/pgui.h"
#include "tui/msgbox.h"

namespace {

struct LockEntry {
  bool used = false;
  ShortText sqlName;  // entries compare by SQL name, so a path and its mapped name meet
  int kind = 0;
};

std::array<LockEntry, kPGLockSlots> gRegister;

// Shutdown of the layer empties the register, and searches consult it.
void InstallHooks() {
  static bool hooked = false;
  if (hooked) return;
  PGHooks().clearLockRegister = PGLockClearAll;
  PGHooks().lockKindOf = PGLockKind;
  hooked = true;
}

const LockEntry* FindEntry(const ShortText& sqlName) {
  for (const LockEntry& e : gRegister)
    if (e.used && e.sqlName == sqlName) return &e;
  return nullptr;
}

ShortText KindText(int kind) {
  if (kind == kPGLockExclusive) return "EXCLUSIVE";
  if (kind == kPGLockShare) return "SHARE";
  return ShortText(std::to_string(kind));
}

void WarnAlreadyLocked(const ShortText& name, int kind) {
  ShortText text("Ostrzeżenie - tablica:@"_mz);
  text += name;
  text += "@ma blokadę typu "_mz;
  text += KindText(kind);
  text += '.';
  (void)MessageBox(text, 0);
}

}  // namespace

int PGLockKind(const ShortText& name) {
  const LockEntry* e = FindEntry(PGSqlName(name));
  if (!e) return 0;
  return e->kind == 0 ? -1 : e->kind;
}

void PGLockRegister(const ShortText& name, int kind) {
  InstallHooks();
  const ShortText sqlName = PGSqlName(name);
  if (const LockEntry* e = FindEntry(sqlName)) WarnAlreadyLocked(name, e->kind);
  for (LockEntry& e : gRegister) {
    if (e.used) continue;
    e = LockEntry{true, sqlName, kind};
    return;
  }
  (void)MessageBox("Przekroczona jest możliwa ilość blokad tablic.@Program musi przerwać działanie."_mz, 0);
  PGUiEndProgram();
}

void PGLockUnregister(const ShortText& name) {
  const ShortText sqlName = PGSqlName(name);
  for (LockEntry& e : gRegister)
    if (e.used && e.sqlName == sqlName) e = LockEntry{};
}

void PGLockClearAll() { gRegister.fill(LockEntry{}); }

int PGLockCount() {
  int n = 0;
  for (const LockEntry& e : gRegister) n += e.used ? 1 : 0;
  return n;
}

int16_t PGRunUnderMessage(const ShortText& text, const std::string& sql, bool wantsTuples, PGResult& res,
                          void (*check)(int16_t code)) {
  const PGUiNotice notice(text);  // stands while the server keeps us in its queue
  const int16_t code = PGExec(res, sql, wantsTuples);
  if (check) check(code);
  return code;
}

int16_t PGLockTableWaiting(const ShortText& path, bool exclusive, void (*check)(int16_t code)) {
  ShortText text(exclusive ? "Zaczekaj - blokada wyłączna tablicy:@`"_mz : "Zaczekaj - blokada do zapisu tablicy:@`"_mz);
  text += path.Copy(1, 76);
  text += '"';
  const std::string sql = "LOCK TABLE " + PGSqlName(path).Str() + (exclusive ? " IN EXCLUSIVE MODE" : " IN SHARE MODE");
  PGResult res;
  return PGRunUnderMessage(text, sql, false, res, check);
}

int16_t PGTblLockEx(const ShortText& name) {
  if (PGTransDepth == 0) return kPGLockOutsideTransaction;
  PGLastOp = "PGTblLockEx";
  const int16_t code = PGLockTableWaiting(name, true);
  if (code != 0) PGUiFatal(code, " blokowania.@Program musi zakończyć działanie."_mz);
  return kPGOk;
}
