// The column numbers other modules write into their code, and the warehouse folder rule.
#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "master/tables.h"

namespace {

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
