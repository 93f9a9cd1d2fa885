// posnet-sim: a POSNET fiscal printer on a pseudo-terminal.
//
//   posnet-sim [--link PATH] [--journal FILE] [--trace FILE] [--baud N] [--pace-input]
//              [--ignore-cancel] [--fail N[+]:KIND[=ARG]]...
//
// Prints the path of the terminal's slave side on its first output line (and links
// PATH to it when asked), then answers the driver until it is killed. --baud paces
// its answers at N baud (10 bits a byte), --pace-input also takes the driver's bytes
// no faster than that. KIND is error=n, silent, xoff[=ms], oneenq, corrupt or badend.
#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <stdlib.h>
#include <termios.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <deque>
#include <optional>
#include <string>

#include "posnet_sim_core.h"
#include "sim_process.h"

namespace {

struct Config {
  std::string link, journal, trace;
  long baud = 0;
  bool paceInput = false;
  SimOptions sim;
};

[[noreturn]] void Usage(const char* why) {
  std::fprintf(stderr, "posnet-sim: %s\n", why);
  std::exit(2);
}

Config ParseArgs(int argc, char** argv) {
  Config cfg;
  for (int i = 1; i < argc; ++i) {
    std::string a = argv[i];
    auto value = [&]() -> std::string {
      if (i + 1 >= argc) Usage(("missing value of " + a).c_str());
      return argv[++i];
    };
    if (a == "--link") cfg.link = value();
    else if (a == "--journal") cfg.journal = value();
    else if (a == "--trace") cfg.trace = value();
    else if (a == "--baud") cfg.baud = std::atol(value().c_str());
    else if (a == "--pace-input") cfg.paceInput = true;
    else if (a == "--ignore-cancel") cfg.sim.ignoreCancel = true;
    else if (a == "--fail") {
      auto rule = ParseSimFaultRule(value());
      if (!rule) Usage("bad --fail rule");
      cfg.sim.faults.push_back(*rule);
    } else {
      Usage(("unknown option " + a).c_str());
    }
  }
  return cfg;
}

int64_t NowNs() {
  timespec ts;
  clock_gettime(CLOCK_MONOTONIC, &ts);
  return int64_t{ts.tv_sec} * 1000000000 + ts.tv_nsec;
}

struct Timed {
  int64_t due;
  uint8_t byte;
};

// The line between the printer and the pseudo-terminal: bytes each way are released
// at the line's pace, independently, as on a full-duplex serial line.
class Line {
 public:
  Line(int master, const Config& cfg, PosnetPrinterSim& sim, FILE* journal, FILE* trace)
      : master_(master), cfg_(cfg), sim_(sim), journal_(journal), trace_(trace),
        byteNs_(cfg.baud > 0 ? 10'000'000'000LL / cfg.baud : 0) {}

  void Run() {
    for (;;) {
      int64_t now = NowNs();
      ReleaseInput(now);
      ReleaseOutput(now);
      if (xonDue_ && *xonDue_ <= now) {
        Queue("\x11", now);
        xonDue_.reset();
      }
      Wait();
    }
  }

 private:
  void ReleaseInput(int64_t now) {
    while (!in_.empty() && in_.front().due <= now) {
      std::string answer;
      sim_.Receive(in_.front().byte, answer);
      in_.pop_front();
      WriteLog(journal_, sim_.TakeJournal());
      WriteLog(trace_, sim_.TakeTrace());
      if (auto hold = sim_.TakeXoffHold(); hold && *hold > 0) xonDue_ = now + int64_t{*hold} * 1000000;
      Queue(answer, now);
    }
  }

  void ReleaseOutput(int64_t now) {
    while (!out_.empty() && out_.front().due <= now) {
      char b = static_cast<char>(out_.front().byte);
      if (::write(master_, &b, 1) != 1 && errno != EINTR) std::exit(1);
      out_.pop_front();
    }
  }

  void Queue(const std::string& bytes, int64_t now) {
    for (char c : bytes) {
      outClock_ = (outClock_ > now ? outClock_ : now) + byteNs_;
      out_.push_back({outClock_, static_cast<uint8_t>(c)});
    }
  }

  void WriteLog(FILE* f, const std::vector<std::string>& lines) {
    if (!f) return;
    for (const auto& l : lines) std::fprintf(f, "%s\n", l.c_str());
    std::fflush(f);
  }

  void Wait() {
    int64_t next = INT64_MAX;
    if (!in_.empty()) next = in_.front().due;
    if (!out_.empty() && out_.front().due < next) next = out_.front().due;
    if (xonDue_ && *xonDue_ < next) next = *xonDue_;
    pollfd p{master_, POLLIN, 0};
    timespec ts{}, *timeout = nullptr;
    if (next != INT64_MAX) {
      int64_t left = next - NowNs();
      if (left < 0) left = 0;
      ts = {static_cast<time_t>(left / 1000000000), static_cast<long>(left % 1000000000)};
      timeout = &ts;
    }
    if (ppoll(&p, 1, timeout, nullptr) > 0 && (p.revents & POLLIN)) ReadInput();
  }

  void ReadInput() {
    unsigned char buf[512];
    ssize_t n = ::read(master_, buf, sizeof buf);
    if (n <= 0) return;
    int64_t arrival = NowNs();
    for (ssize_t i = 0; i < n; ++i) {
      int64_t due = arrival;
      if (cfg_.paceInput) {
        inClock_ = (inClock_ > arrival ? inClock_ : arrival) + byteNs_;
        due = inClock_;
      }
      in_.push_back({due, buf[i]});
    }
  }

  int master_;
  const Config& cfg_;
  PosnetPrinterSim& sim_;
  FILE* journal_;
  FILE* trace_;
  int64_t byteNs_;
  int64_t inClock_ = 0, outClock_ = 0;
  std::optional<int64_t> xonDue_;
  std::deque<Timed> in_, out_;
};

FILE* OpenLog(const std::string& path) {
  if (path.empty()) return nullptr;
  FILE* f = std::fopen(path.c_str(), "a");
  if (!f) Usage(("cannot write " + path).c_str());
  return f;
}

}  // namespace

int main(int argc, char** argv) {
  Config cfg = ParseArgs(argc, argv);
  int master = posix_openpt(O_RDWR | O_NOCTTY);
  if (master < 0 || grantpt(master) != 0 || unlockpt(master) != 0) Usage("no pseudo-terminal");
  std::string slave = ptsname(master);
  // Holding the slave side open keeps the master readable between the driver's opens;
  // raw mode keeps the terminal from echoing while no driver has set it up.
  int keep = ::open(slave.c_str(), O_RDWR | O_NOCTTY);
  termios raw{};
  if (keep < 0 || tcgetattr(keep, &raw) != 0) Usage("cannot open the slave side");
  cfmakeraw(&raw);
  tcsetattr(keep, TCSANOW, &raw);
  if (!cfg.link.empty()) {
    ::unlink(cfg.link.c_str());  // a stale link of an earlier run is replaced
    OwnPath(cfg.link);
    if (::symlink(slave.c_str(), cfg.link.c_str()) != 0) Usage("cannot make the link");
  }
  FILE* journal = OpenLog(cfg.journal);
  FILE* trace = OpenLog(cfg.trace);
  std::printf("%s\n", slave.c_str());
  std::fflush(stdout);
  PosnetPrinterSim sim(cfg.sim);
  Line(master, cfg, sim, journal, trace).Run();
}
