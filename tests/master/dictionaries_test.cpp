// Dictionaries and VAT groups: the 29-group limit, keys taken, the rows
// that never go, renaming the exempt group, and the rate of a group text.
#include <gtest/gtest.h>

#include "contractors_fixture.h"
#include "base/dates.h"
#include "master/dictionaries.h"
#include "master/tables.h"
#include "tui/keyboard.h"

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

TEST_F(DictionaryTables, KmRateByDateFromTheRowInForce) {
  ASSERT_EQ(KmRateTableEnsure(), 0);
  const auto day = [](int y, int m, int d) { return EncodeDaySerial(y, m, d); };
  EXPECT_EQ(KmRateLookup(day(2024, 1, 1)).outcome, KmRateOutcome::kEmptyTable);
  ASSERT_TRUE(Psql("INSERT INTO dane_stawkikm (data, stawka) VALUES ('2023-01-01', 0.8358), ('2023-07-01', 0.89), "
                   "('2024-01-01', 1.15)"));
  struct Case {
    int32_t day;
    Real rate;
    KmRateOutcome outcome;
  } cases[] = {{day(2023, 1, 1), Real(0.8358), KmRateOutcome::kFound},   // the date of a row
               {day(2023, 6, 30), Real(0.8358), KmRateOutcome::kFound},  // between rows: the one before
               {day(2023, 7, 1), Real(0.89), KmRateOutcome::kFound},
               {day(2030, 5, 5), Real(1.15), KmRateOutcome::kFound},     // past the last row
               {day(2022, 12, 31), 0, KmRateOutcome::kOutOfRange}};      // before the first row
  for (const Case& c : cases) {
    const KmRateResult r = KmRateLookup(c.day);
    EXPECT_EQ(r.code, 0);
    EXPECT_NEAR(static_cast<double>(r.rate), static_cast<double>(c.rate), 1e-9) << c.day;
    EXPECT_EQ(r.outcome, c.outcome) << c.day;
  }
  Play({{{keys::kEnter}}});
  EXPECT_EQ(KmRateFor(day(2000, 1, 1), false), 0);
  EXPECT_TRUE(Shown("Data poza zakresem tabeli stawek."_mz));
}

TEST_F(DictionaryTables, RebuildFromTheCatalogueAddsOnlyMissingValuesOnce) {
  CreateFirmTables();
  ASSERT_TRUE(Psql("INSERT INTO dane_kat_tow_ (nazwa, nazwa_, cena_z_n, cena_z_b, vat, sww, czy_od_pl_vat, nr_wewn) "
                   "SELECT n, '', 0, 0, v, '', '', g FROM (VALUES ('A', '23', 1), ('B', '8', 2), ('C', '23', 3), "
                   "('D', '', 4)) AS t(n, v, g)"));
  ASSERT_EQ(DictionaryEnsure(ShortText(kVatDictionary)), 0);
  ASSERT_EQ(DictionaryAdd(ShortText(kVatDictionary), {ShortText("8"), ShortText("osiem"), ShortText("N")}),
            DictionaryOutcome::kDone);
  ASSERT_EQ(RebuildDictionaryFromCatalogue(ShortText("vat")), 0);
  ASSERT_EQ(RebuildDictionaryFromCatalogue(ShortText("vat")), 0);  // again: nothing more
  EXPECT_EQ(Scalar("SELECT string_agg(indeks || ':' || opis || ':' || czy_byl_obrot, ',' ORDER BY indeks) "
                   "FROM dane_pola_ind_vat"),
            "23:23=:T,8:osiem:N");
  EXPECT_NE(RebuildDictionaryFromCatalogue(ShortText("cena_z_n")), 0);  // no text column
  EXPECT_NE(RebuildDictionaryFromCatalogue(ShortText("vat; DROP TABLE x")), 0);
}

TEST(DictionarySearch, FirstValueByItsStart) {
  const std::vector<DictionaryEntry> rows = {{ShortText("5"), {}, {}}, {ShortText("ZW"), {}, {}},
                                             {"Żółte"_mz, {}, {}}, {ShortText("zwol."), {}, {}}};
  struct Case {
    ShortText start;
    int place;
  } cases[] = {{ShortText("z"), 1}, {ShortText("ZWO"), 3}, {"żó"_mz, 2}, {ShortText("5"), 0}, {ShortText("x"), -1}};
  for (const Case& c : cases) EXPECT_EQ(DictionaryFindStart(rows, c.start), c.place) << c.start.Str();
}

}  // namespace
