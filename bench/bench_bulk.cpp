// Whole tables and control mirrors on a private cluster: TblCopyData of
// 100,000 rows, the physical sort of the same table, and one "is this number
// free?" question answered by the mirror beside the same question as a key
// search. Run: build/bench/bench_bulk (needs the PostgreSQL 15 server
// programs, as the database tests do).
#include <benchmark/benchmark.h>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "bench/bench_db.h"
#include "sqltable/pgcontrol.h"
#include "sqltable/pgnav.h"
#include "sqltable/pgrecord.h"
#include "users/bulk.h"

namespace {

std::string gScreen;
constexpr int kRows = 100000;

bool Make(const char* path, const PGName (&names)[3], const PGName (&types)[3], const std::string& fill) {
  if (PGTblCreate(path, 3, names, types) != 0) return false;
  const int16_t key[2] = {1, 2};
  return PGKeyAdd(path, 2, key, 0) == 0 && PGRunQueryNoTup(fill) == 0;
}

bool MakeTables() {
  const PGName names[3] = {"k", "nazwa", "d"}, types[3] = {"I", "A30", "D"};
  const PGName ctl[3] = {"rodz", "numer", "nazwa"}, ctlTypes[3] = {"A1", "I", "A15"};
  return Make("dane\\zrod", names, types,
              "INSERT INTO dane_zrod (k,nazwa,d) SELECT i,'nazwa '||i,DATE '2020-01-01'+i%900 "
              "FROM generate_series(1," + std::to_string(kRows) + ") i") &&
         Make("dane\\kontr", ctl, ctlTypes,
              "INSERT INTO dane_kontr (rodz,numer,nazwa) SELECT 'F',i,'F'||i FROM generate_series(1,5000) i");
}

void BM_CopyData100k(benchmark::State& state) {
  for (auto _ : state) {
    if (TblCopyData("dane\\zrod", "dane\\kopia") != 0) state.SkipWithError("copy failed");
    gScreen.clear();
  }
  state.counters["rows/s"] = benchmark::Counter(kRows, benchmark::Counter::kIsIterationInvariantRate);
}

void BM_SortPhysical100k(benchmark::State& state) {
  bool descending = false;
  for (auto _ : state) {
    if (TblSortPhysical("dane\\zrod", "nazwa", descending = !descending) != 0) state.SkipWithError("sort failed");
  }
}

struct ControlTable {
  int16_t tbl = 0, rec = 0;
  ControlTable() {
    (void)PGTblOpen("dane\\kontr", tbl, 0);
    (void)PGRecBufOpen(tbl, rec);
  }
  ~ControlTable() { (void)PGTblClose(tbl); }
};

void BM_ControlQuestionMirror(benchmark::State& state) {
  ControlTable t;
  int32_t n = 0;
  for (auto _ : state) benchmark::DoNotOptimize(PGControlHasNumber('F', n++ % 6000, t.tbl, t.rec));
}

void BM_ControlQuestionKeySearch(benchmark::State& state) {
  ControlTable t;
  int32_t n = 0;
  for (auto _ : state) {
    (void)PGPutAlpha(t.rec, 1, "F");
    (void)PGPutLong(t.rec, 2, n++ % 6000);
    benchmark::DoNotOptimize(PGSrchKey(t.tbl, t.rec, 2, 0));
  }
}

BENCHMARK(BM_CopyData100k)->Unit(benchmark::kMillisecond)->Iterations(3)->UseRealTime();
BENCHMARK(BM_SortPhysical100k)->Unit(benchmark::kMillisecond)->Iterations(3);
BENCHMARK(BM_ControlQuestionMirror)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_ControlQuestionKeySearch)->Unit(benchmark::kMicrosecond);

}  // namespace

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  BenchQuietTerminal(&gScreen);  // the progress boxes go into a string
  bool ready = false;
  {
    BenchDatabase db("bench_bulk");
    ready = db.Ready() && MakeTables();
    if (ready) benchmark::RunSpecifiedBenchmarks();
    else std::fprintf(stderr, "bench_bulk: %s %s\n", db.Error().c_str(), PGLastOp.Str().c_str());
  }
  TermOutputToBuffer(nullptr);
  benchmark::Shutdown();
  return ready ? 0 : 1;
}
