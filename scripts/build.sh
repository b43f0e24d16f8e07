#!/usr/bin/env bash
# build.sh PRESET [TARGET...]: sets up, configures and builds. Prints nothing when there is nothing to do.
set -euo pipefail
cd "$(dirname "$0")/.."
preset=$1
shift

./scripts/setup.sh
log=$(mktemp)
trap 'rm -f "$log"' EXIT
if ! cmake --preset "$preset" >"$log" 2>&1; then
    cat "$log" >&2
    echo "build: could not configure the preset $preset" >&2
    exit 1
fi
targets=()
[ $# -eq 0 ] || targets=(--target "$@")
if ! cmake --build --preset "$preset" "${targets[@]}" >"$log" 2>&1; then
    cat "$log" >&2
    echo "build: could not build the preset $preset" >&2
    exit 1
fi
if grep -q '^\[[0-9]*/[0-9]*\] \(Building\|Linking\)' "$log"; then
    echo "build: $preset is up to date in build/$preset"
fi
