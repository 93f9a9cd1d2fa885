// The per-suite part of the database fixture.
#include "dbfixture.h"

#include <unistd.h>

#include <cctype>
#include <cstdlib>
#include <filesystem>
#include <fstream>

namespace fs = std::filesystem;

namespace {

DbContext gDb;
pid_t gPrivateClusterOwner = 0;
std::string gPrivateStateDir;

std::string SharedStateDir() {
  const char* env = std::getenv("KLOTE_PGCLUSTER_STATE");
  return env && *env ? env : std::string(KLOTE_BINARY_DIR) + "/pgcluster";
}

// Only the process that started a private cluster stops it: a death test's
// child runs the exit handlers too.
void StopPrivateCluster() {
  if (gPrivateClusterOwner == getpid()) PgClusterStop(gPrivateStateDir);
}

bool EnsureCluster(PgCluster& cluster, std::string& error) {
  if (PgClusterRead(SharedStateDir(), cluster)) return true;
  if (gPrivateClusterOwner != 0 && PgClusterRead(gPrivateStateDir, cluster)) return true;
  char dir[] = "/tmp/klote-pgstate-XXXXXX";
  if (!mkdtemp(dir)) {
    error = "cannot make a state directory";
    return false;
  }
  gPrivateStateDir = dir;
  gPrivateClusterOwner = getpid();
  std::atexit([] {
    StopPrivateCluster();
    std::error_code ignored;
    if (gPrivateClusterOwner == getpid()) fs::remove_all(gPrivateStateDir, ignored);
  });
  return PgClusterStart(gPrivateStateDir, cluster, error);
}

std::string DatabaseName(const char* suite) {
  std::string name = "k_";
  for (const char* p = suite; *p && name.size() < 40; ++p)
    name += std::isalnum(static_cast<unsigned char>(*p)) ? static_cast<char>(std::tolower(*p)) : '_';
  return name + "_" + std::to_string(getpid());
}

bool MakeHome(DbContext& db) {
  char dir[] = "/tmp/klote-home-XXXXXX";
  if (!mkdtemp(dir)) return false;
  db.home = dir;
  fs::create_directories(db.home + "/orbel-sql");
  setenv("HOME", db.home.c_str(), 1);
  db.startDir = fs::current_path().string();
  return chdir(db.home.c_str()) == 0;
}

}  // namespace

void DbTest::SetUpTestSuite() {
  gDb = DbContext{};
  const char* suite = ::testing::UnitTest::GetInstance()->current_test_suite()->name();
  if (!EnsureCluster(gDb.cluster, gDb.error)) return;
  gDb.dbname = DatabaseName(suite);
  std::string out;
  if (!PgPsql(gDb.cluster, "postgres", "CREATE DATABASE " + gDb.dbname, &out)) {
    gDb.error = "CREATE DATABASE failed: " + out;
    return;
  }
  if (!MakeHome(gDb)) {
    gDb.error = "cannot make the temporary HOME";
    return;
  }
  WriteDefaultConnParm();
  gDb.ready = true;
}

void DbTest::TearDownTestSuite() {
  if (!gDb.startDir.empty()) (void)chdir(gDb.startDir.c_str());
  if (!gDb.dbname.empty())
    PgPsql(gDb.cluster, "postgres", "DROP DATABASE IF EXISTS " + gDb.dbname + " WITH (FORCE)");
  std::error_code ignored;
  if (!gDb.home.empty()) fs::remove_all(gDb.home, ignored);
  gDb = DbContext{};
}

void DbTest::SetUp() { ASSERT_TRUE(gDb.ready) << "database fixture: " << gDb.error; }

const DbContext& DbTest::Db() { return gDb; }

bool DbTest::Psql(const std::string& sql, std::string* output) {
  return PgPsql(gDb.cluster, gDb.dbname, sql, output);
}

void DbTest::WriteConnParm(const std::string& host, const std::string& hostaddr, const std::string& port,
                           const std::string& user, const std::string& password, const std::string& dbname) {
  std::ofstream out(gDb.home + "/orbel-sql/conn_parm.cfg", std::ios::trunc);
  out << host << '\n' << hostaddr << '\n' << port << '\n' << user << '\n' << password << '\n' << dbname << '\n';
}

void DbTest::WriteDefaultConnParm() {
  WriteConnParm(gDb.cluster.socketDir, "", std::to_string(gDb.cluster.port), gDb.cluster.user, "", gDb.dbname);
}

bool DbTest::WipeDatabase() {
  return Psql("DROP SCHEMA public CASCADE; CREATE SCHEMA public;");
}
