// The copy of the users list in "dane\uzytkown\uzytkown.dbf" for the tools
// that run without the database. The password stays out of it: the file is
// readable by every program of the firm.
#include <array>
#include <string>
#include <vector>

#include "base/mazovia.h"
#include "exchange/dbf/dbf.h"
#include "tui/msgbox.h"
#include "users/users.h"
#include "users/users_detail.h"

namespace {

constexpr const char* kCopyPath = "dane\\uzytkown\\uzytkown.dbf";

// The columns of the copy, in this order.
const std::array<DbfFieldSpec, 8> kCopyFields = {{
    {"NUMER", 'N', 10, 0},
    {"IMIE", 'C', 20, 0},
    {"NAZWISKO", 'C', 30, 0},
    {"UPR_MAX", 'N', 6, 0},
    {"UPRAWN", 'C', kUserRightCount, 0},
    {"STATUS", 'C', 1, 0},
    {"UZYTK_SYS", 'C', 20, 0},
    {"KOMPUTER", 'C', 30, 0},
}};

ShortText RightsColumn(const UserRecord& u) {
  ShortText text;
  for (int r = 1; r <= kUserRightCount; ++r) text += UserHasRight(u, static_cast<UserRight>(r)) ? 'T' : 'N';
  return text;
}

// One record of the copy; false when the writer refused it.
bool AppendUser(DbfFile& dbf, const UserRecord& u) {
  DbfBlankRecord(dbf);
  const ShortText values[] = {ShortText(std::to_string(u.number)), u.firstName, u.surname,
                              ShortText(std::to_string(u.maxRights)), RightsColumn(u), u.status, u.osUser, u.host};
  for (int i = 0; i < static_cast<int>(kCopyFields.size()); ++i)
    if (DbfPutField(dbf, i + 1, values[i]) != 0) return false;
  return DbfAppendRecord(dbf) == 0;
}

}  // namespace

bool UsersWriteDbfCopy() {
  std::vector<UserRecord> users;
  users_detail::Checked(UsersRead(users));
  DbfFile dbf;  // the new copy takes the name only when complete; a failure keeps the old one
  bool ok = DbfCreate(dbf, kCopyPath, kCopyFields) == 0;
  for (const UserRecord& u : users) ok = ok && AppendUser(dbf, u);
  if (dbf.IsOpen()) ok = DbfClose(dbf) == 0 && ok;
  if (!ok) MessageBox("Nie można otworzyć pliku kopii listy użytkowników !"_mz, 0);
  return ok;
}
