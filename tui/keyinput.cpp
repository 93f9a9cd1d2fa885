// The terminal as a source of key pairs: reading bytes with termios at the
// edge, and the PC scan code of each plain byte.
#include <poll.h>
#include <termios.h>
#include <unistd.h>

#include <array>
#include <cerrno>

#include "tui/keyboard_detail.h"
#include "tui/term.h"

namespace {

int g_inputFd = STDIN_FILENO;

using ScanTable = std::array<unsigned char, 128>;

constexpr void Row(ScanTable& t, const char* chars, unsigned char firstScan) {
  for (int i = 0; chars[i]; ++i) t[static_cast<unsigned char>(chars[i])] = static_cast<unsigned char>(firstScan + i);
}

// PC scan code of each ASCII byte, shifted or not; control bytes take their letter's key.
constexpr ScanTable BuildAsciiScans() {
  ScanTable t{};
  Row(t, "1234567890-=", 2);
  Row(t, "!@#$%^&*()_+", 2);
  Row(t, "qwertyuiop[]", 16);
  Row(t, "QWERTYUIOP{}", 16);
  Row(t, "asdfghjkl;'`", 30);
  Row(t, "ASDFGHJKL:\"~", 30);
  Row(t, "\\zxcvbnm,./", 43);
  Row(t, "|ZXCVBNM<>?", 43);
  t[' '] = 57;
  for (int c = 1; c <= 26; ++c) t[c] = t['a' + c - 1];
  t[8] = t[127] = 14;
  t[9] = 15;
  t[10] = t[13] = 28;
  t[27] = 1;
  t[28] = 43;
  t[29] = 27;
  t[0] = 3;
  return t;
}

constexpr ScanTable kAsciiScans = BuildAsciiScans();

// Scan of a byte from 0x80 up: a Polish letter's key in the single-byte input
// code pages, and for UTF-8 input the keys the three lead bytes arrive on.
unsigned char HighByteScan(unsigned char b) {
  static constexpr unsigned char kIso[18] = {0xB1, 0xE6, 0xEA, 0xB3, 0xF1, 0xF3, 0xB6, 0xBC, 0xBF,
                                             0xA1, 0xC6, 0xCA, 0xA3, 0xD1, 0xD3, 0xA6, 0xAC, 0xAF};
  static constexpr unsigned char kWin[18] = {0xB9, 0xE6, 0xEA, 0xB3, 0xF1, 0xF3, 0x9C, 0x9F, 0xBF,
                                             0xA5, 0xC6, 0xCA, 0xA3, 0xD1, 0xD3, 0x8C, 0x8F, 0xAF};
  static constexpr unsigned char kScan[9] = {30, 46, 18, 38, 49, 24, 31, 45, 44};
  int page = Term().inCodePage;
  if (page == 1) return b == 0xC3 ? 46 : (b == 0xC4 ? 32 : (b == 0xC5 ? 18 : 0));
  const unsigned char* letters = page == 2 ? kWin : kIso;
  for (int i = 0; i < 18; ++i)
    if (letters[i] == b) return kScan[i % 9];
  return 0;
}

bool WaitReadable(int timeoutMs) {
  if (g_inputFd < 0) return false;
  pollfd p{g_inputFd, POLLIN, 0};
  int r;
  do r = poll(&p, 1, timeoutMs);
  while (r < 0 && errno == EINTR);
  return r > 0;
}

// One byte from the terminal, waiting for it; false at the end of input.
bool ReadByte(unsigned char& b) {
  if (g_inputFd < 0) return false;
  for (;;) {
    ssize_t n = ::read(g_inputFd, &b, 1);
    if (n == 1) return true;
    if (n < 0 && errno == EINTR) continue;
    if (n < 0 && errno == EAGAIN) {
      WaitReadable(-1);
      continue;
    }
    return false;
  }
}

}  // namespace

namespace tui_detail {

KeyPair PairOfByte(unsigned char b) {
  if (b == 127) return KeyPair{8, 14};
  return KeyPair{b, b < 128 ? kAsciiScans[b] : HighByteScan(b)};
}

bool TerminalKeyWaiting(int timeoutMs) { return WaitReadable(timeoutMs); }

bool ReadTerminalKey(KeyPair& key) {
  unsigned char b;
  if (!ReadByte(b)) return false;
  key = PairOfByte(b);
  return true;
}

void DiscardTerminalInput() {
  if (g_inputFd < 0) return;
  if (isatty(g_inputFd)) tcflush(g_inputFd, TCIFLUSH);
  unsigned char sink[256];
  while (WaitReadable(0) && ::read(g_inputFd, sink, sizeof sink) > 0) {
  }
}

int InputFd() { return g_inputFd; }

}  // namespace tui_detail

void TermInputFromFd(int fd) { g_inputFd = fd; }
