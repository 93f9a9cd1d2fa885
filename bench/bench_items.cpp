// The item catalogue's list on 100,000 items with stock in 10 warehouses:
// the first screenful, one PgDn and a search by the start of a name, each
// beside the bare SQL select of the same rows in the same run. Run:
// build/bench/bench_items (needs the PostgreSQL 15 server programs).
#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "bench/bench_db.h"
#include "master/items.h"
#include "master/tables.h"
#include "sqltable/pgtable.h"
#include "tui/term.h"

namespace {

constexpr int kItems = 100000;
constexpr int kWarehouses = 10;
constexpr int kScreen = 20;
std::string gScreen;

bool Run(const std::string& sql) {
  PGResult res;
  return PGExec(res, sql, false) == 0;
}

// The catalogue and the stock lists filled by the server itself: the rows
// are what ItemAdd writes, made in bulk so that the set-up takes seconds.
bool Fill() {
  CreateFirmTables();
  for (int w = 1; w <= kWarehouses; ++w) {
    CreateWarehouseTables(false, w);
    if (!Run("INSERT INTO dane_magazyny (nazwa,nazwa_inne,numer,czy_podmiot_gosp) VALUES ('M" + std::to_string(w) +
             "',''," + std::to_string(w) + ",'Z')"))
      return false;
  }
  if (!Run("INSERT INTO dane_kat_tow_ (nazwa,nazwa_,cena_z_n,cena_z_b,vat,sww,czy_od_pl_vat,nr_wewn,"
           "indeks_znakowy_isbn,indeks_numeryczny,dostawca,miejsce_w_magazynie,k1_pochodzenie_autor,k2_wydawca,"
           "k3_grupa_tow,k4,k5,cena_s_n,cena_s_b,ilosc,jednostka,ilosc_w_opak,dostawca_opis,il_zamowiona,blok_rab) "
           "SELECT 'TOWAR '||left(md5(g::text),24),'',g%100,(g%100)*1.23,'23','','',g,(5900000000000+g)::text,g,1,'','','',"
           "'','','',g%50,(g%50)*1.23,0.0,'szt',1,'',0,0 FROM generate_series(1," + std::to_string(kItems) + ") g"))
    return false;
  for (int w = 1; w <= kWarehouses; ++w)
    if (!Run("INSERT INTO " + PGSqlName(WarehouseTablePath(w, "stany_mg")).Str() +
             " (nr_wewn,ilosc,ilosc_zamowiona_odb,csn,csb,nr_zwiaz,oznacz) SELECT g,(g*" + std::to_string(w) +
             ")%17,0,g%50,(g%50)*1.23,0,'' FROM generate_series(1," + std::to_string(kItems) + ") g WHERE g%" +
             std::to_string(w + 1) + "<>0"))
      return false;
  return Run("ANALYZE");
}

const std::string kBareFirst =
    "SELECT K.*,S.* FROM dane_kat_tow_ K LEFT JOIN dane_1_stany_mg S ON S.nr_wewn=K.nr_wewn "
    "ORDER BY K.nazwa,K.nazwa_,K.oid LIMIT 20";

void BM_ListFirstScreen(benchmark::State& state) {
  std::vector<ItemListRow> rows;
  for (auto _ : state) {
    if (ItemListRead(ItemListKind{}, 1, ItemListKey{}, true, kScreen, rows) != 0) state.SkipWithError("read");
  }
}

void BM_BareFirstScreen(benchmark::State& state) {
  for (auto _ : state) {
    PGResult res;
    if (PGExec(res, kBareFirst, true) != 0) state.SkipWithError("select");
  }
}

void BM_ListPgDn(benchmark::State& state) {
  std::vector<ItemListRow> rows;
  (void)ItemListRead(ItemListKind{}, 1, ItemListKey{}, true, kScreen, rows);
  ItemListKey key = ItemListKeyOf(rows.back());
  for (auto _ : state) {
    if (ItemListRead(ItemListKind{}, 1, key, true, kScreen, rows) != 0 || rows.empty()) {
      key = ItemListKey{};
      continue;
    }
    key = ItemListKeyOf(rows.back());
  }
}

// The same rows by the bare select, read on from the last row seen.
void BM_BarePgDn(benchmark::State& state) {
  std::string after;
  for (auto _ : state) {
    PGResult res;
    const std::string sql = "SELECT K.*,S.* FROM dane_kat_tow_ K LEFT JOIN dane_1_stany_mg S ON S.nr_wewn=K.nr_wewn" +
                            after + " ORDER BY K.nazwa,K.nazwa_,K.oid LIMIT 20";
    if (PGExec(res, sql, true) != 0) state.SkipWithError("select");
    const int last = res.Rows() - 1;
    after = last < 0 ? std::string()
                     : " WHERE (K.nazwa,K.nazwa_,K.oid)>('" + std::string(res.Value(last, 1)) + "','" +
                           std::string(res.Value(last, 2)) + "'," + std::string(res.Value(last, 0)) + ")";
  }
}

void BM_ListFindByName(benchmark::State& state) {
  const char* prefixes[] = {"TOWAR 7", "TOWAR ab", "TOWAR fff", "TOWAR 0"};
  int i = 0;
  for (auto _ : state) {
    ItemData item;
    bool found = false;
    if (ItemFindByName(prefixes[i++ % 4], item, found) != 0) state.SkipWithError("find");
  }
}

void BM_BareFindByName(benchmark::State& state) {
  const char* prefixes[] = {"TOWAR 7", "TOWAR ab", "TOWAR fff", "TOWAR 0"};
  int i = 0;
  for (auto _ : state) {
    PGResult res;
    if (PGExec(res, std::string("SELECT * FROM dane_kat_tow_ WHERE nazwa>='") + prefixes[i % 4] +
                        "' AND nazwa LIKE '" + prefixes[i % 4] + "%' ORDER BY nazwa,nazwa_,oid LIMIT 1",
               true) != 0)
      state.SkipWithError("select");
    ++i;
  }
}

BENCHMARK(BM_ListFirstScreen)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_BareFirstScreen)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_ListPgDn)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_BarePgDn)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_ListFindByName)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_BareFindByName)->Unit(benchmark::kMillisecond);


}  // namespace

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  BenchQuietTerminal(&gScreen);
  bool ready = false;
  {
    BenchDatabase db("bench_items");
    ready = db.Ready() && Fill();
    if (ready) benchmark::RunSpecifiedBenchmarks();
    else std::fprintf(stderr, "bench_items: %s %s\n", db.Error().c_str(), PGLastOp.Str().c_str());
  }
  TermOutputToBuffer(nullptr);
  benchmark::Shutdown();
  return ready ? 0 : 1;
}
