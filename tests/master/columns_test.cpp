// The column numbers other modules write into their code, and the warehouse folder rule.
#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "master/tables.h"

namespace {

// The tables whose whole layout the creation tests do not read back from the server.
TEST(ColumnNumbers, FixedPositions) {
  const std::vector<std::pair<int, int>> cases = {
      {KasaCol::kCount, 17}, {KasaCol::suma_dok, 13}, {KsiegasaCol::kCount, 9}, {KontrahentCol::kCount, 25},
      {KontrahentCol::nr_rej, 11}, {DokPlatCol::kCount, 11}, {DodNrDokCol::kCount, 8},
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
