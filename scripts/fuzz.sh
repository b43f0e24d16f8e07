#!/usr/bin/env bash
# fuzz.sh [SECONDS [TARGET...]]: builds the fuzz targets and runs each on its corpus and beyond, 5 seconds if not told.
# A finding stops the run and is left in build/fuzz/findings.
set -euo pipefail
cd "$(dirname "$0")/.."
seconds=${1:-5}
[ $# -eq 0 ] || shift

./scripts/build.sh fuzz
[ $# -gt 0 ] || set -- $(cd fuzz && ls ./*Fuzz.cpp | sed 's|^\./||; s|\.cpp$||')
mkdir -p build/fuzz/findings
for target; do
    grown=build/fuzz/corpus/$target
    mkdir -p "$grown"
    log=build/fuzz/$target.log
    dictionary=()
    [ ! -f "fuzz/$target.dict" ] || dictionary=(-dict="fuzz/$target.dict")
    if ! "build/fuzz/fuzz/$target" "$grown" "fuzz/corpus/$target" "${dictionary[@]}" -max_total_time="$seconds" \
        -timeout=10 -rss_limit_mb=2048 -artifact_prefix="build/fuzz/findings/$target-" >"$log" 2>&1; then
        tail -n 40 "$log" >&2
        echo "fuzz: $target found something, see $log" >&2
        exit 1
    fi
    echo "fuzz: $target: $(grep -o 'Done .*' "$log" | tail -n 1)"
done
