#include "base/paths.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <string>

#include "base/codepage.h"

namespace {

// The exchange directories, read once from "floppdir.cfg".
struct ExchangeDirs {
  bool loaded = false;
  ShortText driveA;
  ShortText driveB;
};
ExchangeDirs& Exchange() {
  static ExchangeDirs dirs;
  return dirs;
}

// One line of the file without its line end and trailing blanks.
ShortText ReadConfigLine(std::FILE* f) {
  ShortText line;
  int c;
  while ((c = std::fgetc(f)) != EOF && c != '\n') line.Append(static_cast<char>(c));
  int n = line.Length();
  while (n > 0 && (line.At(n) == '\r' || line.At(n) == ' ' || line.At(n) == '\t')) --n;
  line.SetLength(n);
  return line;
}

void LoadExchangeDirs() {
  ExchangeDirs& dirs = Exchange();
  if (dirs.loaded) return;
  dirs.loaded = true;
  std::FILE* f = std::fopen("floppdir.cfg", "r");
  if (!f) return;
  dirs.driveA = ReadConfigLine(f);
  dirs.driveB = ReadConfigLine(f);
  std::fclose(f);
}

bool Exists(const std::string& path) {
  struct stat st;
  return ::stat(path.c_str(), &st) == 0;
}

// Splits "A:\rest" into the exchange directory (with a '/' behind it) and the rest.
bool SplitExchangeDrive(const ShortText& path, ShortText& dir, ShortText& rest) {
  if (path.Length() < 3 || path.At(2) != ':' || (path.At(3) != '\\' && path.At(3) != '/')) return false;
  const char drive = static_cast<char>(MazUpCase(path.At(1)));
  if (drive != 'A' && drive != 'B') return false;
  dir = ExchangeDir(drive);
  if (dir.Empty()) return false;
  if (dir.At(dir.Length()) != '/') dir.Append('/');
  rest = path.Copy(4, 255);
  return true;
}

}  // namespace

ShortText ExchangeDir(char drive) {
  LoadExchangeDirs();
  return drive == 'A' ? Exchange().driveA : drive == 'B' ? Exchange().driveB : ShortText();
}

void SetExchangeDirs(const ShortText& driveA, const ShortText& driveB) {
  Exchange() = ExchangeDirs{true, driveA, driveB};
}

void ResetExchangeDirs() { Exchange() = ExchangeDirs{}; }

ShortText PathToUnix(const ShortText& path) {
  ShortText prefix, rest = path;
  if (ShortText dir; SplitExchangeDrive(path, dir, rest)) prefix = dir;
  for (int i = 1; i <= rest.Length(); ++i)
    if (rest[i] == '\\') rest[i] = '/';

  int slash = 0;
  for (int i = rest.Length(); i >= 1; --i)
    if (rest[i] == '/') {
      slash = i;
      break;
    }
  const ShortText dirPart = prefix + MazLowCaseText(rest.Copy(1, slash));
  const ShortText name = rest.Copy(slash + 1, 255);
  if (name.Empty()) return dirPart;

  const std::string dirText = dirPart.Str();
  const ShortText upper = MazUpCaseText(name), lower = MazLowCaseText(name);
  // A name without letters is looked up once: this runs for every job file on every pass.
  if (Exists(dirText + name.Str())) return dirPart + name;
  if (upper != name && Exists(dirText + upper.Str())) return dirPart + upper;
  if (lower != name && lower != upper && Exists(dirText + lower.Str())) return dirPart + lower;
  return dirPart + name;
}

bool FileExists(const ShortText& path) {
  struct stat st;
  return ::stat(PathToUnix(path).Str().c_str(), &st) == 0 && !S_ISDIR(st.st_mode);
}

bool DirExists(const ShortText& path) {
  struct stat st;
  return ::stat(PathToUnix(path).Str().c_str(), &st) == 0 && S_ISDIR(st.st_mode);
}

int DeleteFile(const ShortText& path) {
  return ::unlink(PathToUnix(path).Str().c_str()) == 0 ? 0 : errno;
}

int RenameFile(const ShortText& oldPath, const ShortText& newPath) {
  return std::rename(PathToUnix(oldPath).Str().c_str(), PathToUnix(newPath).Str().c_str()) == 0 ? 0 : errno;
}
