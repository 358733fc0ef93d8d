#!/usr/bin/env bash

# SPDX-FileCopyrightText: 2026 The trelvik developers
#
# SPDX-License-Identifier: GPL-2.0-or-later

# The built program as a user starts it: a real X display (Xvfb) and a session bus
# of its own. The first start shows the window; later starts, with and without
# --toggle, hand their request to it and end with status 255 and no window.
# Leaves a screenshot of the window in the build tree.
#   single_instance_e2e.sh VIEWER GENERATOR DEMO_SYSROOT SCREENSHOT
set -euo pipefail

if [ "${1:-}" != "--inside" ]; then
  for tool in xvfb-run dbus-run-session xwininfo import; do
    command -v "$tool" >/dev/null || { echo "missing $tool (scripts/install-deps installs it)" >&2; exit 1; }
  done
  exec xvfb-run -a -s "-screen 0 1280x800x24" dbus-run-session -- bash "$0" --inside "$@"
fi
shift
VIEWER="$1" GENERATOR="$2" DEMO="$3" SCREENSHOT="$4"

WORK="$(mktemp -d)"
viewer_pid=""
cleanup() {
  if [ -n "$viewer_pid" ] && kill -0 "$viewer_pid" 2>/dev/null; then
    kill "$viewer_pid"
    wait "$viewer_pid" 2>/dev/null || true
  fi
  rm -rf "$WORK"
}
trap cleanup EXIT

fail() {
  echo "FAIL: $*" >&2
  echo "--- viewer log" >&2
  cat "$WORK/viewer.log" >&2 || true
  exit 1
}

# The demo's descriptions, a fresh journal and a first-run home.
cp -r "$DEMO" "$WORK/sysroot"
rm -f "$WORK/sysroot/quorv/log/velmo/events"
"$GENERATOR" --out "$WORK/sysroot/quorv/log/velmo/events" --lines 5000 --seed 1 \
  --now 2024-03-01T12:00:00+03:00 2>/dev/null
export NIMB_EVENT_VIEWER_SYSROOT="$WORK/sysroot"
export HOME="$WORK/home" XDG_CONFIG_HOME="$WORK/home/config" XDG_DATA_HOME="$WORK/home/data"
export XDG_CACHE_HOME="$WORK/home/cache"
mkdir -p "$XDG_CONFIG_HOME"
export QT_LOGGING_RULES="nimb.app.info=true"
unset QT_QPA_PLATFORM

TITLE='"System events journal"'
# Top-level windows of the program; Qt's hidden client-leader window carries the
# title too but no class.
WINDOW='"System events journal": ("nimb-event-viewer"'
windows() { xwininfo -root -tree | grep -c -F "$WINDOW" || true; }
# Polls for up to ten seconds.
wait_for() {
  local i
  for i in $(seq 100); do
    if eval "$1"; then return 0; fi
    sleep 0.1
  done
  return 1
}

# Under load the virtual display can take a moment after xvfb-run hands over.
wait_for 'xwininfo -root >/dev/null 2>&1' || fail "the virtual display $DISPLAY does not answer"
"$VIEWER" >"$WORK/viewer.log" 2>&1 &
viewer_pid=$!
wait_for '[ "$(windows)" -ge 1 ]' || fail "no window titled $TITLE"
[ "$(windows)" -eq 1 ] || fail "$(windows) windows titled $TITLE"
wait_for 'grep -q "first page shown" "$WORK/viewer.log"' || fail "the first page never showed"
# The themed icon, or its built-in stand-in, reached the window manager.
id="$(xwininfo -root -tree | grep -F "$WINDOW" | awk '{print $1}')"
icon="$(xprop -id "$id" -len 64 _NET_WM_ICON)"
[[ "$icon" == "_NET_WM_ICON(CARDINAL) = "* ]] || fail "the window has no icon: $icon"

second_start() {
  local rc=0
  timeout 20 "$VIEWER" "$@" >"$WORK/second.log" 2>&1 || rc=$?
  [ "$rc" -eq 255 ] || { cat "$WORK/second.log" >&2; fail "a second start ($*) ended with $rc, not 255"; }
  [ "$(windows)" -eq 1 ] || fail "a second start ($*) left $(windows) windows"
  kill -0 "$viewer_pid" || fail "the first copy is gone"
}
second_start
wait_for 'grep -q "received raise" "$WORK/viewer.log"' || fail "the running copy never got raise"
second_start --toggle
wait_for 'grep -q "received toggle" "$WORK/viewer.log"' || fail "the running copy never got toggle"

mkdir -p "$(dirname "$SCREENSHOT")"
import -window root "$SCREENSHOT"
echo "screenshot: $SCREENSHOT"

# Quitting ends the event loop the way "Exit" does; the window's settings are written
# on the way out.
dbus-send --session --type=method_call --dest=trelvik.nimb-event-viewer /MainApplication \
  org.qtproject.Qt.QCoreApplication.quit
rc=0
wait "$viewer_pid" || rc=$?
viewer_pid=""
[ "$rc" -eq 0 ] || fail "the viewer ended with $rc after quitting"
SETTINGS="$XDG_CONFIG_HOME/trelvik/nimb-event-viewer.conf"
grep -q '^Geometry=' "$SETTINGS" || fail "no window geometry in $SETTINGS"
grep -q '^Maximized=true' "$SETTINGS" || fail "the maximised window was not saved as such"
