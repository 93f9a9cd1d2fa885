// Connection start, parameters, statements, the failure log and transactions.
#include <unistd.h>

#include <cstdlib>
#include <string>

#include "sqltable/pglib.h"
#include "sqltest.h"

namespace {

class ConnectionTest : public DbTest {
 protected:
  void SetUp() override {
    DbTest::SetUp();
    WriteDefaultConnParm();
    std::remove("pxengine.cfg");
    PGTrimAlpha = false;
    PGConnInfo.clear();
  }
  void TearDown() override {
    while (PGConnected || PGLibRefs() > 0) PGDisconnect();
    PGLibSetCandidates(nullptr, nullptr);
    std::remove("pxengine.cfg");
  }
  static void WriteFile(const std::string& path, const std::string& text) {
    std::ofstream(path, std::ios::trunc) << text;
  }
};

TEST_F(ConnectionTest, ConnectsWithConnParmSpeaksLatin2AndKeepsTheStringForAReconnection) {
  ASSERT_EQ(PGSetDefaults(), 0) << PGLastOp.Str();
  EXPECT_TRUE(PGConnected);
  EXPECT_EQ(PGLibRefs(), 1);
  PGResult res;
  ASSERT_EQ(PGExec(res, "SHOW client_encoding", true), 0);
  EXPECT_EQ(res.Value(0, 0), "LATIN2");
  ASSERT_EQ(PGExec(res, "SHOW standard_conforming_strings", true), 0);
  EXPECT_EQ(res.Value(0, 0), "off");
  // The keyword string is kept for a reconnection.
  EXPECT_EQ(PGConnInfo, "dbname=" + Db().dbname + " user=postgres host=" + Db().cluster.socketDir +
                            " port=" + std::to_string(Db().cluster.port) + " ");
  // A reconnection uses the kept string: the files no longer matter.
  const std::string kept = PGConnInfo;
  WriteConnParm("", "", "", "", "", "no_such_db");
  res.Clear();  // a result must not outlive the library that made it
  ASSERT_EQ(PGReconnect(), 0) << PGLastOp.Str();
  EXPECT_TRUE(PGConnected);
  EXPECT_EQ(PGConnInfo, kept);
  EXPECT_EQ(PGLibRefs(), 1);
  PGDisconnect();
  EXPECT_FALSE(PGConnected);
  EXPECT_EQ(PGLibRefs(), 0);
  PGConnInfo.clear();
  EXPECT_EQ(PGReconnect(kept), 0);
}

TEST_F(ConnectionTest, KeywordStringLeavesOutEmptyLinesAndKeepsItsOrder) {
  const std::string all[6] = {"h", "1.2.3.4", "5432", "u", "p w", "d"};
  EXPECT_EQ(PGKeywordString(all), "dbname=d user=u password=p w host=h hostaddr=1.2.3.4 port=5432 ");
  const std::string some[6] = {"", "", "7", "", "", "x"};
  EXPECT_EQ(PGKeywordString(some), "dbname=x port=7 ");
  const std::string none[6] = {};
  EXPECT_EQ(PGKeywordString(none), "");
}

TEST_F(ConnectionTest, PxengineCfgNamesTheParameterFileAndTheTrimFlag) {
  const std::string other = Db().home + "/other.cfg";
  std::rename((Db().home + "/orbel-sql/conn_parm.cfg").c_str(), other.c_str());
  // A line with one field is the file name as it stands.
  const std::pair<std::string, bool> lines[] = {{other + ",1\n", true}, {other + ",0\n", false}, {other + "\n", false}};
  for (const auto& [line, trim] : lines) {
    PGTrimAlpha = false;
    WriteFile("pxengine.cfg", line);
    ASSERT_EQ(PGSetDefaults(), 0) << line << PGLastOp.Str();
    EXPECT_EQ(PGTrimAlpha, trim) << line;
    PGDisconnect();
  }
}

TEST_F(ConnectionTest, MissingParameterFileGives1000WithoutLoadingTheClient) {
  WriteFile("pxengine.cfg", Db().home + "/nowhere.cfg\n");
  EXPECT_EQ(PGSetDefaults(), kPGNoParameters);
  EXPECT_FALSE(PGConnected);
  EXPECT_EQ(PGLibRefs(), 0);
  EXPECT_EQ(PGLastOp, "PGSetDefaults:@");
}

TEST_F(ConnectionTest, WithoutHomeTheFileIsLookedForFromTheRoot) {
  const std::string home = std::getenv("HOME");
  unsetenv("HOME");
  const bool rootHasOne = access("/orbel-sql/conn_parm.cfg", F_OK) == 0;
  const int16_t code = PGSetDefaults();
  setenv("HOME", home.c_str(), 1);
  if (!rootHasOne) {
    EXPECT_EQ(code, kPGNoParameters);
  }
}

TEST_F(ConnectionTest, RefusedConnectionGives1001WithTheServersText) {
  WriteConnParm(Db().cluster.socketDir, "", std::to_string(Db().cluster.port), "postgres", "", "no_such_db");
  EXPECT_EQ(PGSetDefaults(), kPGConnectFailed);
  EXPECT_FALSE(PGConnected);
  EXPECT_NE(PGLastOp.View().find("no_such_db"), std::string_view::npos) << PGLastOp.Str();
  EXPECT_EQ(PGLastOp.Copy(1, 15), "PGSetDefaults:@");
}

TEST_F(ConnectionTest, AMissingClientLibraryGivesItsMessage) {
  PGLibSetCandidates("libpq-missing.so", "libpq-missing.so.5");
  EXPECT_EQ(PGSetDefaults(), kPGConnectFailed);
  EXPECT_EQ(PGLibRefs(), 0);
  EXPECT_EQ(PGLastOp, "PGSetDefaults:@Can not load PosgreSQL client. Is it installed? (libpq.so)");
  // A library that is not the client is no client.
  PGLibSetCandidates("libc.so.6", nullptr);
  EXPECT_EQ(PGSetDefaults(), kPGConnectFailed);
  EXPECT_EQ(PGLibRefs(), 0);
  // The versioned name alone is enough.
  PGLibSetCandidates("libpq-missing.so", "libpq.so.5");
  EXPECT_EQ(PGSetDefaults(), 0) << PGLastOp.Str();
}

TEST_F(ConnectionTest, LibraryIsCountedAndResolvedOnce) {
  ASSERT_TRUE(PGLibLoad());
  ASSERT_TRUE(PGLibLoad());
  EXPECT_EQ(PGLibRefs(), 2);
  EXPECT_EQ(PGLibEntryName(0), "PQconnectStart");
  EXPECT_EQ(PGLibEntryName(kPGLibEntryCount - 1), "PQenv2encoding");
  EXPECT_EQ(PGLibEntryName(kPGLibEntryCount), "");
  // All but the misspelt "PQPrepare" exist in today's client.
  EXPECT_EQ(PGLibResolvedCount(), kPGLibEntryCount - 1);
  PGLibUnload();
  EXPECT_NE(PGLib().exec, nullptr);
  PGLibUnload();
  EXPECT_EQ(PGLibRefs(), 0);
  EXPECT_EQ(PGLib().exec, nullptr);
  PGLibUnload();  // one too many does nothing
  EXPECT_EQ(PGLibRefs(), 0);
}

TEST_F(ConnectionTest, InitFindsTheCatalogueOnlyAfterItIsCreated) {
  ASSERT_EQ(PGSetDefaults(), 0);
  ASSERT_TRUE(WipeDatabase());
  EXPECT_EQ(PGInit(), kPGNoCatalogue);
  // The order index's name taken by another table: 1004.
  ASSERT_TRUE(Psql("CREATE TABLE tables_list_lp (x int)"));
  EXPECT_EQ(PGinitializett(), kPGCatalogueIndexNotCreated);
  ASSERT_TRUE(WipeDatabase());
  EXPECT_EQ(PGinitializett(), 0);
  EXPECT_EQ(PGInit(), 0);
  EXPECT_EQ(PGinitializett(), kPGCatalogueNotCreated);
  std::string out;
  Psql("SELECT indexname FROM pg_indexes WHERE schemaname=current_schema() AND tablename='tables_list' ORDER BY 1", &out);
  EXPECT_EQ(out, "tables_list_lp\ntables_list_pkey\n");
}

}  // namespace
