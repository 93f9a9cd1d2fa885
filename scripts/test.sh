#!/usr/bin/env bash
# Builds everything and runs every test. KLOTE_SANITIZE=1 builds with the
# address and undefined-behaviour sanitizers in build-asan/. Warnings are
# errors under CI (CI=true or KLOTE_WERROR=1, as .ci/run sets); a local
# build only shows them.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/need-packages.sh
build=build
flags=(-DKLOTE_WERROR=OFF)
if [ "${KLOTE_WERROR:-0}" = 1 ] || [ "${CI:-}" = true ]; then
  flags=(-DKLOTE_WERROR=ON)
fi
if [ "${KLOTE_SANITIZE:-0}" = 1 ]; then
  build=build-asan
  flags+=(-DKLOTE_SANITIZE=ON)
fi
cmake -S . -B "$build" -G Ninja "${flags[@]}" >/dev/null
cmake --build "$build"
ctest --test-dir "$build" --output-on-failure -j2 --timeout 300
