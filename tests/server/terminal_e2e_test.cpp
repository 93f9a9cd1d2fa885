// The real fisksrv without a log file, on a pseudo-terminal: the running clock
// and the F10 key.
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <string>

#include "base/jobfile.h"
#include "harness.h"

namespace {

constexpr int kWaitMs = 5000;
constexpr const char* kEndLine = "KONIEC PRACY SERVERA DRUKAREK FISKALNYCH";

// The running clock at a position: a carriage return, "HH:MM:SS" with
// blank-padded numbers, and a blank.
bool IsClockAt(const std::string& s, std::size_t at) { return HasShapeAt(s, at, "\r#9:#9:#9 "); }

bool HasClock(const std::string& s) {
  for (std::size_t at = s.find('\r'); at != std::string::npos; at = s.find('\r', at + 1))
    if (IsClockAt(s, at)) return true;
  return false;
}

TEST(TerminalTest, RunningClockThenF10EndsTheServer) {
  TempDir dir;
  ::mkdir((dir / "jobs").c_str(), 0777);
  WriteFileText(dir / "fisk.cfg", "9,1,jobs\\1,,0\n9,1,jobs\\2,,0\n");
  ServerProcess server(dir, ServerRun{{"fisk.cfg", "20"}, false, /*onPty=*/true});
  ASSERT_TRUE(server.WaitForOutput("SKONFIGUROWANO 2", kWaitMs)) << server.Output();
  EXPECT_NE(server.Output().find("ZAKONCZENIE PRACY: F10"), std::string::npos);

  ASSERT_TRUE(WaitUntil([&] { return HasClock(server.Output()); }, kWaitMs)) << server.Output();

  // A job's result line appears on the screen.
  WriteJobFile(dir / "jobs/2", {ShortText("\x1b" "PARAGON"), kJobKeywordEnd});
  ASSERT_TRUE(server.WaitForOutput(" O.K.", kWaitMs)) << server.Output();

  // Other keys, plain and extended, leave the server running.
  server.Type("x\x1b[20~\x1b[A");
  int status = -1;
  EXPECT_FALSE(server.Wait(300, status));
  EXPECT_EQ(server.Output().find(kEndLine), std::string::npos);

  server.Type("\x1b[21~");  // F10 of xterm
  ASSERT_TRUE(server.Wait(kWaitMs, status)) << server.Output();
  EXPECT_EQ(status, 0);
  // The empty line ends the clock's line, then the last line follows.
  const std::string out = server.Output();
  const std::string tail = std::string(" \r\n") + kEndLine + "\r\n";
  ASSERT_GE(out.size(), tail.size() + 9);
  EXPECT_EQ(out.substr(out.size() - tail.size()), tail) << out;
  EXPECT_TRUE(IsClockAt(out, out.size() - tail.size() - 9)) << out;
  EXPECT_TRUE(server.TerminalRestored());
}

TEST(TerminalTest, SignalRestoresTheTerminal) {
  TempDir dir;
  WriteFileText(dir / "fisk.cfg", "9,1,jobs\\1,,0\n");
  ServerProcess server(dir, ServerRun{{"fisk.cfg", "20"}, false, true});
  ASSERT_TRUE(server.WaitForOutput("SKONFIGUROWANO 1", kWaitMs));
  ASSERT_TRUE(server.WaitForOutput("\r", kWaitMs));
  EXPECT_FALSE(server.TerminalRestored());  // key-at-a-time while it runs
  server.Type("\x03");                      // Ctrl+C
  int status = -1;
  ASSERT_TRUE(server.Wait(kWaitMs, status));
  EXPECT_EQ(status, 1000 + SIGINT);
  EXPECT_TRUE(server.TerminalRestored());
}

}  // namespace
