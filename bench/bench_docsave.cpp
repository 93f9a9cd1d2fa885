// The save of a sale document of 100 lines from the work table, beside an
// ideal batched SQL of the same effect in the same run: one transaction, the
// next number, the header, the stock of the 100 items in one UPDATE, the lines
// in one multi-row INSERT, the work table emptied. Both print their statements
// (round trips) per document. Run: build/bench/bench_docsave (needs the
// PostgreSQL 15 server programs, as the database tests do).
#include <benchmark/benchmark.h>

#include <cstdio>
#include <string>

#include "base/dates.h"
#include "bench/bench_db.h"
#include "documents/docsave.h"
#include "master/items.h"
#include "master/tables.h"
#include "sqltable/pgtable.h"

namespace {

constexpr int32_t kWarehouse = 1;
constexpr int32_t kUser = 1;
constexpr int kLines = 100;
constexpr int kItems = 1000;
const int32_t kDate = EncodeDaySerial(2024, 6, 30);

std::string Sql(const char* path) { return PGSqlName(WarehouseTablePath(kWarehouse, path)).Str(); }

// 1,000 items with a large stock, so no line is ever cut.
bool Fill() {
  CreateFirmTables();
  CreateWarehouseTables(false, kWarehouse);
  for (int n = 1; n <= kItems; ++n) {
    ItemData item;
    item.name = ShortText("Towar " + std::to_string(n));
    item.vat = n % 2 ? "23" : "8";
    item.supplier = 1;
    item.unit = "szt";
    item.saleNet = 1 + n % 97;
    item.saleGross = item.saleNet * 1.23L;
    StockRow stock;
    stock.quantity = 1e9;
    ShortText refusal;
    if (ItemAdd(item, ItemRules{}, kWarehouse, stock, refusal) != 0 || !refusal.Empty()) return false;
  }
  return WorkTableEnsure(kUser) == 0;
}

// The 100 lines of one document, on items spread over the catalogue.
bool WriteWorkLines(int doc) {
  for (int i = 0; i < kLines; ++i) {
    DocLine line;
    const int n = 1 + (doc * 37 + i * 7) % kItems;
    bool found = false;
    if (ItemFindByNumber(n, line.item, found) != 0 || !found) return false;
    line.quantity = 1 + i % 3;
    if (WorkLineAppend(WorkTablePath(kUser), line) != 0) return false;
  }
  return true;
}

void BM_SaveNewDocument(benchmark::State& state) {
  int doc = 0;
  uint64_t statements = 0;
  const SaveSettings settings;
  for (auto _ : state) {
    state.PauseTiming();
    if (!WriteWorkLines(doc++)) state.SkipWithError("work table");
    const uint64_t before = PGStatementCount;
    state.ResumeTiming();
    DocumentHeader header;
    header.kind = 2;
    header.mark = "A";
    header.date = kDate;
    const SaveResult r = SaveNewDocument(kWarehouse, header, WorkTablePath(kUser), settings);
    if (r.outcome != SaveOutcome::kSaved || r.lines != kLines) state.SkipWithError("not saved");
    statements += PGStatementCount - before;
  }
  state.counters["statements"] = static_cast<double>(statements) / static_cast<double>(state.iterations());
}
BENCHMARK(BM_SaveNewDocument)->Unit(benchmark::kMillisecond)->Iterations(200);

// The same effect written by hand: one transaction, one statement per table.
void BM_IdealBatchedSql(benchmark::State& state) {
  int doc = 100000;
  uint64_t statements = 0;
  const std::string work = PGSqlName(WorkTablePath(kUser)).Str();
  for (auto _ : state) {
    state.PauseTiming();
    if (!WriteWorkLines(doc++)) state.SkipWithError("work table");
    const uint64_t before = PGStatementCount;
    state.ResumeTiming();
    PGResult res;
    bool ok = PGRunQueryNoTup("BEGIN") == 0 && PGRunQueryNoTup("LOCK TABLE " + Sql("naglowki") + "," +
                                                                Sql("stany_mg") + "," + Sql("specyfik") +
                                                                " IN EXCLUSIVE MODE") == 0;
    ok = ok && PGRunQueryWithTup("INSERT INTO " + Sql("naglowki") +
                                     " (typ_dok,nr_dok,znak_dok,data_dok,suma_dok,zablokowany) SELECT 2,"
                                     "COALESCE(max(nr_dok),469762048)+1,'B','2024-06-30',"
                                     "(SELECT round(sum(round(ilosc*cena_s_n,2)*(100+vat::int)/100),2) FROM " +
                                     work + "),'N' FROM " + Sql("naglowki") +
                                     " WHERE typ_dok=2 AND znak_dok='B' RETURNING nr_dok",
                                 res) == 0;
    ok = ok && PGRunQueryNoTup("UPDATE " + Sql("stany_mg") + " S SET ilosc=S.ilosc-W.q FROM (SELECT nr_wewn,sum(ilosc) q "
                               "FROM " + work + " GROUP BY 1) W WHERE S.nr_wewn=W.nr_wewn") == 0;
    ok = ok && PGRunQueryNoTup("INSERT INTO " + Sql("specyfik") +
                               " (typ_dok,nr_dok,znak_dok,pozycja,data_dok,nr_towaru,vat,ilosc,c_spr_netto,c_spr_brutto) "
                               "SELECT 2," + std::string(res.Value(0, 0)) +
                               ",'B',row_number() OVER (ORDER BY oid),'2024-06-30',nr_wewn,vat,ilosc,cena_s_n,cena_s_b "
                               "FROM " + work) == 0;
    ok = ok && PGRunQueryNoTup("DELETE FROM " + work) == 0 && PGRunQueryNoTup("COMMIT") == 0;
    if (!ok) state.SkipWithError(PGLastOp.Str().c_str());
    statements += PGStatementCount - before;
  }
  state.counters["statements"] = static_cast<double>(statements) / static_cast<double>(state.iterations());
}
BENCHMARK(BM_IdealBatchedSql)->Unit(benchmark::kMillisecond)->Iterations(200);

}  // namespace

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  bool ready = false;
  {
    std::string screen;
    BenchQuietTerminal(&screen);
    BenchDatabase db("bench_docsave");
    ready = db.Ready() && Fill();
    if (ready) {
      std::printf("document of %d lines, %d items in the warehouse\n", kLines, kItems);
      std::fflush(stdout);
      benchmark::RunSpecifiedBenchmarks();
    } else {
      std::fprintf(stderr, "bench_docsave: %s %s\n", db.Error().c_str(), PGLastOp.Str().c_str());
    }
  }
  benchmark::Shutdown();
  return ready ? 0 : 1;
}
