// The user's private directory "dane\uzytkown\<n>": made with "tmp" and the
// personal copies of user 0's text files, removed with the user's tables.
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <string>
#include <vector>

#include "base/filecopy.h"
#include "base/mazovia.h"
#include "base/paths.h"
#include "base/textfiles.h"
#include "sqltable/pgtable.h"
#include "tui/msgbox.h"
#include "users/users.h"
#include "users/users_detail.h"

namespace {

// Per-user tables that a user of an earlier life of the number may have left.
constexpr std::array<const char*, 3> kUserTables = {"praca___", "pracak__", "plikrob_"};
// Personal copies of user 0's settings.
constexpr std::array<const char*, 4> kPersonalCopies = {"konffisk.txt", "konfpara.txt", "drukpar.txt",
                                                        "magstart.txt"};
// Files of the directory known by name: the session lock files with their
// companions, the state files, and the personal copies.
constexpr std::array<const char*, 23> kUserFiles = {
    "praca___.lcu", "pracak__.lcu", "plikrob_.lcu", "kluczw__.lcu", "konffisk.lcu", "drukpar.lcu",
    "konfpara.lcu", "magstart.lcu", "praca___.lci", "pracak__.lci", "plikrob_.lci", "kluczw__.lci",
    "konffisk.lci", "drukpar.lci",  "konfpara.lci", "magstart.lci", "kasa____.cfg", "praca___.cfg",
    "pracak__.cfg", "konffisk.txt", "konfpara.txt", "drukpar.txt",  "magstart.txt"};

std::string UnixPath(const ShortText& path) { return PathToUnix(path).Str(); }

// Directories and files made so far, removed in reverse order when a later step fails.
class MadeSoFar {
 public:
  void Dir(const ShortText& path) { made_.push_back({UnixPath(path), true}); }
  void File(const ShortText& path) { made_.push_back({UnixPath(path), false}); }
  void Undo() {
    for (auto it = made_.rbegin(); it != made_.rend(); ++it)
      (void)(it->second ? rmdir(it->first.c_str()) : unlink(it->first.c_str()));
    made_.clear();
  }

 private:
  std::vector<std::pair<std::string, bool>> made_;
};

// Makes the directory unless it is there; false when it cannot be had.
bool MakeDir(const ShortText& path, MadeSoFar& made) {
  if (DirExists(path)) return true;
  if (mkdir(UnixPath(path).c_str(), 0777) != 0) {
    MessageBox("Brak dostępu do katalogu.@"_mz + PathToUnix(path), 0);
    return false;
  }
  made.Dir(path);
  return true;
}

bool CopyPersonal(int32_t number, MadeSoFar& made) {
  for (const char* name : kPersonalCopies) {
    const ShortText source = UserPath(kSystemManager, name);
    if (!FileExists(source)) continue;  // user 0 has no such settings yet
    const ShortText target = UserPath(number, name);
    const uint8_t code = CopyFileChecked(source, target, -1, -1);
    if (FileExists(target)) made.File(target);
    if (code != kCopyOk) {
      MessageBox("Błąd "_mz + CopyResultText(code) + "@" + PathToUnix(target), 0);
      return false;
    }
  }
  return true;
}

void DeleteUserTables(int32_t number) {
  for (const char* name : kUserTables) {
    const ShortText table = UserPath(number, name);
    bool exists = false;
    (void)PGTblExist(table, exists);
    if (exists) users_detail::Checked(PGTblDelete(table));
  }
}

void DeleteUserFiles(int32_t number) {
  for (const char* name : kUserFiles) (void)DeleteFile(UserPath(number, name));
  for (const ShortText& file : FilesMatching(UserPath(number, "tmp\\*"))) (void)DeleteFile(file);
  for (const ShortText& file : FilesMatching(UserPath(number, "tmp\\.*"))) (void)DeleteFile(file);
}

}  // namespace

ShortText UserDirectory(int32_t number) {
  ShortText digits(std::to_string(number));
  if (digits.Length() > 8) digits.Insert(".", 9);
  return "dane\\uzytkown\\" + digits;
}

ShortText UserPath(int32_t number, const ShortText& name) { return UserDirectory(number) + "\\" + name; }

bool UserDirectoryCreate(int32_t number) {
  DeleteUserTables(number);
  DeleteUserFiles(number);
  MadeSoFar made;
  const bool ok = MakeDir("dane", made) && MakeDir("dane\\uzytkown", made) && MakeDir(UserDirectory(number), made) &&
                  MakeDir(UserPath(number, "tmp"), made) && CopyPersonal(number, made);
  if (!ok) made.Undo();
  return ok;
}

void UserDirectoryRemove(int32_t number) {
  DeleteUserTables(number);
  DeleteUserFiles(number);
  (void)rmdir(PathToUnix(UserPath(number, "tmp")).Str().c_str());
  (void)rmdir(PathToUnix(UserDirectory(number)).Str().c_str());
}
