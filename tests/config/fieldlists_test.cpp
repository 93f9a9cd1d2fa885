// Caption lists of user fields: parsing a list line, the list files, and the
// check that stops the program on two equal captions.
#include <gtest/gtest.h>

#include <array>
#include <string>

#include "base/mazovia.h"
#include "config/fieldlists.h"
#include "config_fixture.h"

namespace {

using file_test::WriteBytes;

TEST(CaptionList, ParsesOrRefusesALine) {
  struct Case {
    const char* line;
    bool parses;
    std::array<const char*, 4> captions;
  };
  const Case cases[] = {
      {"a,b,c,d", true, {"a", "b", "c", "d"}}, {"a,,c", true, {"a", "??", "c", "??"}},
      {"\"x,y\",b", true, {"x,y", "b", "??", "??"}}, {"", true, {"??", "??", "??", "??"}},
      {"a,b,c,d,e", false, {"p", "p", "p", "p"}}, {"\"a,b", false, {"p", "p", "p", "p"}},
  };
  for (const Case& c : cases) {
    std::array<ShortText, 4> captions;
    captions.fill("p");
    EXPECT_EQ(ParseCaptionList(c.line, captions), c.parses) << c.line;
    for (int i = 0; i < 4; ++i) EXPECT_EQ(captions[i], c.captions[i]) << c.line << " " << i;
  }
}

class FieldListsTest : public config_test::ConfigDirTest {};

TEST_F(FieldListsTest, MissingFilesKeepTheDefaultsAndFilesReplaceThem) {
  ConfigReadLists();
  EXPECT_EQ(ConfigLists().item[1], "SWW/KU");
  EXPECT_EQ(ConfigLists().contractor[1], "płeć"_mz);
  EXPECT_EQ(ConfigLists().item2[0], "??");
  EXPECT_TRUE(ConfigCheckFieldNames());
  WriteBytes("dane/lista_in.txt", "kolor,rozmiar\n");
  WriteBytes("dane/list_c_k.txt", "branza\n");
  ConfigReadLists();
  EXPECT_EQ(ConfigLists().item[1], "rozmiar");
  EXPECT_EQ(ConfigLists().item[2], "??");
  EXPECT_EQ(ConfigLists().contractor[0], "branza");
  EXPECT_TRUE(config_test::g_boxSeen.empty());
}

TEST_F(FieldListsTest, ListThatDoesNotParseIsShownAndKeepsTheDefaults) {
  WriteBytes("dane/list_c_k.txt", "a,b,c,d,e\n");
  ConfigReadLists();
  EXPECT_TRUE(BoxShowed("Niepoprawna lista:"));
  EXPECT_TRUE(BoxShowed("a,b,c,d,e"));
  EXPECT_EQ(ConfigLists().contractor[0], "wiek");
}

TEST_F(FieldListsTest, RepeatedCaptionAcrossBothItemListsStopsTheProgram) {
  WriteBytes("dane/lista_i2.txt", "waga,gr.sp.2\n");
  ConfigReadLists();
  EXPECT_FALSE(ConfigCheckFieldNames());
  EXPECT_TRUE(BoxShowed("B\x92\x86" "d konfiguracji."));
  EXPECT_TRUE(BoxShowed("Nazwy p\xa2l w opisie towaru"));
  EXPECT_TRUE(BoxShowed("gr.sp.2(poz.5) i gr.sp.2(poz.11) powt"));
  EXPECT_TRUE(BoxShowed("Program nie mo\xa7" "e dzia\x92" "a\x8d."));
}

TEST_F(FieldListsTest, RepeatedContractorCaption) {
  WriteBytes("dane/list_c_k.txt", "wiek,wiek\n");
  ConfigReadLists();
  EXPECT_FALSE(ConfigCheckFieldNames());
  EXPECT_TRUE(BoxShowed("kontrahenta"));
  EXPECT_TRUE(BoxShowed("wiek(poz.1) i wiek(poz.2)"));
}

}  // namespace
