#include "docfixture.h"

#include <algorithm>
#include <cmath>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>

#include "base/dates.h"
#include "base/mazovia.h"
#include "master/tables.h"
#include "sqltable/pgrecord.h"
#include "sqltable/pgwrite.h"
#include "users/users.h"

namespace {

// A figure as SQL writes it, to the seven decimals of the tables.
std::string Sql(Real value) {
  char text[48];
  std::snprintf(text, sizeof text, "%.7Lf", static_cast<long double>(value));
  return text;
}

}  // namespace

int32_t Day(int y, int m, int d) { return EncodeDaySerial(y, m, d); }

void ExpectNear(Real actual, Real expected, const std::string& what) {
  EXPECT_LT(std::fabs(static_cast<double>(actual - expected)), 1e-4)
      << what << ": " << static_cast<double>(actual) << " != " << static_cast<double>(expected);
}

std::string Line(const char* format, ...) {
  char buf[512];
  va_list args;
  va_start(args, format);
  std::vsnprintf(buf, sizeof buf, format, args);
  va_end(args);
  return std::string(buf) + "\r\n";
}

std::string SortKey(Real value) {
  const Real k = -100 * value;
  char digits[32];
  std::snprintf(digits, sizeof digits, "%014.2Lf", k < 0 ? -k : k);
  return (k < 0 && std::string(digits) != "00000000000.00" ? "a" : "b") + std::string(digits);
}

std::string TemporaryTablesLeft() {
  PGResult result;
  if (PGRunQueryWithTup("SELECT count(*) FROM pg_class WHERE relnamespace = pg_my_temp_schema()", result) != 0)
    return "no answer";
  return std::string(result.Value(0, 0));
}

void DocumentsTest::SetUp() {
  CatalogueTest::SetUp();
  CreateFirmTables();
  for (int32_t w = 1; w <= 3; ++w) CreateWarehouseTables(false, w);
  UserRecord user;
  user.number = 4;
  SetCurrentUser(user);
}

void DocumentsTest::AddItem(int32_t item, const ShortText& name, int32_t supplier, Real purchaseGross,
                            const ShortText& group) {
  int16_t tbl = 0, rec = 0;
  ASSERT_EQ(PGTblOpen("dane\\kat_tow_", tbl, 0), 0);
  ASSERT_EQ(PGRecBufOpen(tbl, rec), 0);
  EXPECT_EQ(PGRecBufEmpty(rec), 0);
  EXPECT_EQ(PGPutAlpha(rec, KatTowCol::nazwa, name), 0);
  EXPECT_EQ(PGPutLong(rec, KatTowCol::nr_wewn, item), 0);
  EXPECT_EQ(PGPutLong(rec, KatTowCol::dostawca, supplier), 0);
  EXPECT_EQ(PGPutAlpha(rec, KatTowCol::vat, "23"), 0);
  EXPECT_EQ(PGPutExt(rec, KatTowCol::cena_z_b, purchaseGross), 0);
  EXPECT_EQ(PGPutAlpha(rec, KatTowCol::k3_grupa_tow, group), 0);
  EXPECT_EQ(PGRecAppend(tbl, rec), 0) << PGLastOp.Str();
  PGRecBufClose(rec);
  PGTblClose(tbl);
  catalogue_.insert(item);
  suppliers_[static_cast<std::size_t>(item)] = supplier;
}

void DocumentsTest::AddWarehouse(int32_t number, const char* name) {
  std::string out;
  ASSERT_TRUE(Psql("INSERT INTO dane_magazyny (nazwa,nazwa_inne,numer) VALUES ('" + std::string(name) + "',''," +
                   std::to_string(number) + ")", &out)) << out;
}

void DocumentsTest::SaveDocument(int32_t number, const std::vector<SavedLine>& lines) {
  const SavedLine& first = lines.front();
  const std::string table = "dane_" + std::to_string(first.warehouse) + "_";
  const std::string key = std::to_string(first.kind) + "," + std::to_string(number) + ",'A',DATE '1899-12-30'+" +
                          std::to_string(first.date);
  const bool deposit = std::any_of(lines.begin(), lines.end(), [](const SavedLine& l) { return l.onDeposit != 0; });
  std::string out;
  ASSERT_TRUE(Psql("INSERT INTO " + table + "naglowki (typ_dok,nr_dok,znak_dok,data_dok,czy_depozyt) VALUES (" + key +
                   (deposit ? ",'T')" : ",'N')"), &out)) << out;
  std::string values;
  int32_t position = 0;
  for (const SavedLine& line : lines) {
    values += std::string(values.empty() ? "(" : ",(") + key + "," + std::to_string(++position) + "," +
              std::to_string(line.item) + "," + Sql(line.quantity) + "," + Sql(line.purchaseNet) + "," +
              Sql(line.purchaseGross) + "," + Sql(line.saleNet) + "," + Sql(line.saleGross) + "," +
              Sql(line.onDeposit) + ")";
    SavedLine kept = line;
    kept.warehouse = first.warehouse;
    kept.kind = first.kind;
    kept.date = first.date;
    saved_.push_back(kept);
  }
  ASSERT_TRUE(Psql("INSERT INTO " + table + "specyfik (typ_dok,nr_dok,znak_dok,data_dok,pozycja,nr_towaru,ilosc,"
                   "c_zak_netto,c_zak_brutto,c_spr_netto,c_spr_brutto,ilosc_w_depozycie) VALUES " + values, &out)) << out;
}

void DocumentsTest::SaveSmallFirm() {
  AddItem(1, "Mleko", 100);
  AddItem(2, "Chleb", 200);
  AddWarehouse(1, "Sklep");
  AddWarehouse(2, "Hurtownia");
  const int32_t opening = EncodeDaySerial(2026, 1, 10), sale = EncodeDaySerial(2026, 2, 5);
  SaveDocument(1, {{1, 12, opening, 1, 10, 1.5L, 2, 2.5L, 3}, {1, 12, opening, 2, 4, 3, 4, 4.5L, 5.5L}});
  SaveDocument(2, {{1, 1, sale, 1, 3, 1.5L, 2, 2.5L, 3}, {1, 1, sale, 2, 1.5L, 3, 4, 4.5L, 5.5L}});
}

void DocumentsTest::SaveQuarter() {
  const ShortText names[] = {"", "Mleko", "Chleb", "Masło"_mz, "Ser", "Jabłka"_mz};
  for (int32_t item = 1; item <= 5; ++item) AddItem(item, names[item], item % 2 == 0 ? 100 : 200, kPrices[item], kGroups[item]);
  int32_t number = 0;
  for (int16_t kind = 1; kind <= 18; ++kind)
    for (int32_t w = 1; w <= 2; ++w)
      for (int month = 1; month <= 3; ++month) {
        const int32_t date = Day(2026, month, 1 + (kind * 7 + w * 3) % 28);
        std::vector<SavedLine> lines;
        for (int32_t item = 1; item <= 6; ++item) {
          if ((item == 5 && month != 2) || (item + kind + month) % 3 == 0) continue;
          const Real q = static_cast<Real>((kind * 13 + item * 7 + month * 5 + w) % 17 + 1) / 4;
          const Real deposit = (kind + month + item) % 4 == 0 ? q / 2 : 0;
          const Real purchaseGross = item == 3 && month == 3 ? 9.99L : Real(item) * 1.23L;
          lines.push_back({w, kind, date, item, q, Real(item) + 0.5L, purchaseGross, Real(item) * 2, Real(item) * 2.46L,
                           deposit});
        }
        if (!lines.empty()) SaveDocument(++number, lines);
      }
  SaveDocument(++number, {{3, 12, Day(2025, 12, 31), 1, 9, 1, 1, 1, 1}});
}
