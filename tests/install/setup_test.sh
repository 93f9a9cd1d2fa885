#!/usr/bin/env bash
# fisksrv-setup, which the package's postinst runs, on this machine's user
# database but in a private mount namespace over a copy of /etc and empty
# /var/spool and /var/log, so nothing of the machine changes. Run twice it
# must leave the same result; a user made earlier by hand gains the serial
# group. Needs root and mount namespaces; skipped (77) without them.
# Usage: setup_test.sh <source dir>
set -euo pipefail
setup=$1/packaging/fisksrv-setup

if [ "$(id -u)" -ne 0 ] || ! unshare -m true 2>/dev/null; then
  echo "skipped: needs root and unshare"
  exit 77
fi
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cp -a /etc "$work/etc"

# shellcheck disable=SC2016  # expanded inside the namespace
unshare -m --propagation private bash -euo pipefail -c '
  setup=$1
  work=$2
  mount --bind "$work/etc" /etc
  mount -t tmpfs none /var/spool
  mount -t tmpfs none /var/log
  fail() { echo "FAIL: $*" >&2; exit 1; }
  state() {
    getent passwd fisksrv | cut -d: -f1,4,6,7
    id -nG fisksrv
    stat -c "%n %U:%G %a" /var/spool/fisksrv /var/spool/fisksrv/srvfisk /var/log/fisksrv
  }
  getent passwd fisksrv >/dev/null && fail "fisksrv already a user here"
  "$setup"
  first=$(state)
  touch /var/spool/fisksrv/srvfisk/1
  "$setup"
  [ "$(state)" = "$first" ] || fail "second run changed: $first -> $(state)"
  [ -e /var/spool/fisksrv/srvfisk/1 ] || fail "second run lost a spool file"
  [ "$(grep -c "^fisksrv:" /etc/passwd)" -eq 1 ] || fail "user made twice"
  dialout=$(getent group dialout | cut -d: -f3)
  expected="fisksrv:$dialout:/var/spool/fisksrv:/usr/sbin/nologin
dialout
/var/spool/fisksrv fisksrv:dialout 2775
/var/spool/fisksrv/srvfisk fisksrv:dialout 2775
/var/log/fisksrv fisksrv:dialout 750"
  [ "$first" = "$expected" ] || fail "after setup: $first"
  uid=$(id -u fisksrv)
  [ "$uid" -lt 1000 ] || fail "not a system user: uid $uid"

  userdel fisksrv
  useradd --system fisksrv
  "$setup"
  id -nG fisksrv | tr " " "\n" | grep -qx dialout || fail "user made by hand left outside dialout"
' setup "$setup" "$work"
echo "fisksrv-setup: user, group and directories right, twice the same"
