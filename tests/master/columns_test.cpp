// The named column numbers against the column lists, and the warehouse folder rule.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "master/tables.h"

namespace {

struct NamedColumn {
  int number;
  std::string name;
};

// Every enumerator of a column struct names the column at its number.
void ExpectAgree(const std::vector<NamedColumn>& numbers, int count, const TableDef& def, const char* table) {
  ASSERT_EQ(static_cast<int>(def.columns.size()), count) << table;
  ASSERT_EQ(numbers.size(), def.columns.size()) << table;
  for (const NamedColumn& c : numbers) {
    EXPECT_EQ(def.columns[static_cast<std::size_t>(c.number - 1)].name, std::string(ColumnSqlName(c.name.c_str()))) << table << " column " << c.number;
  }
}

#define ENUMERATOR(name, type) NamedColumn{Struct::name, #name},
#define EXPECT_AGREE(S, LIST, def)                         \
  {                                                        \
    using Struct = S;                                      \
    ExpectAgree({LIST(ENUMERATOR)}, Struct::kCount, def, #S); \
  }

TEST(ColumnNumbers, AgreeWithTheColumnLists) {
  EXPECT_AGREE(NaglowkiCol, KLOTE_COLUMNS_NAGLOWKI, kNaglowkiDef);
  EXPECT_AGREE(SpecyfikCol, KLOTE_COLUMNS_SPECYFIK, kSpecyfikDef);
  EXPECT_AGREE(StanyMgCol, KLOTE_COLUMNS_STANY_MG, kStanyMgDef);
  EXPECT_AGREE(KasaCol, KLOTE_COLUMNS_KASA, kKasaDef);
  EXPECT_AGREE(KsiegaCol, KLOTE_COLUMNS_KSIEGA, kKsiegaDef);
  EXPECT_AGREE(KsiegasaCol, KLOTE_COLUMNS_KSIEGASA, kKsiegasaDef);
  EXPECT_AGREE(NaglowkiFirmyCol, KLOTE_COLUMNS_NAGLOWKI_FIRMY, kNaglowkiFirmyDef);
  EXPECT_AGREE(KatTowCol, KLOTE_COLUMNS_KAT_TOW, kKatTowDef);
  EXPECT_AGREE(KontrahentCol, KLOTE_COLUMNS_KONTRAHENT, kKontrahentDef);
  EXPECT_AGREE(KontMagCol, KLOTE_COLUMNS_KONT_MAG, kKontMagDef);
  EXPECT_AGREE(DokPlatCol, KLOTE_COLUMNS_DOK_PLAT, kDokPlatDef);
  EXPECT_AGREE(DokPlazCol, KLOTE_COLUMNS_DOK_PLAZ, kDokPlazDef);
  EXPECT_AGREE(DodNrDokCol, KLOTE_COLUMNS_DODNRDOK, kDodNrDokDef);
  EXPECT_AGREE(SlownikCol, KLOTE_COLUMNS_SLOWNIK, kSlownikDef);
}

// The numbers that other modules write into their code.
TEST(ColumnNumbers, FixedPositions) {
  const std::vector<std::pair<int, int>> cases = {
      {NaglowkiCol::kCount, 26},       {NaglowkiCol::nr_kontrahenta, 11}, {NaglowkiCol::komentarz, 20},
      {NaglowkiCol::czy_mm_zwr, 26},   {SpecyfikCol::kCount, 24},         {SpecyfikCol::nr_towaru, 11},
      {SpecyfikCol::ilosc, 14},        {SpecyfikCol::nr_dostawcy_towaru, 24}, {StanyMgCol::kCount, 7},
      {KasaCol::kCount, 17},           {KasaCol::suma_dok, 13},           {KsiegaCol::kCount, 10},
      {KsiegasaCol::kCount, 9},        {NaglowkiFirmyCol::kCount, 9},     {KatTowCol::nr_wewn, 8},
      {KatTowCol::indeks_znakowy_isbn, 9}, {KatTowCol::ilosc, 20},         {KatTowCol::il_zamowiona, 24},
      {KontrahentCol::kCount, 25},     {KontrahentCol::numer, 3},         {KontrahentCol::czy_podmiot_gosp, 7},
      {KontrahentCol::nr_rej, 11},     {KontrahentCol::rabat, 19},        {DokPlatCol::kCount, 11},
      {DodNrDokCol::kCount, 8},
  };
  for (std::size_t i = 0; i < cases.size(); ++i) EXPECT_EQ(cases[i].first, cases[i].second) << "case " << i;
}

TEST(WarehouseFolder, PointBeforeTheNinthCharacter) {
  const std::vector<std::pair<int32_t, std::string>> cases = {
      {0, "0"},
      {7, "7"},
      {12345678, "12345678"},
      {99999999, "99999999"},
      {123456789, "12345678.9"},
      {2147483647, "21474836.47"},
      {-1234567, "-1234567"},
      {-12345678, "-1234567.8"},
  };
  for (const auto& [number, folder] : cases) EXPECT_EQ(WarehouseFolderName(number).Str(), folder) << number;
  EXPECT_EQ(WarehouseTablePath(123456789, "naglowki").Str(), "dane\\12345678.9\\naglowki");
}

}  // namespace
