#!/usr/bin/env bash
# Shows the orvia tool on a network file: a summary, a round trip through the current format, and proof that the
# written file reads back to the same network (writing it again gives the same bytes).
set -euo pipefail
orvia=${1:?usage: run-demo.sh ORVIA_PROGRAM NETWORK_FILE}
network=${2:?usage: run-demo.sh ORVIA_PROGRAM NETWORK_FILE}

work=$(mktemp -d "${TMPDIR:-/tmp}/orvia-demo.XXXXXX")
trap 'rm -rf "$work"' EXIT

echo "== orvia info $network"
"$orvia" info "$network"
echo

echo "== orvia info --json $network"
"$orvia" info --json "$network"
echo

first=$work/first.xml
second=$work/second.xml
echo "== orvia convert $network $first"
"$orvia" convert "$network" "$first"
echo "wrote $(wc -c <"$first") bytes"
echo

echo "== reload the written file and write it again: orvia convert $first $second"
"$orvia" convert "$first" "$second"
if cmp -s "$first" "$second"; then
    echo "identical: the written network reads back to the same network ($(wc -c <"$second") bytes)"
else
    echo "DIFFERENT: the written network does not read back the same" >&2
    diff "$first" "$second" | head -20 >&2
    exit 1
fi
echo

echo "== the local origin and a point 100 m east of it, in WGS84"
"$orvia" geo "$network" --to-wgs84 0 0 0
"$orvia" geo "$network" --to-wgs84 100 0 0
