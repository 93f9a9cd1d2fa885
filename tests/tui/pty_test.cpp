// Keys typed on a real pseudo-terminal reach ReadKeyRaw after TermInit has
// set it up: Enter as 13, and Ctrl+C, Ctrl+V and Ctrl+S as keys of their own.
#include <gtest/gtest.h>
#include <pty.h>
#include <stdlib.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>

#include <string>

#include "tui/keyboard.h"
#include "tui/term.h"

namespace {

// In the child on the terminal's slave side: reads count keys and writes their
// pairs to the pipe, then whether the settings were given back at the end.
[[noreturn]] void ReadKeysOnTerminal(int pipeOut, int count) {
  setenv("TERM", "xterm", 1);
  TermInputFromFd(STDIN_FILENO);  // other tests of this process may have turned input off
  TermOutputToFd(STDOUT_FILENO);
  TermInit();
  unsigned char ready = 'R';
  if (write(pipeOut, &ready, 1) != 1) _exit(3);
  for (int i = 0; i < count; ++i) {
    KeyPair k = ReadKeyRaw();
    unsigned char pair[2] = {k.ch, k.scan};
    if (write(pipeOut, pair, 2) != 2) _exit(3);
  }
  TermRestoreInput();
  termios mode{};
  tcgetattr(STDIN_FILENO, &mode);
  unsigned char restored = (mode.c_lflag & ICANON) ? 1 : 0;
  if (write(pipeOut, &restored, 1) != 1) _exit(3);
  _exit(0);
}

TEST(PseudoTerminal, RawKeysReachTheKeyReader) {
  int fds[2];
  ASSERT_EQ(pipe(fds), 0);
  const std::string typed = "\r\x03\x16\x13" "a\x1b[A";
  int master = -1;
  const pid_t child = forkpty(&master, nullptr, nullptr, nullptr);  // the child's own terminal, its session's
  ASSERT_GE(child, 0);
  if (child == 0) ReadKeysOnTerminal(fds[1], 6);
  close(fds[1]);
  unsigned char ready = 0;  // the child has set the terminal up before the keys come
  ASSERT_EQ(read(fds[0], &ready, 1), 1);
  ASSERT_EQ(ready, 'R');
  ASSERT_EQ(write(master, typed.data(), typed.size()), static_cast<ssize_t>(typed.size()));
  unsigned char got[13] = {};
  std::size_t have = 0;
  for (ssize_t n; have < sizeof got && (n = read(fds[0], got + have, sizeof got - have)) > 0;) have += n;
  int status = 0;
  waitpid(child, &status, 0);
  close(master);
  close(fds[0]);
  ASSERT_EQ(have, sizeof got);
  const unsigned char want[12] = {13, 28, 3, 46, 224, 79, 19, 31, 'a', 30, 224, 72};  // Ctrl+V reads as End
  EXPECT_EQ(std::string(got, got + 12), std::string(want, want + 12));
  EXPECT_EQ(got[12], 1) << "the terminal's line mode is given back";
  EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
}

}  // namespace
