#include "harness.h"

#include <fcntl.h>
#include <grp.h>
#include <poll.h>
#include <pwd.h>
#include <signal.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <cstring>
#include <thread>

#include "base/file_fixture.h"
#include "base/filevar.h"
#include "base/jobfile.h"

namespace {

const char* FisksrvBinary() { return KLOTE_BINARY_DIR "/server/fisksrv"; }

void DropToNobody() {
  if (::geteuid() != 0) return;
  const passwd* nobody = ::getpwnam("nobody");
  const uid_t uid = nobody ? nobody->pw_uid : 65534;
  const gid_t gid = nobody ? nobody->pw_gid : 65534;
  if (::setgroups(0, nullptr) != 0 || ::setgid(gid) != 0 || ::setuid(uid) != 0) ::_exit(120);
}

}  // namespace

TempDir::TempDir() {
  // Lower case only: the server folds directory names to lower case.
  for (int attempt = 0; path_.empty() && attempt < 100; ++attempt) {
    std::string candidate = "/tmp/fisksrv-test-" + std::to_string(::getpid()) + "-" + std::to_string(std::rand());
    if (::mkdir(candidate.c_str(), 0777) == 0) path_ = candidate;
  }
  ::chmod(path_.c_str(), 0777);
}

TempDir::~TempDir() {
  if (!path_.empty()) std::system(("chmod -R u+rwx " + path_ + " 2>/dev/null; rm -rf " + path_).c_str());
}

std::string ReadFileText(const std::string& path) { return file_test::ReadBytes(path); }

void WriteFileText(const std::string& path, const std::string& text) { file_test::WriteBytes(path, text); }

bool PathExists(const std::string& path) {
  struct stat st;
  return ::lstat(path.c_str(), &st) == 0;
}

bool WaitUntil(const std::function<bool()>& condition, int timeoutMs) {
  const auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(timeoutMs);
  while (!condition()) {
    if (std::chrono::steady_clock::now() > end) return false;
    std::this_thread::sleep_for(std::chrono::milliseconds(3));
  }
  return true;
}

int CountOf(const std::string& text, const std::string& needle) {
  int n = 0;
  for (std::size_t at = text.find(needle); at != std::string::npos; at = text.find(needle, at + 1)) ++n;
  return n;
}

bool HasShapeAt(const std::string& text, std::size_t at, const std::string& shape) {
  if (at > text.size() || text.size() - at < shape.size()) return false;
  for (std::size_t i = 0; i < shape.size(); ++i) {
    const char c = text[at + i];
    const bool digit = c >= '0' && c <= '9';
    if (shape[i] == '9' ? !digit : shape[i] == '#' ? !(digit || c == ' ') : c != shape[i]) return false;
  }
  return true;
}

void WriteJobFile(const std::string& path, const std::vector<ShortText>& records) {
  FileVar f;
  f.BindUnixPath(ShortText(path));
  if (f.Rewrite() != 0) return;
  for (const ShortText& r : records) (void)WriteJobRecord(f, r);
}

ServerProcess::ServerProcess(const TempDir& dir, const ServerRun& run) : dir_(dir) {
  if (run.onPty) {
    master_ = ::posix_openpt(O_RDWR | O_NOCTTY);
    ::grantpt(master_);
    ::unlockpt(master_);
    slave_ = ::open(::ptsname(master_), O_RDWR | O_NOCTTY);
  }
  std::vector<std::string> words = {FisksrvBinary()};
  words.insert(words.end(), run.args.begin(), run.args.end());
  pid_ = ::fork();
  if (pid_ != 0) return;
  // The child: its own directory, output and user, then the server.
  if (::chdir(dir.path().c_str()) != 0) ::_exit(121);
  if (run.onPty) {
    ::setsid();
    ::ioctl(slave_, TIOCSCTTY, 0);
    for (int fd = 0; fd <= 2; ++fd) ::dup2(slave_, fd);
  } else {
    const int in = ::open("/dev/null", O_RDONLY);
    const int out = ::open("stdout.txt", O_WRONLY | O_CREAT | O_TRUNC, 0666);
    const int err = ::open("stderr.txt", O_WRONLY | O_CREAT | O_TRUNC, 0666);
    ::dup2(in, 0);
    ::dup2(out, 1);
    ::dup2(err, 2);
    if (run.noStdout) ::close(1);
  }
  if (run.asNobody) DropToNobody();
  std::vector<char*> argv;
  for (std::string& w : words) argv.push_back(w.data());
  argv.push_back(nullptr);
  ::execv(argv[0], argv.data());
  ::_exit(122);
}

ServerProcess::~ServerProcess() {
  if (!ended_ && pid_ > 0) {
    ::kill(pid_, SIGTERM);
    int status;
    if (!Wait(2000, status)) {
      ::kill(pid_, SIGKILL);
      ::waitpid(pid_, nullptr, 0);
    }
  }
  if (master_ >= 0) ::close(master_);
  if (slave_ >= 0) ::close(slave_);
}

bool ServerProcess::Wait(int timeoutMs, int& status) {
  int raw = 0;
  const bool ended = WaitUntil(
      [&] {
        if (master_ >= 0) ReadTerminal(0);
        return ::waitpid(pid_, &raw, WNOHANG) == pid_;
      },
      timeoutMs);
  if (!ended) return false;
  ended_ = true;
  status = WIFEXITED(raw) ? WEXITSTATUS(raw) : 1000 + WTERMSIG(raw);
  if (master_ >= 0) ReadTerminal(50);
  return true;
}

std::string ServerProcess::Output() {
  if (master_ >= 0) {
    ReadTerminal(0);
    return screen_;
  }
  return ReadFileText(dir_ / "stdout.txt");
}

std::string ServerProcess::Errors() { return ReadFileText(dir_ / "stderr.txt"); }

void ServerProcess::ReadTerminal(int timeoutMs) {
  pollfd p{master_, POLLIN, 0};
  while (::poll(&p, 1, timeoutMs) > 0 && (p.revents & POLLIN)) {
    char buffer[4096];
    const ssize_t n = ::read(master_, buffer, sizeof buffer);
    if (n <= 0) break;
    screen_.append(buffer, n);
    timeoutMs = 0;
  }
}

bool ServerProcess::WaitForOutput(const std::string& text, int timeoutMs) {
  return WaitUntil([&] { return Output().find(text) != std::string::npos; }, timeoutMs);
}

void ServerProcess::Type(const std::string& bytes) {
  if (master_ >= 0) (void)!::write(master_, bytes.data(), bytes.size());
}

bool ServerProcess::TerminalRestored() {
  termios t{};
  if (slave_ < 0 || ::tcgetattr(slave_, &t) != 0) return false;
  return (t.c_lflag & ECHO) && (t.c_lflag & ICANON);
}
