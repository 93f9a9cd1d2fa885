// The menu bar driven by keys from the key buffer: each time the bar waits
// for a key, the screen's shadow is read and the next key of a script is
// pushed. Checked: which heading is marked, the list under it, the
// explanation on row 25, and the boxes of the entries' operations.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "app/menu.h"
#include "tui/keyboard.h"
#include "tui/screen.h"
#include "tui/tui_fixture.h"

namespace {

// What the screen showed when the bar waited for a key.
struct Seen {
  int markedColumn = 0;  // first column of row 1 in the marked heading's attribute
  std::string bottom;    // row 25
  std::string screen;    // all rows
};

std::vector<KeyPair> gScript;
std::size_t gNext = 0;
std::vector<Seen> gSeen;

void LookAndPushNextKey() {
  Seen seen;
  const ShortText attrs = RowAttrs(1);
  for (int col = 1; col <= kScreenCols && seen.markedColumn == 0; ++col)
    if (attrs.At(col) == kMenuHeadingAttr) seen.markedColumn = col;
  seen.bottom = RowText(kMenuExplanationRow).Str();
  for (int row = 1; row <= kScreenRows; ++row) seen.screen += RowText(row).Str() + "\n";
  gSeen.push_back(seen);
  if (gNext < gScript.size()) PushKey(gScript[gNext].ch, gScript[gNext].scan);
  ++gNext;
}

class MenuTest : public tui_test::TuiTest {
 protected:
  void SetUp() override {
    TuiTest::SetUp();
    gScript.clear();
    gSeen.clear();
    gNext = 0;
    SetKeyIdleHook(LookAndPushNextKey);
  }
  void TearDown() override {
    SetKeyIdleHook(nullptr);
    TuiTest::TearDown();
  }
  // Runs the bar on a script of keys that must end it with Esc.
  void Run(MenuKind kind, std::vector<KeyPair> script) {
    gScript = std::move(script);
    MenuBar(kind, state_);
    EXPECT_EQ(gNext, gScript.size()) << "the bar ended before its script did";
  }
  AppState state_;
};

std::string Padded(const ShortText& text) {
  std::string s = text.Str();
  s.resize(kScreenCols, ' ');
  return s;
}

// After each key: the heading marked and the entry (1-based) under the list's bar.
struct Step {
  KeyPair key;
  int heading;
  int entry;
};

void ExpectWalk(MenuKind kind, const std::vector<Step>& steps) {
  const MenuBarDef& bar = MenuBarOf(kind);
  ASSERT_EQ(gSeen.size(), steps.size() + 1);
  for (std::size_t i = 0; i < gSeen.size(); ++i) {
    const int heading = i == 0 ? 0 : steps[i - 1].heading;
    const int entry = i == 0 ? 1 : steps[i - 1].entry;
    const MenuHeading& h = bar.headings[static_cast<std::size_t>(heading)];
    SCOPED_TRACE("after key " + std::to_string(i) + "\n" + gSeen[i].screen);
    EXPECT_EQ(gSeen[i].markedColumn, MenuHeadingColumn(bar, heading) - 1);
    EXPECT_EQ(gSeen[i].screen.substr(0, 80).substr(0, bar.bar.Length()), bar.bar.Str());
    EXPECT_EQ(gSeen[i].bottom, Padded(h.entries[static_cast<std::size_t>(entry - 1)].explanation));
    for (const MenuEntry& e : h.entries) EXPECT_NE(gSeen[i].screen.find(" " + e.text.Str()), std::string::npos);
  }
}

std::vector<KeyPair> KeysOf(const std::vector<Step>& steps) {
  std::vector<KeyPair> keys;
  for (const Step& s : steps) keys.push_back(s.key);
  keys.push_back(keys::kEsc);
  return keys;
}

TEST_F(MenuTest, WarehouseBarWalksHeadingsAndRemembersEachListsRow) {
  const std::vector<Step> steps = {
      {keys::kDown, 0, 2},     {keys::kRight, 1, 1}, {keys::F(5), 3, 1}, {keys::kEnd, 3, 8},
      {keys::kRight, 4, 1},    {keys::kEnd, 4, 10},  {keys::kRight, 0, 2},  // wraps to the first, its row kept
      {keys::kLeft, 4, 10},    {keys::F(4), 2, 1},   {keys::F(2), 0, 2},    {keys::kHome, 0, 1},
      {keys::F(3), 1, 1},      {keys::kUp, 1, 1},
  };
  Run(MenuKind::kWarehouse, KeysOf(steps));
  ExpectWalk(MenuKind::kWarehouse, steps);
}

TEST_F(MenuTest, BookBarHasTwoHeadingsAndIgnoresTheOtherKeys) {
  const std::vector<Step> steps = {
      {keys::F(3), 1, 1}, {keys::kRight, 0, 1}, {keys::F(4), 0, 1}, {keys::F(6), 0, 1}, {keys::kLeft, 1, 1},
  };
  Run(MenuKind::kBook, KeysOf(steps));
  ExpectWalk(MenuKind::kBook, steps);
}

TEST_F(MenuTest, BothBarsFillRowOneWithEscAtTheSamePlace) {
  for (MenuKind kind : {MenuKind::kWarehouse, MenuKind::kBook}) {
    const MenuBarDef& bar = MenuBarOf(kind);
    DrawMenuBar(bar, 0);
    EXPECT_EQ(RowText(1).Str(), Padded(bar.bar));
    EXPECT_EQ(bar.bar.Pos("\xD1\xD2\x96"), 68);
    for (std::size_t h = 0; h < bar.headings.size(); ++h)
      EXPECT_EQ(bar.bar.Pos(bar.headings[h].name.View()), MenuHeadingColumn(bar, static_cast<int>(h)) + 3);
  }
}

// Entries run their operation; its box stands on the screen at the next key.
struct OperationCase {
  const char* name;
  std::vector<KeyPair> keys;  // from the first heading, ending in the entry's choice
  int32_t warehouse;
  bool special;
  ShortText box;
  KeyPair close = keys::kEnter;  // the key that closes the box
};

TEST_F(MenuTest, EntriesRunTheirOperationAndComeBackToTheirList) {
  const std::vector<OperationCase> cases = {
      {"document entry without a warehouse", {{'1', 2}}, 0, false, kNoWarehouseText},
      {"document entry in a special warehouse", {keys::kDown, keys::kEnter}, 7, true, kSpecialWarehouseText},
      {"cash entry without a warehouse", {keys::F(4), keys::kEnter}, 0, false, kNoWarehouseText},
      {"deletion of documents not built yet", {keys::F(6), {'9', 10}}, 7, false, kNotYetAvailableText},
      {"document analyses not built yet", {keys::F(5), {'2', 3}}, 0, false, kNotYetAvailableText},
      {"tenth entry by its key 0", {keys::F(6), {'0', 11}}, 0, false, kNoWarehouseText},  // deposits need a warehouse
      // Inne's seventh entry asks about the operator's fiscal printer; "no" ends it.
      {"fiscal printer entry", {keys::F(6), {'7', 8}}, 0, false, "Czy zmienić ustawienia drukarki fiskalnej ?"_mz,
       {'N', 49}},
  };
  for (const OperationCase& c : cases) {
    SCOPED_TRACE(c.name);
    gSeen.clear();
    gNext = 0;
    state_.warehouse = c.warehouse;
    state_.warehouseSpecial = c.special;
    std::vector<KeyPair> script = c.keys;
    script.push_back(c.close);
    script.push_back(keys::kEsc);
    gScript = script;
    MenuBar(MenuKind::kWarehouse, state_);
    ASSERT_EQ(gSeen.size(), script.size());
    const std::string box = gSeen[c.keys.size()].screen;
    const std::string firstLine = c.box.Str().substr(0, c.box.Str().find('@'));
    EXPECT_NE(box.find(firstLine), std::string::npos) << box;
    // Back in the list, on the entry that ran, the box gone.
    const Seen& after = gSeen.back();
    EXPECT_EQ(after.screen.find(firstLine), std::string::npos) << after.screen;
  }
}

}  // namespace
