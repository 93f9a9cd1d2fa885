// Key scripts for lists and forms: keys are given in steps; whenever the
// program wants a key and the buffer is empty, the screen is captured and
// the next step's keys are pushed. After the last step the input ends (Esc).
#pragma once

#include <array>
#include <string>
#include <string_view>
#include <tuple>
#include <vector>

#include "base/mazovia.h"
#include "tui_fixture.h"

namespace form_test {

// Both shadows, the window, the cursor and the attribute.
struct Snapshot {
  std::array<ShortText, 26> rows, attrs;
  WindowRect window;
  int x = 0, y = 0;
  unsigned char attr = 0;
  auto Tie() const { return std::tie(rows, attrs, window.left, window.top, window.right, window.bottom, x, y, attr); }
  bool operator==(const Snapshot& o) const { return Tie() == o.Tie(); }
  // count cells of a row from column first.
  std::string Cells(int row, int first, int count) const {
    return std::string(rows[row].View().substr(first - 1, count));
  }
  unsigned char Attr(int col, int row) const { return attrs[row].At(col); }
  // The first row (1..25) that holds text; 0 when none does.
  int RowOf(std::string_view text) const;
  // How many rows hold text.
  int RowsWith(std::string_view text) const;
};

Snapshot Capture();

// A run of cells that a screen must hold from (row, col), and the attribute of its first cell when given.
struct Cell {
  int row, col;
  std::string text;
  int attr = -1;
};
void ExpectCells(const Snapshot& s, const std::vector<Cell>& cells);

// Runs the steps through the key buffer's idle hook.
void Play(std::vector<std::vector<KeyPair>> steps);
// Seen()[i] is the screen before step i was pushed.
const std::vector<Snapshot>& Seen();
// A step of typed ASCII text followed by keys.
std::vector<KeyPair> Keys(const std::string& text, std::vector<KeyPair> after = {});

class FormTest : public tui_test::TuiTest {
 protected:
  void SetUp() override;
  void TearDown() override;
};

}  // namespace form_test
