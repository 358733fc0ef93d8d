#!/usr/bin/env bash

# SPDX-FileCopyrightText: 2026 The trelvik developers
#
# SPDX-License-Identifier: GPL-2.0-or-later

# Builds the libFuzzer harnesses (clang, build tree build-fuzz/) and runs them, two at
# a time, starting from the seed corpus and the saved findings. Exits non-zero when
# any harness finds something; the failing input is left in <dir>/fuzz-findings/.
#   bash tests/fuzz/run-fuzzers.sh                   20000 runs each, at most 30 s each
#   bash tests/fuzz/run-fuzzers.sh --time 600        ten minutes per harness
#   bash tests/fuzz/run-fuzzers.sh --runs 1000000 lineparser logparser
# Options: --dir DIR (build tree, default build-fuzz), --build-only, --no-build.
# Inputs that add coverage collect in <dir>/fuzz-corpus/; copy the worthwhile ones to
# tests/fuzz/corpus/<harness>/, and every input that failed to tests/fuzz/findings/<harness>/
# once it is fixed (the replay test then keeps it fixed).
set -uo pipefail

ROOT="$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)"
DIR="build-fuzz"
RUNS=""
TIME=""
BUILD=1
RUN=1
HARNESSES=()
while [ $# -gt 0 ]; do
  case "$1" in
    --dir) DIR="$2"; shift 2 ;;
    --runs) RUNS="$2"; shift 2 ;;
    --time) TIME="$2"; shift 2 ;;
    --build-only) RUN=0; shift ;;
    --no-build) BUILD=0; shift ;;
    -*) echo "run-fuzzers: unknown option $1" >&2; exit 2 ;;
    *) HARNESSES+=("$1"); shift ;;
  esac
done
case "$DIR" in /*) ;; *) DIR="$ROOT/$DIR" ;; esac
# Either limit alone is the only one; neither gives the bounded default.
if [ -z "$RUNS" ] && [ -z "$TIME" ]; then
  RUNS=20000
  TIME=30
fi
RUNS="${RUNS:--1}"
TIME="${TIME:-0}"
if [ ${#HARNESSES[@]} -eq 0 ]; then
  HARNESSES=(lineparser filtermatch logparser compressed settings logrotate)
fi

if [ "$BUILD" = 1 ]; then
  CC=clang CXX=clang++ cmake -S "$ROOT" -B "$DIR" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo \
    -DBUILD_TESTING=ON -DNIMB_FUZZ=ON >/dev/null || exit 1
  cmake --build "$DIR" -j 2 --target fuzzers || exit 1
fi
[ "$RUN" = 1 ] || exit 0

mkdir -p "$DIR/fuzz-logs" "$DIR/fuzz-findings"
export ASAN_OPTIONS="detect_leaks=1:abort_on_error=1"
export LSAN_OPTIONS="suppressions=$ROOT/tests/fuzz/lsan.supp:print_suppressions=0"
export UBSAN_OPTIONS="print_stacktrace=1:halt_on_error=1"
export QT_QPA_PLATFORM=offscreen

# fuzz_one HARNESS: one libFuzzer run; its result line goes to <dir>/fuzz-logs/HARNESS.result.
fuzz_one() {
  local h="$1"
  local bin="$DIR/bin/fuzz_$h"
  local log="$DIR/fuzz-logs/$h.log"
  local result="$DIR/fuzz-logs/$h.result"
  if [ ! -x "$bin" ]; then
    printf '  %-12s missing: %s\n' "$h" "$bin" >"$result"
    return 1
  fi
  mkdir -p "$DIR/fuzz-corpus/$h"
  local seeds=("$ROOT/tests/fuzz/corpus/$h")
  [ -d "$ROOT/tests/fuzz/findings/$h" ] && seeds+=("$ROOT/tests/fuzz/findings/$h")
  # Harnesses that read JSON need whole allocation stacks (slower), so that the
  # suppressions can name the Qt function that leaks.
  local unwind=""
  case "$h" in lineparser|filtermatch|logparser|compressed) unwind=":fast_unwind_on_malloc=0" ;; esac
  local start=$(date +%s)
  # New coverage goes to the build tree's corpus; the seeds in the source tree stay as they are.
  ASAN_OPTIONS="$ASAN_OPTIONS$unwind" "$bin" -runs="$RUNS" -max_total_time="$TIME" -timeout=20 -rss_limit_mb=4096 -max_len=8192 \
    -print_final_stats=1 -artifact_prefix="$DIR/fuzz-findings/$h-" \
    "$DIR/fuzz-corpus/$h" "${seeds[@]}" >"$log" 2>&1
  local rc=$?
  local took=$(($(date +%s) - start))
  local runs
  runs=$(sed -nE 's/^stat::number_of_executed_units: *([0-9]+).*/\1/p' "$log" | tail -n 1)
  if [ $rc -eq 0 ]; then
    printf '  %-12s %9d runs %5ds  ok\n' "$h" "${runs:-0}" "$took" >"$result"
  else
    {
      printf '  %-12s %9d runs %5ds  FOUND SOMETHING (exit %d, see %s)\n' "$h" "${runs:-0}" "$took" "$rc" "$log"
      grep -aE 'ERROR:|check failed|SUMMARY:|Test unit written' "$log" | head -n 8 | sed 's/^/    /'
    } >"$result"
  fi
  return $rc
}

# Two at a time: each harness is single-threaded.
failed=0
pending=()
for h in "${HARNESSES[@]}"; do
  rm -f "$DIR/fuzz-logs/$h.result"
  fuzz_one "$h" &
  pending+=($!)
  if [ ${#pending[@]} -ge 2 ]; then
    wait "${pending[0]}" || failed=1
    pending=("${pending[@]:1}")
  fi
done
for pid in "${pending[@]}"; do
  wait "$pid" || failed=1
done

total=0
echo "fuzzing summary:"
for h in "${HARNESSES[@]}"; do
  cat "$DIR/fuzz-logs/$h.result" 2>/dev/null || printf '  %-12s no result\n' "$h"
  runs=$(sed -nE 's/^stat::number_of_executed_units: *([0-9]+).*/\1/p' "$DIR/fuzz-logs/$h.log" 2>/dev/null | tail -n 1)
  total=$((total + ${runs:-0}))
done
echo "  total        $total runs"
exit $failed
