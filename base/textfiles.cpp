#include "base/textfiles.h"

#include <sys/stat.h>

#include <algorithm>
#include <cerrno>

#include "base/filenames.h"
#include "base/filevar.h"
#include "base/paths.h"
#include "base/platform.h"

namespace {

// The directory part of a path with its separator; empty for a bare name.
ShortText DirectoryPart(const ShortText& path) {
  for (int i = path.Length(); i >= 1; --i)
    if (path.At(i) == '/' || path.At(i) == '\\') return path.Copy(1, i);
  return ShortText();
}

// Copies the open input to the open output through the converter; IO result.
int CopyConverted(FileVar& in, FileVar& out, LineEnds ends) {
  LineEndConverter converter(ends);
  char block[kRewriteBlockSize];
  std::string converted;
  for (;;) {
    int got = 0;
    if (int r = in.Read(block, kRewriteBlockSize, got); r != 0) return r;
    converted.clear();
    if (got == 0) converter.Finish(converted);
    else converter.Convert(block, got, converted);
    if (!converted.empty())
      if (int r = out.Write(converted.data(), static_cast<int>(converted.size())); r != 0) return r;
    if (got == 0) return 0;
  }
}

RewriteResult Failed(RewriteResult::Stage stage, int code) { return RewriteResult{stage, code}; }

}  // namespace

void LineEndConverter::Convert(const char* bytes, int count, std::string& out) {
  out.reserve(out.size() + static_cast<size_t>(count) + static_cast<size_t>(count) / 16);
  for (int i = 0; i < count; ++i) {
    // A run without line-end bytes goes across whole.
    int end = i;
    while (!heldCr_ && end < count && bytes[end] != '\r' && bytes[end] != '\n') ++end;
    if (end > i) {
      out.append(bytes + i, static_cast<size_t>(end - i));
      afterCr_ = false;
      i = end;
      if (i == count) break;
    }
    ConvertByte(bytes[i], out);
  }
}

void LineEndConverter::ConvertByte(char c, std::string& out) {
  if (ends_ == LineEnds::kToUnix) {
    // A CR is written only once the next byte shows it is no line end.
    if (heldCr_ && c != '\n') out += '\r';
    heldCr_ = c == '\r';
    if (!heldCr_) out += c;
  } else {
    // A LF that already has its CR keeps the one it has.
    if (ends_ == LineEnds::kToDos && c == '\n' && !afterCr_) out += '\r';
    afterCr_ = c == '\r';
    out += c;
  }
}

void LineEndConverter::Finish(std::string& out) {
  if (heldCr_) out += '\r';
  heldCr_ = afterCr_ = false;
}

RewriteResult RewriteTextFile(const ShortText& oldPath, const ShortText& newPath, LineEnds ends) {
  FileVar in;
  AssignFile(in, oldPath);
  if (int r = in.Reset(kFileModeReadOnly); r != 0) return Failed(RewriteResult::kOpenFailed, r);
  const ShortText tempPath = TempNameIn(DirectoryPart(newPath));
  if (tempPath.Empty()) return Failed(RewriteResult::kTempFailed, errno);
  FileVar out;
  AssignFile(out, tempPath);
  if (int r = out.Rewrite(); r != 0) {
    (void)DeleteFile(tempPath);
    return Failed(RewriteResult::kTempFailed, r);
  }
  int r = CopyConverted(in, out, ends);
  if (const int closed = out.Close(); r == 0) r = closed;
  struct stat st;
  if (r == 0 && ::stat(in.Name().Str().c_str(), &st) == 0) (void)::chmod(tempPath.Str().c_str(), st.st_mode & 07777);
  in.Close();
  if (r == 0) r = RenameFile(tempPath, newPath);
  if (r != 0) {
    (void)DeleteFile(tempPath);
    return Failed(RewriteResult::kRenameFailed, r);
  }
  if (PathToUnix(oldPath) != PathToUnix(newPath)) (void)DeleteFile(oldPath);
  return RewriteResult{};
}

std::vector<ShortText> FilesMatching(const ShortText& mask) {
  const ShortText dir = DirectoryPart(mask);
  const bool hidden = mask.At(dir.Length() + 1) == '.';
  std::vector<ShortText> names;
  FileSearch search;
  for (bool found = search.First(mask, hidden ? kAttrHidden : 0); found; found = search.Next())
    names.push_back(search.Found().name);
  std::sort(names.begin(), names.end());
  std::vector<ShortText> paths;
  for (const ShortText& name : names) paths.push_back(dir + name);
  return paths;
}

int ReadFileListed(const ShortText& directory, const ShortText& mask, ShortText& listPath) {
  ShortText dir = directory;
  if (!dir.Empty() && dir.At(dir.Length()) != '/' && dir.At(dir.Length()) != '\\') dir.Append('/');
  const std::vector<ShortText> paths = FilesMatching(dir + mask);
  listPath = TempName();
  FileVar list;
  AssignFile(list, listPath);
  int r = listPath.Empty() ? ENOENT : list.Rewrite();
  for (size_t i = 0; r == 0 && i < paths.size(); ++i) {
    const ShortText line = paths[i].Copy(dir.Length() + 1, 255) + '\n';
    r = list.Write(line.Data(), line.Length());
  }
  if (const int closed = list.Close(); r == 0) r = closed;
  if (r == 0) return static_cast<int>(paths.size());
  if (!listPath.Empty()) (void)DeleteFile(listPath);
  listPath.Clear();
  return -1;
}
