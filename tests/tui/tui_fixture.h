// A terminal without a terminal: the screen's bytes go into a string, keys
// come only from the key buffer, and the environment picks the kind.
#pragma once

#include <gtest/gtest.h>
#include <stdlib.h>

#include <string>
#include <vector>

#include "tui/keyboard.h"
#include "tui/screen.h"
#include "tui/term.h"

namespace tui_test {

inline void InitTerminal(const char* term, const char* klote = "", const char* cp = "", const char* colours = "") {
  setenv("TERM", term, 1);
  setenv("TERM_KLOTE", klote, 1);
  setenv("TERM_KLOTE_CP", cp, 1);
  setenv("TERM_KLOTE_COLORS", colours, 1);
  TermSetWarningWait(0);
  TermInputFromFd(-1);
  TermInit();
  Window(1, 1, 80, 25);
  GotoXY(1, 1);
  TextAttr(0x07);
}

class TuiTest : public ::testing::Test {
 protected:
  void SetUp() override {
    TermOutputToBuffer(&out_);
    InitTerminal("xterm");
    Sent();
  }
  void TearDown() override {
    TermOutputToBuffer(nullptr);
    TermOutputToFd(-1);
  }
  // What the terminal has received since the last call.
  std::string Sent() {
    TermFlush();
    std::string s = out_;
    out_.clear();
    return s;
  }
  std::string out_;
};

// A row of the character shadow from column first, count bytes.
inline std::string Cells(int row, int first, int count) {
  return std::string(RowText(row).View().substr(static_cast<std::size_t>(first - 1), static_cast<std::size_t>(count)));
}

inline unsigned char AttrAt(int col, int row) { return static_cast<unsigned char>(RowAttrs(row).At(col)); }
inline unsigned char CharAt(int col, int row) { return static_cast<unsigned char>(RowText(row).At(col)); }

// A background of known bytes in a different attribute on every row, a window
// and a cursor inside it and the attribute given: what a box must give back.
inline void FillBackground(unsigned char attr) {
  for (int r = 1; r <= 25; ++r) {
    TextAttr(static_cast<unsigned char>(0x10 + r));
    WriteAt(1, r, ShortText(std::string(80, static_cast<char>('a' + r % 26))));
  }
  Window(3, 4, 60, 20);
  GotoXY(5, 6);
  TextAttr(attr);
}

// Whether one of the kept screens shows every '@'-separated line of a box's text.
inline bool AnyScreenShows(const std::vector<std::string>& screens, const ShortText& text) {
  std::vector<std::string> lines(1);
  for (char c : text.View())
    if (c == '@') lines.emplace_back();
    else lines.back().push_back(c);
  for (const std::string& screen : screens) {
    bool all = true;
    for (const std::string& line : lines) all = all && screen.find(line) != std::string::npos;
    if (all) return true;
  }
  return false;
}

}  // namespace tui_test
