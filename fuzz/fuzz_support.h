// Helpers of the fuzz targets: the input as a file on disk, for the readers
// that take a path.
#pragma once

#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <string>

#include "base/shorttext.h"

// The bytes written to a file of this process under the temporary directory,
// removed again when the object goes.
class FuzzInputFile {
 public:
  FuzzInputFile(const char* tag, const uint8_t* data, size_t size) {
    const char* dir = getenv("TMPDIR");
    path_ = std::string(dir && *dir ? dir : "/tmp") + "/klote-fuzz-" + std::to_string(getpid()) + "-" + tag;
    if (FILE* f = std::fopen(path_.c_str(), "wb")) {
      if (size > 0) std::fwrite(data, 1, size, f);
      std::fclose(f);
    }
  }
  ~FuzzInputFile() { unlink(path_.c_str()); }
  FuzzInputFile(const FuzzInputFile&) = delete;
  FuzzInputFile& operator=(const FuzzInputFile&) = delete;

  // The path as the system's file functions take it (lower case, no '\').
  ShortText Path() const { return ShortText(path_); }

 private:
  std::string path_;
};
