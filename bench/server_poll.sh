#!/usr/bin/env bash
# Poll loop of fisksrv with 20 rows at the default poll time: idle CPU (target
# under 0.1% of one core) and the time from publishing a job to its result line
# (target: one poll interval per row ahead of the job's row, plus 5 ms).
#   bench/server_poll.sh [idle seconds, default 20]
set -euo pipefail
cd "$(dirname "$0")/.."
[ -f build/build.ninja ] || cmake -S . -B build -G Ninja >/dev/null
cmake --build build --target fisksrv fisksrv-probe >/dev/null
exec build/tools/fisksrv-probe/fisksrv-probe build/server/fisksrv "${1:-20}"
