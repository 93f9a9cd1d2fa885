// The main configuration on the disk: where it is looked for, what a missing
// or older file gives, and what writing leaves behind (backup, whole file).
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "base/mazovia.h"
#include "config/konfigur.h"
#include "config_fixture.h"

namespace {

using file_test::Exists;
using file_test::ReadBytes;
using file_test::WriteBytes;

TEST(ConfigFilePath, DirectoryFromTheFirstArgument) {
  const std::pair<std::vector<const char*>, const char*> cases[] = {
      {{"klote"}, "dane\\konfigur.txt"}, {{"klote", "/srv/dane"}, "\\srv\\dane\\konfigur.txt"},
      {{"klote", "firma\\"}, "firma\\konfigur.txt"}, {{"klote", "a/b/", "x"}, "a\\b\\konfigur.txt"},
  };
  for (const auto& [args, expected] : cases)
    EXPECT_EQ(ConfigFilePath(static_cast<int>(args.size()), args.data()), expected) << expected;
}

class ConfigFileTest : public config_test::ConfigDirTest {
 protected:
  ConfigReadResult Read(const char* directory = nullptr) {
    const char* argv[] = {"klote", directory};
    return ConfigRead(directory ? 2 : 1, argv);
  }
  static std::string Written(const ConfigValues& values) { return FormatKonfigur(values, false); }
};

TEST_F(ConfigFileTest, MissingFileGivesTheDefaultsAndItsFirstWriteMakesNoBackup) {
  EXPECT_EQ(Read().source, ConfigSource::kMissing);
  EXPECT_EQ(ConfigSettings(), ConfigValues::Defaults());
  EXPECT_EQ(ConfigInt(190), 13);
  EXPECT_EQ(ConfigDocumentName(18), "Mm +");
  EXPECT_TRUE(ConfigDocumentName(19).Empty());
  ASSERT_EQ(ConfigWrite(ConfigInt(kConfigLineNipMask)), 0);
  EXPECT_EQ(ReadBytes("dane/konfigur.txt"), Written(ConfigValues::Defaults()));
  EXPECT_FALSE(Exists("dane/konf_old.txt"));
}

TEST_F(ConfigFileTest, EmptyFileGivesZeroValuesAndNormalisedLists) {
  WriteBytes("dane/konfigur.txt", "");
  const ConfigReadResult result = Read();
  EXPECT_EQ(result.source, ConfigSource::kFirstPath);
  EXPECT_EQ(result.linesFound, 0);
  EXPECT_EQ(ConfigInt(190), 0);
  EXPECT_EQ(ConfigDocumentName(1), ShortText(ConfigLineInfo(217)->defaultValue));
  EXPECT_EQ(ConfigText(138), ",\" przelewem\",\"przel.dla odb.\"");
}

TEST_F(ConfigFileTest, FirstArgumentDirectoryIsReadAndWrittenElseTheDataDirectory) {
  ::mkdir("inna", 0777);
  ConfigValues values = ConfigValues::Defaults();
  values.SetText(1, "7");
  WriteBytes("inna/konfigur.txt", Written(values));
  ConfigValues inData;
  inData.SetNumber(2, 1);
  WriteBytes("dane/konfigur.txt", Written(inData));
  EXPECT_EQ(Read("gdzie/indziej").source, ConfigSource::kFallbackPath);
  EXPECT_EQ(ConfigPath(), "dane\\konfigur.txt");
  EXPECT_EQ(ConfigInt(2), 1);
  EXPECT_EQ(Read("inna").source, ConfigSource::kFirstPath);
  EXPECT_EQ(ConfigText(1), "7");
  ConfigSettings().SetText(1, "8");
  ASSERT_EQ(ConfigWrite(ConfigInt(kConfigLineNipMask)), 0);
  values.SetText(1, "8");
  EXPECT_EQ(ReadBytes("inna/konfigur.txt"), Written(values));
  EXPECT_EQ(ReadBytes("dane/konfigur.txt"), Written(inData));
}

TEST_F(ConfigFileTest, ReadThenWriteKeepsTheBytesAndBacksUp) {
  ConfigValues values = ConfigValues::Defaults();
  values.SetText(1, "a#b");  // '#' inside a value survives: the reader cuts at the last one
  values.SetText(230, "WZ  ");
  values.SetNumber(100, 255);
  values.SetReal(7, -12.25L);
  for (bool crlf : {false, true}) {
    const std::string image = FormatKonfigur(values, crlf);
    WriteBytes("dane/konfigur.txt", image);
    WriteBytes("dane/konf_old.txt", "starsza kopia");
    EXPECT_EQ(Read().linesFound, 235);
    EXPECT_EQ(ConfigSettings(), values);
    ASSERT_EQ(ConfigWrite(ConfigInt(kConfigLineNipMask)), 0);
    EXPECT_EQ(ReadBytes("dane/konfigur.txt"), image) << crlf;
    EXPECT_EQ(ReadBytes("dane/konf_old.txt"), image) << crlf;
    EXPECT_FALSE(Exists("dane/konf_ol_.txt"));
    EXPECT_FALSE(Exists("dane/konf_nw_.txt"));
  }
}

TEST_F(ConfigFileTest, OlderFileIsWrittenWhole) {
  const std::string older = "1,2# - stary opis\n1 - stary opis\n";
  WriteBytes("dane/konfigur.txt", older);
  EXPECT_EQ(Read().linesFound, 2);
  ASSERT_EQ(ConfigWrite(0), 0);
  EXPECT_EQ(ReadBytes("dane/konf_old.txt"), older);
  ConfigValues expected;
  expected.SetText(1, "1,2");
  expected.SetNumber(2, 1);
  NormalizeConfig(expected);
  EXPECT_EQ(ReadBytes("dane/konfigur.txt"), Written(expected));
}

TEST_F(ConfigFileTest, FailedWriteLeavesTheOldFile) {
  WriteBytes("dane/konfigur.txt", "stary# - x\n");
  Read();
  ::mkdir("dane/konf_nw_.txt", 0777);  // the scratch name cannot be made as a file
  EXPECT_NE(ConfigWrite(ConfigInt(kConfigLineNipMask)), 0);
  EXPECT_EQ(ReadBytes("dane/konfigur.txt"), "stary# - x\n");
}

TEST_F(ConfigFileTest, ChangedFlagIndexesTheThreeTablesAnew) {
  std::vector<std::string> indexed;
  ConfigSetReindexAction([&indexed](const ShortText& table) {
    indexed.push_back(table.Str());
    std::string screen;
    for (int row = 1; row <= 25; ++row) screen += RowText(row).Str();
    EXPECT_NE(screen.find("Indeksowanie tablicy: " + table.Str()), std::string::npos);
  });
  Read();
  const int stored = ConfigInt(kConfigLineNipMask);
  ASSERT_EQ(ConfigWrite(stored), 0);
  EXPECT_TRUE(indexed.empty());
  ASSERT_EQ(ConfigWrite(stored + 1), 0);
  EXPECT_EQ(indexed, (std::vector<std::string>{"magazyny", "dostawcy", "odbiorcy"}));
  ConfigSetReindexAction({});
}

TEST_F(ConfigFileTest, WriteUsesTheRegisteredFiller) {
  ConfigSetDescriptionFiller([](int line, int) { return ShortText(line == 22 ? "pole" : "x"); });
  Read();
  ASSERT_EQ(ConfigWrite(ConfigInt(kConfigLineNipMask)), 0);
  ConfigSetDescriptionFiller({});
  EXPECT_NE(ReadBytes("dane/konfigur.txt").find("\n0 - pole\n"), std::string::npos);
}

}  // namespace
