#include "tui/keypoll.h"

#include <poll.h>
#include <termios.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <string_view>

namespace {

// The state of the poll: the terminal's settings as found, and bytes read
// from the input that do not yet make a key.
struct PollState {
  bool haveSettings = false;
  termios settings{};
  KeyTerminal terminal = KeyTerminal::kXterm;
  bool endOfInput = false;
  char pending[64] = {};
  int pendingLength = 0;
  std::chrono::steady_clock::time_point lastByte{};
};
PollState gPoll;

KeyTerminal TerminalFromEnvironment() {
  const char* term = std::getenv("TERM");
  if (term == nullptr) return KeyTerminal::kXterm;
  if (std::strcmp(term, "linux") == 0) return KeyTerminal::kLinux;
  if (std::strncmp(term, "rxvt", 4) == 0) return KeyTerminal::kRxvt;
  return KeyTerminal::kXterm;
}

// Reads what is waiting, waiting at most timeoutMs for the first byte.
void ReadWaiting(int timeoutMs) {
  if (gPoll.endOfInput || gPoll.pendingLength == static_cast<int>(sizeof gPoll.pending)) return;
  pollfd p{STDIN_FILENO, POLLIN, 0};
  if (::poll(&p, 1, timeoutMs) <= 0 || (p.revents & (POLLIN | POLLHUP)) == 0) return;
  const ssize_t n = ::read(STDIN_FILENO, gPoll.pending + gPoll.pendingLength,
                           sizeof gPoll.pending - gPoll.pendingLength);
  if (n == 0 || (n < 0 && errno != EINTR && errno != EAGAIN)) {
    gPoll.endOfInput = true;  // no keyboard behind standard input
    return;
  }
  if (n > 0) {
    gPoll.pendingLength += static_cast<int>(n);
    gPoll.lastByte = std::chrono::steady_clock::now();
  }
}

void DropPending(int count) {
  std::memmove(gPoll.pending, gPoll.pending + count, gPoll.pendingLength - count);
  gPoll.pendingLength -= count;
}

int IdleMs() {
  return static_cast<int>(std::chrono::duration_cast<std::chrono::milliseconds>(
                              std::chrono::steady_clock::now() - gPoll.lastByte)
                              .count());
}

}  // namespace

void KeyPollBegin() {
  gPoll.terminal = TerminalFromEnvironment();
  if (!::isatty(STDIN_FILENO) || ::tcgetattr(STDIN_FILENO, &gPoll.settings) != 0) return;
  gPoll.haveSettings = true;
  termios raw = gPoll.settings;
  raw.c_lflag &= ~static_cast<tcflag_t>(ICANON | ECHO);
  raw.c_iflag &= ~static_cast<tcflag_t>(ICRNL);
  raw.c_cc[VMIN] = 1;
  raw.c_cc[VTIME] = 0;
  ::tcsetattr(STDIN_FILENO, TCSANOW, &raw);
}

void KeyPollEnd() {
  if (gPoll.haveSettings) ::tcsetattr(STDIN_FILENO, TCSANOW, &gPoll.settings);
}

bool KeyPollRead(KeyPair& key) {
  ReadWaiting(0);
  while (gPoll.pendingLength > 0) {
    const std::string_view bytes(gPoll.pending, gPoll.pendingLength);
    const KeyDecodeResult r = DecodeKey(bytes, IdleMs(), gPoll.terminal);
    if (r.status == KeyDecodeStatus::kIncomplete) {
      // The rest of an escape sequence is on its way: wait for it briefly.
      const int before = gPoll.pendingLength;
      ReadWaiting(kKeyEscapeWaitMs);
      if (gPoll.pendingLength == before) gPoll.lastByte -= std::chrono::milliseconds(kKeyEscapeWaitMs);
      continue;
    }
    DropPending(r.consumed);
    if (r.status == KeyDecodeStatus::kKey) {
      key = r.key;
      return true;
    }
  }
  return false;
}
