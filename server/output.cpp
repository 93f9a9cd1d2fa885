#include "server/output.h"

#include <fcntl.h>
#include <unistd.h>

#include <cstdio>

#include "base/filevar.h"

namespace {

// The log file standing for standard output, by its path on disk.
struct LogState {
  bool open = false;
  ShortText unixPath;
};
LogState gLog;

// Creation is left to the process's umask, which the server sets to 0 so that
// other users can share the log.
constexpr mode_t kLogMode = 0666;

int OpenForAppending(const ShortText& unixPath) {
  return ::open(unixPath.Str().c_str(), O_WRONLY | O_APPEND | O_CLOEXEC);
}

int CreateAnew(const ShortText& unixPath) {
  return ::open(unixPath.Str().c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, kLogMode);
}

// Puts the descriptor in the place of standard output; false if it is not open.
bool BecomeStandardOutput(int fd) {
  if (fd < 0) return false;
  // Started with standard output closed, the log is given its place already.
  if (fd == STDOUT_FILENO) return true;
  std::fflush(stdout);
  const bool moved = ::dup2(fd, STDOUT_FILENO) >= 0;
  ::close(fd);
  return moved;
}

}  // namespace

bool OpenLogAsOutput(const ShortText& logName) {
  FileVar file;
  AssignFile(file, logName);
  const ShortText path = file.Name();
  int fd = OpenForAppending(path);
  if (fd < 0) fd = CreateAnew(path);
  if (!BecomeStandardOutput(fd)) return false;
  gLog = LogState{true, path};
  return true;
}

bool LogIsOpen() { return gLog.open; }

void ReopenLog() {
  if (!gLog.open) return;
  std::fflush(stdout);
  ::close(STDOUT_FILENO);
  int fd = OpenForAppending(gLog.unixPath);
  if (fd < 0) fd = CreateAnew(gLog.unixPath);
  BecomeStandardOutput(fd);
}

void CloseLog() {
  if (!gLog.open) return;
  std::fflush(stdout);
  ::close(STDOUT_FILENO);
  gLog.open = false;
}

void WriteOut(const ShortText& text) { std::fwrite(text.Data(), 1, text.Length(), stdout); }

void WriteLine(const ShortText& text) {
  WriteOut(text);
  std::fputc('\n', stdout);
}

void FlushOut() { std::fflush(stdout); }
