#include "server/fisksrv.h"

#include "base/paths.h"
#include "base/platform.h"
#include "fiscal/fiscalconfig.h"
#include "server/exitproc.h"
#include "server/oneshot.h"
#include "server/polling.h"

namespace {

// The driver settings that a printer row does not carry (another maker, the
// device of port 255, the ELZAB response delay) come from the fiscal
// configuration of the directory the server runs in: in one-shot mode that is
// the operator's firm. Without the file the drivers keep their defaults.
void ApplyLocalFiscalConfig() {
  if (FileExists("konffisk.txt")) ApplyFiscalConfigToDrivers(ReadFiscalConfig(""));
}

}  // namespace

int FisksrvMain() {
  BeginServerProcess();
  ApplyLocalFiscalConfig();
  static ServerState state;  // process-wide, as long as the server runs
  if (IsOneShotMarker(ParamStr(1))) return RunOneShotMode(state);
  return RunPollingMode(state);
}
