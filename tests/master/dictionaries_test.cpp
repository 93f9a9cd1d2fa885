// Dictionaries and VAT groups: the 29-group limit, keys taken, the rows
// that never go, renaming the exempt group, and the rate of a group text.
#include <gtest/gtest.h>

#include "contractors_fixture.h"
#include "master/dictionaries.h"

namespace {

TEST(VatRate, NumberOfAGroupText) {
  struct Case {
    const char* text;
    Real rate;
    bool noVat;
  } cases[] = {{"23", 23, false}, {" 8 ", 8, false}, {"zwol.", 0, true}, {"", 0, true},
               {"-100", -100, true}, {"5.5", Real(5.5), false}, {"np.", 0, true}};
  for (const Case& c : cases) {
    EXPECT_EQ(VatRateNumber(ShortText(c.text)), c.rate) << c.text;
    EXPECT_EQ(VatRateMeansNoVat(VatRateNumber(ShortText(c.text))), c.noVat) << c.text;
  }
}

using DictionaryTables = ContractorsTest;

TEST_F(DictionaryTables, VatGroupsStopAt29AndTheExemptGroupSurvives) {
  const ShortText vat(kVatDictionary);
  ASSERT_EQ(DictionaryEnsure(vat), 0);
  bool has = true;
  ASSERT_EQ(VatHasExemptGroup(has), 0);
  EXPECT_FALSE(has);
  ASSERT_EQ(VatAddExemptGroup(), DictionaryOutcome::kDone);
  ASSERT_EQ(VatHasExemptGroup(has), 0);
  EXPECT_TRUE(has);
  for (int rate = 1; rate <= kMaxVatGroups - 1; ++rate)
    ASSERT_EQ(VatGroupAdd(ShortText(std::to_string(rate)), ShortText("stawka")), DictionaryOutcome::kDone) << rate;
  EXPECT_EQ(VatGroupAdd(ShortText("99"), ShortText("za duzo")), DictionaryOutcome::kFull);
  EXPECT_EQ(DictionaryDelete(vat, ShortText(kExemptGroup)), DictionaryOutcome::kRefused);
  EXPECT_EQ(DictionaryChange(vat, ShortText(kExemptGroup), DictionaryEntry{ShortText("zw"), ShortText("x"), {}}),
            DictionaryOutcome::kRefused);
  EXPECT_EQ(DictionaryChange(vat, ShortText(kExemptGroup),
                             DictionaryEntry{ShortText(kExemptGroup), ShortText("nowy opis"), {}}),
            DictionaryOutcome::kDone);
  EXPECT_EQ(DictionaryChange(vat, ShortText("1"), DictionaryEntry{ShortText("2"), ShortText("x"), {}}),
            DictionaryOutcome::kDuplicate);
  ASSERT_EQ(DictionaryDelete(vat, ShortText("1")), DictionaryOutcome::kDone);
  EXPECT_EQ(DictionaryDelete(vat, ShortText("1")), DictionaryOutcome::kGone);
  EXPECT_EQ(VatGroupAdd(ShortText("2"), ShortText("znowu")), DictionaryOutcome::kDuplicate);
  std::vector<DictionaryEntry> rows;
  ASSERT_EQ(DictionaryRead(vat, rows), 0);
  EXPECT_EQ(rows.size(), static_cast<std::size_t>(kMaxVatGroups - 1));
  EXPECT_EQ(Scalar("SELECT opis || '/' || czy_byl_obrot FROM dane_pola_ind_vat WHERE indeks = 'zwol.'"), "nowy opis/N");
}

TEST_F(DictionaryTables, ProtectedRowsOfEachDictionary) {
  struct Case {
    const char* path;
    ShortText indeks, opis;
    ShortText refusal;
  } cases[] = {
      {"dane\\przelicr", ShortText("+"), "PLN (polski złoty)"_mz,
       "Kasowanie tego przelicznika nie jest możliwe ze względu@na możliwość uszkodzenia poprawności działania programu."_mz},
      {"dane\\pola_ind\\forma_p", " gotówką"_mz, ShortText(),
       "Kasowanie takiej formy płatności nie jest możliwe ze względu@na możliwość uszkodzenia poprawności działania programu."_mz},
      {"dane\\pola_ind\\komentar", ShortText("96-01-01"), "nieusuwalna dana pomocn."_mz,
       "Skasowanie tej danej nie jest możliwe ze względu@na możliwość uszkodzenia poprawności działania programu."_mz},
      {"dane\\pola_ind\\forma_p", ShortText("przelew"), ShortText(), ShortText()},
  };
  for (const Case& c : cases) {
    const ShortText path(c.path);
    SCOPED_TRACE(c.path);
    EXPECT_EQ(DictionaryDeleteRefusal(path, DictionaryEntry{c.indeks, c.opis, {}}), c.refusal);
    ASSERT_EQ(DictionaryEnsure(path), 0);
    ASSERT_EQ(DictionaryAdd(path, DictionaryEntry{c.indeks, c.opis, {}}), DictionaryOutcome::kDone);
    EXPECT_EQ(DictionaryDelete(path, c.indeks),
              c.refusal.Empty() ? DictionaryOutcome::kDone : DictionaryOutcome::kRefused);
  }
}

}  // namespace
