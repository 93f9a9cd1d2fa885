#!/usr/bin/env bash
# Builds the libFuzzer targets (clang, build-fuzz/) and runs every target for
# the given seconds (default 60), all at once at the lowest priority. Each
# target starts from its seed corpus fuzz/corpus/<target>/; what it learns goes
# to build-fuzz/corpus/<target>/ and crashes to build-fuzz/findings/<target>/.
# The summary gives each target's executions and findings.
#   scripts/fuzz.sh [seconds] [target...]
set -euo pipefail
cd "$(dirname "$0")/.."
seconds=${1:-60}
shift || true

# libFuzzer's runtime comes with clang's runtime package.
if ! ls /usr/lib/llvm-*/lib/clang/*/lib/linux/libclang_rt.fuzzer-x86_64.a >/dev/null 2>&1; then
  version=$(clang++ --version | sed -n 's/.*clang version \([0-9]*\).*/\1/p')
  apt-get install -y "libclang-rt-${version}-dev"
fi

build=build-fuzz
cmake -S . -B "$build" -G Ninja -DCMAKE_C_COMPILER=clang -DCMAKE_CXX_COMPILER=clang++ \
  -DKLOTE_FUZZ=ON -DKLOTE_BENCH=OFF >/dev/null
cmake --build "$build" --target fuzz_targets

targets=("$@")
if [ ${#targets[@]} -eq 0 ]; then
  for dir in fuzz/corpus/*/; do targets+=("$(basename "$dir")"); done
fi

for t in "${targets[@]}"; do
  mkdir -p "$build/corpus/$t" "$build/findings/$t"
  # Inputs up to 32 KiB: a konfigur.txt is about 29 KiB.
  nice -n 19 "$build/fuzz/$t" -max_total_time="$seconds" -max_len=32768 -timeout=10 -rss_limit_mb=1024 \
    -artifact_prefix="$build/findings/$t/" -print_final_stats=1 \
    "$build/corpus/$t" "fuzz/corpus/$t" >"$build/findings/$t.log" 2>&1 &
done
failed=0
wait || failed=1
for t in "${targets[@]}"; do
  runs=$(sed -n 's/^stat::number_of_executed_units: *//p' "$build/findings/$t.log" | tail -n 1)
  found=$(find "$build/findings/$t" -type f | wc -l)
  printf '%-16s %12s executions  %d findings\n' "$t" "${runs:-?}" "$found"
  [ "$found" -eq 0 ] || failed=1
done
exit $failed
