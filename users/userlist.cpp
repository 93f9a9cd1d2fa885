// UserList: the selection list of users in its three forms. The rows are
// read afresh before each showing; a row chosen after another process
// removed it is reported and the list is read again.
#include <string>
#include <vector>

#include "base/mazovia.h"
#include "base/text.h"
#include "sqltable/pgconn.h"
#include "tui/keyboard.h"
#include "tui/msgbox.h"
#include "tui/screen.h"
#include "users/users.h"
#include "users/users_detail.h"

namespace {

constexpr int kVisibleRows = 18;
constexpr int kLoginTries = 3;
constexpr unsigned char kBarAttr = 0x30;
constexpr unsigned char kKeyIns = 252, kKeyDel = 253, kKeyF2 = 230, kKeyF3 = 231, kKeyF4 = 232;

ShortText Header(UserListMode mode) {
  switch (mode) {
    case UserListMode::kPartner:
      return "         Wybierz, z którym użytkownikiem sie skomunikujesz:         "_mz;
    case UserListMode::kLogin:
      return "         Wybierz, jako który użytkownik będziesz pracować:          "_mz;
    case UserListMode::kManage:
      break;
  }
  return "                        Lista użytkowników:                         "_mz;
}

const ShortText kColumns = "         imię         ¥            nazwisko            ¥    numer   "_mz;
const ShortText kManageKeys = "Ins-dopisanie Del-usunięcie Enter-dane F2-uprawnienia F3-hasło F4-pliki"_mz;

// A row under the column header: the same widths, "¥" between the columns.
ShortText RowText(const UserRecord& u) {
  const ShortText number(std::to_string(u.number));
  return " " + PadRight(u.firstName, " ", 20) + " ¥ "_mz + PadRight(u.surname, " ", 30) + " ¥ "_mz +
         PadLeft(number, ' ', 10) + " ";
}

// What the operator did in the list.
struct Choice {
  int index = -1;       // the row under the bar, -1 for Esc
  unsigned char code = 0;  // the key code that ended the list
};

bool EndsList(UserListMode mode, unsigned char code) {
  if (code == 13 || code == 27) return true;
  return mode == UserListMode::kManage &&
         (code == kKeyIns || code == kKeyDel || code == kKeyF2 || code == kKeyF3 || code == kKeyF4);
}

// Moves the bar for a movement key; false for any other key.
bool MoveBar(unsigned char code, int count, int& bar) {
  const int last = count - 1;
  switch (code) {
    case 242: bar = bar > 0 ? bar - 1 : 0; return true;
    case 250: bar = bar < last ? bar + 1 : last; return true;
    case 241: bar = 0; return true;
    case 249: bar = last; return true;
    case 243: bar = bar > kVisibleRows ? bar - kVisibleRows : 0; return true;
    case 251: bar = bar + kVisibleRows < last ? bar + kVisibleRows : last; return true;
    default: return false;
  }
}

Choice Browse(UserListMode mode, const std::vector<UserRecord>& users, int& bar) {
  users_detail::BoxKeeper keeper;
  const int count = static_cast<int>(users.size());
  const int shown = count == 0 ? 1 : (count < kVisibleRows ? count : kVisibleRows);
  ShortText text = Header(mode) + "@" + kColumns;
  for (int i = 0; i < shown; ++i) text += '@';
  if (mode == UserListMode::kManage) text += "@" + kManageKeys;
  MessageBox(text, 2);  // the window is the box: title on rows 2 and 3, the users from row 4
  int top = 0;
  for (;;) {
    if (bar >= count) bar = count > 0 ? count - 1 : 0;
    if (bar < top) top = bar;
    if (bar >= top + shown) top = bar - shown + 1;
    for (int i = 0; i < shown; ++i) {
      TextAttr(top + i == bar ? kBarAttr : kAttrBoxBody);
      WriteAt(2, 4 + i, top + i < count ? RowText(users[top + i]) : PadRight("", " ", kColumns.Length()));
    }
    GotoXY(2, 4 + bar - top);
    const unsigned char code = KeyCodeOf(ReadKeyUpper());
    if (MoveBar(code, count, bar)) continue;
    if (!EndsList(mode, code)) {
      Beep(1000);
      continue;
    }
    if (code == 27) return Choice{};
    if (count == 0 && code != kKeyIns) continue;
    return Choice{count == 0 ? -1 : bar, code};
  }
}

void RunManageKey(unsigned char code, int32_t number) {
  switch (code) {
    case kKeyIns: (void)UserAdd(); break;
    case kKeyDel: (void)UserDelete(number); break;
    case kKeyF2: (void)UserEditRights(number); break;
    case kKeyF3: (void)UserChangePassword(number); break;
    case kKeyF4: (void)UserKeepNeededFiles(number); break;
    default: (void)UserEditData(number); break;
  }
}

}  // namespace

int32_t UserList(UserListMode mode) {
  int bar = 0, failures = 0;
  for (;;) {
    std::vector<UserRecord> users;
    users_detail::Checked(UsersRead(users));
    const Choice choice = Browse(mode, users, bar);
    if (choice.code == 0) return kNoUser;
    const int32_t number = choice.index >= 0 ? users[choice.index].number : kNoUser;
    if (mode == UserListMode::kManage) {
      RunManageKey(choice.code, number);
      continue;
    }
    UserRecord fresh;
    bool found = false;
    users_detail::Checked(UserFind(number, fresh, found));
    if (!found) {
      MessageBox(PGErrText(kPGRecordGone), 0);
      continue;
    }
    if (mode == UserListMode::kPartner) return number;
    if (PGPasswordAsk(fresh.password)) {
      SetCurrentUser(fresh);
      return number;
    }
    MessageBox("Błędne hasło !"_mz, 0);
    if (++failures >= kLoginTries) return kNoUser;
  }
}
