// A walk of the real klote in tmux: from Analizy, the turnover analysis, the
// stock with turnover and the cash report of the small firm to the screen
// viewer, moves in it, and back to the menu.
#include <optional>
#include <string>

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
  // The real klote in tmux logged in as the System Manager on any warehouse,
  // for the analyses work over all; then F5 and the entry's key.
  void Analysis(const std::string& entry) {
    ASSERT_TRUE(walk_->StartKlote(Db().home));
    ASSERT_NO_FATAL_FAILURE(walk_->LogIn(true));
    walk_->Keys("F5 " + entry);
  }
  std::string Pane() { return walk_->Pane(); }
  bool Shows(const std::string& text) { return walk_->Shows(text); }
  std::optional<TmuxWalk> walk_;
};

// The period of February typed over today's dates.
const std::string kFebruary = TmuxWalk::Erase(10) + "01-02-2026 Enter " + TmuxWalk::Erase(10) + "28-02-2026 Enter";

TEST_F(ViewerWalkTest, TurnoverStockAndCashAnalysesOnTheScreen) {
  ASSERT_NO_FATAL_FAILURE(Analysis("1"));
  ASSERT_NO_FATAL_FAILURE(walk_->Walk({{"", "Podaj tytuł wydruku:"},
                                       {"Test Enter " + kFebruary, "Wybierz magazyny, na których dokonywano operacji:"},
                                       {"Enter F10", "Wybierz dostawców, na których towarach dokonywano operacji:"},
                                       {"F10", "Wybierz konkretne towary, na których dokonywano operacji:"},
                                       {"F10", "Sprzedaż"},
                                       {"F10", "Podaj sposób sortowania:"},
                                       {"1 N", "Skierować wydruk:"},
                                       {"2", "Dynamika obrotów dla: Test"}}));
  EXPECT_TRUE(Shows("       2 Chleb                                  -1.500         4.000   -37.50")) << Pane();
  EXPECT_TRUE(Shows("-ruch obrazu")) << Pane();
  // The report fits one screen: Down keeps it; Right moves it ten columns.
  walk_->Keys("Down Right");
  ASSERT_TRUE(Shows("\n01-02-2026 do 28-02-2026\n")) << Pane();
  EXPECT_EQ(Pane().rfind("brotów dla: Test\n", 0), 0u) << Pane();
  EXPECT_TRUE(Shows("\nhleb      ")) << Pane();
  ASSERT_NO_FATAL_FAILURE(walk_->Walk({{"Escape", "Czy zapisać zestawienie w standardzie DBF-3 ?"},
                                       {"N", "Obroty i stany towarów w wybranym okresie, z podsumowaniami."}}));

  // The stock with turnover, from the same list.
  ASSERT_NO_FATAL_FAILURE(walk_->Walk({{"6", "Dane będą blokowane kolejno w każdym analizowanym magazynie."},
                                       {"Enter", "Podaj tytuł wydruku:"},
                                       {"Stany Enter " + kFebruary, "Wybierz magazyny, na których dokonywano operacji:"},
                                       {"Enter F10", "Sprzedaż"},
                                       {"F10", "Podaj zakres procentu obrotu, który ma być uznany za brak obrotu."},
                                       // up to 50 %: Mleko sold 3 of 7, Chleb 1.5 of 2.5
                                       {"Enter BSpace 50 Enter", "Czy odrzucić z zestawienia stany zerowe ?"},
                                       {"T", "Skierować wydruk:"},
                                       {"2", "Analizy stanów towarów z pokazaniem obrotu"}}));
  EXPECT_TRUE(Shows("       1 Mleko                                   7.000         3.000     42.86")) << Pane();
  EXPECT_TRUE(Shows("       2 Chleb                                   2.500         1.500     60.00")) << Pane();
  walk_->Keys("Right Right Right");  // the mark stands beyond the 80th column
  EXPECT_TRUE(Shows("42.86                0.00 bez obrotu\n")) << Pane();
  EXPECT_TRUE(Shows("60.00                0.00\n")) << Pane();
  ASSERT_NO_FATAL_FAILURE(walk_->Walk({{"Escape", "Zestawienia stanów i towary bez obrotu"}}));

  // The cash summary as a cash report: a symbol and an opening balance, no cash
  // in February, so the closing balance is the opening one.
  ASSERT_NO_FATAL_FAILURE(walk_->Walk({{"3", "Podsumowanie kasy za wybrany dzień"},
                                       {"1", "Podaj zakres dat"},
                                       {kFebruary, "Wybierz magazyny, na których dokonywano operacji:"},
                                       {"Enter F10", "Jeżeli nie podasz nic"},
                                       {"RK1 Enter", "Podaj stan początkowy kasy"},
                                       {"BSpace 100.5 Enter", "Skierować wydruk:"},
                                       {"2", "Raport kasowy nr: RK1"}}));
  EXPECT_TRUE(Shows("Stan końcowy kasy:" + std::string(37, ' ') + "100,50\n")) << Pane();
  ASSERT_NO_FATAL_FAILURE(walk_->Walk({{"Escape", "Analizy dokumentów kasowych"}}));
  walk_->Quit();
}

}  // namespace
