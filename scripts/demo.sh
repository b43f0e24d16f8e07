#!/usr/bin/env bash
# Sets up, builds, and runs the programs on a sample.
set -euo pipefail
cd "$(dirname "$0")/.."

./scripts/build.sh release ostmake ostquery
PATH=$PWD/build/release/bin:$PATH
HOME=$(mktemp -d)
export HOME
trap 'rm -rf "$HOME"' EXIT

show() {
    printf '\n$ %s\n' "$*"
    "$@"
}
sample=samples/thermometer/thermometer.vkp
show ostquery tree "$sample"
show ostquery order "$sample" --config Debug
show ostquery settings "$sample" --config Debug --project app --file celsius.c --set
printf '\n# What a build would run. The tool chain is a product of its own, so the commands are shown, not carried out.\n'
show ostmake -config Debug -project app -tarndir /opt/tarn -show "$sample"
