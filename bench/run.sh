#!/usr/bin/env bash
# run.sh [--rounds N] [--only TEXT]: builds the release preset and prints a table of ostmake beside other builders.
set -euo pipefail
cd "$(dirname "$0")/.."
./scripts/build.sh release >/dev/null
exec python3 -B bench/compare.py "$@"
