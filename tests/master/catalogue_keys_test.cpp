// The keys of the contractor list that lead out of it, and the printed
// catalogues, by keys on the real server: a print taken to a file is checked
// byte for byte against the text built here from the test's own rows.
#include <gtest/gtest.h>

#include <filesystem>

#include "base/file_fixture.h"
#include "contractors_fixture.h"
#include "master/catalogue_print.h"
#include "master/contractor_screens.h"
#include "master/dictionaries.h"
#include "master/dictionary_screens.h"
#include "base/paths.h"
#include "tui/keyboard.h"
#include "users/users.h"

namespace {

using file_test::ReadBytes;
using keys::kEnter;
using keys::kEsc;

// The steps, then the destination "do pliku do wydruku" with the name typed over
// the proposal and Mazovia chosen, then the steps after.
std::vector<KeyStep> ToFile(std::vector<KeyStep> steps, const char* name, const std::vector<KeyStep>& after) {
  steps.insert(steps.end(), {{{KeyOfByte('3')}}, {Typed(name, {kEnter}), [] {
                               for (int i = 0; i < 12; ++i) (void)PushKey(keys::kBackspace.ch, keys::kBackspace.scan);
                             }},
                             {{KeyOfByte('1')}}});
  steps.insert(steps.end(), after.begin(), after.end());
  return steps;
}

struct Row {
  int32_t number;
  ShortText name, town, nip, vat;
};

class CatalogueKeys : public ContractorsTest {
 protected:
  void SetUp() override {
    ContractorsTest::SetUp();
    for (const Row& r : rows_) {
      Contractor c = Named(r.name, r.town);
      c.number = r.number;
      c[KontrahentCol::nip] = r.nip;
      c[KontrahentCol::czy_podmiot_gosp] = r.vat;
      c.discount = r.number == 3 ? 2.5L : 0;
      ASSERT_EQ(ContractorAdd(ContractorKind::kCustomer, c, NumberRange{}), ContractorOutcome::kDone);
    }
  }
  // The print of customers as this test lays it out: the heading and a blank
  // line, then 15 lines a row, lines ending in CR LF.
  static std::string Expected(const std::vector<Row>& rows) {
    const std::string heading = "Katalog odbiorców"_mz.Str() + "\r\n\r\n";
    std::string out = heading;
    int onPage = 0;
    for (const Row& r : rows) {
      if (onPage++ == 3) out += "\f" + heading, onPage = 1;  // 2 + 3 * 15 lines of 60

      const std::string vat = r.vat == ShortText("N") ? " [nie jest płatnikiem VAT]"_mz.Str() : " [jest płatnikiem VAT]"_mz.Str();
      for (const std::string& line :
           {"Nazwa: " + r.name.Str(), std::string("Nazwa, inne: "), "Numer: " + std::to_string(r.number) + vat,
            "Adres: " + r.town.Str(), "NIP: " + r.nip.Str(), std::string("REGON: "), std::string("PESEL: "),
            "NUMER REJ.DZIAŁALNOŚCI: "_mz.Str(), std::string("Konto: "), std::string("Symb.FK: "),
            std::string("Telefony: "), std::string("e-mail: "), std::string("Adres do korespondencji: "),
            std::string(r.number == 3 ? "rabat: 2.50" : "rabat: 0.00"), std::string(79, '-')})
        out += line + "\r\n";
    }
    return out;
  }
  const std::vector<Row> rows_ = {{1, ShortText("Kowalski"), ShortText("Radom"), ShortText("796-000-11-22"), ShortText("T")},
                                  {2, "Zakład Żółć"_mz, ShortText("Kielce"), ShortText(""), ShortText("N")},
                                  {3, ShortText("Nowak"), ShortText("Radom"), ShortText(""), ShortText("T")},
                                  {4, ShortText("Adamski"), ShortText("Radom"), ShortText(""), ShortText("T")}};
};

// F5: the range, the towns and the sort as asked; the file holds exactly those rows.
TEST_F(CatalogueKeys, PrintOfTheCatalogueToAFile) {
  const KeyPair bs = keys::kBackspace;
  struct Case {
    const char* what;
    std::vector<KeyStep> ask;  // after F5, up to the destination dialog
    std::vector<int> rows;     // indexes into rows_, in print order
  };
  const Case cases[] = {
      {"every number, every town, by number", {{{kEnter, kEnter}}, {{kNo}}, {{KeyOfByte('2')}}}, {0, 1, 2, 3}},
      {"numbers 2 to 3 in Radom, by name",
       {{{bs, KeyOfByte('2'), kEnter}}, {Repeat(bs, 10)}, {{KeyOfByte('3'), kEnter}}, {{kYes}}, {{keys::kDown, kEnter}},
        {{kEsc}}, {{KeyOfByte('1')}}},
       {2}},
  };
  for (const Case& c : cases) {
    std::vector<KeyStep> ask{{{keys::F(5)}}};
    ask.insert(ask.end(), c.ask.begin(), c.ask.end());
    Play(ToFile(ask, "kat.txt", {{{kEsc}}}));
    ContractorCatalogue(ContractorKind::kCustomer);
    std::vector<Row> expected;
    for (int i : c.rows) expected.push_back(rows_[static_cast<std::size_t>(i)]);
    EXPECT_EQ(ReadBytes("kat.txt"), Expected(expected)) << c.what;
    EXPECT_TRUE(Shown("Czy chcesz ograniczyć zestawienie do odbiorców z wybranych miast ?"_mz)) << c.what;
    EXPECT_TRUE(Shown("Posortować wydruk według:"_mz)) << c.what;
  }
}

// Ctrl+F3 keeps a customer's note in its file, which goes with the row, and
// a warehouse's printing data.
TEST_F(CatalogueKeys, CtrlF3KeepsTheNoteAndTheWarehousesPrintingData) {
  const Contractor w = AddNamed(ContractorKind::kWarehouse, ShortText("Sklep"), 0, true);
  const struct {
    ContractorKind kind;
    ShortText path, title;  // the bar's row: Adamski (4), the one warehouse
  } cases[] = {{ContractorKind::kCustomer, ContractorNotePath(ContractorKind::kCustomer, 4), "Edycja notatki:"_mz},
               {ContractorKind::kWarehouse, WarehousePrintDataPath(w.number),
                "Edycja danych magazynu umieszczanych na fakturach i wydaniach towaru"_mz}};
  for (const auto& c : cases) {
    Play({{{KeyPair{0, 96}}}, {Typed(ShortText("pilne"), {keys::F(10)})}, {{kEsc}}});
    ContractorCatalogue(c.kind);
    EXPECT_TRUE(Shown(c.title));
    EXPECT_EQ(ReadBytes(PathToUnix(c.path).Str()), "pilne\n");
  }
  Play({{{kYes}}});
  ASSERT_TRUE(DeleteContractor(ContractorKind::kCustomer, 4));
  EXPECT_FALSE(file_test::Exists(PathToUnix(cases[0].path).Str()));
}

// F7: a customer linked to a chosen warehouse; in the warehouses, the marks
// stored. F2 and F4 without registered functions do nothing: the F7 after them
// still reaches the list, whose keys are on its bottom row.
TEST_F(CatalogueKeys, F7LinksAWarehouseAndStoresMarks) {
  for (int32_t n : {10, 20}) AddNamed(ContractorKind::kWarehouse, ShortText("Mag " + std::to_string(n)), n, true);
  Play({{{keys::F(2), keys::F(4), keys::F(7)}}, {{keys::kDown, kEnter}}, {{kEsc}}});
  ContractorCatalogue(ContractorKind::kCustomer);
  EXPECT_TRUE(Shown("╫ç-należn. ╫ë-dokumenty ╫è-druk ╫ï-do/z DBF"_mz));
  EXPECT_EQ(Scalar("SELECT string_agg(nr_kon || '>' || nr_mag, ',') FROM dane_odb_mag_"), "4>20");
  Play({{{keys::F(7)}}, {{KeyOfByte(' '), keys::kDown, KeyOfByte(' '), kEnter}}, {{kEsc}}});
  ContractorCatalogue(ContractorKind::kWarehouse);
  EXPECT_EQ(ReadMergedWarehouses(), (std::vector<int32_t>{10, 20}));
  file_test::WriteBytes(PathToUnix(MergedWarehousesPath()).Str(), "7\nx\n-3\n12abc\n7\n2147483648\n9\n");
  EXPECT_EQ(ReadMergedWarehouses(), (std::vector<int32_t>{7, 9}));  // bad and repeated lines skipped
  EXPECT_TRUE(Shown("Podaj, czy dodawać stan tego magazynu do widocznego w opcji `Wprowadzanie\":"_mz));
}

// F5 of a dictionary prints its rows; F6 takes them out to its dBASE file and
// back in, where a key on the list stays as it is.
TEST_F(CatalogueKeys, DictionaryPrintAndDbfExchange) {
  const ShortText path("dane\\pola_ind\\komentar");
  const std::string rows = "SELECT string_agg(indeks || ':' || opis || ':' || czy_byl_obrot, ',' ORDER BY indeks) "
                           "FROM dane_pola_ind_komentar";
  ASSERT_EQ(DictionaryEnsure(path), 0);
  std::filesystem::create_directories(PathToUnix(UserDirectory(0)).Str());
  ASSERT_EQ(DictionaryAdd(path, {ShortText("A1"), "pilne zlecenie żółte"_mz, ShortText("T")}), DictionaryOutcome::kDone);
  ASSERT_EQ(DictionaryAdd(path, {ShortText("B2"), ShortText("zwykle"), ShortText("")}), DictionaryOutcome::kDone);
  const std::string both = Scalar(rows);
  Play(ToFile({{{keys::F(5)}}}, "slow.txt", {{{keys::F(6)}}, {{KeyOfByte('1')}}, {{kEsc}}}));
  ShortText unused;
  EXPECT_FALSE(DictionaryList(ShortText("komentarze"), path, false, unused));
  std::string expected = "Katalog komentarze\r\n\r\n";
  expected += "A1              | " + "pilne zlecenie żółte"_mz.Str() + std::string(30, ' ') + " | T\r\n";
  expected += "B2              | zwykle" + std::string(44, ' ') + " | N\r\n";
  EXPECT_EQ(ReadBytes("slow.txt"), expected);
  ASSERT_TRUE(Psql("DELETE FROM dane_pola_ind_komentar WHERE indeks = 'A1'"));
  ASSERT_TRUE(Psql("UPDATE dane_pola_ind_komentar SET opis = 'zmienione'"));
  Play({{{keys::F(6)}}, {{KeyOfByte('2')}}, {{KeyOfByte('1')}}, {{kEsc}}});
  EXPECT_FALSE(DictionaryList(ShortText("komentarze"), path, false, unused));
  EXPECT_EQ(Scalar(rows), both.substr(0, both.find(',')) + ",B2:zmienione:N");
}

// Pages of 4 lines: the heading and two values each; a full page opens no empty one.
TEST(CataloguePages, FullPagesAndTheEmptyPrint) {
  const std::string head = "Katalog x\r\n\r\n";
  const auto row = [](char k) { return std::string(1, k) + std::string(14, ' ') + " | " + std::string(50, ' ') + " | N\r\n"; };
  const struct {
    std::string keys, expected;
  } cases[] = {{"", head}, {"ab", head + row('a') + row('b')}, {"abc", head + row('a') + row('b') + "\f" + head + row('c')}};
  for (const auto& c : cases) {
    std::vector<DictionaryEntry> rows;
    for (char k : c.keys) rows.push_back({ShortText(std::string(1, k)), ShortText(), ShortText("N")});
    EXPECT_EQ(FormatDictionaryCatalogue(ShortText("x"), rows, 4), c.expected) << c.keys;
  }
}

}  // namespace
