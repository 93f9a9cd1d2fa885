#include "users_fixture.h"

#include <sys/stat.h>

#include "sqltable/pgwrite.h"
#include "tui/keyboard.h"

namespace {

std::vector<Step> gSteps;
std::size_t gNext = 0;
std::vector<std::string> gScreens;

std::string ScreenNow() {
  std::string all;
  for (int row = 1; row <= kScreenRows; ++row) all += RowText(row).Str() + "\n";
  return all;
}

void NextStep() {
  gScreens.push_back(ScreenNow());
  if (gNext >= gSteps.size()) {
    SetKeyIdleHook(nullptr);
    return;
  }
  Step& step = gSteps[gNext++];
  if (step.before) step.before();
  for (KeyPair k : step.keys) (void)PushKey(k.ch, k.scan);
}

}  // namespace

std::vector<KeyPair> Type(const std::string& text, std::vector<KeyPair> after) {
  std::vector<KeyPair> keys;
  for (unsigned char c : text) keys.push_back(KeyOfByte(c));
  keys.insert(keys.end(), after.begin(), after.end());
  return keys;
}

std::vector<KeyPair> Retype(int count, const std::string& text) {
  std::vector<KeyPair> keys(static_cast<std::size_t>(count), keys::kBackspace);
  for (KeyPair k : Type(text, {keys::kEnter})) keys.push_back(k);
  return keys;
}

void UsersTest::SetUp() {
  CatalogueTest::SetUp();
  tui_test::InitTerminal("linux");  // special font: the bytes on the screen stay as drawn
  gScreens.clear();
  ASSERT_EQ(UsersTableEnsure(), 0) << PGLastOp.Str();
  ASSERT_EQ(mkdir("dane", 0777) == 0 || errno == EEXIST, true);
  ActAs(kSystemManager);
}

void UsersTest::TearDown() {
  SetKeyIdleHook(nullptr);
  KeyboardReset();
  ClearCurrentUser();
  CatalogueTest::TearDown();
}

void UsersTest::Play(std::vector<Step> steps) {
  gSteps = std::move(steps);
  gNext = 0;
  SetKeyIdleHook(NextStep);
}

void UsersTest::ForgetScreens() { gScreens.clear(); }

bool UsersTest::Shown(const ShortText& text) {
  return tui_test::AnyScreenShows(gScreens, text);
}

int UsersTest::TimesShown(const ShortText& text) {
  const std::string first = text.Str().substr(0, text.Str().find('@'));
  int times = 0;
  for (const std::string& screen : gScreens) times += screen.find(first) != std::string::npos;
  return times;
}

void UsersTest::ActAs(int32_t number) {
  UserRecord user;
  bool found = false;
  ASSERT_EQ(UserFind(number, user, found), 0);
  ASSERT_TRUE(found) << number;
  SetCurrentUser(user);
}

void UsersTest::AddRow(int32_t number, const char* first, const char* surname, const char* status) {
  ASSERT_TRUE(Psql(std::string("INSERT INTO dane_uzytkown_uzytkown (imie, nazwisko, haslo, upr_max, uprawnienia, numer, "
                               "status) VALUES ('") + first + "', '" + surname + "', '', 0, 'NNNNNNNNNNNNN', " +
                   std::to_string(number) + ", '" + status + "')"));
  ASSERT_TRUE(UserDirectoryCreate(number));
}

std::string UsersTest::Rows() {
  return Scalar("SELECT string_agg(numer || ':' || imie || ':' || nazwisko || ':' || status, E'\\n' ORDER BY numer) "
                "FROM dane_uzytkown_uzytkown");
}
