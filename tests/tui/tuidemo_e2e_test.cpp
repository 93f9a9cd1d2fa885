// The demonstration program on a real terminal in tmux: a list that goes on
// into a second box, a form with a date and a two-decimal amount, and Esc
// that ends the program; the pane is read back after every step.
#include <gtest/gtest.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <thread>

namespace {

class TuiDemoTest : public ::testing::Test {
 protected:
  void SetUp() override {
    if (std::system("command -v tmux >/dev/null 2>&1") != 0) GTEST_SKIP() << "tmux is not installed";
    socket_ = "tuidemo" + std::to_string(::getpid());
    const std::string program = KLOTE_BINARY_DIR "/tools/tui-demo/tui-demo";
    ASSERT_EQ(Tmux("-f /dev/null new-session -d -s demo -x 80 -y 25 \"TERM=xterm TERM_KLOTE_CP=UTF " + program +
                   "; echo DEMO-END; sleep 20\" \\; set-option -g status off"),
              0);
  }
  void TearDown() override {
    if (!socket_.empty()) Tmux("kill-server");
  }
  int Tmux(const std::string& args) { return std::system(("tmux -L " + socket_ + " " + args + " 2>/dev/null").c_str()); }
  std::string Pane() {
    std::string text;
    FILE* p = ::popen(("tmux -L " + socket_ + " capture-pane -p -t demo 2>/dev/null").c_str(), "r");
    if (!p) return text;
    char buf[4096];
    for (std::size_t n; (n = std::fread(buf, 1, sizeof buf, p)) > 0;) text.append(buf, n);
    ::pclose(p);
    return text;
  }
  // Waits until the pane shows the text; false after five seconds.
  bool WaitFor(const std::string& text) {
    for (int i = 0; i < 500; ++i) {
      if (Pane().find(text) != std::string::npos) return true;
      std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    return false;
  }
  void Keys(const std::string& keys) { Tmux("send-keys -t demo " + keys); }
  std::string socket_;
};

TEST_F(TuiDemoTest, ListFormAndEnd) {
  ASSERT_TRUE(WaitFor("Pokaz list i formularzy:")) << Pane();
  EXPECT_TRUE(WaitFor("6 Koniec")) << Pane();
  EXPECT_TRUE(WaitFor("Esc - rezygnacja z wybierania")) << Pane();

  // The list of 25: End opens the further box; Enter takes the last choice.
  Keys("1");
  ASSERT_TRUE(WaitFor("9 Poz. 9")) << Pane();
  EXPECT_EQ(Pane().find("Poz. 22"), std::string::npos);
  Keys("End");
  ASSERT_TRUE(WaitFor("Wybierz dalej:")) << Pane();
  EXPECT_TRUE(WaitFor("O Poz. 25")) << Pane();
  EXPECT_EQ(Pane().find("Poz. 21"), std::string::npos);
  Keys("Enter");
  ASSERT_TRUE(WaitFor("Wybrano: 25")) << Pane();
  Keys("Enter");
  ASSERT_TRUE(WaitFor("Pokaz list i formularzy:")) << Pane();

  // The form: capitals, a date whose separators come by themselves, and a
  // third decimal refused.
  Keys("3");
  ASSERT_TRUE(WaitFor("Kwota:")) << Pane();
  Keys("abc Enter 010203 Enter 1.234");
  ASSERT_TRUE(WaitFor("Kwota: 1.23\n")) << Pane();
  EXPECT_TRUE(WaitFor("Data:  01-02-03")) << Pane();
  Keys("Enter");
  ASSERT_TRUE(WaitFor("Nazwa: ABC")) << Pane();
  EXPECT_TRUE(WaitFor("Data: 01-02-03")) << Pane();
  Keys("Enter");
  ASSERT_TRUE(WaitFor("Pokaz list i formularzy:")) << Pane();

  // Esc leaves the main list and the program.
  Keys("Escape");
  EXPECT_TRUE(WaitFor("DEMO-END")) << Pane();
}

}  // namespace
