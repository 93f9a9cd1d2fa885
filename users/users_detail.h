// Inside the users module: the open users table with a record buffer, the
// locked transaction of a change, and the row <-> buffer copies. Other
// folders use users.h only.
#pragma once

#include <cstdint>

#include "base/shorttext.h"
#include "sqltable/dbapp.h"
#include "tui/screen.h"
#include "users/users.h"

namespace users_detail {

// The users table open in number order with one record buffer; both are
// released on every path. code() is the first failure, 0 when open.
class UsersTable {
 public:
  UsersTable();
  ~UsersTable();
  UsersTable(const UsersTable&) = delete;
  UsersTable& operator=(const UsersTable&) = delete;

  int16_t code() const { return code_; }
  int16_t tbl() const { return tbl_; }
  int16_t rec() const { return rec_; }
  // Places the table on the row of the number: 0, 89 when there is none, or a failure.
  [[nodiscard]] int16_t SeekNumber(int32_t number);
  // Places it on the row of the name (first name and surname): 0, 89 or a failure.
  [[nodiscard]] int16_t SeekName(const ShortText& firstName, const ShortText& surname);
  // The current row into the buffer, ready to be written back.
  [[nodiscard]] int16_t Load();
  // The current row into user.
  [[nodiscard]] int16_t Read(UserRecord& user);
  // user into the buffer, every field.
  [[nodiscard]] int16_t Fill(const UserRecord& user);

 private:
  int16_t tbl_ = 0;
  int16_t rec_ = 0;
  int16_t code_ = 0;
};

// The exclusive lock of the users table and its transaction: rolled back
// and released unless Commit() ran.
class UsersLock : public ExclusiveTableLock {
 public:
  UsersLock() : ExclusiveTableLock(kUsersTable) {}
};

// The screen, window, cursor and attribute put back when a box or list is done.
using BoxKeeper = ScreenKeeper;

// The current row of the users table into the buffer, ready to be written back.
[[nodiscard]] int16_t LoadRow(int16_t tbl, int16_t rec);
// Ends with CheckDBError unless the code is 0 or one of the two accepted ones.
int16_t Checked(int16_t code, int16_t acceptedA = 0, int16_t acceptedB = 0);
// The day serial of today.
int32_t TodaySerial();

}  // namespace users_detail
