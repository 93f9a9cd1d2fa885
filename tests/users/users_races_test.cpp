// Bad conditions: a row that another process deletes while the list shows
// it, and a user directory that cannot be made.
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include "base/filecopy.h"
#include "base/paths.h"
#include "sqltable/pglib.h"
#include "tui/keyboard.h"
#include "users_fixture.h"

namespace {

using keys::kDown;
using keys::kEnter;
using keys::kEsc;

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
