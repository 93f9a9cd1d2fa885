// The keyed pager over a list held in memory: each move is checked by the
// first row shown, the bar and the row under it, against positions the test
// counts itself; rows removed under the screen are met by Reload.
#include "tui/pagedrows.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

#include "base/expect_rows.h"

namespace {

using test_rows::ExpectRows;

struct Key {
  bool set = false;
  bool inclusive = false;
  int value = 0;
};

// Rows 1..n in ascending order, read as the database lists read them.
class Numbers {
 public:
  explicit Numbers(int n) {
    for (int i = 1; i <= n; ++i) rows.push_back(i);
  }
  bool Read(const Key& from, bool forward, int limit, std::vector<int>& out) const {
    out.clear();
    const auto beyond = [&](int v) { return forward ? v > from.value : v < from.value; };
    for (int v : rows)
      if (!from.set || beyond(v) || (from.inclusive && v == from.value)) out.push_back(v);
    // Reading backwards keeps the rows nearest the key: the last ones.
    const int extra = static_cast<int>(out.size()) - limit;
    if (extra > 0) out.erase(forward ? out.end() - extra : out.begin(), forward ? out.end() : out.begin() + extra);
    return true;
  }
  std::vector<int> rows;
};

PagedRows<int, Key> Pager(const Numbers& list, int height) {
  return PagedRows<int, Key>(
      height, [&list](const Key& k, bool f, int l, std::vector<int>& r) { return list.Read(k, f, l, r); },
      [](const int& v) { return Key{true, false, v}; });
}

enum class Move { kHome, kEnd, kDown, kUp, kPgDn, kPgUp };

struct Case {
  const char* name;
  int rows;
  std::vector<Move> moves;
  int first;    // first row shown afterwards (0: none)
  int current;  // the row under the bar
  bool lastMoved;
};

TEST(PagedRowsTest, MovesShowTheRowsTheirPositionsGive) {
  const Case cases[] = {
      {"bar down inside the screen", 30, {Move::kHome, Move::kDown, Move::kDown}, 1, 3, true},
      {"up from the end", 30, {Move::kHome, Move::kPgDn, Move::kPgUp, Move::kEnd, Move::kUp}, 21, 29, true},
      {"down at the edge scrolls one row", 30, {Move::kHome, Move::kPgDn, Move::kPgUp, Move::kDown}, 2, 11, true},
      {"down at the list's end stays", 10, {Move::kEnd, Move::kDown}, 1, 10, false},
      {"page down whole", 30, {Move::kHome, Move::kPgDn}, 11, 11, true},
      {"page down near the end: the last screenful", 25, {Move::kHome, Move::kPgDn, Move::kPgDn}, 16, 25, true},
      {"page up near the start: the first screenful", 25, {Move::kEnd, Move::kPgUp, Move::kPgUp}, 1, 1, true},
      {"up at the first row stays", 25, {Move::kHome, Move::kUp}, 1, 1, false},
      {"end of a short list", 4, {Move::kEnd}, 1, 4, true},
      {"an empty list", 0, {Move::kHome, Move::kDown, Move::kPgDn}, 0, 0, false},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    const Numbers list(c.rows);
    PagedRows<int, Key> pager = Pager(list, 10);
    bool moved = true;
    for (Move m : c.moves) {
      switch (m) {
        case Move::kHome: pager.Home(); moved = true; break;
        case Move::kEnd: pager.End(); moved = true; break;
        case Move::kDown: moved = pager.Step(true); break;
        case Move::kUp: moved = pager.Step(false); break;
        case Move::kPgDn: moved = pager.Page(true); break;
        case Move::kPgUp: moved = pager.Page(false); break;
      }
    }
    EXPECT_EQ(pager.Rows().empty() ? 0 : pager.Rows().front(), c.first);
    EXPECT_EQ(pager.Current() ? *pager.Current() : 0, c.current);
    EXPECT_EQ(moved, c.lastMoved);
    EXPECT_LE(static_cast<int>(pager.Rows().size()), 10);
  }
}

TEST(PagedRowsTest, ReloadKeepsTheScreenAndTheBarOrFallsBack) {
  Numbers list(30);
  PagedRows<int, Key> pager = Pager(list, 10);
  pager.Home();
  ASSERT_TRUE(pager.Page(true));
  ASSERT_TRUE(pager.Step(true));  // 11..20, the bar on 12
  list.rows.erase(std::find(list.rows.begin(), list.rows.end(), 15));
  pager.Reload();
  ExpectRows<int>({{pager.Rows().front(), 11}, {*pager.Current(), 12}, {pager.Rows().back(), 21}});
  // Everything from the screen on is gone: the list starts again from the top.
  list.rows.resize(5);
  pager.Reload();
  ExpectRows<int>({{pager.Rows().front(), 1}, {*pager.Current(), 2}});
}

}  // namespace
