#include "elzab_sim_process.h"

#include <signal.h>
#include <stdlib.h>
#include <sys/wait.h>
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
  int out[2];
  if (pipe(out) != 0) return;
  pid_ = fork();
  if (pid_ == 0) {
    dup2(out[1], 1);
    close(out[0]);
    close(out[1]);
    std::vector<char*> argv;
    for (auto& a : args) argv.push_back(a.data());
    argv.push_back(nullptr);
    execv(argv[0], argv.data());
    _exit(127);
  }
  close(out[1]);
  char c;
  while (read(out[0], &c, 1) == 1 && c != '\n') line_ += c;
  close(out[0]);
}

ElzabSimProcess::~ElzabSimProcess() {
  if (pid_ > 0) {
    kill(pid_, SIGTERM);
    waitpid(pid_, nullptr, 0);
  }
  if (!dir_.empty()) {
    for (const char* f : {"/journal", "/trace", "/line"}) unlink((dir_ + f).c_str());
    rmdir(dir_.c_str());
  }
}

std::vector<std::string> ElzabSimProcess::Journal() const { return ReadLines(dir_ + "/journal"); }
std::vector<std::string> ElzabSimProcess::Trace() const { return ReadLines(dir_ + "/trace"); }
