// Running the real fisksrv binary in a temporary directory: with its output
// in a file, or on a pseudo-terminal; optionally as an unprivileged user, so
// that a file can be kept from it even when the tests run as root.
#pragma once

#include <sys/types.h>

#include <functional>
#include <string>
#include <vector>

#include "base/shorttext.h"

// A temporary directory that everyone may write, removed with its contents.
class TempDir {
 public:
  TempDir();
  ~TempDir();
  const std::string& path() const { return path_; }
  std::string operator/(const std::string& name) const { return path_ + "/" + name; }

 private:
  std::string path_;
};

std::string ReadFileText(const std::string& path);
void WriteFileText(const std::string& path, const std::string& text);
bool PathExists(const std::string& path);
// Polls the condition every few milliseconds until it holds or the time is up.
bool WaitUntil(const std::function<bool()>& condition, int timeoutMs);
// Number of occurrences of needle in text.
int CountOf(const std::string& text, const std::string& needle);
// Whether the text from the position has the shape: "9" stands for a digit, "#"
// for a digit or a blank, any other character for itself.
bool HasShapeAt(const std::string& text, std::size_t at, const std::string& shape);
// Writes a job file of the records (record 1 is the keyword), zero-filled.
void WriteJobFile(const std::string& path, const std::vector<ShortText>& records);

struct ServerRun {
  std::vector<std::string> args;  // after the program name
  bool asNobody = false;          // run as an unprivileged user (when root)
  bool onPty = false;             // standard input and output a pseudo-terminal
  bool noStdout = false;          // started with standard output closed
};

// One fisksrv process in a directory. Output goes to "stdout.txt" and
// "stderr.txt" there, or to the pseudo-terminal. Stopped when destroyed.
class ServerProcess {
 public:
  ServerProcess(const TempDir& dir, const ServerRun& run);
  ~ServerProcess();
  pid_t pid() const { return pid_; }
  // Waits for the end; false on time-out. status receives the exit status, or
  // 1000 + the signal number.
  bool Wait(int timeoutMs, int& status);
  // Standard output so far (the file), or everything read from the terminal.
  std::string Output();
  std::string Errors();
  // Reads the terminal until the text has come; false on time-out.
  bool WaitForOutput(const std::string& text, int timeoutMs);
  // Types bytes on the terminal.
  void Type(const std::string& bytes);
  // The terminal's settings still have echo and line mode after the end.
  bool TerminalRestored();

 private:
  void ReadTerminal(int timeoutMs);

  const TempDir& dir_;
  pid_t pid_ = -1;
  bool ended_ = false;
  int master_ = -1;
  int slave_ = -1;
  std::string screen_;
};
