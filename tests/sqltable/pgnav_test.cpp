// Navigation against the real cluster: ends of tables, batches and the row
// cache, searches and their closest landing, record numbers by counting, other
// users' deletes and changes (the fixture's own connection plays the other
// user), filters, views, the cursorless road and the orderings.
#include <cstdlib>
#include <new>
#include <string>

#include "sqltable/pgnav.h"
#include "sqltable/pgrecord.h"
#include "sqltest.h"

namespace {

class NavTest : public OneTableTest {
 protected:
  static constexpr int kK1 = 1, kV = 3;
  // dane\nav: k1 I, k2 I, v A20; primary key (k1, k2).
  void MakeTable(const char* secondKeyType = "I") {
    ASSERT_EQ(CreateTable("dane\\nav", {{"k1", "I"}, {"k2", secondKeyType}, {"v", "A20"}}), 0);
    const int16_t key[2] = {1, 2};
    ASSERT_EQ(PGKeyAdd("dane\\nav", 2, key, 0), 0) << PGLastOp.Str();
  }
  void Open(int index = 0) { OpenTable("dane\\nav", index); }
  // The table with n rows, open.
  void MakeFilled(int n) {
    MakeTable();
    Fill(n);
    Open();
  }
  // Rows (i, 1, 'r<i>') for i in 1..n, inserted by the other user.
  static void Fill(int n) {
    ASSERT_TRUE(Psql("INSERT INTO dane_nav (k1,k2,v) SELECT i,1,'r'||i FROM generate_series(1," + std::to_string(n) +
                     ") i"));
  }
  static void Bump() { ASSERT_TRUE(Psql("UPDATE tables_list SET il_zm=il_zm+1 WHERE nazt='DANE_NAV' AND lp=1")); }
  int32_t K1() { return LongOf(kK1); }
  std::string V() { return AlphaOf(kV); }
  int16_t SearchK1(int32_t k1, int mode, int nFields = 1, int32_t k2 = 1) {
    EXPECT_EQ(PGPutLong(rec_, 1, k1), 0);
    EXPECT_EQ(PGPutLong(rec_, 2, k2), 0);
    return PGSrchKey(tbl_, rec_, nFields, mode);
  }
};

TEST_F(NavTest, EndsOfTheTable) {
  MakeTable();
  Open();
  EXPECT_EQ(SearchK1(5, 2), kPGRecordNotFound);  // the closest search on an empty table lands nowhere
  EXPECT_FALSE(PGTableAt(tbl_)->positioned);
  EXPECT_EQ(PGRecNext(tbl_), kPGEmptyTable);
  EXPECT_EQ(PGRecFirst(tbl_), kPGEmptyTable);
  EXPECT_EQ(PGRecLast(tbl_), kPGEmptyTable);
  EXPECT_EQ(PGRecNext(tbl_), kPGEmptyTable);  // an unplaced table starts at the first row
  EXPECT_EQ(PGRecFirst(99), kPGBadTableHandle);
  PGTblClose(tbl_);
  Fill(5);
  Open();
  ExpectOn(PGRecFirst(tbl_), kK1, 1);
  for (int k = 2; k <= 5; ++k) ExpectOn(PGRecNext(tbl_), kK1, k);
  ExpectOn(PGRecNext(tbl_), kK1, 5, kPGEndOfTable);
  EXPECT_EQ(PGRecNext(tbl_), kPGEndOfTable);
  EXPECT_EQ(Num(), 5);
  for (int k = 4; k >= 1; --k) ExpectOn(PGRecPrev(tbl_), kK1, k);
  ExpectOn(PGRecPrev(tbl_), kK1, 1, kPGStartOfTable);
  EXPECT_EQ(Num(), 1);
  ExpectOn(PGRecGoto(tbl_, 3), kK1, 3);
  EXPECT_EQ(PGRecGoto(tbl_, 6), kPGArgRange);
  EXPECT_EQ(PGRecGoto(tbl_, 0), kPGArgRange);
  ExpectOn(PGRecLast(tbl_), kK1, 5);
  EXPECT_EQ(Num(), 5);
  ExpectOn(PGRecPrev(tbl_), kK1, 4);
  int32_t count = 0;
  ASSERT_EQ(PGTblNRecs(tbl_, count), 0);
  EXPECT_EQ(count, 5);
  // On a fresh handle, a cursor over a free query walks the query's rows in its order.
  PGTblClose(tbl_);
  Open();
  ASSERT_EQ(PGopCQ(tbl_, "SELECT * FROM dane_nav WHERE k1 IN (2,4) ORDER BY k1 DESC"), 0);
  ExpectOn(PGRecFirst(tbl_), kK1, 4);
  ExpectOn(PGRecGoto(tbl_, 2), kK1, 2);
  EXPECT_EQ(PGRecGoto(tbl_, 3), kPGArgRange);
}

TEST_F(NavTest, WalksAcrossBatchesBothWays) {
  MakeFilled(200);
  ASSERT_EQ(PGRecFirst(tbl_), 0);
  for (int k = 2; k <= 200 && !HasFailure(); ++k) ExpectOn(PGRecNext(tbl_), kK1, k);
  EXPECT_EQ(PGRecNext(tbl_), kPGEndOfTable);
  for (int k = 199; k >= 1 && !HasFailure(); --k) ExpectOn(PGRecPrev(tbl_), kK1, k);
  // Back and forth around a batch edge: the cursor must continue where the
  // current row is, whatever the cache holds.
  ASSERT_EQ(PGRecGoto(tbl_, 60), 0);
  const char moves[] = "nnnppppnnnnnnppnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnppppppppppnnnnnn";
  int expected = 60;
  for (char m : std::string(moves)) {
    expected += m == 'n' ? 1 : -1;
    ExpectOn(m == 'n' ? PGRecNext(tbl_) : PGRecPrev(tbl_), kK1, expected);
    ASSERT_EQ(Num(), expected);
  }
}

TEST_F(NavTest, SearchModesAndTheirLandings) {
  MakeTable();
  ASSERT_TRUE(Psql("INSERT INTO dane_nav (k1,k2,v) VALUES (10,1,'a'),(20,1,'b'),(20,2,'c'),(30,1,'d'),(40,1,'e')"));
  Open();
  ExpectOn(SearchK1(20, 0), kV, "b");
  EXPECT_EQ(Num(), 2);
  ExpectOn(SearchK1(20, 1), kV, "c");  // the next 20 after the current one
  EXPECT_EQ(Num(), 3);
  ExpectOn(SearchK1(20, 1), kV, "c", kPGRecordNotFound);
  ExpectOn(SearchK1(25, 0), kV, "c", kPGRecordNotFound);  // mode 0 leaves the record
  ExpectOn(SearchK1(25, 2), kV, "d", kPGRecordNotFound);  // between two keys: the next higher
  EXPECT_EQ(Num(), 4);
  ExpectOn(PGRecNext(tbl_), kV, "e");
  ExpectOn(SearchK1(99, 2), kV, "e", kPGRecordNotFound);  // past the end: the highest
  EXPECT_EQ(Num(), 5);
  ExpectOn(SearchK1(20, 2, 2, 5), kV, "d", kPGRecordNotFound);  // (20,5): next higher is (30,1)
  ExpectOn(SearchK1(20, 2, 2, 2), kV, "c");
  ExpectOn(PGRecPrev(tbl_), kV, "b");
  ExpectOn(SearchK1(1, 2), kV, "a", kPGRecordNotFound);
  EXPECT_EQ(SearchK1(1, 0, 0), kPGArgRange);
  EXPECT_EQ(SearchK1(1, 0, 4), kPGArgRange);
  ASSERT_EQ(PGPutLong(rec_, 1, 30), 0);
  ASSERT_EQ(PGPutLong(rec_, 2, 5), 0);
  EXPECT_EQ(PGSrchKeyFull(tbl_, rec_), kPGRecordNotFound);
  ASSERT_EQ(PGPutLong(rec_, 2, 1), 0);
  ExpectOn(PGSrchKeyFull(tbl_, rec_), kV, "d");
  // Field searches: one field, a list, and the where clause only when asked.
  ASSERT_EQ(PGPutAlpha(rec_, 3, "c"), 0);
  EXPECT_EQ(PGSrchFld(tbl_, rec_, 3, 0), 0);
  EXPECT_EQ(PGTableAt(tbl_)->curValues[1], "20");
  EXPECT_EQ(PGSrchFlds(tbl_, rec_, "3, 1", 0), kPGRecordNotFound);  // v='c' and k1=30
  ASSERT_EQ(PGPutLong(rec_, 1, 20), 0);
  EXPECT_EQ(PGSrchFlds(tbl_, rec_, "3, 1", 0), 0);
  EXPECT_EQ(PGSrchFlds(tbl_, rec_, "", 0), kPGBadFieldName);
  EXPECT_EQ(PGSrchFlds(tbl_, rec_, "3,x", 0), kPGArgRange);
  ASSERT_EQ(PGTblWhereClauseSet(tbl_, "k1<>20"), 0);
  EXPECT_EQ(PGSrchFld(tbl_, rec_, 3, 0), 0);  // a key search sees what the view hides
  ASSERT_EQ(PGSrchWithFilter(tbl_), 0);
  EXPECT_EQ(PGSrchFld(tbl_, rec_, 3, 0), kPGRecordNotFound);
}

TEST_F(NavTest, RecordNumberCountsInEveryOrdering) {
  struct Case {
    const char* secondKeyType;
    int index;  // 0 primary, 3 the single-field index on v, -1 a composite index on (v, k2)
  } cases[] = {{"I", 0}, {"A5", 0}, {"I", 3}, {"I", -1}};
  for (const Case& c : cases) {
    SCOPED_TRACE(std::string(c.secondKeyType) + " index " + std::to_string(c.index));
    MakeTable(c.secondKeyType);
    const int16_t v[1] = {3};
    ASSERT_EQ(PGKeyAdd("dane\\nav", 1, v, 1), 0);
    // Many rows share k1, so counting must look at the second column too.
    ASSERT_TRUE(Psql("INSERT INTO dane_nav (k1,k2,v) SELECT i/7, i%7, lpad(((i*37)%50)::text,4,'0') "
                     "FROM generate_series(0,210) i"));
    int index = c.index;
    if (index < 0) {
      const int16_t fields[2] = {3, 2};
      ASSERT_EQ(PGKeyMap("dane\\nav", 2, fields, "vk", index), 0);
      const int16_t handle[1] = {static_cast<int16_t>(index)};
      ASSERT_EQ(PGKeyAdd("dane\\nav", 1, handle, 1), 0) << PGLastOp.Str();
    }
    Open(index);
    ASSERT_EQ(PGRecFirst(tbl_), 0);
    std::vector<std::string> order;  // the ordering as the cursor walks it
    do order.push_back(PGTableAt(tbl_)->curValues[0]);
    while (PGRecNext(tbl_) == 0);
    ASSERT_EQ(order.size(), 211u);
    for (int place : {1, 2, 8, 61, 62, 100, 150, 211}) {
      // Find the row by its values, then ask where it is.
      ASSERT_EQ(PGRecGoto(tbl_, place), 0);
      ASSERT_EQ(PGRecGet(tbl_, rec_), 0);
      ASSERT_EQ(PGRecFirst(tbl_), 0);
      ASSERT_EQ(PGSrchKey(tbl_, rec_, 2, 0), 0);
      EXPECT_EQ(PGTableAt(tbl_)->curValues[0], order[static_cast<std::size_t>(place - 1)]);
      EXPECT_EQ(Num(), place);
    }
    // The walk itself follows the ordering's first column.
    std::string previous;
    for (int16_t code = PGRecFirst(tbl_); code == 0; code = PGRecNext(tbl_)) {
      const std::string first = PGTableAt(tbl_)->curValues[static_cast<std::size_t>(PGOrderColumns(*PGTableAt(tbl_))[0])];
      if (c.index != 0) {
        EXPECT_LE(previous, first);
      }
      previous = first;
    }
    PGTblClose(tbl_);
    if (index >= kPGFirstComposite) PGKeyRelease(index);
    ASSERT_TRUE(WipeDatabase());
    ASSERT_EQ(PGinitializett(), 0);
  }
}

TEST_F(NavTest, OtherUsersChangeIsSeenAfterItsCounterBumpAndTheirDeleteGivesFifty) {
  MakeFilled(10);
  ASSERT_EQ(PGRecFirst(tbl_), 0);  // the snapshot is taken here
  ASSERT_EQ(SearchK1(2, 0), 0);
  ASSERT_TRUE(Psql("UPDATE dane_nav SET v='new' WHERE k1=3"));
  ExpectOn(PGRecNext(tbl_), kV, "r3");
  ASSERT_EQ(SearchK1(2, 0), 0);
  Bump();
  ExpectOn(PGRecNext(tbl_), kV, "new");
  EXPECT_EQ(Num(), 3);
  EXPECT_FALSE(PGTblChanged(tbl_));
  ASSERT_EQ(SearchK1(4, 0), 0);
  ASSERT_TRUE(Psql("DELETE FROM dane_nav WHERE k1=4"));
  // Counting looks at the table itself: the row is missed at once.
  EXPECT_EQ(PGRecNext(tbl_), kPGRecordGone);
  ASSERT_EQ(SearchK1(6, 0), 0);
  ASSERT_TRUE(Psql("DELETE FROM dane_nav WHERE k1=6"));
  Bump();
  EXPECT_EQ(PGRecPrev(tbl_), kPGRecordGone);
  // Placed again, the refreshed snapshot knows the rows as they are.
  ASSERT_EQ(SearchK1(7, 0), 0);
  ExpectOn(PGRecPrev(tbl_), kK1, 5);
  EXPECT_EQ(Num(), 4);
}

TEST_F(NavTest, WhereClauseGlobalFilterAndView) {
  MakeTable();
  Fill(20);
  PGSetGlobalFilter("dane\\nav", "k1 % 2 = 0");
  Open();
  ASSERT_EQ(PGTblWhereClauseSet(tbl_, "k1 > 10"), 0);
  std::vector<int> seen;
  for (int16_t code = PGRecFirst(tbl_); code == 0; code = PGRecNext(tbl_)) seen.push_back(K1());
  EXPECT_EQ(seen, (std::vector<int>{12, 14, 16, 18, 20}));
  int32_t count = 0;
  ASSERT_EQ(PGTblNRecs(tbl_, count), 0);
  EXPECT_EQ(count, 5);
  ASSERT_EQ(SearchK1(16, 0), 0);
  EXPECT_EQ(Num(), 3);
  ASSERT_EQ(PGTblWhereClauseDrop(tbl_), 0);
  ExpectOn(PGRecFirst(tbl_), kK1, 2);
  PGClearGlobalFilter();
  PGTblClose(tbl_);

  Open();
  ASSERT_EQ(PGTblViewSet(tbl_, "SELECT oid,k1,k2,v FROM dane_nav WHERE k1 BETWEEN 5 AND 7"), 0);
  seen.clear();
  for (int16_t code = PGRecFirst(tbl_); code == 0; code = PGRecNext(tbl_)) seen.push_back(K1());
  EXPECT_EQ(seen, (std::vector<int>{5, 6, 7}));
  // The cursor reads a frozen copy of the view.
  ASSERT_TRUE(Psql("DELETE FROM dane_nav WHERE k1=6"));
  ExpectOn(PGRecPrev(tbl_), kK1, 6);
  EXPECT_EQ(PGTblClose(tbl_), 0);
}

TEST_F(NavTest, GlobalFilterGoesToItsNameOnlyAndASecondBeforeAClearChangesNothing) {
  PGSetGlobalFilter("dane\\nav", "k1 > 1");
  PGSetGlobalFilter("dane\\other", "1=0");
  EXPECT_EQ(PGGlobalFilterTable, "dane\\nav");
  EXPECT_EQ(PGGlobalFilterText, "k1 > 1");
  EXPECT_NE(ScreenBytes().find("[4/6]"), std::string::npos);
  MakeTable();
  int16_t h1 = 0, h2 = 0;
  ASSERT_EQ(PGTblOpen("dane\\nav", h1, 0), 0);
  ASSERT_EQ(PGTblOpen("DANE\\NAV", h2, 0), 0);  // same table, other spelling: no filter
  EXPECT_EQ(PGTableAt(h1)->globalFilter, "k1 > 1");
  EXPECT_EQ(PGTableAt(h2)->globalFilter, "");
  PGClearGlobalFilter();
  PGSetGlobalFilter("dane\\other", "1=0");
  EXPECT_EQ(PGGlobalFilterTable, "dane\\other");
  PGClearGlobalFilter();
}

TEST_F(NavTest, CursorlessRoad) {
  MakeTable();
  Open();
  EXPECT_EQ(PGRecFirst_noc(tbl_), kPGEmptyTable);
  EXPECT_EQ(PGRecLast_noc(tbl_), kPGEmptyTable);
  Fill(6);
  ExpectOn(PGRecFirst_noc(tbl_), kK1, 1);
  EXPECT_EQ(PGRecPrev_noc(tbl_), kPGStartOfTable);
  ExpectOn(PGRecNext_noc(tbl_), kK1, 2);
  ExpectOn(PGRecLast_noc(tbl_), kK1, 6);
  EXPECT_EQ(PGRecNext_noc(tbl_), kPGEndOfTable);  // the place is counted first
  ExpectOn(PGRecPrev_noc(tbl_), kK1, 5);
  ExpectOn(PGRecGoto_noc(tbl_, 3), kK1, 3);
  EXPECT_EQ(PGRecGoto_noc(tbl_, 7), kPGArgRange);
  // The cursor road picks up from the row the cursorless road left.
  ExpectOn(PGRecNext(tbl_), kK1, 4);
  EXPECT_EQ(Num(), 4);
}

TEST_F(NavTest, RowCacheRoadsAndPrefetch) {
  MakeFilled(130);
  ASSERT_EQ(PGRecFirst(tbl_), 0);  // opening the cursor later would clear the cache
  ASSERT_EQ(fill_c_forw(tbl_), 0);
  const PGTable* t = PGTableAt(tbl_);
  EXPECT_EQ(t->cacheCount, 60);
  ExpectOn(PGRecGoto_c(tbl_, 60), kK1, 60);
  ExpectOn(PGRecNext_c(tbl_), kK1, 61);  // not cached: fetched and inserted
  EXPECT_EQ(t->cacheCount, 60);
  EXPECT_EQ(t->cachePos, 1);  // full: the first slot is overwritten
  ASSERT_EQ(fill_c_back(tbl_), 0);
  ExpectOn(PGRecGoto_c(tbl_, 71), kK1, 71);
  ExpectOn(PGRecGoto_c(tbl_, 130), kK1, 130);
  EXPECT_EQ(PGRecNext_c(tbl_), kPGArgRange);
  EXPECT_EQ(PGRecGoto_c(tbl_, 131), kPGArgRange);
}

TEST_F(NavTest, IndexSwitchReordersAndPublishes) {
  MakeTable();
  const int16_t v[1] = {3};
  ASSERT_EQ(PGKeyAdd("dane\\nav", 1, v, 1), 0);
  ASSERT_TRUE(Psql("INSERT INTO dane_nav (k1,k2,v) VALUES (1,1,'c'),(2,1,'a'),(3,1,'b')"));
  Open();
  ExpectOn(PGRecFirst(tbl_), kK1, 1);
  ASSERT_EQ(PGRecNext(tbl_), 0);  // the row cache is in use: the switch opens the table again
  PGTableAt(tbl_)->changedByUs = true;
  ASSERT_EQ(PGIndexSwitch(tbl_, rec_, 3), 0);
  EXPECT_EQ(PGTableAt(tbl_)->indexHandle, 3);
  EXPECT_EQ(Scalar("SELECT il_zm FROM tables_list WHERE nazt='DANE_NAV' AND lp=1"), "-2147483646");
  ExpectOn(PGRecFirst(tbl_), kK1, 2);  // rec_ is the re-opened buffer
  ExpectOn(PGRecNext(tbl_), kK1, 3);
}

class AlphaTripTest : public OneTableTest {
 protected:
  void SetUp() override {
    OneTableTest::SetUp();
    ASSERT_EQ(CreateTable("dane\\txt", {{"a", "A255"}}), 0);
    OpenTable("dane\\txt");
  }
  // Writes the text through a buffer, reads it back from the table.
  ShortText Trip(const ShortText& text) {
    EXPECT_EQ(PGRunQueryNoTup("DELETE FROM dane_txt"), 0);
    EXPECT_EQ(PGPutAlpha(rec_, 1, text), 0);
    EXPECT_EQ(PGRunQueryNoTup("INSERT INTO dane_txt (a) VALUES (" +
                              PGValueLiteral(PGKind::Text, PGRecordAt(rec_)->fields[1].value) + ")"),
              0);
    ShortText back;
    EXPECT_EQ(PGRecFirst_noc(tbl_), 0);
    EXPECT_EQ(PGRecGet(tbl_, rec_), 0);
    EXPECT_EQ(PGGetAlpha(rec_, 1, back), 0);
    return back;
  }
};

TEST_F(AlphaTripTest, BytesSurviveOrChangeByTheCodePageRules) {
  // Bytes that both conversions map one to one survive.
  ShortText text;
  for (int c = 2; c < 127; ++c) text += static_cast<char>(c);  // controls, quote, backslash, % and _
  for (unsigned char c : {0x86, 0x8D, 0x91, 0x92, 0xA4, 0xA2, 0x9E, 0xA6, 0xA7, 0x8F, 0x95, 0x90, 0x9C, 0xA5, 0xA3,
                          0x98, 0xA0, 0xA1})
    text += static_cast<char>(c);
  text += '\xFF';
  EXPECT_EQ(Trip(text), text);
  // The server holds real letters, and byte 255 as byte 1.
  EXPECT_EQ(Scalar("SELECT substr(a, 126) FROM dane_txt"), "ąćęłńóśźżĄĆĘŁŃÓŚŹŻ\x01");
  // An ISO 8859-2 letter's byte is not a Mazovia letter: it goes out
  // unchanged and comes back as the Mazovia letter of that ISO position.
  // Byte 1 is how the server holds 255; a zero byte cannot travel in a statement.
  struct Case {
    unsigned char in, out;
  } cases[] = {{0xB1, 0x86}, {0xE6, 0x8D}, {0xEA, 0x91}, {0xB3, 0x92}, {0xF1, 0xA4}, {0xF3, 0xA2},
               {0xB6, 0x9E}, {0xBC, 0xA6}, {0xBF, 0xA7}, {0xC6, 0x95}, {0xCA, 0x90}, {0xD1, 0xA5},
               {0xD3, 0xA3}, {0xAC, 0xA0}, {0xAF, 0xA1}, {0x01, 0xFF}, {0x00, 0x20}};
  ShortText in, out;
  for (const Case& c : cases) {
    in += static_cast<char>(c.in);
    out += static_cast<char>(c.out);
  }
  EXPECT_EQ(Trip(in), out);
}

}  // namespace

// Counts every allocation of the test program, so that a row read can be
// shown to allocate nothing.
namespace {
std::size_t gAllocations = 0;
}  // namespace

// The replacements are one malloc/free pair; the compiler, seeing free() where
// it inlined a delete of a new, would call them mismatched.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wmismatched-new-delete"
void* operator new(std::size_t size) {
  ++gAllocations;
  if (void* p = std::malloc(size ? size : 1)) return p;
  throw std::bad_alloc();
}
void* operator new[](std::size_t size) { return operator new(size); }
void operator delete(void* p) noexcept { std::free(p); }
void operator delete(void* p, std::size_t) noexcept { std::free(p); }
void operator delete[](void* p) noexcept { std::free(p); }
void operator delete[](void* p, std::size_t) noexcept { std::free(p); }
#pragma GCC diagnostic pop

namespace {

TEST_F(NavTest, ReadingCachedRowsAllocatesNothing) {
  MakeTable();
  ASSERT_TRUE(Psql("INSERT INTO dane_nav (k1,k2,v) SELECT i,1,rpad('long value '||i,20,'x') FROM generate_series(1,70) i"));
  Open();
  ASSERT_EQ(PGRecFirst(tbl_), 0);
  ASSERT_EQ(PGRecNext(tbl_), 0);  // the batch fills the cache
  const std::size_t before = gAllocations;
  ASSERT_GT(before, 0u);  // the counter is in force
  ShortText v;
  int32_t k = 0;
  for (int i = 3; i <= 62; ++i) {
    ASSERT_EQ(PGRecNext(tbl_), 0);
    ASSERT_EQ(PGRecGet(tbl_, rec_), 0);
    ASSERT_EQ(PGGetAlpha(rec_, 3, v), 0);
    ASSERT_EQ(PGGetLong(rec_, 1, k), 0);
    ASSERT_EQ(k, i);
  }
  EXPECT_EQ(gAllocations, before);
  EXPECT_EQ(v.Length(), 20);
}

TEST_F(NavTest, BigTablesShowTheRefreshNoticeAndRestoreTheScreen) {
  MakeFilled(3);
  ASSERT_EQ(PGRecFirst(tbl_), 0);
  const ShortText rowBefore = RowText(12);
  PGTableAt(tbl_)->rowCount = 60001;
  ASSERT_FALSE(PGOdswK(tbl_));
  EXPECT_NE(ScreenBytes().find("Trwa od"), std::string::npos);
  EXPECT_EQ(RowText(12), rowBefore);
  const std::size_t shown = ScreenBytes().size();
  PGTableAt(tbl_)->rowCount = 60000;
  ASSERT_FALSE(PGOdswK(tbl_));
  EXPECT_EQ(ScreenBytes().size(), shown);  // nothing shown for smaller tables
}

}  // namespace
