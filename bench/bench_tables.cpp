// Setting up a warehouse: CreateWarehouseTables on a private cluster, for a
// new warehouse each time (tables that do not exist yet) and for the same
// warehouse again (every table replaced), with the statements each call
// sends. Run: build/bench/bench_tables (needs the PostgreSQL 15 server
// programs, as the database tests do).
#include <benchmark/benchmark.h>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "bench/bench_db.h"
#include "master/tables.h"
#include "sqltable/pgtable.h"
#include "tui/term.h"

namespace {

std::string gScreen;
int32_t gNextWarehouse = 1000;

void CountStatements(benchmark::State& state, uint64_t statements) {
  state.counters["statements"] =
      benchmark::Counter(static_cast<double>(statements), benchmark::Counter::kAvgIterations);
}

void BM_CreateWarehouseTablesNew(benchmark::State& state) {
  uint64_t statements = 0;
  for (auto _ : state) {
    const uint64_t before = PGStatementCount;
    CreateWarehouseTables(false, gNextWarehouse++);
    statements += PGStatementCount - before;
    gScreen.clear();
  }
  CountStatements(state, statements);
}

void BM_CreateWarehouseTablesAgain(benchmark::State& state) {
  CreateWarehouseTables(false, 1);
  uint64_t statements = 0;
  for (auto _ : state) {
    const uint64_t before = PGStatementCount;
    CreateWarehouseTables(true, 1);
    statements += PGStatementCount - before;
    gScreen.clear();
  }
  CountStatements(state, statements);
}

BENCHMARK(BM_CreateWarehouseTablesNew)->Unit(benchmark::kMillisecond)->MinTime(2.0);
BENCHMARK(BM_CreateWarehouseTablesAgain)->Unit(benchmark::kMillisecond)->MinTime(2.0);

// The very first warehouse of a fresh database, before anything is cached.
void TimeFirstWarehouse() {
  const uint64_t before = PGStatementCount;
  const auto start = std::chrono::steady_clock::now();
  CreateWarehouseTables(false, 0);
  const double ms = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count() * 1e3;
  std::printf("first CreateWarehouseTables on a fresh database: %.1f ms, %llu statements\n", ms,
              static_cast<unsigned long long>(PGStatementCount - before));
  gScreen.clear();
}


}  // namespace

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  BenchQuietTerminal(&gScreen);
  bool ready = false;
  {
    BenchDatabase db("bench_tables");
    ready = db.Ready();
    if (ready) {
      TimeFirstWarehouse();
      benchmark::RunSpecifiedBenchmarks();
    } else {
      std::fprintf(stderr, "bench_tables: %s\n", db.Error().c_str());
    }
  }
  TermOutputToBuffer(nullptr);
  benchmark::Shutdown();
  return ready ? 0 : 1;
}
