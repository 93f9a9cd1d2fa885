// Walks of the real klote in tmux: from Analizy, the turnover analysis and
// the stock with turnover of the small firm to the screen viewer, moves in
// it, and back to the menu.
#include <initializer_list>
#include <optional>
#include <string>
#include <utility>

#include "dbfixture/tmuxwalk.h"
#include "docfixture.h"

namespace {

class ViewerWalkTest : public DocumentsTest {
 protected:
  void SetUp() override {
    DocumentsTest::SetUp();
    if (!TmuxWalk::Available()) GTEST_SKIP() << "tmux is not installed";
    SaveSmallFirm();
    walk_.emplace();
  }
  void TearDown() override {
    walk_.reset();  // the program ends before its schema goes
    DocumentsTest::TearDown();
  }
  std::string Pane() { return walk_->Pane(); }
  bool Shows(const std::string& text) { return walk_->Shows(text); }
  void Keys(const std::string& keys) { walk_->Keys(keys); }
  // Each step waits for its text, then sends its keys.
  void Steps(std::initializer_list<std::pair<std::string, std::string>> steps) {
    for (const auto& [text, keys] : steps) {
      ASSERT_TRUE(Shows(text)) << Pane();
      Keys(keys);
    }
  }
  // The real klote in tmux logged in as the System Manager (an empty password
  // admits him at once) on any warehouse, for the analyses work over all;
  // then F5 and the entry's key.
  void Analysis(const std::string& entry) {
    ASSERT_TRUE(walk_->StartKlote(Db().home));
    Steps({{"Wybierz, jako który użytkownik będziesz pracować:", "Enter"},
           {"Wybierz magazyn, na którego konto wprowadzać będziesz dane:", "Enter"},
           {"F5 Analizy", "F5 " + entry}});
  }
  std::optional<TmuxWalk> walk_;
};

// The title, the period of February typed over today's dates, warehouse 1 and the sales.
std::string TitleFebruarySales(const std::string& title) {
  const std::string clear = "BSpace BSpace BSpace BSpace BSpace BSpace BSpace BSpace BSpace BSpace ";
  return title + " Enter " + clear + "01-02-2026 Enter " + clear + "28-02-2026 Enter";
}

TEST_F(ViewerWalkTest, TurnoverAnalysisOnTheScreen) {
  ASSERT_NO_FATAL_FAILURE(Analysis("1"));
  ASSERT_NO_FATAL_FAILURE(Steps({{"Podaj tytuł wydruku:", TitleFebruarySales("Test")},
                                 {"Wybierz magazyny, na których dokonywano operacji:", "Enter F10"},
                                 {"Wybierz dostawców, na których towarach dokonywano operacji:", "F10"},
                                 {"Wybierz konkretne towary, na których dokonywano operacji:", "F10"},
                                 {"Sprzedaż", "F10"},
                                 {"Podaj sposób sortowania:", "1 N"},
                                 {"Skierować wydruk:", "2"}}));
  ASSERT_TRUE(Shows("Dynamika obrotów dla: Test")) << Pane();
  EXPECT_TRUE(Shows("       2 Chleb                                  -1.500         4.000   -37.50")) << Pane();
  EXPECT_TRUE(Shows("-ruch obrazu")) << Pane();
  // The report fits one screen: Down keeps it; Right moves it ten columns.
  Keys("Down Right");
  ASSERT_TRUE(Shows("\n01-02-2026 do 28-02-2026\n")) << Pane();
  EXPECT_EQ(Pane().rfind("brotów dla: Test\n", 0), 0u) << Pane();
  EXPECT_TRUE(Shows("\nhleb      ")) << Pane();
  Keys("Escape");
  ASSERT_NO_FATAL_FAILURE(Steps({{"Czy zapisać zestawienie w standardzie DBF-3 ?", "N"},
                                 {"Obroty i stany towarów w wybranym okresie, z podsumowaniami.", "Escape"}}));
  EXPECT_TRUE(Shows("KLOTE-END")) << Pane();
}

TEST_F(ViewerWalkTest, StockWithTurnoverOnTheScreen) {
  ASSERT_NO_FATAL_FAILURE(Analysis("6"));
  ASSERT_NO_FATAL_FAILURE(Steps({{"Dane będą blokowane kolejno w każdym analizowanym magazynie.", "Enter"},
                                 {"Podaj tytuł wydruku:", TitleFebruarySales("Stany")},
                                 {"Wybierz magazyny, na których dokonywano operacji:", "Enter F10"},
                                 {"Sprzedaż", "F10"},
                                 // up to 50 %: Mleko sold 3 of 7, Chleb 1.5 of 2.5
                                 {"Podaj zakres procentu obrotu, który ma być uznany za brak obrotu.", "Enter BSpace 50 Enter"},
                                 {"Czy odrzucić z zestawienia stany zerowe ?", "T"},
                                 {"Skierować wydruk:", "2"}}));
  ASSERT_TRUE(Shows("Analizy stanów towarów z pokazaniem obrotu")) << Pane();
  EXPECT_TRUE(Shows("       1 Mleko                                   7.000         3.000     42.86")) << Pane();
  EXPECT_TRUE(Shows("       2 Chleb                                   2.500         1.500     60.00")) << Pane();
  Keys("Right Right Right");  // the mark stands beyond the 80th column
  EXPECT_TRUE(Shows("42.86                0.00 bez obrotu\n")) << Pane();
  EXPECT_TRUE(Shows("60.00                0.00\n")) << Pane();
  Keys("Escape");
  ASSERT_NO_FATAL_FAILURE(Steps({{"Zestawienia stanów i towary bez obrotu", "Escape"}}));
  EXPECT_TRUE(Shows("KLOTE-END")) << Pane();
}

// The cash summary as a cash report: a symbol and an opening balance, no cash
// in February, so the closing balance is the opening one.
TEST_F(ViewerWalkTest, CashReportOnTheScreen) {
  const std::string clear = "BSpace BSpace BSpace BSpace BSpace BSpace BSpace BSpace BSpace BSpace ";
  ASSERT_NO_FATAL_FAILURE(Analysis("3"));
  ASSERT_NO_FATAL_FAILURE(Steps({{"Podsumowanie kasy za wybrany dzień", "1"},
                                 {"Podaj zakres dat", clear + "01-02-2026 Enter " + clear + "28-02-2026 Enter"},
                                 {"Wybierz magazyny, na których dokonywano operacji:", "Enter F10"},
                                 {"Jeżeli nie podasz nic", "RK1 Enter"},
                                 {"Podaj stan początkowy kasy", "BSpace 100.5 Enter"},
                                 {"Skierować wydruk:", "2"}}));
  ASSERT_TRUE(Shows("Raport kasowy nr: RK1")) << Pane();
  EXPECT_TRUE(Shows("Stan końcowy kasy:" + std::string(37, ' ') + "100,50\n")) << Pane();
  Keys("Escape");
  ASSERT_NO_FATAL_FAILURE(Steps({{"Analizy dokumentów kasowych", "Escape"}}));
}

}  // namespace
