// Screen output: a full repaint of 25 rows with many attribute runs, and the
// WriteAt hot path. Reports bytes sent to the terminal per call and heap
// allocations per call (the target is none).
#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <stdlib.h>
#include <unistd.h>

#include <atomic>
#include <cstdlib>
#include <new>

#include "base/mazovia.h"
#include "tui/screen.h"
#include "tui/term.h"

#include "bench/counting_new.h"

using bench_alloc::g_allocations;

namespace {

void InitTerminal(const char* term, const char* cp = "") {
  setenv("TERM", term, 1);
  setenv("TERM_KLOTE", "", 1);
  setenv("TERM_KLOTE_CP", cp, 1);
  static int devnull = open("/dev/null", O_WRONLY);
  TermOutputToFd(devnull);
  TermInputFromFd(-1);
  TermInit();
}

// A screen like a form or a list: every row cut into 8 runs of different attributes.
void FillManyRuns() {
  ShortText ten = "ąbcdęfghij"_mz;
  for (int r = 1; r <= 25; ++r)
    for (int run = 0; run < 8; ++run) {
      TextAttr(static_cast<unsigned char>(((run + r) % 7) << 4 | (run % 2 ? 0x0F : 0x07)));
      WriteAt(run * 10 + 1, r, ten);
    }
}

void Report(benchmark::State& state, uint64_t bytes0, long allocs0, double perCall) {
  double calls = static_cast<double>(state.iterations()) * perCall;
  state.counters["bytes/call"] = static_cast<double>(TermBytesSent() - bytes0) / calls;
  state.counters["allocs/call"] = static_cast<double>(g_allocations.load() - allocs0) / calls;
}

void BM_FullRepaint(benchmark::State& state, const char* term) {
  InitTerminal(term);
  FillManyRuns();
  ScreenCopyPtr copy;
  TermFlush();
  uint64_t bytes0 = TermBytesSent();
  long allocs0 = g_allocations.load();
  long saveAllocs = 0;
  for (auto _ : state) {
    long before = g_allocations.load();
    ScreenSave(copy);  // the copy is the one allocation of a save, by design
    saveAllocs += g_allocations.load() - before;
    ScreenRestore(copy);
    TermFlush();
  }
  g_allocations -= saveAllocs;
  Report(state, bytes0, allocs0, 1);
}
BENCHMARK_CAPTURE(BM_FullRepaint, xterm, "xterm");
BENCHMARK_CAPTURE(BM_FullRepaint, linux, "linux");

// 10,000 WriteAt calls of a 20-byte field at moving positions and attributes.
void BM_WriteAt10000(benchmark::State& state, const char* term, const char* cp) {
  InitTerminal(term, cp);
  ShortText field = "Zażółć gęślą jaźń 12"_mz;
  TermFlush();
  uint64_t bytes0 = TermBytesSent();
  long allocs0 = g_allocations.load();
  for (auto _ : state) {
    for (int i = 0; i < 10000; ++i) {
      TextAttr(static_cast<unsigned char>(i % 3 ? 0x1F : 0x70));
      WriteAt(1 + (i * 7) % 60, 1 + i % 25, field);
    }
    TermFlush();
  }
  Report(state, bytes0, allocs0, 10000);
  state.SetItemsProcessed(state.iterations() * 10000);
}
BENCHMARK_CAPTURE(BM_WriteAt10000, xterm, "xterm", "")->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(BM_WriteAt10000, xterm_utf8, "xterm", "UTF")->Unit(benchmark::kMicrosecond);

// Writing on along a row in one attribute: no cursor move, no colour.
void BM_WriteAtContinuing(benchmark::State& state) {
  InitTerminal("xterm");
  ShortText word("abcd");
  TextAttr(0x07);
  uint64_t bytes0 = TermBytesSent();
  long allocs0 = g_allocations.load();
  for (auto _ : state) {
    for (int x = 1; x <= 77; x += 4) WriteAt(x, 10, word);
    TermFlush();
  }
  Report(state, bytes0, allocs0, 20);
}
BENCHMARK(BM_WriteAtContinuing);

}  // namespace

BENCHMARK_MAIN();
