// Sessions: the mark in the user's row, the lock file, and the login that
// ties them together.
#include "users/session.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <string>

#include "base/codepage.h"
#include "base/mazovia.h"
#include "base/paths.h"
#include "base/platform.h"
#include "base/text.h"
#include "sqltable/dbapp.h"
#include "sqltable/pgconn.h"
#include "sqltable/pgnav.h"
#include "sqltable/pgrecord.h"
#include "sqltable/pgwrite.h"
#include "tui/msgbox.h"
#include "users/users_detail.h"

namespace {

constexpr int kOsUserWidth = 20;  // field 14
constexpr int kHostWidth = 30;    // field 15
constexpr int kLockNameMax = 51;  // of the companion's 52-byte counted string
constexpr const char* kSessionLockName = "kluczw__";

int16_t gOverrideRule = kOverrideAnybody;
int gLockFile = -1;

ShortText Trimmed(const ShortText& s) { return TrimRightAll(s, ' '); }

ShortText EnvironmentText(const char* name) {
  const char* value = std::getenv(name);
  return ShortText(value ? value : "");
}

// The computer's own name: bash keeps HOSTNAME to itself unless exported.
ShortText HostName() {
  ShortText host = EnvironmentText("HOSTNAME");
  if (!host.Empty()) return host;
  std::array<char, 256> name{};
  if (gethostname(name.data(), name.size() - 1) != 0) return ShortText();
  return ShortText(name.data());
}

bool MayPass(const UserRecord& row, int16_t rule) {
  switch (rule) {
    case kOverrideAnybody: return true;
    case kOverrideMaxRights: return row.maxRights > 0;
    default: return row.number == kSystemManager;
  }
}

// The question's "wchodź śmiało dalej.@Wchodzisz ?" or the refusal's unlock line.
ShortText SameComputerText(bool ask) {
  const ShortText head =
      "Wygląda na to, że masz na komputerze otwartą już sesję programu.@Skorzystaj z niej, a aktualną wyłącz.@Jeśli innej, niż aktualna sesji nie ma, "_mz;
  if (ask) return head + "wchodź śmiało dalej.@Wchodzisz ?"_mz;
  return head + "odblokować Twoje konto może@`Kierownik Systemu\"."_mz;
}

ShortText OtherComputerText(bool ask, const UserRecord& row) {
  const ShortText head = "Ten użytkownik zarejestrowany jest, jako pracujący w tej chwili@na innym komputerze.@Komputer: "_mz +
                         Trimmed(row.host) + "@Użytkownik komputera: "_mz + Trimmed(row.osUser) + ".@";
  if (ask) return head + "Lepiej nie wchodź jako on do programu.@Czy decydujesz się jednak wejść, jako on ?"_mz;
  return head + "Odblokować jego konto może `Kierownik Systemu\"."_mz;
}

ShortText TimeNow() {
  const ClockReading now = ReadClock();
  const auto two = [](int v) { return PadLeft(ShortText(std::to_string(v)), '0', 2); };
  return two(now.hour) + "." + two(now.minute);
}

// Writes the session's fields into the buffer holding the row: the mark,
// the identity (empty when leaving) and the day and time of the event.
int16_t PutSessionFields(int16_t rec, bool entering, const SessionIdentity& self) {
  const int dayField = entering ? userfld::kDataWejscia : userfld::kDataWyjscia;
  const int timeField = entering ? userfld::kCzasWejscia : userfld::kCzasWyjscia;
  int16_t code = PGPutAlpha(rec, userfld::kStatus, ShortText(entering ? ">" : "N"));
  if (!code) code = PGPutAlpha(rec, userfld::kUzytkSys, entering ? self.osUser : ShortText());
  if (!code) code = PGPutAlpha(rec, userfld::kKomputer, entering ? self.host : ShortText());
  if (!code) code = PGPutDate(rec, dayField, users_detail::TodaySerial());
  if (!code) code = PGPutAlpha(rec, timeField, TimeNow());
  return code;
}

// Places the table on the user's row; kPGRecordNotFound when there is none.
int16_t SeekUser(int16_t tbl, int16_t rec, int32_t number) {
  if (int16_t code = PGPutLong(rec, userfld::kNumer, number)) return code;
  return PGSrchFld(tbl, rec, userfld::kNumer, 0);
}

int16_t ReadMark(int16_t rec, UserRecord& row) {
  int16_t code = PGGetShort(rec, userfld::kUprMax, row.maxRights);
  if (!code) code = PGGetAlpha(rec, userfld::kStatus, row.status);
  if (!code) code = PGGetAlpha(rec, userfld::kUzytkSys, row.osUser);
  if (!code) code = PGGetAlpha(rec, userfld::kKomputer, row.host);
  return code;
}

// The mark cleared on the user's row; the code of the first failure.
int16_t ClearMark(int16_t tbl, int16_t rec, int32_t number) {
  const int16_t found = SeekUser(tbl, rec, number);
  if (found == kPGRecordNotFound) return kPGOk;
  if (found) return found;
  if (int16_t code = users_detail::LoadRow(tbl, rec)) return code;
  if (int16_t code = PutSessionFields(rec, false, SessionIdentity{})) return code;
  return PGRecUpdate(tbl, rec);
}

// CheckDBError's failure path: the server answers, the program is ending.
// A further failure here must not come back into CheckDBError.
void LeaveAfterFailure() {
  SetDBSessionLeave(nullptr);
  if (!UserLoggedIn()) return;
  users_detail::UsersTable t;
  if (t.code() == 0) (void)ClearMark(t.tbl(), t.rec(), CurrentUserNumber());
  FileLockRelease(gLockFile);
}

void ShowLockFailure() {
  MessageBox(
      "Nie można zainicjować systemu dodatkowych ochron sieciowych.@Ochrony te zostają wyłączone, ale program działa sieciowo."_mz,
      0);
}

bool WriteAll(int fd, const void* data, std::size_t size) {
  return ::pwrite(fd, data, size, 0) == static_cast<ssize_t>(size);
}

}  // namespace

void SessionSetOverrideRule(int16_t rule) { gOverrideRule = rule; }

SessionIdentity SessionIdentityNow() {
  SessionIdentity self;
  self.osUser = MazUpCaseText(EnvironmentText("USER")).Copy(1, kOsUserWidth);
  self.host = MazUpCaseText(HostName()).Copy(1, kHostWidth);
  return self;
}

SessionVerdict SessionJudge(const UserRecord& row, const SessionIdentity& self, int16_t rule) {
  if (Trimmed(row.status) != ShortText(">")) return SessionVerdict::kFree;
  const bool same = Trimmed(row.osUser) == Trimmed(self.osUser) && Trimmed(row.host) == Trimmed(self.host);
  if (MayPass(row, rule)) return same ? SessionVerdict::kAskSameComputer : SessionVerdict::kAskOtherComputer;
  return same ? SessionVerdict::kRefusedSameComputer : SessionVerdict::kRefusedOtherComputer;
}

ShortText SessionVerdictText(SessionVerdict verdict, const UserRecord& row) {
  switch (verdict) {
    case SessionVerdict::kFree: break;
    case SessionVerdict::kAskSameComputer: return SameComputerText(true);
    case SessionVerdict::kRefusedSameComputer: return SameComputerText(false);
    case SessionVerdict::kAskOtherComputer: return OtherComputerText(true, row);
    case SessionVerdict::kRefusedOtherComputer: return OtherComputerText(false, row);
  }
  return ShortText();
}

bool SessionEnter(int16_t tbl, int16_t rec, int32_t number) {
  const SessionIdentity self = SessionIdentityNow();
  users_detail::UsersLock lock;
  const int16_t found = users_detail::Checked(SeekUser(tbl, rec, number), kPGRecordNotFound);
  if (found == kPGRecordNotFound) {
    MessageBox(PGErrText(kPGRecordGone), 0);
    return true;
  }
  UserRecord row;
  row.number = number;
  users_detail::Checked(users_detail::LoadRow(tbl, rec));
  users_detail::Checked(ReadMark(rec, row));
  const SessionVerdict verdict = SessionJudge(row, self, gOverrideRule);
  const ShortText text = SessionVerdictText(verdict, row);
  switch (verdict) {
    case SessionVerdict::kFree: break;
    case SessionVerdict::kAskSameComputer:
    case SessionVerdict::kAskOtherComputer:
      if (!MessageBox(text, 1)) return true;
      break;
    case SessionVerdict::kRefusedSameComputer:
    case SessionVerdict::kRefusedOtherComputer:
      MessageBox(text, 0);
      return true;
  }
  users_detail::Checked(PutSessionFields(rec, true, self));
  users_detail::Checked(PGRecUpdate(tbl, rec));
  lock.Commit();
  return false;
}

void SessionLeave(int16_t tbl, int16_t rec, int32_t number) { users_detail::Checked(ClearMark(tbl, rec, number)); }

bool SessionEnterByNumber(int32_t number) {
  users_detail::UsersTable t;
  users_detail::Checked(t.code());
  return SessionEnter(t.tbl(), t.rec(), number);
}

void SessionLeaveByNumber(int32_t number) {
  users_detail::UsersTable t;
  users_detail::Checked(t.code());
  SessionLeave(t.tbl(), t.rec(), number);
}

bool FileLockTake(const ShortText& name, int& file, bool showMessage) {
  file = -1;
  const std::filesystem::path path(PathToUnix(name + ".lcu").Str());
  std::error_code ignored;
  if (path.has_parent_path()) std::filesystem::create_directories(path.parent_path(), ignored);
  // Not inherited by programs started from here: the lock dies with this process only.
  const int fd = ::open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0666);
  if (fd < 0) {
    ShowLockFailure();
    return false;
  }
  if (::flock(fd, LOCK_EX | LOCK_NB) != 0) {
    const bool held = errno == EWOULDBLOCK;
    ::close(fd);
    if (!held) ShowLockFailure();
    if (held && showMessage)
      MessageBox("Ktoś już pracuje, jako ten użytkownik.@Wejdź do programu jako inny użytkownik, niż ten."_mz, 0);
    return held;
  }
  if (!WriteAll(fd, "LOCK__", 6)) {
    ::close(fd);
    ShowLockFailure();
    return false;
  }
  file = fd;
  return false;
}

bool FileLockDescribe(const ShortText& name, const ShortText& userName, int32_t number) {
  std::array<unsigned char, 56> record{};
  const ShortText cut = userName.Copy(1, kLockNameMax);
  record[0] = static_cast<unsigned char>(cut.Length());
  for (int i = 1; i <= cut.Length(); ++i) record[static_cast<std::size_t>(i)] = static_cast<unsigned char>(cut.At(i));
  const auto bits = static_cast<uint32_t>(number);
  for (int i = 0; i < 4; ++i) record[52 + static_cast<std::size_t>(i)] = static_cast<unsigned char>(bits >> (8 * i));
  const std::string path = PathToUnix(name + ".lci").Str();
  const int fd = ::open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
  if (fd < 0) return false;
  const bool ok = WriteAll(fd, record.data(), record.size());
  return ::close(fd) == 0 && ok;
}

void FileLockRelease(int& file) {
  if (file < 0) return;
  (void)WriteAll(file, "UNLOCK", 6);
  ::close(file);
  file = -1;
}

bool SessionLogin() {
  for (;;) {
    const int32_t number = UserList(UserListMode::kLogin);
    if (number == kNoUser) return false;
    const ShortText lockName = UserPath(number, ShortText(kSessionLockName));
    if (FileLockTake(lockName, gLockFile, true)) {
      ClearCurrentUser();
      continue;
    }
    if (gLockFile >= 0 && !FileLockDescribe(lockName, CurrentUserName(), number)) {
      ShowLockFailure();
      FileLockRelease(gLockFile);
    }
    if (SessionEnterByNumber(number)) {
      FileLockRelease(gLockFile);
      ClearCurrentUser();
      continue;
    }
    SetDBSessionLeave(LeaveAfterFailure);
    return true;
  }
}

void SessionEnd() {
  if (!UserLoggedIn()) return;
  SetDBSessionLeave(nullptr);
  SessionLeaveByNumber(CurrentUserNumber());
  FileLockRelease(gLockFile);
  ClearCurrentUser();
}
