// Record writes against the real server: hostile values in every literal, the
// state of the table after each write, row locks.
#include <string>

#include "sqltable/pgnav.h"
#include "sqltable/pgrecord.h"
#include "sqltable/pgwrite.h"
#include "sqltest.h"

namespace {

// dane\w: key field kod (A40), nazwa (A60), ilosc (I).
class WriteTest : public OneTableTest {
 protected:
  void SetUp() override {
    OneTableTest::SetUp();
    ASSERT_EQ(CreateTable("dane\\w", {{"kod", "A40"}, {"nazwa", "A60"}, {"ilosc", "I"}}), 0) << PGLastOp.Str();
    const int16_t key[] = {1};
    ASSERT_EQ(PGKeyAdd("dane\\w", 1, key, 0), 0) << PGLastOp.Str();
    Open();
  }
  void Open() { OpenTable("dane\\w"); }
  PGTable& T() { return *PGTableAt(tbl_); }
  // Appends one row through the buffer.
  int16_t Append(const ShortText& kod, const ShortText& nazwa, int32_t ilosc) {
    EXPECT_EQ(PGPutAlpha(rec_, 1, kod), 0);
    EXPECT_EQ(PGPutAlpha(rec_, 2, nazwa), 0);
    EXPECT_EQ(PGPutLong(rec_, 3, ilosc), 0);
    return PGRecAppend(tbl_, rec_);
  }
  // Rows as "kod|nazwa|ilosc" in key order, read past the layer.
  static std::string Rows() { return Scalar("SELECT string_agg(kod||'|'||nazwa||'|'||ilosc, ';' ORDER BY kod) FROM dane_w"); }
  static std::string Counter() { return Scalar("SELECT il_zm FROM tables_list WHERE nazt='DANE_W' AND lp=1"); }
};

TEST_F(WriteTest, AppendTakesTheRowIdBackAndBecomesTheCurrentRecord) {
  ASSERT_EQ(Append("A1", "pierwszy", 5), 0) << PGLastOp.Str();
  EXPECT_EQ(T().curValues[0], Scalar("SELECT oid FROM dane_w WHERE kod='A1'"));
  EXPECT_EQ(T().curValues[2], "pierwszy");
  EXPECT_TRUE(T().positioned && T().viewStale && T().posStale && T().changedByUs && T().rebuildCursor &&
              T().controlStale);
  EXPECT_EQ(PGRecInsert(tbl_, rec_), kPGIndexInCatalogue);  // the key repeats: the unique index refuses it
  EXPECT_EQ(T().rowCount, 1);
  EXPECT_EQ(Rows(), "A1|pierwszy|5");
}

TEST_F(WriteTest, HandlesAndLayoutsAreChecked) {
  int16_t other = 0, otherRec = 0;
  ASSERT_NO_FATAL_FAILURE(CreateAndOpen("dane\\inna", {{"a", "A5"}}, other, otherRec));
  EXPECT_EQ(PGRecAppend(99, rec_), kPGBadTableHandle);
  EXPECT_EQ(PGRecAppend(tbl_, 198), kPGBadRecordBuffer);
  EXPECT_EQ(PGRecAppend(tbl_, otherRec), kPGLayoutDiffers);
  EXPECT_EQ(PGRecUpdate(tbl_, otherRec), kPGLayoutDiffers);
  EXPECT_EQ(PGRecDelete(99), kPGBadTableHandle);
  EXPECT_EQ(PGRecDeleteD(99), kPGBadTableHandle);
  EXPECT_EQ(Rows(), "");
}

const char* const kHostile[] = {
    "x'); DROP TABLE dane_w; --",
    "\\'; DELETE FROM dane_w; --",
    "' OR '1'='1",
    "'' OR 1=1 --",
    "\\",
    "'",
    "''",
    "a\\'b",
    "\\\\'",
    "%_%",
    "$$; DROP TABLE dane_w; $$",
    "E'\\x27'",
};

// Hostile texts as keys and names: each row is written, found by its old key,
// changed, locked and deleted alone, and nothing else is touched.
TEST_F(WriteTest, NoValueCanAlterAStatement) {
  ASSERT_EQ(Append("zz-guard", "guard", 0), 0);
  int n = 0;
  for (const char* hostile : kHostile) {
    SCOPED_TRACE(hostile);
    ASSERT_EQ(Append(hostile, hostile, ++n), 0) << PGLastOp.Str();
    ASSERT_EQ(PGPutAlpha(rec_, 2, ShortText(std::string(hostile) + "!")), 0);
    ASSERT_EQ(PGPutAlpha(rec_, 1, ShortText(std::string(hostile) + "?")), 0);  // a new key: the old one finds the row
    ASSERT_EQ(PGRecUpdate(tbl_, rec_), 0) << PGLastOp.Str();
    EXPECT_EQ(Scalar("SELECT nazwa FROM dane_w WHERE ilosc=" + std::to_string(n)), std::string(hostile) + "!");
    EXPECT_EQ(LockRecords(tbl_, rec_, true, 2), 0) << PGLastOp.Str();
    EXPECT_EQ(LockRecords(tbl_, rec_, false, 1), 0) << PGLastOp.Str();
    ASSERT_EQ(PGTransCommitAll(), 0);
    EXPECT_EQ(Scalar("SELECT count(*) FROM dane_w"), "2");
    ASSERT_EQ(PGRecDelete(tbl_), 0) << PGLastOp.Str();
    EXPECT_EQ(Rows(), "zz-guard|guard|0");
  }
}

TEST_F(WriteTest, UpdateWithoutChangeSendsNothing) {
  ASSERT_EQ(Append("A", "a", 1), 0);
  ASSERT_EQ(PGBumpChangeCounter(T()), 0);
  const std::string counter = Counter(), xmin = Scalar("SELECT xmin FROM dane_w");
  ASSERT_EQ(PGRecGet(tbl_, rec_), 0);
  T().viewStale = T().posStale = T().rebuildCursor = false;
  EXPECT_EQ(PGRecUpdate(tbl_, rec_), 0);
  EXPECT_FALSE(T().changedByUs || T().viewStale || T().rebuildCursor);
  EXPECT_EQ(PGTblClose(tbl_), 0);
  EXPECT_EQ(Counter(), counter);
  EXPECT_EQ(Scalar("SELECT xmin FROM dane_w"), xmin);  // the row was not rewritten
}

TEST_F(WriteTest, UpdateTellsWhetherTheOrderingMayChange) {
  ASSERT_EQ(Append("A", "a", 1), 0);
  T().posStale = false;
  ASSERT_EQ(PGPutLong(rec_, 3, 2), 0);  // not a key field
  ASSERT_EQ(PGRecUpdate(tbl_, rec_), 0);
  EXPECT_FALSE(T().posStale);
  EXPECT_TRUE(T().viewStale && T().changedByUs);
  ASSERT_EQ(PGPutAlpha(rec_, 1, "B"), 0);
  ASSERT_EQ(PGRecUpdate(tbl_, rec_), 0);
  EXPECT_TRUE(T().posStale);
  EXPECT_EQ(Rows(), "B|a|2");

  T().indexHandle = 3;  // ordered by ilosc
  T().posStale = false;
  ASSERT_EQ(PGPutAlpha(rec_, 2, "b"), 0);
  ASSERT_EQ(PGRecUpdate(tbl_, rec_), 0);
  EXPECT_FALSE(T().posStale);
  ASSERT_EQ(PGPutLong(rec_, 3, 7), 0);
  ASSERT_EQ(PGRecUpdate(tbl_, rec_), 0);
  EXPECT_TRUE(T().posStale);

  T().indexHandle = kPGLastComposite;  // a composite ordering without its descriptor
  ASSERT_EQ(PGPutLong(rec_, 3, 8), 0);
  EXPECT_EQ(PGRecUpdate(tbl_, rec_), kPGBadFieldHandle);
  EXPECT_EQ(Rows(), "B|b|7");
}

TEST_F(WriteTest, TablesWithoutKeysAreWrittenByRowId) {
  int16_t t = 0, r = 0;
  ASSERT_NO_FATAL_FAILURE(CreateAndOpen("dane\\bez", {{"a", "A5"}}, t, r));  // no key fields
  ASSERT_EQ(PGPutAlpha(r, 1, "same"), 0);
  ASSERT_EQ(PGRecAppend(t, r), 0);
  ASSERT_EQ(PGRecAppend(t, r), 0);  // two equal rows: only the row id tells them apart
  ASSERT_EQ(PGPutAlpha(r, 1, "diff"), 0);
  ASSERT_EQ(PGRecUpdate(t, r), 0);
  EXPECT_EQ(Scalar("SELECT string_agg(a, ',' ORDER BY oid) FROM dane_bez"), "same,diff");
  ASSERT_EQ(PGRecDelete(t), 0);
  EXPECT_EQ(Scalar("SELECT string_agg(a, ',' ORDER BY oid) FROM dane_bez"), "same");
  EXPECT_FALSE(PGTableAt(t)->positioned);
}

TEST_F(WriteTest, DeleteAndStayGoesToTheNextRowOrThePreviousAtTheEndOrNowhere) {
  for (const char* k : {"A", "B", "C", "D", "E"}) ASSERT_EQ(Append(k, k, 0), 0);
  ASSERT_EQ(PGRecFirst(tbl_), 0);
  ASSERT_EQ(PGRecNext(tbl_), 0);  // on B
  ASSERT_EQ(PGRecDeleteD(tbl_), 0);
  EXPECT_EQ(T().curValues[1], "C");
  EXPECT_TRUE(T().positioned && T().changedByUs && T().viewStale && T().rebuildCursor);
  ASSERT_EQ(PGRecNext(tbl_), 0);
  ASSERT_EQ(PGRecNext(tbl_), 0);  // on E, the last record, its number known
  ASSERT_EQ(PGRecDeleteD(tbl_), 0);
  EXPECT_EQ(T().curValues[1], "D");  // the new last record
  EXPECT_TRUE(T().positioned);
  EXPECT_EQ(PGRecNext(tbl_), kPGEndOfTable);
  EXPECT_EQ(Rows(), "A|A|0;C|C|0;D|D|0");
  // After PGRecLast the row's number is unknown: the row goes and the table stays unplaced.
  ASSERT_EQ(PGRecLast(tbl_), 0);
  ASSERT_EQ(PGRecDeleteD(tbl_), 0);
  EXPECT_FALSE(T().positioned);
  EXPECT_EQ(Rows(), "A|A|0;C|C|0");
  // On the only row, the row goes and the table stays unplaced.
  ASSERT_TRUE(Psql("DELETE FROM dane_w WHERE kod='A'"));
  ASSERT_EQ(PGRecFirst(tbl_), 0);
  ASSERT_EQ(PGRecDeleteD(tbl_), 0);
  EXPECT_FALSE(T().positioned);
  EXPECT_EQ(Rows(), "");
}

TEST_F(WriteTest, ClosingOrSwitchingTheOrderPublishesTheChangeOnce) {
  const std::string before = Counter();
  ASSERT_EQ(Append("A", "a", 1), 0);
  ASSERT_EQ(Append("B", "b", 1), 0);
  EXPECT_EQ(Counter(), before);  // not at each write
  ASSERT_EQ(PGTblClose(tbl_), 0);
  EXPECT_EQ(Counter(), std::to_string(std::stoi(before) + 1));
  Open();
  ASSERT_EQ(Append("C", "c", 1), 0);
  ASSERT_EQ(PGIndexSwitch(tbl_, rec_, 3), 0);  // switching the order publishes too
  EXPECT_EQ(Counter(), std::to_string(std::stoi(before) + 2));
  EXPECT_FALSE(T().changedByUs);
  ASSERT_EQ(PGTblClose(tbl_), 0);
  EXPECT_EQ(Counter(), std::to_string(std::stoi(before) + 2));  // nothing owed any more
}

TEST_F(WriteTest, RowLocksHoldUntilTheCommitAndMissingRowsGive110) {
  ASSERT_EQ(Append("A", "a", 1), 0);
  ASSERT_EQ(LockRecords(tbl_, rec_, false, 1), 0);
  EXPECT_EQ(PGTransDepth, 1);
  EXPECT_NE(ScreenBytes().find("Zaczekaj - blokada rekord"), std::string::npos);
  EXPECT_FALSE(Psql("SELECT 1 FROM dane_w WHERE kod='A' FOR UPDATE NOWAIT"));  // held by us
  ASSERT_EQ(PGTransCommit(), 0);
  EXPECT_TRUE(Psql("SELECT 1 FROM dane_w WHERE kod='A' FOR UPDATE NOWAIT"));
  ASSERT_EQ(PGPutAlpha(rec_, 1, "gone"), 0);
  EXPECT_EQ(LockRecords(tbl_, rec_, false, 1), kPGRecordLock);
  EXPECT_EQ(LockRecords(tbl_, rec_, true, 4), kPGBadFieldHandle);
  EXPECT_EQ(PGTransCommitAll(), 0);
}

}  // namespace
