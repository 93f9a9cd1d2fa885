#include "server/fisksrv.h"

#include "base/platform.h"
#include "server/exitproc.h"
#include "server/oneshot.h"
#include "server/polling.h"

int FisksrvMain() {
  BeginServerProcess();
  static ServerState state;  // process-wide, as long as the server runs
  if (IsOneShotMarker(ParamStr(1))) return RunOneShotMode(state);
  return RunPollingMode(state);
}
