// pgcluster start|stop <state directory>: the set-up and clean-up steps of a
// test run's database cluster.
#include <cstdio>
#include <cstring>

#include "pgcluster.h"

int main(int argc, char** argv) {
  if (argc != 3 || (std::strcmp(argv[1], "start") != 0 && std::strcmp(argv[1], "stop") != 0)) {
    std::fprintf(stderr, "usage: pgcluster start|stop <state directory>\n");
    return 2;
  }
  if (std::strcmp(argv[1], "stop") == 0) {
    PgClusterStop(argv[2]);
    return 0;
  }
  PgCluster cluster;
  std::string error;
  if (!PgClusterStart(argv[2], cluster, error)) {
    std::fprintf(stderr, "pgcluster: %s\n", error.c_str());
    PgClusterStop(argv[2]);
    return 1;
  }
  std::printf("cluster on %s port %d, locale %s\n", cluster.socketDir.c_str(), cluster.port,
              cluster.locale.c_str());
  return 0;
}
