// Creating, opening, closing and testing tables through the catalogue.
#include <string>

#include "base/codepage.h"
#include "base/expect_rows.h"
#include "sqltest.h"

namespace {

using test_rows::ExpectRows;

using TableTest = CatalogueTest;

TEST_F(TableTest, CreateWritesCatalogueRowsAndTheServerTable) {
  const std::vector<std::pair<const char*, const char*>> fields = {
      {"nr", "I"}, {"nazwa", "A25"}, {"znak", "A1"}, {"data", "D"}, {"ile", "S"},
      {"duzo", "Y"}, {"cena", "N"}, {"kwota", "$"}, {"dokl", "X"}, {"notatka", "M200"}};
  ASSERT_EQ(CreateTable("dane\\magazyny", fields), 0) << PGLastOp.Str();
  // One row per field in its order: the name upper-cased, no key, no index, the counter at its start.
  std::string rows;
  for (std::size_t i = 0; i < fields.size(); ++i) {
    rows += std::string(i == 0 ? "" : ";") + "DANE_MAGAZYNY|" + MazUpCaseText(fields[i].first).Str() + "|" +
            fields[i].second + "| | || |0|" + std::to_string(i + 1) + "|0|N|0|0|-2147483647";
  }
  EXPECT_EQ(Scalar("SELECT string_agg(concat_ws('|',nazt,nazp,typp,k,i,ci,temp,maxrec,lp,cilp,lck,typi,typci,il_zm)"
                   ", ';' ORDER BY lp) FROM tables_list"),
            rows);
  // The row id comes first, then the fields in their order.
  EXPECT_EQ(Scalar("SELECT string_agg(column_name || ' ' || format_type(atttypid, atttypmod), ',' ORDER BY attnum) "
                   "FROM information_schema.columns c JOIN pg_attribute a ON a.attrelid='dane_magazyny'::regclass "
                   "AND a.attname=c.column_name WHERE c.table_schema=current_schema() AND c.table_name='dane_magazyny'"),
                "oid bigint,nr integer,nazwa character varying(25),znak character(1),data date,ile smallint,"
                "duzo bigint,cena double precision,kwota double precision,dokl numeric(28,7),notatka text");
  EXPECT_EQ(Scalar("SELECT replace(indexdef, current_schema() || '.', '') FROM pg_indexes WHERE schemaname=current_schema() AND indexname='dane_magazyny_oidindeks'"),
            "CREATE UNIQUE INDEX dane_magazyny_oidindeks ON dane_magazyny USING btree (oid)");
  // Rows get ids without naming them.
  ASSERT_TRUE(Psql("INSERT INTO dane_magazyny (nr) VALUES (1),(2)"));
  EXPECT_EQ(Scalar("SELECT string_agg(oid::text, ',' ORDER BY oid) FROM dane_magazyny"), "1,2");
}

TEST_F(TableTest, CreateRefusesBadFieldsAndTooManyOfThem) {
  struct Case {
    std::vector<std::pair<const char*, const char*>> fields;
    int16_t code;
  } cases[] = {
      {{{"a", "A10"}, {"b", ""}}, kPGBadArgument}, {{{"a", "Q"}}, kPGBadArgument}, {{{"a", "D8"}}, kPGBadArgument},
      {{{"a", "A"}}, kPGBadArgument}, {{{"a", "M"}}, kPGBadArgument}, {{{"a", "A300"}}, kPGBadArgument},
      {{{"a", "A2x"}}, kPGBadArgument},
      {{{"nazwa", "A10"}, {"NAZWA", "I"}}, kPGBadArgument},       // same mapped name
      {{{"a b", "A10"}, {"A20B", "I"}}, kPGBadArgument},          // same after mapping
      {{{"oid", "I"}}, kPGBadArgument},                            // the row id's name
      {{{"abcdefghijklmnopqrstuvwxy", "I"}}, 0},                   // 25 bytes fit
      {{{"abcdefghijklmnopqrstuvwx\\z", "I"}}, 0},
      {{{"abcdefghijklmnopqrstuvw..", "I"}}, kPGBadArgument},     // 29 bytes once mapped
  };
  for (const Case& c : cases) {
    PGNextTblTemp = true;
    EXPECT_EQ(CreateTable("dane\\t", c.fields), c.code) << c.fields[0].first << " " << c.fields.back().second;
    EXPECT_FALSE(PGNextTblTemp);  // the pending flag never outlives one call
    if (c.code != 0) {
      EXPECT_EQ(Scalar("SELECT count(*) FROM tables_list WHERE nazt='DANE_T'"), "0");
    }
    ASSERT_TRUE(Psql("DROP TABLE IF EXISTS dane_t; DELETE FROM tables_list"));
  }
  std::vector<PGName> names(256), types(256, PGName("I"));
  for (int i = 0; i < 256; ++i) names[i] = PGName("f" + std::to_string(i));
  EXPECT_EQ(PGTblCreate("dane\\wide", 256, names.data(), types.data()), kPGArgRange);
  EXPECT_EQ(PGTblCreate("dane\\wide", 255, names.data(), types.data()), 0) << PGLastOp.Str();
  EXPECT_EQ(Scalar("SELECT count(*) FROM tables_list WHERE nazt='DANE_WIDE'"), "255");
}

TEST_F(TableTest, CreateReplacesATableAndClearsStaleRows) {
  ASSERT_EQ(CreateTable("dane\\t", {{"a", "I"}, {"b", "A5"}}), 0);
  ASSERT_TRUE(Psql("INSERT INTO dane_t (a,b) VALUES (1,'x')"));
  ASSERT_EQ(CreateTable("dane\\t", {{"c", "D"}}), 0) << PGLastOp.Str();
  EXPECT_EQ(Scalar("SELECT count(*) FROM dane_t"), "0");
  EXPECT_EQ(Scalar("SELECT string_agg(nazp, ',') FROM tables_list"), "C");
  // A reserved word passes the name rule but not the server: the rows it left are cleared by the next creation.
  EXPECT_EQ(CreateTable("dane\\u", {{"a", "I"}, {"select", "I"}}), kPGSqlFailed);
  EXPECT_EQ(Scalar("SELECT count(*) FROM tables_list WHERE nazt='DANE_U'"), "2");
  bool exists = true;
  EXPECT_EQ(PGTblExist("dane\\u", exists), 0);
  EXPECT_FALSE(exists);
  ASSERT_EQ(CreateTable("dane\\u", {{"x", "I"}}), 0) << PGLastOp.Str();
  EXPECT_EQ(Scalar("SELECT string_agg(nazp, ',') FROM tables_list WHERE nazt='DANE_U'"), "X");
}

TEST_F(TableTest, OpenReadsTheCatalogueIntoTheHandle) {
  ASSERT_EQ(CreateTable("dane\\t", {{"nr", "I"}, {"nazwa", "A30"}, {"data", "D"}, {"opis", "M10"}}), 0);
  const int16_t key[2] = {1, 2};
  ASSERT_EQ(PGKeyAdd("dane\\t", 2, key, 0), 0) << PGLastOp.Str();
  ASSERT_TRUE(Psql("UPDATE tables_list SET il_zm=41 WHERE lp=1"));
  int16_t h = 0;
  ASSERT_EQ(PGTblOpen("dane\\t", h, 2), 0) << PGLastOp.Str();
  ASSERT_EQ(h, 1);
  // The handle's own state; its field count, key count and name are read below through the layer's calls.
  const PGTable& t = *PGTableAt(h);
  ExpectRows<ShortText>({{t.sqlName, "DANE_T"}, {t.baseName, "DANE_T"}, {t.cursorName, "c1"}});
  ExpectRows<int>({{t.indexHandle, 2}, {t.ilZm, 41}, {t.fields[2].bufSize, 31}, {t.fields[2].textLen, 30},
                   {t.fields[4].bufSize, 16385}});
  EXPECT_FALSE(t.isTemp);
  ASSERT_EQ(t.fields.size(), 5u);
  ExpectRows<PGKind>({{t.fields[2].kind, PGKind::Text}, {t.fields[3].kind, PGKind::Date}, {t.fields[4].kind, PGKind::Blob}});
  ASSERT_EQ(t.curValues.size(), 5u);
  EXPECT_GE(t.curValues[4].capacity(), 16385u);
  EXPECT_FALSE(t.cursorOpen || t.positioned);

  // Each call gives its code and its answer.
  int16_t nFields = 0, nKeys = 0, nazwa = 0, unknown = -1;
  ShortText name, type, fieldName, untouched = "x";
  ExpectRows<int16_t>({{PGRecNFlds(h, nFields), 0}, {nFields, 4}, {PGKeyNFlds(h, nKeys), 0}, {nKeys, 2},
                       {PGFldHandle(h, "Nazwa", nazwa), 0}, {nazwa, 2}, {PGFldHandle(h, "nazw", unknown), kPGBadFieldName},
                       {PGTblName(h, name), 0}, {PGFldType(h, 3, type), 0}, {PGFldName(h, 4, fieldName), 0},
                       {PGFldType(h, 0, untouched), kPGBadFieldHandle}, {PGFldName(h, 5, untouched), kPGBadFieldHandle}});
  ExpectRows<ShortText>({{name, "dane\\t"}, {type, "D"}, {fieldName, "OPIS"}, {t.fields[2].name, "NAZWA"},
                         {t.fields[2].type, "A30"}});
  int16_t n = 0;
  ShortText text;
  for (int bad : {0, 2, 101, -1}) {
    EXPECT_EQ(PGRecNFlds(static_cast<int16_t>(bad), n), kPGBadTableHandle);
    EXPECT_EQ(PGFldType(static_cast<int16_t>(bad), 1, text), kPGBadTableHandle);
  }
  EXPECT_EQ(PGTblClose(h), 0);
  EXPECT_EQ(PGTblClose(h), kPGBadTableHandle);
}

TEST_F(TableTest, OpenOfAMissingOrBadCatalogue) {
  // A name without rows gives an empty handle.
  int16_t h = 0;
  ASSERT_EQ(PGTblOpen("dane\\nic", h, 0), 0);
  EXPECT_EQ(PGTableAt(h)->nFields, 0);
  EXPECT_EQ(PGTableAt(h)->nKeyFields, 0);
  ASSERT_EQ(PGTblClose(h), 0);
  // An unknown type letter is refused and the slot freed.
  ASSERT_EQ(CreateTable("dane\\t", {{"a", "I"}, {"b", "A5"}}), 0);
  ASSERT_TRUE(Psql("UPDATE tables_list SET typp='Q5' WHERE lp=2"));
  h = 7;
  EXPECT_EQ(PGTblOpen("dane\\t", h, 0), kPGBadArgument);
  EXPECT_EQ(h, 0);
  EXPECT_EQ(PGOpenTableCount(), 0);
  // Without the catalogue: 118.
  ASSERT_TRUE(Psql("DROP TABLE tables_list"));
  EXPECT_EQ(PGTblOpen("dane\\t", h, 0), kPGSqlFailed);
  EXPECT_EQ(PGOpenTableCount(), 0);
}

TEST_F(TableTest, HundredOpenTablesThenNoFreeHandle) {
  ASSERT_EQ(CreateTable("dane\\t", {{"a", "I"}}), 0);
  int16_t h = 0;
  for (int i = 1; i <= kPGMaxTables; ++i) {
    ASSERT_EQ(PGTblOpen("dane\\t", h, 0), 0);
    EXPECT_EQ(h, i);
  }
  EXPECT_EQ(PGTblOpen("dane\\t", h, 0), kPGNoTableHandle);
  EXPECT_EQ(h, 0);
  EXPECT_EQ(PGTblClose(37), 0);
  ASSERT_EQ(PGTblOpen("dane\\t", h, 0), 0);
  EXPECT_EQ(h, 37);
  PGShutdownTables(1);
  EXPECT_EQ(PGOpenTableCount(), 0);
  EXPECT_EQ(PGTableAt(1), nullptr);
}

TEST_F(TableTest, CloseBumpsTheChangeCounterOnlyForOurChanges) {
  ASSERT_EQ(CreateTable("dane\\t", {{"a", "I"}, {"b", "I"}}), 0);
  int16_t h = 0;
  ASSERT_EQ(PGTblOpen("dane\\t", h, 0), 0);
  PGTableAt(h)->changedByUs = true;
  EXPECT_EQ(PGTblClose(h), 0);
  EXPECT_EQ(Scalar("SELECT string_agg(il_zm::text, ',' ORDER BY lp) FROM tables_list"), "-2147483646,-2147483647");

  PGNextTblTemp = true;
  ASSERT_EQ(CreateTable("tmp\\x", {{"a", "I"}}), 0);
  ASSERT_EQ(PGTblOpen("tmp\\x", h, 0), 0);
  EXPECT_TRUE(PGTableAt(h)->isTemp);
  PGTableAt(h)->changedByUs = true;
  EXPECT_EQ(PGTblClose(h), 0);
  EXPECT_EQ(Scalar("SELECT il_zm FROM tables_list WHERE nazt='TMP_X'"), "-2147483647");
}

TEST_F(TableTest, CloseDropsViewAndReportsAFailedStatement) {
  ASSERT_EQ(CreateTable("dane\\t", {{"a", "I"}, {"b", "A5"}}), 0);
  ASSERT_TRUE(Psql("INSERT INTO dane_t (a,b) VALUES (1,'x'),(2,'y')"));
  int16_t h = 0;
  ASSERT_EQ(PGTblOpen("dane\\t", h, 0), 0);
  ASSERT_EQ(PGTblViewSet(h, "SELECT oid,a*10,b FROM dane_t WHERE a>1"), 0) << PGLastOp.Str();
  const PGTable& t = *PGTableAt(h);
  EXPECT_EQ(t.sqlName, "VDANE_T");
  EXPECT_EQ(t.baseName, "DANE_T");
  EXPECT_TRUE(t.viewActive);
  PGResult res;
  ASSERT_EQ(PGRunQueryWithTup("SELECT * FROM VDANE_T", res), 0);
  ASSERT_EQ(res.Rows(), 1);
  EXPECT_EQ(res.Value(0, 0), "2");
  EXPECT_EQ(res.Value(0, 1), "20");
  // A second view replaces the first.
  ASSERT_EQ(PGTblViewSet(h, "SELECT oid,a,b FROM dane_t"), 0) << PGLastOp.Str();
  EXPECT_EQ(PGTblViewSet(h, "SELEKT"), kPGSqlFailed);
  EXPECT_EQ(PGTableAt(h)->sqlName, "DANE_T");
  EXPECT_EQ(PGTblViewSet(999, "SELECT 1"), kPGBadTableHandle);

  ASSERT_EQ(PGTblViewSet(h, "SELECT oid,a,b FROM dane_t"), 0) << PGLastOp.Str();
  EXPECT_EQ(PGTblClose(h), 0);
  EXPECT_NE(PGRunQueryWithTup("SELECT * FROM VDANE_T", res), 0);
  // A cursor that the server no longer knows: the table is released all the same.
  ASSERT_EQ(PGTblOpen("dane\\t", h, 0), 0);
  PGTableAt(h)->cursorOpen = true;
  EXPECT_EQ(PGTblClose(h), kPGBadTableHandle);
  EXPECT_EQ(PGTableAt(h), nullptr);
}

// A yes/no call's answer: "yes" or "no", or its code when it fails.
std::string Answer(int16_t code, const bool& flag) { return code != 0 ? std::to_string(code) : flag ? "yes" : "no"; }

TEST_F(TableTest, ExistEmptyAndDeleteAlsoInsideATransaction) {
  const std::string failed = std::to_string(kPGSqlFailed);
  bool flag = true;
  EXPECT_EQ(Answer(PGTblExist("dane\\t", flag), flag), "no");
  ASSERT_EQ(CreateTable("dane\\t", {{"a", "I"}}), 0);
  // Inside a transaction the answers leave it usable.
  ASSERT_EQ(PGTransBegin(), 0);
  ASSERT_EQ(PGRunQueryNoTup("INSERT INTO dane_t (a) VALUES (1)"), 0);
  EXPECT_EQ(Answer(PGTblExist("dane\\missing", flag), flag), "no");
  EXPECT_EQ(Answer(PGTblExist("dane\\t", flag), flag), "yes");
  EXPECT_EQ(PGRunQueryNoTup("INSERT INTO dane_t (a) VALUES (2)"), 0);
  EXPECT_EQ(PGTransCommit(), 0);
  EXPECT_EQ(Scalar("SELECT count(*) FROM dane_t"), "2");
  EXPECT_EQ(Answer(PGTblExist_pg("DANE_T", flag), flag), "yes");
  EXPECT_EQ(Answer(PGTblExist_pg("dane\\t", flag), flag), "no");  // a raw name is not mapped
  EXPECT_EQ(Answer(PGTblIsEmpty("dane\\t", flag), flag), "no");
  EXPECT_EQ(PGTblEmpty("dane\\t"), 0);
  EXPECT_EQ(Answer(PGTblIsEmpty("dane\\t", flag), flag), "yes");
  EXPECT_EQ(Answer(PGTblIsEmpty("dane\\none", flag), flag), failed);
  EXPECT_EQ(PGTblEmpty("dane\\none"), kPGSqlFailed);

  EXPECT_EQ(PGTblDelete("dane\\t"), 0);
  EXPECT_EQ(Answer(PGTblExist("dane\\t", flag), flag), "no");
  EXPECT_EQ(Scalar("SELECT count(*) FROM tables_list"), "0");
  EXPECT_EQ(PGTblDelete("dane\\t"), kPGSqlFailed);
  // A temporary table that went with its session is no failure; its rows go.
  ASSERT_TRUE(Psql("INSERT INTO tables_list (nazt,nazp,typp,lp) VALUES ('TMP_123','A','I',1)"));
  EXPECT_EQ(PGTblDelete("tmp_123"), 0);
  EXPECT_EQ(Scalar("SELECT count(*) FROM tables_list"), "0");
}

TEST_F(TableTest, TemporaryTablesAreRecordedAndLiveInTheSession) {
  ShortText name;
  ASSERT_EQ(PGDefNameTmpTable(name), 0);
  EXPECT_EQ(name.Copy(1, 4), "TMP_");
  EXPECT_GE(name.Length(), 4 + 14);
  for (int i = 5; i <= name.Length(); ++i) EXPECT_TRUE(name.At(i) >= '0' && name.At(i) <= '9');
  PGNextTblTemp = true;
  ASSERT_EQ(CreateTable(name, {{"a", "I"}, {"b", "A3"}}), 0) << PGLastOp.Str();
  EXPECT_FALSE(PGNextTblTemp);
  EXPECT_EQ(Scalar("SELECT string_agg(temp, ',') FROM tables_list"), "*,*");
  // The server table lives in this session only.
  EXPECT_EQ(Scalar("SELECT count(*) FROM pg_tables WHERE tablename='" + std::string(MazLowCaseText(name).View()) +
                   "' AND schemaname=current_schema()"),
            "0");
  PGResult res;
  EXPECT_EQ(PGRunQueryWithTup("SELECT * FROM " + name.Str(), res), 0);
  EXPECT_EQ(res.Cols(), 3);
  EXPECT_EQ(PGTblDelete(name), 0);
}

TEST_F(TableTest, HostileNamesCannotChangeAStatement) {
  const ShortText hostile = "x'; DROP TABLE tables_list; --";
  ASSERT_EQ(CreateTable(hostile, {{"a'b", "I"}, {"c\"); DROP", "A5"}}), 0) << PGLastOp.Str();
  int16_t h = 0;
  ASSERT_EQ(PGTblOpen(hostile, h, 0), 0);
  EXPECT_EQ(PGTableAt(h)->nFields, 2);
  const ShortText base = PGTableAt(h)->baseName;  // 39 bytes mapped, so shortened
  EXPECT_EQ(base.Length(), static_cast<int>(kPGMaxSqlName));
  EXPECT_EQ(base.Str().substr(0, 25), "X273B20DROP20TABLE20TABL_");
  EXPECT_EQ(PGTableAt(h)->fields[1].name, "A27B");
  EXPECT_EQ(PGInit(), 0);
  EXPECT_EQ(PGTblDelete(hostile), 0);
}

}  // namespace

namespace {

// What the other parts of the layer were asked to release.
std::string gHookCalls;

void InstallRecordingHooks() {
  gHookCalls.clear();
  PGHooks().releaseControlCache = [](int16_t tbl) { gHookCalls += "control" + std::to_string(tbl) + " "; };
  PGHooks().closeRecordBuffersOf = [](int16_t tbl) { gHookCalls += "buffers" + std::to_string(tbl) + " "; };
  PGHooks().freeAllRecordBuffers = [] { gHookCalls += "allbuffers "; };
  PGHooks().clearLockRegister = [] { gHookCalls += "locks "; };
}

class ShutdownTest : public CatalogueTest {
 protected:
  void SetUp() override {
    CatalogueTest::SetUp();
    InstallRecordingHooks();
    ASSERT_EQ(CreateTable("dane\\t", {{"a", "I"}}), 0);
  }
  void TearDown() override {
    PGHooks() = PGTableHooks{};
    CatalogueTest::TearDown();
  }
  static std::string Counter() { return Scalar("SELECT il_zm FROM tables_list WHERE lp=1"); }
};

TEST_F(ShutdownTest, CloseReleasesWhatBelongsToTheTable) {
  int16_t h = 0;
  ASSERT_EQ(PGTblOpen("dane\\t", h, 0), 0);
  ASSERT_EQ(PGTblOpen("dane\\t", h, 0), 0);
  EXPECT_EQ(PGTblClose(2), 0);
  EXPECT_EQ(gHookCalls, "control2 buffers2 ");
  EXPECT_EQ(PGTblClose(2), kPGBadTableHandle);
  EXPECT_EQ(gHookCalls, "control2 buffers2 ");  // a bad handle releases nothing
}

TEST_F(ShutdownTest, ModeZeroForgetsTablesWithoutClosingThem) {
  int16_t h = 0;
  ASSERT_EQ(PGTblOpen("dane\\t", h, 0), 0);
  PGTableAt(h)->changedByUs = true;
  PGShutdownTables(0);
  EXPECT_EQ(gHookCalls, "locks allbuffers ");
  EXPECT_EQ(PGOpenTableCount(), 0);
  EXPECT_EQ(PGTableAt(h), nullptr);
  EXPECT_EQ(Counter(), "-2147483647");  // nothing was closed, nothing bumped
}

TEST_F(ShutdownTest, ModesOneAndTwoCloseEveryTable) {
  int16_t h = 0;
  ASSERT_EQ(PGTblOpen("dane\\t", h, 0), 0);
  PGTableAt(h)->changedByUs = true;
  PGShutdownTables(1);
  EXPECT_EQ(gHookCalls, "locks control1 buffers1 allbuffers ");
  EXPECT_EQ(Counter(), "-2147483646");
  gHookCalls.clear();
  ASSERT_EQ(PGTblOpen("dane\\t", h, 0), 0);
  const int16_t key[1] = {1};
  int ix = 0;
  ASSERT_EQ(PGKeyMap("dane\\t", 1, key, "po_a", ix), 0);
  PGShutdownTables(2);  // the lock register stays
  EXPECT_EQ(gHookCalls, "control1 buffers1 allbuffers ");
  EXPECT_EQ(PGOpenTableCount(), 0);
  EXPECT_EQ(PGKeyDescriptor(ix), nullptr);
}

}  // namespace
