// The customer list over 100,000 contractors on a private cluster: the
// first screen (count and 18 rows), one PgDn (the next 18 rows) and a
// search by a fragment of the name, each beside the bare SQL that gives the
// same rows in one statement. Run: build/bench/bench_contractors.
#include <benchmark/benchmark.h>

#include <cstdio>
#include <string>
#include <vector>

#include "bench/bench_db.h"
#include "master/contractors.h"
#include "master/contractors_detail.h"
#include "sqltable/pgnav.h"
#include "sqltable/pgtable.h"
#include "tui/term.h"

namespace {

constexpr int kRows = 100000;
constexpr int kPage = 18;
std::string gScreen;
const std::string kOrder = " ORDER BY nazwa, nazwa_inne, numer";

using contractors_detail::CatalogueTable;

void FillCatalogue() {
  (void)ContractorTablesEnsure();
  (void)PGRunQueryNoTup("INSERT INTO dane_odbiorcy (nazwa, nazwa_inne, numer, kod, miasto, ulica, czy_podmiot_gosp, nip) "
                        "SELECT 'Firma ' || md5(g::text), '', g, '00-001', 'Miasto ' || (g % 500), 'Ulica ' || g, 'T', "
                        "lpad(g::text, 10, '0') FROM generate_series(1, " + std::to_string(kRows) + ") g");
  (void)PGRunQueryNoTup("ANALYZE dane_odbiorcy");
}

void BareRows(int offset) {
  PGResult res;
  (void)PGExec(res, "SELECT * FROM dane_odbiorcy" + kOrder + " LIMIT " + std::to_string(kPage) + " OFFSET " +
                        std::to_string(offset), true);
  benchmark::DoNotOptimize(res.Rows());
}

// The list's first screen: a new open, the count, the first page.
void BM_ListFirstScreen(benchmark::State& state) {
  std::vector<Contractor> page;
  for (auto _ : state) {
    CatalogueTable t(ContractorKind::kCustomer);
    int32_t count = 0;
    (void)PGTblNRecs(t.tbl(), count);
    contractors_detail::ReadPage(t, 1, kPage, page);
  }
}

void BM_BareFirstScreen(benchmark::State& state) {
  for (auto _ : state) {
    PGResult res;
    (void)PGExec(res, "SELECT count(*) FROM dane_odbiorcy", true);
    BareRows(0);
  }
}

// PgDn through the list, page after page on one open table.
void BM_ListPgDn(benchmark::State& state) {
  CatalogueTable t(ContractorKind::kCustomer);
  std::vector<Contractor> page;
  int32_t top = 1;
  for (auto _ : state) {
    top += kPage;
    if (top > kRows - kPage) top = 1;
    contractors_detail::ReadPage(t, top, kPage, page);
  }
}

void BM_BarePgDn(benchmark::State& state) {
  int offset = 0;
  for (auto _ : state) {
    offset += kPage;
    if (offset > kRows - kPage) offset = 0;
    BareRows(offset);
  }
}

// The search by a fragment that the last rows of the name order hold.
void BM_ListSearchName(benchmark::State& state) {
  CatalogueTable t(ContractorKind::kCustomer);
  for (auto _ : state) benchmark::DoNotOptimize(contractors_detail::FindNameFragment(t, ShortText("FFFF"), 0));
}

void BM_BareSearchName(benchmark::State& state) {
  for (auto _ : state) {
    PGResult res;
    (void)PGExec(res, "SELECT * FROM dane_odbiorcy WHERE position('FFFF' IN upper(nazwa)) > 0" + kOrder + " LIMIT 1",
                 true);
    benchmark::DoNotOptimize(res.Rows());
  }
}

BENCHMARK(BM_ListFirstScreen)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_BareFirstScreen)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_ListPgDn)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_BarePgDn)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_ListSearchName)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_BareSearchName)->Unit(benchmark::kMillisecond);

}  // namespace

int main(int argc, char** argv) {
  TermOutputToBuffer(&gScreen);
  BenchDatabase db("bench_contractors");
  if (!db.Ready()) {
    std::fprintf(stderr, "no database: %s\n", db.Error().c_str());
    return 1;
  }
  FillCatalogue();
  benchmark::Initialize(&argc, argv);
  benchmark::RunSpecifiedBenchmarks();
  return 0;
}
