#!/usr/bin/env bash
# The installed files checked by the tools Debian checks them with.
#   checks.sh desktop FILE | metainfo FILE | manpage FILE
#   checks.sh deb BUILD_DIR OUT_DIR      builds the package into OUT_DIR
#   checks.sh lintian OUT_DIR
#   checks.sh unpacked OUT_DIR           starts the console from the unpacked package
set -euo pipefail

# Runs a checker and fails on any word it says, not only on its exit status.
quiet() {
  local out
  if ! out=$("$@" 2>&1); then
    printf '%s\n' "$out"
    echo "FAILED: $*"
    return 1
  fi
  printf '%s\n' "$out"
  if grep -qiE 'warning|error' <<<"$out"; then
    echo "FAILED: $* reported problems"
    return 1
  fi
}

the_deb() {
  local debs=("$1"/tavello-admin_*.deb)
  [ "${#debs[@]}" -eq 1 ] && [ -f "${debs[0]}" ] || { echo "no single package in $1" >&2; return 1; }
  printf '%s\n' "${debs[0]}"
}

case "$1" in
desktop)
  quiet desktop-file-validate "$2"
  ;;
metainfo)
  quiet appstreamcli validate --no-net --no-color "$2"
  ;;
manpage)
  # man prints groff's warnings on stderr; the page itself goes nowhere.
  errors=$(LC_ALL=C.UTF-8 MANWIDTH=80 man --warnings -l "$2" 2>&1 >/dev/null)
  if [ -n "$errors" ]; then
    printf '%s\n' "$errors"
    exit 1
  fi
  ;;
deb)
  rm -rf "$3"
  cpack -G DEB --config "$2/CPackConfig.cmake" -B "$3"
  deb=$(the_deb "$3")
  dpkg-deb --info "$deb"
  dpkg-deb --contents "$deb"
  ;;
lintian)
  deb=$(the_deb "$2")
  # Errors fail the check; warnings and notes are printed for the record.
  lintian --fail-on error --display-info "$deb"
  ;;
unpacked)
  deb=$(the_deb "$2")
  work=$(mktemp -d)
  pid=
  trap '[ -n "$pid" ] && kill "$pid" 2>/dev/null; rm -rf "$work"' EXIT
  root=$work/root home=$work/home
  mkdir -p "$home" "$work/run" && chmod 700 "$work/run"
  dpkg-deb -x "$deb" "$root"
  snapshot() {
    (cd "$root" && find . -printf '%y %m %s %p\n' | sort && find . -type f -print0 | sort -z | xargs -0 sha256sum)
  }
  snapshot >"$work/before"
  # A fresh account: nothing of the caller's environment but the display mode.
  account=(env -i HOME="$home" PATH=/usr/bin:/bin LANG=C.UTF-8 XDG_RUNTIME_DIR="$work/run" QT_QPA_PLATFORM=offscreen)
  console=$root/usr/bin/tavello-admin
  ini=$home/.config/tavello-admin/tavello.ini
  db=$home/.local/share/tavello-admin/tavello.mdb
  sql() { sqlite3 -batch "$db" "$1"; }

  echo "interactive start on a fresh account"
  # Qt's accessibility log names each control as a screen reader meets it;
  # shown ones carry their place on the screen.
  "${account[@]}" QT_LOGGING_RULES='qt.accessibility.cache.debug=true' "$console" >"$work/run.log" 2>&1 &
  pid=$!
  up() {
    grep -q 'role=Window .*obj=frmMain(.*rect=QRect' "$work/run.log" &&
      grep -q 'obj=AdminListView(.*"ListViewMain").*rect=QRect' "$work/run.log"
  }
  for _ in $(seq 1 120); do
    up && break
    kill -0 "$pid" 2>/dev/null || break
    sleep 0.5
  done
  kill -0 "$pid" || { cat "$work/run.log"; echo "FAILED: the console ended by itself"; exit 1; }
  up || { cat "$work/run.log"; echo "FAILED: the main window and its list did not come up"; exit 1; }
  if grep -E 'obj=QMessageBox|role=(Dialog|AlertMessage)' "$work/run.log"; then
    echo "FAILED: a message box came up"
    exit 1
  fi
  echo "main window and list shown"
  kill "$pid"; wait "$pid" 2>/dev/null || true
  pid=
  [ -f "$ini" ] || { echo "FAILED: no $ini"; exit 1; }
  grep -qx 'DataPath=' "$ini" || { echo "FAILED: $ini does not keep an empty DataPath"; cat "$ini"; exit 1; }
  [ "$(sql 'SELECT DatabaseVersion FROM GlobalSettingsTable')" = 2005 ] || { echo "FAILED: no seed database in $db"; exit 1; }
  [ "$(sql 'SELECT count(*) FROM DueBackTable')" = 27 ] || { echo "FAILED: seed rows missing in $db"; exit 1; }

  echo "one-shot repair run"
  rc=0
  timeout 120 "${account[@]}" "$console" REPAIR || rc=$?
  [ "$rc" -eq 0 ] || { echo "FAILED: REPAIR ended with status $rc"; exit 1; }
  [ "$(sql "SELECT count(*) FROM TransactionLogTable WHERE Status = 'REPAIR SUCCESSFUL'")" = 1 ] ||
    { echo "FAILED: the repair is not in the transaction log"; exit 1; }
  [ -f "$(dirname "$db")/tavello.000" ] || { echo "FAILED: no backup beside the database"; exit 1; }

  snapshot >"$work/after"
  diff -u "$work/before" "$work/after" || { echo "FAILED: the unpacked tree changed"; exit 1; }
  echo "unpacked tree unchanged; user files:"
  (cd "$home" && find . -type f | sort)
  ;;
*)
  echo "unknown check $1" >&2
  exit 2
  ;;
esac
