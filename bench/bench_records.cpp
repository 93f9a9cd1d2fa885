// Navigation over 100,000 rows of a 24-column table in a private cluster:
// the PGRecNext walk against a raw libpq loop of "FETCH FORWARD 61" over the
// same cursor (target ratio at most 1.3), the round trips and time of
// PGSrchKey modes 0 and 2, and PGRecNum after a search with the plan of its
// count. Run: build/bench/bench_records (needs the PostgreSQL 15 server
// programs, as the database tests do).
#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <functional>
#include <string>
#include <string_view>

#include "bench/bench_db.h"
#include "sqltable/pglib.h"
#include "sqltable/pgnav.h"

namespace {

constexpr int kRows = 100000;
int16_t gTbl = 0, gRec = 0;

bool Run(const std::string& sql) { return PGRunQueryNoTup(sql) == 0; }

// dane\bench: k I (key, even numbers 2..200000), 23 more columns of every
// common type, a secondary index on c1.
bool MakeTable() {
  std::vector<PGName> names{"k"}, types{"I"};
  const char* kinds[] = {"A20", "I", "N", "D", "$", "A10", "S"};
  for (int i = 1; i <= 23; ++i) {
    names.emplace_back(ShortText("c" + std::to_string(i)));
    types.emplace_back(kinds[i % 7]);
  }
  if (PGTblCreate("dane\\bench", 24, names.data(), types.data()) != 0) return false;
  std::string cols = "k", values = "2*i";
  const char* exprs[] = {"'nazwa '||i", "i%1000", "i*1.25", "DATE '2020-01-01'+i%1000", "i*0.01", "'x'||i%97",
                         "i%300"};
  for (int i = 1; i <= 23; ++i) {
    cols += ",c" + std::to_string(i);
    values += std::string(",") + exprs[i % 7];
  }
  const int16_t key[1] = {1};
  return Run("INSERT INTO dane_bench (" + cols + ") SELECT " + values + " FROM generate_series(1," +
             std::to_string(kRows) + ") i") &&
         PGKeyAdd("dane\\bench", 1, key, 0) == 0 && Run("VACUUM ANALYZE dane_bench");
}

// The layer's walk from the first row to the end; the rows seen.
int LayerWalk() {
  int rows = PGRecFirst(gTbl) == 0 ? 1 : 0;
  while (PGRecNext(gTbl) == 0) ++rows;
  return rows;
}

// The same cursor read with the client library alone; every value is touched.
int RawWalk() {
  const std::string cursor = PGTableAt(gTbl)->cursorName.Str();
  const std::string fetch = "FETCH FORWARD 61 IN " + cursor;
  const PGLibApi& pq = PGLib();
  pq.clear(pq.exec(PGConn, ("MOVE ABSOLUTE 0 IN " + cursor).c_str()));
  int rows = 0;
  std::size_t bytes = 0;
  for (;;) {
    PGresult* res = pq.exec(PGConn, fetch.c_str());
    const int n = pq.ntuples(res), cols = pq.nfields(res);
    for (int r = 0; r < n; ++r)
      for (int c = 0; c < cols; ++c) bytes += std::string_view(pq.getvalue(res, r, c), pq.getlength(res, r, c)).size();
    pq.clear(res);
    rows += n;
    if (n == 0) break;
  }
  benchmark::DoNotOptimize(bytes);
  return rows;
}

void BM_WalkPGRecNext(benchmark::State& state) {
  for (auto _ : state)
    if (LayerWalk() != kRows) state.SkipWithError("wrong row count");
  state.SetItemsProcessed(state.iterations() * kRows);
}

void BM_WalkRawFetch(benchmark::State& state) {
  for (auto _ : state)
    if (RawWalk() != kRows) state.SkipWithError("wrong row count");
  state.SetItemsProcessed(state.iterations() * kRows);
}

int16_t Search(int32_t key, int mode) {
  (void)PGPutLong(gRec, 1, key);
  return PGSrchKey(gTbl, gRec, 1, mode);
}

void BM_SrchKeyMode0(benchmark::State& state) {
  int32_t key = 2;
  uint64_t statements = 0;
  for (auto _ : state) {
    const uint64_t before = PGStatementCount;
    if (Search(key, 0) != 0) state.SkipWithError("not found");
    statements += PGStatementCount - before;
    key = (key + 2 * 7919) % (2 * kRows) + 2;  // even keys 2..200000 all exist
  }
  state.counters["round_trips"] = benchmark::Counter(static_cast<double>(statements), benchmark::Counter::kAvgIterations);
}

// A key between two: the exact select misses, the closest walk lands above.
void BM_SrchKeyMode2(benchmark::State& state) {
  int32_t key = 3;
  uint64_t statements = 0;
  for (auto _ : state) {
    const uint64_t before = PGStatementCount;
    if (Search(key, 2) != kPGRecordNotFound) state.SkipWithError("unexpected result");
    statements += PGStatementCount - before;
    key = ((key + 2 * 7919) % (2 * kRows - 2)) | 1;  // odd keys fall between two
  }
  state.counters["round_trips"] = benchmark::Counter(static_cast<double>(statements), benchmark::Counter::kAvgIterations);
}

// Times what follows a search hit, outside the search itself.
void AfterSearch(benchmark::State& state, const std::function<bool(int32_t)>& step) {
  int32_t key = 2 * 50000;
  uint64_t statements = 0;
  for (auto _ : state) {
    state.PauseTiming();
    const int16_t found = Search(key, 0);
    state.ResumeTiming();
    if (found != 0) {
      state.SkipWithError("not found");
      break;
    }
    const uint64_t before = PGStatementCount;
    if (!step(key)) {
      state.SkipWithError("wrong row");
      break;
    }
    statements += PGStatementCount - before;
    key = (key + 2 * 7919) % (2 * kRows) + 2;
  }
  state.counters["round_trips"] = benchmark::Counter(static_cast<double>(statements), benchmark::Counter::kAvgIterations);
}

// The search leaves the view stale: PGRecNum declares the cursor again, then counts.
void BM_RecNumAfterSearch(benchmark::State& state) {
  AfterSearch(state, [](int32_t key) {
    int32_t recno = 0;
    return PGRecNum(gTbl, recno) == 0 && recno == key / 2;
  });
}

// A move from the found row re-aligns by counting only (no change published).
void BM_RecNextAfterSearch(benchmark::State& state) {
  AfterSearch(state, [](int32_t key) {
    int32_t k = 0;
    const int16_t code = PGRecNext(gTbl);
    (void)PGRecGet(gTbl, gRec);
    (void)PGGetLong(gRec, 1, k);
    return (code == 0 && k == key + 2) || (key == 2 * kRows && code == kPGEndOfTable);
  });
}

BENCHMARK(BM_WalkPGRecNext)->Unit(benchmark::kMillisecond)->MinTime(2.0);
BENCHMARK(BM_WalkRawFetch)->Unit(benchmark::kMillisecond)->MinTime(2.0);
BENCHMARK(BM_SrchKeyMode0)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_SrchKeyMode2)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_RecNumAfterSearch)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_RecNextAfterSearch)->Unit(benchmark::kMicrosecond);

double BestSeconds(const std::function<void()>& walk) {
  double best = 1e9;
  for (int i = 0; i < 5; ++i) {
    const auto start = std::chrono::steady_clock::now();
    walk();
    best = std::min(best, std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count());
  }
  return best;
}

// The walk ratio measured in this run, and the plans of PGRecNum's statements.
void PrintSummary() {
  const double layer = BestSeconds([] { (void)LayerWalk(); });
  const double raw = BestSeconds([] { (void)RawWalk(); });
  std::printf("\nwalk of %d rows x 24 columns: PGRecNext %.1f ms, raw FETCH FORWARD 61 %.1f ms, ratio %.2f (target <= 1.3)\n",
              kRows, layer * 1e3, raw * 1e3, layer / raw);
  for (const char* sql : {"EXPLAIN SELECT COUNT(*) FROM DANE_BENCH WHERE K < 100000",
                          "EXPLAIN SELECT OID FROM DANE_BENCH WHERE K = 100000 ORDER BY K"}) {
    PGResult res;
    if (PGRunQueryWithTup(sql, res) != 0) continue;
    std::printf("\n%s\n", sql + 8);
    for (int r = 0; r < res.Rows(); ++r) std::printf("  %s\n", std::string(res.Value(r, 0)).c_str());
  }
}

// The table and its cursor in the connected database.
bool SetUp(std::string& error) {
  if (!MakeTable() || PGTblOpen("dane\\bench", gTbl, 0) != 0 || PGRecBufOpen(gTbl, gRec) != 0 ||
      PGRecFirst(gTbl) != 0) {
    error = "table: " + PGLastOp.Str();
    return false;
  }
  return true;
}

}  // namespace

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  bool ready = false;
  {
    BenchDatabase db("bench_records");
    std::string error = db.Error();
    ready = db.Ready() && SetUp(error);
    if (ready) {
      benchmark::RunSpecifiedBenchmarks();
      PrintSummary();
    } else {
      std::fprintf(stderr, "bench_records: %s\n", error.c_str());
    }
  }
  benchmark::Shutdown();
  return ready ? 0 : 1;
}
