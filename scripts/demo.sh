#!/usr/bin/env bash
# The demo: builds fisksrv and runs it in polling mode on the sample printer
# rows of demo/fisksrv.cfg (family 9: jobs are recognised, deleted and
# reported, and nothing reaches a printer). It drops a receipt and a withdrawn
# job into the spool directory, shows the result lines, and ends the server
# with F10. State lives in run/demo/.
#
#   scripts/demo.sh                 the whole demo, unattended, in tmux
#   scripts/demo.sh --interactive   fisksrv in this terminal; drop jobs from
#                                   another one with build/tools/fiskjob/fiskjob
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/need-packages.sh
cmake -S . -B build -G Ninja >/dev/null
cmake --build build --target fisksrv fiskjob

root=$PWD
run=$root/run/demo
rm -rf "$run"
mkdir -p "$run/srvfisk"
cp demo/fisksrv.cfg "$run/"
fisksrv=$root/build/server/fisksrv
fiskjob=$root/build/tools/fiskjob/fiskjob

if [ "${1:-}" = --interactive ]; then
  echo "Spool directory: $run/srvfisk (rows 1 and 2). From another terminal, e.g.:"
  echo "  build/tools/fiskjob/fiskjob run/demo/srvfisk/1 RAPDOB"
  echo "Press F10 to end the server."
  cd "$run" && exec "$fisksrv" fisksrv.cfg 500
fi

socket=klote-demo-$$
session=fisksrv
tmux_() { tmux -L "$socket" "$@"; }
cleanup() { tmux_ kill-server 2>/dev/null || true; }
trap cleanup EXIT
screen() { tmux_ capture-pane -p -S - -t "$session"; }
# Waits up to 10 s for a text on the server's screen.
wait_for() {
  for _ in $(seq 200); do
    screen | grep -qF -- "$1" && return 0
    sleep 0.05
  done
  echo "demo: \"$1\" did not appear; the screen was:" >&2
  screen >&2
  exit 1
}

tmux_ new-session -d -s "$session" -x 100 -y 20 -c "$run"
tmux_ set-option -t "$session" remain-on-exit on
tmux_ respawn-pane -k -t "$session" "'$fisksrv' fisksrv.cfg 500"
wait_for "SKONFIGUROWANO 2"

echo "== dropping a receipt into srvfisk/1 and a withdrawn job into srvfisk/2"
# Relative paths: the directory part of a path is folded to lower case.
(cd "$run" && "$fiskjob" srvfisk/1 PARAGON 1 500 01J Jan " gotówką" "" '"Chleb",1,"A",5,szt')
(cd "$run" && "$fiskjob" srvfisk/2 BRAK_DANYCH)
wait_for " O.K."
wait_for " Wycofanie komendy."
for job in 1 2; do
  [ ! -e "$run/srvfisk/$job" ] || { echo "demo: srvfisk/$job was not deleted" >&2; exit 1; }
done

echo "== pressing F10"
tmux_ send-keys -t "$session" F10
wait_for "KONIEC PRACY SERVERA DRUKAREK FISKALNYCH"
echo "== the server's screen:"
screen | sed '/^$/d'
echo "== demo passed: both jobs recognised, deleted and reported; F10 ended the server"
