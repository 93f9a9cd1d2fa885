// Speed of the file utilities: the checked copy (each block written, read
// back and compared) against the size of the file, and the line-end rewrite
// of a text file. Both run in a temporary directory on the machine's /tmp.
#include <benchmark/benchmark.h>
#include <unistd.h>

#include <cstdlib>
#include <fstream>
#include <string>

#include "base/filecopy.h"
#include "base/textfiles.h"

namespace {

// A directory of its own, the current one while the benchmarks run.
struct BenchDir {
  BenchDir() {
    char pattern[] = "/tmp/klote-bench-XXXXXX";
    if (::mkdtemp(pattern) != nullptr && ::chdir(pattern) == 0) path = pattern;
  }
  ~BenchDir() {
    if (!path.empty() && ::chdir("/") == 0) std::system(("rm -rf " + path).c_str());
  }
  std::string path;
};

void WriteFile(const char* name, size_t size, bool lines) {
  std::string bytes(size, 'x');
  if (lines)
    for (size_t i = 60; i < size; i += 61) bytes[i] = '\n';
  std::ofstream(name, std::ios::binary) << bytes;
}

void BM_CopyFileChecked(benchmark::State& state) {
  const auto size = static_cast<size_t>(state.range(0));
  WriteFile("zrodlo.dat", size, false);
  for (auto _ : state) {
    const uint8_t code = CopyFileChecked("zrodlo.dat", "cel.dat", -1, -1);
    if (code != kCopyOk) state.SkipWithError("copy failed");
  }
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * static_cast<int64_t>(size));
}
BENCHMARK(BM_CopyFileChecked)->Arg(1 << 10)->Arg(64 << 10)->Arg(4 << 20);

void BM_UnixToDosRewrite(benchmark::State& state) {
  const auto size = static_cast<size_t>(state.range(0));
  WriteFile("tekst.txt", size, true);
  bool toDos = true;
  for (auto _ : state) {
    const RewriteResult r = RewriteTextFile("tekst.txt", "tekst.txt", toDos ? LineEnds::kToDos : LineEnds::kToUnix);
    if (r.stage != RewriteResult::kOk) state.SkipWithError("rewrite failed");
    toDos = !toDos;
  }
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * static_cast<int64_t>(size));
}
BENCHMARK(BM_UnixToDosRewrite)->Arg(64 << 10)->Arg(4 << 20);

}  // namespace

int main(int argc, char** argv) {
  BenchDir dir;
  benchmark::Initialize(&argc, argv);
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  return 0;
}
