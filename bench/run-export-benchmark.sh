#!/usr/bin/env bash

# SPDX-FileCopyrightText: 2026 The trelvik developers
#
# SPDX-License-Identifier: GPL-2.0-or-later

# Exports every event of a generated journal as JSON, CSV and raw lines through the
# export job (nimb-bench-export) and prints a Markdown table of throughput and memory,
# also written to bench/out/export-results.md. The journal and the exports are deleted
# at the end unless KEEP=1.
#
# Environment: BENCH_BUILD_DIR (a configured build tree; default build-bench, built in
# Release when missing), EXPORT_SIZE (default 1G), BENCH_SEED, EXPORT_DIR (where the
# files go; default bench/out), BENCH_GROUP_NICE (e.g. -15: on a machine busy with other
# work, runs each export in a scheduling group of its own with that nice value; needs root).
set -euo pipefail

ROOT=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
BUILD=${BENCH_BUILD_DIR:-$ROOT/build-bench}
SIZE=${EXPORT_SIZE:-1G}
SEED=${BENCH_SEED:-20240301}
OUT=$ROOT/bench/out
DIR=${EXPORT_DIR:-$OUT}

export LC_ALL=en_US.UTF-8 LANG=en_US.UTF-8 LANGUAGE=en
export NIMB_EVENT_VIEWER_SYSROOT=$ROOT/data/demo/sysroot
mkdir -p "$OUT" "$DIR"

log() { printf '%s\n' "$*" >&2; }

if [[ ! -f $BUILD/CMakeCache.txt ]]; then
    cmake -S "$ROOT" -B "$BUILD" -G Ninja -DCMAKE_BUILD_TYPE=Release >"$OUT/export-build.log" 2>&1
fi
cmake --build "$BUILD" -j2 --target nimb-bench-export nimb-gen-journal >>"$OUT/export-build.log" 2>&1 || {
    tail -n 30 "$OUT/export-build.log" >&2
    exit 1
}

JOURNAL=$DIR/export-journal-$SIZE.log
cleanup() {
    rm -f "$DIR"/export-target.json "$DIR"/export-target.csv "$DIR"/export-target.log
    [[ ${KEEP:-0} == 1 ]] || rm -f "$JOURNAL"
}
trap cleanup EXIT

if [[ ! -f $JOURNAL ]]; then
    log "Generating $SIZE journal ..."
    "$BUILD/bin/nimb-gen-journal" --out "$JOURNAL" --size "$SIZE" --seed "$SEED" --days 10 >/dev/null
fi
# A warm page cache, as after the tab's own count.
cat "$JOURNAL" >/dev/null

value() { sed -n "s/^$1=//p" "$2"; }
LOAD_BEFORE=$(cut -d' ' -f1-3 /proc/loadavg)
{
    echo "| Format | Events | Journal | Output | Export wall time | Throughput (journal) | CPU time | Peak RSS (time -v) | Memory growth during export | Target |"
    echo "|---|---|---|---|---|---|---|---|---|---|"
    for format in log json csv; do
        target=$DIR/export-target.$format
        log "Exporting as $format ..."
        command=(/usr/bin/time -v -o "$OUT/export-time.txt" "$BUILD/bin/nimb-bench-export" "$JOURNAL" "$target")
        if [[ -n ${BENCH_GROUP_NICE:-} ]]; then
            # Nice values count only within a session's group: the group itself is reniced.
            setsid bash -c 'echo "$0" >/proc/$$/autogroup && exec "$@"' "$BENCH_GROUP_NICE" "${command[@]}" \
                >"$OUT/export-$format.out"
        else
            "${command[@]}" >"$OUT/export-$format.out"
        fi
        rss_kb=$(sed -n 's/^[[:space:]]*Maximum resident set size (kbytes): //p' "$OUT/export-time.txt")
        r=$OUT/export-$format.out
        case $format in log) goal="≥ 300 MB/s";; *) goal="≥ 60 MB/s";; esac
        awk -v f="$format" -v ev="$(value events "$r")" -v jb="$(value journal_bytes "$r")" \
            -v tb="$(value target_bytes "$r")" -v ms="$(value export_ms "$r")" -v cpu="$(value export_cpu_s "$r")" \
            -v rate="$(value export_mb_per_s "$r")" -v rss="$rss_kb" -v grow="$(value peak_growth_kb "$r")" -v goal="$goal" \
            'BEGIN { printf "| %s | %d | %.0f MB | %.0f MB | %.2f s | %.0f MB/s | %.2f s | %.0f MiB | %.0f MiB | %s, ≤ 256 MiB |\n",
                     f, ev, jb / 1e6, tb / 1e6, ms / 1000, rate, cpu, rss / 1024, grow / 1024, goal }'
        rm -f "$target"
    done
    echo
    echo "Journal: nimb-gen-journal --size $SIZE --seed $SEED --days 10. MB = 10^6 bytes. Wall times with a warm" \
        "page cache; $(nproc) processors; load average before $LOAD_BEFORE, after $(cut -d' ' -f1-3 /proc/loadavg)." \
        "Memory growth: peak resident memory during the export minus the resident memory of the counted journal before it." \
        "${BENCH_GROUP_NICE:+Each export ran in a scheduling group of nice $BENCH_GROUP_NICE.}"
} | tee "$OUT/export-results.md"
