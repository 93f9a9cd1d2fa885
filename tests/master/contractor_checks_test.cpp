// The checks before a write: likeness of texts, the repeat question of the
// add form by configured percent, and the warehouse one contractor holds.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "config/konfigur.h"
#include "contractors_fixture.h"
#include "master/contractor_screens.h"
#include "master/tables.h"
#include "sqltable/pgtable.h"
#include "users/users.h"
#include "tui/keyboard.h"

namespace {

using keys::kEnter;

TEST(ContractorChecks, SimilarityPercent) {
  struct Case {
    const char* a;
    const char* b;
    int percent;
  } cases[] = {
      {"Kowalski", "KOWALSKI", 100},         {"526-025-02-74", "5260250274", 100}, {"", "", 0},
      {"Kowalski", "", 0},                   {"Kowalski", "Kowalsky", 200 * 6 / 14},  // KO OW WA AL LS SK | KI/KY
      {"AB", "BA", 0},                       {"A", "A", 100},                      {"A", "B", 0},
      {"ABAB", "AB", 200 * 1 / 4},  // AB BA AB against AB: one pair in common
  };
  for (const Case& c : cases) EXPECT_EQ(SimilarityPercent(ShortText(c.a), ShortText(c.b)), c.percent) << c.a << "|" << c.b;
}

using ContractorCheckScreens = ContractorsTest;

TEST_F(ContractorCheckScreens, RepeatCheckAsksForEachAlikeFieldAndNoStopsTheAdd) {
  Contractor stored = Named(ShortText("Kowalski"), ShortText("Radom"));
  stored[KontrahentCol::nip] = ShortText("526-025-02-74");
  ASSERT_EQ(ContractorAdd(ContractorKind::kCustomer, stored, NumberRange{}), ContractorOutcome::kDone);
  const KeyPair f10 = keys::F(10);
  struct Case {
    const char* what;
    int percent;
    std::vector<KeyPair> answer;  // to the question, if one comes
    std::string rows;
    ShortText shown;
  };
  const Case cases[] = {
      {"off: added without a question", 0, {}, "1:Kowalski:Radom\n2:Kowalsky:", ShortText()},
      {"alike name, no", 60, {kNo}, "1:Kowalski:Radom",
       "Kontrola powtórzenia nazwy@Jest już na liście odbiorca@podobnym do `Kowalski@Czy pomimo to chcesz kontynuować dopisywanie ?"_mz},
      {"alike name, yes", 60, {kYes}, "1:Kowalski:Radom\n2:Kowalsky:", ShortText()},
      {"not alike enough", 90, {}, "1:Kowalski:Radom\n2:Kowalsky:", ShortText()},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    ASSERT_TRUE(Psql("DELETE FROM dane_odbiorcy WHERE numer > 1"));
    ConfigSettings().SetNumber(83, static_cast<int16_t>(c.percent));
    Play({{{keys::kIns}}, {Typed("Kowalsky", {f10})}, {c.answer}, {{keys::kEsc}}});
    ContractorCatalogue(ContractorKind::kCustomer);
    EXPECT_EQ(Rows(ContractorKind::kCustomer), c.rows);
    if (!c.shown.Empty()) {
      EXPECT_TRUE(Shown(c.shown));
    }
  }
  // The NIP is compared without its dashes.
  Contractor again = Named(ShortText("Zupełnie inny"_mz));
  again[KontrahentCol::nip] = ShortText("5260250274");
  std::vector<RepeatMatch> matches;
  ASSERT_EQ(ContractorSimilarRows(ContractorKind::kCustomer, again, 100, matches), 0);
  ASSERT_EQ(matches.size(), 1u);
  EXPECT_EQ(matches[0].column, KontrahentCol::nip);
  EXPECT_EQ(matches[0].value.Str(), "526-025-02-74");
  ConfigSettings().SetNumber(83, 0);
}

TEST_F(ContractorCheckScreens, AWarehouseHeldByAnotherContractorIsLinkedOnlyAfterYes) {
  const auto links = [] { return Scalar("SELECT string_agg(nr_kon || '-' || nr_mag, ',' ORDER BY nr_kon) FROM dane_odb_mag_"); };
  ASSERT_TRUE(LinkWarehouseAsked(ContractorKind::kCustomer, 1, 5));
  ASSERT_TRUE(LinkWarehouseAsked(ContractorKind::kCustomer, 1, 5));  // the same link again stays one
  EXPECT_EQ(links(), "1-5");
  Play({{{kNo}}});
  EXPECT_FALSE(LinkWarehouseAsked(ContractorKind::kCustomer, 2, 5));
  EXPECT_TRUE(Shown("Inny kontrahent (nr 1) ma przyporządkowany@ten sam magazyn (nr 5)@Czy tak ma być ?"_mz));
  EXPECT_EQ(links(), "1-5");
  Play({{{kYes}}});
  EXPECT_TRUE(LinkWarehouseAsked(ContractorKind::kCustomer, 2, 5));
  EXPECT_EQ(links(), "1-5,2-5");
}

// 321 warehouses: the 321st mark is refused with the system's message, Esc keeps the marks as they came.
TEST_F(ContractorCheckScreens, TheThreeHundredTwentyFirstWarehouseCannotBeMarked) {
  ASSERT_TRUE(Psql("INSERT INTO dane_magazyny (nazwa, nazwa_inne, numer) SELECT 'Magazyn ' || g, '', g "
                   "FROM generate_series(1, 321) g"));
  std::vector<int32_t> start;
  for (int32_t n = 2; n <= kMaxMarkedWarehouses; ++n) start.push_back(n);
  std::vector<int32_t> marks = start;
  Play({{{keys::kHome, KeyOfByte(' '), keys::kDown, KeyOfByte(' '), KeyOfByte(' '), keys::kEnd, KeyOfByte(' ')}},
        {{keys::kEnter}},
        {{keys::kEnter}}});
  EXPECT_TRUE(MergeWarehouseSelection(marks));
  EXPECT_TRUE(Shown("Można zaznaczyć do 320 magazynów, a ten limit wyczerpano."_mz));
  std::sort(marks.begin(), marks.end());
  ASSERT_EQ(marks.size(), static_cast<std::size_t>(kMaxMarkedWarehouses));
  EXPECT_EQ(marks.front(), 1);
  EXPECT_EQ(marks.back(), kMaxMarkedWarehouses);
  marks = start;
  Play({{{keys::kHome, KeyOfByte(' '), keys::kEsc}}});
  EXPECT_FALSE(MergeWarehouseSelection(marks));
  EXPECT_EQ(marks, start);
}

// The catalogues menu's fourth row: customers named by a goods document or a
// cash document stay; the others go.
TEST_F(ContractorCheckScreens, CustomersWithoutTurnoverGoAfterTheQuestions) {
  struct Case {
    const char* what;
    bool manager;
    std::vector<KeyStep> steps;
    std::string rows;
    std::vector<ShortText> shown;
  };
  const KeyStep menu{{KeyOfByte('4')}};
  const Case cases[] = {
      {"not the manager", false, {menu, {{keys::kEnter}}}, "1:A:\n2:B:\n3:C:\n4:D:",
       {"Funkcja kasowania odbiorców, z którymi nie ma obrotów@jest zarezerwowana dla `Kierownika Systemu\""_mz}},
      {"users not told", true, {menu, {{kNo}}, {{keys::kEnter}}}, "1:A:\n2:B:\n3:C:\n4:D:",
       {"W takim razie nie możesz użyć funkcji kasowania odbiorców,@z którymi nie ma obrotów."_mz}},
      {"deleted and listed", true, {menu, {{kYes}}, {{kYes}}, {{kYes}}, {{keys::kEnter}}}, "2:B:\n3:C:",
       {"Czy na pewno chcesz skasować odbiorców, z którymi nie ma obrotów ?"_mz, "         1 A"_mz}},
  };
  const Contractor w = AddNamed(ContractorKind::kWarehouse, ShortText("Magazyn"));
  AddHeaders(w.number, "(2, 1, 'X', 2)");
  ASSERT_TRUE(Psql("INSERT INTO " + PGSqlName(WarehouseTablePath(w.number, "kasa____")).Str() +
                   " (typ_dok, nr_dok, znak_dok, nr_kontrahenta, typ_kontrahenta) VALUES (50, 1, 'K', 3, 'O'), (50, 2, 'K', 4, 'd')"));
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    ASSERT_TRUE(Psql("DELETE FROM dane_odbiorcy"));
    for (const char* name : {"A", "B", "C", "D"}) AddNamed(ContractorKind::kCustomer, ShortText(name));
    ASSERT_TRUE(Psql("UPDATE dane_odbiorcy SET numer = ascii(nazwa) - 64"));
    if (!c.manager) ClearCurrentUser();
    Play(c.steps);
    ContractorCataloguesMenu();
    EXPECT_EQ(Rows(ContractorKind::kCustomer), c.rows);
    for (const ShortText& text : c.shown) EXPECT_TRUE(Shown(text)) << text.Str();
    LogInManager();
  }
}

// Customers and suppliers kept alike: a new customer is offered to the
// suppliers, a changed one writes over a supplier of another name after a yes.
TEST_F(ContractorCheckScreens, CustomersAndSuppliersKeptAlike) {
  const KeyPair f10 = keys::F(10);
  ConfigSettings().SetNumber(160, 1);
  Play({{{keys::kIns}}, {Typed(ShortText("Alfa"), {f10})}, {{kYes}}, {{keys::kIns}}, {Typed(ShortText("Beta"), {f10})},
        {{kNo}}, {{keys::kEsc}}});
  ContractorCatalogue(ContractorKind::kCustomer);
  EXPECT_TRUE(Shown("W katalogu `dostawców\" nie ma kontrahenta o takim numerze.@Czy dopisać go tam ?@(Radzę tak)."_mz));
  EXPECT_EQ(Rows(ContractorKind::kSupplier), "1:Alfa:");
  ASSERT_TRUE(Psql("UPDATE dane_dostawcy SET nazwa = 'Gamma'"));
  // The list in name order: Alfa under the bar; its town is changed.
  for (const KeyPair answer : {kNo, kYes}) {
    Play({{{kEnter}}, {Typed(ShortText(""), {keys::kDown, keys::kDown, keys::kDown})}, {Typed(ShortText("Radom"), {f10})},
          {{answer}}, {{keys::kEsc}}});
    ContractorCatalogue(ContractorKind::kCustomer);
    EXPECT_TRUE(Shown("W katalogu `dostawców\" jest kontrahent o takim numerze i nazwie:@Gamma@Czy zmienić mu dane na takie, jakie mu teraz wpisałe(aś) ?"_mz));
    EXPECT_EQ(Rows(ContractorKind::kSupplier), answer == kYes ? "1:Alfa:Radom" : "1:Gamma:");
    ASSERT_TRUE(Psql("UPDATE dane_odbiorcy SET miasto = ''"));
  }
  ConfigSettings().SetNumber(160, 0);
}

}  // namespace
