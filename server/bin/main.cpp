// fisksrv <configuration file> <poll time> <log file> <fourth parameter>
#include <cstdio>
#include <cstring>

#include "base/platform.h"
#include "server/fisksrv.h"

namespace {

constexpr const char kUsage[] =
    "usage: fisksrv <configuration file> [poll time ms, default 500] [log file] [unused]\n"
    "       fisksrv XVENTKLOTE '<printer row>'\n"
    "A printer row, one a line of the configuration file:\n"
    "  family,port,\"job file\",heading,drawer flag[,program,command line]\n"
    "  family 1 ELZAB, 2 or 3 POSNET; a heading selects POSNET's old firmware; drawer flag 1: a drawer.\n"
    "Polling mode watches every row's job file; without a log file it shows its screen and F10 ends it,\n"
    "with one it writes the results there and runs until SIGTERM. One-shot mode (XVENTKLOTE) serves\n"
    "the single row given, waiting for its job file at full speed, shows the result and ends.\n";

}  // namespace

int main(int argc, char** argv) {
  if (argc == 2 && (std::strcmp(argv[1], "--help") == 0 || std::strcmp(argv[1], "-h") == 0)) {
    std::fputs(kUsage, stdout);
    return 0;
  }
  SetProgramParameters(argc, argv);
  return FisksrvMain();
}
