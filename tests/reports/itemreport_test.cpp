// The turnover of items through its dialog to a file, byte for byte, and a
// file in a missing directory or on a full device. (Bad periods: report_test,
// through the same dialog step.)
#include <sys/stat.h>

#include <filesystem>

#include "base/mazovia.h"
#include "dialogfixture.h"
#include "reports/itemanalyses.h"

namespace {

namespace fs = std::filesystem;

using namespace keyscript;

std::string M(const ShortText& text) { return text.Str(); }

using ItemReportTest = DialogTest;

TEST_F(ItemReportTest, TheReportGoesToAFileByteForByteAndAFileThatCannotBeWrittenIsRefused) {
  // Title, one period, warehouse 1, sales, sort by name ascending.
  Type("Test");
  Press(keys::kEnter);
  Type("T");
  Period("01-02-2026", "28-02-2026");
  Press(keys::kEnter);
  Press(keys::F(10));
  Press(keys::F(10));
  Type("1N");
  ItemAnalysisParams p;
  ASSERT_TRUE(AskItemAnalysisParams(p));
  gScript.clear();
  ToFile("raport.txt");
  ASSERT_TRUE(RunItemAnalysisReport(p));
  const std::string heads = Line("Nr wewn. %-31s %13s %14s %15s %13s %13s %19s %12s", "Nazwa towaru", M("Ilość"_mz).c_str(),
                                 "Wart.zakupu", M("Wart.sprzedaży"_mz).c_str(), M("Marża"_mz).c_str(), "Stan",
                                 M("Wart.zakupu stanów"_mz).c_str(), M("%ilość/stan"_mz).c_str());
  const std::string dashes = Line("%s", std::string(heads.size() - 2, '-').c_str());
  std::string expected = Line("Test") + Line("%s", M("Sprzedaż"_mz).c_str()) +
                         Line("Okres: od 01-02-2026 do 28-02-2026") + dashes + heads + dashes;
  // Sold on 5 February: Chleb 1.5 of 4 (purchase net 3, sale net 4.5, gross
  // 5.5), Mleko 3 of 10 (1.5, 2.5, 3). Issues count minus; stock at the end.
  const char* row = "%8d %-31s %13.3f %14.2f %15.2f %13.2f %13.3f %19.2f %12.2f";
  expected += Line(row, 2, "Chleb", -1.5, -1.5 * 3, -1.5 * 5.5, -1.5 * (4.5 - 3), 2.5, 0.0, 100 * -1.5 / 2.5);
  expected += Line(row, 1, "Mleko", -3.0, -3 * 1.5, -3 * 3.0, -3 * (2.5 - 1.5), 7.0, 0.0, 100 * -3.0 / 7);
  expected += dashes;
  expected += Line("%s%16.3f", M("SUMA ILOŚCI                               :"_mz).c_str(), -4.5);
  expected += Line("%s%16.2f", "SUMA WG CEN ZAKUPU NETTO :", -9.0);
  expected += Line("%s%16.2f", M("SUMA WG CEN SPRZEDAŻY BRUTTO :"_mz).c_str(), -17.25);
  expected += Line("%s%16.2f", "SUMA WG CEN ZAKUPU BRUTTO                 :", 0.0);
  EXPECT_EQ(ReadFile(Db().home + "/raport.txt"), expected);

  for (const std::string target : {"/nonexistent-klote-dir/raport.txt", "/dev/full"}) {
    gScript.clear();
    gScreens.clear();
    ToFile(target);
    Type("N");  // not again
    EXPECT_FALSE(RunItemAnalysisReport(p)) << target;
    EXPECT_GE(ScreensWith(M("Nie można stworzyć takiego pliku. Wpisujesz jeszcze raz ?"_mz)), 1) << target;
  }
  EXPECT_FALSE(fs::exists("/nonexistent-klote-dir"));
  struct stat st {};
  ASSERT_EQ(::stat("/dev/full", &st), 0);
  EXPECT_TRUE(S_ISCHR(st.st_mode)) << "the device is still a device";
  EXPECT_FALSE(fs::exists("/dev/full.tmp~"));
}

}  // namespace
