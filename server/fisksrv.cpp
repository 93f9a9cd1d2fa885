#include "server/fisksrv.h"

#include "base/platform.h"
#include "server/exitproc.h"
#include "server/oneshot.h"
#include "server/polling.h"

// The server reads no fiscal configuration of the application (konffisk.txt,
// konffiss.txt), in either mode: everything it needs of a printer stands in
// its row, on the command line or in its own configuration file, and the
// drivers keep their defaults for the rest. A one-shot server started from an
// operator's firm thus prints exactly as the polling server of the same row.
int FisksrvMain() {
  BeginServerProcess();
  static ServerState state;  // process-wide, as long as the server runs
  if (IsOneShotMarker(ParamStr(1))) return RunOneShotMode(state);
  return RunPollingMode(state);
}
