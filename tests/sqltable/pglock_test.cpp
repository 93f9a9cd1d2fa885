// Table locks: the register, the layer's exclusive lock, and the
// application's lock forms, alone and contended by a second process.
#include <unistd.h>

#include <string>

#include "base/platform.h"
#include "sqltable/dbapp.h"
#include "sqltable/pglock.h"
#include "sqltest.h"

namespace {

class LockTest : public CatalogueTest {
 protected:
  void SetUp() override {
    CatalogueTest::SetUp();
    PGLockClearAll();
    ASSERT_EQ(CreateTable("dane\\lockt", {{"nazwa", "A10"}}), 0) << PGLastOp.Str();
  }
  void TearDown() override {
    PGLockClearAll();
    CatalogueTest::TearDown();
  }
  // The lock mode this session holds on a table, or empty.
  static std::string ModeHeld(const char* table) {
    PGResult res;
    const std::string sql = std::string("SELECT string_agg(mode, ',') FROM pg_locks WHERE pid = pg_backend_pid()"
                                        " AND relation = '") + table + "'::regclass";
    if (PGRunQueryWithTup(sql, res) != 0) return "error";
    return std::string(res.Value(0, 0));
  }
};

// --- The register ---

TEST_F(LockTest, RegisterKindsAndRemoval) {
  EXPECT_EQ(PGLockKind("dane\\lockt"), 0);
  PGLockRegister("dane\\lockt", kPGLockExclusive);
  PGLockRegister("DANE_INNA", kPGLockShare);
  PGLockRegister("dane\\zero", 0);
  EXPECT_EQ(PGLockKind("DANE_LOCKT"), 1);  // a path and its SQL name are one table
  EXPECT_EQ(PGLockKind("dane\\inna"), 2);
  EXPECT_EQ(PGLockKind("dane\\zero"), -1);
  EXPECT_EQ(PGLockCount(), 3);
  ASSERT_NE(PGHooks().lockKindOf, nullptr);  // searches ask the register before locking
  EXPECT_EQ(PGHooks().lockKindOf("DANE_LOCKT"), 1);
  PGLockUnregister("dane\\lockt");
  EXPECT_EQ(PGLockKind("dane\\lockt"), 0);
  EXPECT_EQ(PGLockKind("dane\\inna"), 2);
  PGLockClearAll();
  EXPECT_EQ(PGLockCount(), 0);
  EXPECT_EQ(PGLockKind("dane\\inna"), 0);
  // The shutdown of the layer clears the register too.
  PGLockRegister("DANE_LOCKT", 1);
  PGShutdownTables(1);
  EXPECT_EQ(PGLockCount(), 0);
}

TEST_F(LockTest, SecondEntryWarnsAndIsAddedAllTheSame) {
  SetKeyIdleHook([] { PushKey(13, 28); });
  PGLockRegister("DANE_LOCKT", kPGLockShare);
  PGLockRegister("DANE_LOCKT", kPGLockExclusive);  // the box waits for the Enter of the hook
  EXPECT_EQ(PGLockCount(), 2);
  EXPECT_EQ(PGLockKind("DANE_LOCKT"), 2);  // the first entry's kind
  EXPECT_NE(ScreenBytes().find("Ostrze"), std::string::npos);
  EXPECT_NE(ScreenBytes().find("SHARE."), std::string::npos);
  PGLockUnregister("DANE_LOCKT");  // every entry of the table goes
  EXPECT_EQ(PGLockCount(), 0);
}

TEST_F(LockTest, TwentyFirstEntryEndsTheProgram) {
  for (int i = 1; i <= kPGLockSlots; ++i) PGLockRegister(ShortText("T" + std::to_string(i)), 1);
  EXPECT_EQ(PGLockCount(), kPGLockSlots);
  AnswerBoxesOnStderr();
  EXPECT_EXIT(PGLockRegister("T21", 1), ::testing::ExitedWithCode(0),
              "Przekroczona jest mo\xA7liwa ilo\x9E\x8D blokad tablic\\.[^\n]*\n[^\n]*Program musi przerwa\x8D dzia\x92" "anie\\.");
}

// --- Locks on the server ---

TEST_F(LockTest, LayerLockNeedsATransactionAndItsFailureEndsTheProgram) {
  EXPECT_EQ(PGTblLockEx("dane\\lockt"), kPGLockOutsideTransaction);
  EXPECT_EQ(ModeHeld("dane_lockt"), "");
  ASSERT_EQ(PGTransBegin(), 0);
  EXPECT_EQ(PGTblLockEx("dane\\lockt"), 0);
  EXPECT_EQ(ModeHeld("dane_lockt"), "ExclusiveLock");
  EXPECT_EQ(PGLockCount(), 0);  // the layer's own lock is not registered
  EXPECT_EQ(PGTransCommit(), 0);
  EXPECT_EQ(ModeHeld("dane_lockt"), "");
  // A failed lock ends the program.
  ASSERT_EQ(PGTransBegin(), 0);
  AnswerBoxesOnStderr();
  EXPECT_EXIT((void)PGTblLockEx("dane\\brak"), ::testing::ExitedWithCode(0),
              "B\x92\x86" "d 1002 blokowania\\.[^\n]*\n[^\n]*Program musi zako\xA4" "czy\x8D dzia\x92" "anie\\.");
}

TEST_F(LockTest, ApplicationLocksOpenATransactionAndRegister) {
  const ShortText before = RowText(12);
  LockTableExcl("dane\\lockt");
  EXPECT_EQ(PGTransDepth, 1);
  EXPECT_EQ(PGLockKind("dane\\lockt"), kPGLockExclusive);
  EXPECT_EQ(ModeHeld("dane_lockt"), "ExclusiveLock");
  EXPECT_NE(ScreenBytes().find("Zaczekaj - blokada wy"), std::string::npos);
  EXPECT_NE(ScreenBytes().find("dane\\lockt\""), std::string::npos);
  EXPECT_EQ(RowText(12), before);  // the screen is back as it was
  EXPECT_EQ(PGTransCommit(), 0);
  PGLockClearAll();

  LockTableShare("dane\\lockt");
  EXPECT_EQ(PGLockKind("dane\\lockt"), kPGLockShare);
  EXPECT_EQ(ModeHeld("dane_lockt"), "ShareLock");
  EXPECT_NE(ScreenBytes().find("Zaczekaj - blokada do zapisu tablicy:"), std::string::npos);
  EXPECT_EQ(PGTransCommit(), 0);
  EXPECT_EQ(ModeHeld("dane_lockt"), "");
}

TEST_F(LockTest, SecondExclusiveLockInATransactionWarnsAndGoesOn) {
  SetKeyIdleHook([] { PushKey(13, 28); });
  LockTableExcl("dane\\lockt");
  LockTableExcl("dane\\lockt");
  EXPECT_EQ(PGTransDepth, 2);
  EXPECT_EQ(PGLockCount(), 2);
  EXPECT_NE(ScreenBytes().find("EXCLUSIVE."), std::string::npos);
  EXPECT_EQ(PGTransCommitAll(), 0);
}

// --- Two processes ---

bool WaitForWaiter(const char* table) {
  for (int i = 0; i < 500; ++i) {
    PGResult res;
    const std::string sql =
        std::string("SELECT count(*) FROM pg_locks WHERE NOT granted AND relation = '") + table + "'::regclass";
    if (PGRunQueryWithTup(sql, res) == 0 && res.Value(0, 0) != "0") return true;
    SleepMs(20);
  }
  return false;
}

TEST_F(LockTest, SecondProcessWaitsForTheFirstToCommit) {
  int ready[2];
  ASSERT_EQ(pipe(ready), 0);
  const pid_t first = fork();
  ASSERT_GE(first, 0);
  if (first == 0) {
    ConnectChild();
    LockTableExcl("dane\\lockt");
    (void)!write(ready[1], "L", 1);
    if (!WaitForWaiter("dane_lockt")) _exit(4);  // the parent stands in the server's queue
    if (PGRunQueryNoTup("INSERT INTO dane_lockt (nazwa) VALUES ('first')") != 0) _exit(5);
    SleepMs(100);
    (void)PGTransCommit();
    _exit(0);
  }
  char byte = 0;
  ASSERT_EQ(read(ready[0], &byte, 1), 1);
  LockTableExcl("dane\\lockt");  // waits for the first process's commit
  PGResult res;
  ASSERT_EQ(PGRunQueryWithTup("SELECT nazwa FROM dane_lockt", res), 0);
  ASSERT_EQ(res.Rows(), 1);  // its row is committed by the time we hold the lock
  EXPECT_EQ(res.Value(0, 0), "first");
  EXPECT_NE(ScreenBytes().find("dane\\lockt\""), std::string::npos);
  EXPECT_EQ(PGTransCommit(), 0);
  EXPECT_EQ(ExitStatus(first), 0);
  close(ready[0]);
  close(ready[1]);
}

// Locks a then b, each through the application's form, and commits a row.
[[noreturn]] void LockInOrder(const char* a, const char* b, int tell, int hear, const char* row) {
  ConnectChild();
  PushKey('N', 49);  // the failure box is answered "no"
  LockTableExcl(a);
  char byte = 'L';
  (void)!write(tell, &byte, 1);
  if (read(hear, &byte, 1) != 1) _exit(6);
  LockTableExcl(b);
  CheckDBError(PGRunQueryNoTup(std::string("INSERT INTO dane_lockt (nazwa) VALUES ('") + row + "')"));
  (void)PGTransCommitAll();  // each lock opened a logical transaction of its own
  _exit(0);
}

TEST_F(LockTest, DeadlockEndsOneProcessThroughTheFailurePathWhileTheOtherCommits) {
  ASSERT_EQ(CreateTable("dane\\lockb", {{"nazwa", "A10"}}), 0);
  { std::ofstream log("error.log"); }
  int toB[2], toA[2];
  ASSERT_EQ(pipe(toB), 0);
  ASSERT_EQ(pipe(toA), 0);
  const pid_t a = fork();
  if (a == 0) LockInOrder("dane\\lockt", "dane\\lockb", toB[1], toA[0], "A");
  const pid_t b = fork();
  if (b == 0) LockInOrder("dane\\lockb", "dane\\lockt", toA[1], toB[0], "B");
  EXPECT_EQ(ExitStatus(a), 0);
  EXPECT_EQ(ExitStatus(b), 0);
  EXPECT_EQ(Scalar("SELECT count(*) FROM dane_lockt"), "1");  // one committed, one rolled back
  const std::string log = ReadFile("error.log");
  std::size_t reports = 0;
  for (auto at = log.find("Blad DBMS nr 1002."); at != std::string::npos; at = log.find("Blad DBMS nr", at + 1)) ++reports;
  EXPECT_EQ(reports, 1u) << log;
  for (int fd : {toA[0], toA[1], toB[0], toB[1]}) close(fd);
}

}  // namespace
