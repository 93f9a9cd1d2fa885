#include "base/filevar.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

#include "base/paths.h"

namespace {

// Files are created readable and writable by all; the process's umask decides.
constexpr mode_t kCreateMode = 0666;

int OpenFlags(int fileMode) {
  switch (fileMode) {
    case kFileModeReadOnly: return O_RDONLY;
    case kFileModeWriteOnly: return O_WRONLY;
    default: return O_RDWR;
  }
}

}  // namespace

FileVar::~FileVar() { Close(); }

void FileVar::BindUnixPath(const ShortText& unixPath) {
  Close();
  name_ = unixPath;
}

int FileVar::Reset(int fileMode) {
  Close();
  fd_ = ::open(name_.Str().c_str(), OpenFlags(fileMode) | O_CLOEXEC);
  return fd_ >= 0 ? 0 : errno;
}

int FileVar::Rewrite() {
  Close();
  fd_ = ::open(name_.Str().c_str(), O_RDWR | O_CREAT | O_TRUNC | O_CLOEXEC, kCreateMode);
  return fd_ >= 0 ? 0 : errno;
}

int FileVar::Append() {
  Close();
  fd_ = ::open(name_.Str().c_str(), O_WRONLY | O_APPEND | O_CLOEXEC);
  return fd_ >= 0 ? 0 : errno;
}

int FileVar::Read(void* buffer, int count, int& got) {
  got = 0;
  if (fd_ < 0) return EBADF;
  auto* out = static_cast<char*>(buffer);
  const int buffered = std::min(count, bufferLen_ - bufferPos_);
  if (buffered > 0) {
    std::memcpy(out, buffer_ + bufferPos_, buffered);
    bufferPos_ += buffered;
    got = buffered;
  }
  while (got < count) {
    const ssize_t n = ::read(fd_, out + got, count - got);
    if (n < 0 && errno == EINTR) continue;
    if (n < 0) return errno;
    if (n == 0) break;
    got += static_cast<int>(n);
  }
  return 0;
}

int FileVar::Write(const void* buffer, int count) {
  if (fd_ < 0) return EBADF;
  if (bufferPos_ < bufferLen_) {
    // Writing after a read-ahead: put the descriptor where the reader stands.
    if (int r = Seek(Position()); r != 0) return r;
  }
  const auto* in = static_cast<const char*>(buffer);
  int done = 0;
  while (done < count) {
    const ssize_t n = ::write(fd_, in + done, count - done);
    if (n < 0 && errno == EINTR) continue;
    if (n < 0) return errno;
    if (n == 0) return ENOSPC;
    done += static_cast<int>(n);
  }
  return 0;
}

int FileVar::Seek(int64_t position) {
  if (fd_ < 0) return EBADF;
  bufferPos_ = bufferLen_ = 0;
  return ::lseek(fd_, position, SEEK_SET) < 0 ? errno : 0;
}

int64_t FileVar::Position() const {
  if (fd_ < 0) return -1;
  const off_t at = ::lseek(fd_, 0, SEEK_CUR);
  return at < 0 ? -1 : at - (bufferLen_ - bufferPos_);
}

int64_t FileVar::Size() const {
  if (fd_ < 0) return -1;
  struct stat st;
  return ::fstat(fd_, &st) == 0 ? st.st_size : -1;
}

bool FileVar::FillBuffer() {
  if (bufferPos_ < bufferLen_) return true;
  bufferPos_ = bufferLen_ = 0;
  ssize_t n;
  do n = ::read(fd_, buffer_, sizeof buffer_);
  while (n < 0 && errno == EINTR);
  if (n <= 0) return false;
  bufferLen_ = static_cast<int>(n);
  return true;
}

bool FileVar::ReadLine(ShortText& line) {
  line.Clear();
  if (fd_ < 0 || !FillBuffer()) return false;
  bool carriageReturn = false;
  while (FillBuffer()) {
    const char c = buffer_[bufferPos_++];
    if (c == '\n') break;
    // A CR is held back until the next byte shows whether it ends the line.
    if (carriageReturn) line.Append('\r');
    carriageReturn = c == '\r';
    if (!carriageReturn) line.Append(c);
  }
  return true;
}

int FileVar::Close() {
  bufferPos_ = bufferLen_ = 0;
  if (fd_ < 0) return 0;
  const int r = ::close(fd_);
  fd_ = -1;
  return r == 0 ? 0 : errno;
}

int FileVar::Erase() {
  Close();
  return ::unlink(name_.Str().c_str()) == 0 ? 0 : errno;
}

void AssignFile(FileVar& file, const ShortText& path) { file.BindUnixPath(PathToUnix(path)); }
