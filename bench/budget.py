#!/usr/bin/env python3
"""budget.py BIN [--accept]: the instructions that fixed runs take, counted by callgrind, against bench/budgets.txt.

Counts need no quiet machine: one that is off by more than a twentieth, up or down, is a failure. With --accept the counts
are written down as the new budgets. BIN is the folder of a release build's programs; callgrind and a tree of 1,000 sources
make it take half a minute."""
import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile

import trees

BUDGETS = trees.root / "bench/budgets.txt"
TOLERANCE = 0.05


def count(command, where):
    """Millions of instructions of a run, on one processor and so without a second thread."""
    ran = subprocess.run(["taskset", "-c", "0", "valgrind", "--tool=callgrind", "--callgrind-out-file=/dev/null", *command],
                         cwd=where, env=dict(os.environ, HOME=str(where / "home")), capture_output=True, text=True)
    found = re.search(r"Collected : (\d+)", ran.stderr)
    if ran.returncode or not found:
        sys.exit(f"{' '.join(command)} ended with {ran.returncode}:\n{ran.stdout[-500:]}{ran.stderr[-500:]}")
    return int(found[1]) / 1e6


def counts(programs, where):
    """Name and count of each run."""
    ostmake, ostquery = str(programs / "ostmake"), str(programs / "ostquery")
    tree = trees.Tree(where, 1_000)
    tree.write()
    builder = trees.Ostmake(tree)
    builder.program = ostmake
    builder.write()
    build = builder.build()
    subprocess.run(build, cwd=where, env=builder.environment, stdout=subprocess.DEVNULL, check=True)
    solution = subprocess.run([sys.executable, str(trees.root / "bench/makeSolution.py"), "-p", "100", "-f", "50"],
                              capture_output=True, check=True).stdout
    (where / "large.vkp").write_bytes(solution)
    headers = [str(path) for path in sorted((trees.root / "samples/documentation").glob("*.h"))]
    yield "the start: -help", count([ostmake, "-help"], where)
    yield "loading 5,000 files with settings", count([ostquery, "configurations", "large.vkp"], where)
    yield "nothing to do, 1,000 sources", count(build, where)
    yield "the words of 1,000 commands", count([*build[:-1], "-rebuild", "-show", build[-1]], where)
    yield "reasons of 1,000 steps", count([ostquery, "why", "app.vkp", "--config", "C0"], where)
    yield "symbols of the documentation sample", count([ostquery, "symbols", *headers], where)


def main():
    if not shutil.which("valgrind") or not shutil.which("taskset"):
        print("valgrind or taskset is missing")
        return 77
    known = dict(line.rsplit(None, 1) for line in BUDGETS.read_text().splitlines() if line) if BUDGETS.exists() else {}
    lines, failures = [], 0
    with tempfile.TemporaryDirectory() as folder:
        for name, millions in counts(pathlib.Path(sys.argv[1]).resolve(), pathlib.Path(folder)):
            budget = float(known.pop(name, 0))
            isWithin = abs(millions - budget) <= TOLERANCE * budget
            failures += not isWithin
            lines.append(f"{name:40} {millions:.1f}")
            print(f"{name:40} {millions:8.1f} million, budget {budget:8.1f}{'' if isWithin else '  NO'}", flush=True)
    if "--accept" in sys.argv:
        BUDGETS.write_text("\n".join(lines) + "\n")
        return 0
    for name in known:
        print(f"no run is called {name}")
    return 1 if failures or known else 0


if __name__ == "__main__":
    sys.exit(main())
