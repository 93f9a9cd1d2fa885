// The terminal: its kind and conversions, chosen once from the environment,
// and where the screen's bytes go. The logical screen (tui/screen.h) is the
// source of truth; what reaches the terminal is a function of it and of the
// settings here.
#pragma once

#include <cstdint>
#include <string>

#include "base/shorttext.h"

// Settings of the terminal in use; set by TermInit, read by everyone.
struct TermSettings {
  int kind = 0;          // 0 unknown, 1 rxvt, 2 xterm, 3 linux console, 4 CP852, 5 ORBEL
  int outCodePage = 4;   // 0 none (special font), 1 alternative, 2 Latin 2, 3 ASCII then ISO, 4 ISO, 7 or -1 plain
  int outputMode = 4;    // 2 or 4: control bytes are made safe in both
  int inCodePage = 0;    // 0 ISO 8859-2, 1 UTF-8, 2 Windows 1250
  bool fewColours = false;
  bool specialFont = false;
  bool mono = false;          // video mode 7; never on this platform unless set for a test
  bool brownToGreen = false;  // brown background shown green (set by the configuration)
};

// The settings in force.
const TermSettings& Term();
// Reads TERM, TERM_KLOTE, TERM_KLOTE_CP and TERM_KLOTE_COLORS, warns about an
// unknown TERM, blanks the shadows and clears the key buffer; puts standard
// input in raw mode when it is a terminal.
void TermInit();
// Writes "str_kod_.cfg": "3" for kinds 0 and 2, "2" for kind 4, "7" otherwise, and a CR.
[[nodiscard]] bool TermWriteCodePage();
// Sets the brown-to-green change of attributes (the configuration decides it).
void TermSetBrownToGreen(bool on);
// Sets mono mode (attribute normalisation); for tests and odd terminals.
void TermSetMono(bool on);

// Sends everything written so far to the terminal and puts the terminal's
// cursor where the logical cursor is. Every wait for a key or for time does this.
void TermFlush();
// Test and embedding hooks: the screen's bytes go to this file descriptor
// (default standard output) or are appended to *sink (nullptr ends that).
void TermOutputToFd(int fd);
void TermOutputToBuffer(std::string* sink);
// Keys are read from this descriptor (default standard input); -1 means no
// terminal input at all: a read with an empty key buffer then gives Esc.
void TermInputFromFd(int fd);
// How long TermInit shows its warning about an unknown TERM (default 10000 ms).
void TermSetWarningWait(int milliseconds);
// Bytes sent to the terminal since the program started (for measurements).
uint64_t TermBytesSent();
// Forgets where the terminal's cursor and colour are, so the next write states both.
void TermForgetState();
// Puts standard input back as it was before TermInit (runs at exit by itself).
void TermRestoreInput();
// Gives the terminal to another program: everything written so far sent,
// colours reset, autowrap on, input as it was before TermInit.
void TermHandOver();
// Takes the terminal back from another program: raw input, autowrap off, and
// the next write states cursor and colour anew.
void TermTakeBack();

// The glyph cell of the digit or letter key-cap with index 0..25; 7 for any other index.
unsigned char DigitCap(int index);
// A text prepared for a column header: upper-cased, moved to the small-capital
// cells with the special font, else plain ASCII letters.
ShortText TitleText(const ShortText& text);
