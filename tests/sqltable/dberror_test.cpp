// The end of the program after a database failure: the table descriptions,
// the report in error.log, the boxes, the rollback and the session's end.
#include <unistd.h>

#include <gmock/gmock.h>

#include <algorithm>
#include <string>

#include "base/mazovia.h"
#include "sqltable/dbapp.h"
#include "sqltest.h"

namespace {

TEST(TableDescription, ChosenFromTheNameAndItsDirectoryNumber) {
  const struct {
    const char* path;
    ShortText text;
  } cases[] = {
      {"DANE\\KAT_TOW_", "katalog główny towarów"_mz},
      {"DANE\\1\\NAGLOWKI", "nagłówki dokumentów towarowych - magazyn nr 1"_mz},
      {"DANE\\NAGLOWKI", "ogólna lista nagłówków dokumentów towarowych"_mz},
      {"DANE\\12345678.9\\SPECYFIK", "specyfikacje dokumentów towarowych - magazyn nr 123456789"_mz},
      {"DANE\\7\\STANY_MG", "stany magazynowe - magazyn nr 7"_mz},
      {"DANE\\3\\KASA____", "dokumenty płatności (kasowe) - magazyn nr 3"_mz},
      {"DANE\\DOSTAWCY", "katalog dostawców"_mz}, {"DANE\\ODBIORCY", "katalog odbiorców"_mz},
      {"DANE\\MAGAZYNY", "katalog magazynów"_mz},
      {"DANE\\UZYTKOWN\\5\\PRACA___", "aktualnie wypisywana specyfikacja użytkownika nr 5"_mz},
      {"DANE\\UZYTKOWN\\12\\PLIKROB_", "plik roboczy użytkownika nr 12"_mz},
      {"DANE\\DOK_PLAT", "katalog - lista dokumentów księgowanych"_mz}, {"DANE\\VAT_STAW", "katalog stawek VAT"_mz},
      {"DANE\\RABATY", "katalog rabatów"_mz}, {"DANE\\FKKONF01", "konfiguracja eksportu do FK"_mz},
      {"DANE\\PRZYKLADY", "katalog przykładowych nazw towarów"_mz},
      {"DANE\\NAZWA_DOK", "katalog typów dokumentów dodatkowych"_mz},
      {"DANE\\FORMA_PL", "katalog form płatności"_mz}, {"KAT_TOW_", "katalog główny towarów"_mz},
      {"DANE\\X\\NAGLOWKI", "ogólna lista nagłówków dokumentów towarowych"_mz},  // not a number
      {"DANE\\KAT_TOW_X", ""}, {"DANE\\UZYTKOWN\\UZYTKOWN", ""}, {"", ""},
  };
  for (const auto& c : cases) EXPECT_EQ(DBTableDescription(c.path), c.text) << c.path;
}

class FailureTest : public CatalogueTest {
 protected:
  void TearDown() override {
    SetDBSessionLeave(nullptr);
    lastOpenTable.Clear();
    std::remove("session.left");
    CatalogueTest::TearDown();
  }
  static void MarkSessionLeft() { std::ofstream("session.left") << "left"; }
  static bool SessionLeft() { return access("session.left", F_OK) == 0; }
};

TEST_F(FailureTest, OpenTableRemembersThePathForTheFailureMessage) {
  CheckDBError(0);  // code 0 does nothing
  EXPECT_TRUE(PGConnected);
  ASSERT_EQ(CreateTable("dane\\odbiorcy", {{"nazwa", "A10"}}), 0);
  int16_t tbl = 0;
  ASSERT_EQ(OpenTable("dane\\odbiorcy", tbl, 0), 0);
  EXPECT_EQ(lastOpenTable, ShortText("dane\\odbiorcy"));
  EXPECT_EQ(PGTableAt(tbl)->baseName, ShortText("DANE_ODBIORCY"));
  PGShutdownTables(1);
  for (int i = 0; i < kPGMaxTables; ++i) (void)PGTblOpen("dane\\odbiorcy", tbl, 0);
  EXPECT_EQ(OpenTable("dane\\magazyny", tbl, 0), kPGNoTableHandle);
  EXPECT_EQ(lastOpenTable, ShortText("dane\\magazyny"));  // kept even when the open fails
}

TEST_F(FailureTest, BoxesShowTheCodeTheTableAndOnYesTheDetails) {
  lastOpenTable = "dane\\1\\naglowki";
  PGLastOp = "PGRecAppend:@server text";
  AnswerBoxesOnStderr();  // Enter answers yes
  EXPECT_EXIT(CheckDBError(97), ::testing::ExitedWithCode(0),
              "B\x92\x86" "d DBMS nr 097\\. Program przerywa prac\x91 w trybie awaryjnym\\.[^\n]*\n"
              "[^\n]*Ostatnia otwierana tablica: `DANE_1_NAGLOWKI[^\n]*\n"
              "[^\n]*\\(nag\x92\xA2wki dokument\xA2w towarowych - magazyn nr 1\\)\"\\.[^\n]*\n"
              "[^\n]*Czy pokaza\x8D opis b\x92\x91" "du \\?"
              "(.|\n)*PGRecAppend:(.|\n)*server text");
  EXPECT_FALSE(SessionLeft());
  EXPECT_NE(access("error.log", F_OK), 0);  // without the file no report is written
}

TEST_F(FailureTest, ReportGoesToAnExistingLog) {
  { std::ofstream log("error.log"); }
  lastOpenTable = "dane\\odbiorcy";
  PGLastOp = "PGTblOpen";
  PushKey('N', 49);
  EXPECT_EXIT(CheckDBError(118), ::testing::ExitedWithCode(0), "");
  const std::string log = ReadFile("error.log");
  const std::string dashes(80, '-');
  ASSERT_EQ(log.rfind(dashes + "\nBlad DBMS nr 118.\n", 0), 0u) << log;
  EXPECT_TRUE(testing::internal::RE::PartialMatch(log, "\n[0-9][0-9]\\.[0-9][0-9]\\.[0-9]{4}, [0-9][0-9]:[0-9][0-9]\n"));
  EXPECT_NE(log.find("\n(PGTblOpen)\n("), std::string::npos);
  EXPECT_NE(log.find("\nOstatnia otwierana tablica: \"DANE_ODBIORCY\n(katalog odbiorc"), std::string::npos);
  // An empty line, the 25 rows of the screen and the closing line.
  const auto empty = log.find("\n\n");
  ASSERT_NE(empty, std::string::npos);
  const std::string rest = log.substr(empty + 2);
  EXPECT_EQ(std::count(rest.begin(), rest.end(), '\n'), 26);
  EXPECT_EQ(rest.substr(rest.size() - 81), dashes + "\n");
}

TEST_F(FailureTest, OpenTransactionsAreRolledBack) {
  ASSERT_EQ(PGRunQueryNoTup("CREATE TABLE t (a int)"), 0);
  ASSERT_EQ(PGTransBegin(), 0);
  ASSERT_EQ(PGTransBegin(), 0);
  ASSERT_EQ(PGRunQueryNoTup("INSERT INTO t VALUES (1)"), 0);
  PushKey('N', 49);
  EXPECT_EXIT(CheckDBError(118), ::testing::ExitedWithCode(0), "");
  // The dead child shared our connection: its rollback ended our transaction too.
  PGResult res;
  ASSERT_EQ(PGRunQueryWithTup("SELECT count(*) FROM t", res), 0);
  EXPECT_EQ(res.Value(0, 0), "0");
  EXPECT_EQ(PGRunQueryNoTup("COMMIT"), 0);  // no transaction is open any more
}

TEST_F(FailureTest, SessionEndsOnlyWhenTheUsersTableAnswers) {
  SetDBSessionLeave(MarkSessionLeft);
  AnswerBoxesOnStderr();
  PushKey('N', 49);
  EXPECT_EXIT(CheckDBError(118), ::testing::ExitedWithCode(0),
              ::testing::Not(::testing::HasSubstr("Brak komunikacji")));
  EXPECT_FALSE(SessionLeft());
  ASSERT_EQ(CreateTable("dane\\uzytkown\\uzytkown", {{"nazwa", "A10"}}), 0);
  PushKey('N', 49);
  EXPECT_EXIT(CheckDBError(118), ::testing::ExitedWithCode(0), "");
  EXPECT_TRUE(SessionLeft());
}

TEST_F(FailureTest, LostServerIsReported) {
  SetDBSessionLeave(MarkSessionLeft);
  PGResult res;
  ASSERT_EQ(PGRunQueryWithTup("SELECT pg_backend_pid()", res), 0);
  ASSERT_TRUE(Psql("SELECT pg_terminate_backend(" + std::string(res.Value(0, 0)) + ")"));
  AnswerBoxesOnStderr();
  PushKey('N', 49);
  EXPECT_EXIT(CheckDBError(1002), ::testing::ExitedWithCode(0), "Brak komunikacji z baz\x86 danych\\.");
  EXPECT_FALSE(SessionLeft());
}

}  // namespace
