// The real fisksrv in polling mode, with a configuration, job files and a log
// in a temporary directory.
#include <cerrno>

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <string>

#include "base/jobfile.h"
#include "base/mazovia.h"
#include "harness.h"

namespace {

constexpr int kWaitMs = 5000;

ShortText Keyword(const char* word) { return ShortText("\x1b") + ShortText(word); }

std::string Rows(int count, const std::string& jobPrefix = "jobs\\") {
  std::string rows;
  for (int i = 1; i <= count; ++i) rows += "9,1,\"" + jobPrefix + std::to_string(i) + "\",,0\n";
  return rows;
}

class PollingTest : public ::testing::Test {
 protected:
  void SetUp() override {
    ::mkdir((dir_ / "jobs").c_str(), 0777);
    ::chmod((dir_ / "jobs").c_str(), 0777);  // the server may run as another user
  }
  // Starts the server with a log file and a poll time of 10 ms; waits for its configuration.
  std::unique_ptr<ServerProcess> StartLogged(const std::string& config, bool asNobody = false) {
    WriteFileText(dir_ / "fisk.cfg", config);
    auto server = std::make_unique<ServerProcess>(dir_, ServerRun{{"fisk.cfg", "10", "fisk.log", "x"}, asNobody});
    EXPECT_TRUE(WaitUntil([&] { return Log().find("SKONFIGUROWANO") != std::string::npos; }, kWaitMs));
    return server;
  }
  std::string Log() const { return ReadFileText(dir_ / "fisk.log"); }
  bool WaitForLog(const std::string& text, int count = 1) const {
    return WaitUntil([&] { return CountOf(Log(), text) >= count; }, kWaitMs);
  }
  TempDir dir_;
};

// A bad configuration ends the server with its line and status 0; more than 20 rows
// or a poll time out of range end it with the runtime error alone, and another status.
TEST_F(PollingTest, BadConfigurationsAndParametersEndTheServer) {
  struct Case {
    const char* config;  // nullptr: no file at all
    std::vector<std::string> args;
    const char* line;  // the last line of the output; nullptr: the runtime error
  };
  const std::string rows21 = Rows(21), rows20AndBlank = Rows(20) + "\n", rows1 = Rows(1);
  const Case cases[] = {
      {nullptr, {"fisk.cfg"}, "BLAD OTWARCIA PLIKU KONFIGURACYJNEGO.\n"},
      {"", {"fisk.cfg"}, "W PLIKU KONFIGURACYJNYM NIE ZDEFINIOWANO DANYCH.\n"},
      {"9,1,\"jobs\\1\",\n", {"fisk.cfg"}, "BLAD SRUKTURY PLIKU KONFIGURACYJNEGO.\n"},
      {"\n9,1,\"jobs\\1\",,0\n", {"fisk.cfg"}, "BLAD SRUKTURY PLIKU KONFIGURACYJNEGO.\n"},
      {rows21.c_str(), {"fisk.cfg"}, nullptr},
      {rows20AndBlank.c_str(), {"fisk.cfg"}, nullptr},  // a 21st line, even an empty one
      {rows1.c_str(), {"fisk.cfg", "65536"}, nullptr},
      {rows1.c_str(), {"fisk.cfg", "-1"}, nullptr},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.args.back() + " " + (c.line ? c.line : "range"));
    TempDir dir;
    if (c.config != nullptr) WriteFileText(dir / "fisk.cfg", c.config);
    ServerProcess server(dir, ServerRun{c.args});
    int status = -1;
    ASSERT_TRUE(server.Wait(kWaitMs, status));
    const std::string out = server.Output(), errors = server.Errors();
    if (c.line == nullptr) {
      EXPECT_NE(status, 0);
      EXPECT_EQ(errors.rfind("Runtime error 201", 0), 0u) << errors;
      EXPECT_EQ(CountOf(errors, "\n"), 1) << errors;
      continue;
    }
    EXPECT_EQ(status, 0);
    EXPECT_EQ(out.rfind("START SERVERA DRUKAREK FISKALNYCH ", 0), 0u) << out;
    EXPECT_NE(out.find("\nPID: " + std::to_string(server.pid()) + "\nZAKONCZENIE PRACY: F10\n" + c.line),
              std::string::npos)
        << out;
  }
}

TEST_F(PollingTest, ShortRowEndsTheListAndStaleJobsOfAcceptedRowsGo) {
  WriteJobFile(dir_ / "jobs/1", {Keyword("PARAGON"), kJobKeywordEnd});  // left from an earlier run
  WriteJobFile(dir_ / "jobs/3", {Keyword("PARAGON"), kJobKeywordEnd});
  auto server = StartLogged("9,1,\"jobs\\1\",,0\n9,1\n9,1,\"jobs\\3\",,0\n");
  EXPECT_NE(Log().find("SKONFIGUROWANO 1\n"), std::string::npos) << Log();
  EXPECT_FALSE(PathExists(dir_ / "jobs/1"));
  // The third row is never read: its job stays, and is never served.
  WriteJobFile(dir_ / "jobs/1", {Keyword("RAPDOB"), kJobKeywordEnd});
  ASSERT_TRUE(WaitForLog(" O.K.\n"));
  EXPECT_TRUE(PathExists(dir_ / "jobs/3"));
  EXPECT_EQ(CountOf(Log(), " O.K."), 1);
}

TEST_F(PollingTest, JobsOfAnUnknownFamilyAreRecognisedDeletedAndReported) {
  auto server = StartLogged(Rows(8));
  std::string log = Log();
  EXPECT_EQ(log.find("ZAKONCZENIE PRACY"), std::string::npos);  // not with a log file

  // One job at a time: each result line must be on disk while the server runs.
  const char* kinds[] = {"PARAGON", "RAPDOB", "RAPOKR", "SZUFLA"};
  for (int i = 0; i < 4; ++i) {
    // A receipt whose count disagrees: a family without a printer does not read it.
    WriteJobFile(dir_ / ("jobs/" + std::to_string(i + 1)), {Keyword(kinds[i]), "3", "100", kJobKeywordEnd});
    ASSERT_TRUE(WaitForLog(" O.K.\n", i + 1)) << kinds[i] << "\n" << Log();
    EXPECT_FALSE(PathExists(dir_ / ("jobs/" + std::to_string(i + 1)))) << kinds[i];
  }
  WriteJobFile(dir_ / "jobs/5", {Keyword("BRAK_DANYCH"), kJobKeywordEnd});
  ASSERT_TRUE(WaitForLog(" Wycofanie komendy.\n"));
  EXPECT_FALSE(PathExists(dir_ / "jobs/5"));

  // Each result line starts with the time, "HH:MM:SS " with blank-padded numbers.
  log = Log();
  const std::size_t withdrawn = log.find(" Wycofanie komendy.\n");
  ASSERT_GE(withdrawn, 10u);
  EXPECT_TRUE(HasShapeAt(log, withdrawn - 10, "\n#9:#9:#9 ")) << log;
}

TEST_F(PollingTest, UnpublishedOrMalformedJobsStayUntouched) {
  auto server = StartLogged(Rows(4));
  const std::string shortFile = std::string(1, '\x08') + "\x1bPARAGON" + std::string(246, '\0');  // 255 bytes
  WriteFileText(dir_ / "jobs/1", shortFile);
  WriteJobFile(dir_ / "jobs/2", {Keyword("paragon"), kJobKeywordEnd});
  WriteJobFile(dir_ / "jobs/3", {kJobKeywordWait, "1", kJobKeywordEnd});
  const std::string before2 = ReadFileText(dir_ / "jobs/2"), before3 = ReadFileText(dir_ / "jobs/3");
  // A published job behind them shows that the server has passed them all.
  WriteJobFile(dir_ / "jobs/4", {Keyword("SZUFLA"), kJobKeywordEnd});
  ASSERT_TRUE(WaitForLog(" O.K.\n"));
  WriteJobFile(dir_ / "jobs/4", {Keyword("SZUFLA"), kJobKeywordEnd});
  ASSERT_TRUE(WaitForLog(" O.K.\n", 2));
  EXPECT_EQ(ReadFileText(dir_ / "jobs/1"), shortFile);
  EXPECT_EQ(ReadFileText(dir_ / "jobs/2"), before2);
  EXPECT_EQ(ReadFileText(dir_ / "jobs/3"), before3);
  EXPECT_EQ(CountOf(Log(), "\n"), 3 + 2);  // the start lines and two results only
}

TEST_F(PollingTest, ProgramOfTheRowRunsBeforeEachLook) {
  // The program fetches a job from elsewhere into the row's job file.
  auto server = StartLogged("9,1,jobs\\1,,0,/bin/sh,-c \"mv inbox.job jobs/1 2>/dev/null; echo x >> runs\"\n");
  ASSERT_TRUE(WaitUntil([&] { return CountOf(ReadFileText(dir_ / "runs"), "x") >= 2; }, kWaitMs));
  WriteJobFile(dir_ / "inbox.job", {Keyword("PARAGON"), kJobKeywordEnd});
  ASSERT_TRUE(WaitForLog(" O.K.\n"));
  EXPECT_FALSE(PathExists(dir_ / "inbox.job"));
  EXPECT_FALSE(PathExists(dir_ / "jobs/1"));
}

// A job file the server (an unprivileged user) may not open holds it with the
// break notice, until the file may be opened or is taken away.
TEST_F(PollingTest, LockedJobFileHoldsTheServerWithTheBreakNotice) {
  auto server = StartLogged(Rows(1), /*asNobody=*/true);
  const std::string job = dir_ / "jobs/1";
  for (const int round : {1, 2}) {
    WriteJobFile(job, {Keyword("RAPDOB"), kJobKeywordEnd});
    ::chmod(job.c_str(), 0);
    if (::geteuid() == 0) ::chown(job.c_str(), 0, 0);
    // The reason of the failed open stands beside the notice: EACCES.
    const std::string notice = "BLOKADA  [Ctrl+Break] - zakonczenie pracy servera (" + std::to_string(EACCES) + ")\n";
    ASSERT_TRUE(WaitForLog(notice, round)) << Log();
    if (round == 1) {
      ::chmod(job.c_str(), 0644);
    } else {
      ::unlink(job.c_str());
      WriteJobFile(job, {Keyword("SZUFLA"), kJobKeywordEnd});
    }
    ASSERT_TRUE(WaitForLog(" O.K.\n", round)) << Log();
    EXPECT_FALSE(PathExists(job));
  }
}

TEST_F(PollingTest, UndeletableJobIsReportedAndStays) {
  ::mkdir((dir_ / "ro").c_str(), 0777);
  ::chmod((dir_ / "ro").c_str(), 0777);
  auto server = StartLogged("9,1,ro\\1,,0\n", /*asNobody=*/true);
  WriteJobFile(dir_ / "ro/1", {Keyword("SZUFLA"), kJobKeywordEnd});
  ::chmod((dir_ / "ro").c_str(), 0555);  // the file can be read, not removed
  ASSERT_TRUE(WaitForLog("Wystąpil problem usuniecia pliku posredniego.\n"_mz.Str() + " O.K.\n")) << Log();
  EXPECT_TRUE(PathExists(dir_ / "ro/1"));
}

TEST_F(PollingTest, ServerStartedWithoutStandardOutputKeepsItsLog) {
  WriteFileText(dir_ / "fisk.cfg", Rows(1));
  ServerRun run{{"fisk.cfg", "10", "fisk.log", "x"}};
  run.noStdout = true;
  ServerProcess server(dir_, run);
  // The start's lines reach the log, and so does every job's line after them.
  ASSERT_TRUE(WaitForLog("SKONFIGUROWANO 1\n")) << Log();
  WriteJobFile(dir_ / "jobs/1", {Keyword("SZUFLA"), kJobKeywordEnd});
  ASSERT_TRUE(WaitForLog(" O.K.\n")) << Log();
}

}  // namespace
