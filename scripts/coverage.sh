#!/usr/bin/env bash
# coverage.sh: builds the preset `coverage`, runs the whole test suite, and tells which share of the lines and branches
# of each layer has run. What has not run stands line by line in build/coverage/uncovered.txt.
set -euo pipefail
cd "$(dirname "$0")/.."

if ! command -v gcovr >/dev/null; then
    echo "coverage: gcovr is missing; install it with: apt-get install gcovr" >&2
    exit 1
fi
./scripts/build.sh coverage
find build/coverage -name '*.gcda' -delete
# Programs that are killed, or refused, at each call in turn are so while they write their counts too, which spoils them.
ctest --preset coverage --parallel "$(nproc)" --progress --exclude-regex '^faults\.(killed|refused|tools|told)' \
    2>build/coverage/errors.txt || echo "coverage: some tests fail" >&2

# Branches that only exceptions of the library take are not ours to test.
gcovr --root . --exclude-throw-branches --exclude-unreachable-branches --gcov-ignore-parse-errors \
    --filter src/ --filter toolchain/ --json-summary build/coverage/summary.json \
    --txt build/coverage/uncovered.txt build/coverage
python3 - build/coverage/summary.json <<'PYTHON'
import collections
import json
import sys

layers = collections.defaultdict(lambda: [0, 0, 0, 0])
for file in json.load(open(sys.argv[1]))["files"]:
    layer = "/".join(file["filename"].split("/")[:2])
    for name in (layer, "all"):
        for index, key in enumerate(("line_covered", "line_total", "branch_covered", "branch_total")):
            layers[name][index] += file[key]
print("| Layer | Lines | Branches |\n|---|---|---|")
for name, (lines, all_lines, branches, all_branches) in sorted(layers.items(), key=lambda row: (row[0] == "all", row[0])):
    print(f"| `{name}` | {100 * lines / all_lines:.1f} % of {all_lines:,} | {100 * branches / max(all_branches, 1):.1f} % of {all_branches:,} |")
PYTHON
