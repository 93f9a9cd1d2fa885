// Next numbers, the firm's register, marks and additional numbers on the
// real server: rows are put in with SQL, the expected numbers are computed here.
#include <string>
#include <vector>

#include "base/dates.h"
#include "documents/numbering.h"
#include "master/tables.h"
#include "sqltable/sqltest.h"

namespace {

int32_t Code(int year, int32_t number) { return ((year - 1996) << 24) | number; }
int32_t Day(int year, int month, int day) { return EncodeDaySerial(year, month, day); }

class NumberingTest : public CatalogueTest {
 protected:
  void SetUp() override {
    CatalogueTest::SetUp();
    for (int w : {1, 2}) ASSERT_EQ(CreateTableFrom(WarehouseTablePath(w, "naglowki"), kNaglowkiDef), 0);
    ASSERT_EQ(CreateTableFrom(kRegisterTable, kNaglowkiFirmyDef), 0);
    ASSERT_EQ(CreateTableFrom("dane\\magazyny", kKontrahentDef), 0);
    ASSERT_EQ(CreateTableFrom(kAdditionalTable, kDodNrDokDef), 0);
    ASSERT_TRUE(Psql("INSERT INTO DANE_MAGAZYNY (nazwa,nazwa_inne,numer,czy_podmiot_gosp) VALUES "
                     "('M1','',1,'Z'),('M2','',2,'Z'),('Specjalny','',3,'N')"));
  }
  // A header of warehouse w.
  static void Header(int w, int kind, int32_t coded, const std::string& mark, const std::string& date) {
    ASSERT_TRUE(Psql("INSERT INTO DANE_" + std::to_string(w) + "_NAGLOWKI (typ_dok,nr_dok,znak_dok,data_dok) VALUES (" +
                     std::to_string(kind) + "," + std::to_string(coded) + ",'" + mark + "','" + date + "')"));
  }
  static NextNumber Next(int32_t date, int kind, const ShortText& table, const NumberingSettings& s) {
    NextNumber n;
    EXPECT_EQ(NextDocNumber(date, kind, table, s, n), 0) << PGLastOp.Str();
    return n;
  }
  // The register as "kind:coded:mark" rows in key order.
  static std::string Register() {
    return Scalar("SELECT string_agg(typ_dok||':'||nr_dok||':'||znak_dok, ',' ORDER BY typ_dok,nr_dok,znak_dok) "
                  "FROM DANE_NAGLOWKI");
  }
};

const NumberingSettings kPlain = NumberingSettingsFrom(0, 0);
const NumberingSettings kOneSeries = NumberingSettingsFrom(0, 1);
const NumberingSettings kTransfers = NumberingSettingsFrom(1, 0);

TEST_F(NumberingTest, NumbersFollowTheYearOfTheDate) {
  const ShortText table = WarehouseTablePath(1, "naglowki");
  for (int n = 1; n <= 500; n += 7) Header(1, 2, Code(2023, n), "A", "2023-06-01");
  Header(1, 2, Code(2023, 900), "A", "2023-12-31");
  Header(1, 6, Code(2024, 3), "A", "2024-01-01");  // another kind does not count
  EXPECT_EQ(Next(Day(2023, 3, 1), 2, table, kPlain).coded, Code(2023, 901));
  EXPECT_EQ(Next(Day(2024, 1, 1), 2, table, kPlain).coded, Code(2024, 1));  // first of a new year
  EXPECT_EQ(Next(Day(2022, 1, 1), 2, table, kPlain).coded, Code(2022, 1));
  EXPECT_EQ(Next(Day(2024, 1, 1), 6, table, kPlain).coded, Code(2024, 4));
  // The last number of a year leaves no next one in that year.
  Header(1, 2, Code(2021, 0xFFFFFF), "A", "2021-05-05");
  EXPECT_TRUE(Next(Day(2021, 9, 9), 2, table, kPlain).failed);
  // A year the coding cannot hold.
  EXPECT_TRUE(Next(Day(1995, 12, 31), 2, table, kPlain).failed);
  EXPECT_TRUE(Next(Day(2124, 1, 1), 2, table, kPlain).failed);
}

TEST_F(NumberingTest, TwinsTakeTheHigherSeries) {
  const ShortText table = WarehouseTablePath(1, "naglowki");
  Header(1, 2, Code(2024, 7), "A", "2024-02-01");
  Header(1, 4, Code(2024, 12), "A", "2024-02-02");
  Header(1, 3, Code(2024, 20), "A", "2024-02-02");
  EXPECT_EQ(Next(Day(2024, 5, 5), 2, table, kPlain).coded, Code(2024, 8));
  EXPECT_EQ(Next(Day(2024, 5, 5), 2, table, kOneSeries).coded, Code(2024, 13));
  EXPECT_EQ(Next(Day(2024, 5, 5), 4, table, kOneSeries).coded, Code(2024, 13));
  EXPECT_EQ(Next(Day(2024, 5, 5), 5, table, kOneSeries).coded, Code(2024, 21));
  EXPECT_EQ(Next(Day(2024, 5, 5), 5, table, kPlain).coded, Code(2024, 1));
}

TEST_F(NumberingTest, CommonNumberingOverTwoWarehouses) {
  // Transfers out of warehouse 1 and in to warehouse 2 draw from one series in the register.
  EXPECT_EQ(NumberTablePath(15, 1, kTransfers), ShortText(kRegisterTable));
  EXPECT_EQ(NumberTablePath(2, 1, kTransfers), WarehouseTablePath(1, "naglowki"));
  const int32_t d = Day(2024, 4, 4);
  std::vector<int32_t> given;
  for (int i = 0; i < 3; ++i) {
    const int kind = i % 2 ? 18 : 15;
    const NextNumber n = Next(d, kind, NumberTablePath(kind, 1, kTransfers), kTransfers);
    ASSERT_FALSE(n.failed);
    ASSERT_EQ(RegisterDocNumber(kind, n.coded, "MM", d, kTransfers), 0) << PGLastOp.Str();
    given.push_back(n.coded);
  }
  EXPECT_EQ(given, (std::vector<int32_t>{Code(2024, 1), Code(2024, 2), Code(2024, 3)}));
  EXPECT_EQ(Register(), "18:" + std::to_string(Code(2024, 1)) + ":MM,18:" + std::to_string(Code(2024, 2)) +
                            ":MM,18:" + std::to_string(Code(2024, 3)) + ":MM");
  // Sales in mode 1 are numbered by each warehouse and not registered.
  Header(1, 2, Code(2024, 5), "A", "2024-04-01");
  EXPECT_EQ(Next(d, 2, NumberTablePath(2, 1, kTransfers), kTransfers).coded, Code(2024, 6));
  EXPECT_EQ(Next(d, 2, NumberTablePath(2, 2, kTransfers), kTransfers).coded, Code(2024, 1));
  ASSERT_EQ(RegisterDocNumber(2, Code(2024, 6), "A", d, kTransfers), 0);
  EXPECT_EQ(Scalar("SELECT count(*) FROM DANE_NAGLOWKI"), "3");
  // A number given twice is refused by the register's key.
  EXPECT_NE(RegisterDocNumber(15, Code(2024, 3), "MM", d, kTransfers), 0);
}

TEST_F(NumberingTest, RebuildFindsAndAddsMissingNumbers) {
  Header(1, 15, Code(2024, 1), "MM", "2024-01-02");
  Header(2, 18, Code(2024, 1), "MM", "2024-01-02");  // the mirror: one row in the register
  Header(2, 15, Code(2024, 2), "MM", "2024-01-03");
  Header(1, 2, Code(2024, 9), "A", "2024-01-03");   // not under mode 1
  ASSERT_TRUE(Psql("CREATE TABLE DANE_3_NAGLOWKI AS SELECT * FROM DANE_1_NAGLOWKI"));  // not a warehouse of its own
  ASSERT_TRUE(Psql("INSERT INTO DANE_NAGLOWKI (typ_dok,nr_dok,znak_dok,data_dok,data_ost_skasowania) VALUES "
                   "(18," + std::to_string(Code(2024, 3)) + ",'MM','2024-01-04','2024-02-01')"));  // deleted since
  const std::string deleted = "18:" + std::to_string(Code(2024, 3)) + ":MM";
  const std::string both = "18:" + std::to_string(Code(2024, 1)) + ":MM,18:" + std::to_string(Code(2024, 2)) + ":MM";
  int32_t added = -1;
  ASSERT_EQ(RebuildRegister(RebuildMode::kAddMissing, kTransfers, added), 0) << PGLastOp.Str();
  EXPECT_EQ(added, 2);
  EXPECT_EQ(Register(), both + "," + deleted);
  ASSERT_EQ(RebuildRegister(RebuildMode::kAddMissing, kTransfers, added), 0);
  EXPECT_EQ(added, 0);
  ASSERT_EQ(RebuildRegister(RebuildMode::kFromScratch, kTransfers, added), 0);
  EXPECT_EQ(added, 2);
  EXPECT_EQ(Register(), both);
  // Mode 2 takes every goods document.
  ASSERT_EQ(RebuildRegister(RebuildMode::kAddMissing, NumberingSettingsFrom(2, 0), added), 0);
  EXPECT_EQ(added, 1);
}

TEST_F(NumberingTest, CorruptedNumbersInRows) {
  const ShortText table = WarehouseTablePath(1, "naglowki");
  Header(1, 2, -5, "A", "2024-03-03");
  // Alone in its year the broken value is the highest: the series cannot go on.
  EXPECT_TRUE(Next(Day(2024, 4, 4), 2, table, kPlain).failed);
  Header(1, 2, Code(2024, 6), "A", "2024-03-04");
  EXPECT_EQ(Next(Day(2024, 4, 4), 2, table, kPlain).coded, Code(2024, 7));
}

TEST_F(NumberingTest, FreeMarkInTheTable) {
  Header(1, 2, Code(2024, 1), "K", "2024-01-01");
  Header(1, 2, Code(2024, 1), "K.", "2024-01-01");
  ShortText mark;
  ASSERT_EQ(FreeMarkInTable(WarehouseTablePath(1, "naglowki"), 2, Code(2024, 1), "K", mark), 0);
  EXPECT_EQ(mark, ShortText("K.."));
  ASSERT_EQ(FreeMarkInTable(WarehouseTablePath(1, "naglowki"), 2, Code(2024, 2), "K", mark), 0);
  EXPECT_EQ(mark, ShortText("K"));
}

TEST_F(NumberingTest, AdditionalNumbersBySeries) {
  auto assign = [](int kind, int32_t coded, const char* mark, int32_t date, const NumberingSettings& s) {
    const AdditionalResult r = AssignAdditionalNumber(kind, coded, mark, date, 1, s, 5, "t");
    EXPECT_EQ(r.code, 0) << PGLastOp.Str();
    return r.coded;
  };
  const int32_t d24 = Day(2024, 6, 1), d23 = Day(2023, 6, 1);
  EXPECT_EQ(assign(1, Code(2024, 1), "A", d24, kPlain), Code(2024, 1));
  EXPECT_EQ(assign(1, Code(2024, 1), "A", d24, kPlain), Code(2024, 1));  // the one it has
  EXPECT_EQ(assign(1, Code(2024, 2), "A", d24, kPlain), Code(2024, 2));
  EXPECT_EQ(assign(1, Code(2023, 8), "A", d23, kPlain), Code(2023, 1));  // an earlier year goes on by itself
  EXPECT_EQ(assign(1, Code(2023, 9), "A", d23, kPlain), Code(2023, 2));
  EXPECT_EQ(assign(1, Code(2024, 3), "A", d24, kPlain), Code(2024, 3));
  // Mode 1: transfers in either direction share the firm's series (warehouse 0, kind 15).
  EXPECT_EQ(assign(18, Code(2024, 1), "MM", d24, kTransfers), Code(2024, 1));
  EXPECT_EQ(assign(15, Code(2024, 2), "MM", d24, kTransfers), Code(2024, 2));
  EXPECT_EQ(Scalar("SELECT count(*) FROM DANE_DODNRDOK WHERE nr_magazynu=0 AND typ_dok=15"), "2");
  // A placeholder row gives way to a real number and keeps its value and text.
  ASSERT_TRUE(Psql("INSERT INTO DANE_DODNRDOK (nr_magazynu,typ_dok,nr_dok,znak_dok,nr_dod,data_dok,wartosc,tekst) "
                   "VALUES (1,6," + std::to_string(Code(2024, 4)) + ",'P'," + std::to_string(Code(2024, 0)) +
                   ",'2024-06-01',77,'keep')"));
  EXPECT_EQ(assign(6, Code(2024, 4), "P", d24, kPlain), Code(2024, 1));
  EXPECT_EQ(Scalar("SELECT nr_dod||':'||wartosc||':'||tekst FROM DANE_DODNRDOK WHERE typ_dok=6"),
            std::to_string(Code(2024, 1)) + ":77:keep");
}

TEST_F(NumberingTest, AdditionalNumberFailuresSayWhy) {
  AnswerBoxesOnStderr();
  ::testing::internal::CaptureStderr();
  EXPECT_EQ(AssignAdditionalNumber(1, -4, "A", Day(2024, 1, 1), 1, kPlain).coded, 0);
  ASSERT_TRUE(Psql("INSERT INTO DANE_DODNRDOK (nr_magazynu,typ_dok,nr_dok,znak_dok,nr_dod) VALUES (1,1,1,'A',-9)"));
  EXPECT_EQ(AssignAdditionalNumber(1, Code(2024, 1), "B", Day(2024, 1, 1), 1, kPlain).coded, 0);
  const std::string boxes = ::testing::internal::GetCapturedStderr();
  EXPECT_NE(boxes.find("(Niepoprawny numer dokumentu)."), std::string::npos) << boxes;
  EXPECT_NE(boxes.find("numeru dodatkowego w roku 2024."), std::string::npos) << boxes;
  EXPECT_EQ(Scalar("SELECT count(*) FROM DANE_DODNRDOK"), "1");  // nothing written
}

}  // namespace
