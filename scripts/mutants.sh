#!/usr/bin/env bash
# mutants.sh [-n NUMBER] [-s SEED] [--sources REVISION] [--tests REVISION|FOLDER] [--only NUMBER,...] [-j JOBS]
# Tells whether the tests see faults. It draws 200 mutants, small faults in src/ and toolchain/, from the sources of a
# revision (HEAD), builds a copy with all of them in it, runs for each the tests (those of this checkout) that reach its
# place, cheapest first, until one fails, and prints which mutants none has seen, and the share of the others by folder.
# The same sources, seed and number always have the same mutants, whatever the tests. A run that was stopped goes on
# where it was. All is kept in build/mutants, the results in results.json in it.
# mutants.sh --check: whether each kind of fault is found, and can be switched on, in a small file; 77 without the packages.
set -euo pipefail
here=$(dirname "$(readlink -f "$0")")/mutants
python=/usr/bin/python3 # for which the system's packages are

if [ "${1:-}" = --check ]; then
    "$python" -c 'import clang.cindex' 2>/dev/null || { echo "mutants: skipped, python3-clang-19 is not installed"; exit 77; }
    exec "$python" -B "$here/check.py"
fi
"$here/../setup.sh" python3-clang-19 bubblewrap
exec "$python" -B "$here/run.py" "$@"
