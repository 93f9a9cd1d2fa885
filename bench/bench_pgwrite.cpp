// Appending rows: 100,000 rows through PGRecAppend inside one transaction
// against a raw loop of the same INSERT statements on the client library.
// Starts a throw-away cluster of its own; prints both times and their ratio.
#include <benchmark/benchmark.h>
#include <stdlib.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <string>

#include "pgcluster.h"
#include "sqltable/pglib.h"
#include "sqltable/pgrecord.h"
#include "sqltable/pgwrite.h"

namespace {

constexpr int kRows = 100000;
const ShortText kTable = "dane\\bench";
double gLayerSeconds = 0, gRawSeconds = 0;

struct Cluster {
  std::string stateDir;
  bool up = false;
  Cluster() {
    char dir[] = "/tmp/klote-bench-XXXXXX";
    if (!mkdtemp(dir)) return;
    stateDir = dir;
    PgCluster c;
    std::string error;
    up = PgClusterStart(stateDir, c, error);
    if (!up) {
      std::fprintf(stderr, "cluster: %s\n", error.c_str());
      return;
    }
    const std::string info = "host=" + c.socketDir + " port=" + std::to_string(c.port) + " user=" + c.user +
                             " dbname=postgres";
    up = PGReconnect(info) == 0 && PGinitializett() == 0;
  }
  ~Cluster() {
    PGShutdownTables(1);
    PGDisconnect();
    if (!stateDir.empty()) PgClusterStop(stateDir);
  }
};

bool CreateBenchTable() {
  const PGName names[] = {"kod", "nazwa", "cena", "ilosc", "data"};
  const PGName types[] = {"I", "A40", "N", "X", "D"};
  return PGTblCreate(kTable, 5, names, types) == 0;
}

double Seconds(std::chrono::steady_clock::time_point since) {
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - since).count();
}

void FillRow(int16_t rec, int i) {
  (void)PGPutLong(rec, 1, i);
  (void)PGPutAlpha(rec, 2, ShortText("Towar nr " + std::to_string(i) + " 'x'"));
  (void)PGPutDoub(rec, 3, i * 1.25);
  (void)PGPutExt(rec, 4, i * 0.5L);
  (void)PGPutDate(rec, 5, 40000 + i % 3000);
}

void BM_LayerAppend(benchmark::State& state) {
  double seconds = 1;
  for (auto _ : state) {
    if (!CreateBenchTable()) return state.SkipWithError("create");
    int16_t tbl = 0, rec = 0;
    if (PGTblOpen(kTable, tbl, 0) != 0 || PGRecBufOpen(tbl, rec) != 0) return state.SkipWithError("open");
    const auto start = std::chrono::steady_clock::now();
    (void)PGTransBegin();
    for (int i = 1; i <= kRows; ++i) {
      FillRow(rec, i);
      if (PGRecAppend(tbl, rec) != 0) return state.SkipWithError("append");
    }
    (void)PGTransCommit();
    seconds = Seconds(start);
    gLayerSeconds = gLayerSeconds > 0 ? std::min(gLayerSeconds, seconds) : seconds;
    state.SetIterationTime(seconds);
    (void)PGRecBufClose(rec);
    (void)PGTblClose(tbl);
  }
  state.counters["rows_per_s"] = kRows / seconds;
}

// The statement text that the layer sends for row i, built with plain strings.
std::string RawInsert(int i) {
  char num[64];
  std::snprintf(num, sizeof num, "%.17g", i * 1.25);
  return "INSERT INTO DANE_BENCH (kod,nazwa,cena,ilosc,data) VALUES (" + std::to_string(i) + ",'Towar nr " +
         std::to_string(i) + " \\'x\\''," + num + "," + std::to_string(i / 2) + ".5000000,'2009-07-06') RETURNING oid";
}

void BM_RawLoop(benchmark::State& state) {
  double seconds = 1;
  for (auto _ : state) {
    if (!CreateBenchTable()) return state.SkipWithError("create");
    const PGLibApi& pq = PGLib();
    const auto start = std::chrono::steady_clock::now();
    pq.clear(pq.exec(PGConn, "BEGIN"));
    for (int i = 1; i <= kRows; ++i) {
      PGresult* res = pq.exec(PGConn, RawInsert(i).c_str());
      const bool ok = pq.resultStatus(res) == PGRES_TUPLES_OK;
      pq.clear(res);
      if (!ok) return state.SkipWithError("insert");
    }
    pq.clear(pq.exec(PGConn, "COMMIT"));
    seconds = Seconds(start);
    gRawSeconds = gRawSeconds > 0 ? std::min(gRawSeconds, seconds) : seconds;
    state.SetIterationTime(seconds);
  }
  state.counters["rows_per_s"] = kRows / seconds;
}

}  // namespace

// Two rounds, interleaved, so that a busy moment of the machine does not fall on one side only;
// the ratio compares the best time of each.
BENCHMARK(BM_RawLoop)->Iterations(1)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK(BM_LayerAppend)->Iterations(1)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK(BM_RawLoop)->Iterations(1)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK(BM_LayerAppend)->Iterations(1)->UseManualTime()->Unit(benchmark::kMillisecond);

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  Cluster cluster;
  if (!cluster.up) return 1;
  benchmark::RunSpecifiedBenchmarks();
  if (gRawSeconds > 0 && gLayerSeconds > 0)
    std::printf("PGRecAppend / raw loop for %d rows, best of two each: %.3f s / %.3f s = %.3f (target at most 1.2)\n", kRows,
                gLayerSeconds, gRawSeconds, gLayerSeconds / gRawSeconds);
  benchmark::Shutdown();
  return 0;
}
