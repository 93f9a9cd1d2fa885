// The screens by keys: the password prompts, the login list, and adding,
// deleting, editing data and rights and changing a password from the list,
// with the refusals of each. Bad conditions: a row that another process
// deletes while the list shows it, and a user directory that cannot be made.
#include <sys/stat.h>

#include "base/filecopy.h"
#include "base/paths.h"
#include "sqltable/pglib.h"
#include "tui/keyboard.h"
#include "users_fixture.h"

namespace {

using keys::kDel;
using keys::kDown;
using keys::kEnter;
using keys::kEsc;
using keys::kIns;
const KeyPair kBack = keys::kBackspace;

TEST_F(UsersTest, PasswordPromptAdmitsByTheStoredText) {
  struct Case {
    ShortText stored;
    std::vector<Step> steps;
    bool admitted, prompted;
  };
  const Case cases[] = {
      {ShortText(), {}, true, false}, {LockedPassword(), {}, false, false},
      {"tajne", {{Type("tajne", {kEnter})}}, true, true}, {"tajne", {{Type("tajnE", {kEnter})}}, false, true},
      {"tajne", {{Type("tajne", {kEsc})}}, false, true}, {"ab", {{Type("abx", {kBack, kEnter})}}, true, true},
      {"abc", {{Type("abcdefghijkl", {kEnter})}}, false, true},  // 10 characters at most
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.stored.Str());
    ForgetScreens();
    Play(c.steps);
    EXPECT_EQ(PGPasswordAsk(c.stored), c.admitted);
    EXPECT_EQ(Shown("Podaj hasło:"_mz), c.prompted);
    EXPECT_FALSE(Shown("tajn") || Shown("abx"));  // the typed text never reaches the screen
    EXPECT_EQ(KeysBuffered(), 0);
  }
}

TEST_F(UsersTest, NewPasswordOnEnterOnly) {
  ShortText password("stare");
  Play({{Type("nowe", {kEsc})}});
  EXPECT_FALSE(PGPasswordNew("Jan Nowak", password));
  EXPECT_EQ(password, "stare");
  EXPECT_TRUE(Shown("Dla użytkownika Jan Nowak:@Podaj nowe hasło:"_mz));
  Play({{Type("nowe", {kEnter})}});
  EXPECT_TRUE(PGPasswordNew("Jan Nowak", password));
  EXPECT_EQ(password, "nowe");
}

TEST_F(UsersTest, LoginAsksThePasswordAndRefusesAfterThreeFailures) {
  AddRow(1, "Jan", "Nowak");
  AddRow(2, "Ewa", "Lis");
  AddRow(3, "Adam", "Zamknięty");
  ASSERT_TRUE(Psql("UPDATE dane_uzytkown_uzytkown SET haslo = '7831' WHERE numer = 1"));  // "x1"
  ASSERT_TRUE(Psql("UPDATE dane_uzytkown_uzytkown SET haslo = '0000' WHERE numer = 3"));  // locked
  const std::vector<Step> wrongThrice = {{{kDown, kEnter}}, {Type("zle", {kEnter})}, {{kEnter}},
                                         {{kEnter}},        {Type("x2", {kEnter})},  {{kEnter}},
                                         {{kEnter}},        {Type("x", {kEnter})},   {{kEnter}}};
  struct Case {
    const char* what;
    std::vector<Step> steps;
    int32_t result;
    int refusals;
    bool prompted;
  };
  const Case cases[] = {
      {"wrong three times", wrongThrice, kNoUser, 3, true},
      {"right password", {{{kDown, kEnter}}, {Type("x1", {kEnter})}}, 1, 0, true},
      {"empty password", {{{kDown, kDown, kEnter}}}, 2, 0, false},
      {"locked, then Esc", {{{kDown, kDown, kDown, kEnter}}, {{kEnter}}, {{kEsc}}}, kNoUser, 1, false},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    ForgetScreens();
    ClearCurrentUser();
    Play(c.steps);
    EXPECT_EQ(UserList(UserListMode::kLogin), c.result);
    EXPECT_EQ(CurrentUserNumber(), c.result);
    EXPECT_EQ(TimesShown("Błędne hasło !"_mz), c.refusals);
    EXPECT_EQ(Shown("Podaj hasło:"_mz), c.prompted);
    EXPECT_TRUE(Shown("         Wybierz, jako który użytkownik będziesz pracować:          "_mz));
  }
}

TEST_F(UsersTest, AddFromTheListAndRefuseTheSameNameTwice) {
  ASSERT_TRUE(UserDirectoryCreate(0));
  { std::ofstream("dane/uzytkown/0/konfpara.txt") << "para\n"; }
  Play({{{kIns}}, {Type("Jan", {kEnter})}, {Type("Nowak", {kEnter})},  // added
        {{kIns}}, {Type("Jan", {kEnter})}, {Type("Nowak", {kEnter})},  // the same name
        {{kEnter}}, {{kEsc}}});
  EXPECT_EQ(UserList(UserListMode::kManage), kNoUser);
  EXPECT_EQ(Rows(), "0:Kierownik:Systemu:N\n1:Jan:Nowak:N");
  EXPECT_TRUE(Shown("Użytkownik istnieje. Dopisanie niemożliwe !"_mz));
  EXPECT_TRUE(Shown("                        Lista użytkowników:                         "_mz));
  EXPECT_TRUE(Shown("         imię         ¥            nazwisko            ¥    numer   "_mz));
  EXPECT_TRUE(Shown(" Jan                  ¥ Nowak                          ¥          1 "_mz));
  EXPECT_EQ(ReadFile("dane/uzytkown/1/konfpara.txt"), "para\n");
  EXPECT_TRUE(DirExists("dane/uzytkown/1/tmp"));
}

TEST_F(UsersTest, EditDataRefusesARepeatedNameAndSavesANewOne) {
  AddRow(1, "Jan", "Nowak");
  AddRow(2, "Ewa", "Lis");
  Play({{{kDown, kDown, kEnter}}, {Retype(3, "Jan")}, {Retype(3, "Nowak")}, {{kEnter}},  // the repeat is refused
        {{kEnter}}, {{kEnter}}, {Retype(3, "Kot")}, {{kEsc}}});
  EXPECT_EQ(UserList(UserListMode::kManage), kNoUser);
  EXPECT_TRUE(Shown("Istnieje już na liście użytkownik o takiej nazwie. Zmiana nie jest możliwa."_mz));
  EXPECT_EQ(Rows(), "0:Kierownik:Systemu:N\n1:Jan:Nowak:N\n2:Ewa:Kot:N");
}

TEST_F(UsersTest, RefusalsLeaveTheTableAsItWas) {
  AddRow(1, "Jan", "Nowak");
  AddRow(2, "Ewa", "Lis");
  AddRow(3, "Adam", "Pracujący", ">");
  struct Case {
    int32_t actor;
    bool (*operation)();
    ShortText message;
  };
  const Case cases[] = {
      {1, [] { return UserAdd(); },
       "Nie masz prawa do wpisania nowego użytkownika.@Zrobić to może ktoś, kto ma uprawnienia maksymalne w programie,@lub `Kierownik Systemu\"."_mz},
      {1, [] { return UserEditRights(2); }, "Uprawnienia może zmieniać tylko `Kierownik Systemu\" !"_mz},
      {0, [] { return UserEditRights(0); }, "Nie wolno zmieniać uprawnień użytkownika `Kierownik Systemu\" !"_mz},
      {0, [] { return UserEditData(0); }, "Nie wolno zmieniać danych tego użytkownika !"_mz},
      {1, [] { return UserEditData(2); }, "Nie masz uprawnień do zmian danych innego użytkownika !"_mz},
      {0, [] { return UserChangePassword(1); }, "Nie wolno zmieniać hasła innego użytkownika !"_mz},
      {0, [] { return UserDelete(0); }, "Nie wolno kasować użytkownika `Kierownik Systemu\" !"_mz},
      {0, [] { return UserDelete(3); },
       "Użytkownik nadal pracuje, albo system operacyjny nie zamknął jego zbiorów.@Każ użytkownikowi wyjść ..."_mz},
  };
  const std::string before = Rows();
  for (const Case& c : cases) {
    SCOPED_TRACE(c.message.Str());
    ForgetScreens();
    ActAs(c.actor);
    Play({{{kEnter}}});
    EXPECT_FALSE(c.operation());
    EXPECT_TRUE(Shown(c.message));
    EXPECT_EQ(Rows(), before);
  }
}

TEST_F(UsersTest, DeleteFromTheListRemovesTheRowAndTheDirectory) {
  AddRow(1, "Jan", "Nowak");
  Play({{{kDown, kDel}}, {Type("T")}, {{kEnter}}, {{kEsc}}});
  EXPECT_EQ(UserList(UserListMode::kManage), kNoUser);
  EXPECT_TRUE(Shown("Użytkownik został usunięty z listy !@Proszę wyjść z programu i wejść ponownie."_mz));
  EXPECT_EQ(Rows(), "0:Kierownik:Systemu:N");
  EXPECT_FALSE(DirExists("dane/uzytkown/1"));
}

TEST_F(UsersTest, RightsAreMarkedFromTheListAndEscKeepsThem) {
  AddRow(1, "Jan", "Nowak");
  const KeyPair kF2 = keys::F(2), kF10 = keys::F(10);
  Play({{{kDown, kF2}}, {Type("T")}, {{kEnter, kDown, kDown, kDown, kDown, kEnter, kF10}}, {{kEnter}},
        {{kF2}}, {{kEnter}}, {Type("N")}, {{kEsc}}, {{kEnter}}, {{kEsc}}});
  EXPECT_EQ(UserList(UserListMode::kManage), kNoUser);
  EXPECT_TRUE(Shown("Czy użytkownik ten ma mieć prawo  uprawnienia maksymalne ?"_mz));
  EXPECT_TRUE(Shown("Zaznacz uprawnienia, które ma mieć ten użytkownik (operator programu):"_mz));
  EXPECT_TRUE(Shown("ma prawo do zaznaczania [ Ctrl+] ] pozycji w stanie"_mz));
  EXPECT_TRUE(Shown("Uprawnienia zmienione.@Jeśli ten użytkownik pracuje, musi wyjść z programu i wejść ponownie."_mz));
  EXPECT_TRUE(Shown("Użytkownik ma w tej chwili maksymalne uprawnienia !"_mz));
  EXPECT_TRUE(Shown("Zrezygnowano ze zmiany uprawnień."_mz));
  EXPECT_EQ(Scalar("SELECT upr_max || uprawnienia FROM dane_uzytkown_uzytkown WHERE numer = 1"), "1TNNNTNNNNNNNN");
}

TEST_F(UsersTest, OwnPasswordChangesFromTheList) {
  AddRow(1, "Jan", "Nowak");
  ActAs(1);
  Play({{{kDown, keys::F(3)}}, {Type("nowe", {kEnter})}, {{kEsc}}});
  EXPECT_EQ(UserList(UserListMode::kManage), kNoUser);
  UserRecord user;
  bool found = false;
  ASSERT_EQ(UserFind(1, user, found), 0);
  EXPECT_EQ(user.password, "nowe");
  EXPECT_EQ(CurrentUser().password, "nowe");
}

// Another process, with its own connection, deletes the row of user 2.
void DeleteUserTwoElsewhere() {
  const pid_t pid = fork();
  if (pid == 0) {
    ConnectChild();
    _exit(PGRunQueryNoTup("DELETE FROM dane_uzytkown_uzytkown WHERE numer = 2") == 0 ? 0 : 1);
  }
  ASSERT_EQ(ExitStatus(pid), 0);
}

TEST_F(UsersTest, RowDeletedByAnotherProcessWhileTheListShowsIt) {
  struct Case {
    const char* what;
    UserListMode mode;
    std::vector<Step> steps;  // from the list's first showing
    std::size_t deleteAt;     // the step before which the other process deletes user 2
    ShortText message;
  };
  const Case cases[] = {
      {"edit data", UserListMode::kManage,
       {{{kDown, kDown, kEnter}}, {{kEnter}}, {Retype(3, "Kot")}, {{kEnter}}, {{kEsc}}}, 1,
       "Ktoś skasował aktualnie poprawiane dane.@Nie można zapisać zmian."_mz},
      {"delete", UserListMode::kManage, {{{kDown, kDown, keys::kDel}}, {Type("T")}, {{kEnter}}, {{kEsc}}}, 1,
       "Rekord został skasowany przez innego użytkownika."_mz},
      {"login", UserListMode::kLogin, {{{kDown, kDown}}, {{kEnter}}, {{kEnter}}, {{kEsc}}}, 1,
       "Rekord został skasowany przez innego użytkownika."_mz},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    AddRow(1, "Jan", "Nowak");
    AddRow(2, "Ewa", "Lis");
    ForgetScreens();
    std::vector<Step> steps = c.steps;
    steps[c.deleteAt].before = DeleteUserTwoElsewhere;
    Play(steps);
    EXPECT_EQ(UserList(c.mode), kNoUser);
    EXPECT_TRUE(Shown(" Ewa                  ¥ Lis"_mz));  // the list showed the row
    EXPECT_TRUE(Shown(c.message));
    EXPECT_EQ(Rows(), "0:Kierownik:Systemu:N\n1:Jan:Nowak:N");
    ASSERT_TRUE(Psql("DELETE FROM dane_uzytkown_uzytkown WHERE numer > 0"));
  }
}

TEST_F(UsersTest, UnwritableUserDirectoryLeavesNoRowAndNoFiles) {
  ASSERT_TRUE(UserDirectoryCreate(0));
  { std::ofstream("dane/uzytkown/0/konffisk.txt") << "fiskalna\n"; }
  struct Case {
    const char* what;
    const char* obstacle;  // made before the user is added
    bool obstacleIsDir;
    ShortText message;
  };
  const Case cases[] = {
      {"a file where the directory goes", "dane/uzytkown/1", false, "Brak dostępu do katalogu.@dane/uzytkown/1"_mz},
      {"a directory where a copy goes", "dane/uzytkown/1/konffisk.txt", true,
       "Błąd "_mz + CopyResultText(kCopyTargetCreate) + "@dane/uzytkown/1/konffisk.txt"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    ForgetScreens();
    ASSERT_EQ(std::system("rm -rf dane/uzytkown/1"), 0);
    if (c.obstacleIsDir) ASSERT_EQ(std::system((std::string("mkdir -p ") + c.obstacle).c_str()), 0);
    else std::ofstream(c.obstacle) << "x";
    Play({{Type("Jan", {kEnter})}, {Type("Nowak", {kEnter})}, {{kEnter}}});
    EXPECT_FALSE(UserAdd());
    EXPECT_TRUE(Shown(c.message));
    EXPECT_EQ(Rows(), "0:Kierownik:Systemu:N");
    EXPECT_FALSE(DirExists("dane/uzytkown/1/tmp"));
    EXPECT_EQ(PGTransDepth, 0);
  }
}

}  // namespace
