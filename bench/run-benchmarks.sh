#!/usr/bin/env bash
# Builds the tools in Release (build-bench), generates journals of 200 MB and 1 GB into
# bench/out (kept for the next run as long as the seed is the same) and prints one
# Markdown table of wall times, also written to bench/out/results.md.
#
# Environment: BENCH_SEED (journal seed), BENCH_SIZES (e.g. "50M 200M"),
# BENCH_BUILD_DIR, BENCH_SKIP_BUILD=1 (reuse the binaries as they are).
#
# Times are wall-clock times with a warm page cache. Other work on the machine shows
# directly in them: the load average is printed with the table.
set -euo pipefail

ROOT=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
BUILD=${BENCH_BUILD_DIR:-$ROOT/build-bench}
OUT=$ROOT/bench/out
SEED=${BENCH_SEED:-20240301}
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

# Milliseconds of wall time of one run of a shell command; its output is kept in
# $OUT/last.out and its processor time in $OUT/last.cpu. -1 when the command fails.
run_once() {
    local start end
    start=$(date +%s%N)
    if ! /usr/bin/time -f '%U %S' -o "$OUT/last.cpu" bash -c "$1" >"$OUT/last.out" 2>"$OUT/last.err"; then
        log "failed: $1"
        sed 's/^/    /' "$OUT/last.err" >&2
        echo -1
        return
    fi
    end=$(date +%s%N)
    echo $(((end - start) / 1000000))
}

best_of() {
    local runs=$1 command=$2 best=-1 t i
    for ((i = 0; i < runs; i++)); do
        t=$(run_once "$command")
        if ((t >= 0 && (best < 0 || t < best))); then
            best=$t
            awk '{ printf "%d", ($1 + $2) * 1000 }' "$OUT/last.cpu" >"$OUT/best.cpu"
        fi
    done
    echo "$best"
}

quote() { printf '%q ' "$@"; }

seconds() {
    if (($1 < 0)); then
        printf 'failed'
    else
        awk -v ms="$1" 'BEGIN { printf "%.2f s", ms / 1000 }'
    fi
}

ratio() {
    awk -v a="$1" -v b="$2" 'BEGIN { if (a <= 0 || b <= 0) printf "n/a"; else printf "%.2f×", a / b }'
}

value_of() { sed -n "s/^$1=//p" "$2"; }

build
EVENTS=$(binary nimb-events)
BENCH=$(binary nimb-bench)
FLOOR=$(binary nimb-json-floor)
GEN=$(binary nimb-gen-journal)

declare -A R
for size in "${SIZES[@]}"; do
    file=$(journal "$size")
    runs=2
    [[ $size == *G ]] && runs=1
    q=$(quote "$file")
    log "Measuring $size ($(stat -c %s "$file") bytes, best of $runs) ..."

    R[$size,wc]=$(best_of "$runs" "wc -l < $q")
    R[$size,lines]=$(tr -d ' ' <"$OUT/last.out")

    R[$size,floor]=$(best_of "$runs" "$(quote "$FLOOR" "$file")")
    R[$size,floor_count]=$(cat "$OUT/last.out")
    R[$size,floor_cpu]=$(cat "$OUT/best.cpu")

    R[$size,count]=$(best_of "$runs" "/usr/bin/time -v -o $(quote "$OUT/time.txt") $(quote "$EVENTS" count "$file")")
    R[$size,count_cpu]=$(cat "$OUT/best.cpu")
    R[$size,events]=$(cat "$OUT/last.out")
    R[$size,rss_kb]=$(sed -n 's/^[[:space:]]*Maximum resident set size (kbytes): //p' "$OUT/time.txt")

    best_grow=-1
    for ((i = 0; i < runs; i++)); do
        if "$BENCH" "$file" --generator "$GEN" --seed $((SEED + 1)) >"$OUT/bench.out" 2>"$OUT/bench.err"; then
            grow=$(value_of grown_count_ms "$OUT/bench.out")
            if [[ $best_grow == -1 ]] || awk -v a="$grow" -v b="$best_grow" 'BEGIN { exit !(a < b) }'; then
                best_grow=$grow
                cp "$OUT/bench.out" "$OUT/bench-$size.out"
            fi
        else
            log "nimb-bench failed:"
            sed 's/^/    /' "$OUT/bench.err" >&2
        fi
    done
    if [[ -f $OUT/bench-$size.out ]]; then
        for key in grown_count_ms appended_lines page_first_ms page_middle_ms page_last_ms index_bytes_per_line; do
            R[$size,$key]=$(value_of "$key" "$OUT/bench-$size.out")
        done
    fi

    R[$size,filter1]=$(best_of "$runs" "$(quote "$EVENTS" count "$file" "${FILTER[@]}" --workers 1)")
    R[$size,filtered]=$(cat "$OUT/last.out")
    R[$size,filter1_cpu]=$(cat "$OUT/best.cpu")
    R[$size,filter2]=$(best_of "$runs" "$(quote "$EVENTS" count "$file" "${FILTER[@]}" --workers 2)")
    R[$size,filter2_cpu]=$(cat "$OUT/best.cpu")
    R[$size,search]=$(best_of "$runs" "$(quote "$EVENTS" count "$file" "${KEYWORD[@]}" --workers 2)")
    R[$size,found]=$(cat "$OUT/last.out")
    R[$size,summary]=$(best_of "$runs" "$(quote "$EVENTS" summary "$file" --workers 2)")

    # jq is slow: one run is enough to know how far behind it is.
    R[$size,jq]=$(best_of 1 "jq -cR $(quote "$JQ_SELECT") $q | wc -l")
    R[$size,jq_count]=$(tr -d ' ' <"$OUT/last.out")
done
LOAD_AFTER=$(cut -d' ' -f1-3 /proc/loadavg)

ms() { [[ -n ${1:-} ]] && printf '%s ms' "$1" || printf 'n/a'; }
row() {
    local label=$1 target=$2 cells="" size
    shift 2
    for size in "${SIZES[@]}"; do
        cells+=" $("$@" "$size") |"
    done
    printf '| %s |%s %s |\n' "$label" "$cells" "$target"
}
c_lines() { printf '%s lines, %s events' "${R[$1,lines]}" "${R[$1,events]}"; }
c_wc() { seconds "${R[$1,wc]}"; }
c_floor() { printf '%s (%s objects)' "$(seconds "${R[$1,floor]}")" "${R[$1,floor_count]}"; }
c_count() { seconds "${R[$1,count]}"; }
c_count_ratio() { ratio "${R[$1,count]}" "${R[$1,floor]}"; }
c_count_cpu_ratio() { ratio "${R[$1,count_cpu]}" "${R[$1,floor_cpu]}"; }
c_grow() { printf '%s (+%s lines)' "$(ms "${R[$1,grown_count_ms]:-}")" "${R[$1,appended_lines]:-?}"; }
c_filter1() {
    printf '%s (%s events; CPU %s)' "$(seconds "${R[$1,filter1]}")" "${R[$1,filtered]}" \
        "$(seconds "${R[$1,filter1_cpu]}")"
}
c_filter2() { printf '%s (CPU %s)' "$(seconds "${R[$1,filter2]}")" "$(seconds "${R[$1,filter2_cpu]}")"; }
c_speedup() { ratio "${R[$1,filter1]}" "${R[$1,filter2]}"; }
c_search() { printf '%s (%s events)' "$(seconds "${R[$1,search]}")" "${R[$1,found]}"; }
c_summary() { seconds "${R[$1,summary]}"; }
c_pages() {
    printf '%s / %s / %s' "$(ms "${R[$1,page_first_ms]:-}")" "$(ms "${R[$1,page_middle_ms]:-}")" \
        "$(ms "${R[$1,page_last_ms]:-}")"
}
c_rss() { awk -v kb="${R[$1,rss_kb]:-0}" 'BEGIN { printf "%.1f MiB", kb / 1024 }'; }
c_index() { printf '%s B' "${R[$1,index_bytes_per_line]:-n/a}"; }
c_jq() { printf '%s (%s objects)' "$(seconds "${R[$1,jq]}")" "${R[$1,jq_count]}"; }
c_jq_ratio() { ratio "${R[$1,jq]}" "${R[$1,count]}"; }

{
    header="| Measurement |"
    rule="|---|"
    for size in "${SIZES[@]}"; do
        header+=" $size journal |"
        rule+="---|"
    done
    printf '%s Target |\n%s---|\n' "$header" "$rule"
    row "Journal" "" c_lines
    row "\`wc -l\` (I/O floor)" "" c_wc
    row "Qt JSON parse of every line, 1 thread (nimb-json-floor)" "" c_floor
    row "Full count (\`nimb-events count\`)" "" c_count
    row "Full count ÷ JSON floor" "≤ 1.5×" c_count_ratio
    row "Same ratio in processor time (user+sys)" "" c_count_cpu_ratio
    row "Count again after appending 1% (same parser)" "" c_grow
    row "Filtered count, 1 worker" "" c_filter1
    row "Filtered count, 2 workers" "" c_filter2
    row "Filtered speed-up, 2 workers vs 1" "≈ 2×" c_speedup
    row "Keyword search count, 2 workers" "" c_search
    row "Summary, 2 workers" "" c_summary
    row "Page load, 1000 rows: first / middle / last" "< 50 ms each" c_pages
    row "Peak RSS of the full count" "" c_rss
    row "Index bytes per counted line" "8 B + slack" c_index
    row "jq selecting the same lines, 1 run" "" c_jq
    row "jq ÷ full count" "≥ 3×" c_jq_ratio
    echo
    echo "Filter: \`${FILTER[*]}\`; keyword: \`${KEYWORD[*]}\`. Wall times, warm page cache;" \
        "best of 2 runs for journals below 1 GB, single runs for 1 GB. $(nproc) processors;" \
        "load average before $LOAD_BEFORE, after $LOAD_AFTER (other work on the machine lengthens wall times;" \
        "the processor times show the work itself). Journals: nimb-gen-journal --seed $SEED."
} | tee "$OUT/results.md"
