// The terminal as a source of key pairs: bytes read with termios at the
// edge, turned into PC pairs by the key decoder.
#include <poll.h>
#include <termios.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstring>
#include <string_view>

#include "tui/keyboard_detail.h"
#include "tui/keydecode.h"
#include "tui/term.h"

namespace {

using Clock = std::chrono::steady_clock;

// Bytes read from the terminal that do not yet make a key.
struct Pending {
  int fd = STDIN_FILENO;
  bool ended = false;
  char bytes[64] = {};
  int length = 0;
  Clock::time_point lastByte{};
};
Pending g_in;

KeyTerminal DecoderTerminal() {
  if (Term().kind == 1) return KeyTerminal::kRxvt;
  if (Term().kind == 3) return KeyTerminal::kLinux;
  return KeyTerminal::kXterm;
}

// Waits at most timeoutMs (-1: for ever) for input and appends what came;
// false when nothing came.
bool ReadMore(int timeoutMs) {
  if (g_in.fd < 0 || g_in.ended || g_in.length == static_cast<int>(sizeof g_in.bytes)) return false;
  pollfd p{g_in.fd, POLLIN, 0};
  int r;
  do r = poll(&p, 1, timeoutMs);
  while (r < 0 && errno == EINTR);
  if (r <= 0) return false;
  ssize_t n;
  do n = ::read(g_in.fd, g_in.bytes + g_in.length, sizeof g_in.bytes - static_cast<std::size_t>(g_in.length));
  while (n < 0 && errno == EINTR);
  if (n <= 0) {
    g_in.ended = n == 0 || errno != EAGAIN;
    return false;
  }
  g_in.length += static_cast<int>(n);
  g_in.lastByte = Clock::now();
  return true;
}

int IdleMs() {
  return static_cast<int>(std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - g_in.lastByte).count());
}

void Consume(int count) {
  std::memmove(g_in.bytes, g_in.bytes + count, static_cast<std::size_t>(g_in.length - count));
  g_in.length -= count;
}

// One key from what is pending, reading more while a sequence is unfinished;
// false when the pending bytes hold no key.
bool DecodePending(KeyPair& key) {
  while (g_in.length > 0) {
    KeyDecodeResult r = DecodeKey(std::string_view(g_in.bytes, static_cast<std::size_t>(g_in.length)), IdleMs(),
                                  DecoderTerminal());
    if (r.status == KeyDecodeStatus::kIncomplete) {
      if (!ReadMore(kKeyEscapeWaitMs)) g_in.lastByte -= std::chrono::milliseconds(kKeyEscapeWaitMs);
      continue;
    }
    Consume(r.consumed);
    if (r.status == KeyDecodeStatus::kKey) {
      key = r.key;
      return true;
    }
  }
  return false;
}

}  // namespace

namespace tui_detail {

bool TerminalKeyWaiting(int timeoutMs) { return g_in.length > 0 || ReadMore(timeoutMs); }

bool ReadTerminalKey(KeyPair& key) {
  for (;;) {
    if (DecodePending(key)) return true;
    if (!ReadMore(-1)) return false;
  }
}

void DiscardTerminalInput() {
  g_in.length = 0;
  if (g_in.fd < 0) return;
  if (isatty(g_in.fd)) tcflush(g_in.fd, TCIFLUSH);
  while (ReadMore(0)) g_in.length = 0;
}

int InputFd() { return g_in.fd; }

}  // namespace tui_detail

void TermInputFromFd(int fd) {
  g_in = Pending{};
  g_in.fd = fd;
}
