// The server's pieces without the process: poll time, texts of results,
// configuration rows and the classification of job files.
#include <gtest/gtest.h>

#include "base/jobfile.h"
#include "base/mazovia.h"
#include "harness.h"
#include "server/jobs.h"
#include "server/polling.h"
#include "server/rows.h"

namespace {

TEST(PollDelay, DefaultsAndLimits) {
  const std::pair<const char*, int> cases[] = {{"", 500}, {"abc", 500}, {"0", 500},
                                               {"1", 1},   {"250ms", 250}, {"65535", 65535}};
  for (const auto& [param, ms] : cases) EXPECT_EQ(PollDelayFromParam(param), ms) << param;
  EXPECT_EXIT(PollDelayFromParam("65536"), ::testing::ExitedWithCode(kRangeCheckError), "Runtime error 201");
}

TEST(ResultTexts, StampAndLines) {
  const ClockReading early{.year = 2026, .month = 3, .day = 5, .hour = 9, .minute = 7, .second = 30};
  EXPECT_EQ(ClockText(early).Str(), " 9: 7:30");
  EXPECT_EQ(JobFailureStampAt(early).Str(), " nie wyk.zad.  5- 3-2026  9: 7:30");
  const ClockReading t{.year = 2026, .month = 12, .day = 25, .hour = 23, .minute = 7, .second = 30};
  EXPECT_EQ(JobFailureStampAt(t).Str(), " nie wyk.zad. 25-12-2026 23: 7:30");
  EXPECT_EQ(JobResultLine(kJobReceipt, 1, "PARAGON@Blad", t).Str(), "PARAGON@Blad nie wyk.zad. 25-12-2026 23: 7:30");
}

TEST(PrinterRows, FieldsOfARow) {
  const PrinterRowFields f = SplitPrinterRow("2,3,\"srvfisk\\1\",\"PARAGON_FISKALNY\",1,/bin/true,-x");
  EXPECT_EQ(f.family, 2);
  EXPECT_EQ(f.port, 3);
  EXPECT_EQ(f.jobPath.Str(), "srvfisk\\1");
  EXPECT_EQ(f.heading.Str(), "PARAGON_FISKALNY");
  EXPECT_TRUE(f.oldFirmware);
  EXPECT_EQ(f.drawerFlag, 1);
  EXPECT_EQ(f.program.Str(), "/bin/true");
  EXPECT_EQ(f.commandLine.Str(), "-x");
  const PrinterRowFields g = SplitPrinterRow("1,1,x,,0");
  EXPECT_FALSE(g.oldFirmware);
  EXPECT_TRUE(g.program.Empty());
  EXPECT_TRUE(g.commandLine.Empty());
}

TEST(PrinterRows, LoadingRows) {
  const TempDir dir;
  struct Case {
    const char* text;
    RowsOutcome outcome;
    int count;
  };
  const Case cases[] = {
      {"1,1,a,,0\n2,2,b,,0", RowsOutcome::kLoaded, 2},
      {"1,1,a,,0\r\n2,2,b,,0\r\n", RowsOutcome::kLoaded, 2},
      {"1,1,a,,0\n\n2,2,b,,0\n", RowsOutcome::kLoaded, 1},
      {"1,1,a,,0\n1,1,a\n", RowsOutcome::kLoaded, 1},
      {"1,1,\"a,b\",\n", RowsOutcome::kBadStructure, 0},  // the comma in quotes does not count
      {"", RowsOutcome::kNoRows, 0},
  };
  for (const Case& c : cases) {
    WriteFileText(dir / "fisk.cfg", c.text);
    PrinterRows rows;
    EXPECT_EQ(LoadPrinterRows(ShortText(dir / "FISK.CFG"), rows), c.outcome) << c.text;
    EXPECT_EQ(rows.count, c.count) << c.text;
  }
  PrinterRows rows;
  EXPECT_EQ(LoadPrinterRows(ShortText(dir / "brak.cfg"), rows), RowsOutcome::kCannotOpen);
}

TEST(JobFiles, Classifying) {
  const TempDir dir;
  FileVar file;
  WriteJobFile(dir / "1", {ShortText("\x1b" "RAPOKR"), "01-01-2026", "31-01-2026", "FISK", kJobKeywordEnd});
  EXPECT_EQ(ClassifyJobFile(ShortText(dir / "1"), file), kJobPeriodReport);
  EXPECT_TRUE(file.IsOpen());
  EXPECT_EQ(file.Position(), kJobRecordSize);  // the handler reads on from record 2
  ShortText record;
  EXPECT_TRUE(ReadJobRecord(file, record));
  EXPECT_EQ(record.Str(), "01-01-2026");
  file.Close();

  WriteJobFile(dir / "2", {kJobKeywordWait});
  EXPECT_EQ(ClassifyJobFile(ShortText(dir / "2"), file), kJobNone);
  EXPECT_FALSE(file.IsOpen());
  WriteFileText(dir / "3", std::string(255, '\0'));
  EXPECT_EQ(ClassifyJobFile(ShortText(dir / "3"), file), kJobNone);
  WriteFileText(dir / "4", "");
  EXPECT_EQ(ClassifyJobFile(ShortText(dir / "4"), file), kJobNone);
  EXPECT_FALSE(file.IsOpen());

  WriteJobFile(dir / "5", {ShortText("\x1b" "BRAK_DANYCH")});
  EXPECT_EQ(ClassifyJobFile(ShortText(dir / "5"), file), kJobWithdrawn);
  DeleteJobFileLogged(file);
  EXPECT_FALSE(PathExists(dir / "5"));
}

}  // namespace
