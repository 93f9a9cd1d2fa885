# Sourced by the demo scripts: the two printer simulators of the demo.
# ELZAB on a Unix socket, POSNET on a pseudo-terminal linked as lines/ttyS0,
# which port 1 opens under the prefix lines/ttyS. Needs $run (the firm's
# directory) and $build; exports the two printer settings.
sims=()
stop_sims() { for pid in "${sims[@]}"; do kill "$pid" 2>/dev/null || true; done; }
start_sim() {  # start_sim <ready file> <program> <arguments...>
  local ready=$1
  shift
  "$@" >/dev/null 2>>"$run/simulators.err" &
  sims+=($!)
  for _ in $(seq 100); do [ -e "$ready" ] && return 0; sleep 0.05; done
  echo "demo: $1 did not start" >&2
  exit 1
}
start_printers() {
  mkdir -p "$run/lines"
  start_sim "$run/lines/elzab" "$build/tools/elzab-sim/elzab-sim" --socket "$run/lines/elzab" \
    --journal "$run/elzab.journal" --baud 9600
  start_sim "$run/lines/ttyS0" "$build/tools/posnet-sim/posnet-sim" --link "$run/lines/ttyS0" \
    --journal "$run/posnet.journal" --baud 9600 --pace-input
  export KLOTE_ELZAB_LINE=$run/lines/elzab
  export KLOTE_SERIAL_PREFIX=$run/lines/ttyS
}
