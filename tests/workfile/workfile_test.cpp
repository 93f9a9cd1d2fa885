// The work file on the real server: rows from saved documents and from the
// catalogue against values the test computes, the DBF written and read back
// (also by Debian's python3-dbfread), bad DBF files, passing between users,
// and a second process holding another user's session.
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <functional>
#include <string>
#include <tuple>
#include <vector>

#include "documents/docsave.h"
#include "exchange/dbf_fixture.h"
#include "exchange/workfile.h"
#include "master/items_fixture.h"
#include "master/contractors.h"
#include "workfile/keysteps.h"
#include "master/tables.h"
#include "sqltable/sqltest.h"
#include "users/session.h"
#include "users/users_fixture.h"

namespace {

constexpr int32_t kWarehouse = 1;

struct Line {
  int32_t item;
  Real quantity, buyNet, saleGross;
};

using namespace keysteps;

class WorkFileTest : public CatalogueTest {
 protected:
  void SetUp() override {
    CatalogueTest::SetUp();
    CreateFirmTables();
    CreateWarehouseTables(false, kWarehouse);
    UserRecord me;
    me.number = 1;
    me.firstName = "Jan";
    SetCurrentUser(me);
    Play({});
    Fill();
  }
  void TearDown() override {
    KillHolder(child_);
    ClearCurrentUser();
    Stop();
    CatalogueTest::TearDown();
  }
  static int32_t AddItem(const ShortText& name, Real saleNet) { return AddItemRow(Item(name, "23", 0, saleNet), 5); }
  // A saved document's lines, written by another client as any program of the firm may write them.
  static void WriteDocument(int16_t kind, int32_t number, const char* mark, const std::vector<Line>& lines) {
    std::string values;
    int32_t position = 0;
    for (const Line& l : lines)
      values += std::string(values.empty() ? "(" : ",(") + std::to_string(kind) + "," + std::to_string(number) + ",'" +
                mark + "'," + std::to_string(++position) + "," + std::to_string(l.item) + ",'23'," +
                std::to_string(double(l.quantity)) + "," + std::to_string(double(l.buyNet)) + "," +
                std::to_string(double(l.saleGross)) + ")";
    ASSERT_TRUE(Psql("INSERT INTO dane_1_specyfik (typ_dok,nr_dok,znak_dok,pozycja,nr_towaru,vat,ilosc,c_zak_netto,"
                     "c_spr_brutto) VALUES " + values));
  }
  // The rows of the saved document FV 1/number, and of the warehouse's catalogue.
  static std::vector<WorkFileRow> Document(int32_t number) {
    std::vector<WorkFileRow> rows;
    EXPECT_EQ(WorkRowsFromDocument(kWarehouse, 1, number, "FV", rows), 0);
    return rows;
  }
  static std::vector<WorkFileRow> Catalogue() {
    std::vector<WorkFileRow> rows;
    EXPECT_EQ(WorkRowsFromCatalogue(kWarehouse, rows), 0);
    return rows;
  }
  // "name:quantity" of each row of a user's work file.
  static std::string Rows(int32_t user) {
    std::vector<WorkFileRow> rows;
    EXPECT_EQ(WorkFileRead(WorkFileName(user), rows), 0);
    std::string out;
    for (const WorkFileRow& r : rows) {
      char q[32];
      std::snprintf(q, sizeof q, "%.3Lf", static_cast<long double>(r.quantity));
      out += r.item.name.Str() + ":" + q + " ";
    }
    return out;
  }
  // Paths relative to the firm's directory (the suite's HOME): a DOS-style
  // path has its directories in lower case.
  static std::string Dbf() { return "out/plikrob_.dbf"; }
  // Whether the terminal was sent the text (boxes that only wait a time).
  bool Sent(const char* text) { return ScreenBytes().find(text) != std::string::npos; }
  // The catalogue of three items, one with a Polish name, and two documents: every test starts with them.
  void Fill() {
    items_ = {AddItem("Mleko", 2.5L), AddItem("Chleb", 3), AddItem("Żółć"_mz, 10)};
    WriteDocument(1, 7, "FV", {{items_[0], 4, 2.1L, 3.08L}, {items_[2], 1.5L, 8, 12.3L}});
    WriteDocument(1, 8, "FV", {{items_[1], 9, 1, 1}});
  }
  // Another process takes the session lock and the work file lock of the user, and waits.
  void HoldElsewhere(int32_t user) {
    child_ = HoldInAnotherProcess([user] {
      int session = -1, work = -1;
      return !FileLockTake(UserPath(user, ShortText("kluczw__")), session, false) &&
             !FileLockTake(WorkFileName(user), work, false);
    });
    ASSERT_GT(child_, 0);
  }

  std::vector<int32_t> items_;
  pid_t child_ = -1;
};

TEST_F(WorkFileTest, RowsOfADocumentAndOfTheCatalogueWithTheCatalogueNamesAndTheStock) {
  std::vector<WorkFileRow> rows = Document(7);
  ASSERT_EQ(rows.size(), 2u);
  EXPECT_EQ(std::tuple(rows[0].item.name, rows[0].item.number, rows[0].quantity, rows[0].item.buyNet),
            std::tuple(ShortText("Mleko"), items_[0], Real(4), 2.1L));
  EXPECT_EQ(std::tuple(rows[1].item.name, rows[1].item.saleGross, rows[1].item.unit),
            std::tuple("Żółć"_mz, 12.3L, ShortText("szt")));
  // Another number of the same kind and mark is another document.
  rows = Document(8);
  ASSERT_EQ(rows.size(), 1u);
  EXPECT_EQ(rows[0].quantity, 9);
  rows = Document(9);
  EXPECT_TRUE(rows.empty());
  // The catalogue's rows take the warehouse's stock.
  rows = Catalogue();
  ASSERT_EQ(rows.size(), 3u);
  for (const WorkFileRow& r : rows) {
    EXPECT_EQ(r.quantity, 5) << r.item.name.Str();
    EXPECT_EQ(r.item.saleGross, GrossFromNet(r.item.saleNet, r.item.vat));
  }
}

TEST_F(WorkFileTest, WritingAsksToAddAndAnEmptySourceWithNoLeavesItEmpty) {
  std::vector<WorkFileRow> rows = Document(7);
  ASSERT_TRUE(AddSpecificationToWorkFile(rows));  // nothing there yet: no question
  EXPECT_TRUE(Sent("Zapis poprawny."));
  EXPECT_FALSE(Shown("W pliku roboczym są dane."_mz));
  Play({[] { (void)PushKey('t', 20); }});
  ASSERT_TRUE(AddSpecificationToWorkFile(rows));
  EXPECT_TRUE(Shown("W pliku roboczym są dane. Czy dodać specyfikację do nich ?"_mz));
  EXPECT_EQ(Rows(1), "Mleko:4.000 " + ("Żółć"_mz).Str() + ":1.500 Mleko:4.000 " + ("Żółć"_mz).Str() + ":1.500 ");
  Play({[] { (void)PushKey('n', 49); }});
  ASSERT_TRUE(AddSpecificationToWorkFile({}));
  EXPECT_EQ(Rows(1), "");
  EXPECT_TRUE(Sent("Zapis poprawny."));
  // The lock file of the table lies beside it.
  EXPECT_TRUE(std::filesystem::exists("dane/uzytkown/1/plikrob_.lcu"));
}

TEST_F(WorkFileTest, DbfRoundTripReadByDbfreadAndBadOrUnknownRowsChangeNothing) {
  std::vector<WorkFileRow> rows = Document(7);
  ASSERT_EQ(WorkFileWrite(WorkFileName(1), rows, false), 0);
  std::filesystem::create_directories("out");
  ASSERT_TRUE(ExportWorkFileTo(ShortText("out/")));
  EXPECT_TRUE(Shown("Kopiowanie zakończone poprawnie."_mz));

  ASSERT_EQ(std::system("/usr/bin/python3 -c 'import dbfread'"), 0) << "python3-dbfread is missing";
  const std::string script =
      "import dbfread\n"
      "for r in dbfread.DBF('" + Dbf() + "', encoding='latin1'):\n"
      "  print(r['NAZWA'].encode('latin1').hex(), r['NR_WEWN'], '%.3f' % r['ILOSC'], '%.2f' % r['CENA_S_B'], r['JEDNOSTKA'])\n";
  bool ok = false;
  const std::string got = dbf_test::RunCommand("/usr/bin/python3 -c \"" + script + "\"", ok);
  ASSERT_TRUE(ok) << got;
  std::string expected;
  for (const WorkFileRow& r : rows) {
    std::string hex;
    for (unsigned char c : r.item.name.Str()) {
      char h[3];
      std::snprintf(h, sizeof h, "%02x", c);
      hex += h;
    }
    char line[200];
    std::snprintf(line, sizeof line, "%s %d %.3Lf %.2Lf szt\n", hex.c_str(), r.item.number,
                  static_cast<long double>(r.quantity), static_cast<long double>(r.item.saleGross));
    expected += line;
  }
  EXPECT_EQ(got, expected);

  // Read back into another user's work file: the same rows.
  int16_t code = 0;
  ASSERT_EQ(WorkFileFromDbf(WorkFileName(2), ShortText(Dbf().c_str()), DbfCodePage::kAsIs, code), WorkFileImport::kDone);
  EXPECT_EQ(code, 0);
  EXPECT_EQ(Rows(2), Rows(1));

  // Bad DBF files change nothing.
  const std::string good = ReadFile(Dbf());
  const std::string before = Rows(1);
  const std::string other = "out/other.dbf";
  {
    DbfFile dbf;
    const DbfFieldSpec fields[] = {{"NAZWA", 'C', 31, 0}, {"CENA", 'N', 10, 2}};
    ASSERT_EQ(DbfCreate(dbf, ShortText(other.c_str()), fields), 0);
    DbfBlankRecord(dbf);
    ASSERT_EQ(DbfAppendRecord(dbf), 0);
    ASSERT_EQ(DbfClose(dbf), 0);
  }
  struct Case {
    const char* what;
    std::string bytes;  // empty: no file at all
  };
  const Case cases[] = {
      {"another layout", ReadFile(other)},
      {"cut inside the last record", good.substr(0, good.size() - 40)},
      {"cut inside the header", good.substr(0, 100)},
      {"no file", ""},
  };
  const std::string target = "out/bad.dbf";
  for (const Case& c : cases) {
    std::filesystem::remove(target);
    if (!c.bytes.empty()) file_test::WriteBytes(target, c.bytes);
    int16_t code = 0;
    EXPECT_EQ(WorkFileFromDbf(WorkFileName(1), ShortText(target.c_str()), DbfCodePage::kAsIs, code),
              WorkFileImport::kBadDbf)
        << c.what;
    EXPECT_EQ(code, 0) << c.what;
    EXPECT_EQ(Rows(1), before) << c.what;
  }
  // Through the screen: the system's message, the work file as it was.
  std::filesystem::create_directories("cut");
  file_test::WriteBytes("cut/plikrob_.dbf", good.substr(0, good.size() - 40));
  EXPECT_FALSE(ImportWorkFileFrom(ShortText("cut/"), false));
  EXPECT_TRUE(Shown("Plik DBF jest uszkodzony, lub nie istnieje."_mz));
  EXPECT_EQ(Rows(1), before);

  // A taken file drops the rows that the catalogue does not know.
  rows[1].item.name = "Obcy towar";
  ASSERT_EQ(WorkFileWrite(WorkFileName(1), rows, false), 0);
  std::vector<ShortText> dropped;
  ASSERT_EQ(WorkFileDropUnknown(WorkFileName(1), dropped), 0);
  ASSERT_EQ(dropped.size(), 1u);
  EXPECT_EQ(dropped[0], "Obcy towar ");
  EXPECT_EQ(Rows(1).find("Obcy"), std::string::npos);
}

TEST(WorkFileMiniTest, LinesAreNumberCommaQuantityAndAnyBadLineRefusesTheFile) {
  struct Case {
    std::string bytes;
    bool ok;
    std::vector<std::pair<int32_t, double>> entries;
  };
  const Case cases[] = {
      {"", true, {}},
      {"7,2.5\r\n12,-1\r\n", true, {{7, 2.5}, {12, -1}}},
      {"7,2.5\n\n2147483647,0\n\x1a", true, {{7, 2.5}, {2147483647, 0}}},
      {"7,2.5", true, {{7, 2.5}}},
      {"7;2.5\r\n", false, {}},
      {"7,\r\n", false, {}},
      {",3\r\n", false, {}},
      {"0,3\r\n", false, {}},
      {"2147483648,3\r\n", false, {}},
      {"-7,3\r\n", false, {}},
      {"7,3x\r\n", false, {}},
      {"7,2.5\r\n8,1e30\r\n", false, {}},
      {"7,100000000000000000000000000000\r\n", false, {}},
      {std::string("7,2\0\r\n", 6), false, {}},
  };
  for (const Case& c : cases) {
    std::vector<MiniEntry> got = {{1, 1}};
    EXPECT_EQ(ParseMini(c.bytes, got), c.ok) << c.bytes;
    ASSERT_EQ(got.size(), c.entries.size()) << c.bytes;
    for (std::size_t i = 0; i < got.size(); ++i) {
      EXPECT_EQ(got[i].number, c.entries[i].first) << c.bytes;
      EXPECT_EQ(static_cast<double>(got[i].quantity), c.entries[i].second) << c.bytes;
    }
  }
  EXPECT_EQ(MiniLine(12, 1.5L), "12,1.5\r\n");
  EXPECT_EQ(MiniLine(3, 4), "3,4\r\n");
  EXPECT_EQ(MiniLine(3, -0.0000001L), "3,-0.0000001\r\n");
}

TEST_F(WorkFileTest, TheMiniFormGoesOutAndComesBackThroughTheCatalogue) {
  std::vector<WorkFileRow> rows = Document(7);
  rows[0].quantity = 1.234567L;
  ASSERT_EQ(WorkFileWrite(WorkFileName(1), rows, false), 0);
  std::filesystem::create_directories("mini");
  int16_t code = 0;
  ASSERT_TRUE(WorkFileToMini(WorkFileName(1), ShortText("mini/dane.klt"), code));
  EXPECT_EQ(ReadFile("mini/dane.klt"), MiniLine(items_[0], 1.234567L) + MiniLine(items_[2], 1.5L));
  // A number the catalogue does not hold is left out and named.
  { std::ofstream("mini/dane.klt", std::ios::app) << "99999,3\r\n"; }
  std::vector<int32_t> unknown;
  ASSERT_EQ(WorkFileFromMini(WorkFileName(2), ShortText("mini/dane.klt"), code, unknown), WorkFileImport::kDone);
  EXPECT_EQ(code, 0);
  EXPECT_EQ(unknown, std::vector<int32_t>{99999});
  EXPECT_EQ(Rows(2), "Mleko:1.235 " + ("Żółć"_mz).Str() + ":1.500 ");
  std::vector<WorkFileRow> back;
  ASSERT_EQ(WorkFileRead(WorkFileName(2), back), 0);
  EXPECT_EQ(back[1].item.saleGross, GrossFromNet(10, ShortText("23")));  // the catalogue's price, not the line's

  // Bad files and a held lock change nothing.
  const std::string before = Rows(2);
  std::filesystem::remove("mini/none.klt");
  { std::ofstream("mini/bad.klt") << MiniLine(items_[1], 2) << "x,1\r\n"; }
  struct Bad {
    const char* file;
    WorkFileImport result;
  };
  const Bad bad[] = {{"mini/none.klt", WorkFileImport::kBadFile}, {"mini/bad.klt", WorkFileImport::kBadFile}};
  for (const Bad& b : bad) {
    EXPECT_EQ(WorkFileFromMini(WorkFileName(2), ShortText(b.file), code, unknown), b.result) << b.file;
    EXPECT_EQ(Rows(2), before) << b.file;
  }
  HoldElsewhere(2);
  EXPECT_EQ(WorkFileFromMini(WorkFileName(2), ShortText("mini/dane.klt"), code, unknown), WorkFileImport::kLocked);
  EXPECT_EQ(Rows(2), before);

  // Through the screen: the form is recognised, asked about, and taken.
  Play({[] { (void)PushKey('t', 20); }});
  EXPECT_TRUE(ImportWorkFileFrom(ShortText("mini/"), false));
  EXPECT_TRUE(Shown("Wykryto `mini\" (numer,ilość)."_mz));
  EXPECT_TRUE(Shown("nr 99999"));
  EXPECT_EQ(Rows(1), before);
}

// The menu by keys: its rows under their key-caps, and the entries run by their digits.
TEST_F(WorkFileTest, TheMenuShowsItsRowsAndRunsThemByTheirKeys) {
  std::vector<WorkFileRow> rows = Catalogue();
  ASSERT_EQ(WorkFileWrite(WorkFileName(1), rows, false), 0);
  const keysteps::Step enter = Keys("", {keys::kEnter});
  // 4: not built; the last row (key-cap A): drive A, which is no diskette. (7, a directory: the klote walk.)
  Play({Keys("4"), enter, Keys("A"), enter});
  WorkFileMenu(kWarehouse);
  const ShortText kRows[] = {
      "╧à  Eksport pliku roboczego do miejsc A i B (format `KLOTE\")"_mz,
      "╧ç  Import pliku roboczego z miejsc A i B (format `KLOTE\")"_mz,
      "╧ê  Przekazywanie pliku roboczego pomiędzy użytkownikami"_mz,
      "╧ë  Import do pliku roboczego z formatów innych programów"_mz,
      "╧è  Eksport pliku roboczego w formatach innych programów"_mz,
      "╧ï  Wprowadzanie zmian w pliku roboczym"_mz,
      "╧î  Eksport pliku roboczego do dowolnego miejsca systemu plików"_mz,
      "╧Ä  Import pliku roboczego z dowolnego miejsca systemu plików"_mz,
      "╧ô  Eksport pliku roboczego do `katalogu wymiany plików\""_mz,
      "╧ö  Import pliku roboczego z `katalogu wymiany plików\""_mz,
      "  Czyszczenie głównego katalogu dyskietki"_mz,
  };
  ASSERT_FALSE(gScreens.empty());
  for (const ShortText& row : kRows) EXPECT_NE(gScreens[0].find(row.Str()), std::string::npos) << row.Str();
  EXPECT_NE(gScreens[0].find(("Wybierz opcję:"_mz).Str()), std::string::npos);
  EXPECT_TRUE(Shown("Ta opcja nie jest jeszcze dostępna."_mz));
  EXPECT_TRUE(Shown("Wybrane miejsce nie wygląda na dyskietkę."_mz));
}

// Drive A on a diskette directory: its main directory is emptied, its subdirectories stay.
TEST_F(WorkFileTest, ClearingADiskettePlaceDeletesItsFiles) {
  const std::filesystem::path floppy = std::filesystem::current_path() / "media" / "floppy";
  std::filesystem::remove_all(floppy);
  std::filesystem::create_directories(floppy / "kat");
  for (const char* name : {"plikrob_.dbf", "dane.klt", "kat/zostaje.txt"}) std::ofstream(floppy / name) << "x";
  std::ofstream("floppdir.cfg") << (floppy.string() + "/\n");
  Play({[] { (void)PushKey('A', 0); }, [] { (void)PushKey(13, 28); }});
  WorkFileMenu(kWarehouse);
  EXPECT_TRUE(Shown("Trwa kasowanie...["_mz) || Sent("Trwa kasowanie...["));
  for (const char* name : {"plikrob_.dbf", "dane.klt", "zzz.txt"}) EXPECT_FALSE(std::filesystem::exists(floppy / name));
  EXPECT_TRUE(std::filesystem::exists(floppy / "kat" / "zostaje.txt"));
  std::filesystem::remove("floppdir.cfg");
}

TEST(WorkFileTakeTest, TheSourceDecidesThePricesOfTheRows) {
  WorkFileRow row;
  row.item.vat = "23";
  row.item.supplier = 3;
  row.item.buyNet = 10;
  row.item.buyGross = 12.3L;
  row.item.saleNet = 15;
  row.item.saleGross = 18.45L;
  struct Case {
    TakeRules rules;
    Real buyNet, buyGross, saleNet, saleGross;
    int32_t supplier;
  };
  const Case cases[] = {
      {{WorkFileSource::kOwn, 9, 20, true, 0.1L}, 10, 12.3L, 15, 18.45L, 3},
      {{WorkFileSource::kOwnSaleIsPurchase, 9, 20, true, 0.1L}, 15, 18.45L, 15, 18.45L, 3},
      // 15 / 0.8 = 18.75 net, 23.0625 gross, 23.1 by the step
      {{WorkFileSource::kForeignDelivery, 9, 20, true, 0.1L}, 15, 18.45L, 23.1L / 1.23L, 23.1L, 9},
      // 10 * 1.5 = 15 net, 18.45 gross, 18 by the step
      {{WorkFileSource::kForeignSalesSamePurchase, 9, 50, false, 1}, 10, 12.3L, 18 / 1.23L, 18, 9},
      // sale 10 net, 12.3 gross; purchase 80 % of it
      {{WorkFileSource::kForeignSalesPurchaseIsSale, 9, 20, true, 0}, 8, 9.84L, 10, 12.3L, 9},
  };
  for (const Case& c : cases) {
    const WorkFileRow got = TakenRow(row, c.rules);
    const int source = static_cast<int>(c.rules.source);
    EXPECT_NEAR(static_cast<double>(got.item.buyNet), static_cast<double>(c.buyNet), 1e-9) << source;
    EXPECT_NEAR(static_cast<double>(got.item.buyGross), static_cast<double>(c.buyGross), 1e-9) << source;
    EXPECT_NEAR(static_cast<double>(got.item.saleNet), static_cast<double>(c.saleNet), 1e-9) << source;
    EXPECT_NEAR(static_cast<double>(got.item.saleGross), static_cast<double>(c.saleGross), 1e-9) << source;
    EXPECT_EQ(got.item.supplier, c.supplier) << source;
  }
}

TEST_F(WorkFileTest, TakenIntoTheSpecificationRowsFindOrAddTheirItems) {
  std::vector<WorkFileRow> rows = Document(7);
  WorkFileRow stranger;
  stranger.item = Item("Nowy towar", "23", 0, 4);
  stranger.item.supplierText = "Dostawca X";
  stranger.quantity = 6;
  rows.push_back(stranger);
  ASSERT_TRUE(Psql("DELETE FROM dane_1_stany_mg WHERE nr_wewn=" + std::to_string(items_[2])));
  ASSERT_EQ(WorkFileWrite(WorkFileName(1), rows, false), 0);
  const std::string catalogue = Scalar("SELECT count(*) FROM dane_kat_tow_");

  // A new item the catalogue refuses (no unit): the line list stays empty.
  std::vector<WorkFileRow> bad = rows;
  bad.back().item.unit.Clear();
  ASSERT_EQ(WorkFileWrite(WorkFileName(2), bad, false), 0);
  const TakeRules delivery{WorkFileSource::kForeignDelivery, 9, 25, false, 0.01L};
  ShortText refusal;
  ASSERT_EQ(WorkFileToSpecification(WorkFileName(2), 1, kWarehouse, delivery, nullptr, refusal), 0);
  EXPECT_EQ(refusal, "Towar musi mieć jakąś jednostkę miary, prawda ?"_mz);
  bool exists = false;
  ASSERT_EQ(PGTblExist(WorkTablePath(1), exists), 0);
  EXPECT_TRUE(!exists || Scalar("SELECT count(*) FROM dane_uzytkown_1_praca___") == "0");

  ASSERT_EQ(ContractorTablesEnsure(), 0);  // the catalogue's supplier 7 is known, the delivery's 9 is not
  Contractor known;
  known.number = 7;
  known[KontrahentCol::nazwa] = ShortText("Hurtownia");
  ASSERT_EQ(ContractorAdd(ContractorKind::kSupplier, known, NumberRange{}), ContractorOutcome::kDone);
  std::vector<int> phases;
  ASSERT_EQ(WorkFileToSpecification(WorkFileName(1), 1, kWarehouse, delivery,
                                    [&](int p) { phases.push_back(p); }, refusal), 0);
  EXPECT_TRUE(refusal.Empty()) << refusal.Str();
  EXPECT_EQ(phases, (std::vector<int>{1, 2, 3, 4}));
  EXPECT_EQ(Scalar("SELECT count(*) FROM dane_kat_tow_"), std::to_string(std::stoi(catalogue) + 1));
  const std::string added = Scalar("SELECT nr_wewn FROM dane_kat_tow_ WHERE nazwa='Nowy towar' AND dostawca=9");
  EXPECT_EQ(Scalar("SELECT ilosc FROM dane_1_stany_mg WHERE nr_wewn=" + added), "0.0000000");
  EXPECT_EQ(Scalar("SELECT string_agg(numer || ':' || nazwa, ' ' ORDER BY numer) FROM dane_dostawcy"),
            "7:Hurtownia 9:Dostawca X");
  EXPECT_EQ(Scalar("SELECT ilosc FROM dane_1_stany_mg WHERE nr_wewn=" + std::to_string(items_[2])), "0.0000000");
  std::vector<DocLine> lines;
  ASSERT_EQ(WorkLinesRead(WorkTablePath(1), lines), 0);
  ASSERT_EQ(lines.size(), 3u);
  const int32_t numbers[] = {items_[0], items_[2], std::stoi(added)};
  for (std::size_t i = 0; i < 3; ++i) {
    EXPECT_EQ(lines[i].item.number, numbers[i]);
    EXPECT_EQ(lines[i].quantity, rows[i].quantity);
    // The other firm's sale is the purchase; the sale is 125 % of it, gross to the grosz.
    EXPECT_EQ(lines[i].item.buyNet, rows[i].item.saleNet);
    const Real gross = RoundToStep(GrossFromNet(rows[i].item.saleNet * 125 / 100, rows[i].item.vat), 0.01L);
    EXPECT_NEAR(static_cast<double>(lines[i].item.saleGross), static_cast<double>(gross), 1e-7);
  }
}

// Passing appends or replaces; by the screen, to oneself and from a user whose
// session another process holds, nothing moves; his work file takes no import either.
TEST_F(WorkFileTest, PassingAppendsOrReplacesButNotToOneselfNorFromAUserAtWork) {
  ASSERT_EQ(UsersTableEnsure(), 0);
  for (const char* name : {"Jan", "Ewa"}) {
    UserRecord user;
    user.firstName = name;
    ASSERT_EQ(UserAppend(user), UserAppendOutcome::kDone);
  }
  ASSERT_EQ(WorkFileWrite(WorkFileName(1), Document(7), false), 0);
  ASSERT_EQ(WorkFileWrite(WorkFileName(2), Document(8), false), 0);
  const std::string mine = Rows(1), theirs = Rows(2);
  ASSERT_EQ(WorkFileTransfer(1, 2, true), 0);
  EXPECT_EQ(Rows(2), theirs + mine);
  ASSERT_EQ(WorkFileTransfer(2, 1, false), 0);
  EXPECT_EQ(Rows(1), theirs + mine);
  ASSERT_EQ(WorkFileTransfer(1, 3, false), 0);  // a user without a work file gets one
  EXPECT_EQ(Rows(3), theirs + mine);

  ASSERT_EQ(WorkFileWrite(WorkFileName(1), Document(7), false), 0);
  ASSERT_EQ(WorkFileToDbf(WorkFileName(1), ShortText("dane/other.dbf")), 0);
  const std::string before1 = Rows(1), before2 = Rows(2);
  EXPECT_FALSE(UserWorkingElsewhere(2));
  HoldElsewhere(2);
  EXPECT_TRUE(UserWorkingElsewhere(2));
  EXPECT_FALSE(UserWorkingElsewhere(1));
  EXPECT_TRUE(WorkFileLock(WorkFileName(2)).busy());
  int16_t code = 0;
  EXPECT_EQ(WorkFileFromDbf(WorkFileName(2), ShortText("dane/other.dbf"), DbfCodePage::kAsIs, code),
            WorkFileImport::kLocked);
  EXPECT_EQ(Rows(2), before2);
  auto key = [](KeyPair k) { return [k] { (void)PushKey(k.ch, k.scan); }; };
  auto digit = [](char d) { return [d] { (void)PushKey(static_cast<unsigned char>(d), 0); }; };
  struct Case {
    const char* what;
    std::vector<std::function<void()>> steps;
    ShortText message;
  };
  const Case cases[] = {
      {"to oneself", {digit('2'), key(keys::kDown), key(keys::kEnter), key(keys::kEnter)},
       "Wysłanie swojego pliku roboczego sobie nie jest możliwe."_mz},
      {"from a user at work", {digit('4'), key(keys::kDown), key(keys::kDown), key(keys::kEnter), key(keys::kEnter)},
       "Użytkownik nadal pracuje, albo system operacyjny nie zamknął jego zbiorów."_mz},
  };
  for (const Case& c : cases) {
    Play(c.steps);
    PassWorkFile();
    EXPECT_TRUE(Shown(c.message)) << c.what;
    EXPECT_EQ(Rows(1), before1) << c.what;
    EXPECT_EQ(Rows(2), before2) << c.what;
  }
}

// Taking the work file by the screen: a missing or empty file says so; the own form takes the rows as they are.
TEST_F(WorkFileTest, TakingByTheScreenNamesAMissingOrEmptyFileAndTakesOwnRows) {
  std::vector<WorkFileRow> rows = Document(7);
  struct Case {
    const char* what;
    std::function<void()> prepare;
    std::vector<std::function<void()>> steps;
    ShortText message;
    bool taken;
  };
  const Case cases[] = {
      {"no work file", [] {}, {}, "Plik roboczy nie istnieje."_mz, false},
      {"an empty one", [] { ASSERT_EQ(CreateWorkFile(WorkFileName(1)), 0); }, {}, "Plik roboczy jest pusty."_mz, false},
      {"own rows", [&] { ASSERT_EQ(WorkFileWrite(WorkFileName(1), rows, false), 0); },
       {[] { (void)PushKey('1', 0); }}, "Trwa dopisywanie do specyfikacji..."_mz, true},
  };
  for (const Case& c : cases) {
    c.prepare();
    Play(c.steps);
    EXPECT_EQ(AddWorkFileToSpecification(kWarehouse), c.taken) << c.what;
    EXPECT_TRUE(Shown(c.message) || Sent(c.message.Str().c_str())) << c.what;
  }
  std::vector<DocLine> lines;
  ASSERT_EQ(WorkLinesRead(WorkTablePath(1), lines), 0);
  ASSERT_EQ(lines.size(), rows.size());
  for (std::size_t i = 0; i < rows.size(); ++i) {
    EXPECT_EQ(lines[i].item.number, rows[i].item.number);
    EXPECT_EQ(lines[i].quantity, rows[i].quantity);
    EXPECT_EQ(lines[i].item.saleGross, rows[i].item.saleGross);  // the line's own price
  }
}

}  // namespace
