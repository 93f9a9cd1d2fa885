// The real klote in tmux for end-to-end walks: a tmux server of its own for
// each walk, the program started in the test database's firm directory, keys
// sent by their tmux names and the pane read back as UTF-8 text.
#pragma once

#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <initializer_list>
#include <string>
#include <thread>

#include <gtest/gtest.h>

#include "dbfixture.h"

// One step of a walk: keys sent, then a text that must show.
struct WalkStep {
  std::string keys;
  std::string shown;
};

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
  // Up to ms milliseconds for the check to hold on the pane's text.
  template <typename Check>
  bool Until(Check check, int ms = 10000) {
    for (int waited = 0; waited < ms; waited += 10, std::this_thread::sleep_for(std::chrono::milliseconds(10)))
      if (check(Pane())) return true;
    return check(Pane());
  }
  bool Shows(const std::string& text, int ms = 10000) {
    return Until([&](const std::string& pane) { return pane.find(text) != std::string::npos; }, ms);
  }
  // Row n (from 0) of a pane's text without its trailing blanks.
  static std::string Row(const std::string& pane, int n) {
    std::size_t at = 0;
    for (int i = 0; i < n; ++i) {
      if ((at = pane.find('\n', at)) == std::string::npos) return "";
      ++at;
    }
    std::string row = pane.substr(at, pane.find('\n', at) - at);
    row.erase(row.find_last_not_of(' ') + 1);
    return row;
  }
  bool ShowsRow(int n, const std::string& text) {
    return Until([&](const std::string& pane) { return Row(pane, n) == text; });
  }
  // Each step's keys, then its text; the first text that does not show fails the test.
  void Walk(std::initializer_list<WalkStep> steps) {
    for (const WalkStep& step : steps) {
      Keys(step.keys);
      ASSERT_TRUE(Shows(step.shown)) << step.keys << "\n" << Pane();
    }
  }
  // The System Manager, whose empty password admits him, with the first warehouse where a list offers several.
  void LogIn(bool chooseWarehouse) {
    ASSERT_TRUE(Shows("Wybierz, jako który użytkownik będziesz pracować:")) << Pane();
    Keys("Enter");
    if (chooseWarehouse) {
      ASSERT_TRUE(Shows("Wybierz magazyn, na którego konto wprowadzać będziesz dane:")) << Pane();
      Keys("Enter");
    }
    ASSERT_TRUE(Shows("F2 Dokumenty")) << Pane();
  }
  // Esc from the menu ends the program.
  void Quit() {
    Keys("Escape");
    EXPECT_TRUE(Shows("KLOTE-END")) << Pane();
  }
  // The demo firm of tools/demo-firm in the test's own schema.
  static bool MakeDemoFirm(const std::string& home) {
    return std::system((InFirm(home, KLOTE_BINARY_DIR "/tools/demo-firm/demo-firm") + " >/dev/null").c_str()) == 0;
  }
  // Backspaces that rub out n characters before the cursor, each followed by a blank.
  static std::string Erase(std::size_t n) {
    std::string keys;
    for (std::size_t i = 0; i < n; ++i) keys += "BSpace ";
    return keys;
  }
  void Keys(const std::string& keys) {
    if (!keys.empty()) (void)Tmux("send-keys -t k " + keys);
  }

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
