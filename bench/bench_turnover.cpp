// The turnover analysis over 1,000,000 document lines in 10 warehouses
// (100,000 documents of 10 lines over two years, 5,000 items), filled by
// generate_series on a private cluster. It times the whole pipeline of the
// analysis (per-warehouse turnover, stock before the period, catalogue join)
// beside the bare aggregate of the same figures in one statement, in the
// same run, and checks that both give the same sums. The pipeline's steps
// are printed as they go, as the screen shows them to the operator.
// The item analyses run over the same lines after it.
// Run: build/bench/bench_turnover (needs the PostgreSQL 15 server programs).
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <string>

#include "base/dates.h"
#include "bench/bench_db.h"
#include "master/tables.h"
#include "reports/itemanalyses.h"
#include "reports/turnover.h"
#include "sqltable/dbapp.h"
#include "tui/term.h"

namespace {

constexpr int kWarehouses = 10;
constexpr int kDocumentsPerWarehouse = 10000;
constexpr int kLinesPerDocument = 10;
constexpr int kItems = 5000;

std::string gScreen;

void Exec(const std::string& sql) { CheckDBError(PGRunQueryNoTup(sql)); }

std::string Sql(const ShortText& path) { return std::string(PGSqlName(path).View()); }

void Fill() {
  CreateFirmTables();
  Exec("INSERT INTO " + Sql("dane\\kat_tow_") +
       " (nazwa,nazwa_,cena_z_n,cena_z_b,vat,sww,czy_od_pl_vat,nr_wewn,dostawca) SELECT 'Towar '||i,'',0,0,'23','','',i,i%50 "
       "FROM generate_series(1," + std::to_string(kItems) + ") i");
  for (int w = 1; w <= kWarehouses; ++w) {
    CreateWarehouseTables(false, w);
    const std::string headers = Sql(WarehouseTablePath(w, "naglowki"));
    Exec("INSERT INTO " + headers + " (typ_dok,nr_dok,znak_dok,data_dok) SELECT 1+d%18,d,'A',DATE '2025-01-01'+(d*7+" +
         std::to_string(w) + ")%730 FROM generate_series(1," + std::to_string(kDocumentsPerWarehouse) + ") d");
    Exec("INSERT INTO " + Sql(WarehouseTablePath(w, "specyfik")) +
         " (typ_dok,nr_dok,znak_dok,pozycja,data_dok,nr_towaru,ilosc,c_zak_netto,c_zak_brutto,c_spr_netto,c_spr_brutto) "
         "SELECT n.typ_dok,n.nr_dok,'A',p,n.data_dok,1+(n.nr_dok*31+p*17+" + std::to_string(w) + ")%" + std::to_string(kItems) +
         ",1+(n.nr_dok+p)%7,1.5,1.85,2.0,2.46 FROM " + headers + " n,generate_series(1," + std::to_string(kLinesPerDocument) + ") p");
  }
  Exec("ANALYZE");
}

TurnoverParams Params() {
  TurnoverParams p;
  p.from = EncodeDaySerial(2026, 1, 1);
  p.to = EncodeDaySerial(2026, 6, 30);
  for (int w = 1; w <= kWarehouses; ++w) p.warehouses.push_back(w);
  p.kinds = {1, 2, 4, 14, 15};  // sales and issues, counted with their minus sign
  return p;
}

double Seconds(std::chrono::steady_clock::time_point start) {
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

// Time spent before each step's report is charged to the step reported before it.
std::map<std::string, double> gStepSeconds;
std::string gLastStep;
std::chrono::steady_clock::time_point gLastAt;

void ShowStep(const char* step, int done, int total) {
  const auto now = std::chrono::steady_clock::now();
  if (!gLastStep.empty()) gStepSeconds[gLastStep] += std::chrono::duration<double>(now - gLastAt).count();
  gLastStep = step;
  gLastAt = now;
  std::printf("\r  step %s  warehouse %d/%d   ", step, done, total);
  std::fflush(stdout);
}

void PrintSteps() {
  if (!gLastStep.empty()) gStepSeconds[gLastStep] += Seconds(gLastAt);
  std::printf("  steps:");
  for (const auto& [step, seconds] : gStepSeconds) std::printf(" %s %.2f s", step.c_str(), seconds);
  std::printf("\n");
  gStepSeconds.clear();
  gLastStep.clear();
}

// The same figures in one statement: turnover and sale value per item in the
// period, stock per item before it, over every warehouse.
std::string BareAggregate(const TurnoverParams& p) {
  std::string lines;
  for (int32_t w : p.warehouses) {
    lines += std::string(lines.empty() ? "" : " UNION ALL ") + "SELECT s.nr_towaru,s.typ_dok,s.data_dok AS ds,n.data_dok AS dn,s.ilosc,s.c_spr_brutto FROM " +
             Sql(WarehouseTablePath(w, "specyfik")) + " s LEFT JOIN " + Sql(WarehouseTablePath(w, "naglowki")) +
             " n ON n.typ_dok=s.typ_dok AND n.nr_dok=s.nr_dok AND n.znak_dok=s.znak_dok";
  }
  const std::string from = "'" + std::string(DaySerialToIsoText(p.from).View()) + "'";
  const std::string to = "'" + std::string(DaySerialToIsoText(p.to).View()) + "'";
  return "SELECT SUM(a),SUM(v),SUM(b) FROM (SELECT nr_towaru,"
         "SUM(CASE WHEN typ_dok IN (1,2,4,14,15) AND dn>=" + from + " AND dn<=" + to + " THEN -ilosc END) AS a,"
         "SUM(CASE WHEN typ_dok IN (1,2,4,14,15) AND dn>=" + from + " AND dn<=" + to + " THEN -ilosc*c_spr_brutto END) AS v,"
         "SUM(CASE WHEN ds<" + from + " THEN CASE WHEN typ_dok IN (1,2,4,8,9,13,14,15) THEN -ilosc "
         "WHEN typ_dok IN (16,17) THEN 0 ELSE ilosc END END) AS b FROM (" + lines + ") l GROUP BY nr_towaru "
         "HAVING COUNT(CASE WHEN typ_dok IN (1,2,4,14,15) AND dn>=" + from + " AND dn<=" + to + " THEN 1 END)>0) g";
}

// The item analyses over the same lines: turnover of items (its quantity sum
// equals the turnover above) and stock with turnover, which reads every
// warehouse's whole history for the stock at the period's end.
void RunItemAnalyses(const TurnoverParams& t, double aggregate) {
  ItemAnalysisParams p;
  p.ranges = {{t.from, t.to}};
  p.warehouses = t.warehouses;
  p.kinds = t.kinds;
  for (ItemAnalysis a : {ItemAnalysis::kItemTurnover, ItemAnalysis::kStockTurnover}) {
    p.analysis = a;
    const auto start = std::chrono::steady_clock::now();
    ItemAnalysisOutcome outcome;
    RunItemAnalysis(p, ShowStep, outcome);
    PrintSteps();
    const auto rows = ReadItemAnalysisRows(p);
    const double seconds = Seconds(start);
    Real quantity = 0, stock = 0;
    for (const ItemAnalysisRow& r : rows) {
      quantity += r.quantity;
      stock += r.stock;
    }
    std::printf("\r%s: %.2f s (%zu items), ratio to the bare aggregate %.2f; quantity %.3f, stock at the end %.3f\n",
                a == ItemAnalysis::kItemTurnover ? "turnover of items" : "stock with turnover", seconds, rows.size(),
                seconds / aggregate, static_cast<double>(quantity), static_cast<double>(stock));
  }
}

void Run() {
  auto start = std::chrono::steady_clock::now();
  Fill();
  std::printf("filled %d lines in %d warehouses: %.1f s\n", kWarehouses * kDocumentsPerWarehouse * kLinesPerDocument,
              kWarehouses, Seconds(start));
  const TurnoverParams p = Params();
  double aggregate = 0;
  for (int round = 1; round <= 3; ++round) {
    start = std::chrono::steady_clock::now();
    std::vector<int32_t> missing;
    RunTurnoverAnalysis(p, ShowStep, missing);
    PrintSteps();
    const auto rows = ReadTurnoverRows(p);
    const double pipeline = Seconds(start);
    Real stock = 0;
    for (const TurnoverRow& r : rows) stock += r.stockBefore;
    const TurnoverTotals totals = SumTurnover(rows);

    start = std::chrono::steady_clock::now();
    PGResult bare;
    CheckDBError(PGRunQueryWithTup(BareAggregate(p), bare));
    aggregate = Seconds(start);
    std::printf("\rround %d: analysis %.2f s (%zu items), bare aggregate %.2f s, ratio %.2f\n", round, pipeline,
                rows.size(), aggregate, pipeline / aggregate);
    std::printf("  analysis:  turnover %.3f  sale gross %.2f  stock before %.3f\n", static_cast<double>(totals.turnover),
                static_cast<double>(totals.saleGross), static_cast<double>(stock));
    std::printf("  aggregate: turnover %s  sale gross %s  stock before %s\n", std::string(bare.Value(0, 0)).c_str(),
                std::string(bare.Value(0, 1)).c_str(), std::string(bare.Value(0, 2)).c_str());
  }
  RunItemAnalyses(p, aggregate);
}

}  // namespace

int main() {
  setenv("TERM", "xterm", 1);
  TermSetWarningWait(0);
  TermInputFromFd(-1);
  TermOutputToBuffer(&gScreen);
  TermInit();
  bool ready = false;
  {
    BenchDatabase db("bench_turnover");
    ready = db.Ready();
    if (ready) Run();
    else std::fprintf(stderr, "bench_turnover: %s\n", db.Error().c_str());
  }
  TermOutputToBuffer(nullptr);
  return ready ? 0 : 1;
}
