// A throw-away PostgreSQL cluster for the database tests: initdb into a
// temporary directory (as the postgres user when running as root), a Unix
// socket in that directory, fsync off, trust authentication for "postgres".
// One cluster serves a whole test run; its whereabouts are kept in a state
// directory as the file "cluster.info".
#pragma once

#include <string>
#include <vector>

struct PgCluster {
  std::string dataDir;    // PGDATA
  std::string socketDir;  // where the Unix socket lives
  int port = 0;
  std::string binDir;     // initdb, pg_ctl, psql
  std::string user = "postgres";
  std::string locale;     // collation chosen at initdb
};

// Directory of the PostgreSQL 15 server programs, or empty when none is installed.
std::string PgFindBinDir();
// Locale for a new cluster: a Polish UTF-8 locale when the machine has one, else "C" (byte order).
std::string PgClusterLocale();
// Creates and starts a new cluster, replacing one still recorded in stateDir.
// False with a reason in error.
bool PgClusterStart(const std::string& stateDir, PgCluster& cluster, std::string& error);
// Stops the cluster recorded in stateDir (if any) and removes its files.
void PgClusterStop(const std::string& stateDir);
// Reads the cluster recorded in stateDir; false when none is recorded or it does not answer.
bool PgClusterRead(const std::string& stateDir, PgCluster& cluster);
// Runs a program and waits; the exit status, or -1 when it could not run.
// Output goes to outputFile when given, else it is discarded.
int PgRunProgram(const std::vector<std::string>& argv, const std::string& outputFile = "");
