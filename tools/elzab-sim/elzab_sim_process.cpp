#include "elzab_sim_process.h"

#include <stdlib.h>
#include <sys/stat.h>
#include <unistd.h>

#include "sim_process.h"

ElzabSimProcess::ElzabSimProcess(std::vector<std::string> args, bool terminal) {
  char tmpl[] = "/tmp/elzab-sim-XXXXXX";
  if (!mkdtemp(tmpl)) return;
  dir_ = tmpl;
  ::chmod(dir_.c_str(), 0777);  // a server may run as another user
  args.insert(args.begin(), {ELZAB_SIM_PATH, terminal ? "--link" : "--socket", dir_ + "/line", "--journal",
                             dir_ + "/journal", "--trace", dir_ + "/trace"});
  argv_ = args;
  pid_ = SpawnSimulator(std::move(args), line_);
}

void ElzabSimProcess::Kill() { KillSimulator(pid_); }

void ElzabSimProcess::Restart() {
  KillSimulator(pid_);
  line_.clear();
  pid_ = SpawnSimulator(argv_, line_);
}

ElzabSimProcess::~ElzabSimProcess() { StopSimulator(pid_, dir_, {"journal", "trace", "line"}); }

std::vector<std::string> ElzabSimProcess::Journal() const { return ReadLines(dir_ + "/journal"); }
std::vector<std::string> ElzabSimProcess::Trace() const { return ReadLines(dir_ + "/trace"); }
