// Runs elzab-sim as a child process (for tests, the demo's checks and
// benchmarks), listening on a Unix socket in a fresh temporary folder.
#pragma once

#include <string>
#include <vector>

class ElzabSimProcess {
 public:
  // Starts the simulator with the given extra arguments; its socket, journal and
  // trace are in a fresh temporary folder. With terminal set it makes a
  // pseudo-terminal instead of the socket.
  explicit ElzabSimProcess(std::vector<std::string> args = {}, bool terminal = false);
  ~ElzabSimProcess();
  ElzabSimProcess(const ElzabSimProcess&) = delete;
  ElzabSimProcess& operator=(const ElzabSimProcess&) = delete;

  // The path for KLOTE_ELZAB_LINE; empty when the simulator did not start.
  const std::string& Line() const { return line_; }
  const std::string& Folder() const { return dir_; }
  // Lines printed so far, and the commands with their answers.
  std::vector<std::string> Journal() const;
  std::vector<std::string> Trace() const;
  // Kills the simulator at once (SIGKILL): its socket or link stays behind.
  void Kill();
  // Starts it again with the same arguments at the same path, a fresh printer.
  void Restart();

 private:
  int pid_ = -1;
  std::string dir_, line_;
  std::vector<std::string> argv_;
};
