// elzab-sim: an ELZAB fiscal printer behind the simulated serial controller of
// the ELZAB line (fiscal/uart_model.h), which reaches it through the path in
// KLOTE_ELZAB_LINE.
//
//   elzab-sim (--socket PATH | --link PATH) [--journal FILE] [--trace FILE]
//             [--baud N] [--fail N[+]:KIND]...
//
// --socket listens on a Unix socket at PATH and serves one connection at a time
// (the printer keeps its state between them); --link makes a pseudo-terminal
// and links PATH to its slave side. The first output line is PATH. --baud paces
// the answers at N baud (11 bits a byte, 8E1). KIND is nak=FIRST,SECOND (refuse
// and serve those status bytes), silent (answer nothing) or unplug (the line goes
// dead: the connection is closed, so the controller loses clear to send).
#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <stdlib.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <termios.h>
#include <unistd.h>

#include <sys/stat.h>

#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <string>
#include <thread>

#include "elzab_sim_core.h"
#include "sim_process.h"

namespace {

struct Config {
  std::string socket, link, journal, trace;
  long baud = 0;
  std::vector<ElzabFaultRule> faults;
};

[[noreturn]] void Usage(const std::string& why) {
  std::fprintf(stderr, "elzab-sim: %s\n", why.c_str());
  std::exit(2);
}

Config ParseArgs(int argc, char** argv) {
  Config cfg;
  for (int i = 1; i < argc; ++i) {
    const std::string a = argv[i];
    auto value = [&]() -> std::string {
      if (i + 1 >= argc) Usage("missing value of " + a);
      return argv[++i];
    };
    if (a == "--socket") cfg.socket = value();
    else if (a == "--link") cfg.link = value();
    else if (a == "--journal") cfg.journal = value();
    else if (a == "--trace") cfg.trace = value();
    else if (a == "--baud") cfg.baud = std::atol(value().c_str());
    else if (a == "--fail") {
      auto rule = ParseElzabFaultRule(value());
      if (!rule) Usage("bad --fail rule");
      cfg.faults.push_back(*rule);
    } else {
      Usage("unknown option " + a);
    }
  }
  if (cfg.socket.empty() == cfg.link.empty()) Usage("give one of --socket PATH and --link PATH");
  return cfg;
}

FILE* OpenLog(const std::string& path) {
  if (path.empty()) return nullptr;
  FILE* f = std::fopen(path.c_str(), "a");
  if (!f) Usage("cannot write " + path);
  return f;
}

void WriteLog(FILE* f, const std::vector<std::string>& lines) {
  if (!f) return;
  for (const auto& l : lines) std::fprintf(f, "%s\n", l.c_str());
  std::fflush(f);
}

class Printer {
 public:
  Printer(const Config& cfg) : cfg_(cfg), sim_(cfg.faults), journal_(OpenLog(cfg.journal)), trace_(OpenLog(cfg.trace)) {}

  // Serves one connected line until it closes or the printer unplugs it; false
  // when unplugged.
  bool Serve(int fd) {
    for (;;) {
      unsigned char buf[256];
      const ssize_t n = ::read(fd, buf, sizeof buf);
      if (n <= 0) {
        if (n < 0 && errno == EINTR) continue;
        if (n < 0 && errno == EAGAIN) {
          pollfd p{fd, POLLIN, 0};
          ::poll(&p, 1, -1);
          continue;
        }
        return true;  // the controller's side went away
      }
      for (ssize_t i = 0; i < n; ++i)
        if (!Take(fd, buf[i])) return false;
    }
  }

 private:
  bool Take(int fd, uint8_t b) {
    std::string answer;
    sim_.Receive(b, answer);
    WriteLog(journal_, sim_.TakeJournal());
    WriteLog(trace_, sim_.TakeTrace());
    if (sim_.TakeUnplug()) return false;
    for (char c : answer) {
      if (cfg_.baud > 0) std::this_thread::sleep_for(std::chrono::nanoseconds(11'000'000'000LL / cfg_.baud));
      if (::send(fd, &c, 1, MSG_NOSIGNAL) != 1 && (errno != ENOTSOCK || ::write(fd, &c, 1) != 1)) return true;
    }
    return true;
  }

  const Config& cfg_;
  ElzabPrinterSim sim_;
  FILE* journal_;
  FILE* trace_;
};

int ListenOn(const std::string& path) {
  sockaddr_un addr{};
  if (path.size() >= sizeof addr.sun_path) Usage("socket path too long");
  addr.sun_family = AF_UNIX;
  std::memcpy(addr.sun_path, path.c_str(), path.size() + 1);
  ::unlink(path.c_str());
  OwnPath(path);
  const int fd = ::socket(AF_UNIX, SOCK_STREAM, 0);
  if (fd < 0 || ::bind(fd, reinterpret_cast<sockaddr*>(&addr), sizeof addr) != 0 || ::listen(fd, 4) != 0)
    Usage("cannot listen on " + path);
  ::chmod(path.c_str(), 0666);
  return fd;
}

// One connection after another; an unplugged line refuses every later one.
[[noreturn]] void RunOnSocket(const Config& cfg, Printer& printer) {
  const int listener = ListenOn(cfg.socket);
  std::printf("%s\n", cfg.socket.c_str());
  std::fflush(stdout);
  for (;;) {
    const int fd = ::accept(listener, nullptr, nullptr);
    if (fd < 0) continue;
    const bool plugged = printer.Serve(fd);
    ::close(fd);
    if (plugged) continue;
    // Unplugged: no connection is taken any more, so a controller that tries the
    // line again finds no clear to send.
    ::close(listener);
    for (;;) ::pause();
  }
}

// The pseudo-terminal's master is the printer's end; unplugging ends the program,
// which hangs the terminal up.
void RunOnTerminal(const Config& cfg, Printer& printer) {
  const int master = posix_openpt(O_RDWR | O_NOCTTY);
  if (master < 0 || grantpt(master) != 0 || unlockpt(master) != 0) Usage("no pseudo-terminal");
  const std::string slave = ptsname(master);
  // Holding the slave open keeps the master readable between the controller's opens.
  const int keep = ::open(slave.c_str(), O_RDWR | O_NOCTTY);
  termios raw{};
  if (keep < 0 || tcgetattr(keep, &raw) != 0) Usage("cannot open the slave side");
  cfmakeraw(&raw);
  tcsetattr(keep, TCSANOW, &raw);
  ::unlink(cfg.link.c_str());  // a stale link of an earlier run is replaced
  OwnPath(cfg.link);
  if (::symlink(slave.c_str(), cfg.link.c_str()) != 0) Usage("cannot make the link");
  std::printf("%s\n", cfg.link.c_str());
  std::fflush(stdout);
  while (printer.Serve(master)) {
  }
}

}  // namespace

int main(int argc, char** argv) {
  const Config cfg = ParseArgs(argc, argv);
  ::signal(SIGPIPE, SIG_IGN);
  Printer printer(cfg);
  if (!cfg.socket.empty()) RunOnSocket(cfg, printer);
  RunOnTerminal(cfg, printer);
  return 0;
}
