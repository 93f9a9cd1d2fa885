// The next-number statement on a warehouse's headers of 1,000,000 documents
// (18 kinds over ten years, 2015..2024): its plan as the server runs it and
// the time of NextDocNumber for the latest year, an early year and a twin
// series. Run: build/bench/bench_docnumbers (needs the PostgreSQL 15 server
// programs, as the database tests do).
#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstdlib>
#include <string>

#include "base/dates.h"
#include "bench/bench_db.h"
#include "documents/numbering.h"
#include "master/tables.h"
#include "sqltable/pgtable.h"

namespace {

const ShortText kTable = WarehouseTablePath(1, "naglowki");
constexpr int kRows = 1000000;

// Row i: kind 1 + i % 18, year 2015 + i / 100000, a day of that year; the
// number counts the rows of its kind and year, so every series is dense.
bool Fill() {
  if (CreateTableFrom(kTable, kNaglowkiDef) != 0) return false;
  const std::string sql =
      "INSERT INTO " + PGSqlName(kTable).Str() +
      " (typ_dok,nr_dok,znak_dok,data_dok,zablokowany) "
      "SELECT k, ((y-1996)<<24) | (row_number() OVER (PARTITION BY k,y ORDER BY i))::int, 'A', "
      "make_date(y,1,1) + (i % 365), 'N' FROM (SELECT i, 1 + i % 18 AS k, 2015 + i / 100000 AS y "
      "FROM generate_series(0," + std::to_string(kRows - 1) + ") i) s";
  return PGRunQueryNoTup(sql) == 0 && PGRunQueryNoTup("ANALYZE " + PGSqlName(kTable).Str()) == 0;
}

void PrintPlan(const char* what, int kind, int year, const NumberingSettings& s) {
  PGResult res;
  const std::string sql = NextNumberSql(kTable, SeriesOf(kind, s), year);
  std::printf("--- %s: %s\n", what, sql.c_str());
  if (PGRunQueryWithTup("EXPLAIN (ANALYZE, COSTS OFF) " + sql, res) != 0) {
    std::printf("EXPLAIN failed: %s\n", PGLastOp.Str().c_str());
    return;
  }
  for (int r = 0; r < res.Rows(); ++r) std::printf("  %s\n", std::string(res.Value(r, 0)).c_str());
}

void BM_NextDocNumber(benchmark::State& state) {
  const int kind = static_cast<int>(state.range(0));
  const int year = static_cast<int>(state.range(1));
  const NumberingSettings s = NumberingSettingsFrom(0, static_cast<int>(state.range(2)));
  const int32_t date = EncodeDaySerial(year, 6, 30);
  NextNumber n;
  for (auto _ : state) {
    if (NextDocNumber(date, kind, kTable, s, n) != 0 || n.failed) state.SkipWithError("no number");
    benchmark::DoNotOptimize(n);
  }
  state.counters["number"] = static_cast<double>(TryDecodeDocNumber(n.coded).number);
}
// kind, year, one invoice series
BENCHMARK(BM_NextDocNumber)->Args({2, 2024, 0})->Args({2, 2016, 0})->Args({2, 2024, 1})->Args({17, 2020, 0})
    ->Unit(benchmark::kMicrosecond);

}  // namespace

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  bool ready = false;
  {
    // No screen: nothing here shows a box.
    BenchDatabase db("bench_docnumbers");
    ready = db.Ready() && Fill();
    if (ready) {
      std::printf("headers: %s rows\n", std::to_string(kRows).c_str());
      PrintPlan("latest year", 2, 2024, NumberingSettingsFrom(0, 0));
      PrintPlan("early year", 2, 2016, NumberingSettingsFrom(0, 0));
      PrintPlan("twin series 2/4", 2, 2024, NumberingSettingsFrom(0, 1));
      std::fflush(stdout);
      benchmark::RunSpecifiedBenchmarks();
    } else {
      std::fprintf(stderr, "bench_docnumbers: %s %s\n", db.Error().c_str(), PGLastOp.Str().c_str());
    }
  }
  benchmark::Shutdown();
  return ready ? 0 : 1;
}
