#include "base/filenames.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <regex>
#include <set>
#include <string>
#include <vector>

#include "base/expect_rows.h"
#include "base/file_fixture.h"
#include "base/mazovia.h"

namespace {

using file_test::Exists;
using file_test::ReadBytes;
using file_test::WriteBytes;
using test_rows::ExpectRows;

// Sets or removes an environment variable for one test and puts it back after.
class EnvGuard {
 public:
  explicit EnvGuard(const char* name)
      : name_(name), had_(std::getenv(name) != nullptr), old_(had_ ? std::getenv(name) : "") {}
  ~EnvGuard() { Set(had_ ? old_.c_str() : nullptr); }
  void Set(const char* value) { value ? setenv(name_, value, 1) : unsetenv(name_); }

 private:
  const char* name_;
  bool had_;
  std::string old_;
};

class FileNamesTest : public file_test::ScratchDirTest {
 protected:
  EnvGuard temp_{"TEMP"}, tmp_{"TMP"}, path_{"PATH"};
};

TEST_F(FileNamesTest, TempDirTakesTempThenTmpThenTheCurrentDirectoryAndEndsInSlash) {
  struct Case {
    const char* temp;
    const char* tmp;
    const char* dir;
  } cases[] = {
      {"/var/tmp", "/x", "/var/tmp/"}, {"/var/tmp/", nullptr, "/var/tmp/"}, {"", "/x", "/x/"},
      {nullptr, "tmp", "tmp/"},        {nullptr, nullptr, "./"},            {"", "", "./"},
  };
  for (const Case& c : cases) {
    temp_.Set(c.temp);
    tmp_.Set(c.tmp);
    EXPECT_EQ(TempDir(), c.dir);
  }
}

TEST_F(FileNamesTest, TempNamesAreNewEmptyFilesNeverGivenTwice) {
  ::mkdir("tymczas", 0777);
  temp_.Set("tymczas");
  std::set<std::string> names;
  for (int i = 0; i < 500; ++i) {
    const std::string name = TempName().Str();
    ASSERT_EQ(name.substr(0, 8), "tymczas/");
    EXPECT_TRUE(std::regex_match(name.substr(8), std::regex("rfls[0-9a-z]{4}\\.tmp"))) << name;
    EXPECT_TRUE(Exists(name));
    EXPECT_EQ(ReadBytes(name), "");
    names.insert(name);
  }
  EXPECT_EQ(names.size(), 500u);
  // A missing directory gives no name; an empty one means the current directory.
  EXPECT_EQ(TempNameIn("nie_ma_katalogu"), "");
  EXPECT_EQ(TempNameIn("").Str().substr(0, 4), "rfls");
}

TEST_F(FileNamesTest, TempNamesOfProcessesWorkingTogetherDoNotMeet) {
  ::mkdir("wspolny", 0777);
  constexpr int kChildren = 4, kEach = 150;
  std::vector<pid_t> children;
  for (int c = 0; c < kChildren; ++c) {
    const pid_t pid = ::fork();
    if (pid == 0) {
      std::string all;
      for (int i = 0; i < kEach; ++i) all += TempNameIn("wspolny").Str() + "\n";
      WriteBytes("lista" + std::to_string(c), all);
      std::_Exit(0);
    }
    children.push_back(pid);
  }
  for (pid_t pid : children) {
    int status = 0;
    ::waitpid(pid, &status, 0);
  }
  std::set<std::string> names;
  for (int c = 0; c < kChildren; ++c) {
    std::string list = ReadBytes("lista" + std::to_string(c));
    for (size_t from = 0, to; (to = list.find('\n', from)) != std::string::npos; from = to + 1) {
      EXPECT_NE(to, from) << "a child got no name";
      names.insert(list.substr(from, to - from));
    }
  }
  EXPECT_EQ(names.size(), static_cast<size_t>(kChildren * kEach));
}

TEST(TempTableNameTest, NamesAreDbAndCapitalsAndNeverRepeat) {
  std::set<std::string> names;
  for (int i = 0; i < 1000; ++i) {
    const std::string name = TempTableName().Str();
    ASSERT_GE(name.size(), 3u);
    EXPECT_LE(name.size(), 20u);
    EXPECT_EQ(name.substr(0, 2), "DB");
    for (char c : name.substr(2)) EXPECT_TRUE(c >= 'A' && c <= 'Z') << name;
    names.insert(name);
  }
  EXPECT_EQ(names.size(), 1000u);
}

TEST_F(FileNamesTest, FindOnPathWalksTheDirectoriesInOrder) {
  std::filesystem::create_directories("bin1/katalog");
  std::filesystem::create_directories("sub/bin2/katalog");
  WriteBytes("bin1/narzedzie", "1");
  WriteBytes("sub/bin2/narzedzie", "2");
  WriteBytes("sub/bin2/drugie", "3");
  WriteBytes("tutaj", "4");
  const std::string cwd = std::filesystem::current_path().string();
  struct Case {
    const char* path;
    const char* name;
    std::string found;
  } cases[] = {
      {"bin1:sub/bin2", "narzedzie", cwd + "/bin1/narzedzie"},
      {"/nie/ma;sub/x/../bin2:bin1", "narzedzie", cwd + "/sub/bin2/narzedzie"},
      {"bin1;./sub//bin2/", "drugie", cwd + "/sub/bin2/drugie"},
      {"bin1:sub/bin2", "katalog", ""},  // a directory is no find
      {"bin1:sub/bin2", "brak", ""},
      {":bin1", "tutaj", cwd + "/tutaj"},  // an empty entry is the current directory
      {"bin1", "tutaj", ""},
      {"bin1", "sub/../sub/bin2/drugie", cwd + "/sub/bin2/drugie"},  // with a '/': as it stands
      {"", "narzedzie", ""}, {"bin1", "", ""},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(std::string(c.path) + " " + c.name);
    path_.Set(c.path);
    ShortText out = "stare";
    EXPECT_EQ(FindOnPath(c.name, out), !c.found.empty());
    EXPECT_EQ(out.Str(), c.found);
  }
  path_.Set(nullptr);
  ShortText out;
  EXPECT_FALSE(FindOnPath("narzedzie", out));
}

TEST(ShortNameTest, EightCharactersAndACheckCharacter) {
  ExpectRows<ShortText>({
      {ShortName(""), "________!"},            // XOR 0 moves up to '!'
      {ShortName("a"), "A_______A"},           // check 'A' taken as it is
      {ShortName("abc"), "ABC_____@"},         // 'A'^'B'^'C' = '@'
      {ShortName("ab"), "AB______!"},          // 3 moves up to '!'
      {ShortName("a "), "A_______{"},          // 'a' (0x61) moves up past the small letters to '{'
      {ShortName("["), "________^"},           // '[', '\' and ']' are not allowed: '^'
      {ShortName("\x7F"), "________!"},        // past 126 wraps to '!'
      {ShortName("a b.c"), "A_B_C___N"},       // blank and dot become '_'
      {ShortName("źółw"_mz), "ZOLW____!"},     // Polish letters made plain capitals first
      {ShortName("abcdefghij"), "ABCDEFGH!"},  // cut to 8, check over all ten
      {ShortName("~}{"), "~}{_____{"},         // 0x78 moves up to '{'
  });
}

TEST(SafeKeyTest, TenToTwentyLettersDigitsAndUnderscores) {
  ExpectRows<ShortText>({
      {SafeKey(""), "__________"}, {SafeKey("abc"), "abc_______"}, {SafeKey("Magazyn 1-2"), "Magazyn_1_2"},
      {SafeKey("łódź"_mz), "__d_______"}, {SafeKey("abcdefghijklmnopqrst"), "abcdefghijklmnopqrst"},
      {SafeKey(ShortText(std::string(21, 'a'))), "aaaaaaaaaaaaaaaaaa97"},  // odd count: XOR 'a' = 97
      {SafeKey(ShortText(std::string(22, 'b'))), "bbbbbbbbbbbbbbbbbbb0"},
      {SafeKey("dane\\12\\naglowki_magazyn"), "dane_12_naglowki_m43"},
  });
}

}  // namespace
