# Sourced by the demo scripts: a PostgreSQL 15 cluster of the demo's own in
# $1 (data in data/, the Unix socket beside it, no TCP), made fresh, with the
# choices of the test fixture: UTF8 with a Polish collation where the machine
# has one, else C; trust for "postgres"; fsync off; a free port. As root the
# server programs run as the postgres user. Sets pg_dir, pg_port, pg_bin.
pg_bin=/usr/lib/postgresql/15/bin
pg_as_server() { if [ "$(id -u)" -eq 0 ]; then runuser -u postgres -- "$@"; else "$@"; fi; }
pg_stop() {
  [ -n "${pg_dir:-}" ] && [ -e "$pg_dir/data/postmaster.pid" ] &&
    pg_as_server "$pg_bin/pg_ctl" -D "$pg_dir/data" -m fast -w stop >/dev/null 2>&1 || true
}
pg_start() {  # pg_start <directory>
  pg_dir=$1
  [ -x "$pg_bin/initdb" ] || { echo "demo: PostgreSQL 15 is not installed ($pg_bin)" >&2; exit 1; }
  if [ -e "$pg_dir/data/postmaster.pid" ]; then pg_stop; fi
  rm -rf "$pg_dir"
  mkdir -p "$pg_dir"
  # A socket path has at most 107 bytes.
  [ ${#pg_dir} -le 90 ] || { echo "demo: $pg_dir is too long a path for the server's socket" >&2; exit 1; }
  pg_port=$(/usr/bin/python3 -c 'import socket; s=socket.socket(); s.bind(("127.0.0.1", 0)); print(s.getsockname()[1])')
  local locale=C
  locale -a 2>/dev/null | grep -qix 'pl_PL.utf-\?8' && locale=$(locale -a | grep -ix 'pl_PL.utf-\?8' | head -1)
  if [ "$(id -u)" -eq 0 ]; then
    chown postgres: "$pg_dir"
    runuser -u postgres -- test -w "$pg_dir" ||
      { echo "demo: the postgres user cannot reach $pg_dir; set KLOTE_RUN to a directory it can reach" >&2; exit 1; }
  fi
  pg_as_server "$pg_bin/initdb" -D "$pg_dir/data" -U postgres -A trust -E UTF8 --locale="$locale" --no-sync \
    >"$pg_dir/initdb.log" 2>&1 || { echo "demo: initdb failed, see $pg_dir/initdb.log" >&2; exit 1; }
  cat >>"$pg_dir/data/postgresql.conf" <<CONF
listen_addresses = ''
unix_socket_directories = '$pg_dir'
port = $pg_port
fsync = off
synchronous_commit = off
full_page_writes = off
max_connections = 40
shared_buffers = 32MB
CONF
  pg_as_server "$pg_bin/pg_ctl" -D "$pg_dir/data" -l "$pg_dir/server.log" -w -t 60 start >/dev/null ||
    { echo "demo: the server did not start, see $pg_dir/server.log" >&2; exit 1; }
  echo "== PostgreSQL cluster in $pg_dir (socket there, port $pg_port, locale $locale)"
}
