#include "tui/filedialogs.h"

#include <sys/wait.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <vector>

#include "base/filecopy.h"
#include "base/mazovia.h"
#include "base/numbers_format.h"
#include "base/paths.h"
#include "base/text.h"
#include "base/textfiles.h"
#include "tui/msgbox.h"
#include "tui/screen.h"
#include "tui/term.h"

namespace {

// A path in a box text: cut so that the lines after it, with the bar, still fit in 255 bytes.
ShortText BoxPath(const ShortText& path) { return path.Copy(1, 76); }

bool Refuse(const ShortText& text) {
  MessageBox(text, 0);
  return false;
}

bool RewriteShown(const ShortText& oldPath, const ShortText& newPath, LineEnds ends) {
  const RewriteResult result = RewriteTextFile(oldPath, newPath, ends);
  switch (result.stage) {
    case RewriteResult::kOk: return true;
    case RewriteResult::kOpenFailed: return Refuse("Błąd otwarcia pliku !"_mz);
    case RewriteResult::kTempFailed: return Refuse("Błąd otwarcia pliku tymczasowego !"_mz);
    default: return Refuse("Błąd "_mz + IntText(result.code, 0) + " zmiany nazwy pliku."_mz);
  }
}

}  // namespace

int DeleteMany(const ShortText& mask) {
  const std::vector<ShortText> paths = FilesMatching(mask);
  const ShortText text = "Trwa kasowanie...@[          ]"_mz;
  ScreenCopyPtr screen;
  ScreenSave(screen);
  MessageBox(text, 2);
  const ProgressBar bar = FindProgressBar(text);
  int deleted = 0;
  for (size_t i = 0; i < paths.size(); ++i) {
    if (DeleteFile(paths[i]) == 0) ++deleted;
    ShowProgress(bar, static_cast<long>(i + 1), static_cast<long>(paths.size()));
    TermFlush();
  }
  ScreenRestore(screen);
  return deleted;
}

uint8_t CopyFileBar(const ShortText& source, const ShortText& target, const CopyOptions& options) {
  const ShortText text = "Kopiowanie pliku:@"_mz + BoxPath(source) + "@na plik:@"_mz + BoxPath(target) +
                         " .@[          /          ]"_mz;
  ScreenCopyPtr screen;
  ScreenSave(screen);
  MessageBox(text, 2);
  const ProgressBar bar = FindProgressBar(text);
  const uint8_t code = CopyFileChecked(source, target, options.start, options.length,
                                       [&bar](int64_t done, int64_t total) {
                                         ShowProgress(bar, static_cast<long>(done), static_cast<long>(total));
                                         TermFlush();
                                       });
  // Shown over the bar, so that the operator sees how far the copy came.
  if (code != kCopyOk) MessageBox("Błąd "_mz + CopyResultText(code), 0);
  ScreenRestore(screen);
  return code;
}

bool RenameSafe(const ShortText& oldPath, const ShortText& newPath) {
  return RewriteShown(oldPath, newPath, LineEnds::kKeep);
}

bool DosToUnixFile(const ShortText& path) { return RewriteShown(path, path, LineEnds::kToUnix); }

bool UnixToDosFile(const ShortText& path) { return RewriteShown(path, path, LineEnds::kToDos); }

bool OpenReadOrWarn(FileVar& file, const ShortText& path) {
  AssignFile(file, path);
  if (file.Reset(kFileModeReadOnly) == 0) return true;
  return Refuse("Nie mogę otworzyć do odczytu pliku:@"_mz + path);
}

bool OpenAppendOrWarn(FileVar& file, const ShortText& path, bool append) {
  AssignFile(file, path);
  if (!append) {
    if (file.Rewrite() == 0) return true;
    return Refuse("Nie mogę otworzyć w trybie zapisywania pliku:@"_mz + path);
  }
  int r = file.Append();
  if (r == ENOENT) r = file.Rewrite();
  if (r == 0) return true;
  return Refuse("Nie mogę otworzyć w trybie dopisywania pliku:@"_mz + path);
}

ShortText FileManagerCommand() {
  FileVar config;
  AssignFile(config, "fmgr.cfg");
  ShortText line;
  if (config.Reset(kFileModeReadOnly) == 0 && config.ReadLine(line)) {
    line = TrimRightAll(TrimLeftAll(line, ' '), ' ');
    if (!line.Empty()) return line;
  }
  return "/usr/bin/mc -as";
}

int FileManager() {
  const ShortText command = FileManagerCommand();
  ScreenCopyPtr screen;
  ScreenSave(screen);
  TermHandOver();
  std::fflush(nullptr);
  const int status = std::system(command.Str().c_str());
  TermTakeBack();
  ScreenRestore(screen);
  TermFlush();
  return status == -1 || !WIFEXITED(status) ? -1 : WEXITSTATUS(status);
}
