// Control mirrors: answers equal what the table holds, after own writes and
// after another process's published change; a third table or a too large one
// is told and answered by the server.
#include <unistd.h>

#include <string>

#include "sqltable/pgcontrol.h"
#include "sqltable/pgnav.h"
#include "sqltable/pgrecord.h"
#include "sqltable/pgwrite.h"
#include "sqltest.h"

namespace {

std::string gBoxes;  // rows of every box that waited for a key

void CollectBoxAndAnswer() {
  for (int row = 1; row <= kScreenRows; ++row) gBoxes += RowText(row).Str() + "\n";
  PushKey(13, 28);
}

// Control tables dane\kontr<n>: rodz A1, numer I, nazwa A15; key (rodz, numer).
class ControlTest : public CatalogueTest {
 protected:
  void SetUp() override {
    CatalogueTest::SetUp();
    gBoxes.clear();
    SetKeyIdleHook(CollectBoxAndAnswer);
  }
  static std::string Path(int n) { return "dane\\kontr" + std::to_string(n); }
  // Kinds F and K with numbers 1..rows; names "F1", "K1", ...
  static void Make(int n, int rows) {
    ASSERT_EQ(CreateTable(ShortText(Path(n)), {{"rodz", "A1"}, {"numer", "I"}, {"nazwa", "A15"}}), 0);
    const int16_t key[2] = {1, 2};
    ASSERT_EQ(PGKeyAdd(ShortText(Path(n)), 2, key, 0), 0) << PGLastOp.Str();
    ASSERT_TRUE(Psql("INSERT INTO dane_kontr" + std::to_string(n) +
                     " (rodz,numer,nazwa) SELECT k, i, k||i FROM generate_series(1," + std::to_string(rows) +
                     ") i, (VALUES ('F'),('K')) v(k)"));
  }
  struct Open {
    int16_t tbl = 0, rec = 0;
  };
  static Open OpenControl(int n) {
    Open o;
    EXPECT_EQ(PGTblOpen(ShortText(Path(n)), o.tbl, 0), 0);
    EXPECT_EQ(PGRecBufOpen(o.tbl, o.rec), 0);
    return o;
  }
  static int16_t Append(const Open& o, char kind, int32_t number, const char* name) {
    EXPECT_EQ(PGRecBufEmpty(o.rec), 0);
    EXPECT_EQ(PGPutAlpha(o.rec, 1, ShortText(std::string_view(&kind, 1))), 0);
    EXPECT_EQ(PGPutLong(o.rec, 2, number), 0);
    EXPECT_EQ(PGPutAlpha(o.rec, 3, name), 0);
    return PGRecAppend(o.tbl, o.rec);
  }
  // The questions that every case checks against the fill of `rows`.
  static void ExpectAnswersOfFill(const Open& o, int rows) {
    struct Case {
      char kind;
      int32_t number;
      std::string name;
      bool free;
    };
    const std::string last = std::to_string(rows);
    const Case cases[] = {
        {'F', 1, "F1", false},           {'K', rows, "K" + last, false},   {'F', rows + 1, "F0", true},
        {'X', 1, "X1", true},            {'K', 0, "F1", true},              {'F', -1, "f1", true},
        {'F', rows / 2, "F" + std::to_string(rows / 2), false},
    };
    for (const Case& c : cases) {
      EXPECT_EQ(PGControlHasNumber(c.kind, c.number, o.tbl, o.rec), c.free) << c.kind << c.number;
      EXPECT_EQ(PGControlHasName(c.kind, ShortText(c.name), o.tbl, o.rec), c.free) << c.kind << c.name;
    }
  }
};

TEST_F(ControlTest, MirrorAnswersLikeTheTableWithOneCounterReadPerQuestionAndReloadsAfterOwnWrites) {
  Make(1, 300);
  const Open o = OpenControl(1);
  ExpectAnswersOfFill(o, 300);
  EXPECT_EQ(PGControlSlotOwner(1), o.tbl);
  const uint64_t before = PGStatementCount;
  EXPECT_FALSE(PGControlHasNumber('K', 77, o.tbl, o.rec));
  EXPECT_EQ(PGStatementCount - before, 1u);  // the change counter only
  EXPECT_EQ(gBoxes, "");
  // An own append and delete reload the mirror before the next question.
  EXPECT_TRUE(PGControlHasNumber('Z', 5, o.tbl, o.rec));
  ASSERT_EQ(Append(o, 'Z', 5, "nowa"), 0);
  EXPECT_FALSE(PGControlHasNumber('Z', 5, o.tbl, o.rec));
  EXPECT_FALSE(PGControlHasName('Z', "nowa", o.tbl, o.rec));
  ASSERT_EQ(PGRecDelete(o.tbl), 0);
  EXPECT_TRUE(PGControlHasName('Z', "nowa", o.tbl, o.rec));
  EXPECT_EQ(PGTblClose(o.tbl), 0);
  EXPECT_EQ(PGControlSlotOwner(1), 0);  // closing frees the slot
}

TEST_F(ControlTest, ChangePublishedByAnotherProcessReloadsTheMirror) {
  Make(1, 10);
  const Open o = OpenControl(1);
  ExpectAnswersOfFill(o, 10);
  const pid_t child = fork();
  ASSERT_GE(child, 0);
  if (child == 0) {
    ConnectChild();
    const Open c = OpenControl(1);
    if (Append(c, 'F', 500, "F500") != 0) _exit(4);
    _exit(PGTblClose(c.tbl) == 0 ? 0 : 5);  // closing publishes the change
  }
  ASSERT_EQ(ExitStatus(child), 0);
  EXPECT_FALSE(PGControlHasNumber('F', 500, o.tbl, o.rec));
  EXPECT_FALSE(PGControlHasName('F', "F500", o.tbl, o.rec));
  ExpectAnswersOfFill(o, 10);
}

TEST_F(ControlTest, ThirdTableIsToldAndAsksTheServer) {
  for (int n = 1; n <= 3; ++n) Make(n, 20);
  const Open a = OpenControl(1), b = OpenControl(2), c = OpenControl(3);
  ExpectAnswersOfFill(a, 20);
  ExpectAnswersOfFill(b, 20);
  EXPECT_EQ(gBoxes, "");
  ExpectAnswersOfFill(c, 20);
  EXPECT_NE(gBoxes.find("Za ma\x92o tablic kontrolnych."), std::string::npos);
  EXPECT_EQ(gBoxes.find("Za ma\x92o", gBoxes.find("Za ma\x92o") + 1), std::string::npos);  // told once
  EXPECT_FALSE(PGTableAt(c.tbl)->controlUse);
  // A slot freed by a close goes to the next table that loads.
  EXPECT_EQ(PGTblClose(a.tbl), 0);
  const Open d = OpenControl(1);
  ExpectAnswersOfFill(d, 20);
  EXPECT_EQ(PGControlSlotOwner(1), d.tbl);
}

TEST_F(ControlTest, TableAboveTheLimitIsToldAndAsksTheServer) {
  Make(1, kPGControlMaxEntries / 2);
  ASSERT_TRUE(Psql("INSERT INTO dane_kontr1 (rodz,numer,nazwa) VALUES ('Z',1,'Z1')"));  // 500,001 rows
  const Open o = OpenControl(1);
  ExpectAnswersOfFill(o, kPGControlMaxEntries / 2);
  EXPECT_NE(gBoxes.find("Przekroczenie cache tablicy kontrolnej."), std::string::npos);
  EXPECT_FALSE(PGControlHasNumber('Z', 1, o.tbl, o.rec));
  EXPECT_EQ(PGControlSlotOwner(1), 0);
}

}  // namespace
