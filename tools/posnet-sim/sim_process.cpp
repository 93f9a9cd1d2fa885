#include "sim_process.h"

#include <signal.h>
#include <stdlib.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstring>
#include <fstream>
#include <string>

std::vector<std::string> ReadLines(const std::string& path) {
  std::vector<std::string> lines;
  std::ifstream in(path, std::ios::binary);
  for (std::string line; std::getline(in, line);) lines.push_back(line);
  return lines;
}

int SpawnSimulator(std::vector<std::string> argv, std::string& firstLine) {
  int out[2];
  if (pipe(out) != 0) return -1;
  const int pid = fork();
  if (pid == 0) {
    dup2(out[1], 1);
    close(out[0]);
    close(out[1]);
    std::vector<char*> args;
    for (auto& a : argv) args.push_back(a.data());
    args.push_back(nullptr);
    execv(args[0], args.data());
    _exit(127);
  }
  close(out[1]);
  char c;
  while (pid > 0 && read(out[0], &c, 1) == 1 && c != '\n') firstLine += c;
  close(out[0]);
  return pid;
}

void KillSimulator(int& pid) {
  if (pid <= 0) return;
  kill(pid, SIGKILL);
  waitpid(pid, nullptr, 0);
  pid = -1;
}

void StopSimulator(int pid, const std::string& folder, const std::vector<std::string>& files) {
  if (pid > 0) {
    kill(pid, SIGTERM);
    waitpid(pid, nullptr, 0);
  }
  if (folder.empty()) return;
  for (const std::string& f : files) unlink((folder + "/" + f).c_str());
  rmdir(folder.c_str());
}

SimProcess::SimProcess(std::vector<std::string> args) {
  char tmpl[] = "/tmp/posnet-sim-XXXXXX";
  if (!mkdtemp(tmpl)) return;
  dir_ = tmpl;
  args.insert(args.begin(), {POSNET_SIM_PATH, "--journal",
                             dir_ + "/journal", "--trace", dir_ + "/trace"});
  argv_ = args;
  pid_ = SpawnSimulator(std::move(args), slave_);
}

void SimProcess::Kill() { KillSimulator(pid_); }

void SimProcess::Restart() {
  KillSimulator(pid_);
  slave_.clear();
  pid_ = SpawnSimulator(argv_, slave_);
}

SimProcess::~SimProcess() { StopSimulator(pid_, dir_, {"journal", "trace", "link"}); }

std::vector<std::string> SimProcess::Journal() const { return ReadLines(dir_ + "/journal"); }
std::vector<std::string> SimProcess::Trace() const { return ReadLines(dir_ + "/trace"); }

namespace {

char gOwnedPath[4096] = {};

void RemoveOwnedPathAndEnd(int) {
  if (gOwnedPath[0] != '\0') ::unlink(gOwnedPath);
  ::_exit(0);
}

}  // namespace

void OwnPath(const std::string& path) {
  std::snprintf(gOwnedPath, sizeof gOwnedPath, "%s", path.c_str());
  struct sigaction sa {};
  sa.sa_handler = RemoveOwnedPathAndEnd;
  for (int sig : {SIGTERM, SIGINT, SIGHUP, SIGQUIT}) ::sigaction(sig, &sa, nullptr);
}
