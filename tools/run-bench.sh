#!/usr/bin/env bash
# Runs every benchmark program of a build directory; each reports its own ratios against a floor measured in the
# same run.
set -euo pipefail
dir=${1:-build/release/bench}
found=0
for program in "$dir"/*_bench; do
    [ -x "$program" ] || continue
    found=1
    echo "== $(basename "$program")"
    "$program" --benchmark_counters_tabular=true
done
[ "$found" = 1 ] || { echo "no benchmark programs in $dir" >&2; exit 1; }
