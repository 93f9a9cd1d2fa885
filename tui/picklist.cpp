// PickList and PickListFile: one choice out of numbered rows, in boxes of at
// most 21 rows; Down past a box's last row opens the box that goes on.
#include "tui/picklist.h"

#include "base/codepage.h"
#include "base/mazovia.h"
#include "base/text.h"
#include "tui/keyboard.h"
#include "tui/msgbox.h"
#include "tui/picklist_detail.h"
#include "tui/term.h"

namespace {

using tui_detail::ListBox;
using tui_detail::ListBoxSpec;

constexpr unsigned char kBarAttr = 0x30;
constexpr unsigned char kCapLead = 0xCF;
constexpr char kHelpMark = 7;

// Key-cap index of a choice: 1..9 their digit, 10 the digit 0, 11..26 the letters A..P.
int CapIndexOf(int choice) {
  if (choice >= 1 && choice <= 9) return choice;
  if (choice == 10) return 0;
  if (choice <= 26) return choice - 1;
  return -1;
}

// The choice a typed key stands for; 0 for none.
int ChoiceOfKey(unsigned char ch) {
  ch = MazUpCase(ch);
  if (ch >= '1' && ch <= '9') return ch - '0';
  if (ch == '0') return 10;
  if (ch >= 'A' && ch <= 'P') return ch - 'A' + 11;
  return 0;
}

struct List {
  std::vector<ShortText> rows;  // key-cap, blank, option padded to the widest
  ShortText title, help;
  int16_t endMode = 0;
  uint8_t column = 0, row = 0;
  unsigned char attr = 0x07;
  int perBox = kPickRowsPerBox;
  int bar = 0;    // index of the row under the bar
  int page = -1;  // box on the screen
  ListBox box;
  const PickListHooks* hooks = nullptr;
};

List BuildList(const std::vector<ShortText>& choices, const ShortText& title, int16_t endMode) {
  List l;
  l.endMode = endMode;
  l.title = BeforeFirst(title, kHelpMark);
  if (title.Pos(kHelpMark) > 0) l.help = title.Copy(title.Pos(kHelpMark) + 1, 255);
  int widest = 0;
  for (const ShortText& c : choices)
    if (c.Length() > widest) widest = c.Length();
  for (int i = 0; i < static_cast<int>(choices.size()); ++i) {
    ShortText r;
    int cap = CapIndexOf(i + 1);
    r += static_cast<char>(cap < 0 ? ' ' : kCapLead);
    r += static_cast<char>(cap < 0 ? ' ' : DigitCap(cap));
    r += ' ';
    r += PadRight(choices[i], ShortText(" "), widest);
    l.rows.push_back(r);
  }
  return l;
}

ShortText EscHint(const List& l) {
  return l.endMode == 1 || l.endMode == 2 ? "╤╥û - rezygnacja z wybierania"_mz : ShortText();
}

int RowCount(const List& l) { return static_cast<int>(l.rows.size()); }

// Opens the box of the bar's row when another box is on the screen, and
// draws the rows of the box with the bar.
void Show(List& l, tui_detail::ScreenKeeper& keeper) {
  int page = l.bar / l.perBox;
  if (page != l.page) {
    if (l.page >= 0) keeper.Repaint();
    ListBoxSpec layout;
    layout.title = page == 0 ? l.title : "Wybierz dalej:"_mz;
    layout.hints = EscHint(l);
    layout.rowCount = RowCount(l) - page * l.perBox < l.perBox ? RowCount(l) - page * l.perBox : l.perBox;
    layout.rowWidth = l.rows.empty() ? 0 : l.rows[0].Length();
    layout.attr = l.attr;
    layout.column = l.column;
    layout.row = l.row;
    l.box = tui_detail::OpenListBox(layout);
    l.page = page;
  }
  int first = page * l.perBox;
  for (int i = first; i < RowCount(l) && i < first + l.perBox; ++i)
    if (i != l.bar) tui_detail::WriteListRow(l.box, i - first + 1, l.rows[i], l.attr);
  tui_detail::WriteListRow(l.box, l.bar - first + 1, l.rows[l.bar], kBarAttr);
}

bool EndsList(const List& l, KeyPair key, unsigned char code) {
  if (code == 13) return true;
  if (l.hooks && l.hooks->endsList && l.hooks->endsList(key)) return true;
  if (code == 27) return l.endMode == 1 || l.endMode == 2;
  return l.endMode == 2 && (code == 245 || code == 247);
}

// Moves the bar for a movement key; false for any other key.
bool MoveBar(List& l, unsigned char code) {
  int last = RowCount(l) - 1;
  switch (code) {
    case 242: l.bar = l.bar > 0 ? l.bar - 1 : 0; return true;
    case 250: l.bar = l.bar < last ? l.bar + 1 : last; return true;
    case 241: l.bar = 0; return true;
    case 249: l.bar = last; return true;
    case 243: l.bar = l.bar >= l.perBox ? (l.bar / l.perBox - 1) * l.perBox : 0; return true;
    case 251: {
      int next = (l.bar / l.perBox + 1) * l.perBox;
      l.bar = next <= last ? next : last;
      return true;
    }
    default: return false;
  }
}

int16_t RunList(List& l, int16_t initial, unsigned char& outCh, unsigned char& outScan) {
  tui_detail::ScreenKeeper keeper;
  l.perBox = tui_detail::RowsThatFit(tui_detail::LineCount(l.title), 0);
  l.bar = initial >= 1 && initial <= RowCount(l) ? initial - 1 : 0;
  for (;;) {
    Show(l, keeper);
    if (l.hooks && l.hooks->barAt) l.hooks->barAt(static_cast<int16_t>(l.bar + 1));
    KeyPair k = ReadKeyUpper();
    unsigned char code = KeyCodeOf(k);
    outCh = k.ch;
    outScan = k.scan;
    if (int chosen = ChoiceOfKey(k.ch); chosen > 0 && chosen <= RowCount(l)) {
      l.bar = chosen - 1;
      Show(l, keeper);
      return static_cast<int16_t>(chosen);
    }
    if (MoveBar(l, code)) continue;
    if (code == 229 && !l.help.Empty()) {
      MessageBox(l.help, 0);
      continue;
    }
    if (EndsList(l, k, code)) return code == 27 ? 0 : static_cast<int16_t>(l.bar + 1);
    Beep(1000);
  }
}

int16_t PickChoices(uint8_t colour, int16_t initial, int16_t endMode, uint8_t column, uint8_t row,
                    const ShortText& title, const std::vector<ShortText>& choices, unsigned char& outCh,
                    unsigned char& outScan, const PickListHooks* hooks = nullptr) {
  List l = BuildList(choices, title, endMode);
  l.hooks = hooks;
  l.attr = PickListAttr(colour);
  l.column = column;
  l.row = row;
  return RunList(l, initial, outCh, outScan);
}

}  // namespace

unsigned char PickListAttr(uint8_t scheme) {
  static constexpr unsigned char kSchemes[] = {0x07, 0x1F, 0x1E, 0x0F, 0x4F, 0x47, 0x4E, 0x0E, 0x6E};
  return scheme < sizeof kSchemes ? kSchemes[scheme] : 0x07;
}

int16_t PickList(uint8_t colour, int16_t initial, int16_t endMode, uint8_t column, uint8_t row,
                 const ShortText& title, const ShortText& options, unsigned char& outCh, unsigned char& outScan) {
  return PickChoices(colour, initial, endMode, column, row, title, tui_detail::SplitChoices(options, kPickMaxChoices),
                     outCh, outScan);
}

int16_t PickListHooked(uint8_t colour, int16_t initial, int16_t endMode, uint8_t column, uint8_t row,
                       const ShortText& title, const std::vector<ShortText>& choices, const PickListHooks& hooks,
                       unsigned char& outCh, unsigned char& outScan) {
  if (choices.empty()) return PickList(colour, initial, endMode, column, row, title, ShortText(), outCh, outScan);
  return PickChoices(colour, initial, endMode, column, row, title, choices, outCh, outScan, &hooks);
}

int16_t PickListFile(uint8_t colour, int16_t initial, int16_t endMode, uint8_t column, uint8_t row,
                     const ShortText& title, const ShortText& fileName, unsigned char& outCh, unsigned char& outScan) {
  return PickChoices(colour, initial, endMode, column, row, title,
                     tui_detail::ReadChoiceLines(fileName, kPickMaxChoices), outCh, outScan);
}
