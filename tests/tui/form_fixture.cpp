#include "form_fixture.h"

#include <unistd.h>

#include "tui/keydecode.h"

namespace form_test {

namespace {

// Steps of keys and the screens seen before each.
struct Script {
  std::vector<std::vector<KeyPair>> steps;
  std::vector<Snapshot> seen;
};

Script g_script;
std::size_t g_next = 0;

void NextStep() {
  g_script.seen.push_back(Capture());
  if (g_next >= g_script.steps.size()) {
    SetKeyIdleHook(nullptr);
    return;
  }
  for (KeyPair k : g_script.steps[g_next++]) (void)PushKey(k.ch, k.scan);
}

}  // namespace

int Snapshot::RowOf(std::string_view text) const {
  for (int r = 1; r <= 25; ++r)
    if (rows[r].Pos(text) > 0) return r;
  return 0;
}

int Snapshot::RowsWith(std::string_view text) const {
  int count = 0;
  for (int r = 1; r <= 25; ++r) count += rows[r].Pos(text) > 0;
  return count;
}

Snapshot Capture() {
  Snapshot s;
  for (int r = 1; r <= 25; ++r) {
    s.rows[r] = RowText(r);
    s.attrs[r] = RowAttrs(r);
  }
  s.window = CurrentWindow();
  s.x = WhereX();
  s.y = WhereY();
  s.attr = CurrentAttr();
  return s;
}

void ExpectCells(const Snapshot& s, const std::vector<Cell>& cells) {
  for (const Cell& cell : cells) {
    EXPECT_EQ(s.Cells(cell.row, cell.col, static_cast<int>(cell.text.size())), cell.text) << cell.row << "," << cell.col;
    if (cell.attr >= 0) {
      EXPECT_EQ(s.Attr(cell.col, cell.row), cell.attr) << cell.row << "," << cell.col;
    }
  }
}

void Play(std::vector<std::vector<KeyPair>> steps) {
  g_script = Script{std::move(steps), {}};
  g_next = 0;
  SetKeyIdleHook(NextStep);
}

const std::vector<Snapshot>& Seen() { return g_script.seen; }

std::vector<KeyPair> Keys(const std::string& text, std::vector<KeyPair> after) {
  std::vector<KeyPair> keys;
  for (unsigned char c : text) keys.push_back(KeyOfByte(c));
  keys.insert(keys.end(), after.begin(), after.end());
  return keys;
}

void FormTest::SetUp() {
  TuiTest::SetUp();
  tui_test::InitTerminal("linux");  // special font: the bytes on the screen stay as drawn
  ClipboardSet(ShortText());
}

void FormTest::TearDown() {
  SetKeyIdleHook(nullptr);
  KeyboardReset();
  TuiTest::TearDown();
  TermInputFromFd(STDIN_FILENO);  // later tests in this process read the terminal again
}

}  // namespace form_test
