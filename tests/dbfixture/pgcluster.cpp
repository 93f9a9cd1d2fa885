// Starting and stopping the throw-away cluster of a test run.
#include "pgcluster.h"

#include <fcntl.h>
#include <pwd.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cctype>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>

namespace fs = std::filesystem;

namespace {

std::string InfoPath(const std::string& stateDir) { return stateDir + "/cluster.info"; }

bool RunningAsRoot() { return geteuid() == 0; }

// The server programs refuse to run as root: they run as "postgres" then.
std::vector<std::string> AsServerUser(std::vector<std::string> argv) {
  if (!RunningAsRoot()) return argv;
  std::vector<std::string> wrapped = {"runuser", "-u", "postgres", "--"};
  wrapped.insert(wrapped.end(), argv.begin(), argv.end());
  return wrapped;
}

bool GiveToServerUser(const std::string& dir) {
  if (!RunningAsRoot()) return true;
  passwd* pw = getpwnam("postgres");
  if (!pw) return false;
  return chown(dir.c_str(), pw->pw_uid, pw->pw_gid) == 0;
}

void WriteServerSettings(const PgCluster& c) {
  std::ofstream conf(c.dataDir + "/postgresql.conf", std::ios::app);
  conf << "listen_addresses = ''\n"
       << "unix_socket_directories = '" << c.socketDir << "'\n"
       << "port = " << c.port << "\n"
       << "fsync = off\nsynchronous_commit = off\nfull_page_writes = off\n"
       << "max_connections = 40\nshared_buffers = 32MB\n"
       << "log_min_messages = warning\nlogging_collector = off\n";
}

void WriteInfo(const std::string& stateDir, const PgCluster& c) {
  fs::create_directories(stateDir);
  std::ofstream info(InfoPath(stateDir), std::ios::trunc);
  info << c.dataDir << '\n' << c.socketDir << '\n' << c.port << '\n' << c.binDir << '\n' << c.locale << '\n';
}

bool ReadInfo(const std::string& stateDir, PgCluster& c) {
  std::ifstream info(InfoPath(stateDir));
  std::string port;
  if (!std::getline(info, c.dataDir) || !std::getline(info, c.socketDir) || !std::getline(info, port) ||
      !std::getline(info, c.binDir))
    return false;
  std::getline(info, c.locale);
  c.port = std::atoi(port.c_str());
  return c.port > 0;
}

bool InitAndStart(PgCluster& c, std::string& error) {
  const std::string log = c.socketDir + "/server.log";
  const std::string initLog = c.socketDir + "/initdb.log";
  if (PgRunProgram(AsServerUser({c.binDir + "/initdb", "-D", c.dataDir, "-U", c.user, "-A", "trust", "-E",
                                 "UTF8", "--locale=" + c.locale, "--no-sync"}),
                   initLog) != 0) {
    error = "initdb failed, see " + initLog;
    return false;
  }
  WriteServerSettings(c);
  if (PgRunProgram(AsServerUser({c.binDir + "/pg_ctl", "-D", c.dataDir, "-l", log, "-w", "-t", "60", "start"}),
                   c.socketDir + "/pg_ctl.log") != 0) {
    error = "the server did not start, see " + log;
    return false;
  }
  return true;
}

}  // namespace

int PgRunProgram(const std::vector<std::string>& argv, const std::string& outputFile) {
  pid_t pid = fork();
  if (pid < 0) return -1;
  if (pid == 0) {
    int out = open(outputFile.empty() ? "/dev/null" : outputFile.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
    int in = open("/dev/null", O_RDONLY);
    if (out >= 0) {
      dup2(out, 1);
      dup2(out, 2);
    }
    if (in >= 0) dup2(in, 0);
    std::vector<char*> args;
    for (const std::string& a : argv) args.push_back(const_cast<char*>(a.c_str()));
    args.push_back(nullptr);
    execvp(args[0], args.data());
    _exit(127);
  }
  int status = 0;
  while (waitpid(pid, &status, 0) < 0) {
    if (errno != EINTR) return -1;
  }
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

std::string PgFindBinDir() {
  for (const char* dir : {"/usr/lib/postgresql/15/bin", "/usr/local/bin", "/usr/bin"})
    if (access((std::string(dir) + "/initdb").c_str(), X_OK) == 0 &&
        access((std::string(dir) + "/pg_ctl").c_str(), X_OK) == 0)
      return dir;
  return "";
}

std::string PgClusterLocale() {
  FILE* locales = ::popen("locale -a 2>/dev/null", "r");
  if (!locales) return "C";
  std::string found = "C";
  char line[256];
  while (found == "C" && std::fgets(line, sizeof line, locales)) {
    const std::string name(line, std::strcspn(line, "\n"));
    std::string lower;
    for (char ch : name) lower += static_cast<char>(std::tolower(static_cast<unsigned char>(ch)));
    if (lower == "pl_pl.utf8" || lower == "pl_pl.utf-8") found = name;
  }
  ::pclose(locales);
  return found;
}

bool PgClusterStart(const std::string& stateDir, PgCluster& c, std::string& error) {
  PgClusterStop(stateDir);
  c = PgCluster{};
  c.binDir = PgFindBinDir();
  if (c.binDir.empty()) {
    error = "no PostgreSQL server programs (install the postgresql package)";
    return false;
  }
  char dir[] = "/tmp/klote-pg-XXXXXX";
  if (!mkdtemp(dir)) {
    error = "cannot make a temporary directory";
    return false;
  }
  c.socketDir = dir;
  c.dataDir = c.socketDir + "/data";
  c.port = 5432;  // TCP is off: the port only names the socket file in the cluster's own directory
  c.locale = PgClusterLocale();
  chmod(dir, 0755);
  if (!GiveToServerUser(c.socketDir)) {
    error = "no postgres user to run the server as root";
    fs::remove_all(c.socketDir);
    return false;
  }
  WriteInfo(stateDir, c);  // recorded first, so that a failed start is still cleaned up
  return InitAndStart(c, error);
}

void PgClusterStop(const std::string& stateDir) {
  PgCluster c;
  if (!ReadInfo(stateDir, c)) return;
  if (fs::exists(c.dataDir + "/postmaster.pid"))
    PgRunProgram(AsServerUser({c.binDir + "/pg_ctl", "-D", c.dataDir, "-m", "immediate", "-w", "stop"}));
  std::error_code ignored;
  if (c.socketDir.rfind("/tmp/klote-pg-", 0) == 0) fs::remove_all(c.socketDir, ignored);
  fs::remove(InfoPath(stateDir), ignored);
}

bool PgClusterRead(const std::string& stateDir, PgCluster& c) {
  if (!ReadInfo(stateDir, c)) return false;
  return fs::exists(c.socketDir + "/.s.PGSQL." + std::to_string(c.port));
}
