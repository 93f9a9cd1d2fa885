// Tests of file operations run in a fresh temporary directory that is the
// current directory, so that paths stay short and in lower case (directory
// names are folded to lower case on the way to the disk).
#pragma once

#include <gtest/gtest.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iterator>
#include <string>

namespace file_test {

inline void WriteBytes(const std::string& path, const std::string& bytes) {
  std::ofstream(path, std::ios::binary) << bytes;
}

inline std::string ReadBytes(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

inline bool Exists(const std::string& path) {
  struct stat st;
  return ::stat(path.c_str(), &st) == 0;
}

// Bytes that differ from block to block, so a misplaced block shows.
inline std::string Pattern(size_t size) {
  std::string s(size, '\0');
  for (size_t i = 0; i < size; ++i) s[i] = static_cast<char>('a' + (i * 7 + i / 4096) % 26);
  return s;
}

// Names in the directory (without "." and ".."), sorted, joined by blanks.
inline std::string Listing(const std::string& dir = ".") {
  std::string cmd = "ls -A " + dir + " 2>/dev/null | tr '\\n' ' '";
  std::string out;
  if (FILE* p = ::popen(cmd.c_str(), "r")) {
    char buf[256];
    while (std::fgets(buf, sizeof buf, p)) out += buf;
    ::pclose(p);
  }
  return out;
}

// A fresh temporary directory made the current one for its lifetime, with
// an optional small tmpfs mounted in it.
class ScratchDir {
 public:
  ScratchDir() {
    char pattern[] = "/tmp/klote-files-XXXXXX";
    if (::mkdtemp(pattern) == nullptr) return;
    dir_ = pattern;
    char cwd[4096];
    if (::getcwd(cwd, sizeof cwd) != nullptr) oldCwd_ = cwd;
    entered_ = ::chdir(dir_.c_str()) == 0;
  }
  ~ScratchDir() {
    if (!mounted_.empty()) ::umount2((dir_ + "/" + mounted_).c_str(), MNT_DETACH);
    if (entered_ && ::chdir(oldCwd_.c_str()) != 0) return;
    if (!dir_.empty()) std::system(("rm -rf " + dir_).c_str());
  }
  ScratchDir(const ScratchDir&) = delete;
  ScratchDir& operator=(const ScratchDir&) = delete;
  bool Entered() const { return entered_; }

  // Mounts a tmpfs of the given size on a new directory; false (with the
  // reason in SkipReason) when this process may not mount.
  bool MountSmallDisk(const std::string& name, int kilobytes) {
    ::mkdir(name.c_str(), 0777);
    const std::string options = "size=" + std::to_string(kilobytes) + "k";
    if (::mount("tmpfs", (dir_ + "/" + name).c_str(), "tmpfs", 0, options.c_str()) != 0) {
      skipReason_ = std::string("cannot mount a small tmpfs (") + std::strerror(errno) +
                    "; needs root): the full-disk case is not tested here";
      return false;
    }
    mounted_ = name;
    return true;
  }
  const std::string& SkipReason() const { return skipReason_; }

 private:
  std::string dir_, oldCwd_, mounted_, skipReason_;
  bool entered_ = false;
};

class ScratchDirTest : public ::testing::Test {
 protected:
  void SetUp() override { ASSERT_TRUE(scratch_.Entered()); }
  bool MountSmallDisk(const std::string& name, int kilobytes) { return scratch_.MountSmallDisk(name, kilobytes); }
  const std::string& SkipReason() const { return scratch_.SkipReason(); }

  ScratchDir scratch_;
};

}  // namespace file_test
