// Next numbers, the firm's register of numbers, free marks and the rebuild.
#include "documents/numbering.h"

#include <cstdlib>

#include "documents/docdetail.h"
#include "master/columns.h"
#include "master/tables.h"
#include "sqltable/dbapp.h"
#include "sqltable/pgrecord.h"
#include "sqltable/pgtable.h"
#include "sqltable/pgwrite.h"
#include "tui/msgbox.h"
#include "tui/picklist.h"

using docdetail::QueryValue;
using docdetail::SqlTable;
using docdetail::TextLiteral;

namespace {

constexpr ShortText kCommonOffText =
    "Opcje wspólnej numeracji dokumentów sa wylaczone.@Funkcja nie moze byc uzyta."_mz;
constexpr ShortText kRebuildTitle = "Wybierz:"_mz;
constexpr ShortText kRebuildChoices =
    "stworzenie katalogu numerów od nowa@sprawdzenie i dodanie brakujacych numerów"_mz;

std::string YearBound(int year, const char* monthDay) { return "'" + std::to_string(year) + monthDay + "'"; }

// The kinds of a warehouse's headers that the register holds, as an SQL condition.
std::string RegisteredKindsCondition(const NumberingSettings& s) {
  return s.common == CommonNumbering::kTransfers ? "typ_dok IN (15,18)" : "typ_dok BETWEEN 1 AND 18";
}

// Warehouses with tables of their own, by number.
int16_t WarehousesWithTables(std::vector<int32_t>& out) {
  PGResult res;
  const std::string sql = "SELECT numer FROM " + SqlTable("dane\\magazyny") +
                          " WHERE czy_podmiot_gosp='Z' ORDER BY numer";
  if (int16_t code = PGRunQueryWithTup(sql, res)) return code;
  for (int r = 0; r < res.Rows(); ++r) out.push_back(std::atoi(std::string(res.Value(r, 0)).c_str()));
  return 0;
}

// Enters the missing numbers of one table of a warehouse whose rows match
// the condition; added grows by the rows entered.
int16_t RegisterTable(const ShortText& path, const std::string& condition, int32_t& added) {
  bool exists = false;
  (void)PGTblExist(path, exists);
  if (!exists) return 0;
  // The blank deletion columns are those a blank record buffer writes.
  const std::string sql =
      "WITH ins AS (INSERT INTO " + SqlTable(kRegisterTable) +
      " (typ_dok,nr_dok,znak_dok,data_dok,data_ost_skasowania,czas_ost_skasowania,nr_uzytk_kasujacego,"
      "nazwa_uz_kasujacego,ost_suma_dok_skas) SELECT CASE WHEN typ_dok=15 THEN 18 ELSE typ_dok END,nr_dok,"
      "znak_dok,data_dok,'0001-01-01',0,0,'',0 FROM " +
      SqlTable(path) + " WHERE " + condition + " ON CONFLICT DO NOTHING RETURNING 1) " + "SELECT count(*) FROM ins";
  std::string value;
  bool isNull = false;
  if (int16_t code = QueryValue(sql, value, isNull)) return code;
  added += std::atoi(value.c_str());
  return 0;
}

// The goods headers of a warehouse and, when every document is numbered for
// the firm, its payments too.
int16_t RegisterWarehouse(int32_t warehouse, const NumberingSettings& s, int32_t& added) {
  if (int16_t code = RegisterTable(WarehouseTablePath(warehouse, "naglowki"), RegisteredKindsCondition(s), added))
    return code;
  if (s.common != CommonNumbering::kAll) return 0;
  return RegisterTable(WarehouseTablePath(warehouse, "kasa____"),
                       "typ_dok>=" + std::to_string(kFirstPaymentKind), added);
}

}  // namespace

ShortText NumberTablePath(int kind, int32_t warehouse, const NumberingSettings& s) {
  return UnderCommonNumbering(kind, s) ? ShortText(kRegisterTable) : WarehouseTablePath(warehouse, "naglowki");
}

std::string NextNumberSql(const ShortText& table, const SeriesKinds& series, int year) {
  const std::string from = " FROM " + SqlTable(table) + " WHERE typ_dok=";
  const std::string during =
      " AND data_dok>=" + YearBound(year, "-01-01") + " AND data_dok<=" + YearBound(year, "-12-31");
  auto highest = [&](int16_t kind) { return "SELECT MAX(nr_dok)" + from + std::to_string(kind) + during; };
  if (series.count < 2) return highest(series.kinds[0]);
  return "SELECT GREATEST((" + highest(series.kinds[0]) + "),(" + highest(series.kinds[1]) + "))";
}

int16_t NextDocNumber(int32_t dateSerial, int kind, const ShortText& table, const NumberingSettings& s,
                      NextNumber& out) {
  out = {};
  const int year = docdetail::YearOfSerial(dateSerial);
  if (year < kDocFirstYear || year > kDocLastYear) {
    out.failed = true;
    return 0;
  }
  std::string value;
  bool isNull = false;
  if (int16_t code = QueryValue(NextNumberSql(table, SeriesOf(kind, s), year), value, isNull)) return code;
  const long long highest = isNull ? 0 : std::atoll(value.c_str());
  out = NextAfter(static_cast<int32_t>(highest), year);
  return 0;
}

int16_t RegisterDocNumber(int kind, int32_t coded, const ShortText& mark, int32_t dateSerial,
                          const NumberingSettings& s) {
  if (!UnderCommonNumbering(kind, s)) return 0;
  docdetail::TableRecord reg(kRegisterTable);
  if (reg.code()) return reg.code();
  const int16_t rec = reg.rec();
  int16_t code = PGPutShort(rec, NaglowkiFirmyCol::typ_dok, static_cast<int16_t>(RegisterKind(kind, s)));
  if (!code) code = PGPutLong(rec, NaglowkiFirmyCol::nr_dok, coded);
  if (!code) code = PGPutAlpha(rec, NaglowkiFirmyCol::znak_dok, mark);
  if (!code) code = PGPutDate(rec, NaglowkiFirmyCol::data_dok, dateSerial);
  if (!code) code = PGRecAppend(reg.tbl(), rec);
  return code;
}

int16_t FreeMarkInTable(const ShortText& table, int kind, int32_t coded, const ShortText& mark, ShortText& out) {
  int16_t code = 0;
  auto taken = [&](const ShortText& m) {
    if (code) return false;
    std::string value;
    bool isNull = false;
    code = QueryValue("SELECT count(*) FROM " + SqlTable(table) + " WHERE typ_dok=" + std::to_string(kind) +
                          " AND nr_dok=" + std::to_string(coded) + " AND znak_dok=" + TextLiteral(m),
                      value, isNull);
    return !code && std::atoi(value.c_str()) > 0;
  };
  out = FreeMark(mark, taken);
  return code;
}

int16_t RebuildRegister(RebuildMode mode, const NumberingSettings& s, int32_t& added) {
  added = 0;
  if (s.common == CommonNumbering::kOff) return 0;
  std::vector<int32_t> warehouses;
  if (int16_t code = WarehousesWithTables(warehouses)) return code;
  docdetail::TableRecord reg(kRegisterTable);
  if (reg.code()) return reg.code();
  docdetail::ExclusiveLock lock(kRegisterTable);
  if (mode == RebuildMode::kFromScratch) {
    if (int16_t code = PGRunQueryNoTup("DELETE FROM " + SqlTable(kRegisterTable))) return code;
  }
  for (int32_t w : warehouses)
    if (int16_t code = RegisterWarehouse(w, s, added)) return code;
  reg.MarkChanged();
  return lock.Commit();
}

void RebuildHeaderList() {
  const NumberingSettings s = NumberingSettingsFromConfig();
  if (s.common == CommonNumbering::kOff) {
    (void)MessageBox(kCommonOffText, 0);
    return;
  }
  unsigned char ch = 0, scan = 0;
  const int16_t choice = PickList(1, 1, 1, 0, 0, kRebuildTitle, kRebuildChoices, ch, scan);
  if (choice == 0) return;
  int32_t added = 0;
  CheckDBError(RebuildRegister(choice == 1 ? RebuildMode::kFromScratch : RebuildMode::kAddMissing, s, added));
}
