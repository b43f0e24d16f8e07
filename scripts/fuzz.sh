#!/usr/bin/env bash
# fuzz.sh [SECONDS [TARGET...]]: builds the fuzz targets and runs each on its corpus and beyond, 5 seconds if not told,
# as many at a time as there are cores. The corpus is what was written by hand, fuzz/corpus/TARGET, what earlier runs have
# found, TARGET.tar.gz beside it (see keepCorpus.sh), and what this checkout's runs find, in build/fuzz/corpus. A finding
# stops the run and is left in build/fuzz/findings. A short run goes the same way each time; `seed=0` in the environment
# makes each run its own.
set -euo pipefail
cd "$(dirname "$0")/.."
export seconds=${1:-5}
[ $# -eq 0 ] || shift

./scripts/build.sh fuzz
[ $# -gt 0 ] || set -- $(cd fuzz && ls ./*Fuzz.cpp | sed 's|^\./||; s|\.cpp$||')
mkdir -p build/fuzz/findings

run() {
    local target=$1 grown=build/fuzz/corpus/$1 log=build/fuzz/$1.log dictionary=()
    if [ ! -d "$grown" ]; then
        mkdir -p "$grown"
        tar -xzf "fuzz/corpus/$target.tar.gz" -C "$grown"
    fi
    [ ! -f "fuzz/$target.dict" ] || dictionary=(-dict="fuzz/$target.dict")
    if ! "build/fuzz/fuzz/$target" "$grown" "fuzz/corpus/$target" "${dictionary[@]}" -max_total_time="$seconds" -seed="${seed:-1}" \
        -timeout=60 -rss_limit_mb=2048 -artifact_prefix="build/fuzz/findings/$target-" >"$log" 2>&1; then
        tail -n 40 "$log" >&2
        echo "fuzz: $target found something, see $log" >&2
        return 255 # and no further one is begun
    fi
    echo "fuzz: $target: $(grep -o 'Done .*' "$log" | tail -n 1)"
}
export -f run
printf '%s\n' "$@" | xargs -P "$(nproc)" -I{} bash -c 'run "$1"' run {}
