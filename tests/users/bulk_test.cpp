// Whole-table operations on the real server: a copy is complete and equal
// row for row or reported and absent; sorts, dedupes, wipes and fills leave
// what the test computes from its own rows.

#include <string>
#include <vector>

#include "sqltable/pgnav.h"
#include "sqltable/pgrecord.h"
#include "sqltable/sqltest.h"
#include "base/paths.h"
#include "exchange/dbf_fixture.h"
#include "users/bulk.h"

namespace {

void AnswerEnter() { PushKey(13, 28); }

class BulkTest : public CatalogueTest {
 protected:
  void SetUp() override {
    CatalogueTest::SetUp();
    SetKeyIdleHook(AnswerEnter);
  }
  // dane\zrod: k I (key), nazwa A30, cena N, d D.
  static void MakeSource(int rows) {
    ASSERT_EQ(CreateTable("dane\\zrod", {{"k", "I"}, {"nazwa", "A30"}, {"cena", "N"}, {"d", "D"}}), 0);
    const int16_t key[1] = {1};
    ASSERT_EQ(PGKeyAdd("dane\\zrod", 1, key, 0), 0);
    // Quotes, backslashes and wildcards in every text; NULL dates and prices now and then.
    ASSERT_TRUE(Psql("INSERT INTO dane_zrod (k,nazwa,cena,d) SELECT i, 'n' || chr(39) || i || E'\\\\%_' || (i % 7),"
                     " CASE WHEN i % 11 = 0 THEN NULL ELSE i / 100.0 END,"
                     " CASE WHEN i % 13 = 0 THEN NULL ELSE DATE '2020-01-01' + i % 900 END"
                     " FROM generate_series(1," + std::to_string(rows) + ") i"));
  }
  // An older dane\kopia of three rows, which a failed copy must leave as it was.
  static void MakeOldTarget() {
    ASSERT_EQ(CreateTable("dane\\kopia", {{"k", "I"}, {"stare", "A5"}}), 0);
    ASSERT_TRUE(Psql("INSERT INTO dane_kopia (k,stare) VALUES (1,'a'),(2,'b'),(3,'c')"));
  }
  static void ExpectOldTarget() {
    EXPECT_EQ(Scalar("SELECT string_agg(k||stare, ',' ORDER BY k) FROM dane_kopia"), "1a,2b,3c");
    EXPECT_EQ(Scalar("SELECT string_agg(nazp, ',' ORDER BY lp) FROM tables_list WHERE nazt='DANE_KOPIA'"),
              "K,STARE");
    EXPECT_EQ(PGTransDepth, 0);
  }
  // Makes every insert into a new dane_kopia of this schema run `action` at k = 50000.
  static void ArmTargetAt50000(const std::string& action) {
    const std::string schema = Db().schema;
    ASSERT_TRUE(Psql("CREATE FUNCTION kopia_fail() RETURNS trigger LANGUAGE plpgsql AS $$ BEGIN "
                     "IF NEW.k = 50000 THEN " + action + "; END IF; RETURN NEW; END $$"));
    ASSERT_TRUE(Psql("CREATE FUNCTION kopia_arm() RETURNS event_trigger LANGUAGE plpgsql AS $$ DECLARE r record; "
                     "BEGIN FOR r IN SELECT * FROM pg_event_trigger_ddl_commands() LOOP "
                     "IF r.object_identity = '" + schema + ".dane_kopia' THEN EXECUTE 'CREATE TRIGGER kopia_fail "
                     "BEFORE INSERT ON ' || r.object_identity || ' FOR EACH ROW EXECUTE FUNCTION " + schema +
                     ".kopia_fail()'; END IF; END LOOP; END $$"));
    ASSERT_TRUE(Psql("CREATE EVENT TRIGGER kopia_arm_" + schema +
                     " ON ddl_command_end WHEN TAG IN ('CREATE TABLE') EXECUTE FUNCTION kopia_arm()"));
  }
  static void Disarm() { EXPECT_TRUE(Psql("DROP EVENT TRIGGER IF EXISTS kopia_arm_" + Db().schema)); }
  static std::string Column(const std::string& sql) { return Scalar("SELECT string_agg(x, ',') FROM (" + sql + ") q"); }
};

TEST_F(BulkTest, FailedCopyLeavesTheOldTargetAndACopyOfAHundredThousandRowsIsEqualRowForRow) {
  MakeSource(100000);
  MakeOldTarget();
  // A view that depends on the old target: it cannot be replaced.
  ASSERT_TRUE(Psql("CREATE VIEW dane_widok AS SELECT k FROM dane_kopia"));
  EXPECT_NE(TblCopyData("dane\\zrod", "dane\\kopia"), 0);
  ExpectOldTarget();
  ASSERT_TRUE(Psql("DROP VIEW dane_widok"));
  // The server refuses row 50,000, long after the first batches went in.
  ArmTargetAt50000("RAISE EXCEPTION 'odmowa'");
  EXPECT_NE(TblCopyData("dane\\zrod", "dane\\kopia"), 0);
  EXPECT_NE(ReadFile("error.log").find("odmowa"), std::string::npos);  // the failed statement is logged
  Disarm();
  ExpectOldTarget();
  EXPECT_NE(TblCopyData("dane\\brak", "dane\\kopia"), 0);
  EXPECT_EQ(TblCopyData("dane\\kopia", "DANE\\KOPIA"), kPGBadArgument);
  ExpectOldTarget();

  // Disarmed, the copy goes through.
  ASSERT_EQ(TblCopyData("dane\\zrod", "dane\\kopia"), 0) << PGLastOp.Str();
  EXPECT_EQ(Scalar("SELECT count(*) FROM dane_kopia"), "100000");
  const std::string fields = "SELECT k,nazwa,cena,d FROM ";
  EXPECT_EQ(Scalar("SELECT count(*) FROM (" + fields + "dane_zrod EXCEPT ALL " + fields + "dane_kopia) a"), "0");
  EXPECT_EQ(Scalar("SELECT count(*) FROM (" + fields + "dane_kopia EXCEPT ALL " + fields + "dane_zrod) a"), "0");
  EXPECT_EQ(Scalar("SELECT count(*) FROM dane_kopia WHERE d IS NULL"), std::to_string(100000 / 13));
  // New row ids follow the source's key order.
  EXPECT_EQ(Scalar("SELECT count(*) FROM (SELECT k, lag(k) OVER (ORDER BY oid) p FROM dane_kopia) s WHERE k < p"),
            "0");
  EXPECT_EQ(Scalar("SELECT string_agg(nazp||typp||k, ',' ORDER BY lp) FROM tables_list WHERE nazt='DANE_KOPIA'"),
            "KI*,NAZWAA30,CENAN,DD");
  EXPECT_EQ(PGTransDepth, 0);
}

TEST_F(BulkTest, CopyCutOffFromTheServerEndsTheProgramAndLeavesTheOldTarget) {
  MakeSource(60000);
  MakeOldTarget();
  ArmTargetAt50000("PERFORM pg_terminate_backend(pg_backend_pid())");
  const pid_t child = fork();
  ASSERT_GE(child, 0);
  if (child == 0) {
    ConnectChild();
    const int16_t code = TblCopyData("dane\\zrod", "dane\\kopia");
    _exit(code == 0 ? 9 : 8);  // the failed rollback ends the program first, with status 0
  }
  const int status = ExitStatus(child);
  Disarm();
  EXPECT_EQ(status, 0);
  ExpectOldTarget();
}

TEST_F(BulkTest, PhysicalSortGivesNewRowIdsInTheWantedOrder) {
  ASSERT_EQ(CreateTable("dane\\sort", {{"w", "I"}, {"t", "A5"}}), 0);
  EXPECT_EQ(TblSortPhysical("dane\\sort", "w", false), 0);  // empty
  ASSERT_TRUE(Psql("INSERT INTO dane_sort (w,t) SELECT (i * 7) % 10, 't' || i FROM generate_series(1,10) i"));
  const std::string byOid = "SELECT w::text x FROM dane_sort ORDER BY oid";
  ASSERT_EQ(TblSortPhysical("dane\\sort", "w", false), 0);
  EXPECT_EQ(Column(byOid), "0,1,2,3,4,5,6,7,8,9");
  ASSERT_EQ(TblSortPhysical("dane\\sort", "w", true), 0);
  EXPECT_EQ(Column(byOid), "9,8,7,6,5,4,3,2,1,0");
  EXPECT_EQ(Scalar("SELECT string_agg(w||t, ',' ORDER BY w) FROM dane_sort"), "0t10,1t3,2t6,3t9,4t2,5t5,6t8,7t1,8t4,9t7");
  // The layer reads a table without key in row id order.
  int16_t tbl = 0;
  ASSERT_EQ(PGTblOpen("dane\\sort", tbl, 0), 0);
  int16_t rec = 0;
  ASSERT_EQ(PGRecBufOpen(tbl, rec), 0);
  ASSERT_EQ(PGRecFirst(tbl), 0);
  int32_t w = -1;
  ASSERT_EQ(PGRecGet(tbl, rec), 0);
  ASSERT_EQ(PGGetLong(rec, 1, w), 0);
  EXPECT_EQ(w, 9);
  EXPECT_NE(TblSortPhysical("dane\\sort", "brak", false), 0);
  EXPECT_EQ(Scalar("SELECT count(*) FROM dane_sort"), "10");
}

TEST_F(BulkTest, DedupeKeepsOneOfEachRowAndFillNullsSetsTextsAndDates) {
  ASSERT_EQ(CreateTable("dane\\dup", {{"a", "I"}, {"b", "A5"}, {"d", "D"}}), 0);
  ASSERT_TRUE(Psql("INSERT INTO dane_dup (a,b,d) SELECT i % 4, 'x' || (i % 2), '2024-01-01' FROM generate_series(1,40) i"));
  ASSERT_TRUE(Psql("INSERT INTO dane_dup (a,b,d) VALUES (7,NULL,NULL),(8,NULL,'2024-02-02')"));
  ASSERT_EQ(TblDedupe("dane\\dup", {"a", "b"}), 0);
  // i % 4 fixes i % 2: four distinct rows of the series, and the two with NULLs.
  EXPECT_EQ(Scalar("SELECT count(*) FROM dane_dup"), "6");
  EXPECT_EQ(Column("SELECT a||coalesce(b,'-') x FROM dane_dup ORDER BY oid"), "0x0,1x1,2x0,3x1,7-,8-");
  ASSERT_EQ(TblFillNulls("dane\\dup"), 0);
  EXPECT_EQ(Scalar("SELECT count(*) FROM dane_dup WHERE b IS NULL OR d IS NULL"), "0");
  EXPECT_EQ(Scalar("SELECT count(*) FROM dane_dup WHERE b = '' AND d = CURRENT_DATE"), "1");
  EXPECT_EQ(Scalar("SELECT count(*) FROM dane_dup WHERE a = 8 AND b = '' AND d = '2024-02-02'"), "1");
}

TEST_F(BulkTest, WipeDropsEveryTableButTemporaryOnesAndEmptiesTheCatalogue) {
  ASSERT_EQ(CreateTable("dane\\w1", {{"a", "I"}}), 0);
  ASSERT_EQ(CreateTable("dane\\w2", {{"a", "I"}}), 0);
  ASSERT_TRUE(Psql("INSERT INTO tables_list (nazt,nazp,typp,lp) VALUES ('TMP_123','A','I',1),('DANE_GONE','A','I',1)"));
  ASSERT_EQ(DbWipe(), 0);
  EXPECT_EQ(Scalar("SELECT count(*) FROM tables_list"), "0");
  EXPECT_EQ(Scalar("SELECT count(*) FROM pg_tables WHERE schemaname = current_schema() AND tablename LIKE 'dane%'"),
            "0");
  EXPECT_EQ(PGInit(), 0);
}

TEST_F(BulkTest, AddedFieldJoinsTheCatalogueAndTheRecordLayer) {
  ASSERT_EQ(CreateTable("dane\\pole", {{"a", "I"}, {"b", "A5"}}), 0);
  ASSERT_EQ(PGTblAddField("dane\\pole", "uwagi", "A40"), 0);
  ASSERT_EQ(PGTblAddField_dow("dane\\pole", "opis"), 0);
  EXPECT_EQ(PGTblAddField("dane\\pole", "zle", "Q3"), kPGBadArgument);
  EXPECT_NE(PGTblAddField("dane\\pole", "uwagi", "A40"), 0);  // already there
  EXPECT_EQ(Scalar("SELECT string_agg(nazp||typp||lp, ',' ORDER BY lp) FROM tables_list WHERE nazt='DANE_POLE'"),
            "AI1,BA52,UWAGIA403,OPISA2554");
  int16_t tbl = 0, count = 0;
  ASSERT_EQ(PGTblOpen("dane\\pole", tbl, 0), 0);
  ASSERT_EQ(PGRecNFlds(tbl, count), 0);
  EXPECT_EQ(count, 4);
}

TEST_F(BulkTest, QueriesOverAWholeTable) {
  ASSERT_EQ(CreateTable("dane\\q", {{"a", "I"}, {"t", "A20"}}), 0);
  ASSERT_TRUE(Psql("INSERT INTO dane_q (a,t) VALUES (5,'5000'),(12,'50% taniej'),(3,'a_b'),(9,'o''k\\')"));
  std::string max;
  ASSERT_EQ(TblMax("dane\\q", "a", max), 0);
  EXPECT_EQ(max, "12");
  int32_t len = 0;
  ASSERT_EQ(TblMaxLen("dane\\q", "t", "", len), 0);
  EXPECT_EQ(len, 10);
  ASSERT_EQ(TblMaxLen("dane\\q", "t", "a < 10", len), 0);
  EXPECT_EQ(len, 4);
  struct Find {
    const char* text;
    const char* rowOf;  // value of a in the row found, empty for none
  };
  for (const Find& f : {Find{"50%", "12"}, Find{"0%", "12"}, Find{"a_b", "3"}, Find{"ab", ""}, Find{"_", "3"},
                        Find{"o'k\\", "9"}, Find{"%", "12"}}) {
    bool found = false;
    std::string rowId;
    ASSERT_EQ(TblFindLike("dane\\q", "t", f.text, found, rowId), 0) << f.text;
    EXPECT_EQ(found ? Scalar("SELECT a FROM dane_q WHERE oid = " + rowId) : "", f.rowOf) << f.text;
  }
  EXPECT_EQ(TblDeleteWhere("dane\\q", {}), kPGBadArgument);
  ASSERT_EQ(TblDeleteWhere("dane\\q", {"a > 4", "a < 10"}), 0);
  EXPECT_EQ(Column("SELECT a::text x FROM dane_q ORDER BY a"), "3,12");
}


// dane\eks: t A6, n I, d D, x X, m M40; two rows, the second with blanks and a quote.
TEST_F(BulkTest, CsvAndDbfHoldEveryRowInTheirForms) {
  ASSERT_EQ(CreateTable("dane\\eks", {{"t", "A6"}, {"n", "I"}, {"d", "D"}, {"x", "X"}, {"m", "M40"}}), 0);
  ASSERT_TRUE(Psql("INSERT INTO dane_eks (t,n,d,x,m) VALUES ('ab\"c',-12,'2024-03-05',1.5,'6d656d6f'),"
                   " ('',7,NULL,NULL,'')"));
  ASSERT_EQ(TblToCsv("dane\\eks", "eks.csv"), 0);
  EXPECT_EQ(ReadFile("eks.csv"),
            "\"ab\"\"c\",-12,20240305,1.5000000,\"memo\"\r\n"
            "\"\",7,01000101,,\"\"\r\n");
  EXPECT_NE(TblToCsv("dane\\eks", "brak/eks.csv"), 0);
  EXPECT_NE(TblToCsv("dane\\brak", "eks2.csv"), 0);
  EXPECT_FALSE(FileExists("eks2.csv"));

  ASSERT_EQ(TblToDbf("dane\\eks", "eks.dbf"), 0);
  EXPECT_EQ(dbf_test::DbfRecords("eks.dbf"), "ab\"c:-12:20240305:1.5000000:memo\n:7:01000101::\n");
  DbfFile dbf;
  ASSERT_EQ(DbfOpen(dbf, "eks.dbf"), 0);
  const std::string types = {dbf.Field(1).type, dbf.Field(2).type, dbf.Field(3).type, dbf.Field(4).type,
                             dbf.Field(5).type};
  EXPECT_EQ(types, "CNDNC");
  EXPECT_NE(TblToDbf("dane\\brak", "eks2.dbf"), 0);
  EXPECT_FALSE(FileExists("eks2.dbf"));
}

}  // namespace
