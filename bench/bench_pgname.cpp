// Per-statement costs of the table layer that need no server: mapping a path
// to its SQL name, parsing a field type and escaping a text literal.
#include <benchmark/benchmark.h>

#include <string>

#include "sqltable/pgtable.h"

static void BM_PGSqlName(benchmark::State& state) {
  const ShortText path = "dane\\uzytkown\\12\\praca___";
  for (auto _ : state) benchmark::DoNotOptimize(PGSqlName(path));
}
BENCHMARK(BM_PGSqlName);

static void BM_PGParseType(benchmark::State& state) {
  PGTypeInfo info;
  for (auto _ : state) benchmark::DoNotOptimize(PGParseType("A255", true, info));
}
BENCHMARK(BM_PGParseType);

// A 255-byte alpha value with one byte in eight needing an escape.
static void BM_PGEscapeStr(benchmark::State& state) {
  std::string text;
  for (int i = 0; i < 255; ++i) text += (i % 8 == 0) ? '\'' : static_cast<char>('a' + i % 26);
  for (auto _ : state) benchmark::DoNotOptimize(PGEscapeStr(text));
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * 255);
}
BENCHMARK(BM_PGEscapeStr);

BENCHMARK_MAIN();
