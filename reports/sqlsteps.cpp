#include "reports/sqlsteps.h"

#include "base/dates.h"
#include "documents/dockinds.h"
#include "sqltable/dbapp.h"
#include "sqltable/pgtable.h"

namespace {

template <typename T>
std::string JoinNumbers(const std::vector<T>& values) {
  std::string out;
  for (T v : values) out += (out.empty() ? "" : ",") + std::to_string(v);
  return out;
}

// Kinds whose stock effect is the one asked; orders count only as ordered
// quantities, never as stock.
std::vector<int16_t> KindsWithEffect(StockEffect effect) {
  std::vector<int16_t> out;
  for (int16_t kind = kFirstGoodsKind; kind <= kLastGoodsKind; ++kind)
    if (KindStockEffect(kind, false) == effect) out.push_back(kind);
  return out;
}

}  // namespace

void CreateResultTable(const ShortText& path, const char* const (*columns)[2], std::size_t count) {
  std::vector<PGName> names, types;
  for (std::size_t i = 0; i < count; ++i) {
    names.emplace_back(columns[i][0]);
    types.emplace_back(columns[i][1]);
  }
  CheckDBError(PGTblCreate(path, static_cast<int>(names.size()), names.data(), types.data()));
}

void ExecSql(const std::string& sql) { CheckDBError(PGRunQueryNoTup(sql)); }

std::string SqlName(const ShortText& path) { return std::string(PGSqlName(path).View()); }

std::string NumberList(const std::vector<int16_t>& values) { return JoinNumbers(values); }
std::string NumberList(const std::vector<int32_t>& values) { return JoinNumbers(values); }

std::string IsoDate(int32_t serial) { return "'" + std::string(DaySerialToIsoText(serial).View()) + "'"; }

void DropTemporary(const char* name) { ExecSql(std::string("DROP TABLE IF EXISTS ") + name); }

bool TakesStockAway(int16_t kind) { return KindStockEffect(kind, false) == StockEffect::kIssue; }

std::string StockKindsSql(bool issues) {
  return NumberList(KindsWithEffect(issues ? StockEffect::kIssue : StockEffect::kReceipt));
}

std::string StockQuantitySql(const char* alias) {
  const std::string a(alias);
  return "CASE WHEN " + a + ".typ_dok IN (" + StockKindsSql(false) + ") THEN " + a + ".ilosc WHEN " + a +
         ".typ_dok IN (" + StockKindsSql(true) + ") THEN -" + a + ".ilosc ELSE 0 END";
}

std::string NumberSortKey(const std::string& column) {
  const std::string key =
      "TO_CHAR(GREATEST(-99999999999.99,LEAST(99999999999.99,-100.0*" + column + ")),'00000000000.00')";
  return "(CASE WHEN LEFT(" + key + ",1)='-' THEN 'a' ELSE 'b' END||SUBSTR(" + key + ",2)) COLLATE \"C\"";
}
