#include "server/exitproc.h"

#include <signal.h>
#include <sys/stat.h>

#include <cstdlib>

#include "server/families.h"
#include "server/output.h"
#include "tui/keypoll.h"

namespace {

mode_t gOldMask = 0;

// The steps that are safe inside a signal handler.
void RestoreProcessState() {
  ::umask(gOldMask);
  ReleaseAllLines();
  KeyPollEnd();
}

void ExitProcedure() {
  CloseLog();
  RestoreProcessState();
}

// A signal ends the process as it would have without us, after the
// restoring steps; buffered output is not flushed here (not signal safe).
void OnEndingSignal(int signal) {
  RestoreProcessState();
  ::signal(signal, SIG_DFL);
  ::raise(signal);
}

}  // namespace

void BeginServerProcess() {
  gOldMask = ::umask(0);
  std::atexit(ExitProcedure);
  struct sigaction action{};
  action.sa_handler = OnEndingSignal;
  sigemptyset(&action.sa_mask);
  for (int s : {SIGINT, SIGTERM, SIGHUP, SIGQUIT}) ::sigaction(s, &action, nullptr);
}
