#!/usr/bin/env bash
# The main command: installs what is missing, builds, and opens klote on a
# database of its own with the demo firm, the printer simulators and fisksrv
# (scripts/klote-run.sh tells what runs where).
#
#   scripts/demo.sh           klote in this terminal; Esc on the menu bar ends it
#   scripts/demo.sh --check   the same without a person, through tmux
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/need-packages.sh
cmake -S . -B build -G Ninja >/dev/null
targets=(klote fisksrv fiskjob elzab-sim posnet-sim)
[ -d tools/demo-firm ] && targets+=(demo-firm)
cmake --build build --target "${targets[@]}"
exec scripts/klote-run.sh "$@"
