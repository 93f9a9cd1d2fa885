// A screenful of a long ordered list that is read by keys: the rows shown,
// the bar among them, and the moves of a list screen (a row, a page, the
// two ends), each reading only the rows it needs through the list's own read
// function. The list's screens draw Rows() and act on Current().
#pragma once

#include <functional>
#include <utility>
#include <vector>

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
