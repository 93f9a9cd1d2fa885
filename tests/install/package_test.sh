#!/usr/bin/env bash
# The installation road of a shop: builds the Debian package from the build
# tree, checks its files, dependencies and maintainer scripts, then unpacks it
# into a temporary root and runs the packaged fisksrv the way its systemd unit
# does (same command line and working directory, no terminal), through job
# results, a logrotate-style rotation and the SIGTERM that stops the service.
# Usage: package_test.sh <build dir> <source dir>
set -euo pipefail
build=$1
source=$2

# fisksrv folds the directory part of its paths to lower case: keep ours so.
work="/tmp/klote-install-$$-$RANDOM"
mkdir -m 700 "$work"
server_pid=
cleanup() {
  [ -n "$server_pid" ] && kill -KILL "$server_pid" 2>/dev/null
  rm -rf "$work"
}
trap cleanup EXIT

fail() {
  echo "FAIL: $*" >&2
  exit 1
}

# Waits for a condition (a command) of the running server; gives up after 20 s.
wait_for() {
  local what=$1
  shift
  for _ in $(seq 400); do
    "$@" && return 0
    sleep 0.05
  done
  fail "waited in vain for $what"
}

# --- the package ---------------------------------------------------------
cpack -G DEB --config "$build/CPackConfig.cmake" -B "$work/pkg" >"$work/cpack.log" 2>&1 ||
  { cat "$work/cpack.log"; fail "cpack -G DEB"; }
debs=("$work"/pkg/klote_*.deb)
deb=${debs[0]}
[ -f "$deb" ] || fail "no package made"

expected_files="./etc/logrotate.d/fisksrv
./usr/bin/fiskjob
./usr/bin/fisksrv
./usr/bin/klote
./usr/lib/systemd/system/fisksrv.service
./usr/share/doc/klote/README.md
./usr/share/doc/klote/examples/README.txt
./usr/share/doc/klote/examples/fisksrv.cfg
./usr/share/klote/fisksrv-setup"
actual_files=$(dpkg-deb -c "$deb" | awk '$1 !~ /^d/ {print $6}' | sort)
diff <(echo "$expected_files") <(echo "$actual_files") || fail "file list of the package"

# Depends as a list of package names, versions dropped.
depends=$(dpkg-deb -f "$deb" Depends | tr ',' '\n' | sed 's/(.*)//; s/ //g')
for needed in libpq5 passwd libc6 libstdc++6; do
  grep -qx "$needed" <<<"$depends" || fail "Depends lacks $needed: $depends"
done
grep -q -- '-dev$' <<<"$depends" && fail "Depends names a development package: $depends"
[ "$(dpkg-deb -I "$deb" conffiles)" = /etc/logrotate.d/fisksrv ] || fail "conffiles"
for script in postinst prerm postrm; do
  dpkg-deb -I "$deb" "$script" >"$work/$script" || fail "no $script"
  sh -n "$work/$script" || fail "$script is not valid sh"
done

root=$work/root
dpkg-deb -x "$deb" "$root"
for program in klote fisksrv fiskjob; do
  [ -x "$root/usr/bin/$program" ] || fail "$program not executable"
done
# An unchanged logrotate rotation needs the log moved away, not copied.
grep -qE '^\s*copytruncate' "$root/etc/logrotate.d/fisksrv" && fail "logrotate snippet copies and truncates"

# --- the unit --------------------------------------------------------------
unit=$root/usr/lib/systemd/system/fisksrv.service
unit_value() { sed -n "s/^$1=//p" "$unit"; }
exec_start=$(unit_value ExecStart)
read -r -a command <<<"$exec_start"
[ "${command[0]}" = /usr/bin/fisksrv ] || fail "ExecStart runs ${command[0]}"
[ "$(unit_value User):$(unit_value Group)" = fisksrv:dialout ] || fail "User/Group of the unit"
[ "$(unit_value Restart)" = on-failure ] || fail "Restart of the unit"

if command -v systemd-analyze >/dev/null; then
  # verify wants the program at the unit's path: point it into the root.
  mkdir "$work/unit"
  sed "s|^ExecStart=/usr/bin/|ExecStart=$root/usr/bin/|" "$unit" >"$work/unit/fisksrv.service"
  systemd-analyze verify --man=no "$work/unit/fisksrv.service" || fail "systemd-analyze verify"
fi

# --- the packaged server, started as the unit starts it --------------------
# Every absolute path of the unit moves into the root; the directories are
# those that fisksrv-setup makes on a real machine.
for i in "${!command[@]}"; do
  [[ ${command[$i]} == /* ]] && command[i]=$root${command[$i]}
done
spool=$root$(unit_value WorkingDirectory)
config=${command[1]}
log=${command[3]}
mkdir -p "$spool/srvfisk" "$(dirname "$config")" "$(dirname "$log")"
# Family 9: jobs are recognised, deleted and reported without a printer.
printf '9,1,"srvfisk\\1",,1\n' >"$config"

(cd "$spool" && exec env -i PATH=/usr/bin:/bin "${command[@]}" </dev/null >"$work/stdout" 2>"$work/stderr") &
server_pid=$!

log_has() { [ -f "$1" ] && grep -qE "$2" "$1"; }
result_line='^[ 0-9]{2}:[ 0-9]{2}:[ 0-9]{2}  O\.K\.$'
drop_job() {
  cp "$source/demo/jobs/paragon.job" "$spool/srvfisk/new"
  mv "$spool/srvfisk/new" "$spool/srvfisk/1"
}
job_gone() { [ ! -e "$spool/srvfisk/1" ]; }
results_in() { [ -f "$1" ] && [ "$(grep -cE "$result_line" "$1")" -ge "$2" ]; }

wait_for "the configured line" log_has "$log" '^SKONFIGUROWANO 1$'
drop_job
wait_for "the first job" results_in "$log" 1
job_gone || fail "job file left after its result"

# logrotate without copytruncate: move the log, create an empty one.
mv "$log" "$log.1"
: >"$log"
drop_job
wait_for "the job after the rotation" results_in "$log.1" 2
drop_job
wait_for "a result in the new log" results_in "$log" 1

kill -TERM "$server_pid"
wait_for "the end after SIGTERM" sh -c "! kill -0 $server_pid 2>/dev/null"
status=0
wait "$server_pid" || status=$?
server_pid_done=$server_pid
server_pid=
[ "$status" -eq 143 ] || fail "fisksrv ended with status $status, not by SIGTERM"

# --- the log -----------------------------------------------------------------
mapfile -t lines <"$log.1"
[[ ${lines[0]} =~ ^START\ SERVERA\ DRUKAREK\ FISKALNYCH\ [0-9]{1,2}-[0-9]{1,2}-[0-9]{4}\ [0-9]{1,2}:[0-9]{1,2}:[0-9]{1,2}$ ]] ||
  fail "start line: ${lines[0]}"
[ "${lines[1]}" = "PID: $server_pid_done" ] || fail "PID line: ${lines[1]}"
[ "${lines[2]}" = "SKONFIGUROWANO 1" ] || fail "configured line: ${lines[2]}"
[ "${#lines[@]}" -eq 5 ] || fail "rotated log holds ${#lines[@]} lines, not 3 and 2 results"
[ "$(wc -l <"$log")" -eq 1 ] || fail "new log holds more than its one result"
for f in "$log.1" "$log"; do
  [ "$(tail -c1 "$f" | od -An -c | tr -d ' ')" = '\n' ] || fail "$f ends in a broken line"
done
grep -q "ZAKONCZENIE PRACY" "$log.1" && fail "a log-file server offers the F10 end"
[ -z "$(cat "$work/stdout" "$work/stderr")" ] || fail "output outside the log: $(cat "$work/stdout" "$work/stderr")"
[ -z "$(ls -A "$spool/srvfisk")" ] || fail "spool not empty: $(ls -A "$spool/srvfisk")"

# --- a plain install to another prefix -------------------------------------
prefix=$work/prefix
cmake --install "$build" --prefix "$prefix" >/dev/null
grep -qx "ExecStart=$prefix/bin/fisksrv $prefix/etc/klote/fisksrv.cfg 500 /var/log/fisksrv/fisksrv.log" \
  "$prefix/lib/systemd/system/fisksrv.service" || fail "unit of the prefix $prefix"
[ -f "$prefix/etc/logrotate.d/fisksrv" ] || fail "logrotate snippet of the prefix"
for tool in posnet-sim elzab-sim tui-demo fisksrv-probe demo-firm; do
  [ ! -e "$prefix/bin/$tool" ] || fail "$tool installed"
done
echo "package $(basename "$deb"): files, dependencies, unit and server run checked"
