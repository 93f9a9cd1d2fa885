#include "base/filecopy.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <new>
#include <utility>
#include <vector>

#include "base/file_fixture.h"
#include "base/mazovia.h"
#include "base/paths.h"

// The copy buffer comes from the nothrow array allocation; this program can make it fail on demand.
static bool g_failNothrowArrays = false;

void* operator new[](std::size_t size, const std::nothrow_t&) noexcept {
  if (g_failNothrowArrays) return nullptr;
  try {
    return ::operator new[](size);
  } catch (...) {
    return nullptr;
  }
}

namespace {

using file_test::Exists;
using file_test::Pattern;
using file_test::ReadBytes;
using file_test::WriteBytes;

class CopyFileTest : public file_test::ScratchDirTest {};

constexpr int kBlock = kCopyBlockSize;

TEST_F(CopyFileTest, WholeCopyIsExactAtEveryBlockEdgeAndCountsItsBlocks) {
  struct Case {
    size_t size;
    int64_t blocks;
  } cases[] = {{0, 0}, {1, 1}, {kBlock - 1, 1}, {kBlock, 1}, {kBlock + 1, 2}, {3 * kBlock + 7, 4}};
  for (const Case& c : cases) {
    SCOPED_TRACE(c.size);
    const std::string source = Pattern(c.size);
    WriteBytes("zrodlo.dat", source);
    WriteBytes("cel.dat", std::string(5 * kBlock, 'X'));  // a longer old target is replaced whole
    std::vector<std::pair<int64_t, int64_t>> steps;
    EXPECT_EQ(CopyFileChecked("zrodlo.dat", "cel.dat", -1, -1,
                              [&](int64_t done, int64_t total) { steps.emplace_back(done, total); }),
              kCopyOk);
    EXPECT_EQ(ReadBytes("cel.dat"), source);
    ASSERT_EQ(static_cast<int64_t>(steps.size()), c.blocks);
    for (int64_t i = 0; i < c.blocks; ++i) EXPECT_EQ(steps[i], std::make_pair(i + 1, c.blocks));
  }
}

TEST_F(CopyFileTest, PartsAreAppendedToTheTarget) {
  const std::string source = Pattern(2 * kBlock + 100);
  WriteBytes("zrodlo.dat", source);
  struct Step {
    int64_t start, length;
    std::string added;
  } steps[] = {
      {2, 3, source.substr(2, 3)},                 // a missing target is made
      {0, -1, source},                             // the rest of the file
      {kBlock - 1, kBlock + 2, source.substr(kBlock - 1, kBlock + 2)},
      {2 * kBlock, 5000, source.substr(2 * kBlock)},  // more asked than there is
      {static_cast<int64_t>(source.size()), -1, ""},  // at the end: nothing
      {static_cast<int64_t>(source.size()) + 50, 10, ""}, {7, 0, ""},
  };
  std::string expected;
  for (const Step& s : steps) {
    SCOPED_TRACE(s.start);
    EXPECT_EQ(CopyFileChecked("zrodlo.dat", "cel.dat", s.start, s.length), kCopyOk);
    expected += s.added;
    EXPECT_EQ(ReadBytes("cel.dat"), expected);
  }
}

TEST_F(CopyFileTest, EveryFailureHasItsCodeFromARealCause) {
  WriteBytes("zrodlo.dat", Pattern(3 * kBlock));
  ::mkdir("katalog", 0777);
  ASSERT_EQ(::mkfifo("potok", 0666), 0);
  ASSERT_EQ(::symlink("zrodlo.dat", "dowiazanie"), 0);
  struct Case {
    const char* why;
    const char* source;
    const char* target;
    int64_t start;
    uint8_t code;
  } cases[] = {
      {"no source", "brak.dat", "cel.dat", -1, kCopySourceOpen},
      {"target made in a missing directory", "zrodlo.dat", "brak/cel.dat", -1, kCopyTargetCreate},
      {"target made over a directory", "zrodlo.dat", "katalog", -1, kCopyTargetCreate},
      {"part appended to a missing directory", "zrodlo.dat", "brak/cel.dat", 0, kCopyTargetCreate},
      {"part appended to a directory", "zrodlo.dat", "katalog", 0, kCopyTargetOpen},
      {"part appended to a pipe, which has no end", "zrodlo.dat", "potok", 0, kCopyTargetEnd},
      {"source is a directory", "katalog", "cel.dat", -1, kCopySourceRead},
      {"target device always full", "zrodlo.dat", "/dev/full", -1, kCopyTargetWrite},
      {"target gives nothing back", "zrodlo.dat", "/dev/null", -1, kCopyReadBack},
      {"target pipe cannot go back", "zrodlo.dat", "potok", -1, kCopyReadBack},
      {"target gives other bytes back", "zrodlo.dat", "/dev/zero", -1, kCopyCompare},
      {"the source itself made anew", "zrodlo.dat", "ZRODLO.DAT", -1, kCopyTargetCreate},
      {"the source appended to itself", "zrodlo.dat", "./zrodlo.dat", 0, kCopyTargetOpen},
      {"the source through a link", "zrodlo.dat", "dowiazanie", -1, kCopyTargetCreate},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.why);
    EXPECT_EQ(CopyFileChecked(c.source, c.target, c.start, -1), c.code);
  }
  // Only the directory source got as far as making its target; the source is whole.
  EXPECT_EQ(ReadBytes("cel.dat"), "");
  EXPECT_EQ(ReadBytes("zrodlo.dat"), Pattern(3 * kBlock));
}

TEST_F(CopyFileTest, FullDiskGivesCodeSixAndLeavesThePartWritten) {
  if (!MountSmallDisk("dysk", 64)) GTEST_SKIP() << SkipReason();
  const std::string source = Pattern(12 * kBlock + 123);
  WriteBytes("zrodlo.dat", source);
  int64_t blocksDone = 0;
  EXPECT_EQ(CopyFileChecked("zrodlo.dat", "dysk/cel.dat", -1, -1,
                            [&](int64_t done, int64_t) { blocksDone = done; }),
            kCopyTargetWrite);
  const std::string partial = ReadBytes("dysk/cel.dat");
  EXPECT_GT(partial.size(), 0u);
  EXPECT_LT(partial.size(), source.size());
  EXPECT_EQ(partial, source.substr(0, partial.size()));
  EXPECT_EQ(blocksDone, static_cast<int64_t>(partial.size()) / kBlock);
  // Appending a part to the full disk fails the same way and keeps what is there.
  EXPECT_EQ(CopyFileChecked("zrodlo.dat", "dysk/cel.dat", 0, -1), kCopyTargetWrite);
  EXPECT_EQ(ReadBytes("dysk/cel.dat").substr(0, partial.size()), partial);
}

TEST_F(CopyFileTest, NoMemoryForTheBufferGivesCodeOne) {
  WriteBytes("zrodlo.dat", "abc");
  g_failNothrowArrays = true;
  const uint8_t code = CopyFileChecked("zrodlo.dat", "cel.dat", -1, -1);
  g_failNothrowArrays = false;
  EXPECT_EQ(code, kCopyNoBuffer);
  EXPECT_FALSE(FileExists("cel.dat")) << "nothing is touched without a buffer";
}

TEST(CopyResultTextTest, EachCodeHasItsText) {
  const ShortText expected[] = {
      "O.K."_mz,
      "Brak pamięci dla bufora kopiowania."_mz,
      "Nie mogę otworzyć pliku źródłowego."_mz,
      "Nie mogę otworzyć pliku docelowego."_mz,
      "Nie mogę znaleźć końca pliku docelowego"_mz,
      "Błąd odczytu z pliku źródłowego."_mz,
      "Błąd zapisu do pliku docelowego."_mz,
      "Błąd kontrolnego odczytu z pliku docelowego."_mz,
      "Błąd porównania danych z pliku źródłowego i docelowego."_mz,
      "Nie mogę założyć pliku docelowego."_mz,
  };
  for (int code = 0; code < 10; ++code) EXPECT_EQ(CopyResultText(static_cast<uint8_t>(code)), expected[code]);
  for (int code : {10, 99, 255}) EXPECT_EQ(CopyResultText(static_cast<uint8_t>(code)), "Błąd odczytu/zapisu."_mz);
}

}  // namespace
