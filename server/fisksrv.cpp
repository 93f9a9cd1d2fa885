#include "server/fisksrv.h"

#include "server/exitproc.h"
#include "server/polling.h"

int FisksrvMain() {
  BeginServerProcess();
  static ServerState state;  // process-wide, as long as the server runs
  return RunPollingMode(state);
}
