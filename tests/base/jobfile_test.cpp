#include "base/jobfile.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>
#include <string>
#include <vector>

#include "base/file_fixture.h"
#include "base/mazovia.h"
#include "base/platform.h"

namespace {

// The job is the file "1" in the scratch directory.
class JobFileTest : public file_test::ScratchDirTest {
 protected:
  // Writes the records, then cuts the file to extraBytes past the last full one (if given).
  void WriteJob(const std::vector<ShortText>& records, int cutTo = -1) {
    FileVar f;
    f.BindUnixPath("1");
    ASSERT_EQ(f.Rewrite(), 0);
    for (const ShortText& r : records) ASSERT_EQ(WriteJobRecord(f, r), 0);
    f.Close();
    if (cutTo >= 0) {
      ASSERT_EQ(::truncate("1", cutTo), 0);
    }
  }
  // Opens the job at record 2, as the server hands it to a handler.
  void OpenAtRecord2(FileVar& f) {
    f.BindUnixPath("1");
    ASSERT_EQ(f.Reset(kFileModeReadOnly), 0);
    ASSERT_EQ(f.Seek(kJobRecordSize), 0);
  }
  static std::vector<ShortText> Receipt(int count, int lines, bool withEnd = true) {
    std::vector<ShortText> r = {JobKeyword(kJobReceipt), ShortText(std::to_string(count)), "1250", "01J",
                                "Jan Kowalski", " gotówką"_mz, ""};
    for (int i = 1; i <= lines; ++i) r.push_back(ShortText("\"Towar " + std::to_string(i) + "\",1,\"A\",12.5,szt"));
    if (withEnd) r.push_back(kJobKeywordEnd);
    return r;
  }
};

TEST_F(JobFileTest, RecordsAreLengthPrefixedAndZeroFilled) {
  WriteJob({"\x1b" "RAPDOB", kJobKeywordEnd});
  const std::string raw = file_test::ReadBytes("1");
  ASSERT_EQ(raw.size(), 2u * kJobRecordSize);
  EXPECT_EQ(raw.substr(0, 8), "\x07\x1b" "RAPDOB");
  EXPECT_EQ(raw.substr(8, kJobRecordSize - 8), std::string(kJobRecordSize - 8, '\0'));
}

TEST(JobKindOfRecord, OnlyTheExactKeywordsCount) {
  EXPECT_EQ(JobKindOfRecord("\x1b" "PARAGON"), kJobReceipt);
  EXPECT_EQ(JobKindOfRecord("\x1b" "RAPDOB"), kJobDailyReport);
  EXPECT_EQ(JobKindOfRecord("\x1b" "RAPOKR"), kJobPeriodReport);
  EXPECT_EQ(JobKindOfRecord("\x1b" "SZUFLA"), kJobDrawer);
  EXPECT_EQ(JobKindOfRecord("\x1b" "BRAK_DANYCH"), kJobWithdrawn);
  for (const char* other : {"\x1b" "CZEKAJ", "\x1b" "paragon", "PARAGON", "\x1b" "PARAGON ", "", "\x1b" "KONIEC"})
    EXPECT_EQ(JobKindOfRecord(other), kJobNone) << other;
}

TEST_F(JobFileTest, ReceiptReadsItsRecords) {
  WriteJob(Receipt(2, 2));
  FileVar f;
  OpenAtRecord2(f);
  ReceiptJob job;
  ASSERT_TRUE(ReadReceiptJob(f, job));
  EXPECT_EQ(job.lineCount, 2);
  EXPECT_EQ(job.total, 1250);
  EXPECT_EQ(job.cashierCode.Str(), "01J");
  EXPECT_EQ(job.paymentForm, " gotówką"_mz);
  EXPECT_TRUE(job.documentNumber.Empty());
  ASSERT_EQ(job.lines, 2);
  EXPECT_EQ(job.line[1].Str(), "\"Towar 2\",1,\"A\",12.5,szt");
}

TEST_F(JobFileTest, ReceiptOutcomeByCountEndAndShortRecords) {
  struct Case {
    const char* what;
    int count, lines;
    bool withEnd;
    int cutTo;  // file size, -1 for whole records
    bool ok;
    int linesKept;
  } cases[] = {
      {"count disagrees", 3, 2, true, -1, false, 2},
      {"no end record: the file's end ends the lines", 2, 2, false, -1, true, 2},
      {"a partial last record ends the lines too", 2, 2, false, 8 * kJobRecordSize + 100, false, 1},
      {"record 7 one byte short", 0, 0, true, 6 * kJobRecordSize + 255, false, -1},
      {"fifty lines", kReceiptMaxLines, kReceiptMaxLines, true, -1, true, kReceiptMaxLines},
  };
  for (const Case& c : cases) {
    WriteJob(Receipt(c.count, c.lines, c.withEnd), c.cutTo);
    FileVar f;
    OpenAtRecord2(f);
    ReceiptJob job;
    EXPECT_EQ(ReadReceiptJob(f, job), c.ok) << c.what;
    if (c.linesKept >= 0) {
      EXPECT_EQ(job.lines, c.linesKept) << c.what;
    }
  }
}

TEST_F(JobFileTest, FiftyFirstLineIsARunTimeError) {
  WriteJob(Receipt(51, 51));
  EXPECT_EXIT(
      {
        FileVar f;
        OpenAtRecord2(f);
        ReceiptJob job;
        (void)ReadReceiptJob(f, job);
        std::exit(0);
      },
      ::testing::ExitedWithCode(kRangeCheckError), "Runtime error 201");
}

}  // namespace
