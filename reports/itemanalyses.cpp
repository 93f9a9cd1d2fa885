// The SQL pipeline of the item analyses.
#include "reports/itemanalyses.h"

#include <cstdlib>
#include <string>

#include "base/codepage.h"
#include "master/tables.h"
#include "reports/sqlsteps.h"
#include "sqltable/dbapp.h"
#include "sqltable/pgconn.h"
#include "sqltable/pglock.h"
#include "sqltable/pgtable.h"
#include "users/users.h"

namespace {

// The remanent is entered as an opening balance dated in the range.
constexpr int16_t kRemanentKind = 12;

// Columns of the result table, in field order.
constexpr const char* kResultColumns[][2] = {
    {"przedz", "I"},  {"nr_wewn", "I"},  {"nazwa", "A31"},   {"grtow", "A15"},  {"dost_nr", "I"},
    {"ilosc", "X"},   {"zak_nett", "X"}, {"spr_nett", "X"},  {"spr_brutt", "X"}, {"marza", "X"},
    {"stan", "X"},    {"cena_zb", "X"},  {"wart_st", "X"},   {"procent", "X"},  {"fakt", "X"},
    {"roznica", "X"}, {"wart_roz", "X"}, {"od_dos", "X"},    {"u_odb", "X"},    {"bez_obr", "A1"},
    {"ceny", "I"}};

// What the result lists besides the rows of the analysis's own lines.
bool ListsEveryStock(ItemAnalysis a) { return a == ItemAnalysis::kStockTurnover || a == ItemAnalysis::kRemanent; }

// The stock with turnover holds each warehouse's lines still while it reads
// them: a share lock in a transaction of its own, committed on every road.
class WarehouseReadLock {
 public:
  WarehouseReadLock(const ShortText& path, bool on) : path_(path), on_(on) {
    if (on_) LockTableShare(path_);
  }
  ~WarehouseReadLock() {
    if (!on_) return;
    CheckDBError(PGTransCommit());
    PGLockUnregister(PGSqlName(path_));
  }
  WarehouseReadLock(const WarehouseReadLock&) = delete;
  WarehouseReadLock& operator=(const WarehouseReadLock&) = delete;

 private:
  ShortText path_;
  bool on_;
};

void CreateRanges(const ItemAnalysisParams& p) {
  DropTemporary("TMP_R");
  ExecSql("CREATE TEMPORARY TABLE TMP_R (N INT,OD DATE,DD DATE)");
  std::string values;
  for (std::size_t i = 0; i < p.ranges.size(); ++i)
    values += (i == 0 ? "(" : ",(") + std::to_string(i + 1) + "," + IsoDate(p.ranges[i].from) + "," +
              IsoDate(p.ranges[i].to) + ")";
  if (!values.empty()) ExecSql("INSERT INTO TMP_R VALUES " + values);
  // The planner knows nothing of a fresh temporary table; guessing it large, it
  // would sort each warehouse's lines instead of hashing them by item.
  ExecSql("ANALYZE TMP_R");
}

// The signed quantity of a turnover line: issues minus unless switched; the
// stock with turnover counts quantities as they stand.
std::string TurnoverQuantity(const ItemAnalysisParams& p) {
  std::vector<int16_t> issues;
  if (p.analysis == ItemAnalysis::kItemTurnover && !p.issuesPositive)
    for (int16_t k : p.kinds)
      if (TakesStockAway(k)) issues.push_back(k);
  if (issues.empty()) return "s.ilosc";
  return "(CASE WHEN s.typ_dok IN (" + NumberList(issues) + ") THEN -s.ilosc ELSE s.ilosc END)";
}

// The analysis's own part of one warehouse's lines: columns of TMP_A, the
// sums and the condition on the lines.
std::string OwnLines(const ItemAnalysisParams& p, int32_t warehouse) {
  std::string columns, sums, condition;
  if (p.analysis == ItemAnalysis::kRemanent) {
    columns = "FA";
    sums = "SUM(s.ilosc)";
    condition = "s.typ_dok=" + std::to_string(kRemanentKind);
  } else if (p.analysis == ItemAnalysis::kDeposits) {
    columns = "OD,UO";
    sums = "SUM(CASE WHEN s.typ_dok IN (" + StockKindsSql(false) + ") THEN s.ilosc_w_depozycie ELSE 0 END),"
           "SUM(CASE WHEN s.typ_dok IN (" + StockKindsSql(true) + ") THEN s.ilosc_w_depozycie ELSE 0 END)";
    condition = "n.czy_depozyt='T' AND s.ilosc_w_depozycie<>0 AND s.typ_dok IN (" + StockKindsSql(false) + "," +
                StockKindsSql(true) + ")";
  } else {
    const std::string q = TurnoverQuantity(p);
    columns = "IL,ZN,SN,SB";
    sums = "SUM(" + q + "),SUM(" + q + "*s.c_zak_netto),SUM(" + q + "*s.c_spr_netto),SUM(" + q + "*s.c_spr_brutto)";
    condition = "s.typ_dok IN (" + NumberList(p.kinds) + ")";
  }
  return "INSERT INTO TMP_A (R,NR,ZB," + columns + ") SELECT r.N,s.nr_towaru,s.c_zak_brutto," + sums + " FROM " +
         SqlName(WarehouseTablePath(warehouse, "specyfik")) + " s JOIN " +
         SqlName(WarehouseTablePath(warehouse, "naglowki")) +
         " n ON n.typ_dok=s.typ_dok AND n.nr_dok=s.nr_dok AND n.znak_dok=s.znak_dok"
         " JOIN TMP_R r ON n.data_dok>=r.OD AND n.data_dok<=r.DD WHERE " + condition +
         " GROUP BY r.N,s.nr_towaru,s.c_zak_brutto";
}

// Stock of one warehouse at each range's end (before its start for the remanent).
std::string StockLines(const ItemAnalysisParams& p, int32_t warehouse) {
  const char* until = p.analysis == ItemAnalysis::kRemanent ? "s.data_dok<r.OD" : "s.data_dok<=r.DD";
  return "INSERT INTO TMP_S SELECT r.N,s.nr_towaru,SUM(" + StockQuantitySql("s") + ") FROM " +
         SqlName(WarehouseTablePath(warehouse, "specyfik")) + " s JOIN TMP_R r ON " + until +
         " GROUP BY r.N,s.nr_towaru";
}

void Step(AnalysisProgress progress, const char* step, int done, int total) {
  if (progress != nullptr) progress(step, done, total);
}

// Step 1-A: every warehouse in number order, its own lines and its stock.
void GatherWarehouses(const ItemAnalysisParams& p, AnalysisProgress progress) {
  for (const char* name : {"TMP_A", "TMP_S"}) DropTemporary(name);
  ExecSql("CREATE TEMPORARY TABLE TMP_A (R INT,NR INT,ZB NUMERIC(28,7),IL NUMERIC(28,7) DEFAULT 0,ZN NUMERIC(28,7) DEFAULT 0,"
          "SN NUMERIC(28,7) DEFAULT 0,SB NUMERIC(28,7) DEFAULT 0,FA NUMERIC(28,7) DEFAULT 0,"
          "OD NUMERIC(28,7) DEFAULT 0,UO NUMERIC(28,7) DEFAULT 0)");
  ExecSql("CREATE TEMPORARY TABLE TMP_S (R INT,NR_WEWN INT,IL NUMERIC(28,7) )");
  const int total = static_cast<int>(p.warehouses.size());
  for (int i = 0; i < total; ++i) {
    const int32_t w = p.warehouses[static_cast<std::size_t>(i)];
    Step(progress, "1-A", i + 1, total);
    WarehouseReadLock lock(WarehouseTablePath(w, "specyfik"), p.analysis == ItemAnalysis::kStockTurnover);
    ExecSql(OwnLines(p, w));
    ExecSql(StockLines(p, w));
  }
}

// The purchase prices that the analysis's own lines of each item carry,
// counted through TMP_B: more than one is an anomaly of the data, told but
// harmless, since values come from each line's own price.
void CountPurchasePrices(const std::string& result) {
  DropTemporary("TMP_B");
  ExecSql("CREATE TEMPORARY TABLE TMP_B AS SELECT NR,COUNT(DISTINCT ZB) AS NC FROM TMP_A GROUP BY NR");
  ExecSql("ALTER TABLE TMP_B ADD PRIMARY KEY(NR)");
  ExecSql("UPDATE " + result + " SET ceny=TMP_B.NC FROM TMP_B WHERE " + result + ".nr_wewn=TMP_B.NR");
  ExecSql("DROP TABLE TMP_B");
}

// Steps 1-B to 1-F: rows by range and item, the stock from TMP_S, the derived figures.
void SumIntoResult(const ItemAnalysisParams& p, const std::string& result) {
  const std::string insert =
      "INSERT INTO " + result + " (przedz,nr_wewn,nazwa,grtow,dost_nr,ilosc,zak_nett,spr_nett,spr_brutt,marza,stan,"
      "cena_zb,wart_st,procent,fakt,roznica,wart_roz,od_dos,u_odb,bez_obr,ceny) ";
  ExecSql(insert + "SELECT R,NR,'','',0,SUM(IL),SUM(ZN),SUM(SN),SUM(SB),0,0,0,0,0,SUM(FA),0,0,SUM(OD),SUM(UO),'N',0 "
                   "FROM TMP_A GROUP BY R,NR");
  CountPurchasePrices(result);
  ExecSql("DROP TABLE TMP_A");
  if (ListsEveryStock(p.analysis))
    ExecSql(insert + "SELECT R,NR_WEWN,'','',0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,'N',0 FROM (SELECT DISTINCT R,NR_WEWN FROM "
                     "TMP_S) t WHERE NOT EXISTS (SELECT 1 FROM " + result +
            " x WHERE x.przedz=t.R AND x.nr_wewn=t.NR_WEWN)");
  ExecSql("UPDATE " + result + " SET stan=TMP_X.ST FROM (SELECT R,NR_WEWN,SUM(IL) AS ST FROM TMP_S GROUP BY R,NR_WEWN) "
          "AS TMP_X WHERE " + result + ".przedz=TMP_X.R AND " + result + ".nr_wewn=TMP_X.NR_WEWN");
  ExecSql("DROP TABLE TMP_S");
  ExecSql("UPDATE " + result + " SET marza=spr_nett-zak_nett,roznica=fakt-stan");
  ExecSql("UPDATE " + result + " SET procent=100.0*ilosc/stan WHERE stan<>0.0");
}

// Step X-G: names, group, supplier and the card's purchase price from the catalogue.
void JoinCatalogue(const std::string& result) {
  const std::string catalogue = SqlName("dane\\kat_tow_");
  ExecSql("UPDATE " + result + " SET nazwa=k.nazwa,grtow=k.k3_grupa_tow,dost_nr=k.dostawca,cena_zb=k.cena_z_b FROM " +
          catalogue + " k WHERE k.nr_wewn=" + result + ".nr_wewn");
  ExecSql("UPDATE " + result + " SET wart_st=stan*cena_zb,wart_roz=roznica*cena_zb");
}

// What the run tells the operator of the rows that stay: items missing from
// the catalogue, several purchase prices of one item.
void CollectAnomalies(const std::string& result, ItemAnalysisOutcome& outcome) {
  PGResult rows;
  CheckDBError(PGRunQueryWithTup("SELECT DISTINCT nr_wewn FROM " + result + " r WHERE NOT EXISTS (SELECT 1 FROM " +
                                     SqlName("dane\\kat_tow_") + " k WHERE k.nr_wewn=r.nr_wewn) ORDER BY nr_wewn",
                                 rows));
  for (int i = 0; i < rows.Rows(); ++i) outcome.missingItems.push_back(std::atoi(std::string(rows.Value(i, 0)).c_str()));
  CheckDBError(PGRunQueryWithTup("SELECT count(*) FROM " + result + " WHERE ceny>1", rows));
  outcome.priceAnomaly = std::atoi(std::string(rows.Value(0, 0)).c_str()) > 0;
}

// The groups as a quoted list in the database's encoding.
std::string GroupList(const std::vector<ShortText>& groups) {
  std::string out;
  for (const ShortText& g : groups)
    out += (out.empty() ? "'" : ",'") + PGEscapeStr(MazToDb(g).View()) + "'";
  return out;
}

// Step 1-H: the item group filter through TMP_Y, the rows the analysis leaves
// out and the mark of items without turnover.
void Narrow(const ItemAnalysisParams& p, const std::string& result) {
  if (!p.groups.empty()) {
    DropTemporary("TMP_Y");
    ExecSql("CREATE TEMPORARY TABLE TMP_Y (N INT,G1 VARCHAR(15),G2 VARCHAR(15))");
    ExecSql("INSERT INTO TMP_Y SELECT nr_wewn,k3_grupa_tow,k4 FROM " + SqlName("dane\\kat_tow_") +
            " WHERE nr_wewn IN (SELECT nr_wewn FROM " + result + ")");
    ExecSql("UPDATE TMP_Y SET G1=TRIM(G1),G2=TRIM(G2)");
    const std::string list = GroupList(p.groups);
    ExecSql("DELETE FROM " + result + " WHERE nr_wewn NOT IN (SELECT TMP_Y.N FROM TMP_Y WHERE TMP_Y.N>0 AND "
            "(TMP_Y.G1 IN (" + list + ") OR TMP_Y.G2 IN (" + list + ")))");
    ExecSql("DROP TABLE TMP_Y");
  }
  if (p.analysis == ItemAnalysis::kRemanent) ExecSql("DELETE FROM " + result + " WHERE stan=0 AND fakt=0");
  if (p.analysis != ItemAnalysis::kStockTurnover) return;
  if (p.dropZeroStock) ExecSql("DELETE FROM " + result + " WHERE stan=0");
  ExecSql("UPDATE " + result + " SET bez_obr='T' WHERE procent>=" + std::to_string(static_cast<double>(p.noTurnoverFrom)) +
          " AND procent<=" + std::to_string(static_cast<double>(p.noTurnoverTo)));
}

// Names sort as they are; the number columns by their text keys.
std::string OrderBy(const ItemAnalysisParams& p) {
  static constexpr const char* kColumns[] = {"", "nazwa", "ilosc", "marza", "zak_nett", "spr_brutt"};
  const auto i = static_cast<std::size_t>(p.sort);
  const bool known = i > 0 && i < std::size(kColumns);
  const std::string key = !known ? "nazwa" : p.sort >= ItemSort::kQuantity ? NumberSortKey(kColumns[i]) : kColumns[i];
  return " ORDER BY przedz," + key + (p.descending ? " DESC" : "") + ",nr_wewn";
}

Real ToReal(std::string_view text) { return std::strtold(std::string(text).c_str(), nullptr); }

}  // namespace

ShortText ItemAnalysisTablePath() { return UserPath(std::max(CurrentUserNumber(), 0), "analizdb"); }

void RunItemAnalysis(const ItemAnalysisParams& p, AnalysisProgress progress, ItemAnalysisOutcome& outcome) {
  const ShortText path = ItemAnalysisTablePath();
  const std::string result = SqlName(path);
  const int total = static_cast<int>(p.warehouses.size());
  CreateRanges(p);
  GatherWarehouses(p, progress);
  Step(progress, "1-B", total, total);
  CreateResultTable(path, kResultColumns);
  SumIntoResult(p, result);
  Step(progress, "X-G", total, total);
  JoinCatalogue(result);
  Step(progress, "1-H", total, total);
  Narrow(p, result);
  ExecSql("DROP TABLE TMP_R");
  CollectAnomalies(result, outcome);
}

std::vector<ItemAnalysisRow> ReadItemAnalysisRows(const ItemAnalysisParams& p) {
  PGResult res;
  CheckDBError(PGRunQueryWithTup("SELECT przedz,nr_wewn,nazwa,bez_obr,ilosc,zak_nett,spr_nett,spr_brutt,marza,stan,"
                                 "cena_zb,wart_st,procent,fakt,roznica,wart_roz,od_dos,u_odb FROM " +
                                     SqlName(ItemAnalysisTablePath()) + OrderBy(p),
                                 res));
  std::vector<ItemAnalysisRow> rows(static_cast<std::size_t>(res.Rows()));
  for (int i = 0; i < res.Rows(); ++i) {
    ItemAnalysisRow& r = rows[static_cast<std::size_t>(i)];
    r.range = std::atoi(std::string(res.Value(i, 0)).c_str());
    r.item = std::atoi(std::string(res.Value(i, 1)).c_str());
    r.name = DbToMaz(res.Text(i, 2));
    r.noTurnover = res.Value(i, 3) == "T";
    Real* values[] = {&r.quantity, &r.purchaseNet, &r.saleNet,  &r.saleGross,  &r.margin,          &r.stock, &r.price,
                      &r.stockValue, &r.percent,   &r.counted,  &r.difference, &r.differenceValue, &r.fromSuppliers,
                      &r.atCustomers};
    for (std::size_t c = 0; c < std::size(values); ++c) *values[c] = ToReal(res.Value(i, static_cast<int>(c) + 4));
  }
  return rows;
}
