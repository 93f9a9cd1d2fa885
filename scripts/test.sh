#!/usr/bin/env bash
# Builds everything and runs every test. KLOTE_SANITIZE=1 builds with the
# address and undefined-behaviour sanitizers in build-asan/.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/need-packages.sh
build=build
flags=()
if [ "${KLOTE_SANITIZE:-0}" = 1 ]; then
  build=build-asan
  flags+=(-DKLOTE_SANITIZE=ON)
fi
cmake -S . -B "$build" -G Ninja "${flags[@]}" >/dev/null
cmake --build "$build"
ctest --test-dir "$build" --output-on-failure -j2 --timeout 300
