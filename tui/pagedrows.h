// A screenful of a long ordered list that is read by keys: the rows shown,
// the bar among them, and the moves of a list screen (a row, a page, the
// two ends), each reading only the rows it needs through the list's own read
// function. The list's screens draw Rows() and act on Current().
#pragma once

#include <functional>
#include <utility>
#include <vector>

#include "base/shorttext.h"
#include "base/text.h"
#include "tui/keyboard.h"
#include "tui/msgbox.h"
#include "tui/screen.h"

template <typename Row, typename Key>
class PagedRows {
 public:
  // Reads up to limit rows after the key's row (forward) or before it
  // (backward; the rows still in list order). Key{} reads from the first row
  // forward or from the last backward. False when the read failed.
  using ReadFn = std::function<bool(const Key& from, bool forward, int limit, std::vector<Row>& rows)>;
  // The key that reads on from a row.
  using KeyOfFn = std::function<Key(const Row& row)>;

  PagedRows(int height, ReadFn read, KeyOfFn keyOf) : height_(height), read_(std::move(read)), keyOf_(std::move(keyOf)) {}

  // A screenful from the key on (forward) or up to it (backward), the bar on its first row.
  void LoadFrom(const Key& key, bool forward) {
    std::vector<Row> rows;
    Read(key, forward, height_, rows);
    rows_ = std::move(rows);
    bar_ = 0;
  }
  void Home() { LoadFrom(Key{}, true); }
  // The last screenful, the bar on its last row.
  void End() {
    LoadFrom(Key{}, false);
    bar_ = Last();
  }
  // The bar a row down or up; at the edge the screenful moves by a row. False at the list's end.
  bool Step(bool down) {
    if (rows_.empty()) return false;
    if (down ? bar_ < Last() : bar_ > 0) {
      bar_ += down ? 1 : -1;
      return true;
    }
    std::vector<Row> more;
    Read(keyOf_(down ? rows_.back() : rows_.front()), down, 1, more);
    if (more.empty()) return false;
    if (down) {
      rows_.erase(rows_.begin());
      rows_.push_back(std::move(more.front()));
    } else {
      rows_.pop_back();
      rows_.insert(rows_.begin(), std::move(more.front()));
    }
    return true;
  }
  // The next (previous) screenful; near the end of the list its last (first) screenful.
  bool Page(bool down) {
    if (rows_.empty()) return false;
    std::vector<Row> more;
    Read(keyOf_(down ? rows_.back() : rows_.front()), down, height_, more);
    if (static_cast<int>(more.size()) < height_) {
      LoadFrom(Key{}, !down);
      bar_ = down ? Last() : 0;
      return true;
    }
    rows_ = std::move(more);
    bar_ = down ? 0 : height_ - 1;
    return true;
  }
  // The move of a list key (KeyCodeOf codes of Up, Down, PgUp, PgDn, Home,
  // End): moved is false at the list's edge. False for any other key.
  bool MoveByKey(unsigned char code, bool& moved) {
    switch (code) {
      case kCodeDown: moved = Step(true); return true;
      case kCodeUp: moved = Step(false); return true;
      case kCodePgDn: moved = Page(true); return true;
      case kCodePgUp: moved = Page(false); return true;
      case kCodeHome: Home(); moved = true; return true;
      case kCodeEnd: End(); moved = true; return true;
      default: return false;
    }
  }

  // The same screenful read again from its first row (after a change), the
  // bar kept where it stood; the first screenful when nothing is left there.
  void Reload() {
    const int bar = bar_;
    LoadFrom(rows_.empty() ? Key{} : Inclusive(keyOf_(rows_.front())), true);
    if (rows_.empty()) LoadFrom(Key{}, true);
    bar_ = bar <= Last() ? bar : 0;
  }

  const std::vector<Row>& Rows() const { return rows_; }
  int Bar() const { return bar_; }
  // The row under the bar; nullptr for an empty list.
  const Row* Current() const { return rows_.empty() ? nullptr : &rows_[static_cast<std::size_t>(bar_)]; }
  // A read failed: the list holds nothing and its screen should end.
  bool Failed() const { return failed_; }

 private:
  static constexpr unsigned char kCodeHome = 241, kCodeUp = 242, kCodePgUp = 243, kCodeEnd = 249, kCodeDown = 250,
                                 kCodePgDn = 251;

  int Last() const { return static_cast<int>(rows_.size()) - 1; }
  static Key Inclusive(Key key) {
    key.inclusive = true;
    return key;
  }
  void Read(const Key& key, bool forward, int limit, std::vector<Row>& rows) {
    if (read_(key, forward, limit, rows)) return;
    rows.clear();
    failed_ = true;
  }

  int height_;
  ReadFn read_;
  KeyOfFn keyOf_;
  std::vector<Row> rows_;
  int bar_ = 0;
  bool failed_ = false;
};

// Draws the screenful on the rows from firstRow, height rows, each row's
// text(row) padded to the screen's width: the bar's row in barAttr, the
// others and the empty rows below them in attr, which stays set.
template <typename Row, typename Key, typename TextFn>
void DrawPagedRows(const PagedRows<Row, Key>& list, int firstRow, int height, TextFn text, unsigned char attr,
                   unsigned char barAttr) {
  const std::vector<Row>& rows = list.Rows();
  for (int i = 0; i < height; ++i) {
    const bool filled = i < static_cast<int>(rows.size());
    TextAttr(filled && i == list.Bar() ? barAttr : attr);
    WriteAt(1, firstRow + i, PadRight(filled ? text(rows[static_cast<std::size_t>(i)]) : ShortText(), " ", kScreenCols));
  }
  TextAttr(attr);
}

// The loop of a full-screen list over the whole screen: the first screenful,
// then draw and a key until Esc; the list keys move the list, any other goes
// to act, and a key that did nothing beeps. A failed read ends the loop after
// readFault. The screen is given back as it was.
template <typename Row, typename Key, typename DrawFn, typename ActFn>
void RunPagedList(PagedRows<Row, Key>& list, DrawFn draw, ActFn act, const ShortText& readFault) {
  const ScreenKeeper keeper;
  Window(1, 1, kScreenCols, kScreenRows);
  list.Home();
  for (;;) {
    if (list.Failed()) return (void)MessageBox(readFault, 0);
    draw();
    const unsigned char code = KeyCodeOf(ReadKeyUpper());
    if (code == 27) return;
    bool done = false;
    if (!list.MoveByKey(code, done)) done = act(code);
    if (!done) Beep(1000);
  }
}
