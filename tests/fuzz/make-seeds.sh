#!/usr/bin/env bash

# SPDX-FileCopyrightText: 2026 The trelvik developers
#
# SPDX-License-Identifier: GPL-2.0-or-later

# Writes the seed corpus of the fuzz harnesses into corpus/ beside this script, from
# the journal generator and the test data. Deterministic; run again after the journal
# format or the settings layout changes.
#   bash tests/fuzz/make-seeds.sh build/bin/nimb-gen-journal
set -euo pipefail
GEN="${1:?path of nimb-gen-journal}"
HERE="$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)"
ROOT="$HERE/../.."
OUT="$HERE/corpus"
WORK="$(mktemp -d)"
trap 'rm -rf "$WORK"' EXIT

rm -rf "$OUT"
mkdir -p "$OUT"/{lineparser,filtermatch,logparser,compressed,settings,logrotate}

# A journal with a share of the broken lines real journals have.
"$GEN" --seed 14 --lines 400 --malformed-permille 150 --now 2024-03-01T12:00:00Z --out "$WORK/journal"

# lineparser: single lines, the broken ones included.
n=0
while IFS= read -r line && [ $n -lt 40 ]; do
  printf '%s' "$line" > "$OUT/lineparser/gen-$n"
  n=$((n + 1))
done < "$WORK/journal"
printf '%s' '{"FACILITY":"auth","PRIORITY":"info","HOST":"h","DATE":"Mar  1 10:15:00","MSG":{"velmo-auth":{"message_id":"a","result":"maybe","foo":5,"time":"2024-03-01T10:00:00+03:00","unixtime":1709276400,"end_time":"-1"}}}' > "$OUT/lineparser/keys"

# filtermatch: filter bytes, a line feed, then one journal line.
n=0
while IFS= read -r line && [ $n -lt 12 ]; do
  head -c $((16 + n * 7)) /dev/zero | tr '\0' "$(printf "\\$(printf '%03o' $((65 + n)))")" > "$OUT/filtermatch/gen-$n"
  printf '\n%s' "$line" >> "$OUT/filtermatch/gen-$n"
  n=$((n + 1))
done < <(grep '"MSG":{"' "$WORK/journal")

# logparser: a journal as first seen, a zero byte, then what was appended.
for cut in 0 700 2500 4001; do
  head -c 6000 "$WORK/journal" > "$WORK/part"
  { head -c "$cut" "$WORK/part"; printf '\0'; tail -c +$((cut + 1)) "$WORK/part"; } > "$OUT/logparser/cut-$cut"
done

# compressed: the first byte picks the suffix (0 .gz, 1 .bz2, 2 .xz, 3 .zst, 4 none).
head -n 30 "$WORK/journal" > "$WORK/small"
{ printf '\0'; gzip -9 -n -c "$WORK/small"; } > "$OUT/compressed/gz"
{ printf '\1'; bzip2 -9 -c "$WORK/small"; } > "$OUT/compressed/bz2"
{ printf '\2'; xz -c "$WORK/small"; } > "$OUT/compressed/xz"
{ printf '\3'; zstd -q -c "$WORK/small"; } > "$OUT/compressed/zst"
{ printf '\4'; head -c 3000 "$WORK/small"; } > "$OUT/compressed/plain"
{ printf '\0'; gzip -9 -n -c "$WORK/small" | head -c 400; } > "$OUT/compressed/gz-cut"
{ printf '\1'; gzip -9 -n -c "$WORK/small"; } > "$OUT/compressed/gz-as-bz2"

# settings: files as the viewer writes them, and hand-edited ones.
cp "$HERE/seeds/settings/"* "$OUT/settings/"

# logrotate: the demo tree's scheme and variations of it.
cp "$ROOT/data/demo/sysroot/etc/logrotate.d/syslog-ng-mod-velmo" "$OUT/logrotate/demo"
cp "$HERE/seeds/logrotate/"* "$OUT/logrotate/"
echo "make-seeds: $(find "$OUT" -type f | wc -l) seeds in $OUT"
