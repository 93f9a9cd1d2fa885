// The database test fixture shared by every database test: one throw-away
// cluster per test run (started by the ctest fixture "klote_pgcluster", or
// privately by the first suite when a test program runs on its own), a
// database per suite, and a temporary HOME with orbel-sql/conn_parm.cfg that
// is also the current directory while the suite runs.
//
// ctest runs each test case as a process of its own, and cases of one suite
// may run at once: each process therefore works in a fresh schema of its own
// ("p" and its pid) inside the suite's database, named to every connection of
// the process through PGOPTIONS (search_path). Catalogue queries in tests
// filter on current_schema().
#pragma once

#include <gtest/gtest.h>

#include <string>

#include "pgcluster.h"

struct DbContext {
  bool ready = false;
  std::string error;     // why the fixture is not ready
  PgCluster cluster;
  std::string dbname;    // the suite's database
  std::string schema;    // this process's schema in it
  std::string home;      // the temporary HOME and current directory
  std::string startDir;  // current directory before the suite
};

class DbTest : public ::testing::Test {
 public:
  static void SetUpTestSuite();
  static void TearDownTestSuite();

 protected:
  // Fails the test at once when the suite has no database.
  void SetUp() override;
  // The suite's cluster, database and HOME.
  static const DbContext& Db();
  // Runs SQL as the superuser on the suite's database in this process's
  // schema, over the fixture's own connection; rows in output as psql -At prints them.
  static bool Psql(const std::string& sql, std::string* output = nullptr);
  // Writes HOME/orbel-sql/conn_parm.cfg with the six given lines.
  static void WriteConnParm(const std::string& host, const std::string& hostaddr, const std::string& port,
                            const std::string& user, const std::string& password, const std::string& dbname);
  // Writes conn_parm.cfg that reaches the suite's database.
  static void WriteDefaultConnParm();
  // Drops and re-creates the process's schema: an empty database for the next test.
  static bool WipeDatabase();
};
