#include "base/paths.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <string>

#include "base/expect_rows.h"
#include "base/file_fixture.h"
#include "base/filevar.h"

namespace {

using file_test::WriteBytes;
using test_rows::ExpectRows;

// Runs each test in a fresh temporary directory as the current directory.
class PathsTest : public file_test::ScratchDirTest {
 protected:
  void SetUp() override {
    file_test::ScratchDirTest::SetUp();
    ResetExchangeDirs();
  }
  void TearDown() override { ResetExchangeDirs(); }
};

TEST_F(PathsTest, FileNameKeepsTheCaseFoundOnDiskAndTheDirectoryFoldsToLowerCase) {
  ::mkdir("dane", 0777);
  for (const char* name : {"dane/konfigur.txt", "dane/WYDRUK.TXT", "dane/MiXed.txt"}) WriteBytes(name, "x");
  // Where neither the exact nor the upper nor the lower case exists, the name stays as given.
  ExpectRows<ShortText>({
      {PathToUnix("dane\\Konfigur.TXT"), "dane/konfigur.txt"}, {PathToUnix("DANE\\KONFIGUR.TXT"), "dane/konfigur.txt"},
      {PathToUnix("dane\\wydruk.txt"), "dane/WYDRUK.TXT"}, {PathToUnix("Dane\\MiXed.txt"), "dane/MiXed.txt"},
      {PathToUnix("dane\\mixed.TXT"), "dane/mixed.TXT"}, {PathToUnix("dane\\Nowy.Txt"), "dane/Nowy.Txt"},
      {PathToUnix(""), ""}, {PathToUnix("DANE\\12\\Naglowki"), "dane/12/Naglowki"},
      {PathToUnix("Srvfisk/1"), "srvfisk/1"}, {PathToUnix("DANE\\"), "dane/"},
      {PathToUnix("/Usr/Bin/mc"), "/usr/bin/mc"},
  });
}

TEST_F(PathsTest, ExchangeDrivesUseTheDirectoriesOfFloppdirCfg) {
  EXPECT_EQ(PathToUnix("A:\\plik").Str(), "a:/plik");  // no exchange directory: a relative path
  ResetExchangeDirs();
  WriteBytes("floppdir.cfg", "/tmp/Wymiana\r\n/mnt/b/\n");
  EXPECT_EQ(ExchangeDir('A').Str(), "/tmp/Wymiana");
  EXPECT_EQ(PathToUnix("A:\\Dane\\plik.dbf").Str(), "/tmp/Wymiana/dane/plik.dbf");
  EXPECT_EQ(PathToUnix("b:/x").Str(), "/mnt/b/x");
  EXPECT_EQ(PathToUnix("C:\\x").Str(), "c:/x");
  SetExchangeDirs("wym", "");
  ::mkdir("wym", 0777);
  WriteBytes("wym/DOK.TXT", "x");
  EXPECT_EQ(PathToUnix("A:\\dok.txt").Str(), "wym/DOK.TXT");
  EXPECT_EQ(PathToUnix("B:\\dok.txt").Str(), "b:/dok.txt");
}

TEST_F(PathsTest, FileOperationsGoThroughThePathConversion) {
  ::mkdir("dane", 0777);
  WriteBytes("dane/a.txt", "x");
  EXPECT_TRUE(FileExists("DANE\\A.TXT"));
  EXPECT_FALSE(FileExists("dane"));
  EXPECT_TRUE(DirExists("Dane"));
  EXPECT_FALSE(DirExists("dane\\a.txt"));
  EXPECT_EQ(RenameFile("dane\\A.txt", "dane\\b.txt"), 0);
  EXPECT_TRUE(FileExists("dane/b.txt"));
  EXPECT_FALSE(FileExists("dane/a.txt"));
  EXPECT_EQ(DeleteFile("DANE\\B.TXT"), 0);
  EXPECT_FALSE(FileExists("dane/b.txt"));
  EXPECT_NE(DeleteFile("dane\\b.txt"), 0);
  EXPECT_NE(DeleteFile("dane"), 0);  // a directory is not deleted
  EXPECT_NE(RenameFile("nic", "cos"), 0);
}

TEST_F(PathsTest, FileVariableReadsLinesAndBytes) {
  WriteBytes("lista.txt", "pierwszy\r\n\n" + std::string(300, 'x') + "\nostatni");
  FileVar f;
  AssignFile(f, "LISTA.TXT");
  EXPECT_EQ(f.Name().Str(), "lista.txt");
  ASSERT_EQ(f.Reset(kFileModeReadOnly), 0);
  ShortText line;
  ASSERT_TRUE(f.ReadLine(line));
  EXPECT_EQ(line.Str(), "pierwszy");
  ASSERT_TRUE(f.ReadLine(line));
  EXPECT_EQ(line.Str(), "");
  ASSERT_TRUE(f.ReadLine(line));
  EXPECT_EQ(line.Length(), 255);  // cut, and the rest of the line skipped
  ASSERT_TRUE(f.ReadLine(line));
  EXPECT_EQ(line.Str(), "ostatni");
  EXPECT_FALSE(f.ReadLine(line));
  EXPECT_NE(f.Write("x", 1), 0);  // opened read only
  f.Close();

  FileVar missing;
  AssignFile(missing, "brak.txt");
  EXPECT_NE(missing.Reset(kFileModeReadOnly), 0);
  EXPECT_NE(missing.Append(), 0);
  EXPECT_FALSE(missing.ReadLine(line));
}

}  // namespace
