#include "base/filecopy.h"

#include <sys/stat.h>

#include <cerrno>
#include <cstring>
#include <memory>
#include <new>

#include "base/filevar.h"
#include "base/mazovia.h"
#include "base/paths.h"

namespace {

// True if both paths name one file on disk: copying a file onto itself would
// empty it (a whole copy) or chase its own end (a part appended).
bool SameFile(const ShortText& unixSource, const ShortText& target) {
  struct stat a, b;
  return ::stat(unixSource.Str().c_str(), &a) == 0 && ::stat(PathToUnix(target).Str().c_str(), &b) == 0 &&
         a.st_dev == b.st_dev && a.st_ino == b.st_ino;
}

// Opens the target: made anew for a whole copy; for a part, opened for
// reading and writing at its end (and made when it does not exist yet).
uint8_t OpenTarget(FileVar& out, const ShortText& target, bool append) {
  AssignFile(out, target);
  if (!append) return out.Rewrite() == 0 ? kCopyOk : kCopyTargetCreate;
  if (const int r = out.Reset(kFileModeReadWrite); r != 0) {
    if (r != ENOENT) return kCopyTargetOpen;
    return out.Rewrite() == 0 ? kCopyOk : kCopyTargetCreate;
  }
  const int64_t end = out.Size();
  return end >= 0 && out.Seek(end) == 0 ? kCopyOk : kCopyTargetEnd;
}

int64_t BlocksOf(int64_t bytes) { return bytes <= 0 ? 0 : (bytes + kCopyBlockSize - 1) / kCopyBlockSize; }

// Writes one block at the target's position and reads it back from there.
uint8_t WriteVerified(FileVar& out, const char* block, char* readBack, int count) {
  const int64_t at = out.Position();
  if (out.Write(block, count) != 0) return kCopyTargetWrite;
  int back = 0;
  if (at < 0 || out.Seek(at) != 0 || out.Read(readBack, count, back) != 0 || back != count) return kCopyReadBack;
  return std::memcmp(block, readBack, static_cast<size_t>(count)) == 0 ? kCopyOk : kCopyCompare;
}

// Copies up to count bytes (-1: to the source's end) from the source's position.
uint8_t CopyBlocks(FileVar& in, FileVar& out, int64_t count, char* buffer, const CopyProgress& progress) {
  const int64_t rest = in.Size() - in.Position();
  const int64_t blocksTotal = BlocksOf(count < 0 || count > rest ? rest : count);
  int64_t blocksDone = 0;
  while (count != 0) {
    const int want = count < 0 || count > kCopyBlockSize ? kCopyBlockSize : static_cast<int>(count);
    int got = 0;
    if (in.Read(buffer, want, got) != 0) return kCopySourceRead;
    if (got == 0) break;
    if (uint8_t code = WriteVerified(out, buffer, buffer + kCopyBlockSize, got); code != kCopyOk) return code;
    if (count > 0) count -= got;
    ++blocksDone;
    if (progress) progress(blocksDone, blocksDone > blocksTotal ? blocksDone : blocksTotal);
    if (got < want) break;
  }
  // A file system that reports its failures only when the file is closed.
  return out.Close() == 0 ? kCopyOk : kCopyTargetWrite;
}

}  // namespace

ShortText CopyResultText(uint8_t code) {
  switch (code) {
    case kCopyOk: return "O.K."_mz;
    case kCopyNoBuffer: return "Brak pamięci dla bufora kopiowania."_mz;
    case kCopySourceOpen: return "Nie mogę otworzyć pliku źródłowego."_mz;
    case kCopyTargetOpen: return "Nie mogę otworzyć pliku docelowego."_mz;
    case kCopyTargetEnd: return "Nie mogę znaleźć końca pliku docelowego"_mz;
    case kCopySourceRead: return "Błąd odczytu z pliku źródłowego."_mz;
    case kCopyTargetWrite: return "Błąd zapisu do pliku docelowego."_mz;
    case kCopyReadBack: return "Błąd kontrolnego odczytu z pliku docelowego."_mz;
    case kCopyCompare: return "Błąd porównania danych z pliku źródłowego i docelowego."_mz;
    case kCopyTargetCreate: return "Nie mogę założyć pliku docelowego."_mz;
    default: return "Błąd odczytu/zapisu."_mz;
  }
}

uint8_t CopyFileChecked(const ShortText& source, const ShortText& target, int64_t start, int64_t length,
                        const CopyProgress& progress) {
  // One allocation for the block and its read-back copy.
  std::unique_ptr<char[]> buffer(new (std::nothrow) char[2 * kCopyBlockSize]);
  if (!buffer) return kCopyNoBuffer;
  FileVar in;
  AssignFile(in, source);
  if (in.Reset(kFileModeReadOnly) != 0) return kCopySourceOpen;
  if (SameFile(in.Name(), target)) return start >= 0 ? kCopyTargetOpen : kCopyTargetCreate;
  FileVar out;
  if (uint8_t code = OpenTarget(out, target, start >= 0); code != kCopyOk) return code;
  if (start > 0 && in.Seek(start) != 0) return kCopySourceRead;
  return CopyBlocks(in, out, length, buffer.get(), progress);
}
