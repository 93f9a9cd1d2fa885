// The file variable through which the system opens every file: bound to a path
// by AssignFile, opened, read and written by bytes or by lines, closed. Every
// operation returns an IO result: 0 for success, otherwise an errno value.
// The descriptor is owned: the destructor closes it.
#pragma once

#include <cstdint>
#include <string_view>

#include "base/shorttext.h"

// Access asked of Reset: read only, write only, read and write.
inline constexpr int kFileModeReadOnly = 0;
inline constexpr int kFileModeWriteOnly = 1;
inline constexpr int kFileModeReadWrite = 2;

class FileVar {
 public:
  FileVar() = default;
  ~FileVar();
  FileVar(const FileVar&) = delete;
  FileVar& operator=(const FileVar&) = delete;

  // Binds the variable to a path taken as it stands, closing what was open.
  void BindUnixPath(const ShortText& unixPath);
  // The path the variable is bound to.
  const ShortText& Name() const { return name_; }
  // True while a file is open.
  bool IsOpen() const { return fd_ >= 0; }

  // Opens the existing file at position 0 with the access of fileMode.
  [[nodiscard]] int Reset(int fileMode);
  // Creates the file, or empties an existing one, for reading and writing.
  [[nodiscard]] int Rewrite();
  // Opens the existing file for writing at its end.
  [[nodiscard]] int Append();
  // Reads up to count bytes; got receives how many came (0 at the end).
  [[nodiscard]] int Read(void* buffer, int count, int& got);
  // Writes count bytes; a short write is an error (ENOSPC).
  [[nodiscard]] int Write(const void* buffer, int count);
  // Moves to a byte position from the start.
  [[nodiscard]] int Seek(int64_t position);
  // Byte position of the next read or write; -1 when closed.
  int64_t Position() const;
  // Size in bytes; -1 when closed.
  int64_t Size() const;
  // Next text line without its LF or CR LF; a line over 255 bytes is cut and
  // its rest skipped. False at the end of the file or when closed.
  bool ReadLine(ShortText& line);
  // Closes the file; closing a closed variable is no error.
  int Close();
  // Removes the bound file from the disk (closing it first).
  [[nodiscard]] int Erase();

 private:
  bool FillBuffer();

  ShortText name_;
  int fd_ = -1;
  // Read-ahead of ReadLine; Read takes from it first, Seek drops it.
  char buffer_[512] = {};
  int bufferPos_ = 0;
  int bufferLen_ = 0;
};

// Binds the file variable to the path after PathToUnix. Every open in the
// system goes through this.
void AssignFile(FileVar& file, const ShortText& path);
