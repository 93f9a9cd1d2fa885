// The operations on the list: add, delete, edit data, edit rights, change
// the password, keep the needed files. Each checks the current user's rights
// first, reads the row again under the table lock, and writes it in one
// transaction; a row that another process removed meanwhile is reported.
#include <array>

#include "base/filenames.h"
#include "base/filevar.h"
#include "base/mazovia.h"
#include "base/paths.h"
#include "base/text.h"
#include "sqltable/dbapp.h"
#include "sqltable/pgnav.h"
#include "sqltable/pgwrite.h"
#include "tui/editfield.h"
#include "tui/keyboard.h"
#include "tui/msgbox.h"
#include "tui/picklist.h"
#include "users/users.h"
#include "users/users_detail.h"

using users_detail::Checked;
using users_detail::UsersLock;
using users_detail::UsersTable;

namespace {

constexpr std::array<ShortText, kUserRightCount> kRightTexts = {
    "może kasować i zmieniać dokumenty innych użytkowników"_mz,
    "może kasować i zmieniać dokumenty wprowadzone przez siebie"_mz,
    "może zmieniać dokumenty z inną datą, niż aktualna w komputerze"_mz,
    "ma prawo do kasowania dokumentów"_mz,
    "może doprowadzać do stanów ujemnych"_mz,
    "nie prowadzi tylko prostej sprzedaży, mając duże ograniczenia pracy"_mz,
    "ma prawo do zestawień dziennych,tygodniowych,miesięcznych [Ctrl+F6]"_mz,
    "może wykonać podsumowanie kasy"_mz,
    "może wykonywać wszystkie analizy"_mz,
    "może ogladać ceny i wartości zakupu"_mz,
    "może edytować elementy klucza głównego katalogu towarów"_mz,
    "ma ogólne prawo do zapisu danych (opcja nieaktywna)"_mz,
    "ma prawo do zaznaczania [ Ctrl+] ] pozycji w stanie"_mz,
};

// Tables that only hold work in progress; deleting them leaves what a user needs.
constexpr std::array<const char*, 5> kWorkTables = {"praca___", "dok_ptas", "plikrob_", "magfluk_", "cent____"};

constexpr int kFirstNameWidth = 20;
constexpr int kSurnameWidth = 30;

void Say(const ShortText& text) { MessageBox(text, 0); }
void SayGone() { Say("Ktoś skasował aktualnie poprawiane dane.@Nie można zapisać zmian."_mz); }
void SayRowGone() { Say(PGErrText(kPGRecordGone)); }
ShortText Quoted(const ShortText& name) { return "`" + name + "\" !"; }

bool MayChangeOthers() { return CurrentUserIsManager() || CurrentUserMaxRights(); }

// The row of a number, or the message that it is gone.
bool LoadUser(int32_t number, UserRecord& user) {
  bool found = false;
  Checked(UserFind(number, user, found));
  if (!found) SayRowGone();
  return found;
}

// The two-field form of first name and surname: Enter, Tab and the arrows
// move, Enter on the surname or F10 confirm, Esc gives up. A surname is needed.
bool EditNames(const ShortText& title, UserRecord& user) {
  users_detail::BoxKeeper keeper;
  ShortText fields[2] = {user.firstName, user.surname};
  const int widths[2] = {kFirstNameWidth, kSurnameWidth};
  MessageBox(title + "@imię:     "_mz + PadRight("", " ", kFirstNameWidth) + "@nazwisko: " +
                 PadRight("", " ", kSurnameWidth),
             2);
  for (int at = 0;;) {
    GotoXY(12, at + 3);
    TextAttr(kAttrReverse);
    unsigned char key = 0;
    EditField(1, 3, ' ', widths[at], fields[at], key);
    fields[at] = TrimBoth(TrimRightAll(fields[at], ' '), ' ');
    if (key == 27) return false;
    const bool confirm = key == 238 || (key == 13 && at == 1);
    if (confirm && !fields[1].Empty()) break;
    if (confirm) at = 1, Beep(1000);
    else if (key == 242) at = 0;
    else at = at == 0 ? 1 : 0;
  }
  user.firstName = fields[0];
  user.surname = fields[1];
  return true;
}

// The number after the highest one, read under the table lock.
int32_t NextNumber(UsersTable& t) {
  if (Checked(PGRecLast_noc(t.tbl()), kPGEmptyTable) == kPGEmptyTable) return 1;
  UserRecord last;
  Checked(t.Read(last));
  return last.number + 1;
}

// Whether another row than number carries the name; the table is left elsewhere.
bool NameTaken(UsersTable& t, const UserRecord& user) {
  if (Checked(t.SeekName(user.firstName, user.surname), kPGRecordNotFound) == kPGRecordNotFound) return false;
  UserRecord holder;
  Checked(t.Read(holder));
  return holder.number != user.number;
}

// How a locked change ended; the lock is gone by the time the caller speaks.
enum class Outcome { kDone, kRefused, kGone, kFailed };

// Deletes the row unless its user works (read again under the lock).
Outcome DeleteRow(int32_t number, UserRecord& user) {
  UsersLock lock;
  UsersTable t;
  Checked(t.code());
  if (Checked(t.SeekNumber(number), kPGRecordNotFound) != 0) return Outcome::kGone;
  Checked(t.Read(user));
  if (user.status == ">") return Outcome::kRefused;
  Checked(PGRecDelete(t.tbl()));
  lock.Commit();
  return Outcome::kDone;
}

// Writes the new name of the row unless another row carries it.
Outcome RenameRow(const UserRecord& user) {
  UsersLock lock;
  UsersTable t;
  Checked(t.code());
  if (NameTaken(t, user)) return Outcome::kRefused;
  if (Checked(t.SeekNumber(user.number), kPGRecordNotFound) != 0) return Outcome::kGone;
  Checked(t.Load());
  Checked(PGPutAlpha(t.rec(), userfld::kImie, user.firstName));
  Checked(PGPutAlpha(t.rec(), userfld::kNazwisko, user.surname));
  Checked(PGRecUpdate(t.tbl(), t.rec()));
  lock.Commit();
  return Outcome::kDone;
}

// The thirteen rights as a temporary text file for the multiple choice.
ShortText WriteRightsFile() {
  const ShortText path = TempName();
  FileVar file;
  AssignFile(file, path);
  if (path.Empty() || file.Rewrite() != 0) return ShortText();
  for (const ShortText& text : kRightTexts)
    if (file.Write(text.Data(), text.Length()) != 0 || file.Write("\n", 1) != 0) return ShortText();
  return path;
}

// The new marks of the rights; false when the operator gave up.
bool AskRights(uint16_t& rights) {
  const ShortText path = WriteRightsFile();
  if (path.Empty()) return false;
  uint32_t marks = rights;
  KeyPair key{};
  PickMultiFile(1, 1, 1, 0, 0, "Zaznacz uprawnienia, które ma mieć ten użytkownik (operator programu):"_mz, path,
                key, marks);
  (void)DeleteFile(path);
  if (KeyCodeOf(key) == 27) return false;
  rights = static_cast<uint16_t>(marks);
  return true;
}

// Stores the row changed by the caller; false (with the message) when it is gone.
bool Store(const UserRecord& user) {
  bool found = false;
  Checked(UserStore(user, found));
  if (!found) {
    SayGone();
    return false;
  }
  if (user.number == CurrentUserNumber()) SetCurrentUser(user);
  (void)UsersWriteDbfCopy();
  return true;
}

}  // namespace

UserAppendOutcome UserAppend(UserRecord& user) {
  UsersLock lock;
  UsersTable t;
  Checked(t.code());
  if (NameTaken(t, user)) return UserAppendOutcome::kNameTaken;
  user.number = NextNumber(t);
  user.status = "N";
  Checked(t.Fill(user));
  Checked(PGPutDate(t.rec(), userfld::kDataDopisania, users_detail::TodaySerial()));
  Checked(PGRecAppend(t.tbl(), t.rec()));
  if (!UserDirectoryCreate(user.number)) return UserAppendOutcome::kFailed;  // the lock rolls the row back
  lock.Commit();
  return UserAppendOutcome::kDone;
}

bool UserAdd() {
  if (!MayChangeOthers()) {
    Say("Nie masz prawa do wpisania nowego użytkownika.@Zrobić to może ktoś, kto ma uprawnienia maksymalne w programie,@lub `Kierownik Systemu\"."_mz);
    return false;
  }
  UserRecord user;
  if (!EditNames("Nowy użytkownik:"_mz, user)) return false;
  const UserAppendOutcome outcome = UserAppend(user);
  if (outcome == UserAppendOutcome::kNameTaken) Say("Użytkownik istnieje. Dopisanie niemożliwe !"_mz);
  if (outcome != UserAppendOutcome::kDone) return false;
  (void)UsersWriteDbfCopy();
  return true;
}

bool UserDelete(int32_t number) {
  UserRecord user;
  if (!LoadUser(number, user)) return false;
  if (number == kSystemManager) {
    Say("Nie wolno kasować użytkownika "_mz + Quoted(UserName(user)));
    return false;
  }
  if (!MayChangeOthers()) {
    Say("Nie masz uprawnień do zmian danych innego użytkownika !"_mz);
    return false;
  }
  const ShortText working =
      "Użytkownik nadal pracuje, albo system operacyjny nie zamknął jego zbiorów.@Każ użytkownikowi wyjść ..."_mz;
  if (user.status == ">") {
    Say(working);
    return false;
  }
  if (!MessageBox("Czy na pewno usunąć z listy użytkownika "_mz + UserName(user) + " ?", 1)) return false;
  const Outcome outcome = DeleteRow(number, user);
  if (outcome == Outcome::kGone) SayRowGone();
  if (outcome == Outcome::kRefused) Say(working);
  if (outcome != Outcome::kDone) return false;
  UserDirectoryRemove(number);
  (void)UsersWriteDbfCopy();
  Say("Użytkownik został usunięty z listy !@Proszę wyjść z programu i wejść ponownie."_mz);
  return true;
}

bool UserEditData(int32_t number) {
  if (number == kSystemManager) {
    Say("Nie wolno zmieniać danych tego użytkownika !"_mz);
    return false;
  }
  if (number != CurrentUserNumber() && !MayChangeOthers()) {
    Say("Nie masz uprawnień do zmian danych innego użytkownika !"_mz);
    return false;
  }
  UserRecord user;
  if (!LoadUser(number, user) || !EditNames("Dane użytkownika:"_mz, user)) return false;
  const Outcome outcome = RenameRow(user);
  if (outcome == Outcome::kRefused) Say("Istnieje już na liście użytkownik o takiej nazwie. Zmiana nie jest możliwa."_mz);
  if (outcome == Outcome::kGone) SayGone();
  if (outcome != Outcome::kDone) return false;
  if (number == CurrentUserNumber()) SetCurrentUser(user);
  (void)UsersWriteDbfCopy();
  return true;
}

bool UserEditRights(int32_t number) {
  if (!CurrentUserIsManager()) {
    Say("Uprawnienia może zmieniać tylko `Kierownik Systemu\" !"_mz);
    return false;
  }
  UserRecord user;
  if (!LoadUser(number, user)) return false;
  if (number == kSystemManager) {
    Say("Nie wolno zmieniać uprawnień użytkownika "_mz + Quoted(UserName(user)));
    return false;
  }
  if (user.maxRights > 0) Say("Użytkownik ma w tej chwili maksymalne uprawnienia !"_mz);
  const bool max = MessageBox("Czy użytkownik ten ma mieć prawo  uprawnienia maksymalne ?"_mz, 1);
  if (!AskRights(user.rights)) {
    Say("Zrezygnowano ze zmiany uprawnień."_mz);
    return false;
  }
  user.maxRights = max ? 1 : 0;
  if (!Store(user)) return false;
  Say("Uprawnienia zmienione.@Jeśli ten użytkownik pracuje, musi wyjść z programu i wejść ponownie."_mz);
  return true;
}

bool UserChangePassword(int32_t number) {
  if (number != CurrentUserNumber()) {
    Say("Nie wolno zmieniać hasła innego użytkownika !"_mz);
    return false;
  }
  UserRecord user;
  if (!LoadUser(number, user) || !PGPasswordNew(UserName(user), user.password)) return false;
  return Store(user);
}

bool UserKeepNeededFiles(int32_t number) {
  if (number != CurrentUserNumber() && !MayChangeOthers()) {
    Say("Nie masz uprawnień do zmian danych innego użytkownika !"_mz);
    return false;
  }
  UserRecord user;
  if (!LoadUser(number, user)) return false;
  if (user.status == ">" && MessageBox("Czy na pewno pracuje on w programie ?"_mz, 1)) {
    Say(UserName(user) + " musi wyjść@z programu.@"_mz);
    return false;
  }
  bool ok = true;
  for (const char* name : kWorkTables) {
    const ShortText table = UserPath(number, name);
    bool exists = false;
    (void)PGTblExist(table, exists);
    if (exists && PGTblDelete(table) != 0) ok = false;
  }
  Say(ok ? "     O.K.    "_mz : "Operacja nieudana !"_mz);
  return ok;
}
