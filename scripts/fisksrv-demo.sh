#!/usr/bin/env bash
# The demo: builds fisksrv and the two printer simulators and runs the server in
# polling mode on the rows of demo/fisksrv.cfg: row 1 an ELZAB printer
# (tools/elzab-sim behind the simulated serial controller, KLOTE_ELZAB_LINE),
# row 2 a POSNET printer (tools/posnet-sim on a pseudo-terminal,
# KLOTE_SERIAL_PREFIX). It drops the sample jobs of demo/jobs into the spool
# files, shows the result lines and what each printer printed, and ends the
# server with F10. State lives in run/demo/.
#
#   scripts/fisksrv-demo.sh                 the whole demo, unattended, in tmux
#   scripts/fisksrv-demo.sh --interactive   fisksrv in this terminal; drop jobs
#                                           from another one (the script tells how)
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/need-packages.sh
cmake -S . -B build -G Ninja >/dev/null
cmake --build build --target fisksrv fiskjob elzab-sim posnet-sim

root=$PWD
run=$root/run/demo
rm -rf "$run"
mkdir -p "$run/srvfisk" "$run/lines"
cp demo/fisksrv.cfg "$run/"
fisksrv=$root/build/server/fisksrv

build=$root/build
source scripts/printers.sh
start_printers

# The 18 Polish letters of Mazovia in UTF-8; other high bytes as \xNN.
maz_to_utf8() {
  perl -CO -pe 'BEGIN { @m{0x86,0x8D,0x91,0x92,0xA4,0xA2,0x9E,0xA6,0xA7,0x8F,0x95,0x90,0x9C,0xA5,0xA3,0x98,0xA0,0xA1} =
    map { chr } 0x105,0x107,0x119,0x142,0x144,0xF3,0x15B,0x17A,0x17C,0x104,0x106,0x118,0x141,0x143,0xD3,0x15A,0x179,0x17B }
    s/([\x80-\xFF])/exists $m{ord $1} ? $m{ord $1} : sprintf("\\x%02X", ord $1)/ge'
}

# Drops a sample job into a spool file in one move (written aside, then renamed).
drop() {  # drop <sample> <row>
  cp "demo/jobs/$1.job" "$run/srvfisk/new"
  mv "$run/srvfisk/new" "$run/srvfisk/$2"
}

if [ "${1:-}" = --interactive ]; then
  trap stop_sims EXIT
  echo "Row 1: ELZAB (srvfisk/1), row 2: POSNET (srvfisk/2). From another terminal, e.g.:"
  echo "  cp demo/jobs/paragon.job run/demo/srvfisk/new && mv run/demo/srvfisk/new run/demo/srvfisk/1"
  echo "  build/tools/fiskjob/fiskjob run/demo/srvfisk/2 RAPDOB"
  echo "What the printers print: run/demo/elzab.journal, run/demo/posnet.journal."
  echo "Press F10 to end the server."
  cd "$run" && "$fisksrv" fisksrv.cfg 500
  exit 0
fi

socket=klote-demo-$$
session=fisksrv
tmux_() { tmux -L "$socket" "$@"; }
cleanup() {
  tmux_ kill-server 2>/dev/null || true
  stop_sims
}
trap cleanup EXIT
screen() { tmux_ capture-pane -p -S - -t "$session"; }
# Waits up to 30 s for a text to stand count times on the server's screen.
wait_for() {  # wait_for <text> [count]
  for _ in $(seq 600); do
    [ "$(screen | grep -cF -- "$1")" -ge "${2:-1}" ] && return 0
    sleep 0.05
  done
  echo "demo: \"$1\" did not appear; the screen was:" >&2
  screen >&2
  exit 1
}

# The tmux server, and so the pane, takes the printer settings exported above.
tmux_ new-session -d -s "$session" -x 110 -y 24 -c "$run"
tmux_ set-option -t "$session" remain-on-exit on
tmux_ respawn-pane -k -t "$session" "'$fisksrv' fisksrv.cfg 500"
wait_for "SKONFIGUROWANO 2"

echo "== dropping the sample receipt (demo/jobs/paragon.job) into srvfisk/1 (ELZAB) and srvfisk/2 (POSNET)"
drop paragon 1
drop paragon 2
wait_for "PARAGON O.K." 2
echo "== a period report on ELZAB, the drawer on POSNET, and a withdrawn job"
drop rapokr 1
drop szuflada 2
wait_for "RAPORT OKRESOWY O.K."
wait_for "SZUFLADA O.K."
drop wycofane 2
wait_for " Wycofanie komendy."
for job in 1 2; do
  [ ! -e "$run/srvfisk/$job" ] || { echo "demo: srvfisk/$job was not deleted" >&2; exit 1; }
done

echo "== pressing F10"
tmux_ send-keys -t "$session" F10
wait_for "KONIEC PRACY SERVERA DRUKAREK FISKALNYCH"
echo "== the server's screen:"
screen | sed '/^$/d'
echo "== the ELZAB printer printed (run/demo/elzab.journal):"
cat "$run/elzab.journal"
echo "== the POSNET printer printed (run/demo/posnet.journal, its Mazovia letters shown in UTF-8):"
maz_to_utf8 <"$run/posnet.journal"
grep -q "^CLOSE 2550$" "$run/elzab.journal" || { echo "demo: the ELZAB receipt is not in its journal" >&2; exit 1; }
grep -q "^TOTAL 25.50/ PAID 25.50/$" "$run/posnet.journal" ||
  { echo "demo: the POSNET receipt is not in its journal" >&2; exit 1; }
echo "== demo passed: receipts on both printers, report, drawer and withdrawal reported; F10 ended the server"
