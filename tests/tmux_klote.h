// The real klote in a tmux session of its own (80x25, UTF-8), for the
// end-to-end walks: start it in a firm's directory with the test run's
// database, type keys, read the pane, wait for a text. The session's server
// ends with the object.
#pragma once

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <thread>

#include <unistd.h>

class TmuxKlote {
 public:
  TmuxKlote() {
    static int sessions = 0;
    socket_ = "klote" + std::to_string(::getpid()) + "_" + std::to_string(++sessions);
  }
  ~TmuxKlote() { (void)Tmux("kill-server"); }
  TmuxKlote(const TmuxKlote&) = delete;
  TmuxKlote& operator=(const TmuxKlote&) = delete;

  static bool Available() { return std::system("command -v tmux >/dev/null 2>&1") == 0; }

  // klote in the directory with HOME there, the environment's words in front;
  // "KLOTE-END" is shown when it has ended. False when tmux did not start.
  bool Start(const std::string& home, const std::string& environment = "") {
    const char* options = std::getenv("PGOPTIONS");
    const std::string command = "cd " + home + " && HOME=" + home + " PGOPTIONS='" + (options ? options : "") + "' " +
                                environment + " TERM=xterm TERM_KLOTE_CP=UTF " KLOTE_BINARY_DIR
                                "/app/main/klote; echo KLOTE-END; sleep 20";
    return Tmux("-f /dev/null new-session -d -s k -x 80 -y 25 \"" + command + "\" \\; set-option -g status off") == 0;
  }
  // Keys in tmux's words ("Enter", "F2", "'1.5'").
  void Keys(const std::string& keys) { (void)Tmux("send-keys -t k " + keys); }
  std::string Pane() {
    std::string text;
    if (FILE* p = ::popen(("tmux -L " + socket_ + " capture-pane -p -t k 2>/dev/null").c_str(), "r")) {
      char buf[4096];
      for (std::size_t n; (n = std::fread(buf, 1, sizeof buf, p)) > 0;) text.append(buf, n);
      ::pclose(p);
    }
    return text;
  }
  bool WaitForText(const std::string& text, int ms = 10000) {
    for (int waited = 0; waited <= ms; waited += 20) {
      if (Pane().find(text) != std::string::npos) return true;
      std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }
    return false;
  }

 private:
  int Tmux(const std::string& args) { return std::system(("tmux -L " + socket_ + " " + args + " 2>/dev/null").c_str()); }
  std::string socket_;
};
