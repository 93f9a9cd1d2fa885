#include "base/filenames.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <ctime>
#include <string>
#include <vector>

#include "base/codepage.h"
#include "base/numbers.h"
#include "base/numbers_format.h"
#include "base/paths.h"
#include "base/text.h"

namespace {

// Four base-36 digits give 1,679,616 names; a directory full of them is a fault.
constexpr int64_t kTempNameSpace = 36LL * 36 * 36 * 36;
constexpr int kTempNameTries = 4096;

// A start that differs between processes and between runs.
int64_t TempSeed() {
  timespec now{};
  ::clock_gettime(CLOCK_REALTIME, &now);
  return (static_cast<int64_t>(::getpid()) * 7919 + now.tv_nsec / 1000 + now.tv_sec) % kTempNameSpace;
}

ShortText FourDigits(int64_t n) {
  return MazLowCaseText(PadLeft(ToBase36(n % kTempNameSpace), '0', 4));
}

ShortText EnvValue(const char* name) {
  const char* v = std::getenv(name);
  return v == nullptr ? ShortText() : ShortText(v);
}

bool IsRegularFile(const std::string& path) {
  struct stat st;
  return ::stat(path.c_str(), &st) == 0 && S_ISREG(st.st_mode);
}

// An absolute path with "." and ".." segments and doubled '/' taken out.
std::string Resolve(const std::string& path) {
  std::string full = path;
  if (full.empty() || full[0] != '/') {
    char cwd[4096];
    full = std::string(::getcwd(cwd, sizeof cwd) != nullptr ? cwd : ".") + "/" + full;
  }
  std::vector<std::string> parts;
  size_t from = 0;
  while (from <= full.size()) {
    size_t to = full.find('/', from);
    if (to == std::string::npos) to = full.size();
    const std::string part = full.substr(from, to - from);
    if (part == "..") {
      if (!parts.empty()) parts.pop_back();
    } else if (!part.empty() && part != ".") {
      parts.push_back(part);
    }
    from = to + 1;
  }
  std::string out;
  for (const std::string& p : parts) out += "/" + p;
  return out.empty() ? "/" : out;
}

bool FoundAt(const std::string& path, ShortText& out) {
  const std::string full = Resolve(path);
  if (full.size() > 255 || !IsRegularFile(full)) return false;
  out = ShortText(full);
  return true;
}

bool IsDosNameChar(unsigned char c) {
  if ((c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9')) return true;
  for (char allowed : std::string_view("!#$%&'()-@^_`{}~"))
    if (c == static_cast<unsigned char>(allowed)) return true;
  return false;
}

bool IsKeyChar(unsigned char c) {
  return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '_';
}

}  // namespace

ShortText TempDir() {
  ShortText dir = EnvValue("TEMP");
  if (dir.Empty()) dir = EnvValue("TMP");
  // "./" rather than the working directory's full name: PathToUnix folds
  // directory names to lower case, and "./" survives that.
  if (dir.Empty()) dir = "./";
  if (dir.At(dir.Length()) != '/') dir.Append('/');
  return dir;
}

ShortText TempNameIn(const ShortText& directory) {
  ShortText dir = directory;
  if (!dir.Empty() && dir.At(dir.Length()) != '/' && dir.At(dir.Length()) != '\\') dir.Append('/');
  static int64_t next = TempSeed();
  for (int i = 0; i < kTempNameTries; ++i) {
    const ShortText path = PathToUnix(dir + "rfls" + FourDigits(next++) + ".tmp");
    // Made exclusively: two processes sharing the directory never get one name.
    const int fd = ::open(path.Str().c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
    if (fd >= 0) {
      ::close(fd);
      return path;
    }
    if (errno != EEXIST) break;
  }
  return ShortText();
}

ShortText TempName() { return TempNameIn(TempDir()); }

ShortText TempTableName() {
  // The process number keeps running processes apart; the counter, started
  // from the clock, keeps this process's names apart and differs from a
  // crashed predecessor's with the same number.
  static int64_t counter = (static_cast<int64_t>(std::time(nullptr)) & 0xFFFF) << 8;
  const int64_t number = (static_cast<int64_t>(::getpid()) << 24) | (counter++ & 0xFFFFFF);
  return "DB" + ToBase26(number);
}

bool FindOnPath(const ShortText& name, ShortText& out) {
  out.Clear();
  if (name.Empty()) return false;
  if (name.Pos('/') != 0) return FoundAt(name.Str(), out);
  const char* path = std::getenv("PATH");
  if (path == nullptr) return false;
  std::string dir;
  for (const char* p = path;; ++p) {
    if (*p == ':' || *p == ';' || *p == '\0') {
      if (FoundAt((dir.empty() ? std::string(".") : dir) + "/" + name.Str(), out)) return true;
      dir.clear();
      if (*p == '\0') return false;
    } else {
      dir += *p;
    }
  }
}

ShortText ShortName(const ShortText& text) {
  const ShortText plain = MazToAscii(MazUpCaseText(text));
  ShortText name = PadRight(plain, "_", 8);
  for (int i = 1; i <= name.Length(); ++i)
    if (!IsDosNameChar(name.At(i))) name[i] = '_';
  unsigned char check = XorBytes(plain.Data(), plain.Length());
  while (!IsDosNameChar(check)) check = check >= 126 ? '!' : static_cast<unsigned char>(check + 1);
  name.Append(static_cast<char>(check));
  return name;
}

ShortText SafeKey(const ShortText& text) {
  ShortText key = text;
  for (int i = 1; i <= key.Length(); ++i)
    if (!IsKeyChar(key.At(i))) key[i] = '_';
  if (key.Length() > 20) {
    const ShortText tail = IntText(XorBytes(text.Data(), text.Length()), 0);
    return key.Copy(1, 20 - tail.Length()) + tail;
  }
  return key.Length() < 10 ? PadRight(key, "_", 10) : key;
}
