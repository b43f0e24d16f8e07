#!/usr/bin/env bash
# test.sh [PRESET...]: sets up, builds and runs the whole test suite; of the preset `release` if none is named.
set -euo pipefail
cd "$(dirname "$0")/.."

[ $# -gt 0 ] || set -- release
for preset; do
    ./scripts/build.sh "$preset"
    ctest --preset "$preset" --parallel "$(nproc)" --progress
done
