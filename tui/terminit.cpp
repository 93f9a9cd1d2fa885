// Choosing the terminal's kind and conversions from the environment, and the
// edges of the terminal: raw input and where output goes.
#include <termios.h>
#include <unistd.h>

#include <cctype>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <thread>

#include "tui/keyboard.h"
#include "tui/screen.h"
#include "tui/termout_detail.h"

namespace {

using tui_detail::g_out;
using tui_detail::g_term;

int g_warningWaitMs = 10000;

struct SavedInput {
  bool saved = false;
  termios mode{};
};
SavedInput g_savedInput;

std::string UpperEnv(const char* name) {
  const char* v = std::getenv(name);
  std::string s = v ? v : "";
  for (char& c : s) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
  return s;
}

int KindFromTerm(const std::string& term) {
  if (term == "RXVT") return 1;
  if (term == "XTERM") return 2;
  if (term == "LINUX") return 3;
  if (term == "CP852") return 4;
  if (term == "ORBEL") return 5;
  return 0;
}

void ShowUnknownTermWarning() {
  static const char* const kLines[] = {
      "NIEWLASCIWA ZMIENNA \"TERM\"",
      "PROGRAM MOZE PRACOWAC W TERMINALACH rxvt,linux Z ZASTOSOWANIEM",
      "specjalnego FONTU TERMINALA, ALBO W xterm Z ZASTOSOWANIEM",
      "DOWOLNEGO FONTU BITMAPOWEGO ISO8859-2 TYPU MONOSPACE LUB CELL,",
      "Z WYLACZONYM UTF,",
      "W OKNIE TEKSTOWYM WINDOWS (TERM=CP852).",
      "ALBO PELNYM OKNIE WINDOWS 9.x ZE SPECJALNYM FONTEM (TERM=ORBEL)",
      "ZA 10 S.PROGRAM RUSZY DALEJ.",
  };
  for (const char* line : kLines) {
    tui_detail::EmitRaw(line, std::char_traits<char>::length(line));
    tui_detail::EmitRaw("\r\n", 2);
  }
  tui_detail::FlushBuffer();
  std::this_thread::sleep_for(std::chrono::milliseconds(g_warningWaitMs));
}

// Output conversion and output mode by kind.
void SetConversionsForKind(TermSettings& t) {
  static constexpr int kOutCodePage[6] = {4, 0, 4, 0, 2, 0};
  static constexpr int kOutputMode[6] = {4, 4, 4, 4, 2, 2};
  t.outCodePage = kOutCodePage[t.kind];
  t.outputMode = kOutputMode[t.kind];
  t.specialFont = t.outCodePage == 0;
}

// Keys arrive one byte at a time, unechoed, with Ctrl+C, Ctrl+S and Ctrl+V as
// keys of their own. Output processing stays, for the plain lines of the server.
void SetRawInput() {
  if (!isatty(STDIN_FILENO)) return;
  termios mode{};
  if (tcgetattr(STDIN_FILENO, &mode) != 0) return;
  if (!g_savedInput.saved) {
    g_savedInput.mode = mode;
    g_savedInput.saved = true;
    std::atexit(TermRestoreInput);
  }
  mode.c_lflag &= ~static_cast<tcflag_t>(ICANON | ECHO | ISIG | IEXTEN);
  mode.c_iflag &= ~static_cast<tcflag_t>(IXON | ICRNL | INLCR | IGNCR | ISTRIP);
  mode.c_cc[VMIN] = 1;
  mode.c_cc[VTIME] = 0;
  tcsetattr(STDIN_FILENO, TCSANOW, &mode);
}

}  // namespace

const TermSettings& Term() { return g_term; }

void TermInit() {
  TermSettings t;
  t.kind = KindFromTerm(UpperEnv("TERM"));
  if (UpperEnv("TERM_KLOTE") == "POOR") t.kind = 2;
  std::string cp = UpperEnv("TERM_KLOTE_CP");
  t.inCodePage = cp == "UTF" ? 1 : (cp == "WIN" ? 2 : 0);
  t.fewColours = UpperEnv("TERM_KLOTE_COLORS") == "1";
  t.brownToGreen = g_term.brownToGreen;
  if (t.kind == 0) ShowUnknownTermWarning();
  SetConversionsForKind(t);
  g_term = t;
  tui_detail::RebuildMaps();
  ScreenResetShadows();
  KeyboardReset();
  SetRawInput();
  // Autowrap off: a write into the last column must never scroll the screen.
  tui_detail::EmitRaw("\x1b[?7l", 5);
}

bool TermWriteCodePage() {
  const char* digit = (g_term.kind == 0 || g_term.kind == 2) ? "3\r" : (g_term.kind == 4 ? "2\r" : "7\r");
  std::FILE* f = std::fopen("str_kod_.cfg", "wb");
  if (!f) return false;
  bool ok = std::fputs(digit, f) >= 0;
  return std::fclose(f) == 0 && ok;
}

void TermSetBrownToGreen(bool on) {
  g_term.brownToGreen = on;
  tui_detail::RebuildMaps();
}

void TermSetMono(bool on) {
  g_term.mono = on;
  tui_detail::RebuildMaps();
}

void TermOutputToFd(int fd) {
  tui_detail::FlushBuffer();
  g_out.sink = nullptr;
  g_out.fd = fd;
}

void TermOutputToBuffer(std::string* sink) {
  tui_detail::FlushBuffer();
  g_out.sink = sink;
}

void TermSetWarningWait(int milliseconds) { g_warningWaitMs = milliseconds < 0 ? 0 : milliseconds; }

uint64_t TermBytesSent() { return g_out.sent; }

void TermForgetState() {
  g_out.row = 0;
  g_out.attr = -1;
}

void TermRestoreInput() {
  if (g_savedInput.saved) tcsetattr(STDIN_FILENO, TCSANOW, &g_savedInput.mode);
}

void TermHandOver() {
  TermFlush();
  tui_detail::EmitRaw("\x1b[0m\x1b[?7h", 9);
  tui_detail::FlushBuffer();
  TermForgetState();
  TermRestoreInput();
}

void TermTakeBack() {
  SetRawInput();
  tui_detail::EmitRaw("\x1b[?7l", 5);
  TermForgetState();
}
