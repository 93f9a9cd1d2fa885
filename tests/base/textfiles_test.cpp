#include "base/textfiles.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cstdlib>
#include <string>

#include "base/file_fixture.h"

namespace {

using file_test::Exists;
using file_test::Listing;
using file_test::ReadBytes;
using file_test::WriteBytes;

std::string ConvertInPieces(LineEnds ends, const std::string& in, size_t cut) {
  LineEndConverter converter(ends);
  std::string out;
  converter.Convert(in.data(), static_cast<int>(cut), out);
  converter.Convert(in.data() + cut, static_cast<int>(in.size() - cut), out);
  converter.Finish(out);
  return out;
}

TEST(LineEndConverterTest, GivesTheSameWhereverTheInputIsCut) {
  const std::string in = "a\r\nb\r\rc\n\r\n\n\r";
  struct Case {
    LineEnds ends;
    std::string out;
  } cases[] = {
      {LineEnds::kToUnix, "a\nb\r\rc\n\n\n\r"},            // a lone CR stays
      {LineEnds::kToDos, "a\r\nb\r\rc\r\n\r\n\r\n\r"},  // a CR LF is not doubled
      {LineEnds::kKeep, in},
  };
  for (const Case& c : cases)
    for (size_t cut = 0; cut <= in.size(); ++cut) {
      SCOPED_TRACE(cut);
      EXPECT_EQ(ConvertInPieces(c.ends, in, cut), c.out);
    }
}

class RewriteTest : public file_test::ScratchDirTest {};

TEST_F(RewriteTest, LineEndsAtTheEdgesOfTheReadBlocks) {
  const std::string x(kRewriteBlockSize - 1, 'x');
  struct Case {
    std::string dos, unix;
  } cases[] = {
      {x + "\r\n", x + "\n"},                           // CR last in block 1, LF first in block 2
      {x + "\r", x + "\r"},                             // a CR ends the file
      {x + "y\r\n", x + "y\n"},                         // CR LF wholly in block 2
      {x.substr(1) + "\r\n\r\n", x.substr(1) + "\n\n"},  // CR LF last in block 1
      {"", ""},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.dos.size());
    WriteBytes("plik.txt", c.dos);
    ASSERT_EQ(RewriteTextFile("plik.txt", "plik.txt", LineEnds::kToUnix).stage, RewriteResult::kOk);
    EXPECT_EQ(ReadBytes("plik.txt"), c.unix);
    ASSERT_EQ(RewriteTextFile("plik.txt", "plik.txt", LineEnds::kToDos).stage, RewriteResult::kOk);
    EXPECT_EQ(ReadBytes("plik.txt"), c.dos);
  }
  EXPECT_EQ(Listing(), "plik.txt ");  // no temporary file left behind
}

TEST_F(RewriteTest, ToAnotherNameMovesTheFileWithItsPermissions) {
  ::mkdir("inny", 0777);
  WriteBytes("stary.txt", "jeden\ndwa\n");
  ::chmod("stary.txt", 0640);
  ASSERT_EQ(RewriteTextFile("stary.txt", "INNY\\nowy.txt", LineEnds::kKeep).stage, RewriteResult::kOk);
  EXPECT_FALSE(Exists("stary.txt"));
  EXPECT_EQ(ReadBytes("inny/nowy.txt"), "jeden\ndwa\n");
  struct stat st;
  ASSERT_EQ(::stat("inny/nowy.txt", &st), 0);
  EXPECT_EQ(st.st_mode & 07777, 0640u);
  EXPECT_EQ(Listing("inny"), "nowy.txt ");
}

TEST_F(RewriteTest, FailuresSayWhichStepAndLeaveTheFileAsItWas) {
  ::mkdir("katalog", 0777);
  WriteBytes("plik.txt", "a\r\nb\r\n");
  struct Case {
    const char* why;
    const char* from;
    const char* to;
    RewriteResult::Stage stage;
    int code;
  } cases[] = {
      {"no such file", "brak.txt", "brak.txt", RewriteResult::kOpenFailed, ENOENT},
      {"no directory for the temporary file", "plik.txt", "brak/plik.txt", RewriteResult::kTempFailed, ENOENT},
      {"a directory in the way", "plik.txt", "katalog", RewriteResult::kRenameFailed, EISDIR},
      {"a directory read as text", "katalog", "plik2.txt", RewriteResult::kRenameFailed, EISDIR},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.why);
    const RewriteResult r = RewriteTextFile(c.from, c.to, LineEnds::kToUnix);
    EXPECT_EQ(r.stage, c.stage);
    EXPECT_EQ(r.code, c.code);
    EXPECT_EQ(ReadBytes("plik.txt"), "a\r\nb\r\n");
    EXPECT_EQ(Listing(), "katalog plik.txt ");
  }
}

TEST_F(RewriteTest, AFullDiskFailsTheRenameAndKeepsTheOldFile) {
  if (!MountSmallDisk("dysk", 16)) GTEST_SKIP() << SkipReason();
  const std::string text(12 * 1024, 'z');
  WriteBytes("dysk/plik.txt", text);
  const RewriteResult r = RewriteTextFile("dysk/plik.txt", "dysk/plik.txt", LineEnds::kKeep);
  EXPECT_EQ(r.stage, RewriteResult::kRenameFailed);
  EXPECT_EQ(r.code, ENOSPC);
  EXPECT_EQ(ReadBytes("dysk/plik.txt"), text);
  EXPECT_EQ(Listing("dysk"), "plik.txt ");
}

class FileListTest : public file_test::ScratchDirTest {
 protected:
  void SetUp() override {
    ScratchDirTest::SetUp();
    for (const char* name : {"b.csv", "a.csv", "C.CSV", ".ukryty.csv", "x.txt", "dane/z.csv", "dane/y.csv"}) {
      ::mkdir("dane", 0777);
      WriteBytes(name, "1");
    }
    ::mkdir("katalog.csv", 0777);
    ::mkfifo("potok.csv", 0666);
  }
};

TEST_F(FileListTest, MasksNamePlainFilesInByteOrder) {
  struct Case {
    const char* mask;
    std::vector<std::string> paths;
  } cases[] = {
      {"*.csv", {"a.csv", "b.csv"}}, {"*.CSV", {"C.CSV"}}, {".*.csv", {".ukryty.csv"}},
      {"DANE\\*.csv", {"DANE\\y.csv", "DANE\\z.csv"}}, {"?.txt", {"x.txt"}}, {"*.dbf", {}}, {"brak/*", {}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.mask);
    std::vector<std::string> got;
    for (const ShortText& p : FilesMatching(c.mask)) got.push_back(p.Str());
    EXPECT_EQ(got, c.paths);
  }
}

TEST_F(FileListTest, ReadFileListedWritesOneNameALineToATemporaryFile) {
  setenv("TEMP", "dane", 1);
  ShortText list;
  EXPECT_EQ(ReadFileListed("", "*.csv", list), 2);
  EXPECT_EQ(list.Str().substr(0, 9), "dane/rfls");
  EXPECT_EQ(ReadBytes(list.Str()), "a.csv\nb.csv\n");
  EXPECT_EQ(ReadFileListed("dane", "*.csv", list), 2);
  EXPECT_EQ(ReadBytes(list.Str()), "y.csv\nz.csv\n");
  EXPECT_EQ(ReadFileListed("dane\\", "*.dbf", list), 0);
  EXPECT_EQ(ReadBytes(list.Str()), "");
  setenv("TEMP", "brak", 1);
  EXPECT_EQ(ReadFileListed("", "*.csv", list), -1);
  EXPECT_TRUE(list.Empty());
  unsetenv("TEMP");
}

}  // namespace
