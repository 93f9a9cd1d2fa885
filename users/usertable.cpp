// The users table: its layout, creation with user 0, and the rows read and
// written through the table layer.
#include <array>

#include "base/dates.h"
#include "base/mazovia.h"
#include "base/platform.h"
#include "base/text.h"
#include "sqltable/dbapp.h"
#include "sqltable/pgnav.h"
#include "sqltable/pgwrite.h"
#include "users/users_detail.h"

namespace {

struct Column {
  const char* name;
  const char* type;
};
// The column list of the table; the position is the field number of userfld.
constexpr std::array<Column, userfld::kCount> kColumns = {{
    {"imie", "A20"},           {"nazwisko", "A30"},    {"haslo", "B0"},
    {"upr_max", "S"},          {"uprawnienia", "A13"}, {"data_dopisania", "D"},
    {"data_hasla", "D"},       {"numer", "I"},         {"status", "A1"},
    {"data_wejscia", "D"},     {"czas_wejscia", "A5"}, {"data_wyjscia", "D"},
    {"czas_wyjscia", "A5"},    {"uzytk_sys", "A20"},   {"komputer", "A30"},
}};

constexpr char kRightYes = 'T';
constexpr char kRightNo = 'N';

ShortText RightsText(uint16_t rights) {
  ShortText text;
  for (int i = 0; i < kUserRightCount; ++i) text += (rights >> i) & 1u ? kRightYes : kRightNo;
  return text;
}

uint16_t RightsOf(const ShortText& text) {
  uint16_t rights = 0;
  for (int i = 0; i < kUserRightCount; ++i)
    if (text.At(i + 1) == kRightYes) rights = static_cast<uint16_t>(rights | (1u << i));
  return rights;
}

UserRecord SystemManagerRow() {
  UserRecord u;
  u.number = kSystemManager;
  u.firstName = "Kierownik";
  u.surname = "Systemu";
  u.maxRights = 1;
  u.rights = (1u << kUserRightCount) - 1;
  u.status = "N";
  return u;
}

int16_t CreateBare() {
  std::array<PGName, userfld::kCount> names, types;
  for (int i = 0; i < userfld::kCount; ++i) {
    names[i] = kColumns[i].name;
    types[i] = kColumns[i].type;
  }
  if (int16_t code = PGTblCreate(kUsersTable, userfld::kCount, names.data(), types.data())) return code;
  const int16_t key[] = {userfld::kImie, userfld::kNazwisko};
  if (int16_t code = PGKeyAdd(kUsersTable, 2, key, 0)) return code;
  const int16_t number[] = {userfld::kNumer};
  return PGKeyAdd(kUsersTable, 1, number, 3);  // unique: the number names the directory
}

// Appends user 0 unless its row is there.
int16_t EnsureSystemManager() {
  users_detail::UsersTable t;
  if (t.code()) return t.code();
  const int16_t found = t.SeekNumber(kSystemManager);
  if (found != kPGRecordNotFound) return found;
  if (int16_t code = t.Fill(SystemManagerRow())) return code;
  if (int16_t code = PGPutDate(t.rec(), userfld::kDataDopisania, users_detail::TodaySerial())) return code;
  return PGRecAppend(t.tbl(), t.rec());
}

}  // namespace

namespace users_detail {

UsersTable::UsersTable() {
  code_ = OpenTable(kUsersTable, tbl_, userfld::kNumer);
  if (code_ == 0) code_ = PGRecBufOpen(tbl_, rec_);
}

UsersTable::~UsersTable() {
  if (rec_) (void)PGRecBufClose(rec_);
  if (tbl_) (void)PGTblClose(tbl_);
}

int16_t UsersTable::SeekNumber(int32_t number) {
  if (int16_t code = PGPutLong(rec_, userfld::kNumer, number)) return code;
  return PGSrchFld(tbl_, rec_, userfld::kNumer, 0);
}

int16_t UsersTable::SeekName(const ShortText& firstName, const ShortText& surname) {
  if (int16_t code = PGPutAlpha(rec_, userfld::kImie, firstName)) return code;
  if (int16_t code = PGPutAlpha(rec_, userfld::kNazwisko, surname)) return code;
  return PGSrchKey(tbl_, rec_, 2, 0);
}

int16_t UsersTable::Load() { return LoadRow(tbl_, rec_); }

int16_t UsersTable::Read(UserRecord& u) {
  if (int16_t code = PGRecGet(tbl_, rec_)) return code;
  ShortText rights;
  int16_t code = PGGetAlpha(rec_, userfld::kImie, u.firstName);
  if (!code) code = PGGetAlpha(rec_, userfld::kNazwisko, u.surname);
  if (!code) code = PGGetBlobStr(rec_, userfld::kHaslo, u.password);
  if (!code) code = PGGetShort(rec_, userfld::kUprMax, u.maxRights);
  if (!code) code = PGGetAlpha(rec_, userfld::kUprawnienia, rights);
  if (!code) code = PGGetLong(rec_, userfld::kNumer, u.number);
  if (!code) code = PGGetAlpha(rec_, userfld::kStatus, u.status);
  if (!code) code = PGGetAlpha(rec_, userfld::kUzytkSys, u.osUser);
  if (!code) code = PGGetAlpha(rec_, userfld::kKomputer, u.host);
  u.rights = RightsOf(rights);
  return code;
}

int16_t UsersTable::Fill(const UserRecord& u) {
  int16_t code = PGPutAlpha(rec_, userfld::kImie, u.firstName);
  if (!code) code = PGPutAlpha(rec_, userfld::kNazwisko, u.surname);
  if (!code) code = PGPutBlobStr(rec_, userfld::kHaslo, u.password);
  if (!code) code = PGPutShort(rec_, userfld::kUprMax, u.maxRights);
  if (!code) code = PGPutAlpha(rec_, userfld::kUprawnienia, RightsText(u.rights));
  if (!code) code = PGPutLong(rec_, userfld::kNumer, u.number);
  if (!code) code = PGPutAlpha(rec_, userfld::kStatus, u.status);
  if (!code) code = PGPutAlpha(rec_, userfld::kUzytkSys, u.osUser);
  if (!code) code = PGPutAlpha(rec_, userfld::kKomputer, u.host);
  return code;
}

int16_t LoadRow(int16_t tbl, int16_t rec) {
  if (int16_t code = PGRecGet(tbl, rec)) return code;
  // A row written by other means may hold no date; the server refuses the empty text back.
  for (int fld : {userfld::kDataDopisania, userfld::kDataHasla, userfld::kDataWejscia, userfld::kDataWyjscia}) {
    bool blank = false;
    if (int16_t code = PGFldBlank(rec, fld, blank)) return code;
    if (blank)
      if (int16_t code = PGPutBlank(rec, fld)) return code;
  }
  return kPGOk;
}

int16_t Checked(int16_t code, int16_t acceptedA, int16_t acceptedB) {
  if (code != 0 && code != acceptedA && code != acceptedB) CheckDBError(code);
  return code;
}

int32_t TodaySerial() {
  const ClockReading now = ReadClock();
  return EncodeDaySerial(now.year, now.month, now.day);
}

}  // namespace users_detail

ShortText UserName(const UserRecord& user) {
  return TrimBoth(TrimRightAll(user.firstName, ' ') + " " + TrimRightAll(user.surname, ' '), ' ');
}

bool UserHasRight(const UserRecord& user, UserRight r) {
  const int bit = static_cast<int>(r) - 1;
  return bit >= 0 && bit < kUserRightCount && ((user.rights >> bit) & 1u);
}

ShortText LockedPassword() { return ShortText(std::string_view("\0\0", 2)); }

bool PasswordLocked(const ShortText& stored) { return stored == LockedPassword(); }

int16_t UsersTableCreate() {
  if (int16_t code = CreateBare()) return code;
  return EnsureSystemManager();
}

int16_t UsersTableEnsure() {
  bool exists = false;
  (void)PGTblExist(kUsersTable, exists);
  if (!exists) return UsersTableCreate();
  return EnsureSystemManager();
}

int16_t UsersRead(std::vector<UserRecord>& users) {
  users.clear();
  users_detail::UsersTable t;
  if (t.code()) return t.code();
  for (int16_t code = PGRecFirst(t.tbl()); code != kPGEmptyTable && code != kPGEndOfTable;
       code = PGRecNext(t.tbl())) {
    if (code) return code;
    UserRecord u;
    if (int16_t read = t.Read(u)) return read;
    users.push_back(u);
  }
  return kPGOk;
}

int16_t UserFind(int32_t number, UserRecord& user, bool& found) {
  found = false;
  users_detail::UsersTable t;
  if (t.code()) return t.code();
  const int16_t code = t.SeekNumber(number);
  if (code == kPGRecordNotFound) return kPGOk;
  if (code) return code;
  found = true;
  return t.Read(user);
}

int16_t UserStore(const UserRecord& user, bool& found) {
  found = false;
  users_detail::UsersLock lock;
  users_detail::UsersTable t;
  if (t.code()) return t.code();
  const int16_t code = t.SeekNumber(user.number);
  if (code == kPGRecordNotFound) return kPGOk;
  if (code) return code;
  if (int16_t c = t.Load()) return c;
  if (int16_t c = t.Fill(user)) return c;
  if (int16_t c = PGRecUpdate(t.tbl(), t.rec())) return c;
  found = true;
  lock.Commit();
  return kPGOk;
}
