#include "contractors_fixture.h"

#include <sys/stat.h>

#include "master/tables.h"
#include "tui/keyboard.h"
#include "users/users.h"

namespace {

std::vector<KeyStep> gSteps;
std::size_t gNext = 0;
std::vector<std::string> gScreens;

void NextStep() {
  std::string screen;
  for (int row = 1; row <= kScreenRows; ++row) screen += RowText(row).Str() + "\n";
  gScreens.push_back(screen);
  if (gNext >= gSteps.size()) {
    SetKeyIdleHook(nullptr);
    return;
  }
  KeyStep& step = gSteps[gNext++];
  if (step.before) step.before();
  for (KeyPair k : step.keys) (void)PushKey(k.ch, k.scan);
}

}  // namespace

std::vector<KeyPair> Typed(const ShortText& text, std::vector<KeyPair> after) {
  std::vector<KeyPair> keys;
  for (char c : text.View()) keys.push_back(KeyOfByte(static_cast<unsigned char>(c)));
  keys.insert(keys.end(), after.begin(), after.end());
  return keys;
}

void ContractorsTest::SetUp() {
  CatalogueTest::SetUp();
  tui_test::InitTerminal("linux");
  gScreens.clear();
  ASSERT_EQ(mkdir("dane", 0777) == 0 || errno == EEXIST, true);
  ASSERT_EQ(UsersTableEnsure(), 0);
  ASSERT_EQ(ContractorTablesEnsure(), 0) << PGLastOp.Str();
  LogInManager();
}

void ContractorsTest::LogInManager() {
  UserRecord manager;
  bool found = false;
  ASSERT_EQ(UserFind(kSystemManager, manager, found), 0);
  SetCurrentUser(manager);
}

void ContractorsTest::AddHeaders(int32_t warehouse, const std::string& values) {
  ASSERT_TRUE(Psql("INSERT INTO " + PGSqlName(WarehouseTablePath(warehouse, "naglowki")).Str() +
                   " (typ_dok, nr_dok, znak_dok, nr_kontrahenta) VALUES " + values));
}

void ContractorsTest::TearDown() {
  SetKeyIdleHook(nullptr);
  KeyboardReset();
  ClearCurrentUser();
  CatalogueTest::TearDown();
}

void ContractorsTest::Play(std::vector<KeyStep> steps) {
  gSteps = std::move(steps);
  gNext = 0;
  gScreens.clear();
  SetKeyIdleHook(NextStep);
}

bool ContractorsTest::Shown(const ShortText& text) {
  return tui_test::AnyScreenShows(gScreens, text);
}

const std::string& ContractorsTest::LastScreen() { return gScreens.back(); }

Contractor ContractorsTest::Named(const ShortText& name, const ShortText& town) {
  Contractor c;
  c[KontrahentCol::nazwa] = name;
  c[KontrahentCol::miasto] = town;
  return c;
}

Contractor ContractorsTest::AddNamed(ContractorKind kind, const ShortText& name, int32_t number, bool special) {
  Contractor c = Named(name);
  c.number = number;
  EXPECT_EQ(ContractorAdd(kind, c, NumberRange{}, special), ContractorOutcome::kDone) << name.Str();
  return c;
}

std::string ContractorsTest::Rows(ContractorKind kind) {
  const std::string table = PGSqlName(ContractorTablePath(kind)).Str();
  return Scalar("SELECT string_agg(numer || ':' || nazwa || ':' || coalesce(miasto, ''), E'\\n' ORDER BY numer) FROM " +
                table);
}
