// The menu bar and its drop-down lists.
#include "app/menu.h"

#include <vector>

#include "base/text.h"
#include "tui/keyboard.h"
#include "tui/picklist.h"
#include "tui/screen.h"
#include "tui/term.h"

namespace {

constexpr uint8_t kListColour = 1;  // 0x1F, as the marked heading
constexpr int16_t kEndsByArrows = 2;
constexpr unsigned char kFunctionCapLead = 0xD7;
constexpr unsigned char kCodeLeft = 245;
constexpr unsigned char kCodeRight = 247;

// The heading (0-based) that a function key opens on this bar; -1 for any other key.
int HeadingOfKey(const MenuBarDef& bar, KeyPair key) {
  if (key.ch != 0) return -1;
  for (std::size_t i = 0; i < bar.headings.size(); ++i)
    if (key == keys::F(bar.headings[i].functionKey)) return static_cast<int>(i);
  return -1;
}

std::vector<ShortText> ChoicesOf(const MenuHeading& heading) {
  std::vector<ShortText> choices;
  for (const MenuEntry& entry : heading.entries) choices.push_back(entry.text);
  return choices;
}

// Writes on row 25 over whatever window the list has narrowed, and gives the
// list back its window, cursor and attribute.
void WriteExplanation(const ShortText& text) {
  const uint16_t windowMin = WindowMinPacked(), windowMax = WindowMaxPacked();
  const int x = WhereX(), y = WhereY();
  const unsigned char attr = CurrentAttr();
  Window(1, 1, kScreenCols, kScreenRows);
  TextAttr(kMenuExplanationAttr);
  WriteAt(1, kMenuExplanationRow, PadRight(text, ShortText(" "), kScreenCols));
  WindowPacked(windowMin, windowMax);
  GotoXY(x, y);
  TextAttr(attr);
}

void ClearDesk() {
  Window(1, 1, kScreenCols, kScreenRows);
  TextAttr(kMenuDeskAttr);
  ClearWindow();
}

int Wrapped(int heading, int count) { return (heading % count + count) % count; }

}  // namespace

int MenuHeadingColumn(const MenuBarDef& bar, int heading) {
  ShortText cap;
  cap += static_cast<char>(kFunctionCapLead);
  cap += static_cast<char>(DigitCap(bar.headings[static_cast<std::size_t>(heading)].functionKey));
  return bar.bar.Pos(cap.View());
}

void DrawMenuBar(const MenuBarDef& bar, int heading) {
  Window(1, 1, kScreenCols, kScreenRows);
  TextAttr(kMenuBarAttr);
  WriteAt(1, 1, PadRight(bar.bar, ShortText(" "), kScreenCols));
  const MenuHeading& h = bar.headings[static_cast<std::size_t>(heading)];
  // The marked heading: a blank, its key-cap, a blank, its name and a blank.
  const int column = MenuHeadingColumn(bar, heading);
  TextAttr(kMenuHeadingAttr);
  WriteAt(column - 1, 1, bar.bar.Copy(column - 1, h.name.Length() + 4));
}

MenuListEnd MenuList(const MenuBarDef& bar, int heading, int16_t initial) {
  const MenuHeading& h = bar.headings[static_cast<std::size_t>(heading)];
  PickListHooks hooks;
  hooks.endsList = [&bar](KeyPair key) { return HeadingOfKey(bar, key) >= 0; };
  hooks.barAt = [&h](int16_t choice) {
    if (choice >= 1 && choice <= static_cast<int16_t>(h.entries.size()))
      WriteExplanation(h.entries[static_cast<std::size_t>(choice - 1)].explanation);
  };
  unsigned char ch = 0, scan = 0;
  // The box's frame starts under the heading's key-cap, on row 2.
  const int16_t choice = PickListHooked(kListColour, initial, kEndsByArrows,
                                        static_cast<uint8_t>(MenuHeadingColumn(bar, heading) - 1), 1, h.name,
                                        ChoicesOf(h), hooks, ch, scan);
  const KeyPair key{ch, scan};
  if (choice == 0) return {MenuListEnd::kEsc, 0, heading};
  if (const int jump = HeadingOfKey(bar, key); jump >= 0) return {MenuListEnd::kJump, choice, jump};
  switch (KeyCodeOf(key)) {
    case kCodeLeft: return {MenuListEnd::kPrevious, choice, heading};
    case kCodeRight: return {MenuListEnd::kNext, choice, heading};
    default: return {MenuListEnd::kChosen, choice, heading};
  }
}

void MenuBar(MenuKind kind, AppState& state) {
  const MenuBarDef& bar = MenuBarOf(kind);
  const int count = static_cast<int>(bar.headings.size());
  std::vector<int16_t> lastChoice(bar.headings.size(), 1);  // each list opens where it was left
  int heading = 0;
  ClearDesk();
  for (;;) {
    DrawMenuBar(bar, heading);
    const MenuListEnd end = MenuList(bar, heading, lastChoice[static_cast<std::size_t>(heading)]);
    if (end.kind == MenuListEnd::kEsc) return;
    lastChoice[static_cast<std::size_t>(heading)] = end.choice;
    switch (end.kind) {
      case MenuListEnd::kPrevious: heading = Wrapped(heading - 1, count); break;
      case MenuListEnd::kNext: heading = Wrapped(heading + 1, count); break;
      case MenuListEnd::kJump: heading = end.heading; break;
      default:
        RunMenuOp(bar.headings[static_cast<std::size_t>(heading)].entries[static_cast<std::size_t>(end.choice - 1)].op,
                  state);
    }
  }
}
