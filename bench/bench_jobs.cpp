// Receipt jobs of 50 lines on both printer families, against the simulators
// pacing their lines at 9600 baud.
//
// The handler figures run the server's own job handler in this process on a job
// file and compare its time with the pure line time: the bytes that crossed at
// 9600 baud (POSNET 10 bits a byte, ELZAB 8E1 11 bits), and for ELZAB also with
// the protocol floor: the bytes sent plus the waits the protocol itself orders
// (the response delay after each command, which the answer byte falls within,
// and the two purges). The last byte of a command may still be on the line
// while that delay runs, so a job can come in a little under the floor.
// The server figures run the real fisksrv (poll time 1 ms, log file) and take
// the time from publishing the job to its result line in the log.
#include <benchmark/benchmark.h>
#include <signal.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <fstream>
#include <sstream>
#include <string>
#include <thread>

#include "base/codepage.h"
#include "base/filevar.h"
#include "base/jobfile.h"
#include "elzab_sim_process.h"
#include "fiscal/elzab_line.h"
#include "fiscal/serial.h"
#include "server/elzab_jobs.h"
#include "server/jobs.h"
#include "server/posnet_jobs.h"
#include "sim_process.h"

namespace {

using Clock = std::chrono::steady_clock;
constexpr int kLines = 50;
constexpr double kPosnetByteS = 10.0 / 9600.0;
constexpr double kElzabByteS = 11.0 / 9600.0;
constexpr double kPurgeS = 0.2;

double Since(Clock::time_point t) { return std::chrono::duration<double>(Clock::now() - t).count(); }

// A folder for the job files, the line links and the server.
struct Workspace {
  std::string dir;
  // Lower case only: the server folds directory names to lower case.
  Workspace() : dir("/tmp/bench-jobs-" + std::to_string(::getpid()) + "-" + std::to_string(++count)) {
    ::mkdir(dir.c_str(), 0777);
  }
  static inline int count = 0;
  ~Workspace() { std::system(("rm -rf " + dir).c_str()); }
};

std::vector<ShortText> ReceiptRecords() {
  std::vector<ShortText> records = {"\x1bPARAGON", "50", "0", "01J", "Jan Kowalski", Utf8ToMaz(" gotówką"), "P 1/2024"};
  long total = 0;
  for (int i = 1; i <= kLines; ++i) {
    const int price = 100 + 37 * i;  // grosz
    total += price * 2;
    records.push_back(Utf8ToMaz(ShortText("\"Towar numer " + std::to_string(i) + " żółty\",2,\"A\"," +
                                          std::to_string(price / 100) + "." + std::to_string(price % 100 / 10) +
                                          std::to_string(price % 10) + ",szt")));
  }
  records[2] = ShortText(std::to_string(total));
  records.push_back(kJobKeywordEnd);
  return records;
}

// Writes the job aside and renames it into place: published in one move.
void PublishJob(const std::string& path) {
  FileVar f;
  f.BindUnixPath(ShortText(path + ".new"));
  if (f.Rewrite() != 0) return;
  for (const ShortText& r : ReceiptRecords()) (void)WriteJobRecord(f, r);
  (void)f.Close();
  ::rename((path + ".new").c_str(), path.c_str());
}

// Runs a handler on a fresh job file; gives its JobResult.
uint8_t RunHandler(JobHandler handler, int family, const std::string& path) {
  PublishJob(path);
  FileVar file;
  if (ClassifyJobFile(ShortText(path), file) != kJobReceipt) return 255;
  ShortText text;
  JobRequest job{family, 1, "", false, 0, &file, &text};
  const uint8_t result = handler(job);
  (void)file.Close();
  return result;
}

void BM_PosnetHandler50Lines(benchmark::State& state) {
  Workspace ws;
  SimProcess sim({"--baud", "9600", "--pace-input"});
  ::symlink(sim.Slave().c_str(), (ws.dir + "/tty0").c_str());
  ::setenv("KLOTE_SERIAL_PREFIX", (ws.dir + "/tty").c_str(), 1);
  double seconds = 0, lineSeconds = 0;
  for (auto _ : state) {
    const uint64_t sent = PosnetLine().bytesSent, received = PosnetLine().bytesReceived;
    const auto t0 = Clock::now();
    if (RunHandler(PosnetReceipt, 2, ws.dir + "/job") != 0) {
      state.SkipWithError("the POSNET receipt failed");
      break;
    }
    seconds += Since(t0);
    lineSeconds += static_cast<double>(PosnetLine().bytesSent - sent + PosnetLine().bytesReceived - received) * kPosnetByteS;
  }
  const double n = static_cast<double>(state.iterations());
  state.counters["job_ms"] = seconds / n * 1000;
  state.counters["line_ms"] = lineSeconds / n * 1000;
  state.counters["over_line_pct"] = (seconds / lineSeconds - 1) * 100;
  PosnetCloseAtExit();
}

void BM_ElzabHandler50Lines(benchmark::State& state) {
  Workspace ws;
  ElzabSimProcess sim({"--baud", "9600"});
  ::setenv("KLOTE_ELZAB_LINE", sim.Line().c_str(), 1);
  ReceiptJob receipt;
  {
    PublishJob(ws.dir + "/probe");
    FileVar file;
    if (ClassifyJobFile(ShortText(ws.dir + "/probe"), file) != kJobReceipt || !ReadReceiptJob(file, receipt)) {
      state.SkipWithError("the job does not read");
      return;
    }
  }
  // Every command is followed by the response delay, within which its one-byte answer
  // comes; so the floor counts the bytes sent and the waits.
  const std::vector<std::string> commands = ElzabReceiptCommands(receipt);
  double bytes = 0;
  for (const std::string& c : commands) bytes += static_cast<double>(c.size());
  const double lineS = bytes * kElzabByteS;
  const double floorS = lineS + static_cast<double>(commands.size()) * ElzabLine().responseDelay / 1000.0 + 2 * kPurgeS;
  double seconds = 0;
  for (auto _ : state) {
    const auto t0 = Clock::now();
    if (RunHandler(ElzabReceipt, 1, ws.dir + "/job") != 0) {
      state.SkipWithError("the ELZAB receipt failed");
      break;
    }
    seconds += Since(t0);
  }
  const double s = seconds / static_cast<double>(state.iterations());
  state.counters["job_ms"] = s * 1000;
  state.counters["line_ms"] = lineS * 1000;
  state.counters["floor_ms"] = floorS * 1000;
  state.counters["over_floor_pct"] = (s / floorS - 1) * 100;
  state.counters["bytes"] = bytes;
}

std::string ReadText(const std::string& path) {
  std::ifstream in(path);
  std::stringstream s;
  s << in.rdbuf();
  return s.str();
}

int CountOf(const std::string& text, const std::string& needle) {
  int n = 0;
  for (auto at = text.find(needle); at != std::string::npos; at = text.find(needle, at + 1)) ++n;
  return n;
}

// Result lines of jobs: a success or a failure stamp. Lines of the check at the
// start (a receipt found open) are no results.
int ResultLines(const std::string& log) { return CountOf(log, " O.K.\n") + CountOf(log, " nie wyk.zad. "); }

// The real server: the time from publishing a job to its result line.
void BM_FisksrvReceipt50Lines(benchmark::State& state) {
  const bool elzab = state.range(0) == 1;
  Workspace ws;
  ElzabSimProcess elzabSim({"--baud", "9600"});
  SimProcess posnetSim({"--baud", "9600", "--pace-input"});
  ::symlink(posnetSim.Slave().c_str(), (ws.dir + "/tty0").c_str());
  ::setenv("KLOTE_SERIAL_PREFIX", (ws.dir + "/tty").c_str(), 1);
  ::setenv("KLOTE_ELZAB_LINE", elzabSim.Line().c_str(), 1);
  std::ofstream(ws.dir + "/fisk.cfg") << "1,1,\"e\",,0\n2,1,\"p\",,0\n";
  const pid_t pid = ::fork();
  if (pid == 0) {
    if (::chdir(ws.dir.c_str()) != 0) ::_exit(1);
    ::execl(KLOTE_BINARY_DIR "/server/fisksrv", "fisksrv", "fisk.cfg", "1", "fisk.log", nullptr);
    ::_exit(1);
  }
  const std::string log = ws.dir + "/fisk.log";
  while (ReadText(log).find("SKONFIGUROWANO") == std::string::npos) std::this_thread::sleep_for(std::chrono::milliseconds(5));
  int done = 0;
  double seconds = 0;
  for (auto _ : state) {
    const auto t0 = Clock::now();
    PublishJob(ws.dir + (elzab ? "/e" : "/p"));
    ++done;
    while (ResultLines(ReadText(log)) < done) std::this_thread::sleep_for(std::chrono::microseconds(500));
    seconds += Since(t0);
  }
  // The log goes with the error, so that a failure under load can be read afterwards.
  if (CountOf(ReadText(log), "PARAGON O.K.") != done) state.SkipWithError(("a receipt failed:\n" + ReadText(log)).c_str());
  state.counters["publish_to_result_ms"] = seconds / static_cast<double>(state.iterations()) * 1000;
  ::kill(pid, SIGTERM);
  ::waitpid(pid, nullptr, 0);
}

BENCHMARK(BM_PosnetHandler50Lines)->Iterations(2)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(BM_ElzabHandler50Lines)->Iterations(2)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(BM_FisksrvReceipt50Lines)->Arg(2)->Arg(1)->Iterations(2)->Unit(benchmark::kMillisecond)->UseRealTime();

}  // namespace

BENCHMARK_MAIN();
