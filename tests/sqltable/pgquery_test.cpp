// Statements, escaped literals, the failure log, and the nesting of transactions.
#include <sys/stat.h>

#include <regex>
#include <string>
#include <vector>

#include "base/mazovia.h"
#include "sqltest.h"

namespace {

using QueryTest = ConnectedTest;

std::vector<std::string> Lines(const std::string& text) {
  std::vector<std::string> lines;
  std::stringstream in(text);
  for (std::string line; std::getline(in, line);) lines.push_back(line);
  return lines;
}

// Stores text with key n in table v and reads it back.
std::string RoundTrip(int n, const std::string& text) {
  const std::string sql = "INSERT INTO v VALUES (" + std::to_string(n) + ",'" + PGEscapeStr(text) + "')";
  EXPECT_EQ(PGRunQueryNoTup(sql), 0) << sql;
  PGResult res;
  EXPECT_EQ(PGRunQueryWithTup("SELECT t FROM v WHERE n=" + std::to_string(n), res), 0);
  EXPECT_EQ(res.Rows(), 1);
  return std::string(res.Value(0, 0));
}

// Every byte that a text field can hold survives a round trip through an escaped literal.
TEST_F(QueryTest, EveryByteValueSurvivesAnEscapedLiteral) {
  ASSERT_EQ(PGRunQueryNoTup("CREATE TABLE v (n int, t text)"), 0);
  std::string all;
  for (int c = 1; c <= 255; ++c) all += static_cast<char>(c);
  EXPECT_EQ(RoundTrip(1, all), all);
  for (int c = 1; c <= 255; ++c) {
    const std::string one(1, static_cast<char>(c));
    EXPECT_EQ(RoundTrip(100 + c, one), one) << "byte " << c;
  }
  // A zero byte cannot travel in a statement: it becomes a blank.
  EXPECT_EQ(RoundTrip(2, std::string("a\0b", 3)), "a b");
}

TEST_F(QueryTest, ExecWantsExactlyTheExpectedStatus) {
  ASSERT_EQ(PGRunQueryNoTup("CREATE TABLE t (a int)"), 0);
  PGResult res;
  EXPECT_EQ(PGExec(res, "SELECT 1", true), 0);
  EXPECT_EQ(res.Rows(), 1);
  EXPECT_EQ(res.Value(0, 0), "1");
  EXPECT_EQ(res.Value(1, 0), "");  // outside the result reads empty
  EXPECT_EQ(res.Value(0, 1), "");
  ASSERT_EQ(PGExec(res, "SELECT repeat('x', 300)", true), 0);
  EXPECT_EQ(res.Text(0, 0), ShortText(std::string(255, 'x')));  // the short form is cut to 255 bytes

  PGLastOp = "op";
  EXPECT_EQ(PGExec(res, "SELECT 1", false), kPGExecFailed);
  EXPECT_FALSE(res.Valid());
  EXPECT_EQ(PGLastOp.Copy(1, 4), "op:@");
  EXPECT_EQ(PGExec(res, "INSERT INTO t VALUES (1)", true), kPGExecFailed);
  EXPECT_EQ(PGExec(res, "SELEKT", true), kPGExecFailed);
  EXPECT_EQ(PGExecCur(res, "INSERT INTO t VALUES (2)", false), 0);
  EXPECT_EQ(Scalar("SELECT count(*) FROM t"), "2");
  // Without a connection: 40.
  PGDisconnect();
  EXPECT_EQ(PGExec(res, "SELECT 1", true), kPGNoResult);
}

TEST_F(QueryTest, BadQueryLogHasItsFramePartsInOrder) {
  ASSERT_EQ(PGRunQueryNoTup("CREATE TABLE t (a int)"), 0);
  WriteAt(3, 2, "Ekran: żółw"_mz);  // what the user was looking at
  // Rows through the no-rows road are a failure, though the server did the statement.
  EXPECT_EQ(PGRunQueryNoTup("INSERT INTO t VALUES (7) RETURNING a"), kPGExecFailed);
  EXPECT_EQ(Scalar("SELECT a FROM t"), "7");
  PGResult res;
  EXPECT_EQ(PGRunQueryWithTup("SELECT * FROM no_such_table", res), kPGExecFailed);
  EXPECT_EQ(PGRunQueryWithTup("SELECT 2", res), 0);
  EXPECT_EQ(res.Value(0, 0), "2");

  const std::vector<std::string> lines = Lines(ReadFile("error.log"));
  const std::string stars(80, '*');
  ASSERT_GE(lines.size(), 8u);
  EXPECT_EQ(lines[0], stars);
  EXPECT_EQ(lines[1], "sqltable_tests:");
  EXPECT_TRUE(std::regex_match(lines[2], std::regex(R"(\d{1,2}-\d{1,2}-\d{4}/\d{1,2}:\d{1,2}:\d{1,2}\.\d{1,2})")))
      << lines[2];
  EXPECT_EQ(lines[3], "PGRunQueryNoTup:@");  // a status mismatch has no server text
  EXPECT_EQ(lines[4], "Blednie sformulowane zapytanie:");
  EXPECT_EQ(lines[5], "INSERT INTO t VALUES (7) RETURNING a");
  // 25 screen rows as the file's code page has them, then the closing line.
  ASSERT_GE(lines.size(), 32u);
  EXPECT_EQ(lines[6], std::string(80, ' '));
  EXPECT_EQ(lines[7], "  Ekran: \xBF\xF3\xB3w" + std::string(80 - 13, ' '));
  EXPECT_EQ(lines[31], stars);
  EXPECT_EQ(lines[32], stars);  // the second report begins
  EXPECT_EQ(lines[35].rfind("PGRunQueryWithTup:@", 0), 0u);
  EXPECT_NE(lines[35].find("no_such_table"), std::string::npos);
  EXPECT_EQ(lines.back(), stars);
}

TEST_F(QueryTest, UnwritableLogFallsBackToTheScreen) {
  ASSERT_EQ(mkdir("error.log", 0755), 0);
  WriteAt(1, 1, "before");
  Window(10, 5, 40, 10);
  GotoXY(3, 2);
  TextAttr(0x1E);
  ScreenBytes();
  EXPECT_EQ(PGRunQueryNoTup("SELEKT 12345"), kPGExecFailed);
  const std::string shown = ScreenBytes();
  EXPECT_NE(shown.find("Blednie sformulowane zapytanie:"), std::string::npos);
  EXPECT_NE(shown.find("SELEKT 12345"), std::string::npos);
  // Everything is as it was.
  EXPECT_EQ(RowText(1).Copy(1, 6), "before");
  EXPECT_EQ(RowText(2), std::string(80, ' '));
  EXPECT_EQ(CurrentWindow().left, 10);
  EXPECT_EQ(CurrentWindow().bottom, 10);
  EXPECT_EQ(WhereX(), 3);
  EXPECT_EQ(WhereY(), 2);
  EXPECT_EQ(CurrentAttr(), 0x1E);
  struct stat st{};
  ASSERT_EQ(stat("error.log", &st), 0);
  EXPECT_TRUE(S_ISDIR(st.st_mode));
  rmdir("error.log");
}

using TransactionTest = ConnectedTest;

TEST_F(TransactionTest, CommitAtDepthZeroSendsNothing) {
  ASSERT_EQ(PGRunQueryNoTup("CREATE TABLE t (a int)"), 0);
  // A server transaction that the counter does not know of stays open.
  ASSERT_EQ(PGRunQueryNoTup("BEGIN"), 0);
  ASSERT_EQ(PGRunQueryNoTup("INSERT INTO t VALUES (1)"), 0);
  EXPECT_EQ(PGTransCommit(), 0);
  EXPECT_EQ(PGTransRollback(), 0);
  EXPECT_EQ(PGTransCommitAll(), 0);
  EXPECT_EQ(PGTransDepth, 0);
  EXPECT_EQ(Scalar("SELECT count(*) FROM t"), "0");
  ASSERT_EQ(PGRunQueryNoTup("ROLLBACK"), 0);
}

TEST_F(TransactionTest, InnerRollbackRollsNothingBackAndAllFormsEndEveryLevel) {
  ASSERT_EQ(PGRunQueryNoTup("CREATE TABLE t (a int)"), 0);
  for (int i = 0; i < 3; ++i) EXPECT_EQ(PGTransBegin(), 0);
  EXPECT_EQ(PGTransDepth, 3);
  ASSERT_EQ(PGRunQueryNoTup("INSERT INTO t VALUES (1)"), 0);
  EXPECT_EQ(PGTransRollback(), 0);
  EXPECT_EQ(PGTransDepth, 2);
  EXPECT_EQ(Scalar("SELECT count(*) FROM t"), "0");  // still uncommitted
  EXPECT_EQ(PGTransCommit(), 0);
  EXPECT_EQ(Scalar("SELECT count(*) FROM t"), "0");
  EXPECT_EQ(PGTransCommit(), 0);
  EXPECT_EQ(PGTransDepth, 0);
  EXPECT_EQ(Scalar("SELECT count(*) FROM t"), "1");
  // The "all" forms end every level at once.
  for (int i = 0; i < 4; ++i) (void)PGTransBegin();
  ASSERT_EQ(PGRunQueryNoTup("INSERT INTO t VALUES (2)"), 0);
  EXPECT_EQ(PGTransRollbackAll(), 0);
  EXPECT_EQ(PGTransDepth, 0);
  for (int i = 0; i < 2; ++i) (void)PGTransBegin();
  ASSERT_EQ(PGRunQueryNoTup("INSERT INTO t VALUES (3)"), 0);
  EXPECT_EQ(PGTransCommitAll(), 0);
  EXPECT_EQ(PGTransDepth, 0);
  EXPECT_EQ(Scalar("SELECT string_agg(a::text, ',' ORDER BY a) FROM t"), "1,3");
  EXPECT_EQ(PGTransRollbackAll(), 0);  // nothing open: nothing sent
}


class TransactionFatalTest : public ConnectedTest {
 protected:
  void KillBackend() {
    PGResult res;
    ASSERT_EQ(PGRunQueryWithTup("SELECT pg_backend_pid()", res), 0);
    ASSERT_TRUE(Psql("SELECT pg_terminate_backend(" + std::string(res.Value(0, 0)) + ")"));
  }
};

// The second box: "Błąd", the code, the tail on two lines.
std::string SecondBox(const char* tail) {
  return std::string("B\x92\x86" "d 1002 ") + tail + "[^\n]*\n[^\n]*Program musi zako\xA4" "czy\x8D dzia\x92" "anie\\.";
}

TEST_F(TransactionFatalTest, FailedBeginShowsTheFoldedLastOperationAndEndsTheProgram) {
  KillBackend();
  AnswerBoxesOnStderr();
  PGLastOp = ShortText(std::string(100, 'x'));
  // "Błąd:", then 76 characters on a line of their own, the rest and the server's text below; then the second box.
  EXPECT_EXIT(PGTransBegin(), ::testing::ExitedWithCode(0),
              "B\x92\x86" "d:[^\n]*\n[^x\n]*x{76}[^x\n]*\n[^x\n]*x{24}:(.|\n)*" + SecondBox("otwarcia transakcji\\."));
}

TEST_F(TransactionFatalTest, FailedCommitOrRollbackEndsTheProgram) {
  (void)PGTransBegin();
  (void)PGTransBegin();
  KillBackend();
  AnswerBoxesOnStderr();
  EXPECT_EQ(PGTransRollback(), 0);  // the inner level never reaches the server
  EXPECT_EXIT(PGTransCommit(), ::testing::ExitedWithCode(0), SecondBox("zatwierdzenia transakcji\\."));
  EXPECT_EXIT(PGTransRollback(), ::testing::ExitedWithCode(0), SecondBox("wycofania transakcji\\."));
  EXPECT_EXIT(PGTransRollbackAll(), ::testing::ExitedWithCode(0), SecondBox("wycofania transakcji\\."));
  EXPECT_EXIT(PGTransCommitAll(), ::testing::ExitedWithCode(0), SecondBox("zatwierdzenia transakcji\\."));
}

}  // namespace
