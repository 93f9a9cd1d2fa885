// Sessions: a user works in one session at a time. Two things tell that a
// session is alive:
// - the status mark of the user's row (field 9 ">" with the system user and
//   computer in fields 14 and 15), written under the table's exclusive lock
//   so that two logins cannot pass each other;
// - the lock file "dane\uzytkown\<n>\kluczw__.lcu", held with an exclusive
//   flock for the whole session. The system releases it when the process
//   dies, so a live session is told from a dead one on the file level.
// A crash leaves the mark; the override rule of the configuration says who
// may pass it, and the operator is asked first. The session ends at the
// program's end and, through CheckDBError's failure path, after a database
// error while the server still answers.
#pragma once

#include <cstdint>

#include "base/shorttext.h"
#include "users/users.h"

// Who may pass a mark left by another session: 0 anybody, 1 a user with
// maximum rights, 2 the System Manager only (any other value counts as 2).
inline constexpr int16_t kOverrideAnybody = 0;
inline constexpr int16_t kOverrideMaxRights = 1;
inline constexpr int16_t kOverrideManager = 2;
// Sets the rule from the configuration; 0 until set.
void SessionSetOverrideRule(int16_t rule);

// This session's identity: USER and HOSTNAME upper-cased, cut to the widths
// of fields 14 and 15 (the computer's own name when HOSTNAME is not set).
struct SessionIdentity {
  ShortText osUser;
  ShortText host;
};
SessionIdentity SessionIdentityNow();

// What the mark of a row means for a login from `self` under the rule.
enum class SessionVerdict : uint8_t {
  kFree,                  // no mark: enter
  kAskSameComputer,       // a mark from this computer and system user: ask
  kAskOtherComputer,      // a mark from elsewhere: ask
  kRefusedSameComputer,   // the rule forbids passing it
  kRefusedOtherComputer,
};
// Pure: the verdict for the row (status, maximum rights, number, fields 14 and 15).
SessionVerdict SessionJudge(const UserRecord& row, const SessionIdentity& self, int16_t rule);
// The question or refusal text of a verdict, naming the row's computer and user; empty for kFree.
ShortText SessionVerdictText(SessionVerdict verdict, const UserRecord& row);

// Enters the session of the user on the open users table (tbl, rec): the
// mark, the system user and the computer written, the last entry's day and
// time, committed under the exclusive lock. True when refused (the mark
// could not be passed, the operator said no, or the row is gone).
[[nodiscard]] bool SessionEnter(int16_t tbl, int16_t rec, int32_t number);
// Clears the mark ("N", fields 14 and 15 empty) and notes the day and time of leaving.
void SessionLeave(int16_t tbl, int16_t rec, int32_t number);
// The same two, opening and closing "dane\uzytkown\uzytkown" themselves.
[[nodiscard]] bool SessionEnterByNumber(int32_t number);
void SessionLeaveByNumber(int32_t number);

// Takes the lock file name + ".lcu" (created when missing) with an exclusive
// flock into file. True when another process holds it: with showMessage
// "Ktoś już pracuje, jako ten użytkownik.@..." is shown. A file that cannot
// be set up shows "Nie można zainicjować systemu dodatkowych ochron
// sieciowych..." and gives false with file -1: work goes on without it.
[[nodiscard]] bool FileLockTake(const ShortText& name, int& file, bool showMessage);
// Writes the companion name + ".lci": the name as a 52-byte counted string
// (at most 51 characters) and the user number as 4 bytes, low byte first.
[[nodiscard]] bool FileLockDescribe(const ShortText& name, const ShortText& userName, int32_t number);
// Leaves "UNLOCK" in the lock file and closes it; file becomes -1.
void FileLockRelease(int& file);

// The login of the program: the users' list in login mode, the user's lock
// file, the mark. A refusal shows its text and gives the list again; Esc or
// three wrong passwords give false. On true the user is the current one and
// CheckDBError's failure path will end the session.
[[nodiscard]] bool SessionLogin();
// The end of the logged-in user's session at the program's end: mark
// cleared, lock file released, nobody current. Does nothing without a user.
void SessionEnd();
