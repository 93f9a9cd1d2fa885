// EditLine: a text longer than its field, shown through a window that
// scrolls with the cursor.
#include "base/codepage.h"
#include "tui/editfield.h"
#include "tui/editkeys_detail.h"
#include "tui/keyboard.h"
#include "tui/msgbox.h"
#include "tui/screen.h"

namespace {

using namespace tui_detail;

struct Line {
  ShortText text;
  int maxLength = kEditLineMaxLength;
  int width = 1;
  unsigned char fill = ' ';
  int pos = 1;     // cursor in the text, 1..length + 1
  int offset = 0;  // bytes of the text scrolled out on the left
  int x = 1, y = 1;
};

void Scroll(Line& l) {
  if (l.pos - 1 < l.offset) l.offset = l.pos - 1;
  if (l.pos - l.offset > l.width) l.offset = l.pos - l.width;
}

void Render(Line& l) {
  Scroll(l);
  ShortText shown = l.text.Copy(l.offset + 1, l.width);
  for (int i = shown.Length(); i < l.width; ++i) shown += static_cast<char>(l.fill);
  WriteAt(l.x, l.y, shown);
  WindowRect w = CurrentWindow();
  int col = l.x + l.pos - l.offset - 1;
  GotoXY(col > w.right - w.left + 1 ? w.right - w.left + 1 : col, l.y);
}

void Type(Line& l, unsigned char c, bool capitals) {
  if (l.text.Length() >= l.maxLength) return Beep(1000);
  if (capitals) c = MazUpCase(c);
  l.text.Insert(std::string_view(reinterpret_cast<const char*>(&c), 1), l.pos);
  ++l.pos;
}

// Acts on an editing key; false when the key does not edit.
bool EditKey(Line& l, unsigned char code) {
  switch (code) {
    case kCodeLeft: if (l.pos > 1) --l.pos; return true;
    case kCodeRight: if (l.pos <= l.text.Length()) ++l.pos; return true;
    case kCodeHome: l.pos = 1; return true;
    case kCodeEnd: l.pos = l.text.Length() + 1; return true;
    case kCodeDel: l.text.Delete(l.pos, 1); return true;
    case kCodeBackspace:
      if (l.pos > 1) l.text.Delete(--l.pos, 1);
      return true;
    case kCodeClear: l.text.Clear(); l.pos = 1; return true;
    case kCodeCopy: ClipboardCopy(l.text, kLineClipboardMs); return true;
    case kCodePaste:
      l.text = ClipboardText().Copy(1, l.maxLength);
      l.pos = l.text.Length() + 1;
      return true;
    default: return false;
  }
}

}  // namespace

unsigned char EditLine(bool capitals, int endMode, unsigned char fill, int visibleWidth, int maxLength,
                       const ShortText& text, unsigned char& key, ShortText& out) {
  Line l;
  l.width = visibleWidth < 1 ? 1 : (visibleWidth > kEditMaxWidth ? kEditMaxWidth : visibleWidth);
  l.maxLength = maxLength < 1 ? 1 : (maxLength > kEditLineMaxLength ? kEditLineMaxLength : maxLength);
  l.fill = fill;
  l.text = text.Copy(1, l.maxLength);
  l.pos = l.text.Length() + 1;
  l.x = WhereX();
  l.y = WhereY();
  for (;;) {
    Render(l);
    KeyPair k = ReadKeyEdit();
    key = KeyCodeOf(k);
    if (TypesByte(k)) Type(l, k.ch, capitals);
    else if (EditKey(l, key)) continue;
    else if (EndsEdit(endMode, key)) break;
    else Beep(1000);
  }
  out = key == kCodeEsc ? text : l.text;
  l.text = out.Copy(1, l.maxLength);
  l.pos = l.pos > l.text.Length() + 1 ? l.text.Length() + 1 : l.pos;
  Render(l);
  return key;
}
