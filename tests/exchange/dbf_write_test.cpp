// Writing tables: the bytes on disk, numbers and dates into fields, pack and
// append, and the failures of the disk while writing.
#include <signal.h>
#include <sys/resource.h>

#include <string>
#include <vector>

#include "base/dates.h"
#include "base/expect_rows.h"
#include "base/mazovia.h"
#include "dbf_fixture.h"

namespace dbf_test {
namespace {

const DbfFieldSpec kSpecs[] = {{"NAZWA", 'C', 12, 0}, {"CENA", 'N', 8, 2}, {"DATA", 'D', 8, 0}, {"JEST", 'L', 1, 0}};

class DbfWriteTest : public DbfTest {
 protected:
  // A table of n records: "R<i>", i + 0.5, 01-02-2020, T; every third deleted.
  void WriteTable(const char* name, int n, DbfCodePage page = DbfCodePage::kAsIs) {
    ASSERT_EQ(DbfCreate(table_, name, kSpecs, page), 0);
    for (int i = 1; i <= n; ++i) {
      DbfBlankRecord(table_);
      ASSERT_EQ(DbfPutField(table_, 1, ShortText("R" + std::to_string(i))), 0);
      ASSERT_EQ(DbfPutNumber(table_, 2, i + 0.5L), 0);
      ASSERT_EQ(DbfPutDate(table_, 3, "01-02-2020"), 0);
      ASSERT_EQ(DbfPutField(table_, 4, "T"), 0);
      DbfMarkDeleted(table_, i % 3 == 0);
      ASSERT_EQ(DbfAppendRecord(table_), 0);
    }
    ASSERT_EQ(DbfClose(table_), 0);
  }
  // The names of the records, in order, as the layer reads them back.
  std::vector<std::string> Names(const char* name, bool liveOnly) {
    std::vector<std::string> names;
    DbfFile t;
    if (DbfOpen(t, name) != 0) return {"cannot open"};
    for (int64_t n = 1; n <= t.recordCount; ++n) {
      if (DbfReadRecord(t, n) != 0) return {"cannot read"};
      if (!liveOnly || !DbfIsDeleted(t)) names.push_back(DbfGetField(t, 1).Str());
    }
    return names;
  }
  static std::vector<std::string> Expected(int n, bool liveOnly) {
    std::vector<std::string> names;
    for (int i = 1; i <= n; ++i)
      if (!liveOnly || i % 3 != 0) names.push_back("R" + std::to_string(i));
    return names;
  }
};

TEST_F(DbfWriteTest, WrittenBytesAreADbase3FileWithItsMarks) {
  WriteTable("nowy.dbf", 4);
  const std::string b = ReadBytes("nowy.dbf");
  const int header = 32 + 4 * 32 + 1, record = 1 + 12 + 8 + 8 + 1;
  ASSERT_EQ(b.size(), size_t(header + 4 * record + 1));
  // Version, record count, header and record sizes, the second field's type and decimals, the header's end mark,
  // the third record's delete mark and the end-of-file mark.
  test_rows::ExpectRows<int>({{b[0], 3}, {b[4], 4}, {static_cast<unsigned char>(b[8]) + 256 * b[9], header},
                              {b[10], record}, {b[32 + 32 + 11], 'N'}, {b[32 + 32 + 17], 2}, {b[header - 1], 0x0D},
                              {b[header + 2 * record], '*'}, {b.back(), 0x1A}});
  EXPECT_EQ(b.substr(32, 6), std::string("NAZWA\0", 6));
  EXPECT_EQ(b.substr(header, record), " R1" + std::string(14, ' ') + "1.5020200201T");
}

TEST_F(DbfWriteTest, CreatedFileAppearsOnlyWhenClosedWholeAndOneRemovedWhileWrittenIsReported) {
  std::string old = RawDbase3(kRawFields, kRawRecords);
  WriteBytes("tabela.dbf", old);
  ASSERT_EQ(DbfCreate(table_, "tabela.dbf", kSpecs), 0);
  DbfBlankRecord(table_);
  ASSERT_EQ(DbfAppendRecord(table_), 0);
  EXPECT_EQ(ReadBytes("tabela.dbf"), old);
  ASSERT_EQ(DbfClose(table_), 0);
  EXPECT_EQ(Names("tabela.dbf", false), std::vector<std::string>{""});
  EXPECT_EQ(file_test::Listing(), "tabela.dbf ");
  std::remove("tabela.dbf");

  // A file removed while it is written is reported.
  ASSERT_EQ(DbfCreate(table_, "znika.dbf", kSpecs), 0);
  DbfBlankRecord(table_);
  ASSERT_EQ(DbfAppendRecord(table_), 0);
  ASSERT_EQ(std::system("rm -f ./~*.dbf"), 0);  // the file being written
  EXPECT_EQ(DbfClose(table_), kDbfNotFound);
  EXPECT_EQ(file_test::Listing(), "");

  WriteTable("znika.dbf", 3);
  ASSERT_EQ(DbfOpen(table_, "znika.dbf"), 0);
  ASSERT_EQ(DbfAppendRecord(table_), 0);
  std::remove("znika.dbf");
  EXPECT_EQ(DbfClose(table_), kDbfNotFound);
}

TEST_F(DbfWriteTest, RecordsAreRewrittenInPlaceAndFound) {
  WriteTable("t.dbf", 7);
  ASSERT_EQ(DbfOpen(table_, "t.dbf"), 0);
  ASSERT_EQ(DbfReadRecord(table_, 5), 0);
  ASSERT_EQ(DbfPutField(table_, 1, "piąty"_mz), 0);
  ASSERT_EQ(DbfWriteRecord(table_, 5), 0);
  EXPECT_EQ(DbfWriteRecord(table_, 8), kDbfRecordRange);
  EXPECT_EQ(DbfErrorText(kDbfRecordRange), "Błąd pliku DBASE.@Rekord przekroczył zakres wielkosci"_mz);
  // R6 is deleted, so not found.
  test_rows::ExpectRows<int64_t>({{DbfFindField(table_, "cena"), 2}, {DbfFindField(table_, "BRAK"), 0},
                                  {DbfFindValue(table_, 1, "piąty"_mz), 5}, {DbfFindValue(table_, 1, "R6"), 0},
                                  {DbfFindValue(table_, 1, "R7"), 7}, {DbfFindValue(table_, 1, "R"), 0}});
  ASSERT_EQ(DbfClose(table_), 0);
  auto expected = Expected(7, false);
  expected[4] = "piąty"_mz.Str();
  EXPECT_EQ(Names("t.dbf", false), expected);
}

TEST_F(DbfWriteTest, NumbersKeepTheirPlacesOrAreRefused) {
  const struct {
    int width, decimals;
    Real value;
    const char* stored;  // null: refused, the field keeps "old"
  } cases[] = {
      {5, 0, 99999, "99999"}, {5, 0, 100000, nullptr}, {5, 0, -9999, "-9999"}, {5, 0, -99999, nullptr},
      {6, 2, 999.99L, "999.99"}, {6, 2, 1000, nullptr}, {6, 2, -99.5L, "-99.50"}, {6, 2, 999.996L, nullptr},
      {4, 1, 2.25L, " 2.3"}, {4, 1, -2.25L, "-2.3"}, {3, 0, 0, "  0"}, {3, 0, -0.4L, "  0"},
  };
  for (const auto& c : cases) {
    const DbfFieldSpec def[] = {{"N", 'N', c.width, c.decimals}};
    ASSERT_EQ(DbfCreate(table_, "n.dbf", def), 0);
    ASSERT_EQ(DbfPutField(table_, 1, "old"), 0);
    const int code = DbfPutNumber(table_, 1, c.value);
    EXPECT_EQ(code, c.stored ? 0 : kDbfBufferError) << c.width << "," << c.decimals << " " << double(c.value);
    std::string field(table_.record.begin() + 1, table_.record.end());
    EXPECT_EQ(field, c.stored ? c.stored : std::string(c.width - 3, ' ') + "old");
    DbfClose(table_);
  }
}

TEST_F(DbfWriteTest, TextDatesAndBadFieldNumbers) {
  ASSERT_EQ(DbfCreate(table_, "d.dbf", kSpecs), 0);
  EXPECT_EQ(DbfPutField(table_, 1, "to jest za długie"_mz), 0);
  EXPECT_EQ(DbfGetField(table_, 1), "to jest za d");
  EXPECT_EQ(DbfPutField(table_, 2, " 123456789 "), kDbfBufferError);
  EXPECT_EQ(DbfPutField(table_, 2, " 12.5"), 0);
  EXPECT_EQ(DbfGetField(table_, 2), "    12.5");
  EXPECT_EQ(DbfGetDate(table_, 3), Today(10));  // blank field
  const struct {
    const char* date;
    const char* stored;
  } dates[] = {{"29-02-2024", "20240229"}, {"05-06-07", "20070605"}, {"05-06-97", "19970605"},
               {"29-02-2023", nullptr}, {"1-2-2020", nullptr}, {"", nullptr}};
  for (const auto& d : dates) {
    ASSERT_EQ(DbfPutDate(table_, 3, "31-12-2001"), 0);
    EXPECT_EQ(DbfPutDate(table_, 3, d.date), d.stored ? 0 : kDbfBufferError) << d.date;
    EXPECT_EQ(DbfGetField(table_, 3), d.stored ? d.stored : "20011231") << d.date;
  }
  ASSERT_EQ(DbfPutDate(table_, 3, "05-06-07"), 0);
  EXPECT_EQ(DbfGetDate(table_, 3), "05-06-2007");
  EXPECT_EQ(DbfPutField(table_, 5, "x"), kDbfBufferError);
  EXPECT_EQ(DbfPutNumber(table_, 0, 1), kDbfBufferError);
  DbfClose(table_);
}

TEST_F(DbfWriteTest, BadFieldListsAreRefused) {
  const struct {
    DbfFieldSpec def;
    int code;
  } cases[] = {{{"A", 'X', 5, 0}, kDbfBadFieldType}, {{"A", 'C', 0, 0}, kDbfNotDbase},
               {{"A", 'C', 256, 0}, kDbfNotDbase}, {{"", 'C', 5, 0}, kDbfNotDbase},
               {{"A", 'N', 5, 4}, kDbfNotDbase}, {{"A", 'C', 255, 0}, 0}};
  for (const auto& c : cases) {
    EXPECT_EQ(DbfCreate(table_, "bad.dbf", std::span(&c.def, 1)), c.code) << c.def.type << c.def.width;
    DbfClose(table_);
  }
  EXPECT_EQ(DbfCreate(table_, "none.dbf", std::span<const DbfFieldSpec>()), kDbfNotDbase);
  EXPECT_EQ(file_test::Listing(), "bad.dbf ");
}

TEST_F(DbfWriteTest, PackDropsDeletedRecordsAndAppendTakesFieldsByName) {
  WriteTable("p.dbf", 10);
  ASSERT_EQ(DbfOpen(table_, "p.dbf"), 0);
  ASSERT_EQ(DbfPack(table_), 0);
  EXPECT_TRUE(table_.IsOpen());
  EXPECT_EQ(table_.recordCount, 7);
  DbfClose(table_);
  EXPECT_EQ(Names("p.dbf", false), Expected(10, true));

  const DbfFieldSpec other[] = {{"CENA", 'N', 10, 3}, {"NAZWA", 'C', 5, 0}, {"INNE", 'C', 3, 0}};
  ASSERT_EQ(DbfCreate(table_, "cel.dbf", other), 0);
  ASSERT_EQ(DbfClose(table_), 0);
  WriteTable("zrodlo.dbf", 4);
  int calls = 0;
  auto count = [](void* c, int64_t, int64_t) { ++*static_cast<int*>(c); };
  ASSERT_EQ(DbfAppendFromFiles("zrodlo.dbf", "cel.dbf", count, &calls), 0);
  EXPECT_EQ(calls, 4);
  ASSERT_EQ(DbfOpen(table_, "cel.dbf"), 0);
  ASSERT_EQ(table_.recordCount, 3);
  ASSERT_EQ(DbfReadRecord(table_, 3), 0);
  EXPECT_EQ(DbfGetField(table_, 1), "      4.50");
  EXPECT_EQ(DbfGetField(table_, 2), "R4");
  EXPECT_EQ(DbfGetField(table_, 3), "");
  DbfClose(table_);
  // A source value too wide for the target's number stops the append and adds nothing.
  const DbfFieldSpec narrow[] = {{"CENA", 'N', 2, 0}};
  ASSERT_EQ(DbfCreate(table_, "waski.dbf", narrow), 0);
  ASSERT_EQ(DbfClose(table_), 0);
  EXPECT_EQ(DbfAppendFromFiles("zrodlo.dbf", "waski.dbf"), kDbfBufferError);
  ASSERT_EQ(DbfOpen(table_, "waski.dbf"), 0);
  EXPECT_EQ(table_.recordCount, 0);
}

// A limit on the size of files that this process writes, lifted at the end;
// the signal is ignored so that the write fails with EFBIG instead.
class FileSizeLimit {
 public:
  explicit FileSizeLimit(rlim_t bytes) {
    getrlimit(RLIMIT_FSIZE, &old_);
    oldHandler_ = signal(SIGXFSZ, SIG_IGN);
    rlimit limit = old_;
    limit.rlim_cur = bytes;
    setrlimit(RLIMIT_FSIZE, &limit);
  }
  ~FileSizeLimit() {
    setrlimit(RLIMIT_FSIZE, &old_);
    signal(SIGXFSZ, oldHandler_);
  }

 private:
  rlimit old_{};
  sighandler_t oldHandler_;
};

TEST_F(DbfWriteTest, FullDiskLeavesNoNewFileAndAnOldFileWhole) {
  WriteTable("stary.dbf", 10);
  const std::string before = ReadBytes("stary.dbf");
  {
    FileSizeLimit limit(200 * 1024);
    ASSERT_EQ(DbfCreate(table_, "stary.dbf", kSpecs), 0);
    int code = 0;
    for (int i = 0; i < 20000 && code == 0; ++i) {
      DbfBlankRecord(table_);
      code = DbfAppendRecord(table_);
    }
    const int closed = DbfClose(table_);
    EXPECT_EQ(code == 0 ? closed : code, kDbfDiskFull);
    EXPECT_EQ(closed, kDbfDiskFull);
    EXPECT_EQ(DbfErrorText(closed), "Błąd pliku DBASE.@Brak miejsca na dysku"_mz);
  }
  EXPECT_EQ(ReadBytes("stary.dbf"), before);
  EXPECT_EQ(file_test::Listing(), "stary.dbf ");

  // Appending to an opened file: the header counts only the records that reached the disk whole.
  {
    FileSizeLimit limit(before.size() + 70000);
    ASSERT_EQ(DbfOpen(table_, "stary.dbf"), 0);
    int code = 0;
    for (int i = 0; i < 20000 && code == 0; ++i) code = DbfAppendRecord(table_);
    EXPECT_EQ(DbfClose(table_), kDbfDiskFull);
  }
  ASSERT_EQ(DbfOpen(table_, "stary.dbf"), 0);
  EXPECT_GE(table_.recordCount, 10);
  for (int64_t n = 1; n <= table_.recordCount; ++n) ASSERT_EQ(DbfReadRecord(table_, n), 0) << n;
  const std::string after = ReadBytes("stary.dbf");
  EXPECT_EQ(after[table_.headerSize + table_.recordCount * table_.recordSize], 0x1A);
}

TEST_F(DbfWriteTest, ReadOnlyFileRefusesWrites) {
  WriteTable("ro.dbf", 2);
  if (geteuid() == 0) GTEST_SKIP() << "root writes to read-only files";
  chmod("ro.dbf", 0444);
  ASSERT_EQ(DbfOpen(table_, "ro.dbf"), 0);
  EXPECT_TRUE(table_.readOnly);
  ASSERT_EQ(DbfReadRecord(table_, 1), 0);
  EXPECT_EQ(DbfWriteRecord(table_, 1), kDbfNotOpenForOutput);
  EXPECT_EQ(DbfAppendRecord(table_), kDbfNotOpenForOutput);
  EXPECT_EQ(DbfPack(table_), kDbfNotOpenForOutput);
}

}  // namespace
}  // namespace dbf_test
