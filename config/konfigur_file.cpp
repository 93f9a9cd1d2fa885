// The file side of the main configuration: finding it, reading it at start,
// and writing it anew with the backup of the old one.
#include <cerrno>
#include <string>

#include "base/filecopy.h"
#include "base/filevar.h"
#include "base/mazovia.h"
#include "base/paths.h"
#include "base/text.h"
#include "config/konfigur.h"
#include "tui/msgbox.h"
#include "tui/screen.h"

namespace {

// Far more than any configuration: a bigger file is read only this far.
constexpr int64_t kMaxFileBytes = 4 * 1024 * 1024;

struct ConfigState {
  ConfigValues settings;
  ShortText path = "dane\\konfigur.txt";
  bool crlf = false;
  ConfigReindexAction reindex;
  ConfigDescriptionFiller filler;
};

ConfigState& State() {
  static ConfigState state;
  return state;
}

// The whole file, or false when it cannot be opened or read.
bool ReadWholeFile(const ShortText& path, std::string& bytes) {
  FileVar file;
  AssignFile(file, path);
  if (file.Reset(kFileModeReadOnly) != 0) return false;
  bytes.clear();
  char block[8192];
  int got = 0;
  do {
    if (file.Read(block, sizeof block, got) != 0) return false;
    bytes.append(block, static_cast<size_t>(got));
  } while (got > 0 && static_cast<int64_t>(bytes.size()) < kMaxFileBytes);
  return true;
}

[[nodiscard]] int WriteWholeFile(const ShortText& path, const std::string& bytes) {
  FileVar file;
  AssignFile(file, path);
  int code = file.Rewrite();
  if (code == 0) code = file.Write(bytes.data(), static_cast<int>(bytes.size()));
  const int closeCode = file.Close();
  return code != 0 ? code : closeCode;
}

// The directory part of a DOS path, with its '\'; empty for a bare name.
ShortText DirectoryOf(const ShortText& path) {
  const int slash = path.Length() - AfterLast(path, '\\').Length();
  return path.Copy(1, slash);
}

// The old file goes to "dane\konf_ol_.txt" and only then replaces
// "dane\konf_old.txt", so the last good backup survives a failing copy.
[[nodiscard]] int BackUpOldFile(const ShortText& path) {
  if (!FileExists(path)) return 0;
  const ShortText scratch = "dane\\konf_ol_.txt";
  if (CopyFileChecked(path, scratch, -1, -1) != kCopyOk) {
    (void)DeleteFile(scratch);
    return EIO;
  }
  return RenameFile(scratch, "dane\\konf_old.txt");
}

void ReindexTables(const ConfigReindexAction& reindex) {
  for (const ShortText table : {"magazyny", "dostawcy", "odbiorcy"}) {
    ScreenCopyPtr screen;
    ScreenSave(screen);
    (void)MessageBox("Indeksowanie tablicy: "_mz + table, 2);
    reindex(table);
    ScreenRestore(screen);
  }
}

}  // namespace

ConfigValues& ConfigSettings() { return State().settings; }
int16_t ConfigInt(int line) { return State().settings.Number(line); }
Real ConfigReal(int line) { return State().settings.RealValue(line); }
const ShortText& ConfigText(int line) { return State().settings.Text(line); }
const ShortText& ConfigPath() { return State().path; }

ShortText ConfigDocumentName(int kind) {
  if (kind < 1 || kind > kConfigDocumentNames) return {};
  return ConfigText(kConfigLineFirstDocumentName + kind - 1);
}

void ConfigSetReindexAction(ConfigReindexAction action) { State().reindex = std::move(action); }
void ConfigSetDescriptionFiller(ConfigDescriptionFiller filler) { State().filler = std::move(filler); }

ShortText ConfigFilePath(int argc, const char* const argv[]) {
  if (argc < 2 || argv == nullptr || argv[1] == nullptr) return "dane\\konfigur.txt";
  ShortText directory = ReplaceChar(ShortText(argv[1]), '/', '\\');
  if (directory.At(directory.Length()) != '\\') directory += '\\';
  return directory + "konfigur.txt";
}

ConfigReadResult ConfigRead(int argc, const char* const argv[]) {
  ConfigReadResult result;
  const ShortText firstPath = ConfigFilePath(argc, argv);
  const ShortText fallbackPath = "dane\\konfigur.txt";
  std::string bytes;
  ConfigState& state = State();
  state.settings = ConfigValues();
  if (ReadWholeFile(firstPath, bytes)) {
    result.source = ConfigSource::kFirstPath;
    result.path = firstPath;
  } else if (ReadWholeFile(fallbackPath, bytes)) {
    result.source = ConfigSource::kFallbackPath;
    result.path = fallbackPath;
  } else {
    result.path = firstPath;
    state.settings = ConfigValues::Defaults();
  }
  if (result.source != ConfigSource::kMissing) {
    const ConfigParseResult parsed = ParseKonfigur(bytes, state.settings);
    result.linesFound = parsed.linesFound;
    state.crlf = parsed.crlf;
  }
  NormalizeConfig(state.settings);
  state.path = result.path;
  return result;
}

int ConfigWrite(int flag) {
  ConfigState& state = State();
  if (flag != state.settings.Number(kConfigLineNipMask) && state.reindex) ReindexTables(state.reindex);
  if (const int code = BackUpOldFile(state.path); code != 0) return code;
  // Written beside the file and renamed over it: a failure never leaves half a file.
  const ShortText scratch = DirectoryOf(state.path) + "konf_nw_.txt";
  int code = WriteWholeFile(scratch, FormatKonfigur(state.settings, state.crlf, state.filler));
  if (code == 0) code = RenameFile(scratch, state.path);
  if (code != 0) (void)DeleteFile(scratch);
  return code;
}
