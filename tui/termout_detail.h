// Inside the terminal layer: the byte and attribute maps in force and the
// output buffer. Only tui/*.cpp include this.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "tui/term.h"

namespace tui_detail {

struct Output {
  unsigned char charMap[256];   // logical byte -> byte sent (steps 1, 2, 3 and 5)
  unsigned char attrMap[256];   // logical attribute -> adjusted attribute
  bool utf8 = false;            // encode the final ISO 8859-2 bytes as UTF-8
  int row = 0, col = 0;         // where the terminal's cursor is; row 0: not known
  int attr = -1;                // adjusted attribute in force on the terminal; -1: not known
  int fd = 1;
  std::string* sink = nullptr;
  std::size_t length = 0;
  uint64_t sent = 0;
  char buffer[16384];
};

extern Output g_out;
extern TermSettings g_term;

// Rebuilds the maps after a change of the settings.
void RebuildMaps();
// Sends count cells of one row, all in one logical attribute, starting at a
// screen position; moves the cursor and sets the colour only when needed.
// chars points into the screen shadow's row, so that a cell may look at its left neighbours.
void EmitRun(int row, int col, const unsigned char* chars, int count, unsigned char attr);
// Puts the terminal's cursor at a screen position (sent at the next flush).
void EmitCursor(int row, int col);
// Sends the output buffer to the terminal or the test sink.
void FlushBuffer();
// Writes raw bytes (escape sequences, plain warning lines) to the output.
void EmitRaw(const char* bytes, std::size_t count);
// The plain form of a key-cap or small-capital cell; 0 when the byte is none.
unsigned char KeyCapPlain(unsigned char byte);
// Attribute adjustment for the settings in force (mono, brown, few colours).
unsigned char AdjustAttr(unsigned char attr, const TermSettings& t);

}  // namespace tui_detail
