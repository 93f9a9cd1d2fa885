// Walks of the real klote in tmux: from Analizy, the turnover analysis and
// the stock with turnover of the small firm to the screen viewer, moves in
// it, and back to the menu.
#include <optional>

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
  // The real klote in tmux, logged in, the menu bar up.
  void StartAndLogIn() {
    ASSERT_TRUE(walk_->StartKlote(Db().home));
    ASSERT_TRUE(Shows("Wybierz, jako który użytkownik będziesz pracować:")) << Pane();
    Keys("Enter");  // the System Manager, whose empty password admits him at once
    ASSERT_TRUE(Shows("Wybierz magazyn, na którego konto wprowadzać będziesz dane:")) << Pane();
    Keys("Enter");  // the analyses work over every warehouse: any will do as the current one
    ASSERT_TRUE(Shows("F5 Analizy")) << Pane();
  }
  // The period of February, typed over today's dates.
  void February() {
    Keys("BSpace BSpace BSpace BSpace BSpace BSpace BSpace BSpace BSpace BSpace 01-02-2026 Enter");
    Keys("BSpace BSpace BSpace BSpace BSpace BSpace BSpace BSpace BSpace BSpace 28-02-2026 Enter");
  }
  std::optional<TmuxWalk> walk_;
};

TEST_F(ViewerWalkTest, TurnoverAnalysisOnTheScreen) {
  ASSERT_NO_FATAL_FAILURE(StartAndLogIn());
  Keys("F5 1");
  ASSERT_TRUE(Shows("Podaj tytuł wydruku:")) << Pane();
  Keys("Test Enter");
  February();
  ASSERT_TRUE(Shows("Wybierz magazyny, na których dokonywano operacji:")) << Pane();
  Keys("Enter F10");
  ASSERT_TRUE(Shows("Sprzedaż")) << Pane();
  Keys("F10");
  ASSERT_TRUE(Shows("Podaj sposób sortowania:")) << Pane();
  Keys("1 N");
  ASSERT_TRUE(Shows("Skierować wydruk:")) << Pane();
  Keys("2");
  ASSERT_TRUE(Shows("Dynamika obrotów dla: Test")) << Pane();
  EXPECT_TRUE(Shows("       2 Chleb                                  -1.500         4.000   -37.50")) << Pane();
  EXPECT_TRUE(Shows("-ruch obrazu")) << Pane();
  // The report fits one screen: Down keeps it; Right moves it ten columns.
  Keys("Down Right");
  ASSERT_TRUE(Shows("\n01-02-2026 do 28-02-2026\n")) << Pane();
  EXPECT_EQ(Pane().rfind("brotów dla: Test\n", 0), 0u) << Pane();
  EXPECT_TRUE(Shows("\nhleb      ")) << Pane();
  Keys("Escape");
  ASSERT_TRUE(Shows("Czy zapisać zestawienie w standardzie DBF-3 ?")) << Pane();
  Keys("N");
  ASSERT_TRUE(Shows("Obroty i stany towarów w wybranym okresie, z podsumowaniami.")) << Pane();
  Keys("Escape");
  EXPECT_TRUE(Shows("KLOTE-END")) << Pane();
}

TEST_F(ViewerWalkTest, StockWithTurnoverOnTheScreen) {
  ASSERT_NO_FATAL_FAILURE(StartAndLogIn());
  Keys("F5 6");
  ASSERT_TRUE(Shows("Dane będą blokowane kolejno w każdym analizowanym magazynie.")) << Pane();
  Keys("Enter");
  ASSERT_TRUE(Shows("Podaj tytuł wydruku:")) << Pane();
  Keys("Stany Enter");
  February();
  ASSERT_TRUE(Shows("Wybierz magazyny, na których dokonywano operacji:")) << Pane();
  Keys("Enter F10");
  ASSERT_TRUE(Shows("Sprzedaż")) << Pane();
  Keys("F10");
  ASSERT_TRUE(Shows("Podaj zakres procentu obrotu, który ma być uznany za brak obrotu.")) << Pane();
  Keys("Enter BSpace 50 Enter");  // up to 50 %: Mleko sold 3 of 7, Chleb 1.5 of 2.5
  ASSERT_TRUE(Shows("Czy odrzucić z zestawienia stany zerowe ?")) << Pane();
  Keys("T");
  ASSERT_TRUE(Shows("Skierować wydruk:")) << Pane();
  Keys("2");
  ASSERT_TRUE(Shows("Analizy stanów towarów z pokazaniem obrotu")) << Pane();
  EXPECT_TRUE(Shows("       1 Mleko                                   7.000         3.000     42.86")) << Pane();
  EXPECT_TRUE(Shows("       2 Chleb                                   2.500         1.500     60.00")) << Pane();
  Keys("Right Right Right");  // the mark stands beyond the 80th column
  EXPECT_TRUE(Shows("42.86                0.00 bez obrotu\n")) << Pane();
  EXPECT_TRUE(Shows("60.00                0.00\n")) << Pane();
  Keys("Escape");
  ASSERT_TRUE(Shows("Zestawienia stanów i towary bez obrotu")) << Pane();
  Keys("Escape");
  EXPECT_TRUE(Shows("KLOTE-END")) << Pane();
}

}  // namespace
