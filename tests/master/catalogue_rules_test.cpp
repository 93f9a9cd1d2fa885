// Rules of the catalogues' screens by keys on the real server: the VAT flag
// of a contractor with turnover, what a place of the program allows in a
// dictionary, and the list of a large dictionary.
#include <gtest/gtest.h>

#include "base/text.h"
#include "contractors_fixture.h"
#include "master/contractor_screens.h"
#include "master/dictionaries.h"
#include "master/dictionary_screens.h"
#include "master/tables.h"
#include "tui/keyboard.h"

namespace {

using keys::kEnter;
using keys::kEsc;
const ShortText kKomentarze("dane\\pola_ind\\komentar");

using CatalogueRules = ContractorsTest;

// The flag of a customer whom a document names changes only after a yes;
// one without documents changes without the question.
TEST_F(CatalogueRules, VatFlagOfAContractorWithTurnoverAsksFirst) {
  ASSERT_EQ(CreateTableFrom(ShortText("dane\\dok_plat"), kDokPlatDef), 0);
  const Contractor w = AddNamed(ContractorKind::kWarehouse, ShortText("Magazyn"));
  for (const char* name : {"Kupiec", "Nowy"}) AddNamed(ContractorKind::kCustomer, ShortText(name));
  AddHeaders(w.number, "(2, 1, 'A', 1)");
  const ShortText question = "Jeżeli z tym kontrahentem był wykonany jakikolwiek obrót, nie należy zmieniać"_mz;
  const struct {
    int32_t number;
    std::vector<KeyPair> answer;
    bool asked;
    const char* flag;
  } cases[] = {{1, {kNo}, true, "T"}, {1, {kYes}, true, "N"}, {2, {}, false, "N"}};
  for (const auto& c : cases) {
    ASSERT_TRUE(Psql("UPDATE dane_odbiorcy SET czy_podmiot_gosp = 'T'"));
    Play({{Repeat(kEnter, 5)}, {{keys::kBackspace}}, {Typed("N", {keys::F(10)})}, {c.answer}});
    (void)ChangeContractor(ContractorKind::kCustomer, c.number);
    EXPECT_EQ(Shown(question), c.asked) << c.number;
    EXPECT_EQ(Scalar("SELECT czy_podmiot_gosp FROM dane_odbiorcy WHERE numer = " + std::to_string(c.number)), c.flag);
  }
}

// A place that allows nothing refuses each key with its message and keeps the rows.
TEST_F(CatalogueRules, DictionaryKeysRefusedWhereThePlaceForbidsThem) {
  ASSERT_EQ(DictionaryEnsure(kKomentarze), 0);
  ASSERT_EQ(DictionaryAdd(kKomentarze, {ShortText("A"), ShortText("jeden"), ShortText("N")}), DictionaryOutcome::kDone);
  const struct {
    KeyPair key;
    ShortText message;
  } cases[] = {{keys::kIns, "Dopisywanie w tym miejscu programu nie jest możliwe."_mz},
               {keys::kDel, "Usuwanie w tym miejscu programu nie jest możliwe."_mz},
               {KeyPair{10, 28}, "Edycja w tym miejscu programu nie jest możliwa."_mz}};
  for (const auto& c : cases) {
    Play({{{c.key}}, {{kEnter}}, {{kEsc}}});
    ShortText value;
    EXPECT_FALSE(DictionaryList(ShortText("komentarze"), kKomentarze, false, value, DictionaryUse{false, false, false}));
    EXPECT_TRUE(Shown(c.message));
    EXPECT_EQ(Scalar("SELECT string_agg(indeks || ':' || opis, ',') FROM dane_pola_ind_komentar"), "A:jeden");
  }
}

// Below 1000 rows the whole list opens; from 1000 on the start of a value is
// asked and the rows from there are listed.
TEST_F(CatalogueRules, CopyListChoosesTheRoutineBySize) {
  ASSERT_EQ(DictionaryEnsure(kKomentarze), 0);
  const ShortText start = "Wprowadź początek szukanej danej:"_mz;
  const struct {
    int rows;
    std::vector<KeyStep> steps;
    const char* chosen;
    bool startAsked;
  } cases[] = {{999, {{{keys::kDown, kEnter}}}, "K0002", false},
               {1000, {{Typed(ShortText("K05"), {kEnter})}, {{keys::kDown, kEnter}}}, "K0501", true}};
  for (const auto& c : cases) {
    ASSERT_TRUE(Psql("DELETE FROM dane_pola_ind_komentar"));
    ASSERT_TRUE(Psql("INSERT INTO dane_pola_ind_komentar (indeks, opis, czy_byl_obrot) SELECT 'K' || lpad(g::text, 4, "
                     "'0'), 'opis', 'N' FROM generate_series(1, " + std::to_string(c.rows) + ") g"));
    Play(c.steps);
    ShortText value;
    EXPECT_TRUE(DictionaryCopyList(ShortText("komentarze"), kKomentarze, true, value)) << c.rows;
    EXPECT_EQ(TrimRightAll(value, ' ').Str(), c.chosen);
    EXPECT_EQ(Shown(start), c.startAsked);
  }
}

}  // namespace
