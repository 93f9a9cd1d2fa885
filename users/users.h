// Users and rights: the table "dane\uzytkown\uzytkown" of everyone who works
// in the system, each with a number, a password, the maximum-rights mark and
// thirteen yes/no rights, and a private directory "dane\uzytkown\<n>".
//
// User 0 is the System Manager ("Kierownik Systemu"): always present, never
// removable, its rights fixed. A stored password is compared as it stands:
// empty admits without a prompt, two zero bytes lock the account. The
// password column is kept as hex bytes, so those zero bytes survive the
// database exactly.
//
// The screens take the rights of the current user (the module state below),
// show the system's messages, and every change runs under the table's
// exclusive lock inside one transaction: a refusal or a failure leaves the
// table and the user's directory as they were. Table errors go through
// CheckDBError.
#pragma once

#include <cstdint>
#include <vector>

#include "base/shorttext.h"

// The users table as the program names it.
inline constexpr const char* kUsersTable = "dane\\uzytkown\\uzytkown";
// Its fields by number; the order is binding for every reader of the table.
namespace userfld {
inline constexpr int kImie = 1;            // A20 first name        (key, 1st)
inline constexpr int kNazwisko = 2;        // A30 surname           (key, 2nd)
inline constexpr int kHaslo = 3;           // B0  password bytes as hex
inline constexpr int kUprMax = 4;          // S   above 0: maximum rights
inline constexpr int kUprawnienia = 5;     // A13 the 13 rights, "T" or "N" each
inline constexpr int kDataDopisania = 6;   // D   day the user was added
inline constexpr int kDataHasla = 7;       // D   day the password was set last
inline constexpr int kNumer = 8;           // I   user number (indexed)
inline constexpr int kStatus = 9;          // A1  ">" working, "N" not
inline constexpr int kDataWejscia = 10;    // D   day the last session began
inline constexpr int kCzasWejscia = 11;    // A5  its time GG.MM
inline constexpr int kDataWyjscia = 12;    // D   day the last session ended
inline constexpr int kCzasWyjscia = 13;    // A5  its time GG.MM
inline constexpr int kUzytkSys = 14;       // A20 operating-system user of the session
inline constexpr int kKomputer = 15;       // A30 computer of the session
inline constexpr int kCount = 15;
}  // namespace userfld

inline constexpr int kUserRightCount = 13;
inline constexpr int kUserPasswordMax = 10;
inline constexpr int32_t kSystemManager = 0;
inline constexpr int32_t kNoUser = -1;

// The thirteen rights in their order (the number is the position in the list).
enum class UserRight : uint8_t {
  kOthersDocuments = 1,  // may delete and change other users' documents
  kOwnDocuments,         // may delete and change documents entered by himself
  kOtherDate,            // may change documents dated other than today
  kDeleteDocuments,      // may delete documents
  kBelowZero,            // may bring stock below zero
  kNotSimpleSale,        // works beyond the plain sale
  kPeriodSummaries,      // daily, weekly, monthly summaries [Ctrl+F6]
  kCashSummary,          // may sum up the cash
  kAllAnalyses,          // may run every analysis
  kPurchasePrices,       // may see purchase prices and values
  kCatalogueKey,         // may edit the key of the item catalogue
  kGeneralWrite,         // general right to write data (inactive option)
  kMarkStock,            // may mark [Ctrl+]] stock positions
};

// One row of the users table.
struct UserRecord {
  int32_t number = kNoUser;
  ShortText firstName;
  ShortText surname;
  ShortText password;     // as stored; see PasswordLocked
  int16_t maxRights = 0;  // above 0: maximum rights
  uint16_t rights = 0;    // bit n-1 set when right n is granted
  ShortText status;       // ">" while working, "N" when not
  ShortText osUser;
  ShortText host;
};

// The name shown in boxes: first name, a blank, surname; blanks at the ends dropped.
ShortText UserName(const UserRecord& user);
// Whether right r is granted in the row (the maximum-rights mark is a right of its own).
bool UserHasRight(const UserRecord& user, UserRight r);
// The stored value of a locked account: two zero bytes.
ShortText LockedPassword();
// True for that value; no typed text can ever equal it.
bool PasswordLocked(const ShortText& stored);

// --- The table (codes of the table layer; the callers pass them to CheckDBError) ---
// Creates the table anew (an existing one is replaced), with the primary key
// on first name and surname, the index on the number, and user 0.
[[nodiscard]] int16_t UsersTableCreate();
// Creates the table when it is missing and puts user 0 back when its row is gone.
[[nodiscard]] int16_t UsersTableEnsure();
// Every row in number order.
[[nodiscard]] int16_t UsersRead(std::vector<UserRecord>& users);
// The row of a number; found false (code 0) when there is none.
[[nodiscard]] int16_t UserFind(int32_t number, UserRecord& user, bool& found);
// Writes the row of user.number over the stored one under the table lock;
// found false (and nothing written) when it is gone.
[[nodiscard]] int16_t UserStore(const UserRecord& user, bool& found);

// How UserAppend ended.
enum class UserAppendOutcome : uint8_t { kDone, kNameTaken, kFailed };
// Appends the user without a screen: the next number, status "N", today as
// the day of adding, the password, rights and maximum-rights mark as given,
// and the directory with user 0's personal copies; user.number receives the
// number. A name (first name and surname) already on the list is refused; a
// directory that cannot be made (its message shown) rolls the row back.
[[nodiscard]] UserAppendOutcome UserAppend(UserRecord& user);

// --- The current user: who is logged in and with what rights ---
// Takes the logged-in user's number, name and rights from the row.
void SetCurrentUser(const UserRecord& user);
// Nobody is logged in.
void ClearCurrentUser();
// True while a user is logged in.
bool UserLoggedIn();
// The number, or kNoUser.
int32_t CurrentUserNumber();
// "imię nazwisko" of the current user, empty when none.
ShortText CurrentUserName();
// True for a user with the maximum-rights mark.
bool CurrentUserMaxRights();
// True for user 0.
bool CurrentUserIsManager();
// Whether the current user has right r; false when nobody is logged in.
bool CurrentUserRight(UserRight r);
// The current user's row as it was taken.
const UserRecord& CurrentUser();

// --- Passwords ---
// The rule of the stored text: empty admits at once, two zero bytes refuse at
// once, anything else asks "Podaj hasło:" (10 characters shown as blanks);
// Enter compares exactly, Esc refuses. True when admitted.
bool PGPasswordAsk(const ShortText& stored);
// Asks for a new password for the named user; Enter puts the typed text into
// password and gives true, any other end keeps it and gives false.
bool PGPasswordNew(const ShortText& name, ShortText& password);

// --- The screens ---
enum class UserListMode : uint8_t {
  kPartner,  // choose a user to talk to
  kLogin,    // choose the identity at login: the password is asked, three failures refuse
  kManage,   // keep the list: Ins add, Del delete, Enter data, F2 rights, F3 password, F4 needed files
};
// The selection list. Partner and login give the chosen number, kNoUser for
// Esc (or three wrong passwords at login); manage gives kNoUser at its end.
int32_t UserList(UserListMode mode);
// Each operation: true when it changed the table; refusals show their message.
bool UserAdd();
bool UserDelete(int32_t number);
bool UserEditData(int32_t number);
bool UserEditRights(int32_t number);
bool UserChangePassword(int32_t number);
// Deletes the user's working tables (praca___, dok_ptas, plikrob_, magfluk_,
// cent____) and keeps what he needs; "     O.K.    " or "Operacja nieudana !".
bool UserKeepNeededFiles(int32_t number);

// --- The user's directory ---
// "dane\uzytkown\" and the number (a point before the 9th digit of a long one).
ShortText UserDirectory(int32_t number);
// The path of a per-user table or file: the directory, "\" and name.
ShortText UserPath(int32_t number, const ShortText& name);
// Makes the directory with "tmp" and the personal copies of user 0's text
// files, after deleting what an earlier user of that number left. On failure
// shows the system's message, removes what it made and gives false.
bool UserDirectoryCreate(int32_t number);
// Deletes the user's tables and files and the directory (a failure to delete
// a file is left for the next UserDirectoryCreate of that number).
void UserDirectoryRemove(int32_t number);

// --- The copy of the list for the tools without the database ---
// Writes "dane\uzytkown\uzytkown.dbf" from the table; on failure shows
// "Nie można otworzyć pliku kopii listy użytkowników !" and gives false.
bool UsersWriteDbfCopy();
