#!/usr/bin/env bash

# SPDX-FileCopyrightText: 2026 The trelvik developers
#
# SPDX-License-Identifier: GPL-2.0-or-later

# scripts/demo as a new user runs it: the generator must be found among the build's
# targets and the missing demo journal generated before the viewer would start.
#   demo_script_test.sh SOURCE_DIR BUILD_DIR DEMO_SYSROOT
set -euo pipefail
ROOT="$1" BUILD="$2" DEMO="$3"

WORK="$(mktemp -d)"
trap 'rm -rf "$WORK"' EXIT
cp -r "$DEMO" "$WORK/sysroot"
rm -f "$WORK/sysroot/quorv/log/velmo/events"

# A large tree lists its targets in pieces, the generator well before the end, so
# that a reader stopping at the first match leaves the writer with a broken pipe.
REAL_CMAKE="$(command -v cmake)"
mkdir "$WORK/bin"
{
  echo '#!/usr/bin/env bash'
  echo 'case "$*" in'
  echo '  *"--target help")'
  echo '    echo "nimb-gen-journal: phony"'
  echo '    sleep 0.2'
  echo '    for i in $(seq 5000); do echo "target-$i: phony"; done'
  echo '    exit 0 ;;'
  echo 'esac'
  echo "exec \"$REAL_CMAKE\" \"\$@\""
} >"$WORK/bin/cmake"
chmod +x "$WORK/bin/cmake"

status=0
PATH="$WORK/bin:$PATH" NIMB_SKIP_DEPS=1 NIMB_BUILD_DIR="$BUILD" NIMB_DEMO_SYSROOT="$WORK/sysroot" \
  bash "$ROOT/scripts/demo" --check >"$WORK/out.log" 2>&1 || status=$?
fail() {
  echo "FAIL: $*" >&2
  cat "$WORK/out.log" >&2
  exit 1
}
[ "$status" -eq 0 ] || fail "scripts/demo --check ended with $status"
grep -q '^demo: building .*nimb-gen-journal' "$WORK/out.log" || fail "the generator target was not found"
grep -q 'no generator built' "$WORK/out.log" && fail "the demo journal was not generated"
[ -s "$WORK/sysroot/quorv/log/velmo/events" ] || fail "no demo journal in the system tree"
grep -q "^demo: ready: NIMB_EVENT_VIEWER_SYSROOT=$WORK/sysroot $BUILD/bin/nimb-event-viewer" "$WORK/out.log" \
  || fail "the viewer would not start on the demo tree"
echo "scripts/demo prepares the demo: ok"
