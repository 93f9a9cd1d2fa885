// Speed of the base library's hot paths: code-page conversions of text fields
// (target: MazToDb and DbToMaz at 1 GB/s or more, no heap allocation) and the
// per-call cost of number formatting and parsing (TextToReal, FormatFixed).
//
// Every global operator new is replaced by a counting one, so each benchmark
// reports the heap allocations it made per call ("allocs/call").
#include <benchmark/benchmark.h>

#include <atomic>
#include <cstdlib>
#include <new>
#include <vector>

#include "base/codepage.h"
#include "base/numbers.h"
#include "base/numbers_format.h"
#include "base/numtext.h"
#include "base/shorttext.h"
#include "bench/counting_new.h"

using bench_alloc::g_allocations;

namespace {

constexpr std::size_t kTotalBytes = 64u << 20;  // 64 MB of text per pass
constexpr std::size_t kTextCount = kTotalBytes / 255;

// Full 255-byte texts of every byte value, Polish letters and 255 among them.
const std::vector<ShortText>& Texts() {
  static const std::vector<ShortText> texts = [] {
    std::vector<ShortText> v(kTextCount);
    unsigned seed = 12345;
    for (auto& t : v) {
      for (int i = 0; i < 255; ++i) {
        seed = seed * 1103515245u + 12345u;
        t.Append(static_cast<char>(seed >> 24));
      }
    }
    return v;
  }();
  return texts;
}

// Converts every text of the 64 MB set once per iteration; bytes/s and
// allocations per converted text are reported.
template <ShortText (*Convert)(const ShortText&)>
void TextConversion(benchmark::State& state) {
  const auto& texts = Texts();
  long long allocations = 0;
  for (auto _ : state) {
    long long before = g_allocations.load();
    for (const auto& t : texts) {
      ShortText r = Convert(t);
      benchmark::DoNotOptimize(r);
    }
    allocations += g_allocations.load() - before;
  }
  long long calls = static_cast<long long>(state.iterations()) * static_cast<long long>(texts.size());
  state.SetBytesProcessed(calls * 255);
  state.counters["allocs/call"] = static_cast<double>(allocations) / static_cast<double>(calls);
}

template <void (*Convert)(char*, std::size_t)>
void InPlaceConversion(benchmark::State& state) {
  std::vector<char> bytes(kTotalBytes);
  for (std::size_t i = 0; i < bytes.size(); ++i) bytes[i] = static_cast<char>(i * 131);
  long long allocations = 0;
  for (auto _ : state) {
    long long before = g_allocations.load();
    for (std::size_t at = 0; at + 255 <= bytes.size(); at += 255) Convert(bytes.data() + at, 255);
    benchmark::ClobberMemory();
    allocations += g_allocations.load() - before;
  }
  long long calls = static_cast<long long>(state.iterations()) * static_cast<long long>(bytes.size() / 255);
  state.SetBytesProcessed(calls * 255);
  state.counters["allocs/call"] = static_cast<double>(allocations) / static_cast<double>(calls);
}

BENCHMARK(TextConversion<MazToDb>)->Name("MazToDb/text")->Unit(benchmark::kMillisecond);
BENCHMARK(TextConversion<DbToMaz>)->Name("DbToMaz/text")->Unit(benchmark::kMillisecond);
BENCHMARK(InPlaceConversion<MazToDbInPlace>)->Name("MazToDb/in-place")->Unit(benchmark::kMillisecond);
BENCHMARK(InPlaceConversion<DbToMazInPlace>)->Name("DbToMaz/in-place")->Unit(benchmark::kMillisecond);
BENCHMARK(TextConversion<MazToIsoScreen>)->Name("MazToIsoScreen/text")->Unit(benchmark::kMillisecond);
BENCHMARK(TextConversion<Utf8ToMaz>)->Name("Utf8ToMaz/text")->Unit(benchmark::kMillisecond);

// Values from a grosz amount up to the exponent form, with the sign and zero.
constexpr Real kValues[] = {0, 12.5L, -0.004L, 1234567.891L, 99999.995L, 1e12L, -3.75L, 0.1L};

// Heap allocations of one call of f, counted apart from the timing loop.
template <typename F>
double AllocationsPerCall(F f) {
  long long before = g_allocations.load();
  for (int i = 0; i < 1000; ++i) f(i);
  return static_cast<double>(g_allocations.load() - before) / 1000;
}

template <ShortText (*Format)(int, int, Real)>
void FormatCall(benchmark::State& state) {
  int width = static_cast<int>(state.range(0));
  std::size_t i = 0;
  for (auto _ : state) {
    ShortText r = Format(width, 2, kValues[i++ % std::size(kValues)]);
    benchmark::DoNotOptimize(r);
  }
  state.counters["allocs/call"] = AllocationsPerCall([width](int k) {
    ShortText r = Format(width, 2, kValues[static_cast<std::size_t>(k) % std::size(kValues)]);
    benchmark::DoNotOptimize(r);
  });
}

BENCHMARK(FormatCall<FormatFixed>)->Name("FormatFixed")->Arg(12)->Arg(40);
BENCHMARK(FormatCall<FormatMoney>)->Name("FormatMoney")->Arg(14);

void FormatShortestCall(benchmark::State& state) {
  std::size_t i = 0;
  for (auto _ : state) {
    ShortText r = FormatShortest(10, kValues[i++ % std::size(kValues)]);
    benchmark::DoNotOptimize(r);
  }
}
BENCHMARK(FormatShortestCall)->Name("FormatShortest");

const ShortText kNumberTexts[] = {"12.5", "-0,004", "1234567.891", "  99 999.995 zł", "abc", "1e12"};

template <Real (*Parse)(const ShortText&)>
void ParseCall(benchmark::State& state) {
  std::size_t i = 0;
  for (auto _ : state) {
    Real v = Parse(kNumberTexts[i++ % std::size(kNumberTexts)]);
    benchmark::DoNotOptimize(v);
  }
  state.counters["allocs/call"] = AllocationsPerCall([](int k) {
    Real v = Parse(kNumberTexts[static_cast<std::size_t>(k) % std::size(kNumberTexts)]);
    benchmark::DoNotOptimize(v);
  });
}

BENCHMARK(ParseCall<TextToReal>)->Name("TextToReal");
BENCHMARK(ParseCall<TextToRealLoose>)->Name("TextToRealLoose");

}  // namespace

BENCHMARK_MAIN();
