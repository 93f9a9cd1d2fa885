// A private PostgreSQL cluster for a database benchmark: a temporary
// directory with the cluster's state and a HOME holding conn_parm.cfg, which
// is also the current directory; the layer connected, tables_list made.
// Everything is stopped and removed when the object goes.
#pragma once

#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

#include "pgcluster.h"
#include "sqltable/pgtable.h"
#include "tui/term.h"

// Screens that the measured code draws go into a string, not to the console.
inline void BenchQuietTerminal(std::string* screen) {
  setenv("TERM", "xterm", 1);
  TermSetWarningWait(0);
  TermInputFromFd(-1);
  TermOutputToBuffer(screen);
  TermInit();
}

class BenchDatabase {
 public:
  explicit BenchDatabase(const char* name) {
    std::string pattern = "/tmp/" + std::string(name) + ".XXXXXX";
    if (mkdtemp(pattern.data()) == nullptr) {
      error_ = "no temporary directory";
      return;
    }
    dir_ = pattern;
    ready_ = Start();
  }
  ~BenchDatabase() {
    PGShutdownTables(1);
    PGDisconnect();
    if (dir_.empty()) return;
    PgClusterStop(dir_ + "/state");
    std::error_code ignored;
    std::filesystem::remove_all(dir_, ignored);
  }
  BenchDatabase(const BenchDatabase&) = delete;
  BenchDatabase& operator=(const BenchDatabase&) = delete;

  bool Ready() const { return ready_; }
  const std::string& Error() const { return error_; }

 private:
  bool Start() {
    PgCluster cluster;
    if (!PgClusterStart(dir_ + "/state", cluster, error_)) return false;
    const std::string home = dir_ + "/home";
    std::filesystem::create_directories(home + "/orbel-sql");
    std::ofstream(home + "/orbel-sql/conn_parm.cfg")
        << cluster.socketDir << "\n\n" << cluster.port << "\n" << cluster.user << "\n\npostgres\n";
    setenv("HOME", home.c_str(), 1);
    if (chdir(home.c_str()) != 0 || PGSetDefaults() != 0 || PGinitializett() != 0) {
      error_ = "connection: " + PGLastOp.Str();
      return false;
    }
    return true;
  }

  std::string dir_;
  std::string error_;
  bool ready_ = false;
};
