// fisksrv-probe: measures the poll loop of a real fisksrv with 20 printer rows
// of family 9 at the default poll time, for bench/server_poll.sh.
//
//   fisksrv-probe <fisksrv binary> [idle seconds]
//
// Idle CPU: the server's own CPU time (/proc/<pid>/schedstat) over the idle
// window, as a share of one core and as milliseconds per minute, once with a
// log file and once writing its running clock to a pipe.
// Latency: the server runs without a log file and its output is read; each
// running-clock write ends a row's visit. A job is published (the single
// write of record 1) right after the visit of the row that lies a rows before
// the job's row, and the time to its result line is taken. The bound is one
// poll interval per row ahead, plus 5 ms.
#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string>
#include <thread>

#include "base/filevar.h"
#include "base/jobfile.h"

namespace {

constexpr int kRows = 20;
constexpr int kPollMs = 500;
using Clock = std::chrono::steady_clock;

double MsSince(Clock::time_point t) { return std::chrono::duration<double, std::milli>(Clock::now() - t).count(); }

long long CpuNs(pid_t pid) {
  std::ifstream in("/proc/" + std::to_string(pid) + "/schedstat");
  long long ns = -1;
  in >> ns;
  return ns;
}

// Starts the server in dir; stdout to outFd (or /dev/null when -1).
pid_t StartServer(const std::string& binary, const std::string& dir, bool withLog, int outFd) {
  const pid_t pid = ::fork();
  if (pid != 0) return pid;
  if (::chdir(dir.c_str()) != 0) ::_exit(121);
  const int null = ::open("/dev/null", O_RDWR);
  ::dup2(null, 0);
  ::dup2(outFd >= 0 ? outFd : null, 1);
  if (withLog) ::execl(binary.c_str(), binary.c_str(), "fisk.cfg", "", "fisk.log", nullptr);
  else ::execl(binary.c_str(), binary.c_str(), "fisk.cfg", nullptr);
  ::_exit(122);
}

void Stop(pid_t pid) {
  ::kill(pid, SIGTERM);
  ::waitpid(pid, nullptr, 0);
}

void MeasureIdle(const std::string& binary, const std::string& dir, bool withLog, int seconds) {
  const int null = ::open("/dev/null", O_WRONLY);
  const pid_t pid = StartServer(binary, dir, withLog, withLog ? -1 : null);
  ::close(null);
  std::this_thread::sleep_for(std::chrono::milliseconds(300));  // past its start-up
  const long long cpu0 = CpuNs(pid);
  const auto t0 = Clock::now();
  std::this_thread::sleep_for(std::chrono::seconds(seconds));
  const long long cpu = CpuNs(pid) - cpu0;
  const double wallMs = MsSince(t0);
  Stop(pid);
  const double share = cpu / 1e6 / wallMs * 100.0;
  std::printf("idle %-22s CPU %.4f%% of one core = %.2f ms per minute (over %d s)\n",
              withLog ? "(log file):" : "(clock to a pipe):", share, share / 100.0 * 60000.0, seconds);
}

// Reads the server's output, counting row visits (each '\r' of the clock)
// and result lines.
class OutputWatch {
 public:
  explicit OutputWatch(int fd) : fd_(fd) {}
  // Reads until the predicate on the watch holds; false after 60 s.
  template <class Pred>
  bool ReadUntil(Pred done) {
    const auto start = Clock::now();
    while (!done(*this)) {
      if (MsSince(start) > 60000) return false;
      pollfd p{fd_, POLLIN, 0};
      if (::poll(&p, 1, 100) <= 0) continue;
      char buffer[512];
      const ssize_t n = ::read(fd_, buffer, sizeof buffer);
      if (n <= 0) return false;
      for (ssize_t i = 0; i < n; ++i) Take(buffer[i]);
    }
    return true;
  }
  bool configured = false;
  long visits = 0;   // rows visited since the configuration line
  long results = 0;  // " O.K." lines

 private:
  void Take(char c) {
    tail_ = (tail_ + c).substr(tail_.size() >= 24 ? 1 : 0);
    if (!configured && tail_.find("SKONFIGUROWANO 20\n") != std::string::npos) configured = true;
    else if (configured && c == '\r') ++visits;
    else if (configured && c == '\n' && tail_.size() >= 6 && tail_.substr(tail_.size() - 6) == " O.K.\n") ++results;
  }
  int fd_;
  std::string tail_;
};

// Publishes a job for row r (1-based) a rows after the visit just ended, and
// gives the time to its result line.
double MeasureLatency(OutputWatch& watch, const std::string& dir, int r, int ahead) {
  // The row visited last before the publication: r - ahead, counted round.
  const int before = ((r - ahead - 1) % kRows + kRows) % kRows + 1;
  const std::string path = dir + "/spool/" + std::to_string(r);
  FileVar job;
  job.BindUnixPath(ShortText(path));
  if (job.Rewrite() != 0 || WriteJobRecord(job, kJobKeywordWait) != 0 || WriteJobRecord(job, kJobKeywordEnd) != 0) return -1;
  // Visit n (from 1) is of row ((n - 1) mod 20) + 1: wait for the next visit of row 'before'.
  const long target = watch.visits + ((before - 1 - watch.visits % kRows) + kRows) % kRows + 1;
  if (!watch.ReadUntil([&](const OutputWatch& w) { return w.visits >= target; })) return -1;
  const long resultsBefore = watch.results;
  const auto t0 = Clock::now();
  if (WriteJobRecordAt(job, 1, JobKeyword(kJobDrawer)) != 0) return -1;
  job.Close();
  if (!watch.ReadUntil([&](const OutputWatch& w) { return w.results > resultsBefore; })) return -1;
  return MsSince(t0);
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 2) {
    std::fprintf(stderr, "usage: fisksrv-probe <fisksrv binary> [idle seconds]\n");
    return 2;
  }
  char* absolute = ::realpath(argv[1], nullptr);  // the server runs in another directory
  if (absolute == nullptr) {
    std::fprintf(stderr, "fisksrv-probe: no such program: %s\n", argv[1]);
    return 2;
  }
  const std::string binary = absolute;
  std::free(absolute);
  const int idleSeconds = argc > 2 ? std::atoi(argv[2]) : 20;
  const std::string dir = "/tmp/fisksrv-probe-" + std::to_string(::getpid());
  ::mkdir(dir.c_str(), 0777);
  ::mkdir((dir + "/spool").c_str(), 0777);
  {
    std::ofstream cfg(dir + "/fisk.cfg");
    for (int i = 1; i <= kRows; ++i) cfg << "9,1,\"spool\\" << i << "\",,0\n";
  }
  std::printf("fisksrv, %d rows of family 9, poll time %d ms (default)\n", kRows, kPollMs);
  MeasureIdle(binary, dir, true, idleSeconds);
  MeasureIdle(binary, dir, false, idleSeconds);

  int out[2];
  if (::pipe(out) != 0) return 1;
  const pid_t pid = StartServer(binary, dir, false, out[1]);
  ::close(out[1]);
  OutputWatch watch(out[0]);
  if (!watch.ReadUntil([](const OutputWatch& w) { return w.configured; })) return 1;
  int failures = 0;
  for (int ahead : {1, 1, 2, 5, 10, 20}) {
    const int row = ahead == 20 ? 20 : 1 + ahead * 3 % kRows;
    const double ms = MeasureLatency(watch, dir, row, ahead);
    const double bound = ahead * kPollMs + 5.0;
    const bool ok = ms >= 0 && ms <= bound;
    failures += ok ? 0 : 1;
    std::printf("publish to result, row %2d, %2d rows ahead: %8.2f ms  (bound %6.0f ms, over the poll waits %+.2f ms) %s\n",
                row, ahead, ms, bound, ms - ahead * kPollMs, ok ? "ok" : "OVER");
  }
  Stop(pid);
  std::system(("rm -rf " + dir).c_str());
  return failures == 0 ? 0 : 1;
}
