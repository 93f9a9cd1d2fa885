// The fiscal printer dialog driven by keys: what it shows, and the settings
// that land in the user's own konffisk.txt and the workstation's konffiss.txt.
#include <unistd.h>

#include <cstdlib>
#include <fstream>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "../server/harness.h"
#include "base/mazovia.h"
#include "documents/fiscalsetup.h"
#include "master/dictionaries.h"
#include "print/keyscript.h"
#include "sqltable/sqltest.h"
#include "tui/keyboard.h"
#include "users/users.h"

namespace {

constexpr KeyPair kYes{'T', 20};
constexpr KeyPair kNo{'N', 49};
using keys::kBackspace;
using keys::kEnter;
using keys::kEsc;

struct Typing {
  std::vector<KeyPair> keys;
  Typing(const char* text) {  // NOLINT: text typed, then Enter
    for (const char* c = text; *c; ++c) keys.push_back(KeyOfByte(static_cast<unsigned char>(*c)));
    keys.push_back(kEnter);
  }
  Typing(std::initializer_list<KeyPair> k) : keys(k) {}
};

class FiscalSetupTest : public CatalogueTest {
 protected:
  void SetUp() override {
    CatalogueTest::SetUp();
    ASSERT_EQ(std::system(("mkdir -p " + dir_ / "dane/uzytkown/7").c_str()), 0);
    ASSERT_NE(::getcwd(home_, sizeof home_), nullptr);
    ASSERT_EQ(::chdir(dir_.path().c_str()), 0);
    UserRecord user;
    user.number = 7;
    user.surname = "Nowak";
    SetCurrentUser(user);
    ASSERT_EQ(DictionaryEnsure(kVatDictionary), 0);
    ASSERT_EQ(VatGroupAdd("23", "PODSTAWOWA"), DictionaryOutcome::kDone);
    ASSERT_EQ(VatGroupAdd("8", "OBNIZONA"), DictionaryOutcome::kDone);
    ASSERT_EQ(VatAddExemptGroup(), DictionaryOutcome::kDone);
  }
  void TearDown() override {
    keyscript::End();
    ClearCurrentUser();
    (void)::chdir(home_);
    CatalogueTest::TearDown();
  }
  // Each wait for a key keeps the screen and takes the script's next key; past it, Esc.
  static void Play(std::initializer_list<Typing> script) {
    keyscript::Begin();
    for (const Typing& t : script) keyscript::gScript.insert(keyscript::gScript.end(), t.keys.begin(), t.keys.end());
  }
  // True when one screen showed every line of the text ("@" between lines).
  static bool Shown(const ShortText& text) { return tui_test::AnyScreenShows(keyscript::gScreens, text); }
  static FiscalConfig Written() { return ReadFiscalConfig("dane/uzytkown/7/", ""); }

  TempDir dir_;
  char home_[4096] = {};
};

TEST_F(FiscalSetupTest, DescriptionsOfTheSettings) {
  FiscalConfig c;
  struct Case { int type, port; const char* path; ShortText want; };
  const Case cases[] = {
      {kFiscalNone, 1, "", "drukarka fiskalna nie jest używana."_mz},
      {kFiscalElzab, 2, "", "drukarka ELZAB FP-600/Omega na łączu szeregowym COM2."_mz},
      {kFiscalPosnet, 255, "/dev/ttyUSB0", "drukarka NOVITUS,POSNET DF-300/301/302/THERMAL,DUO-PRO@na łączu szeregowym port:@`/dev/ttyUSB0\"."_mz},
      {kFiscalPosnet24, 1, "", "drukarka NOVITUS VENTO lub EMAR-DUO na łączu szeregowym COM1."_mz},
      {kFiscalServer, 12, "", "drukarka nr 12 na serverze drukarek fiskalnych."_mz},
  };
  for (const Case& k : cases) {
    c.printerType = k.type;
    c.port = k.port;
    c.devicePath = k.path;
    EXPECT_EQ(FiscalConfigDescription(c), k.want);
  }
}

TEST_F(FiscalSetupTest, PosnetOnAPortWithDocumentsRatesAndQuestions) {
  Play({{kYes}, {KeyOfByte('2')}, {KeyOfByte('3')},                    // POSNET on COM3
        {keys::F(1), keys::F(3), keys::F(10)},                         // retail and kind 4 for everyone
        "23", {keys::F(1), KeyOfByte('2'), kEnter}, "5", "", "", "", "zwol.",  // B takes "8" from the list
        {kYes, kNo, kYes, kYes},                                       // Novitus, new firmware, drawer, numbers
        {kEnter, kEnter}});
  ASSERT_TRUE(EditFiscalConfig());
  EXPECT_TRUE(Shown("Czy zmienić ustawienia drukarki fiskalnej ?@"_mz + ShortText(std::string(74, '\xC4')) +
                    "@Aktualne ustawienie:@drukarka fiskalna nie jest używana."_mz));
  EXPECT_TRUE(Shown("Wybierz rodzaj drukarki:@- NOVITUS VENTO lub EMAR-DUO@- brak drukarki fiskalnej"_mz));
  EXPECT_TRUE(Shown("Wybieraj dokumenty notowane na drukarce fiskalnej:@╫à [X] @╫ç [ ] @╫ê [X] @╫ë [ ] @╫╨ö - zatwierdzenie wyboru"_mz));
  EXPECT_TRUE(Shown("Przyporządkowanie stawek VAT z programu stawkom z drukarki fiskalnej:@UWAGA@Lista przykładowych wartości:@23@8@zwol."_mz));
  EXPECT_TRUE(Shown("Czy drukarka jest produkcji firmy `Novitus\" ?"_mz));
  EXPECT_TRUE(Shown("Proszę wyjść i wejść powtórnie do programu."_mz));

  const FiscalConfig c = Written();
  EXPECT_EQ(std::pair(c.printerType, c.port), std::pair(int(kFiscalPosnet), 3));
  const uint8_t flags[4] = {1, 0, 1, 0};
  for (int i = 0; i < 4; ++i) EXPECT_EQ(c.documentFlags[i], flags[i]) << i;
  const char* names[kFiscalVatRows] = {"23", "8", "5", "", "", "", "zwol."};
  const char letters[kFiscalVatRows + 1] = "ABCDEFZ";
  for (int i = 0; i < kFiscalVatRows; ++i) {
    EXPECT_EQ(c.vatName[i], names[i]) << i;
    EXPECT_EQ(c.vatCode[i], letters[i]) << i;
  }
  // Other maker "1-nie 0-tak": a Novitus is another maker; new firmware, a drawer, the computer's numbers.
  EXPECT_EQ(std::tuple(c.otherThanPosnet, c.firmware, c.drawer, c.computerNumbers), std::tuple(0, kFirmwareNew, 1, 1));
  // The personal copy holds it; the firm's directory only the workstation's konffiss.txt.
  EXPECT_NE(::access("konffiss.txt", F_OK), -1);
  EXPECT_EQ(::access("konffisk.txt", F_OK), -1);
  LoadUserFiscalConfig();
  EXPECT_EQ(CurrentFiscalConfig().port, 3);
}

TEST_F(FiscalSetupTest, ServerPrinterRowAndElzabDelayKept) {
  { std::ofstream("konffiss.txt") << "\n250 - opoznienie\n"; }
  Play({{kYes}, {KeyOfByte('4')}, {kBackspace, KeyOfByte('3'), kEnter},  // printer 3 of the server
        {KeyOfByte('3')}, {kBackspace, KeyOfByte('2'), kEnter}, {kYes},  // old POSNET on COM2 with a drawer
        {keys::F(2), keys::F(10)}, "", "", "", "", "", "", "", {kNo}, {kEnter, kEnter}});
  ASSERT_TRUE(EditFiscalConfig());
  const FiscalConfig c = Written();
  EXPECT_EQ(std::tuple(c.printerType, c.port, c.documentFlags[1], c.elzabDelay), std::tuple(int(kFiscalServer), 3, 1, 250));
  EXPECT_EQ(c.serverRow, "2,2,srvfisk\\3,PARAGON_FISKALNY,1");
  EXPECT_TRUE(Shown("Czy drukarka ma podłączoną szufladę na pieniądze ?"_mz));

  // The fourth kind: no row, the helper script asked instead.
  Play({{kYes}, {kEnter}, {kEnter}, {KeyOfByte('4')}, "./drukuj.sh", {keys::F(10)}, "", "", "", "", "", "", "", {kNo},
        {kEnter, kEnter}});
  ASSERT_TRUE(EditFiscalConfig());
  EXPECT_TRUE(Shown("drukarka nr 3 na serverze drukarek fiskalnych."_mz));
  EXPECT_TRUE(Written().serverRow.Empty());
  EXPECT_EQ(Written().helperScript, "./drukuj.sh");
}

TEST_F(FiscalSetupTest, GivingUpLeavesTheFileAndNoneWritesOneLine) {
  FiscalConfig before;
  before.printerType = kFiscalElzab;
  before.port = kFiscalOtherPort;
  before.devicePath = "/dev/ttyUSB0";
  ASSERT_EQ(WriteUserFiscalConfig(before), 0);
  std::ifstream in("dane/uzytkown/7/konffisk.txt");
  const std::string original((std::istreambuf_iterator<char>(in)), {});
  for (const std::initializer_list<Typing>& script : {std::initializer_list<Typing>{{kNo}},
                                                      std::initializer_list<Typing>{{kYes}, {kEsc}},
                                                      std::initializer_list<Typing>{{kYes}, {KeyOfByte('3')}, {kEsc}},
                                                      std::initializer_list<Typing>{{kYes}, {KeyOfByte('3')},
                                                                                    {KeyOfByte('1')}, {kEsc}}}) {
    Play(script);
    EXPECT_FALSE(EditFiscalConfig());
    std::ifstream again("dane/uzytkown/7/konffisk.txt");
    EXPECT_EQ(std::string((std::istreambuf_iterator<char>(again)), {}), original);
  }
  EXPECT_TRUE(Shown("drukarka ELZAB FP-600/Omega na łączu szeregowym port:@`/dev/ttyUSB0\"."_mz));

  Play({{kYes}, {KeyOfByte('5')}, {kEnter, kEnter}});
  ASSERT_TRUE(EditFiscalConfig());
  std::ifstream none("dane/uzytkown/7/konffisk.txt");
  std::string line, rest;
  std::getline(none, line);
  EXPECT_EQ(line.rfind("0 - typ drukarki fiskalnej", 0), 0u);
  EXPECT_FALSE(std::getline(none, rest));
}

TEST_F(FiscalSetupTest, AUserWithoutHisCopyHasNoPrinter) {
  FiscalConfig firm;
  firm.printerType = kFiscalElzab;
  ASSERT_EQ(WriteFiscalConfig("", firm), 0);  // a konffisk.txt in the firm's directory is not his
  EXPECT_EQ(ReadUserFiscalConfig().printerType, kFiscalNone);
  ASSERT_EQ(WriteUserFiscalConfig(firm), 0);
  EXPECT_EQ(ReadUserFiscalConfig().printerType, kFiscalElzab);
}

}  // namespace
