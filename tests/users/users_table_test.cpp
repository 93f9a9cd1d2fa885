// The users table: its columns, user 0, stored passwords of any bytes, the
// directory of a user, and the current user's state.
#include <sys/stat.h>

#include "base/paths.h"
#include "exchange/dbf_fixture.h"
#include "tui/keyboard.h"
#include "users_fixture.h"

namespace {

bool IsDir(const char* path) {
  struct stat st {};
  return stat(path, &st) == 0 && S_ISDIR(st.st_mode);
}

TEST_F(UsersTest, ColumnsInTheirOrderAndUserZeroOnce) {
  EXPECT_EQ(Scalar("SELECT string_agg(nazp || ' ' || typp, ',' ORDER BY lp) FROM tables_list "
                   "WHERE nazt = 'DANE_UZYTKOWN_UZYTKOWN'"),
            "IMIE A20,NAZWISKO A30,HASLO B0,UPR_MAX S,UPRAWNIENIA A13,DATA_DOPISANIA D,DATA_HASLA D,NUMER I,"
            "STATUS A1,DATA_WEJSCIA D,CZAS_WEJSCIA A5,DATA_WYJSCIA D,CZAS_WYJSCIA A5,UZYTK_SYS A20,KOMPUTER A30");
  ASSERT_EQ(UsersTableEnsure(), 0);
  EXPECT_EQ(Rows(), "0:Kierownik:Systemu:N");
  // User 0 comes back when its row is gone; the others stay.
  AddRow(1, "Jan", "Nowak");
  ASSERT_TRUE(Psql("DELETE FROM dane_uzytkown_uzytkown WHERE numer = 0"));
  ASSERT_EQ(UsersTableEnsure(), 0);
  EXPECT_EQ(Rows(), "0:Kierownik:Systemu:N\n1:Jan:Nowak:N");
  UserRecord zero;
  bool found = false;
  ASSERT_EQ(UserFind(0, zero, found), 0);
  EXPECT_TRUE(found && zero.maxRights > 0 && zero.password.Empty());
  for (int r = 1; r <= kUserRightCount; ++r) EXPECT_TRUE(UserHasRight(zero, static_cast<UserRight>(r))) << r;
}

TEST_F(UsersTest, StoredPasswordsKeepEveryByte) {
  AddRow(1, "Jan", "Nowak");
  const ShortText cases[] = {ShortText(), LockedPassword(), ShortText("a'b\\c%_"), ShortText("\xFF\x01 x "),
                             "ąęż"_mz};
  for (const ShortText& password : cases) {
    UserRecord user;
    bool found = false;
    ASSERT_EQ(UserFind(1, user, found), 0);
    user.password = password;
    ASSERT_EQ(UserStore(user, found), 0) << PGLastOp.Str();
    ASSERT_TRUE(found);
    ASSERT_EQ(UserFind(1, user, found), 0);
    EXPECT_EQ(user.password, password);
    EXPECT_EQ(PasswordLocked(user.password), password == LockedPassword());
  }
  UserRecord gone;
  gone.number = 7;
  bool found = true;
  ASSERT_EQ(UserStore(gone, found), 0);
  EXPECT_FALSE(found);
  EXPECT_EQ(Rows(), "0:Kierownik:Systemu:N\n1:Jan:Nowak:N");
}

TEST_F(UsersTest, DirectoryHoldsTmpAndTheCopiesOfUserZero) {
  ASSERT_TRUE(UserDirectoryCreate(0));
  { std::ofstream("dane/uzytkown/0/konffisk.txt") << "fiskalna\n"; }
  { std::ofstream("dane/uzytkown/0/drukpar.txt") << "drukarka\n"; }
  ASSERT_TRUE(Psql("CREATE TABLE dane_uzytkown_3_praca___ (x int)"));  // left by an earlier user 3
  { std::ofstream("dane/uzytkown/3/praca___.lcu") << "LOCK__"; }
  ASSERT_TRUE(UserDirectoryCreate(3));
  EXPECT_TRUE(IsDir("dane/uzytkown/3/tmp"));
  EXPECT_EQ(ReadFile("dane/uzytkown/3/konffisk.txt"), "fiskalna\n");
  EXPECT_EQ(ReadFile("dane/uzytkown/3/drukpar.txt"), "drukarka\n");
  EXPECT_FALSE(FileExists("dane/uzytkown/3/praca___.lcu"));
  EXPECT_EQ(Scalar("SELECT count(*) FROM pg_tables WHERE tablename = 'dane_uzytkown_3_praca___'"), "0");
  UserDirectoryRemove(3);
  EXPECT_FALSE(IsDir("dane/uzytkown/3"));
  EXPECT_EQ(UserDirectory(123456789), "dane\\uzytkown\\12345678.9");
}

TEST_F(UsersTest, CurrentUserState) {
  AddRow(1, "Jan", "Nowak");
  ASSERT_TRUE(Psql("UPDATE dane_uzytkown_uzytkown SET uprawnienia = 'NNNNTNNNNNNNT' WHERE numer = 1"));
  ActAs(1);
  EXPECT_TRUE(UserLoggedIn());
  EXPECT_EQ(CurrentUserNumber(), 1);
  EXPECT_EQ(CurrentUserName(), "Jan Nowak");
  EXPECT_FALSE(CurrentUserMaxRights() || CurrentUserIsManager());
  for (int r = 1; r <= kUserRightCount; ++r)
    EXPECT_EQ(CurrentUserRight(static_cast<UserRight>(r)), r == 5 || r == 13) << r;
  ClearCurrentUser();
  EXPECT_FALSE(UserLoggedIn() || CurrentUserRight(UserRight::kBelowZero) || CurrentUserIsManager());
  EXPECT_EQ(CurrentUserNumber(), kNoUser);
}


TEST_F(UsersTest, CopyOfTheListReadsBackWithoutPasswords) {
  AddRow(1, "Jan", "Nowak");
  ASSERT_TRUE(Psql("UPDATE dane_uzytkown_uzytkown SET haslo = '7878', uprawnienia = 'TNNNNNNNNNNNT' WHERE numer = 1"));
  ASSERT_TRUE(UsersWriteDbfCopy());
  // NUMER:IMIE:NAZWISKO:UPR_MAX:UPRAWN:STATUS of each record.
  EXPECT_EQ(dbf_test::DbfRecords("dane\\uzytkown\\uzytkown.dbf", 6),
            "0:Kierownik:Systemu:1:TTTTTTTTTTTTT:N\n1:Jan:Nowak:0:TNNNNNNNNNNNT:N\n");
  EXPECT_EQ(ReadFile("dane/uzytkown/uzytkown.dbf").find("xx"), std::string::npos);
  // A copy that cannot be written is said; the table keeps its rows.
  ASSERT_TRUE(Psql("DELETE FROM dane_uzytkown_uzytkown WHERE numer = 1"));
  ASSERT_EQ(std::remove("dane/uzytkown/uzytkown.dbf"), 0);
  ASSERT_EQ(mkdir("dane/uzytkown/uzytkown.dbf", 0755), 0);  // a directory in the copy's place
  Play({{{keys::kEnter}}});
  EXPECT_FALSE(UsersWriteDbfCopy());
  EXPECT_TRUE(Shown("Nie można otworzyć pliku kopii listy użytkowników !"_mz));
  EXPECT_TRUE(DirExists("dane/uzytkown/uzytkown.dbf"));
  EXPECT_EQ(Scalar("SELECT count(*) FROM dane_uzytkown_uzytkown"), "1");
}

}  // namespace
