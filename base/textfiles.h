// Whole-file work on text files and directories: rewriting a file through a
// temporary one (with its line ends changed on the way), and the files that
// a DOS mask names.
#pragma once

#include <string>
#include <vector>

#include "base/shorttext.h"

// What a rewrite does to line ends: nothing, CR LF to LF, LF to CR LF.
enum class LineEnds { kKeep, kToUnix, kToDos };

// Bytes read per step of a rewrite.
inline constexpr int kRewriteBlockSize = 4096;

// Changes line ends block by block; a CR LF split between two blocks is
// still one line end.
class LineEndConverter {
 public:
  explicit LineEndConverter(LineEnds ends) : ends_(ends) {}
  // Appends the converted block to out; a CR at the block's end waits for the next byte.
  void Convert(const char* bytes, int count, std::string& out);
  // Appends what was held back at the end of the input.
  void Finish(std::string& out);

 private:
  void ConvertByte(char c, std::string& out);

  LineEnds ends_;
  bool heldCr_ = false;   // kToUnix: a CR whose next byte is not known yet
  bool afterCr_ = false;  // kToDos: the last byte was a CR
};

// How a rewrite ended; code is the IO result (errno) of the failing step.
struct RewriteResult {
  enum Stage { kOk, kOpenFailed, kTempFailed, kRenameFailed };
  Stage stage = kOk;
  int code = 0;
};

// Writes the text file oldPath, with its line ends changed, to a temporary
// file in newPath's directory, then renames that to newPath and removes
// oldPath when it is another file. The file keeps its permissions. On any
// failure the temporary file is removed and oldPath stays as it was; a
// failing read or write counts as a failed rename.
[[nodiscard]] RewriteResult RewriteTextFile(const ShortText& oldPath, const ShortText& newPath, LineEnds ends);

// Paths (the mask's directory part and the name found) of the plain files
// that the mask names, in byte order of their names; hidden files only when
// the mask's name starts with '.'. Directories and devices are never named.
std::vector<ShortText> FilesMatching(const ShortText& mask);

// Writes the names (without directory) of the files matching directory +
// mask, one a line in byte order, to a new temporary file for PickListFile;
// listPath receives its path. Returns the number of names, -1 (and an empty
// listPath) when the list file could not be written.
int ReadFileListed(const ShortText& directory, const ShortText& mask, ShortText& listPath);
