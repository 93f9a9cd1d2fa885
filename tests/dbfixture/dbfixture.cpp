// The per-suite part of the database fixture.
#include "dbfixture.h"

#include <libpq-fe.h>
#include <unistd.h>

#include <cctype>
#include <cstdlib>
#include <filesystem>
#include <fstream>

namespace fs = std::filesystem;

namespace {

DbContext gDb;
PGconn* gAdmin = nullptr;  // the fixture's own connection to the suite's database
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
  for (const char* p = suite; *p && name.size() < 50; ++p)
    name += std::isalnum(static_cast<unsigned char>(*p)) ? static_cast<char>(std::tolower(*p)) : '_';
  return name;
}

std::string ConnInfo(const PgCluster& c, const std::string& dbname) {
  return "host=" + c.socketDir + " port=" + std::to_string(c.port) + " user=" + c.user + " dbname=" + dbname;
}

// Runs SQL on a connection; rows as psql -At prints them.
bool RunSql(PGconn* conn, const std::string& sql, std::string* output) {
  if (output) output->clear();
  PGresult* res = PQexec(conn, sql.c_str());
  const ExecStatusType status = PQresultStatus(res);
  const bool ok = status == PGRES_COMMAND_OK || status == PGRES_TUPLES_OK;
  if (output) {
    if (!ok) *output = PQerrorMessage(conn);
    for (int r = 0; ok && r < PQntuples(res); ++r) {
      for (int c = 0; c < PQnfields(res); ++c) *output += std::string(c ? "|" : "") + PQgetvalue(res, r, c);
      *output += '\n';
    }
  }
  PQclear(res);
  return ok;
}

PGconn* Connect(const PgCluster& c, const std::string& dbname) {
  PGconn* conn = PQconnectdb(ConnInfo(c, dbname).c_str());
  if (PQstatus(conn) == CONNECTION_OK) return conn;
  PQfinish(conn);
  return nullptr;
}

// The suite's database is made by the first of its test processes; a sibling
// that races it finds it made.
PGconn* ConnectSuiteDatabase(const PgCluster& cluster, const std::string& dbname, std::string& error) {
  for (int attempt = 0; attempt < 100; ++attempt) {
    if (PGconn* conn = Connect(cluster, dbname)) return conn;
    if (PGconn* admin = Connect(cluster, "postgres")) {
      RunSql(admin, "CREATE DATABASE " + dbname, &error);
      PQfinish(admin);
    }
    if (attempt > 0) usleep(50000);
  }
  error = "cannot make database " + dbname + ": " + error;
  return nullptr;
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
  gAdmin = ConnectSuiteDatabase(gDb.cluster, gDb.dbname, gDb.error);
  if (!gAdmin) return;
  // Every connection of this process works in its own schema.
  gDb.schema = "p" + std::to_string(getpid());
  setenv("PGOPTIONS", ("-c search_path=" + gDb.schema).c_str(), 1);
  RunSql(gAdmin, "SET client_min_messages=warning; SET search_path=" + gDb.schema, nullptr);
  if (!WipeDatabase()) {
    gDb.error = "cannot make schema " + gDb.schema;
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
  if (gAdmin) {
    Psql("DROP SCHEMA IF EXISTS " + gDb.schema + " CASCADE");
    PQfinish(gAdmin);
    gAdmin = nullptr;
  }
  std::error_code ignored;
  if (!gDb.home.empty()) fs::remove_all(gDb.home, ignored);
  unsetenv("PGOPTIONS");
  gDb = DbContext{};
}

void DbTest::SetUp() { ASSERT_TRUE(gDb.ready) << "database fixture: " << gDb.error; }

const DbContext& DbTest::Db() { return gDb; }

bool DbTest::Psql(const std::string& sql, std::string* output) {
  return gAdmin && RunSql(gAdmin, sql, output);
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
  return Psql("DROP SCHEMA IF EXISTS " + gDb.schema + " CASCADE; CREATE SCHEMA " + gDb.schema);
}
