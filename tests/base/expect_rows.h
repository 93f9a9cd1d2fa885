// Tables of results: each row holds what the code gave and what it must give,
// so that a run of checks on like inputs stays one short table.
#pragma once

#include <gtest/gtest.h>

#include <initializer_list>

namespace test_rows {

template <class T>
struct Row {
  T got;
  T want;
};

// Checks every row; a failure names the row by its place in the table.
template <class T>
void ExpectRows(std::initializer_list<Row<T>> rows) {
  int place = 0;
  for (const Row<T>& r : rows) {
    EXPECT_EQ(r.got, r.want) << "row " << place;
    ++place;
  }
}

}  // namespace test_rows
