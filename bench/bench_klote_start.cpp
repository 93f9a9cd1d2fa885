// Time from starting klote to its menu bar: the real program on a
// pseudo-terminal against a private cluster, through the login list (Enter
// as soon as it shows admits the System Manager, whose password is empty),
// until the explanation of the first entry (the last thing drawn before the
// bar waits for a key) has reached the terminal; then Esc ends it outside
// the measured time. The database holds the demo firm (tools/demo-firm,
// loaded once before the runs), so the start also passes the choice of the
// current warehouse, Enter taking the first of its two.
// Target: under 300 ms on a local cluster.
#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <poll.h>
#include <pty.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

#include "pgcluster.h"

namespace {

std::string gHome;
constexpr const char* kLoginList = "Wybierz, jako kt";
constexpr const char* kWarehouseList = "Wybierz magazyn, na kt";
constexpr const char* kLastDrawn = "Dodawanie nowych";

// Reads the terminal until the text has come or 5 s have passed.
bool ReadUntil(int fd, const std::string& text) {
  std::string seen;
  const auto limit = std::chrono::steady_clock::now() + std::chrono::seconds(5);
  while (seen.find(text) == std::string::npos) {
    if (std::chrono::steady_clock::now() > limit) return false;
    pollfd p{fd, POLLIN, 0};
    if (::poll(&p, 1, 100) <= 0) continue;
    char buf[4096];
    const ssize_t n = ::read(fd, buf, sizeof buf);
    if (n <= 0) return false;
    seen.append(buf, static_cast<std::size_t>(n));
  }
  return true;
}

// Drains the terminal until klote has ended.
void Finish(int fd, pid_t pid) {
  (void)!::write(fd, "\x1b", 1);
  char buf[4096];
  while (::read(fd, buf, sizeof buf) > 0) {
  }
  int status = 0;
  ::waitpid(pid, &status, 0);
}

void BM_StartToMenuBar(benchmark::State& state) {
  for (auto _ : state) {
    winsize size{25, 80, 0, 0};
    int fd = -1;
    const auto start = std::chrono::steady_clock::now();
    const pid_t pid = ::forkpty(&fd, nullptr, nullptr, &size);
    if (pid == 0) {
      ::execl(KLOTE_BINARY_DIR "/app/main/klote", "klote", nullptr);
      _exit(127);
    }
    const bool shown = pid > 0 && ReadUntil(fd, kLoginList) && ::write(fd, "\r", 1) == 1 &&
                       ReadUntil(fd, kWarehouseList) && ::write(fd, "\r", 1) == 1 && ReadUntil(fd, kLastDrawn);
    if (!shown) {
      state.SkipWithError("klote did not show its menu bar");
      if (pid > 0) ::kill(pid, SIGKILL);
      break;
    }
    state.SetIterationTime(std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count());
    Finish(fd, pid);
    ::close(fd);
  }
}
BENCHMARK(BM_StartToMenuBar)->Unit(benchmark::kMillisecond)->UseManualTime()->Iterations(20);

bool SetUp(const std::string& dir, std::string& error) {
  PgCluster cluster;
  if (!PgClusterStart(dir + "/state", cluster, error)) return false;
  gHome = dir + "/home";
  std::filesystem::create_directories(gHome + "/orbel-sql");
  std::ofstream(gHome + "/orbel-sql/conn_parm.cfg")
      << cluster.socketDir << "\n\n" << cluster.port << "\n" << cluster.user << "\n\npostgres\n";
  setenv("HOME", gHome.c_str(), 1);
  setenv("TERM", "xterm", 1);
  unsetenv("TERM_KLOTE");
  unsetenv("TERM_KLOTE_CP");
  if (chdir(gHome.c_str()) != 0) return false;
  if (std::system(KLOTE_BINARY_DIR "/tools/demo-firm/demo-firm >/dev/null") != 0) {
    error = "the demo firm could not be loaded";
    return false;
  }
  return true;
}

}  // namespace

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  char pattern[] = "/tmp/bench_klote_start.XXXXXX";
  const char* dir = mkdtemp(pattern);
  std::string error = dir ? "" : "no temporary directory";
  const bool ready = dir && SetUp(dir, error);
  if (ready) benchmark::RunSpecifiedBenchmarks();
  else std::fprintf(stderr, "bench_klote_start: %s\n", error.c_str());
  if (dir) {
    PgClusterStop(std::string(dir) + "/state");
    std::filesystem::remove_all(dir);
  }
  benchmark::Shutdown();
  return ready ? 0 : 1;
}
