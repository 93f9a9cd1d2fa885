// The application's menus: a bar of headings across row 1 (function keys F2
// to F6, Esc at the right), a drop-down list of entries under the heading the
// operator is on, and an explanation of the entry under the list's bar on
// row 25. The menus are data: each entry names the operation it runs
// (app/operations.h), and MenuBar dispatches through that table.
//
// Keys: Up, Down, Home, End and the digit keys move in a list; Enter or a
// digit runs the entry; Left and Right open the neighbouring heading
// (wrapping at the ends); F2..F6 open their heading; Esc leaves the bar.
#pragma once

#include <cstdint>
#include <span>

#include "app/operations.h"
#include "base/shorttext.h"

struct MenuEntry {
  ShortText text;         // the entry as the list shows it after its key-cap
  ShortText explanation;  // one line for row 25
  MenuOp op;              // what the entry runs
};

struct MenuHeading {
  int functionKey;  // 2..6: the key that opens it
  ShortText name;   // as it stands on the bar after its key-cap
  std::span<const MenuEntry> entries;
};

struct MenuBarDef {
  ShortText bar;  // row 1, without the padding to 80 columns
  std::span<const MenuHeading> headings;
};

// Attributes of the bar, the heading the operator is on, the desk under it
// and the explanation row.
inline constexpr unsigned char kMenuBarAttr = 0x70;
inline constexpr unsigned char kMenuHeadingAttr = 0x1F;
inline constexpr unsigned char kMenuDeskAttr = 0x07;
inline constexpr unsigned char kMenuExplanationAttr = 0x70;
// The row of the explanations.
inline constexpr int kMenuExplanationRow = 25;

// The headings, entries and explanations of a bar.
const MenuBarDef& MenuBarOf(MenuKind kind);
// Column of a heading's key-cap on row 1 (1-based).
int MenuHeadingColumn(const MenuBarDef& bar, int heading);

// How a drop-down list ended.
struct MenuListEnd {
  enum Kind : uint8_t { kEsc, kChosen, kPrevious, kNext, kJump };
  Kind kind = kEsc;
  int16_t choice = 0;  // the entry under the bar (1-based); 0 after Esc
  int heading = 0;     // kJump: the heading (0-based) whose key was pressed
};

// The list of one heading under its place on the bar, PickList in end mode 2,
// starting on entry initial; writes each entry's explanation on row 25 while
// the bar stands on it.
MenuListEnd MenuList(const MenuBarDef& bar, int heading, int16_t initial);
// Draws the bar on row 1 with the given heading marked.
void DrawMenuBar(const MenuBarDef& bar, int heading);
// Runs the bar until Esc: clears the desk, opens the first heading, runs the
// chosen entries' operations on state and comes back to their list.
void MenuBar(MenuKind kind, AppState& state);
