// The message boxes: layout, frame, bottom line and the wait of each code.
#include "tui/msgbox.h"

#include <chrono>
#include <thread>

#include "base/codepage.h"
#include "base/mazovia.h"
#include "tui/keyboard.h"
#include "tui/screen.h"
#include "tui/term.h"

namespace {

constexpr int kMaxBreaks = 21;
constexpr int kMaxLineWidth = 78;

// The lines of a box text: at most 21 breaks; the rest of the text after
// the 21st "@" is part of the last line.
struct Lines {
  int count = 0;
  int start[kMaxBreaks + 1] = {};   // 1-based position in the text
  int length[kMaxBreaks + 1] = {};
};

Lines SplitLines(const ShortText& text) {
  Lines l;
  int start = 1;
  for (int i = 1; i <= text.Length() && l.count < kMaxBreaks; ++i) {
    if (text.At(i) != '@') continue;
    l.start[l.count] = start;
    l.length[l.count++] = i - start;
    start = i + 1;
  }
  l.start[l.count] = start;
  l.length[l.count++] = text.Length() - start + 1;
  return l;
}

int MinimumWidth(int16_t code) {
  if (code == 0 || code == -1) return 14;
  if (code == 1) return 36;
  if (code == 2) return 0;
  return 37;
}

int BoxWidth(const Lines& lines, int16_t code, int maxWidth) {
  int width = 0;
  for (int i = 0; i < lines.count; ++i)
    if (lines.length[i] > width) width = lines.length[i];
  if (width > maxWidth) width = maxWidth;
  int minimum = MinimumWidth(code);
  return width < minimum ? minimum : width;
}

ShortText BottomLine(int16_t code) {
  if (code == 0) return " Wciśnij ╒¿."_mz;
  if (code == -1) return " Wciśnij ╤╥û."_mz;
  if (code == 1) return " Odpowiedz naciskając ╧Ö lub ╧Ü."_mz;
  return "Zaczekaj - komunikat zniknie sam..."_mz;
}

// Where the box goes: its window, and how wide its inside is.
struct Placement {
  int left, top, bottom, width;
};

// Rows of 0xC4 and 0xCD for the top and bottom of frames.
struct FrameRows {
  char top[kScreenCols], bottom[kScreenCols];
  constexpr FrameRows() : top{}, bottom{} {
    for (int i = 0; i < kScreenCols; ++i) {
      top[i] = static_cast<char>(0xC4);
      bottom[i] = static_cast<char>(0xCD);
    }
  }
};
constexpr FrameRows kFrameRows;

// Single on the top and left, double on the right and bottom; on an ISO
// terminal the single lines are left blank.
void DrawFrame(int cols, int rows) {
  bool plain = Term().outCodePage == 4;
  char blanks[kScreenCols];
  for (char& c : blanks) c = ' ';
  PutCh(1, 1, plain ? ' ' : 0xDA);
  WriteAt(2, 1, plain ? blanks : kFrameRows.top, cols - 2);
  PutCh(cols, 1, 0xB7);
  for (int y = 2; y < rows; ++y) {
    PutCh(1, y, plain ? ' ' : 0xB3);
    PutCh(cols, y, 0xBA);
  }
  PutCh(1, rows, 0xD4);
  WriteAt(2, rows, kFrameRows.bottom, cols - 2);
  PutCh(cols, rows, 0xBC);
}

void SleepMs(unsigned ms) { std::this_thread::sleep_for(std::chrono::milliseconds(ms)); }

bool WaitYesNo() {
  for (;;) {
    KeyPair k = ReadKeyRaw();
    unsigned char c = MazUpCase(k.ch);
    if (c == 'T' || c == 13) return true;
    if (c == 'N' || c == 27) return false;
    Beep(1000);
  }
}

// The wait of each code; true only for a yes.
bool WaitForCode(int16_t code) {
  TermFlush();
  if (code == 2) return false;
  if (code == 1) return WaitYesNo();
  if (code == 0) {
    for (KeyPair k = ReadKeyRaw(); k.ch != 13 && k.ch != 27; k = ReadKeyRaw()) Beep(1000);
    return false;
  }
  if (code == -1) {
    KeyPair k = ReadKeyRaw();
    if (k.ch == 27) {
      SleepMs(500);
      DiscardPendingKeys();
    } else {
      (void)PushKeyFront(k.ch, k.scan);  // the operator's next keystroke goes through
    }
    return false;
  }
  SleepMs(static_cast<uint16_t>(code));
  return false;
}

bool RunBox(const ShortText& text, const Lines& lines, int16_t code, const Placement& p,
            unsigned char frame, unsigned char body) {
  ScreenCopyPtr saved;
  uint16_t wmin = WindowMinPacked(), wmax = WindowMaxPacked();
  int x = WhereX(), y = WhereY();
  if (code != 2) ScreenSave(saved);
  Window(p.left, p.top, p.left + p.width + 1, p.bottom);
  int cols = p.width + 2, rows = p.bottom - p.top + 1;
  TextAttr(frame);
  ClearWindow();
  DrawFrame(cols, rows);
  TextAttr(body);
  for (int i = 0; i < lines.count && i + 2 < rows; ++i)
    WriteAt(2, i + 2, text.Data() + lines.start[i] - 1, lines.length[i] > kMaxLineWidth ? kMaxLineWidth : lines.length[i]);
  if (code != 2) {
    TextAttr(kAttrPrompt);
    GotoXY(2, lines.count + 2);
    WriteCentred(BottomLine(code));
  }
  GotoXY(cols, rows);
  bool yes = WaitForCode(code);
  if (code != 2) {
    ScreenRestore(saved);
    WindowPacked(wmin, wmax);
    GotoXY(x, y);
  }
  TextAttr(kAttrNormal);
  return yes;
}

int BoxRows(const Lines& lines, int16_t code) { return lines.count + (code == 2 ? 2 : 3); }

Placement Centred(const Lines& lines, int16_t code) {
  Placement p;
  p.width = BoxWidth(lines, code, kMaxLineWidth);
  int breaks = lines.count - 1;
  p.left = (kMaxLineWidth - p.width) / 2 + 1;
  p.top = (24 - breaks) / 2;
  p.bottom = p.top + breaks + 3;
  if (p.bottom > kScreenRows) p.bottom = kScreenRows;
  if (code == 2) --p.bottom;
  return p;
}

}  // namespace

bool MessageBoxColour(const ShortText& text, int16_t code, unsigned char attr) {
  Lines lines = SplitLines(text);
  return RunBox(text, lines, code, Centred(lines, code), attr, attr);
}

bool MessageBox(const ShortText& text, int16_t code) {
  Lines lines = SplitLines(text);
  return RunBox(text, lines, code, Centred(lines, code), kAttrBoxFrame, kAttrBoxBody);
}

bool MessageBoxHere(const ShortText& text, int16_t code, unsigned char attr) {
  Lines lines = SplitLines(text);
  Placement p;
  p.width = BoxWidth(lines, code, kMaxLineWidth);
  WindowRect w = CurrentWindow();
  p.left = w.left + 1;
  p.top = w.top + 1;
  if (p.left + p.width + 1 > kScreenCols) p.left = kScreenCols - p.width - 1;
  int rows = BoxRows(lines, code);
  if (p.top + rows - 1 > kScreenRows) p.top = kScreenRows - rows + 1;
  if (p.top < 1) p.top = 1;
  p.bottom = p.top + rows - 1;
  if (p.bottom > kScreenRows) p.bottom = kScreenRows;
  return RunBox(text, lines, code, p, attr, attr);
}

bool MessageBoxBottom(const ShortText& text, int16_t code) {
  Lines lines;
  lines.count = 1;
  lines.start[0] = 1;
  lines.length[0] = text.Length() > 76 ? 76 : text.Length();
  Placement p;
  p.width = BoxWidth(lines, code, 76);
  p.left = 2;
  p.top = code < 2 ? 21 : 22;
  p.bottom = 24;
  return RunBox(text, lines, code, p, kAttrBoxFrame, kAttrBoxBody);
}

void ClipboardCopy(const ShortText& field, int16_t milliseconds) {
  ClipboardSet(field);
  MessageBox("Pobrano do schowka."_mz, milliseconds);
}
