// The real fisksrv in one-shot mode on a pseudo-terminal: the notice, the result
// boxes of a printed job and of a refused one, what reached the simulated
// printers, the job file gone, and what is not one-shot mode.
#include <gtest/gtest.h>
#include <stdlib.h>

#include <chrono>
#include <string>
#include <thread>

#include "base/jobfile.h"
#include "fiscal/fiscalconfig.h"
#include "printers.h"

namespace {

using Clock = std::chrono::steady_clock;

constexpr int kWaitMs = 15000;
constexpr const char* kNoPrinterRow = "9,1,jobs\\1,,0";

class OneShotTest : public PrintersTest {
 protected:
  void SetUp() override {
    ::setenv("TERM", "xterm", 1);
    ::unsetenv("TERM_KLOTE");
    ::unsetenv("TERM_KLOTE_CP");
    ::mkdir((dir_ / "jobs").c_str(), 0777);
  }
  static ServerRun OneShot(const std::string& printerRow, const char* marker = "XVENTKLOTE") {
    return ServerRun{{marker, printerRow}, false, /*onPty=*/true};
  }
  // Publishes the job in the row's file, then runs fisksrv XVENTKLOTE with the
  // printer row until it ends; gives its screen output, and in boxShownMs how long
  // it lived after the text appeared.
  std::string RunOneShot(const std::string& printerRow, char row, const std::string& word, const Lines& records,
                         const std::string& boxText, long& boxShownMs) {
    Publish(row, word, records);
    ServerProcess server(dir_, OneShot(printerRow));
    const bool shown = server.WaitForOutput(boxText, kWaitMs);
    const auto seen = Clock::now();
    int status = -1;
    EXPECT_TRUE(server.Wait(kWaitMs, status)) << server.Output();
    EXPECT_EQ(status, 0);
    boxShownMs = std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - seen).count();
    EXPECT_TRUE(shown) << server.Output();
    return server.Output();
  }
};

// Row and column ("R;C") of the last cursor move before the text on the screen.
std::string PlaceOf(const std::string& screen, const std::string& text) {
  const std::size_t at = screen.find(text);
  if (at == std::string::npos) return "(not shown)";
  const std::size_t end = screen.rfind('H', at);
  const std::size_t start = screen.rfind("\x1b[", end);
  if (end == std::string::npos || start == std::string::npos) return "(no place)";
  return screen.substr(start + 2, end - start - 2);
}

// The stamp on the screen: the box line after the text " nie wyk.zad.".
bool ShowsFailureStamp(const std::string& screen) {
  const std::size_t at = screen.find(" nie wyk.zad. ");
  return at != std::string::npos && IsFailureStamp(screen.substr(at, 33));
}

TEST_F(OneShotTest, PosnetReceiptPrintsAndShowsOk) {
  StartSimulators();
  long shownMs = 0;
  const std::string out = RunOneShot("2,1,jobs\\p,,1", 'p', "PARAGON", kTwoLines, "PARAGON O.K.", shownMs);
  // ISO 8859-2 on xterm: the "ł" is 0xB3.
  EXPECT_NE(out.find("Trwa wysy\xB3" "anie danych do drukarki fiskalnej..."), std::string::npos) << out;
  EXPECT_LT(out.find("Trwa wysy"), out.find("PARAGON O.K."));
  EXPECT_NE(out.find("Zaczekaj - komunikat zniknie sam..."), std::string::npos);
  // Inside its box: a timed box is 39 columns wide from column 21, rows 12 to 15,
  // the wait line centred under the text.
  EXPECT_EQ(PlaceOf(out, "PARAGON O.K."), "13;22");
  EXPECT_EQ(PlaceOf(out, "Zaczekaj - komunikat zniknie sam..."), "14;23");
  EXPECT_GE(shownMs, 400);  // the box stays half a second
  EXPECT_FALSE(JobExists('p'));
  EXPECT_EQ(PosnetJournal(), (Lines{
                                 "DRAWER SZUFLADA",
                                 "RECEIPT 2",
                                 "HEAD " + std::string(40, ' '),
                                 "LINE 1|Chleb" + std::string(35, ' ') + "|1|A|5/5/",
                                 "LINE 2|Mleko" + std::string(35, ' ') + "|2|B|3/6/",
                                 "CASHIER 01J",
                                 "FOOT #x",  // no document number
                                 "FOOT ** zachowaj paragon do ew. reklamacji **",
                                 "TOTAL 11/ PAID 11/",
                             }));
  EXPECT_EQ(out.find("nie wyk.zad."), std::string::npos);
  // Ends silently: no line of polling mode.
  EXPECT_EQ(out.find("START SERVERA"), std::string::npos);
  EXPECT_EQ(out.find("KONIEC PRACY"), std::string::npos);
}

TEST_F(OneShotTest, PosnetRefusalIsCancelledAndShownWithItsStampForFiveSeconds) {
  // #x 1, #e 2, $h 3, $l 4, $l 5 refused, cancel 6.
  StartSimulators({}, {"--fail", "5:error=21"});
  long shownMs = 0;
  const std::string out =
      RunOneShot("2,1,jobs\\p,,1", 'p', "PARAGON", kTwoLines, "Blad drukarki fiskalnej nr 21:", shownMs);
  // The box's lines, one for each "@" of the text.
  for (const char* line : {"PARAGON", "sekwencja odebrana przez drukarke przy wylaczonym trybie transakcji\"."})
    EXPECT_NE(out.find(line), std::string::npos) << line << "\n" << out;
  EXPECT_TRUE(ShowsFailureStamp(out)) << out;
  // The stamp is the box's last line, under the three of the text.
  EXPECT_EQ(PlaceOf(out, " nie wyk.zad. "), "14;6");
  EXPECT_EQ(out.find(" O.K."), std::string::npos);
  EXPECT_GE(shownMs, 4800);
  EXPECT_FALSE(JobExists('p'));
  // The cancel that follows the refusal is checked in polling mode.
}

TEST_F(OneShotTest, ElzabReceiptAndElzabRefusal) {
  // Commands of the first receipt: open 1, lines 2 and 3, end of items 4, texts 5
  // and 6, close 7. Of the second: open 8, line 9, line 10 refused, cancel 11.
  StartSimulators({"--fail", "10:nak=0,0x02"});
  long shownMs = 0;
  std::string out = RunOneShot("1,1,jobs\\e,,1", 'e', "PARAGON", kTwoLines, "PARAGON O.K.", shownMs);
  EXPECT_FALSE(JobExists('e'));
  EXPECT_EQ(ElzabJournal(), (Lines{
                                "RECEIPT 1100",
                                "LINE 1|ChlebA                      |1/0|szt |500|1|500",
                                "LINE 2|MlekoB                      |2/0|l   |300|2|600",
                                "END ITEMS",
                                "TEXT 2| gotówką ",
                                "TEXT 5| Jan.",
                                "CLOSE 1100",
                            }));

  out = RunOneShot("1,1,jobs\\e,,1", 'e', "PARAGON", kTwoLines, "Blad drukarki ELZAB.", shownMs);
  EXPECT_NE(out.find("(brak papieru w drukarce - swieci sie LED paper out)"), std::string::npos) << out;
  EXPECT_TRUE(ShowsFailureStamp(out)) << out;
  EXPECT_GE(shownMs, 4800);
  EXPECT_FALSE(JobExists('e'));
}

// The server reads no fiscal configuration of the application: the firm's
// konffisk.txt that names the printer's device for port 255 is no road to it.
TEST_F(OneShotTest, TheFirmsFiscalConfigurationIsNotTheServers) {
  StartSimulators();
  FiscalConfig firm;
  firm.printerType = kFiscalPosnet;
  firm.port = kFiscalOtherPort;
  firm.devicePath = ShortText(posnet_->Slave());
  ASSERT_EQ(WriteFiscalConfig(ShortText(dir_.path() + "/"), firm), 0);
  long shownMs = 0;
  const std::string out =
      RunOneShot("2,255,jobs\\p,,0", 'p', "PARAGON", kTwoLines, "lacze COM nie jest zainicjowane", shownMs);
  EXPECT_TRUE(ShowsFailureStamp(out)) << out;
  EXPECT_TRUE(PosnetJournal().empty());
  EXPECT_FALSE(JobExists('p'));
}

TEST_F(OneShotTest, WithdrawnJobIsDeletedAndToldForThreeSeconds) {
  Publish('1', "BRAK_DANYCH", {});
  auto start = std::chrono::steady_clock::now();
  ServerProcess server(dir_, OneShot(kNoPrinterRow));
  int status = -1;
  ASSERT_TRUE(server.Wait(kWaitMs, status)) << server.Output();
  auto took = std::chrono::steady_clock::now() - start;
  EXPECT_GE(took, std::chrono::milliseconds(2900));
  std::string out = server.Output();
  EXPECT_NE(out.find("Wycofanie komendy drukarki fiskalnej."), std::string::npos) << out;
  EXPECT_EQ(out.find("Trwa wysy"), std::string::npos);  // no notice for a withdrawal
  EXPECT_FALSE(JobExists('1'));
}

// A job still being written, and a first record that is no keyword at all
// (the word without its escape byte).
TEST_F(OneShotTest, UnpublishedJobEndsAtOnceSilentlyAndStays) {
  for (const ShortText& first : {kJobKeywordWait, ShortText("PARAGON")}) {
    WriteJobFile(dir_ / "jobs/1", {first, ShortText("0"), kJobKeywordEnd});
    ServerProcess server(dir_, OneShot(kNoPrinterRow));
    int status = -1;
    ASSERT_TRUE(server.Wait(kWaitMs, status)) << server.Output();
    EXPECT_EQ(status, 0);
    EXPECT_TRUE(JobExists('1')) << first.Str();
    EXPECT_EQ(server.Output().find("O.K."), std::string::npos);
    EXPECT_EQ(server.Output().find("Trwa"), std::string::npos);
    EXPECT_EQ(server.Output().find("Wycofanie"), std::string::npos);
  }
}

TEST_F(OneShotTest, WaitsWithoutSleepingUntilTheJobAppears) {
  ServerProcess server(dir_, OneShot(kNoPrinterRow));
  std::this_thread::sleep_for(std::chrono::milliseconds(300));
  int status = -1;
  EXPECT_FALSE(server.Wait(0, status));
  Publish('1', "PARAGON", {"0"});
  ASSERT_TRUE(server.WaitForOutput(" O.K.", kWaitMs)) << server.Output();
  ASSERT_TRUE(server.Wait(kWaitMs, status));
  EXPECT_FALSE(JobExists('1'));
}

TEST_F(OneShotTest, LowerCaseMarkerIsAConfigurationFileName) {
  Publish('1', "PARAGON", {});
  ServerProcess server(dir_, OneShot(kNoPrinterRow, "xventklote"));
  int status = -1;
  ASSERT_TRUE(server.Wait(kWaitMs, status)) << server.Output();
  EXPECT_NE(server.Output().find("BLAD OTWARCIA PLIKU KONFIGURACYJNEGO."), std::string::npos) << server.Output();
  EXPECT_TRUE(JobExists('1'));
}

}  // namespace
