// The print flow on a terminal without a terminal: keys from a script, the
// screen read at every wait, real files in a scratch directory.
#include <sys/resource.h>

#include <csignal>
#include <filesystem>
#include <fstream>

#include "base/file_fixture.h"
#include "base/mazovia.h"
#include "config/konfigur.h"
#include "print/keyscript.h"
#include "print/print.h"
#include "tui/tui_fixture.h"

namespace {

namespace fs = std::filesystem;

using namespace keyscript;

using file_test::ReadBytes;

class PrintFlowTest : public tui_test::TuiTest {
 protected:
  void SetUp() override {
    TuiTest::SetUp();
    ASSERT_TRUE(scratch_.Entered());
    fs::create_directories("dane/uzytkown/0/tmp");
    ConfigSettings() = ConfigValues::Defaults();
    Begin();
    printFile_ = PrintFilePath();
    // Two pages of 30 lines, each line with a printer code before its text.
    for (int page = 1; page <= 2; ++page) {
      if (page > 1) report_ += "\f";
      for (int line = 1; line <= 30; ++line)
        report_ += "\x1b" "Estrona " + std::to_string(page) + " linia " + std::to_string(line) + "\r\n";
    }
    ASSERT_EQ(WriteFileAtomically(printFile_, report_), 0);
  }
  void TearDown() override {
    End();
    TuiTest::TearDown();
  }
  static void Script(std::initializer_list<KeyPair> keys) { gScript.assign(keys); }
  static KeyPair Ch(char c) { return KeyPair{static_cast<uint8_t>(c), 0}; }
  static bool Seen(std::string_view text) { return ScreensWith(text) > 0; }

  file_test::ScratchDir scratch_;
  ShortText printFile_;
  std::string report_;
};

TEST_F(PrintFlowTest, EscInTheDialogPrintsNothing) {
  Script({keys::kEsc});
  PrintTarget taken = PrintTarget::kPrinter;
  EXPECT_FALSE(PrintDestination(printFile_, PrintTarget::kNone, taken));
  EXPECT_EQ(taken, PrintTarget::kNone);
  EXPECT_TRUE(Seen("Skierować wydruk:"_mz.View()));
  EXPECT_TRUE(Seen("na drukarkę z wyborem stron"_mz.View()));
}

TEST_F(PrintFlowTest, TheSettingOfOneDestinationOpensTheViewerAtOnce) {
  ConfigSettings().SetNumber(kConfigLineOnePrintTarget, 2);
  Script({keys::kPgDn, KeyPair{0, 161}, keys::kEnd, keys::kEsc});
  PrintTarget taken = PrintTarget::kNone;
  EXPECT_TRUE(PrintDestination(printFile_, PrintTarget::kNone, taken));
  EXPECT_EQ(taken, PrintTarget::kMonitor);
  EXPECT_FALSE(Seen("Skierować wydruk:"_mz.View()));
  // Screens at each wait: the top, one screen down, the second printed page, the end.
  ASSERT_GE(gScreens.size(), 4u);
  const auto row = [](const std::string& screen, int n) {
    std::size_t at = 0;
    for (int i = 1; i < n; ++i) at = screen.find('\n', at) + 1;
    return screen.substr(at, screen.find('\n', at) - at);
  };
  const std::size_t first = gScreens.size() - 4;
  EXPECT_EQ(row(gScreens[first], 1).substr(0, 20), "Estrona 1 linia 1   ");  // the code stripped, the letter kept
  EXPECT_EQ(row(gScreens[first + 1], 1).substr(0, 20), "Estrona 1 linia 25  ");
  EXPECT_EQ(row(gScreens[first + 2], 1).substr(0, 20), "Estrona 2 linia 1   ");
  EXPECT_EQ(row(gScreens[first + 3], 24).substr(0, 20), "Estrona 2 linia 30  ");
  EXPECT_NE(row(gScreens[first], 25).find("-ruch obrazu"), std::string::npos);
}

TEST_F(PrintFlowTest, FileToPrintKeepsCodesAndFileToEditDropsThem) {
  const struct {
    char choice;
    std::string expected;
  } cases[] = {{'3', report_}, {'4', ""}};
  for (const auto& c : cases) {
    Script({Ch(c.choice)});
    Press(keys::kBackspace, 12);
    Type("wyj.txt");
    Press(keys::kEnter);
    Type("1");  // Mazovia
    PrintTarget taken = PrintTarget::kNone;
    ASSERT_TRUE(PrintDestination(printFile_, PrintTarget::kNone, taken)) << c.choice;
    const std::string out = ReadBytes("wyj.txt");
    if (c.choice == '3') EXPECT_EQ(out, report_);
    else EXPECT_EQ(out.find_first_of("\x1b\f\r"), std::string::npos);
    EXPECT_FALSE(fs::exists("wyj.txt.tmp~"));
  }
}

TEST_F(PrintFlowTest, PrinterGoesThroughTheQueueCommandOfTheConfiguration) {
  std::ofstream("dane/drukpar.txt") << "60#linie\nkolejka1#urzadzenie\n";
  ConfigSettings().SetText(kConfigLinePrintCommands, R"(/bin/sh,,,f() { cp "$3" "$1.out"; }; f,-o)");
  Script({Ch('5'), keys::kBackspace, Ch('2'), keys::kEnter, keys::kEnter});  // pages 2 to 999999999
  PrintTarget taken = PrintTarget::kNone;
  EXPECT_TRUE(PrintDestination(printFile_, PrintTarget::kNone, taken));
  const std::string printed = ReadBytes("kolejka1.out");
  EXPECT_EQ(printed.substr(0, 20), "\x1b" "Estrona 2 linia 1\r\n");
  EXPECT_EQ(printed.find("strona 1 "), std::string::npos);
  EXPECT_FALSE(fs::exists(fs::path(std::string(printFile_.View()) + ".prn")));
}

TEST_F(PrintFlowTest, PageRangeRefusesTheFirstAboveTheLast) {
  Press(keys::kBackspace);
  Type("36");
  Press(keys::kEnter);
  Press(keys::kBackspace, 9);
  Type("34");
  Press(keys::kEnter, 2);  // the second Enter closes the message; Esc follows
  int32_t first = 0, last = 0;
  EXPECT_FALSE(PrintPageRange(first, last));
  EXPECT_TRUE(Seen("na przykład: od 34 do 36."_mz.View()));
}

TEST_F(PrintFlowTest, AFileNoOneCanWriteIsNeverLeftHalfWritten) {
  EXPECT_NE(WriteFileAtomically("brak/katalogu/plik.txt", "x"), 0);
  EXPECT_FALSE(fs::exists("brak"));
  // A disk that fills: the process may write no more than 1000 bytes.
  ASSERT_EQ(WriteFileAtomically("pelny.txt", "poprzedni"), 0);
  std::signal(SIGXFSZ, SIG_IGN);
  rlimit old{};
  ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &old), 0);
  rlimit small = old;
  small.rlim_cur = 1000;
  ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &small), 0);
  const int result = WriteFileAtomically("pelny.txt", std::string(100000, 'x'));
  ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &old), 0);
  EXPECT_NE(result, 0);
  EXPECT_EQ(ReadBytes("pelny.txt"), "poprzedni");
  EXPECT_FALSE(fs::exists("pelny.txt.tmp~"));
}

TEST_F(PrintFlowTest, AMissingPrintFileIsTold) {
  Script({keys::kEnter});
  EXPECT_FALSE(PrintViewer("dane\\nie_ma.txt", ShortText()));
  EXPECT_TRUE(Seen("Brak dostępu do pliku `dane\\nie_ma.txt\" z wydrukiem."_mz.View()));
}

}  // namespace
