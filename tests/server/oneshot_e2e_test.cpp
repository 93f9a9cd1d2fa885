// The real fisksrv in one-shot mode on a terminal: the notice, the result
// boxes, the files it leaves, and what is not one-shot mode.
#include <gtest/gtest.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <string>
#include <thread>

#include "base/jobfile.h"
#include "harness.h"

namespace {

constexpr int kWaitMs = 8000;
const ShortText kReceipt("\x1b" "PARAGON");
const ShortText kWithdrawn("\x1b" "BRAK_DANYCH");

class OneShotTest : public ::testing::Test {
 protected:
  void SetUp() override {
    setenv("TERM", "xterm", 1);
    unsetenv("TERM_KLOTE");
    unsetenv("TERM_KLOTE_CP");
    ::mkdir((dir_ / "jobs").c_str(), 0777);
  }
  ServerRun OneShot(const char* marker = "XVENTKLOTE") {
    return ServerRun{{marker, "9,1,jobs\\1,,0"}, false, /*onPty=*/true};
  }
  std::string Job() const { return dir_ / "jobs/1"; }
  TempDir dir_;
};

TEST_F(OneShotTest, ReceiptOnAFamilyWithoutPrinterShowsTheNoticeAndOk) {
  WriteJobFile(Job(), {kReceipt, ShortText("0"), kJobKeywordEnd});
  ServerProcess server(dir_, OneShot());
  int status = -1;
  ASSERT_TRUE(server.Wait(kWaitMs, status)) << server.Output();
  EXPECT_EQ(status, 0);
  std::string out = server.Output();
  // ISO 8859-2 on xterm: the "ł" is 0xB3.
  EXPECT_NE(out.find("Trwa wysy\xB3" "anie danych do drukarki fiskalnej..."), std::string::npos) << out;
  EXPECT_NE(out.find(" O.K."), std::string::npos) << out;
  EXPECT_NE(out.find("Zaczekaj - komunikat zniknie sam..."), std::string::npos);
  EXPECT_FALSE(PathExists(Job()));
  // Ends silently: no line of polling mode.
  EXPECT_EQ(out.find("START SERVERA"), std::string::npos);
  EXPECT_EQ(out.find("KONIEC PRACY"), std::string::npos);
}

TEST_F(OneShotTest, WithdrawnJobIsDeletedAndToldForThreeSeconds) {
  WriteJobFile(Job(), {kWithdrawn, kJobKeywordEnd});
  auto start = std::chrono::steady_clock::now();
  ServerProcess server(dir_, OneShot());
  int status = -1;
  ASSERT_TRUE(server.Wait(kWaitMs, status)) << server.Output();
  auto took = std::chrono::steady_clock::now() - start;
  EXPECT_GE(took, std::chrono::milliseconds(2900));
  std::string out = server.Output();
  EXPECT_NE(out.find("Wycofanie komendy drukarki fiskalnej."), std::string::npos) << out;
  EXPECT_EQ(out.find("Trwa wysy"), std::string::npos);  // no notice for a withdrawal
  EXPECT_FALSE(PathExists(Job()));
}

// A job still being written, and a first record that is no keyword at all
// (the word without its escape byte).
TEST_F(OneShotTest, UnpublishedJobEndsAtOnceSilentlyAndStays) {
  for (const ShortText& first : {kJobKeywordWait, ShortText("PARAGON")}) {
    WriteJobFile(Job(), {first, ShortText("0"), kJobKeywordEnd});
    ServerProcess server(dir_, OneShot());
    int status = -1;
    ASSERT_TRUE(server.Wait(kWaitMs, status)) << server.Output();
    EXPECT_EQ(status, 0);
    EXPECT_TRUE(PathExists(Job())) << first.Str();
    EXPECT_EQ(server.Output().find("O.K."), std::string::npos);
    EXPECT_EQ(server.Output().find("Trwa"), std::string::npos);
    EXPECT_EQ(server.Output().find("Wycofanie"), std::string::npos);
  }
}

TEST_F(OneShotTest, WaitsWithoutSleepingUntilTheJobAppears) {
  ServerProcess server(dir_, OneShot());
  std::this_thread::sleep_for(std::chrono::milliseconds(300));
  int status = -1;
  EXPECT_FALSE(server.Wait(0, status));
  WriteJobFile(Job() + ".tmp", {kReceipt, ShortText("0"), kJobKeywordEnd});
  ASSERT_EQ(std::rename((Job() + ".tmp").c_str(), Job().c_str()), 0);
  ASSERT_TRUE(server.WaitForOutput(" O.K.", kWaitMs)) << server.Output();
  ASSERT_TRUE(server.Wait(kWaitMs, status));
  EXPECT_FALSE(PathExists(Job()));
}

TEST_F(OneShotTest, LowerCaseMarkerIsAConfigurationFileName) {
  WriteJobFile(Job(), {kReceipt, kJobKeywordEnd});
  ServerProcess server(dir_, OneShot("xventklote"));
  int status = -1;
  ASSERT_TRUE(server.Wait(kWaitMs, status)) << server.Output();
  EXPECT_NE(server.Output().find("BLAD OTWARCIA PLIKU KONFIGURACYJNEGO."), std::string::npos) << server.Output();
  EXPECT_TRUE(PathExists(Job()));
}

// The screen itself, read back from tmux: " O.K." inside its box.
TEST_F(OneShotTest, OkBoxIsOnTheScreenInTmux) {
  if (std::system("command -v tmux >/dev/null 2>&1") != 0) GTEST_SKIP() << "tmux is not installed";
  WriteJobFile(Job(), {kReceipt, ShortText("0"), kJobKeywordEnd});
  const std::string session = "oneshot" + std::to_string(::getpid());
  const std::string screen = dir_ / "screen.txt";
  const std::string start = "tmux new-session -d -s " + session + " -x 80 -y 25 \"cd " + dir_.path() +
                            " && TERM=xterm " KLOTE_BINARY_DIR "/server/fisksrv XVENTKLOTE '9,1,jobs\\\\1,,0'; sleep 5\"";
  ASSERT_EQ(std::system(start.c_str()), 0);
  bool seen = false;
  std::string text;
  for (int i = 0; i < 200 && !seen; ++i) {
    std::system(("tmux capture-pane -p -t " + session + " > " + screen + " 2>/dev/null").c_str());
    text = ReadFileText(screen);
    seen = text.find(" O.K.") != std::string::npos;
    if (!seen) std::this_thread::sleep_for(std::chrono::milliseconds(10));
  }
  std::system(("tmux kill-session -t " + session + " 2>/dev/null").c_str());
  ASSERT_TRUE(seen) << text;
  // A timed box is 37 wide from column 21: its text starts at column 22 of
  // row 13 and the wait line is centred on row 14.
  auto line = [&](int row) {
    std::size_t at = 0;
    for (int r = 1; r < row; ++r) at = text.find('\n', at) + 1;
    return text.substr(at, text.find('\n', at) - at);
  };
  EXPECT_EQ(line(13).find(" O.K."), 21u) << text;
  EXPECT_EQ(line(14).find("Zaczekaj - komunikat zniknie sam..."), 22u) << text;
}

}  // namespace
