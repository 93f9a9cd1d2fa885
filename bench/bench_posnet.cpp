// A 40-line receipt to the simulated POSNET printer over a pseudo-terminal, with the
// printer taking and giving bytes at 9600 baud (10 bits a byte). The figures compare
// the time of the whole receipt with the pure line time of the bytes that crossed.
#include <benchmark/benchmark.h>

#include <chrono>
#include <cmath>
#include <cstdio>
#include <string>

#include "fiscal/posnet.h"
#include "fiscal/serial.h"
#include "sim_process.h"

namespace {

constexpr int kLines = 40;
constexpr double kByteSeconds = 10.0 / 9600.0;

// The commands of a receipt job of 40 lines of 40-column names; 0 or the first failure.
int Receipt40() {
  int code = PosnetModeX(1);
  if (code == 0) code = PosnetErrorMode(1);
  if (code == 0) code = PosnetBeginReceipt(kLines, "           SKLEP SPOZYWCZY NR 1", "FV123/24", "");
  int64_t total = 0;
  for (int i = 1; i <= kLines && code == 0; ++i) {
    char name[41];
    std::snprintf(name, sizeof name, "%-40s", ("Towar numer " + std::to_string(i) + " opakowanie 500 g").c_str());
    int64_t price = 199 + 37 * i;
    int qty = 1 + i % 3;
    total += price * qty;
    code = PosnetReceiptLine(i, name, std::to_string(qty).c_str(), i % 2 ? "A" : "B", price, price * qty);
  }
  if (code == 0)
    code = PosnetEndReceipt("0", "KASJER 1", "** zachowaj paragon do ew. reklamacji **", "", "", total, total);
  return code;
}

void BM_PosnetReceipt40At9600(benchmark::State& state) {
  SimProcess sim({"--baud", "9600", "--pace-input"});
  SetPosnetDevicePath(ShortText(sim.Slave()));
  PosnetOpen(255);
  if (PosnetLine().portClosed) {
    state.SkipWithError("the simulator did not start");
    return;
  }
  uint64_t sent = 0, received = 0;
  double seconds = 0;
  for (auto _ : state) {
    const uint64_t s0 = PosnetLine().bytesSent, r0 = PosnetLine().bytesReceived;
    auto t0 = std::chrono::steady_clock::now();
    int code = Receipt40();
    seconds += std::chrono::duration<double>(std::chrono::steady_clock::now() - t0).count();
    if (code != 0) {
      state.SkipWithError(("the receipt failed with code " + std::to_string(code)).c_str());
      break;
    }
    sent += PosnetLine().bytesSent - s0;
    received += PosnetLine().bytesReceived - r0;
  }
  const double n = static_cast<double>(state.iterations());
  const double lineSent = sent / n * kByteSeconds, lineBoth = (sent + received) / n * kByteSeconds;
  state.counters["bytes_sent"] = sent / n;
  state.counters["bytes_received"] = received / n;
  state.counters["receipt_ms"] = seconds / n * 1000;
  state.counters["line_ms_sent"] = lineSent * 1000;
  state.counters["line_ms_both_ways"] = lineBoth * 1000;
  state.counters["over_sent_pct"] = (seconds / n / lineSent - 1) * 100;
  state.counters["over_both_pct"] = (seconds / n / lineBoth - 1) * 100;
  PosnetCloseAtExit();
}

BENCHMARK(BM_PosnetReceipt40At9600)->Iterations(5)->Unit(benchmark::kMillisecond)->UseRealTime();

}  // namespace

BENCHMARK_MAIN();
