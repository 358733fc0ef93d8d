#!/usr/bin/env bash

# SPDX-FileCopyrightText: 2026 The trelvik developers
#
# SPDX-License-Identifier: GPL-2.0-or-later

# Builds the tools in Release (build-bench), generates journals of 200 MB and 1 GB into
# bench/out (kept for the next run as long as the seed is the same) and prints one
# Markdown table per journal, also written to bench/out/results.md.
#
# Environment:
#   BENCH_SEED          journal seed
#   BENCH_SIZES         journal sizes, e.g. "50M 200M" (default "200M 1G")
#   BENCH_RUNS          runs of each measurement; the table shows medians (default 3)
#   BENCH_BUILD_DIR     Release tree to build and measure
#   BENCH_SKIP_BUILD=1  reuse the binaries as they are
#   BENCH_BASELINE_DIR  a directory with nimb-events and nimb-bench of an earlier
#                       version: each measurement then runs both, alternately, and the
#                       table shows them side by side
#   BENCH_SKIP_JQ=1     leave out the jq comparison (slow on large journals)
#   BENCH_RESULTS       a further file to write the tables to
#
# Times are wall-clock times with a warm page cache. Other work on the machine shows
# directly in them: the load average is printed with the table, and processor times
# (user+system) beside the wall times show the work itself.
set -euo pipefail

ROOT=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
BUILD=${BENCH_BUILD_DIR:-$ROOT/build-bench}
OUT=$ROOT/bench/out
SEED=${BENCH_SEED:-20240301}
RUNS=${BENCH_RUNS:-3}
BASELINE=${BENCH_BASELINE_DIR:-}
read -r -a SIZES <<<"${BENCH_SIZES:-200M 1G}"
# A typical filter: the more severe priorities and a word of the event name.
FILTER=(--priority notice,warning,error,critical,alert,emergency --name-contains user)
KEYWORD=(--search root)
JQ_SELECT='fromjson? | select(type=="object" and (.MSG|type)=="object" and (.MSG|length)==1)'

export LC_ALL=en_US.UTF-8 LANG=en_US.UTF-8 LANGUAGE=en
# Sources and custom parameters of the demo tree, which the generator's journals match.
export NIMB_EVENT_VIEWER_SYSROOT=$ROOT/data/demo/sysroot

mkdir -p "$OUT"
LOAD_BEFORE=$(cut -d' ' -f1-3 /proc/loadavg)

log() { printf '%s\n' "$*" >&2; }

build() {
    if [[ ${BENCH_SKIP_BUILD:-0} == 1 ]]; then
        return
    fi
    log "Building Release in $BUILD ..."
    local generator=()
    command -v ninja >/dev/null && generator=(-G Ninja)
    if [[ -f $BUILD/CMakeCache.txt ]]; then
        generator=()
    fi
    if ! cmake -S "$ROOT" -B "$BUILD" "${generator[@]}" -DCMAKE_BUILD_TYPE=Release >"$OUT/build.log" 2>&1 ||
        ! cmake --build "$BUILD" -j2 --target nimb-events nimb-bench nimb-json-floor nimb-gen-journal \
            >>"$OUT/build.log" 2>&1; then
        tail -n 30 "$OUT/build.log" >&2
        log "Build failed; see $OUT/build.log"
        exit 1
    fi
}

binary() {
    local path=$BUILD/bin/$1
    [[ -x $path ]] || path=$(find "$BUILD" -name "$1" -type f -perm -u+x | head -n 1)
    [[ -x $path ]] || { log "missing binary $1"; exit 1; }
    printf '%s' "$path"
}

# The journal of one size, generated once per seed. A run that was interrupted while
# the journal was grown leaves it longer than recorded: cut it back.
journal() {
    local size=$1
    local file=$OUT/journal-$size-seed$SEED.log
    local recorded=$OUT/journal-$size-seed$SEED.size
    if [[ -f $file && -f $recorded ]]; then
        local expected actual
        expected=$(cat "$recorded")
        actual=$(stat -c %s "$file")
        if ((actual > expected)); then
            truncate -s "$expected" "$file"
            actual=$expected
        fi
        if ((actual == expected)); then
            printf '%s' "$file"
            return
        fi
    fi
    log "Generating $size journal (seed $SEED) ..."
    rm -f "$file" "$recorded"
    "$GEN" --out "$file" --size "$size" --seed "$SEED" --days 10 >/dev/null 2>&1
    stat -c %s "$file" >"$recorded"
    printf '%s' "$file"
}

# One run of a shell command: "wall_ms cpu_ms peak_kb", its output in $1.out. A failed
# command gives a wall time of -1.
run_once() {
    local tag=$1 command=$2 start end
    start=$(date +%s%N)
    if ! /usr/bin/time -f '%U %S %M' -o "$OUT/$tag.time" bash -c "$command" >"$OUT/$tag.out" 2>"$OUT/$tag.err"; then
        log "failed: $command"
        sed 's/^/    /' "$OUT/$tag.err" >&2
        echo "-1 -1 0"
        return
    fi
    end=$(date +%s%N)
    awk -v wall=$(((end - start) / 1000000)) '{ printf "%d %d %d", wall, ($1 + $2) * 1000, $3 }' "$OUT/$tag.time"
}

median() { sort -n | awk '{ v[NR] = $1 } END { if (NR == 0) print -1; else print v[int((NR + 1) / 2)] }'; }

# measure KEY COMMAND [BASELINE_COMMAND]: RUNS runs of each, alternating; medians of
# wall time, processor time and peak memory into R[...,KEY], R[...,KEY_cpu] ...; the
# before side under KEY_before. The output of the last run stays in $OUT/KEY.out.
measure() {
    local key=$1 command=$2 baseline=${3:-} i result
    : >"$OUT/$key.runs"
    : >"$OUT/$key.before.runs"
    for ((i = 0; i < RUNS; i++)); do
        if [[ -n $baseline ]]; then
            run_once "$key.before" "$baseline" >>"$OUT/$key.before.runs"
            echo >>"$OUT/$key.before.runs"
        fi
        run_once "$key" "$command" >>"$OUT/$key.runs"
        echo >>"$OUT/$key.runs"
    done
    for side in "" .before; do
        [[ -s $OUT/$key$side.runs && ( -z $side || -n $baseline ) ]] || continue
        local name=$key${side/./_}
        R[$SIZE,$name]=$(cut -d' ' -f1 "$OUT/$key$side.runs" | median)
        R[$SIZE,${name}_cpu]=$(cut -d' ' -f2 "$OUT/$key$side.runs" | median)
        R[$SIZE,${name}_kb]=$(cut -d' ' -f3 "$OUT/$key$side.runs" | median)
        R[$SIZE,${name}_all]=$(cut -d' ' -f1 "$OUT/$key$side.runs" | tr '\n' ' ')
        R[$SIZE,${name}_out]=$(tr -d ' \n' <"$OUT/$key$side.out" | head -c 40)
    done
}

quote() { printf '%q ' "$@"; }
value_of() { sed -n "s/^$1=//p" "$2"; }

build
EVENTS=$(binary nimb-events)
BENCH=$(binary nimb-bench)
FLOOR=$(binary nimb-json-floor)
GEN=$(binary nimb-gen-journal)
if [[ -n $BASELINE ]]; then
    OLD_EVENTS=$BASELINE/nimb-events
    OLD_BENCH=$BASELINE/nimb-bench
    [[ -x $OLD_EVENTS && -x $OLD_BENCH ]] || { log "no nimb-events and nimb-bench in $BASELINE"; exit 1; }
fi

# The in-process figures of nimb-bench (count after growth, pages, index size), median of
# RUNS runs by the grown count's time; the journal is cut back after each run.
grow_bench() {
    local key=$1 tool=$2 file=$3 i
    : >"$OUT/$key.grow"
    for ((i = 0; i < RUNS; i++)); do
        if "$tool" "$file" --generator "$GEN" --seed $((SEED + 1)) >"$OUT/$key.bench.$i" 2>"$OUT/$key.bench.err"; then
            echo "$(value_of grown_count_ms "$OUT/$key.bench.$i") $i" >>"$OUT/$key.grow"
        else
            log "nimb-bench failed:"
            sed 's/^/    /' "$OUT/$key.bench.err" >&2
        fi
    done
    [[ -s $OUT/$key.grow ]] || return 0
    local chosen
    chosen=$(sort -n "$OUT/$key.grow" | awk '{ v[NR] = $2 } END { print v[int((NR + 1) / 2)] }')
    for field in grown_count_ms appended_lines page_first_ms page_middle_ms page_last_ms index_bytes_per_line; do
        R[$SIZE,${key}_$field]=$(value_of "$field" "$OUT/$key.bench.$chosen")
    done
}

declare -A R
for SIZE in "${SIZES[@]}"; do
    file=$(journal "$SIZE")
    q=$(quote "$file")
    R[$SIZE,bytes]=$(stat -c %s "$file")
    log "Measuring $SIZE (${R[$SIZE,bytes]} bytes, median of $RUNS runs) ..."

    measure wc "wc -l < $q"
    R[$SIZE,lines]=${R[$SIZE,wc_out]}
    measure floor "$(quote "$FLOOR" "$file")"

    old() { [[ -n $BASELINE ]] && quote "$OLD_EVENTS" "$@" || true; }
    measure count "$(quote "$EVENTS" count "$file")" "$(old count "$file")"
    measure filter1 "$(quote "$EVENTS" count "$file" "${FILTER[@]}" --workers 1)"
    measure filter "$(quote "$EVENTS" count "$file" "${FILTER[@]}" --workers 2)" \
        "$(old count "$file" "${FILTER[@]}" --workers 2)"
    measure search "$(quote "$EVENTS" count "$file" "${KEYWORD[@]}" --workers 2)" \
        "$(old count "$file" "${KEYWORD[@]}" --workers 2)"
    measure summary "$(quote "$EVENTS" summary "$file" --workers 2)" "$(old summary "$file" --workers 2)"

    grow_bench after "$BENCH" "$file"
    [[ -n $BASELINE ]] && grow_bench before "$OLD_BENCH" "$file"

    if [[ ${BENCH_SKIP_JQ:-0} != 1 ]]; then
        # jq is slow: one run is enough to know how far behind it is.
        RUNS=1 measure jq "jq -cR $(quote "$JQ_SELECT") $q | wc -l"
    fi
done
LOAD_AFTER=$(cut -d' ' -f1-3 /proc/loadavg)

seconds() { awk -v ms="${1:--1}" 'BEGIN { if (ms < 0) printf "n/a"; else printf "%.2f s", ms / 1000 }'; }
speed() { awk -v ms="${1:--1}" -v b="$2" 'BEGIN { if (ms <= 0) printf "n/a"; else printf "%.0f MB/s", b / 1e6 / (ms / 1000) }'; }
ratio() { awk -v a="${1:--1}" -v b="${2:--1}" 'BEGIN { if (a <= 0 || b <= 0) printf "n/a"; else printf "%.2f×", a / b }'; }
ms() { [[ -n ${1:-} ]] && printf '%s ms' "$1" || printf 'n/a'; }

# cell SIZE KEY: median wall time, processor time in brackets.
cell() {
    local t=${R[$1,$2]:-} c=${R[$1,${2}_cpu]:-}
    [[ -n $t ]] || { printf 'n/a'; return; }
    printf '%s (CPU %s)' "$(seconds "$t")" "$(seconds "$c")"
}

table() {
    local s=$1 bytes=${R[$1,bytes]}
    local has_before=0
    [[ -n $BASELINE ]] && has_before=1
    echo "### $s journal: $bytes bytes, ${R[$s,lines]} lines, ${R[$s,count_out]} events"
    echo
    if ((has_before)); then
        echo "| Measurement | Before | After | Speed-up | After: throughput, ÷ \`wc -l\` | Target |"
        echo "|---|---|---|---|---|---|"
    else
        echo "| Measurement | Time | Throughput, ÷ \`wc -l\` | Target |"
        echo "|---|---|---|---|"
    fi
    # row LABEL KEY TARGET
    row() {
        local label=$1 key=$2 target=$3
        local through
        through="$(speed "${R[$s,$key]:-}" "$bytes"), $(ratio "${R[$s,$key]:-}" "${R[$s,wc]:-}")"
        if ((has_before)); then
            local before="n/a" up="n/a"
            if [[ -n ${R[$s,${key}_before]:-} ]]; then
                before=$(cell "$s" "${key}_before")
                up=$(ratio "${R[$s,${key}_before]}" "${R[$s,$key]}")
            fi
            printf '| %s | %s | %s | %s | %s | %s |\n' "$label" "$before" "$(cell "$s" "$key")" "$up" "$through" "$target"
        else
            printf '| %s | %s | %s | %s |\n' "$label" "$(cell "$s" "$key")" "$through" "$target"
        fi
    }
    # plain LABEL BEFORE AFTER TARGET
    plain() {
        if ((has_before)); then
            printf '| %s | %s | %s | | | %s |\n' "$1" "$2" "$3" "$4"
        else
            printf '| %s | %s | | %s |\n' "$1" "$3" "$4"
        fi
    }
    row "\`wc -l\` (I/O floor)" wc ""
    row "Qt JSON parse of every line, 1 thread (nimb-json-floor, ${R[$s,floor_out]} objects)" floor ""
    row "Full count" count "≥ 1.5 GB/s"
    row "Filtered count (priority set + name contains), 1 worker" filter1 ""
    row "Filtered count, 2 workers (${R[$s,filter_out]} events)" filter "≥ 400 MB/s"
    row "Keyword search count, 2 workers (${R[$s,search_out]} events)" search "≥ 250 MB/s"
    row "Summary, 2 workers" summary "≥ 500 MB/s"
    plain "Count again after appending 1%" "$(ms "${R[$s,before_grown_count_ms]:-}")" \
        "$(ms "${R[$s,after_grown_count_ms]:-}") (+${R[$s,after_appended_lines]:-?} lines)" ""
    plain "Page of 1000 rows: first / middle / last" \
        "$(ms "${R[$s,before_page_first_ms]:-}") / $(ms "${R[$s,before_page_middle_ms]:-}") / $(ms "${R[$s,before_page_last_ms]:-}")" \
        "$(ms "${R[$s,after_page_first_ms]:-}") / $(ms "${R[$s,after_page_middle_ms]:-}") / $(ms "${R[$s,after_page_last_ms]:-}")" \
        "≤ 30 ms each"
    plain "Index bytes per counted line" "${R[$s,before_index_bytes_per_line]:-n/a} B" \
        "${R[$s,after_index_bytes_per_line]:-n/a} B" "≤ 2 B"
    plain "Peak memory of the full count" \
        "$(awk -v kb="${R[$s,count_before_kb]:-0}" 'BEGIN { printf "%.1f MiB", kb / 1024 }')" \
        "$(awk -v kb="${R[$s,count_kb]:-0}" 'BEGIN { printf "%.1f MiB", kb / 1024 }')" "≤ 64 MiB"
    if [[ -n ${R[$s,jq]:-} ]]; then
        plain "jq selecting the same lines, 1 run" "" "$(seconds "${R[$s,jq]}") (${R[$s,jq_out]} objects)" ""
    fi
    echo
    echo "Runs, wall ms: full count ${R[$s,count_all]:-}; filtered ${R[$s,filter_all]:-}; search" \
        "${R[$s,search_all]:-}; summary ${R[$s,summary_all]:-}."
    if ((has_before)); then
        echo "Before: full count ${R[$s,count_before_all]:-}; filtered ${R[$s,filter_before_all]:-}; search" \
            "${R[$s,search_before_all]:-}; summary ${R[$s,summary_before_all]:-}."
    fi
    echo
}

{
    for s in "${SIZES[@]}"; do
        table "$s"
    done
    echo "Measured $(date -u '+%Y-%m-%d %H:%M UTC'). Filter: \`${FILTER[*]}\`; keyword: \`${KEYWORD[*]}\`." \
        "Wall times with a warm page cache," \
        "medians of $RUNS runs$([[ -n $BASELINE ]] && echo ", before and after alternating"); processor" \
        "time (user+system) in brackets. $(nproc) processors; load average before $LOAD_BEFORE, after" \
        "$LOAD_AFTER (other work on the machine lengthens wall times). Journals: nimb-gen-journal --seed $SEED."
} | tee "$OUT/results.md" ${BENCH_RESULTS:+"$BENCH_RESULTS"}
