// The customer list over 100,000 contractors on a private cluster: the
// first screen (18 rows), one PgDn (the next 18 rows after the last
// one shown) and a search by a fragment of the name, each beside the bare
// SQL that gives the same rows in one statement. Run: build/bench/bench_contractors.
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

using contractors_detail::FragmentField;
using contractors_detail::ListKey;
using contractors_detail::ListOrder;

void FillCatalogue() {
  (void)ContractorTablesEnsure();
  (void)PGRunQueryNoTup("INSERT INTO dane_odbiorcy (nazwa, nazwa_inne, numer, kod, miasto, ulica, czy_podmiot_gosp, nip) "
                        "SELECT 'Firma ' || md5(g::text), '', g, '00-001', 'Miasto ' || (g % 500), 'Ulica ' || g, 'T', "
                        "lpad(g::text, 10, '0') FROM generate_series(1, " + std::to_string(kRows) + ") g");
  (void)PGRunQueryNoTup("ANALYZE dane_odbiorcy");
}

// The rows after the key of the last one read, as one statement.
void BareRowsAfter(std::string& lastName, int& lastNumber) {
  PGResult res;
  const std::string after = lastNumber == 0 ? std::string()
                                            : " WHERE (nazwa, nazwa_inne, numer) > ('" + lastName + "', '', " +
                                                  std::to_string(lastNumber) + ")";
  (void)PGExec(res, "SELECT * FROM dane_odbiorcy" + after + kOrder + " LIMIT " + std::to_string(kPage), true);
  if (res.Rows() < kPage) {
    lastNumber = 0;  // the end: from the start again
    return;
  }
  lastName = std::string(res.Value(kPage - 1, 1));
  lastNumber = std::stoi(std::string(res.Value(kPage - 1, 3)));
}

// The list's first screen: the first page of the name order.
void BM_ListFirstScreen(benchmark::State& state) {
  std::vector<Contractor> page;
  for (auto _ : state) {
    (void)contractors_detail::ListRead(ContractorKind::kCustomer, ListOrder::kName, ListKey{}, true, kPage, std::string(), page);
  }
}

void BM_BareFirstScreen(benchmark::State& state) {
  for (auto _ : state) {
    std::string name;
    int number = 0;
    BareRowsAfter(name, number);
  }
}

// PgDn through the list, page after page from the last row shown.
void BM_ListPgDn(benchmark::State& state) {
  std::vector<Contractor> page;
  (void)contractors_detail::ListRead(ContractorKind::kCustomer, ListOrder::kName, ListKey{}, true, kPage, std::string(), page);
  for (auto _ : state) {
    const ListKey after = page.size() == kPage ? contractors_detail::KeyOf(page.back(), false) : ListKey{};
    (void)contractors_detail::ListRead(ContractorKind::kCustomer, ListOrder::kName, after, true, kPage, std::string(), page);
  }
}

void BM_BarePgDn(benchmark::State& state) {
  std::string name;
  int number = 0;
  for (auto _ : state) BareRowsAfter(name, number);
}

// The search by a fragment that the last rows of the name order hold.
void BM_ListSearchName(benchmark::State& state) {
  std::vector<Contractor> found;
  const std::string condition = contractors_detail::FragmentCondition(FragmentField::kName, ShortText("FFFF"));
  for (auto _ : state) {
    (void)contractors_detail::ListRead(ContractorKind::kCustomer, ListOrder::kName, ListKey{}, true, 1, condition, found);
    benchmark::DoNotOptimize(found.size());
  }
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
