// The database test fixture shared by every database test: one throw-away
// cluster per test run (started by the ctest fixture "klote_pgcluster", or
// privately by the first suite when a test program runs on its own), a fresh
// database per suite, and a temporary HOME with orbel-sql/conn_parm.cfg that
// is also the current directory while the suite runs.
#pragma once

#include <gtest/gtest.h>

#include <string>

#include "pgcluster.h"

struct DbContext {
  bool ready = false;
  std::string error;     // why the fixture is not ready
  PgCluster cluster;
  std::string dbname;    // the suite's database
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
  // Runs SQL as the superuser on the suite's database; rows in output.
  static bool Psql(const std::string& sql, std::string* output = nullptr);
  // Writes HOME/orbel-sql/conn_parm.cfg with the six given lines.
  static void WriteConnParm(const std::string& host, const std::string& hostaddr, const std::string& port,
                            const std::string& user, const std::string& password, const std::string& dbname);
  // Writes conn_parm.cfg that reaches the suite's database.
  static void WriteDefaultConnParm();
  // Drops and re-creates the public schema: an empty database for the next test.
  static bool WipeDatabase();
};
