#!/usr/bin/env bash
# Runs each fuzz target built in $1 for $2 seconds on its corpus.
set -euo pipefail
build="$1"
seconds="$2"
here="$(cd "$(dirname "$0")/.." && pwd)"
shopt -s nullglob
targets=("$build"/tests/fuzz/fuzz_*)
if [ ${#targets[@]} -eq 0 ]; then
  echo "no fuzz targets built"
  exit 0
fi
for target in "${targets[@]}"; do
  [ -x "$target" ] || continue
  name="$(basename "$target")"
  corpus="$here/tests/fuzz/corpus/${name#fuzz_}"
  work="$build/fuzz-work/$name"
  mkdir -p "$work"
  echo "-- $name"
  ASAN_OPTIONS=detect_leaks=1 "$target" -max_total_time="$seconds" -timeout=10 \
    -rss_limit_mb=2048 -print_final_stats=1 "$work" "$corpus" 2>"$work/log" || {
    tail -50 "$work/log"
    echo "fuzz target $name failed"
    exit 1
  }
  grep -E 'stat::number_of_executed_units|Done' "$work/log" | head -2 || true
done
