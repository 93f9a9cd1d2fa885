// Opening, creating and closing tables, and moving records between the
// buffer and the disk. Reads come from a block of records read ahead;
// appended records gather in a block written in one go.
#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <ctime>

#include <fcntl.h>
#include <unistd.h>

#include "base/paths.h"
#include "exchange/dbf/dbf_detail.h"
#include "exchange/dbf/dbf_io.h"

int DbfStatus = 0;

namespace {

using dbf_detail::Layout;

constexpr int kBlockBytes = 64 * 1024;
constexpr int kMaxHeaderRead = 0x10000;

// The platform's error numbers that share a text are reported as one code,
// and "no such file" as the layer's own 1.
int StatusOfErrno(int err) {
  switch (err) {
    case 0: return 0;
    case ENOENT: return kDbfNotFound;
    case EFBIG: case EDQUOT: return kDbfDiskFull;
    case ENFILE: return kDbfTooManyFiles;
    case EPERM: case EBADF: case ESTALE: return kDbfAccessLost;
    default: return err;
  }
}

void TodayParts(int& year, int& month, int& day) {
  std::time_t now = std::time(nullptr);
  std::tm parts{};
  localtime_r(&now, &parts);
  year = parts.tm_year + 1900;
  month = parts.tm_mon + 1;
  day = parts.tm_mday;
}

void AdoptLayout(DbfFile& t, const Layout& layout) {
  t.version = layout.version;
  t.recordCount = layout.recordCount;
  t.headerSize = layout.headerSize;
  t.recordSize = layout.recordSize;
  t.date = layout.date;
  t.fields = layout.fields;
  t.codePage = layout.codePage;
  t.record.assign(t.recordSize, ' ');
  t.recordChanged = t.tableChanged = false;
  auto& io = *t.io;
  io.diskCount = t.recordCount;
  io.blockRecords = std::max(1, kBlockBytes / t.recordSize);
  io.block.assign(static_cast<std::size_t>(io.blockRecords) * t.recordSize, 0);
  io.blockFirst = io.blockCount = io.pendingCount = 0;
  io.failure = 0;
}

Layout LayoutOf(const DbfFile& t) {
  Layout l;
  l.version = t.version;
  l.recordCount = t.recordCount;
  l.headerSize = t.headerSize;
  l.recordSize = t.recordSize;
  l.fields = t.fields;
  l.codePage = t.codePage;
  return l;
}

int64_t RecordPosition(const DbfFile& t, int64_t n) { return t.headerSize + (n - 1) * t.recordSize; }

// A write failed: what is pending is dropped, and the table remembers it so
// that the close does not present the file as complete.
int WriteFailed(DbfFile& t, int err) {
  auto& io = *t.io;
  io.failure = StatusOfErrno(err);
  io.pendingCount = 0;
  t.recordCount = io.diskCount;
  return DbfStatus = io.failure;
}

int WriteAt(DbfFile& t, int64_t position, const void* bytes, int count) {
  if (int r = t.file.Seek(position); r != 0) return WriteFailed(t, r);
  if (int r = t.file.Write(bytes, count); r != 0) return WriteFailed(t, r);
  return 0;
}

// Reads the block of records that starts at n; the file may end inside it.
int FillBlock(DbfFile& t, int64_t n) {
  auto& io = *t.io;
  io.blockCount = 0;
  const int64_t wanted = std::min<int64_t>(io.blockRecords, t.recordCount - n + 1);
  if (int r = t.file.Seek(RecordPosition(t, n)); r != 0) return DbfStatus = StatusOfErrno(r);
  int got = 0, total = 0;
  const int bytes = static_cast<int>(wanted) * t.recordSize;
  do {
    if (int r = t.file.Read(io.block.data() + total, bytes - total, got); r != 0)
      return DbfStatus = StatusOfErrno(r);
    total += got;
  } while (got > 0 && total < bytes);
  io.blockFirst = n;
  io.blockCount = total / t.recordSize;
  return 0;
}

int CheckWritable(const DbfFile& t) {
  if (!t.IsOpen()) return DbfStatus = kDbfNotOpen;
  if (t.readOnly) return DbfStatus = kDbfNotOpenForOutput;
  if (t.io->failure != 0) return DbfStatus = t.io->failure;
  return 0;
}

// Patches the count and date and writes the end byte after the records.
int FinishHeader(DbfFile& t) {
  int year = 0, month = 0, day = 0;
  TodayParts(year, month, day);
  unsigned char bytes[8] = {};
  int length = 0;
  const int at = dbf_detail::CountAndDateBytes(LayoutOf(t), year, month, day, bytes, length);
  if (int r = WriteAt(t, at, bytes, length); r != 0) return r;
  const unsigned char end = dbf_detail::kEndOfFile;
  return WriteAt(t, RecordPosition(t, t.recordCount + 1), &end, 1);
}

int CloseCreated(DbfFile& t, int status) {
  auto& io = *t.io;
  if (status == 0 && ::rename(io.tempPath.Str().c_str(), io.path.Str().c_str()) != 0)
    status = StatusOfErrno(errno);
  if (status != 0) std::remove(io.tempPath.Str().c_str());
  return status;
}

// A new empty file in the directory of path, under a name that no other
// process takes ("~" and a number, ".dbf"), so the rename stays on one disk.
int MakeTempBeside(const ShortText& path, ShortText& temp) {
  const int slash = path.View().rfind('/') == std::string_view::npos ? 0
                                                                    : static_cast<int>(path.View().rfind('/')) + 1;
  static unsigned counter = static_cast<unsigned>(::getpid()) << 12;
  for (int attempt = 0; attempt < 100; ++attempt) {
    char name[32];
    std::snprintf(name, sizeof name, "~%08x.dbf", counter++);
    temp = path.Copy(1, slash) + name;
    const int fd = ::open(temp.Str().c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
    if (fd >= 0) return ::close(fd);
    if (errno != EEXIST) return errno;
  }
  return EEXIST;
}

void ResetTable(DbfFile& t) {
  t.fields.clear();
  t.record.clear();
  t.recordCount = 0;
  t.io = std::make_unique<DbfFile::Io>();
}

}  // namespace

DbfFile::DbfFile() : io(std::make_unique<Io>()) {}

DbfFile::~DbfFile() {
  if (IsOpen()) DbfClose(*this);
}

int DbfFlushPending(DbfFile& t) {
  auto& io = *t.io;
  if (io.pendingCount == 0) return 0;
  const int count = io.pendingCount;
  if (int r = WriteAt(t, RecordPosition(t, io.diskCount + 1), io.pending.data(), count * t.recordSize); r != 0)
    return r;
  io.pendingCount = 0;
  io.diskCount += count;
  return 0;
}

int DbfOpen(DbfFile& t, const ShortText& name) { return DbfOpenUnix(t, PathToUnix(name)); }

int DbfCreate(DbfFile& t, const ShortText& name, std::span<const DbfFieldSpec> specs, DbfCodePage codePage) {
  return DbfCreateUnix(t, PathToUnix(name), specs, codePage);
}

int DbfOpenUnix(DbfFile& t, const ShortText& path) {
  if (t.IsOpen()) DbfClose(t);
  ResetTable(t);
  t.file.BindUnixPath(path);
  t.readOnly = false;
  int r = t.file.Reset(kFileModeReadWrite);
  if (r == EACCES || r == EROFS || r == EPERM) {
    t.readOnly = true;
    r = t.file.Reset(kFileModeReadOnly);
  }
  if (r != 0) return DbfStatus = StatusOfErrno(r);
  std::vector<unsigned char> bytes(std::min<int64_t>(std::max<int64_t>(t.file.Size(), 0), kMaxHeaderRead));
  int got = 0, total = 0;
  do {
    r = t.file.Read(bytes.data() + total, static_cast<int>(bytes.size()) - total, got);
    total += got;
  } while (r == 0 && got > 0 && total < static_cast<int>(bytes.size()));
  Layout layout;
  if (r == 0) r = dbf_detail::ParseHeader(std::span(bytes.data(), total), layout);
  else r = StatusOfErrno(r);
  if (r != 0) {
    t.file.Close();
    return DbfStatus = r;
  }
  std::memcpy(t.header, bytes.data(), 32 <= total ? 32 : total);
  t.io->path = t.file.Name();
  AdoptLayout(t, layout);
  return DbfStatus = 0;
}

int DbfCreateUnix(DbfFile& t, const ShortText& path, std::span<const DbfFieldSpec> specs, DbfCodePage codePage) {
  if (t.IsOpen()) DbfClose(t);
  ResetTable(t);
  Layout layout;
  if (int r = dbf_detail::LayoutFields(specs, layout); r != 0) return DbfStatus = r;
  layout.codePage = codePage;
  ShortText temp;
  if (int r = MakeTempBeside(path, temp); r != 0) return DbfStatus = StatusOfErrno(r);
  t.file.BindUnixPath(temp);
  if (int r = t.file.Rewrite(); r != 0) {
    std::remove(temp.Str().c_str());
    return DbfStatus = StatusOfErrno(r);
  }
  int year = 0, month = 0, day = 0;
  TodayParts(year, month, day);
  const std::vector<unsigned char> header = dbf_detail::BuildHeader(layout, year, month, day);
  std::memcpy(t.header, header.data(), 32);
  t.io->path = path;
  t.io->tempPath = temp;
  t.io->created = true;
  t.readOnly = false;
  AdoptLayout(t, layout);
  t.tableChanged = true;  // the header is completed at the close
  if (int r = WriteAt(t, 0, header.data(), static_cast<int>(header.size())); r != 0) {
    t.file.Close();
    CloseCreated(t, r);
    return DbfStatus = r;
  }
  return DbfStatus = 0;
}

int DbfClose(DbfFile& t) {
  if (!t.IsOpen()) return DbfStatus = kDbfNotOpen;
  auto& io = *t.io;
  int status = 0;
  if (!t.readOnly && t.tableChanged) {
    if (io.failure == 0) DbfFlushPending(t);
    // A file removed while we wrote it is reported, not quietly completed.
    if (!io.created && !FileExists(io.path)) WriteFailed(t, ENOENT);
    status = io.failure;
    // An opened file keeps the count of its whole records; a created one that failed goes.
    if (!(io.created && status != 0))
      if (int r = FinishHeader(t); status == 0) status = r;
  }
  if (int r = t.file.Close(); r != 0 && status == 0) status = StatusOfErrno(r);
  if (io.created) status = CloseCreated(t, status);
  ResetTable(t);
  return DbfStatus = status;
}

void DbfSetCodePage(DbfFile& t, DbfCodePage codePage) { t.codePage = codePage; }

int DbfReadRecord(DbfFile& t, int64_t n) {
  if (!t.IsOpen()) return DbfStatus = kDbfNotOpenForInput;
  if (n < 1 || n > t.recordCount) {
    DbfBlankRecord(t);
    return DbfRangeError(true);
  }
  if (int r = DbfFlushPending(t); r != 0) return r;
  auto& io = *t.io;
  if (n < io.blockFirst || n >= io.blockFirst + io.blockCount) {
    if (int r = FillBlock(t, n); r != 0) return r;
    if (io.blockCount == 0) return DbfStatus = kDbfUnexpectedEnd;  // the header counts more than the file holds
  }
  std::memcpy(t.record.data(), io.block.data() + (n - io.blockFirst) * t.recordSize, t.recordSize);
  t.recordChanged = false;
  return DbfStatus = 0;
}

int DbfWriteRecord(DbfFile& t, int64_t n) {
  if (int r = CheckWritable(t); r != 0) return r;
  if (n < 1 || n > t.recordCount) return DbfRangeError(false);
  if (int r = DbfFlushPending(t); r != 0) return r;
  if (int r = WriteAt(t, RecordPosition(t, n), t.record.data(), t.recordSize); r != 0) return r;
  auto& io = *t.io;
  if (n >= io.blockFirst && n < io.blockFirst + io.blockCount)
    std::memcpy(io.block.data() + (n - io.blockFirst) * t.recordSize, t.record.data(), t.recordSize);
  t.recordChanged = false;
  t.tableChanged = true;
  return DbfStatus = 0;
}

int DbfAppendRecord(DbfFile& t) {
  if (int r = CheckWritable(t); r != 0) return r;
  auto& io = *t.io;
  if (t.recordCount >= 0xFFFFFFFFLL || (t.version == 2 && t.recordCount >= 0xFFFF))
    return DbfRangeError(false);
  if (io.pending.empty()) io.pending.assign(io.block.size(), 0);
  if (io.pendingCount == io.blockRecords)
    if (int r = DbfFlushPending(t); r != 0) return r;
  std::memcpy(io.pending.data() + static_cast<std::size_t>(io.pendingCount) * t.recordSize, t.record.data(),
              t.recordSize);
  ++io.pendingCount;
  ++t.recordCount;
  t.recordChanged = false;
  t.tableChanged = true;
  return DbfStatus = 0;
}

void DbfBlankRecord(DbfFile& t) {
  std::fill(t.record.begin(), t.record.end(), ' ');
  t.recordChanged = true;
}

bool DbfIsDeleted(const DbfFile& t) { return !t.record.empty() && t.record[0] == '*'; }

void DbfMarkDeleted(DbfFile& t, bool deleted) {
  if (t.record.empty()) return;
  t.record[0] = deleted ? '*' : ' ';
  t.recordChanged = true;
}

void DbfDiscard(DbfFile& t) {
  if (!t.IsOpen()) return;
  t.io->failure = kDbfWriteError;  // never given the table's name
  DbfClose(t);
}

void DbfDropAppends(DbfFile& t, int64_t count) {
  auto& io = *t.io;
  if (count >= t.recordCount) return;
  io.pendingCount = 0;
  io.diskCount = std::min(io.diskCount, count);
  io.blockCount = 0;
  t.recordCount = count;
}
