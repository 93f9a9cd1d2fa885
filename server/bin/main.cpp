// fisksrv <configuration file> <poll time> <log file> <fourth parameter>
#include "base/platform.h"
#include "server/fisksrv.h"

int main(int argc, char** argv) {
  SetProgramParameters(argc, argv);
  return FisksrvMain();
}
