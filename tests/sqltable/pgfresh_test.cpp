// What a process shows after writes, its own and other processes': an own
// update is never undone by rows held from before it, rows that someone else
// wrote before ours never make ours look deleted, a write that finds its row
// gone says so, NULLs written by other programs are found and rewritten, and
// long table names stay distinct.
#include <unistd.h>

#include <string>

#include "base/dates.h"
#include "sqltable/pgnav.h"
#include "sqltable/pgrecord.h"
#include "sqltable/pgwrite.h"
#include "sqltest.h"

namespace {

// dane\fr: k I (key), v A20, n I, d D; rows k = 10, 20, ... 10*rows.
class FreshTest : public OneTableTest {
 protected:
  static constexpr int kK = 1, kV = 2;
  void SetUp() override {
    OneTableTest::SetUp();
    ASSERT_EQ(CreateTable("dane\\fr", {{"k", "I"}, {"v", "A20"}, {"n", "I"}, {"d", "D"}}), 0);
    const int16_t key[1] = {1};
    ASSERT_EQ(PGKeyAdd("dane\\fr", 1, key, 0), 0) << PGLastOp.Str();
  }
  // The rows, then the table open.
  void FillAndOpen(int rows) {
    ASSERT_TRUE(Psql("INSERT INTO dane_fr (k,v,n,d) SELECT 10*i,'r'||i,i,'2024-01-01' FROM generate_series(1," +
                     std::to_string(rows) + ") i"));
    Open();
  }
  void Open(int index = 0) { OpenTable("dane\\fr", index); }
  // Writes v (and n when given) into the current row through the buffer.
  int16_t Update(const char* v, int32_t n = -1) {
    EXPECT_EQ(PGRecGet(tbl_, rec_), 0);
    EXPECT_EQ(PGPutAlpha(rec_, 2, v), 0);
    if (n >= 0) {
      EXPECT_EQ(PGPutLong(rec_, 3, n), 0);
    }
    return PGRecUpdate(tbl_, rec_);
  }
  int16_t Search(int32_t k) {
    EXPECT_EQ(PGPutLong(rec_, 1, k), 0);
    return PGSrchKey(tbl_, rec_, 1, 0);
  }
  static std::string Row(int k) {
    return Scalar("SELECT v||'|'||n FROM dane_fr WHERE k=" + std::to_string(k));
  }
};

TEST_F(FreshTest, OwnUpdateSurvivesEveryRoadBackToTheRow) {
  FillAndOpen(150);
  ASSERT_EQ(PGRecFirst(tbl_), 0);
  ASSERT_EQ(PGRecNext(tbl_), 0);  // row 2, with rows 3..62 cached
  ASSERT_EQ(Update("nowy"), 0);
  // Through the row cache.
  ASSERT_EQ(PGRecNext(tbl_), 0);
  ExpectOn(PGRecPrev(tbl_), kV, "nowy");
  ASSERT_EQ(Update("nowy", 77), 0);  // a second field: the first one's value stays
  EXPECT_EQ(Row(20), "nowy|77");
  // From the older snapshot, after the cache has moved on past the row.
  ASSERT_EQ(PGRecNext(tbl_), 0);
  ASSERT_EQ(Update("trzeci"), 0);
  for (int i = 0; i < 100; ++i) ASSERT_EQ(PGRecNext(tbl_), 0);
  for (int i = 0; i < 100; ++i) ASSERT_EQ(PGRecPrev(tbl_), 0);
  EXPECT_EQ(LongOf(kK), 30);
  EXPECT_EQ(AlphaOf(kV), "trzeci");
  ExpectOn(PGRecPrev(tbl_), kV, "nowy");
  EXPECT_EQ(LongOf(3), 77);
  // The list road.
  for (int r = 1; r <= 60; ++r) ASSERT_EQ(PGRecGoto_c(tbl_, r), 0);
  ASSERT_EQ(PGRecGoto_c(tbl_, 5), 0);
  ASSERT_EQ(Update("piaty"), 0);
  ASSERT_EQ(PGRecGoto_c(tbl_, 6), 0);
  ExpectOn(PGRecGoto_c(tbl_, 5), kV, "piaty");
  EXPECT_EQ(Row(50), "piaty|5");
  EXPECT_EQ(Row(20), "nowy|77");
}

TEST_F(FreshTest, OwnAppendAndKeyChangeRenumberTheRows) {
  FillAndOpen(10);
  for (int r = 1; r <= 10; ++r) ASSERT_EQ(PGRecGoto_c(tbl_, r), 0);
  ASSERT_EQ(PGPutLong(rec_, 1, 5), 0);
  ASSERT_EQ(PGPutAlpha(rec_, 2, "przed"), 0);
  ASSERT_EQ(PGRecAppend(tbl_, rec_), 0);
  ExpectOn(PGRecGoto_c(tbl_, 1), kK, 5);  // row 1 is now the appended one, not the cached k=10
  ASSERT_EQ(PGRecGoto_c(tbl_, 3), 0);
  ASSERT_EQ(PGRecGet(tbl_, rec_), 0);
  ASSERT_EQ(PGPutLong(rec_, 1, 1000), 0);  // the key moves the row to the end
  ASSERT_EQ(PGRecUpdate(tbl_, rec_), 0);
  EXPECT_EQ(Num(), 11);
  ExpectOn(PGRecGoto_c(tbl_, 3), kK, 30);
}

TEST_F(FreshTest, RowsAnotherProcessAppendedBeforeOursDoNotMakeOursGone) {
  FillAndOpen(10);
  ASSERT_EQ(PGRecFirst(tbl_), 0);  // the snapshot is taken here
  int ready[2], done[2];
  ASSERT_EQ(pipe(ready), 0);
  ASSERT_EQ(pipe(done), 0);
  const pid_t child = fork();
  ASSERT_GE(child, 0);
  if (child == 0) {
    ConnectChild();
    int16_t tbl = 0, rec = 0;
    if (PGTblOpen("dane\\fr", tbl, 0) != 0 || PGRecBufOpen(tbl, rec) != 0) _exit(4);
    for (int32_t k = 1; k <= 5; ++k)
      if (PGPutLong(rec, 1, k) != 0 || PGRecAppend(tbl, rec) != 0) _exit(5);
    (void)!write(ready[1], "A", 1);
    close(done[1]);
    char byte = 0;
    (void)!read(done[0], &byte, 1);  // the table stays open, nothing published, until the parent is done
    _exit(0);
  }
  // The child ends when told or when this end closes, whatever the test finds.
  struct Release {
    int fd;
    ~Release() {
      if (fd >= 0) close(fd);
    }
  } release{done[1]};
  char byte = 0;
  ASSERT_EQ(read(ready[0], &byte, 1), 1);
  ASSERT_EQ(Search(50), 0);
  ExpectOn(PGRecNext(tbl_), kK, 60);
  EXPECT_EQ(Num(), 11);  // five new rows and 10..60
  ASSERT_EQ(Search(30), 0);
  ExpectOn(PGRecPrev(tbl_), kK, 20);
  close(release.fd);
  release.fd = -1;
  EXPECT_EQ(ExitStatus(child), 0);
  for (int fd : {ready[0], ready[1], done[0]}) close(fd);
}

TEST_F(FreshTest, WritesToARowSomeoneDeletedGiveFifty) {
  FillAndOpen(10);
  ASSERT_EQ(PGRecFirst(tbl_), 0);
  ASSERT_EQ(PGRecNext(tbl_), 0);  // k=20, the rest cached
  ASSERT_TRUE(Psql("DELETE FROM dane_fr WHERE k IN (20, 30)"));
  EXPECT_EQ(Update("zgubiony"), kPGRecordGone);
  EXPECT_EQ(Scalar("SELECT count(*) FROM dane_fr WHERE v='zgubiony'"), "0");
  EXPECT_EQ(PGRecNext(tbl_), kPGRecordGone);  // not the cached k=30, which is gone too
  ASSERT_EQ(Search(40), 0);
  ASSERT_TRUE(Psql("DELETE FROM dane_fr WHERE k=40"));
  EXPECT_EQ(PGRecDelete(tbl_), kPGRecordGone);
  ASSERT_EQ(Search(50), 0);
  ExpectOn(PGRecPrev(tbl_), kK, 10);
  EXPECT_EQ(Num(), 1);
}

TEST_F(FreshTest, NullsWrittenByOtherProgramsAreFoundAndRewritten) {
  const int16_t n[1] = {3};
  ASSERT_EQ(PGKeyAdd("dane\\fr", 1, n, 1), 0);
  // Ordered by n: k=40 (n 1), k=20 (n 5), then the NULLs k=10, k=30.
  ASSERT_TRUE(Psql("INSERT INTO dane_fr (k,v,n,d) VALUES (10,'a',NULL,NULL),(20,'b',5,'2024-02-01'),"
                   "(30,'c',NULL,NULL),(40,'d',1,'2024-03-01')"));
  Open(3);
  ExpectOn(PGRecLast(tbl_), kK, 30);
  EXPECT_EQ(Num(), 4);
  ExpectOn(PGRecPrev(tbl_), kK, 10);
  int32_t days = 0;
  ASSERT_EQ(PGGetDate(rec_, 4, days), 0);
  EXPECT_EQ(days, kBlankDateSerial);
  ASSERT_EQ(Update("zmiana"), 0);
  EXPECT_EQ(Scalar("SELECT v||'|'||(n IS NULL)||'|'||(d IS NULL) FROM dane_fr WHERE k=10"), "zmiana|true|true");
  ExpectOn(PGRecPrev(tbl_), kK, 20);
  // The row copies into a table of the same layout.
  int16_t tbl2 = 0, rec2 = 0;
  ASSERT_NO_FATAL_FAILURE(CreateAndOpen("dane\\fr2", {{"k", "I"}, {"v", "A20"}, {"n", "I"}, {"d", "D"}}, tbl2, rec2));
  ASSERT_EQ(PGRecLast(tbl_), 0);
  ASSERT_EQ(PGRecGet(tbl_, rec2), 0);
  ASSERT_EQ(PGRecAppend(tbl2, rec2), 0) << PGLastOp.Str();
  EXPECT_EQ(Scalar("SELECT k||'|'||(d IS NULL) FROM dane_fr2"), "30|true");
}

TEST_F(FreshTest, LongNamesMapToDistinctShortIdentifiers) {
  const std::string head = "dane\\" + std::string(70, 'x');
  const ShortText first(head + "1"), second(head + "2");
  EXPECT_NE(PGSqlName(first), PGSqlName(second));
  EXPECT_LE(static_cast<std::size_t>(PGSqlName(first).Length()), kPGMaxSqlName);
  EXPECT_EQ(PGSqlName(ShortText("dane\\" + std::string(30, 'y'))).Str(), "DANE_" + std::string(30, 'Y'));
  ASSERT_EQ(CreateTable(first, {{"a", "A5"}, {"b", "I"}}), 0);
  ASSERT_TRUE(Psql("INSERT INTO " + PGSqlName(first).Str() + " (a) VALUES ('keep')"));
  ASSERT_EQ(CreateTable(second, {{"a", "A5"}}), 0);
  EXPECT_EQ(Scalar("SELECT a FROM " + PGSqlName(first).Str()), "keep");
  const int16_t key[1] = {1}, b[1] = {2};
  ASSERT_EQ(PGKeyAdd(first, 1, key, 0), 0) << PGLastOp.Str();
  ASSERT_EQ(PGKeyAdd(first, 1, b, 1), 0) << PGLastOp.Str();
  // Each table has its own row-id index, and the field index keeps its full name.
  const std::string table = Scalar("SELECT lower('" + PGSqlName(first).Str() + "')");
  const std::string other = Scalar("SELECT lower('" + PGSqlName(second).Str() + "')");
  EXPECT_EQ(Scalar("SELECT count(*) FROM pg_indexes WHERE indexname IN ('" + table + "_oidindeks','" + other +
                   "_oidindeks')"),
            "2");
  EXPECT_EQ(Scalar("SELECT count(*) FROM pg_indexes WHERE indexname = '" + table + "_b'"), "1");
}

}  // namespace
