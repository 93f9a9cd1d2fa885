#include "base/platform.h"

#include <dirent.h>
#include <fnmatch.h>
#include <spawn.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <string>
#include <vector>

#include "base/paths.h"

extern char** environ;

namespace {

// The process's parameters as main received them.
int gArgc = 0;
char** gArgv = nullptr;

bool HasWildcard(const ShortText& name) { return name.Pos('*') != 0 || name.Pos('?') != 0; }

uint8_t AttrOf(const char* name, const struct stat& st) {
  uint8_t attr = 0;
  if (S_ISDIR(st.st_mode)) attr |= kAttrDirectory;
  else if (S_ISREG(st.st_mode)) attr |= kAttrArchive;
  else attr |= kAttrSysFile;
  const bool dotEntry = std::strcmp(name, ".") == 0 || std::strcmp(name, "..") == 0;
  if (name[0] == '.' && !dotEntry) attr |= kAttrHidden;
  if ((st.st_mode & (S_IWUSR | S_IWGRP | S_IWOTH)) == 0) attr |= kAttrReadOnly;
  return attr;
}

// Words of a command line: blanks separate, quotes group and are dropped.
std::vector<std::string> SplitCommandLine(std::string_view line) {
  std::vector<std::string> words;
  std::string word;
  bool inWord = false;
  char quote = 0;
  for (char c : line) {
    if (quote != 0) {
      if (c == quote) quote = 0;
      else word += c;
    } else if (c == '"' || c == '\'') {
      quote = c;
      inWord = true;
    } else if (c == ' ' || c == '\t') {
      if (inWord) words.push_back(word);
      word.clear();
      inWord = false;
    } else {
      word += c;
      inWord = true;
    }
  }
  if (inWord) words.push_back(word);
  return words;
}

}  // namespace

void SetProgramParameters(int argc, char** argv) {
  gArgc = argc;
  gArgv = argv;
}

int ParamCount() { return gArgc > 0 ? gArgc - 1 : 0; }

ShortText ParamStr(int index) {
  if (index < 0 || index >= gArgc || gArgv == nullptr) return ShortText();
  return ShortText(gArgv[index]);
}

FileSearch::~FileSearch() { Close(); }

void FileSearch::Close() {
  if (dir_ != nullptr) ::closedir(static_cast<DIR*>(dir_));
  dir_ = nullptr;
}

bool FileSearch::Matches(const char* name, FoundFile& out) const {
  struct stat st;
  const std::string full = directory_.Str() + name;
  if (::stat(full.c_str(), &st) != 0) return false;
  const uint8_t attr = AttrOf(name, st);
  constexpr uint8_t kMustBeAsked = kAttrHidden | kAttrSysFile | kAttrVolumeId | kAttrDirectory;
  if ((attr & kMustBeAsked & ~mask_) != 0) return false;
  out.name = ShortText(name);
  out.attr = attr;
  out.size = st.st_size;
  return true;
}

bool FileSearch::First(const ShortText& path, uint8_t attrMask) {
  Close();
  const ShortText unixPath = PathToUnix(path);
  int slash = 0;
  for (int i = unixPath.Length(); i >= 1 && slash == 0; --i)
    if (unixPath.At(i) == '/') slash = i;
  directory_ = unixPath.Copy(1, slash);
  pattern_ = unixPath.Copy(slash + 1, 255);
  mask_ = attrMask;
  if (pattern_.Empty()) return false;
  // A plain name is looked up directly: the server does this for every printer
  // on every pass, and a directory listing would cost far more.
  if (!HasWildcard(pattern_)) return Matches(pattern_.Str().c_str(), found_);
  DIR* dir = ::opendir(directory_.Empty() ? "." : directory_.Str().c_str());
  if (dir == nullptr) return false;
  dir_ = dir;
  return Next();
}

bool FileSearch::Next() {
  if (dir_ == nullptr) return false;
  const std::string pattern = pattern_.Str();
  while (const dirent* entry = ::readdir(static_cast<DIR*>(dir_))) {
    if (::fnmatch(pattern.c_str(), entry->d_name, 0) != 0) continue;
    if (Matches(entry->d_name, found_)) return true;
  }
  return false;
}

ClockReading ReadClock() {
  timespec now{};
  ::clock_gettime(CLOCK_REALTIME, &now);
  std::tm local{};
  ::localtime_r(&now.tv_sec, &local);
  ClockReading r;
  r.year = local.tm_year + 1900;
  r.month = local.tm_mon + 1;
  r.day = local.tm_mday;
  r.dayOfWeek = local.tm_wday;
  r.hour = local.tm_hour;
  r.minute = local.tm_min;
  r.second = local.tm_sec;
  r.millisecond = static_cast<int>(now.tv_nsec / 1000000);
  return r;
}

void SleepMs(int64_t milliseconds) {
  if (milliseconds <= 0) return;
  timespec left{static_cast<time_t>(milliseconds / 1000), static_cast<long>(milliseconds % 1000) * 1000000L};
  while (::nanosleep(&left, &left) != 0 && errno == EINTR) {
  }
}

int RunProgram(const ShortText& program, const ShortText& commandLine) {
  const bool hasDirectory = program.Pos('/') != 0 || program.Pos('\\') != 0;
  const std::string path = hasDirectory ? PathToUnix(program).Str() : program.Str();
  if (path.empty()) return -1;
  std::vector<std::string> words = SplitCommandLine(commandLine.View());
  words.insert(words.begin(), path);
  std::vector<char*> argv;
  for (std::string& w : words) argv.push_back(w.data());
  argv.push_back(nullptr);

  std::fflush(nullptr);  // the child must not repeat what waits in our buffers
  pid_t pid = 0;
  const int started = hasDirectory ? ::posix_spawn(&pid, path.c_str(), nullptr, nullptr, argv.data(), environ)
                                   : ::posix_spawnp(&pid, path.c_str(), nullptr, nullptr, argv.data(), environ);
  if (started != 0) return -1;
  int status = 0;
  while (::waitpid(pid, &status, 0) < 0)
    if (errno != EINTR) return -1;
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

void RunTimeError(int code, const char* what) {
  std::fflush(stdout);
  std::fprintf(stderr, "Runtime error %d: %s\n", code, what);
  std::exit(code);
}
