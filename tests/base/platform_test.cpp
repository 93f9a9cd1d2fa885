#include "base/platform.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <set>
#include <string>

#include "base/file_fixture.h"

namespace {

class PlatformTest : public file_test::ScratchDirTest {
 protected:
  static std::set<std::string> FindAll(const char* path, uint8_t mask) {
    std::set<std::string> names;
    FileSearch s;
    for (bool found = s.First(path, mask); found; found = s.Next()) names.insert(s.Found().name.Str());
    return names;
  }
};

TEST_F(PlatformTest, SearchMatchesPlainFilesAndWhatTheMaskAsksFor) {
  ::mkdir("spool", 0777);
  file_test::WriteBytes("spool/1", "job");
  file_test::WriteBytes("spool/.ukryty", "x");
  ::mkdir("spool/kat", 0777);
  ::mkfifo("spool/fifo", 0666);

  FileSearch one;
  ASSERT_TRUE(one.First("SPOOL\\1", kAttrArchive));
  EXPECT_EQ(one.Found().name.Str(), "1");
  EXPECT_EQ(one.Found().size, 3);
  EXPECT_TRUE(one.Found().attr & kAttrArchive);
  EXPECT_FALSE(one.Next());

  FileSearch none;
  EXPECT_FALSE(none.First("spool/2", kAttrArchive));
  EXPECT_FALSE(none.First("spool/kat", kAttrArchive));  // a directory is no job file
  EXPECT_TRUE(none.First("spool/kat", kAttrDirectory));
  EXPECT_FALSE(none.First("spool/fifo", kAttrArchive));
  EXPECT_FALSE(none.First("", kAttrAnyFile));

  EXPECT_EQ(FindAll("spool/*", kAttrArchive), (std::set<std::string>{"1"}));
  EXPECT_EQ(FindAll("spool/*", kAttrAnyFile), (std::set<std::string>{"1", "kat", "fifo", ".ukryty", ".", ".."}));
  EXPECT_EQ(FindAll("spool/?", kAttrArchive), (std::set<std::string>{"1"}));
  EXPECT_TRUE(FindAll("brak/*", kAttrAnyFile).empty());
}

TEST_F(PlatformTest, RunProgramWaitsAndGivesTheExitStatus) {
  EXPECT_EQ(RunProgram("/bin/sh", "-c \"echo 'a b' > wynik; exit 3\""), 3);
  EXPECT_EQ(file_test::ReadBytes("wynik"), "a b\n");
  EXPECT_EQ(RunProgram("true", ""), 0);  // no directory: looked up on PATH
  EXPECT_EQ(RunProgram("/nie/ma/programu", ""), -1);
  EXPECT_EQ(RunProgram("", "x"), -1);
}

TEST(Platform, ParametersClockAndRunTimeError) {
  char a0[] = "fisksrv", a1[] = "fisk.cfg", a2[] = "";
  char* argv[] = {a0, a1, a2, nullptr};
  SetProgramParameters(3, argv);
  EXPECT_EQ(ParamCount(), 2);
  EXPECT_EQ(ParamStr(0).Str(), "fisksrv");
  EXPECT_EQ(ParamStr(1).Str(), "fisk.cfg");
  EXPECT_TRUE(ParamStr(3).Empty());
  EXPECT_TRUE(ParamStr(-1).Empty());
  SetProgramParameters(0, nullptr);

  const ClockReading now = ReadClock();
  EXPECT_GE(now.year, 2020);
  EXPECT_TRUE(now.month >= 1 && now.month <= 12 && now.day >= 1 && now.day <= 31);
  EXPECT_TRUE(now.hour >= 0 && now.hour < 24 && now.second >= 0 && now.second <= 60);
  SleepMs(0);
  SleepMs(-5);

  EXPECT_EXIT(RunTimeError(kRangeCheckError, "test"), ::testing::ExitedWithCode(201), "Runtime error 201: test");
}

}  // namespace
