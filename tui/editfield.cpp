// EditField: the masked field editor with its sixteen modes.
#include "tui/editfield.h"

#include "base/codepage.h"
#include "base/mazovia.h"
#include "base/numbers.h"
#include "base/text.h"
#include "tui/editkeys_detail.h"
#include "tui/keyboard.h"
#include "tui/msgbox.h"
#include "tui/screen.h"

namespace {

using namespace tui_detail;

bool g_clearOnFirstKey = false;

bool IsDigit(unsigned char c) { return c >= '0' && c <= '9'; }
bool IsAsciiLetter(unsigned char c) { return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z'); }
bool IsFixed(int mode) { return mode == 2 || mode == 7 || mode == 12; }
bool IsNumberMode(int mode) { return mode == 4 || mode == 6 || mode == 11 || mode == 14; }

// The separator of a fixed-format field at a position; 0 where a byte goes.
unsigned char SeparatorAt(int mode, int pos) {
  if (mode == 2 && (pos == 3 || pos == 6)) return '.';
  if (mode == 7 && (pos == 3 || pos == 6)) return '-';
  if (mode == 12 && (pos == 6 || pos == 10 || pos == 13)) return '-';
  return 0;
}

// True if a fixed-format field takes the byte at the position.
bool FixedAccepts(int mode, int pos, unsigned char c) {
  if (mode == 12 && (pos <= 2 || pos > 15)) return c > 31 && c != 127;
  return IsDigit(c);
}

// True if a free field of the mode takes the byte at all.
bool FreeAccepts(int mode, unsigned char c) {
  switch (mode) {
    case 3: return IsDigit(c);
    case 4: case 6: case 11: case 14: return IsDigit(c) || c == ',' || c == '-' || c == '.';
    case 5: return IsDigit(c) || IsAsciiLetter(c) || c == '-' || c == '.' || c == '/' || c == '_';
    case 9: return IsDigit(c) || c == '-';
    case 10: return IsDigit(c) || c == ',';
    case 13: return IsDigit(c) || c == '+' || c == ',' || c == '-' || c == '.';
    case 16: return IsDigit(c) || IsAsciiLetter(c);
    default: return c > 31 && c != 127;
  }
}

// The number rule and the integer check: true if the text may stand.
bool TextAllowed(int mode, const ShortText& text, unsigned char typed) {
  if (mode == 9) return NumericCheck(text, true) == 0;
  if (!IsNumberMode(mode)) return true;
  if (NumericCheck(text, false) != 0) return false;
  int point = text.Pos('.');
  return !(mode == 14 && IsDigit(typed) && point > 0 && text.Length() - point > 2);
}

struct Field {
  int mode = 1, width = 0;
  unsigned char fill = ' ';
  ShortText text;  // fixed modes: all width cells
  int pos = 1;     // cursor, 1-based; width + 1 when past the last cell
  int x = 1, y = 1;
};

int FreeLength(const Field& f) { return f.text.Length(); }

// What the caller gets: a fixed-format field whole, less its trailing blanks.
ShortText ResultText(const Field& f) { return IsFixed(f.mode) ? TrimRightAll(f.text, ' ') : f.text; }

// Past the last cell that holds a typed byte (fixed), or past the text.
int EndPosition(const Field& f) {
  if (!IsFixed(f.mode)) return FreeLength(f) + 1;
  int last = 0;
  for (int p = 1; p <= f.width; ++p)
    if (static_cast<unsigned char>(f.text[p]) != f.fill && SeparatorAt(f.mode, p) == 0) last = p;
  int pos = last + 1;
  while (pos <= f.width && SeparatorAt(f.mode, pos)) ++pos;
  return pos;
}

void SetText(Field& f, const ShortText& text) {
  f.text = text.Copy(1, f.width);
  if (IsFixed(f.mode)) {
    ShortText mask = FieldMask(f.mode, f.fill, f.width);
    for (int p = f.text.Length() + 1; p <= f.width; ++p) f.text += static_cast<char>(mask.At(p));
  }
  f.pos = EndPosition(f);
}

void Render(const Field& f) {
  ShortText shown = f.mode == 15 ? ShortText(std::string(static_cast<std::size_t>(f.text.Length()), '*')) : f.text;
  for (int p = shown.Length(); p < f.width; ++p) shown += static_cast<char>(f.fill);
  WriteAt(f.x, f.y, shown);
  WindowRect w = CurrentWindow();
  int col = f.x + (f.pos <= f.width ? f.pos : f.width) - 1;
  GotoXY(col > w.right - w.left + 1 ? w.right - w.left + 1 : col, f.y);
}

enum class Typed { kTaken, kRefused, kEnds };

Typed TypeFixed(Field& f, unsigned char c) {
  if (f.pos > f.width || !FixedAccepts(f.mode, f.pos, c)) return Typed::kRefused;
  f.text[f.pos] = static_cast<char>(c);
  ++f.pos;
  while (f.pos <= f.width && SeparatorAt(f.mode, f.pos)) ++f.pos;
  return Typed::kTaken;
}

Typed TypeByte(Field& f, unsigned char c) {
  if (IsFixed(f.mode)) return TypeFixed(f, c);
  if (!FreeAccepts(f.mode, c)) return Typed::kRefused;
  if (FreeLength(f) >= f.width) return f.mode == 11 ? Typed::kEnds : Typed::kRefused;
  if (f.mode == 8) c = MazUpCase(c);
  if ((IsNumberMode(f.mode) || f.mode == 13) && c == ',') c = '.';
  ShortText next = f.text;
  next.Insert(std::string_view(reinterpret_cast<const char*>(&c), 1), f.pos);
  if (!TextAllowed(f.mode, next, c)) return Typed::kRefused;
  f.text = next;
  ++f.pos;
  return Typed::kTaken;
}

void MoveLeft(Field& f) {
  int p = f.pos - 1;
  while (p >= 1 && IsFixed(f.mode) && SeparatorAt(f.mode, p)) --p;
  if (p >= 1) f.pos = p;
}

void MoveRight(Field& f) {
  int limit = IsFixed(f.mode) ? f.width : FreeLength(f) + 1;
  int p = f.pos + 1;
  while (p <= limit && IsFixed(f.mode) && SeparatorAt(f.mode, p)) ++p;
  if (p <= limit) f.pos = p;
}

// Del at a position: the tail moves left, or in a fixed field the cell is cleared.
void DeleteAt(Field& f, int pos) {
  if (!IsFixed(f.mode)) {
    f.text.Delete(pos, 1);
  } else if (pos >= 1 && pos <= f.width && SeparatorAt(f.mode, pos) == 0) {
    f.text[pos] = static_cast<char>(f.fill);
  }
}

// Acts on an editing key; false when the key does not edit.
bool EditKey(Field& f, unsigned char code) {
  switch (code) {
    case kCodeLeft: MoveLeft(f); return true;
    case kCodeRight: MoveRight(f); return true;
    case kCodeHome: f.pos = 1; return true;
    case kCodeEnd: f.pos = EndPosition(f); return true;
    case kCodeDel: DeleteAt(f, f.pos); return true;
    case kCodeBackspace: {
      int before = f.pos;
      MoveLeft(f);
      if (f.pos < before) DeleteAt(f, f.pos);
      return true;
    }
    case kCodeClear: SetText(f, ShortText()); f.pos = 1; return true;
    case kCodeCopy: ClipboardCopy(ResultText(f), kFieldClipboardMs); return true;
    case kCodePaste: SetText(f, ClipboardText()); return true;
    default: return false;
  }
}

}  // namespace

namespace tui_detail {

bool TypesByte(KeyPair key) { return key.ch >= 32 && key.ch != 127 && key.ch != 224; }

}  // namespace tui_detail

void SetClearOnFirstKey(bool on) { g_clearOnFirstKey = on; }
bool ClearOnFirstKey() { return g_clearOnFirstKey; }

bool EndsEdit(int endMode, unsigned char code) {
  if (endMode < 0 || endMode > 6) return true;
  switch (code) {
    case 13: case kCodeF1: return true;
    case kCodeEsc: return endMode >= 1;
    case 242: case 250: return endMode >= 2;
    case 238: return endMode >= 3;
    case 230: return endMode == 4;
    case 233: return endMode == 5;
    case 231: return endMode == 6;
    default: return false;
  }
}

ShortText FieldMask(int mode, unsigned char fill, int width) {
  ShortText mask;
  for (int p = 1; p <= width && p <= kEditMaxWidth; ++p) {
    unsigned char sep = IsFixed(mode) ? SeparatorAt(mode, p) : 0;
    mask += static_cast<char>(sep ? sep : fill);
  }
  return mask;
}

void DrawMask(int mode, unsigned char fill, int width) {
  int x = WhereX(), y = WhereY();
  WriteAt(x, y, FieldMask(mode, fill, width));
  GotoXY(x, y);
}

unsigned char EditField(int mode, int endMode, unsigned char fill, int width, ShortText& text, unsigned char& key) {
  Field f;
  f.mode = mode >= 1 && mode <= 16 ? mode : 1;
  f.fill = fill;
  f.width = width < 1 ? 1 : (width > kEditMaxWidth ? kEditMaxWidth : width);
  f.x = WhereX();
  f.y = WhereY();
  SetText(f, text);
  if (g_clearOnFirstKey) (void)PushKeyFront(kCodeClear, 14);
  for (;;) {
    Render(f);
    KeyPair k = ReadKeyEdit();
    key = KeyCodeOf(k);
    Typed typed = TypesByte(k) ? TypeByte(f, k.ch) : Typed::kRefused;
    if (typed == Typed::kTaken || (!TypesByte(k) && EditKey(f, key))) continue;
    if (typed == Typed::kEnds || (!TypesByte(k) && EndsEdit(endMode, key))) break;
    Beep(1000);
  }
  Render(f);
  text = ResultText(f);
  return key;
}

unsigned char EditFieldChecked(int mode, int endMode, unsigned char fill, int width, const ShortText& text,
                               unsigned char& key, ShortText& out) {
  if (mode == 1) mode = 8;
  int x = WhereX(), y = WhereY();
  out = text;
  for (;;) {
    GotoXY(x, y);
    EditField(mode, endMode, fill, width, out, key);
    if (mode != 7 || key == 230) return key;
    int w = width > kEditMaxWidth ? kEditMaxWidth : width;
    if (out.Length() == w && out.At(3) == '-' && out.At(6) == '-') return key;
    unsigned char attr = CurrentAttr();
    bool accepted = MessageBox("Taka data jest niepoprawna. Czy tak ma być ?"_mz, 1);
    TextAttr(attr);
    if (accepted) return key;
  }
}
