#!/usr/bin/env bash
# Everything the application needs, then klote: a PostgreSQL cluster of its
# own under run/pg with the database "klote", HOME=run/home holding
# orbel-sql/conn_parm.cfg, the demo firm loaded into the fresh database
# (tools/demo-firm, when built), both printer simulators and fisksrv polling
# their rows (log run/firm/fisksrv.log), and klote in the firm's directory
# run/firm. Everything is stopped at the end. Expects the programs built
# (scripts/demo.sh builds them).
#
#   scripts/klote-run.sh           klote in this terminal
#   scripts/klote-run.sh --check   without a person: klote in tmux, logged in
#                                  as the System Manager, the demo firm's
#                                  first warehouse chosen, to the menu bar and
#                                  out with Esc; fails when the login list or
#                                  the bar does not show or the program does
#                                  not end
#
# KLOTE_BUILD (default build/) and KLOTE_RUN (default run/) move the build
# and the run directory.
set -euo pipefail
cd "$(dirname "$0")/.."
root=$PWD
build=$(realpath "${KLOTE_BUILD:-$root/build}")
base=${KLOTE_RUN:-$root/run}
mkdir -p "$base"
base=$(realpath "$base")
run=$base/firm
home=$base/home
check=0
[ "${1:-}" = --check ] && check=1
for program in app/main/klote server/fisksrv tools/elzab-sim/elzab-sim tools/posnet-sim/posnet-sim; do
  [ -x "$build/$program" ] || { echo "demo: $build/$program is not built (run scripts/demo.sh)" >&2; exit 1; }
done

source scripts/pgcluster.sh
source scripts/printers.sh
socket=klote-run-$$
fisksrv_pid=
cleanup() {
  [ $check -eq 1 ] && tmux -L "$socket" kill-server 2>/dev/null || true
  [ -n "$fisksrv_pid" ] && kill "$fisksrv_pid" 2>/dev/null || true
  stop_sims
  pg_stop
}
trap cleanup EXIT

pg_start "$base/pg"
"$pg_bin/createdb" -h "$pg_dir" -p "$pg_port" -U postgres klote
rm -rf "$home" "$run"
mkdir -p "$home/orbel-sql" "$run/srvfisk"
# Six lines: host, hostaddr, port, user, password, dbname.
printf '%s\n\n%s\npostgres\n\nklote\n' "$pg_dir" "$pg_port" >"$home/orbel-sql/conn_parm.cfg"
export HOME=$home
cd "$run"

demo_firm=$build/tools/demo-firm/demo-firm
if [ -x "$demo_firm" ]; then
  echo "== loading the demo firm"
  "$demo_firm"
else
  echo "== no demo firm yet ($demo_firm is not built): klote starts on an empty database"
fi

start_printers
cp "$root/demo/fisksrv.cfg" "$run/"
"$build/server/fisksrv" fisksrv.cfg 500 fisksrv.log </dev/null >/dev/null 2>&1 &
fisksrv_pid=$!
echo "== fisksrv polls srvfisk/1 (ELZAB) and srvfisk/2 (POSNET); its log is $run/fisksrv.log"

# tmux and most terminals today speak UTF-8: klote then sends and reads UTF-8.
klote_env=(TERM=xterm TERM_KLOTE_CP=UTF)
if [ $check -eq 0 ]; then
  env "${klote_env[@]}" "$build/app/main/klote"
  exit 0
fi

tmux_() { tmux -L "$socket" "$@"; }
tmux_ -f /dev/null new-session -d -s klote -x 80 -y 25 \
  "env ${klote_env[*]} '$build/app/main/klote'; echo KLOTE-END; sleep 30" \; set-option -g status off
screen() { tmux_ capture-pane -p -t klote; }
wait_for() {  # wait_for <text>: up to 10 s
  for _ in $(seq 200); do
    screen | grep -qF -- "$1" && return 0
    sleep 0.05
  done
  echo "demo: \"$1\" did not appear; the screen was:" >&2
  screen >&2
  exit 1
}
# The login list: the System Manager first, whose empty password admits him without a prompt.
wait_for "Wybierz, jako który użytkownik będziesz pracować:"
wait_for "Kierownik            | Systemu"
[ -x "$demo_firm" ] && wait_for "Grzegorz             | Wiśniewski"
tmux_ send-keys -t klote Enter
if [ -x "$demo_firm" ]; then
  # The demo firm has two warehouses: the current one is chosen from their list.
  wait_for "Wybierz magazyn, na którego konto wprowadzać będziesz dane:"
  wait_for "Magazyn główny"
  tmux_ send-keys -t klote Enter
fi
wait_for "F2 Dokumenty   F3 Towary   F4 Kasa   F5 Analizy   F6 Inne       Esc Wyjście"
echo "== klote shows the menu bar:"
screen | sed '/^ *$/d'
tmux_ send-keys -t klote Escape
wait_for KLOTE-END
echo "== check passed: klote reached the menu bar and Esc ended it"
