// The turnover report end to end: the dialog's refusals, the run, the file
// written through the print flow byte for byte, and the DBF copy. The turnover
// of items through its dialog to a file, byte for byte, and a file in a missing
// directory or on a full device.
#include <sys/stat.h>

#include <filesystem>

#include "base/mazovia.h"
#include "docfixture.h"
#include "exchange/dbf/dbf.h"
#include "print/keyscript.h"
#include "reports/analyses.h"
#include "reports/itemanalyses.h"
#include "reports/dbfsave.h"

namespace {

using namespace keyscript;

// The small firm with scripted keys: dialogs of the reports answered from a script.
class ReportTest : public DocumentsTest {
 protected:
  void SetUp() override {
    DocumentsTest::SetUp();
    SaveSmallFirm();
    keyscript::Begin();
  }
  void TearDown() override {
    keyscript::End();
    DocumentsTest::TearDown();
  }
  // The period typed over the proposed dates.
  static void Period(const char* from, const char* to) {
    Press(keys::kBackspace, 10);
    Type(from);
    Press(keys::kEnter);
    Press(keys::kBackspace, 10);
    Type(to);
    Press(keys::kEnter);
  }
  // The destination "file to print" under the name given, Mazovia.
  static void ToFile(const std::string& name) {
    Type("3");
    Press(keys::kBackspace, 12);
    Type(name);
    Press(keys::kEnter);
    Type("1");
  }
  // The dialog up to the dates: the title typed, the dates replaced.
  static void TitleAndDates(const char* from, const char* to) {
    Type("Test");
    Press(keys::kEnter);
    Period(from, to);
  }
};

TEST_F(ReportTest, ThePeriodMustBeRealDatesInOrder) {
  const ShortText badDate = "Nieprawidłowo podana data."_mz;
  const struct {
    const char *from, *to;
    ShortText message;
  } cases[] = {{"", "", badDate},
               {"01-02-2026", "31-01-2026", "Data końcowa okresu jest wcześniejsza od początkowej."_mz},
               {"31-02-2026", "01-03-2026", badDate}};
  for (const auto& c : cases) {
    gScript.clear();
    gScreens.clear();
    TitleAndDates(c.from, c.to);
    Press(keys::kEnter);  // the message
    Press(keys::kEsc, 3);
    TurnoverParams p;
    EXPECT_FALSE(AskTurnoverParams(p)) << c.from;
    EXPECT_GE(ScreensWith(c.message.View()), 1) << c.from;
    EXPECT_GE(ScreensWith("za który chcesz otrzymać"_mz.View()), 2) << c.from << ": the dates are asked again";
    EXPECT_EQ(ScreensWith("Wybierz magazyny"), 0) << c.from;
  }
}

// After the dates the warehouses, then the suppliers, then the items of the suppliers marked, then the kinds:
// no warehouse or no kind ends the dialogue.
TEST_F(ReportTest, ChoicesNarrowTheAnalysisOrEndTheDialogue) {
  const KeyPair enter = keys::kEnter, f10 = keys::F(10), down = keys::kDown, esc = keys::kEsc;
  const ShortText suppliers = "Wybierz dostawców, na których towarach dokonywano operacji:"_mz;
  const struct {
    const char* name;
    std::vector<KeyPair> keys;  // after the dates
    bool given;
    std::vector<int32_t> warehouses, suppliers, items;
    ShortText shown;
  } cases[] = {
      {"no warehouse", {f10}, false, {}, {}, {},
       "Nie wybrano żadnego magazynu do zestawienia - nie ma czego analizować."_mz},
      {"the sales unmarked", {enter, f10, f10, f10, enter, f10}, false, {1}, {}, {},
       "Nie skonfigurowano żadnego dokumentu do tej analizy."_mz},
      {"nothing marked: all", {enter, f10, f10, f10, f10}, true, {1}, {}, {}, suppliers},
      {"the second supplier, its only item", {enter, f10, down, enter, f10, enter, f10, f10}, true, {1}, {200}, {2},
       suppliers},
      {"an item of all, by name", {enter, f10, f10, down, enter, f10, f10}, true, {1}, {}, {1}, suppliers},
      {"Esc at the suppliers", {enter, f10, esc}, false, {1}, {}, {}, suppliers},
      {"Esc at the items", {enter, f10, f10, esc}, false, {1}, {}, {}, suppliers},
  };
  for (const auto& c : cases) {
    gScript.clear();
    gScreens.clear();
    TitleAndDates("01-02-2026", "28-02-2026");
    for (KeyPair k : c.keys) Press(k);
    if (c.given) Type("1N");
    TurnoverParams p;
    EXPECT_EQ(AskTurnoverParams(p), c.given) << c.name;
    EXPECT_EQ(p.warehouses, c.warehouses) << c.name;
    EXPECT_EQ(p.suppliers, c.suppliers) << c.name;
    EXPECT_EQ(p.items, c.items) << c.name;
    EXPECT_GE(ScreensWith(c.shown.View()), 1) << c.name;
    // Supplier 100's item is not offered once only supplier 200 is marked.
    if (c.suppliers == std::vector<int32_t>{200}) {
      EXPECT_EQ(ScreensWith("Mleko"), 0);
    }
  }
}

TEST_F(ReportTest, TheReportGoesToAFileByteForByteAndToDbf) {
  TitleAndDates("01-02-2026", "28-02-2026");
  Press(keys::kEnter);  // warehouse 1
  Press(keys::F(10), 3);  // every supplier and item
  Press(keys::F(10));     // sales, marked at the start
  Type("1");           // sort by name
  Type("N");           // ascending
  TurnoverParams p;
  ASSERT_TRUE(AskTurnoverParams(p));
  EXPECT_EQ(p.kinds, (std::vector<int16_t>{1, 2, 4}));

  gScript.clear();
  ToFile("raport.txt");
  Type("T");  // the DBF copy too
  ASSERT_TRUE(RunTurnoverReport(p));

  const std::string dashes(110, '-');
  std::string expected = Line("%s", "Dynamika obrotów dla: Test"_mz.Str().c_str()) + Line("Okres: od 01-02-2026 do 28-02-2026") +
                         Line("%s", dashes.c_str()) +
                         Line("%s", "Nr wewn. Nazwa towaru                         Obrót (A)      Stan (B)   %(A/B) "
                                    "Wart.zak.brutto Wart.sprz.brutto"_mz.Str().c_str()) +
                         Line("%s", dashes.c_str());
  // Chleb: 1.5 sold of 4 at the start; Mleko: 3 of 10. Issues count minus.
  expected += Line("%8d %-31s %13.3f %13.3f %8.2f %15.2f %16.2f", 2, "Chleb", -1.5, 4.0, -37.5, -6.0, -8.25);
  expected += Line("%8d %-31s %13.3f %13.3f %8.2f %15.2f %16.2f", 1, "Mleko", -3.0, 10.0, -30.0, -6.0, -9.0);
  expected += Line("%s", dashes.c_str());
  expected += Line("%s%16.3f", "SUMA ILOŚCI                               :"_mz.Str().c_str(), -4.5);
  expected += Line("%s%16.2f", "SUMA WG CEN ZAKUPU BRUTTO                 :"_mz.Str().c_str(), -12.0);
  expected += Line("%s%16.2f", "SUMA WG CEN ZAKUPU NETTO :", -9.0);
  expected += Line("%s%16.2f", "SUMA WG CEN SPRZEDAŻY BRUTTO :"_mz.Str().c_str(), -17.25);
  EXPECT_EQ(ReadFile(Db().home + "/raport.txt"), expected);

  DbfFile dbf;
  ASSERT_EQ(DbfOpen(dbf, TurnoverDbfPath()), 0);
  EXPECT_EQ(dbf.recordCount, 2);
  ASSERT_EQ(DbfReadRecord(dbf, 2), 0);
  EXPECT_EQ(DbfGetField(dbf, 3), ShortText("Chleb"));
  EXPECT_EQ(DbfGetField(dbf, 5), ShortText("           4.000"));
}

std::string M(const ShortText& text) { return text.Str(); }

using ItemReportTest = ReportTest;

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
  EXPECT_FALSE(std::filesystem::exists("/nonexistent-klote-dir"));
  struct stat st {};
  ASSERT_EQ(::stat("/dev/full", &st), 0);
  EXPECT_TRUE(S_ISCHR(st.st_mode)) << "the device is still a device";
  EXPECT_FALSE(std::filesystem::exists("/dev/full.tmp~"));
}

}  // namespace
