// The real klote in tmux for end-to-end walks: a tmux server of its own for
// each walk, the program started in the test database's firm directory, keys
// sent by their tmux names and the pane read back as UTF-8 text.
#pragma once

#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <thread>

#include <gtest/gtest.h>

#include "dbfixture.h"

class TmuxWalk {
 public:
  TmuxWalk() {
    static int walks = 0;
    socket_ = "walk" + std::to_string(::getpid()) + "_" + std::to_string(++walks);
  }
  ~TmuxWalk() { (void)Tmux("kill-server"); }
  TmuxWalk(const TmuxWalk&) = delete;
  TmuxWalk& operator=(const TmuxWalk&) = delete;

  static bool Available() { return std::system("command -v tmux >/dev/null 2>&1") == 0; }
  // A shell command run in the firm directory of home with the test's PGOPTIONS.
  static std::string InFirm(const std::string& home, const std::string& command) {
    const char* options = std::getenv("PGOPTIONS");
    return "cd " + home + " && HOME=" + home + " PGOPTIONS='" + (options ? options : "") + "' " + command;
  }
  // klote on an 80x25 pane; the pane stays a while after it ends, showing KLOTE-END.
  bool StartKlote(const std::string& home) {
    const std::string command =
        InFirm(home, "TERM=xterm TERM_KLOTE_CP=UTF " KLOTE_BINARY_DIR "/app/main/klote") + "; echo KLOTE-END; sleep 20";
    return Tmux("-f /dev/null new-session -d -s k -x 80 -y 25 \"" + command + "\" \\; set-option -g status off") == 0;
  }
  std::string Pane() {
    std::string text;
    if (FILE* p = ::popen(("tmux -L " + socket_ + " capture-pane -p -t k 2>/dev/null").c_str(), "r")) {
      char buf[4096];
      for (std::size_t n; (n = std::fread(buf, 1, sizeof buf, p)) > 0;) text.append(buf, n);
      ::pclose(p);
    }
    return text;
  }
  // Up to ten seconds for the text to show.
  bool Shows(const std::string& text) {
    for (int i = 0; i < 1000; ++i, std::this_thread::sleep_for(std::chrono::milliseconds(10)))
      if (Pane().find(text) != std::string::npos) return true;
    return false;
  }
  void Keys(const std::string& keys) { (void)Tmux("send-keys -t k " + keys); }

 private:
  int Tmux(const std::string& args) { return std::system(("tmux -L " + socket_ + " " + args + " 2>/dev/null").c_str()); }
  std::string socket_;
};

// A database test that walks klote: skipped where tmux is missing.
class WalkTest : public DbTest {
 protected:
  void SetUp() override {
    DbTest::SetUp();
    if (!TmuxWalk::Available()) GTEST_SKIP() << "tmux is not installed";
  }
  // One value read with psql, without its line end.
  static std::string Value(const std::string& sql) {
    std::string out;
    EXPECT_TRUE(Psql(sql, &out)) << out;
    while (!out.empty() && out.back() == '\n') out.pop_back();
    return out;
  }
  TmuxWalk walk_;
};
