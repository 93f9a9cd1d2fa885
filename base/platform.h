// Services of the operating system in the form the system uses them: the
// process's parameters, a file search by attribute mask, the clock, a sleep,
// the start of another program, and the run-time error that ends the process.
#pragma once

#include <cstdint>

#include "base/shorttext.h"

// Keeps the process's parameters for ParamCount and ParamStr; main calls it first.
void SetProgramParameters(int argc, char** argv);
// Number of parameters after the program name.
int ParamCount();
// Parameter at index (0 is the program); empty beyond ParamCount.
ShortText ParamStr(int index);

// Attribute bits of a found file, and of a search mask.
inline constexpr uint8_t kAttrReadOnly = 0x01;
inline constexpr uint8_t kAttrHidden = 0x02;
inline constexpr uint8_t kAttrSysFile = 0x04;
inline constexpr uint8_t kAttrVolumeId = 0x08;
inline constexpr uint8_t kAttrDirectory = 0x10;
inline constexpr uint8_t kAttrArchive = 0x20;
inline constexpr uint8_t kAttrAnyFile = 0x3F;

struct FoundFile {
  ShortText name;  // name within its directory
  uint8_t attr = 0;
  int64_t size = 0;
};

// A search for files by path, with '*' and '?' allowed in the name. A plain
// file always matches; a directory, a hidden name (leading '.') or a special
// file (device, pipe, socket) only when its bit is in the mask. The search is
// released by Close or by the destructor.
class FileSearch {
 public:
  FileSearch() = default;
  ~FileSearch();
  FileSearch(const FileSearch&) = delete;
  FileSearch& operator=(const FileSearch&) = delete;

  // Starts the search (path after PathToUnix); true if a first file was found.
  [[nodiscard]] bool First(const ShortText& path, uint8_t attrMask);
  // The next match; false when none is left.
  [[nodiscard]] bool Next();
  // The file found last.
  const FoundFile& Found() const { return found_; }
  // Releases the search.
  void Close();

 private:
  bool Matches(const char* name, FoundFile& out) const;

  void* dir_ = nullptr;  // DIR* of a search with wildcards
  ShortText directory_;  // with its trailing '/', or empty for the current one
  ShortText pattern_;
  uint8_t mask_ = 0;
  FoundFile found_;
};

// Local date and time of day.
struct ClockReading {
  int year = 0, month = 0, day = 0, dayOfWeek = 0;  // dayOfWeek 0 = Sunday
  int hour = 0, minute = 0, second = 0, millisecond = 0;
};
// The local date and time now.
ClockReading ReadClock();

// Sleeps the given number of milliseconds (0 or less returns at once).
void SleepMs(int64_t milliseconds);

// Starts the program with the command line split into words at blanks ('"'
// or '\'' group words) and waits for its end. Output is flushed first. Gives
// its exit status, or -1 if it could not be started or did not end normally.
int RunProgram(const ShortText& program, const ShortText& commandLine);

// Ends the process at once with a run-time error: one line on standard error
// ("Runtime error <code>: <what>"), exit status code; exit procedures run.
[[noreturn]] void RunTimeError(int code, const char* what);
// The code of a value out of its range.
inline constexpr int kRangeCheckError = 201;
