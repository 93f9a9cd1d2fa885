// Runs posnet-sim as a child process (for tests and benchmarks), on a pseudo-terminal of its own.
#pragma once

#include <string>
#include <vector>

class SimProcess {
 public:
  // Starts the simulator with the given extra arguments; its journal and trace go to a
  // fresh temporary folder.
  explicit SimProcess(std::vector<std::string> args = {});
  ~SimProcess();
  SimProcess(const SimProcess&) = delete;
  SimProcess& operator=(const SimProcess&) = delete;

  // Path of the terminal's slave side, empty when the simulator did not start.
  const std::string& Slave() const { return slave_; }
  const std::string& Folder() const { return dir_; }
  // Lines printed so far, and what came in.
  std::vector<std::string> Journal() const;
  std::vector<std::string> Trace() const;
  // Kills the simulator at once (SIGKILL), as a printer that loses power.
  void Kill();
  // Starts it again with the same arguments and files; its terminal is a new one.
  void Restart();

 private:
  int pid_ = -1;
  std::string dir_, slave_;
  std::vector<std::string> argv_;
};

// Lines of a text file (empty when it is missing).
std::vector<std::string> ReadLines(const std::string& path);
// Starts a simulator program (argv[0] its path) with its standard output on a pipe and
// reads its first output line into firstLine; gives its process id, or -1.
int SpawnSimulator(std::vector<std::string> argv, std::string& firstLine);
// Kills a simulator started by SpawnSimulator at once and waits for its end; pid becomes -1.
void KillSimulator(int& pid);
// Ends a simulator started by SpawnSimulator (pid -1: none) and removes its folder
// with the named files in it.
void StopSimulator(int pid, const std::string& folder, const std::vector<std::string>& files);

// Makes path this simulator's own: it is removed when the process ends on
// SIGTERM, SIGINT, SIGHUP or SIGQUIT, so that no link is left pointing at a
// terminal number the system gives to another program next.
void OwnPath(const std::string& path);
