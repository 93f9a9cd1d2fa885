#include "sim_process.h"

#include <signal.h>
#include <stdlib.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <fstream>
#include <string>

std::vector<std::string> ReadLines(const std::string& path) {
  std::vector<std::string> lines;
  std::ifstream in(path, std::ios::binary);
  for (std::string line; std::getline(in, line);) lines.push_back(line);
  return lines;
}

SimProcess::SimProcess(std::vector<std::string> args) {
  char tmpl[] = "/tmp/posnet-sim-XXXXXX";
  if (!mkdtemp(tmpl)) return;
  dir_ = tmpl;
  args.insert(args.begin(), {POSNET_SIM_PATH, "--journal",
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
  while (read(out[0], &c, 1) == 1 && c != '\n') slave_ += c;
  close(out[0]);
}

SimProcess::~SimProcess() {
  if (pid_ > 0) {
    kill(pid_, SIGTERM);
    waitpid(pid_, nullptr, 0);
  }
  if (!dir_.empty()) {
    for (const char* f : {"/journal", "/trace", "/link"}) unlink((dir_ + f).c_str());
    rmdir(dir_.c_str());
  }
}

std::vector<std::string> SimProcess::Journal() const { return ReadLines(dir_ + "/journal"); }
std::vector<std::string> SimProcess::Trace() const { return ReadLines(dir_ + "/trace"); }
