// The SQL pipeline of the turnover analysis.
#include "reports/turnover.h"

#include <cstdlib>
#include <string>

#include "base/codepage.h"
#include "base/dates.h"
#include "master/tables.h"
#include "reports/sqlsteps.h"
#include "sqltable/dbapp.h"
#include "sqltable/pgtable.h"
#include "users/users.h"

namespace {

// Columns of the result table, in field order.
constexpr const char* kResultColumns[][2] = {
    {"nr_wewn", "I"},   {"ilosc", "X"},     {"nazwa", "A31"},    {"nazwa_", "A30"},   {"vat", "A5"},
    {"gr_tow", "A15"},  {"bilans_zam", "X"}, {"stan_pocz", "X"},  {"bil_na_st", "X"}, {"dost_naz", "A74"},
    {"dost_nr", "I"},   {"grtow", "A15"},   {"pkwiu", "A31"},    {"sp_nett", "X"},    {"sp_brutt", "X"},
    {"zak_nett", "X"},  {"zak_brutt", "X"}};

// Kinds of the selection that take stock away: counted with the minus sign.
std::vector<int16_t> IssueKinds(const TurnoverParams& p) {
  std::vector<int16_t> out;
  if (p.issuesPositive) return out;
  for (int16_t k : p.kinds)
    if (TakesStockAway(k)) out.push_back(k);
  return out;
}

std::string SignedQuantity(const TurnoverParams& p) {
  const std::vector<int16_t> issues = IssueKinds(p);
  if (issues.empty()) return "s.ilosc";
  return "(CASE WHEN s.typ_dok IN (" + NumberList(issues) + ") THEN -s.ilosc ELSE s.ilosc END)";
}

// The item and supplier conditions on the lines of one warehouse.
std::string ItemConditions(const TurnoverParams& p) {
  std::string out;
  if (!p.items.empty()) out += " AND s.nr_towaru IN (" + NumberList(p.items) + ")";
  if (!p.suppliers.empty())
    out += " AND s.nr_towaru IN (SELECT nr_wewn FROM " + SqlName("dane\\kat_tow_") + " WHERE dostawca IN (" +
           NumberList(p.suppliers) + "))";
  return out;
}

// One warehouse's turnover, grouped by item, joined with its headers on the document key.
std::string TurnoverOfWarehouse(const TurnoverParams& p, int32_t warehouse) {
  const std::string q = SignedQuantity(p);
  return "INSERT INTO TMP_A SELECT s.nr_towaru,SUM(" + q + "),SUM(" + q + "*s.c_spr_netto),SUM(" + q +
         "*s.c_spr_brutto),SUM(" + q + "*s.c_zak_netto),SUM(" + q + "*s.c_zak_brutto) FROM " +
         SqlName(WarehouseTablePath(warehouse, "specyfik")) + " s JOIN " + SqlName(WarehouseTablePath(warehouse, "naglowki")) +
         " n ON n.typ_dok=s.typ_dok AND n.nr_dok=s.nr_dok AND n.znak_dok=s.znak_dok WHERE s.typ_dok IN (" +
         NumberList(p.kinds) + ") AND n.data_dok>=" + IsoDate(p.from) + " AND n.data_dok<=" + IsoDate(p.to) +
         ItemConditions(p) + " GROUP BY s.nr_towaru";
}

// Step 1-B: the rows of all warehouses summed by item into the result.
void SumByItem(const std::string& result) {
  ExecSql("INSERT INTO " + result +
       " (nr_wewn,ilosc,nazwa,nazwa_,vat,gr_tow,bilans_zam,stan_pocz,bil_na_st,dost_naz,dost_nr,grtow,pkwiu,"
       "sp_nett,sp_brutt,zak_nett,zak_brutt) SELECT NR_WEWN,SUM(IL),'','','','',0.0,0.0,0.0,'',0,'','',"
       "SUM(SPN),SUM(SPB),SUM(ZN),SUM(ZB) FROM TMP_A GROUP BY NR_WEWN");
}

// Steps 1-C to 1-F: stock before the period. Every kind with its sign goes
// into one statement per warehouse, so each warehouse's lines are read once,
// summed by item on the server.
void StockBefore(const TurnoverParams& p, const std::string& result, AnalysisProgress progress) {
  DropTemporary("TMP_S");
  ExecSql("CREATE TEMPORARY TABLE TMP_S (NR_WEWN INT,IL NUMERIC(28,7) )");
  const int total = static_cast<int>(p.warehouses.size());
  for (int i = 0; i < total; ++i) {
    if (progress != nullptr) progress("1-C", i + 1, total);
    ExecSql("INSERT INTO TMP_S SELECT s.nr_towaru,SUM(" + StockQuantitySql("s") + ") FROM " +
         SqlName(WarehouseTablePath(p.warehouses[static_cast<std::size_t>(i)], "specyfik")) + " s WHERE s.data_dok<" +
         IsoDate(p.from) + " AND s.nr_towaru IN (SELECT nr_wewn FROM " + result + ") GROUP BY s.nr_towaru");
  }
  if (progress != nullptr) progress("1-D", total, total);
  ExecSql("UPDATE " + result + " SET stan_pocz=TMP_X.ST FROM (SELECT NR_WEWN,SUM(IL) AS ST FROM TMP_S GROUP BY NR_WEWN) AS TMP_X WHERE " +
       result + ".nr_wewn=TMP_X.NR_WEWN");
  if (progress != nullptr) progress("1-F", total, total);
  ExecSql("UPDATE " + result + " SET bil_na_st=100.0*ilosc/stan_pocz WHERE stan_pocz<>0.0");
  ExecSql("DROP TABLE TMP_S");
}

// Step X-G: names, VAT, group and supplier from the catalogue.
void JoinCatalogue(const std::string& result, std::vector<int32_t>& missing) {
  const std::string catalogue = SqlName("dane\\kat_tow_");
  ExecSql("UPDATE " + result + " SET nazwa=k.nazwa,nazwa_=k.nazwa_,vat=k.vat,gr_tow=k.k3_grupa_tow,grtow=k.k3_grupa_tow,"
       "dost_nr=k.dostawca,dost_naz=k.dostawca_opis,pkwiu=k.sww FROM " + catalogue + " k WHERE k.nr_wewn=" + result +
       ".nr_wewn");
  PGResult rows;
  CheckDBError(PGRunQueryWithTup("SELECT nr_wewn FROM " + result + " r WHERE NOT EXISTS (SELECT 1 FROM " + catalogue +
                                     " k WHERE k.nr_wewn=r.nr_wewn) ORDER BY nr_wewn", rows));
  for (int i = 0; i < rows.Rows(); ++i) missing.push_back(std::atoi(std::string(rows.Value(i, 0)).c_str()));
}

Real ToReal(std::string_view text) { return std::strtold(std::string(text).c_str(), nullptr); }

// Names sort as they are; the number columns by their text keys.
std::string OrderBy(const TurnoverParams& p) {
  static constexpr const char* kColumns[] = {"", "nazwa", "dost_naz", "ilosc", "stan_pocz", "bil_na_st", "sp_brutt"};
  const auto i = static_cast<std::size_t>(p.sort);
  const bool known = i > 0 && i < std::size(kColumns);
  const std::string key = !known ? "nazwa" : p.sort >= TurnoverSort::kTurnover ? NumberSortKey(kColumns[i]) : kColumns[i];
  return " ORDER BY " + key + (p.descending ? " DESC" : "") + ",nr_wewn";
}

}  // namespace

ShortText TurnoverTablePath() { return UserPath(std::max(CurrentUserNumber(), 0), "obrotydb"); }

void RunTurnoverAnalysis(const TurnoverParams& p, AnalysisProgress progress, std::vector<int32_t>& missingItems) {
  const ShortText path = TurnoverTablePath();
  const std::string result = SqlName(path);
  DropTemporary("TMP_A");
  ExecSql("CREATE TEMPORARY TABLE TMP_A (NR_WEWN INT,IL NUMERIC(28,7),SPN NUMERIC(28,7),SPB NUMERIC(28,7),"
       "ZN NUMERIC(28,7),ZB NUMERIC(28,7))");
  const int total = static_cast<int>(p.warehouses.size());
  for (int i = 0; i < total; ++i) {
    if (progress != nullptr) progress("1-A", i + 1, total);
    ExecSql(TurnoverOfWarehouse(p, p.warehouses[static_cast<std::size_t>(i)]));
  }
  if (progress != nullptr) progress("1-B", total, total);
  CreateResultTable(path, kResultColumns);
  SumByItem(result);
  ExecSql("DROP TABLE TMP_A");
  StockBefore(p, result, progress);
  if (progress != nullptr) progress("X-G", total, total);
  JoinCatalogue(result, missingItems);
}

std::vector<TurnoverRow> ReadTurnoverRows(const TurnoverParams& p) {
  PGResult res;
  CheckDBError(PGRunQueryWithTup("SELECT nr_wewn,nazwa,dost_naz,ilosc,stan_pocz,bil_na_st,sp_nett,sp_brutt,zak_nett,"
                                 "zak_brutt FROM " + SqlName(TurnoverTablePath()) + OrderBy(p),
                                 res));
  std::vector<TurnoverRow> rows(static_cast<std::size_t>(res.Rows()));
  for (int i = 0; i < res.Rows(); ++i) {
    TurnoverRow& r = rows[static_cast<std::size_t>(i)];
    r.item = std::atoi(std::string(res.Value(i, 0)).c_str());
    r.name = DbToMaz(res.Text(i, 1));
    r.supplierName = DbToMaz(res.Text(i, 2));
    Real* values[] = {&r.turnover, &r.stockBefore, &r.percent, &r.saleNet, &r.saleGross, &r.purchaseNet, &r.purchaseGross};
    for (int c = 0; c < 7; ++c) *values[c] = ToReal(res.Value(i, c + 3));
  }
  return rows;
}

TurnoverTotals SumTurnover(const std::vector<TurnoverRow>& rows) {
  TurnoverTotals t;
  for (const TurnoverRow& r : rows) {
    t.turnover += r.turnover;
    t.purchaseGross += r.purchaseGross;
    t.purchaseNet += r.purchaseNet;
    t.saleGross += r.saleGross;
    t.saleNet += r.saleNet;
  }
  return t;
}
