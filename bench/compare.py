#!/usr/bin/env python3
"""compare.py [--rounds N] [--only TEXT]: ostmake beside other builders, on the same trees with the same tool.

The builders take turns; each line holds the median of the ratios to ninja, round by round, their least and largest, and
the median time. Everything runs one step at a time. Builders that are not installed are left out, and the slow ones on large
trees. Build the release preset first, or run bench/run.sh."""
import argparse
import dataclasses
import os
import pathlib
import resource
import shutil
import statistics
import subprocess
import sys
import tempfile
import time

import trees

ALL = (trees.Ostmake, trees.Ninja, trees.Make, trees.Scons, trees.Qbs)
QUICK = (trees.Ostmake, trees.Ninja, trees.Make)


def settle(builder):
    """Builds everything, and makes every input old and every output less so: times are compared by the second."""
    now = time.time()
    for path in builder.where.rglob("*.[ch]"):
        os.utime(path, (now - 1000, now - 1000))
    run(builder, builder.first_build())
    if builder.compares_times:
        for path in outputs(builder):
            os.utime(path, (now - 500, now - 500))


def run(builder, command):
    began = time.perf_counter()
    process = subprocess.Popen(command, cwd=builder.where, env=builder.environment, stdout=subprocess.DEVNULL)
    _, status, usage = os.wait4(process.pid, 0)
    wall = time.perf_counter() - began
    if status:
        sys.exit(f"{builder.name} ended with {status}: {' '.join(command)}")
    return wall, usage.ru_maxrss / 1024


def megabytes(peak):
    """A program that was started counts at least what this one has."""
    own = resource.getrusage(resource.RUSAGE_SELF).ru_maxrss / 1024
    return f"{peak:.0f} MB" if peak > own + 1 else f"under {own:.0f} MB"


def outputs(builder):
    return [path for path in (builder.where / builder.folder).rglob("*")
            if path.suffix in (".o", ".vko", ".vkx", "") and path.is_file()]


@dataclasses.dataclass
class Scenario:
    title: str
    before: object = None  # what is done to the tree in front of a run that is measured
    made: int = 0  # how many outputs that run is to make
    what: str = "build"


def measure(scenario, builders, rounds):
    times = {builder.name: [] for builder in builders}
    peak = 0
    for _ in range(rounds):
        for builder in builders:
            command = getattr(builder, scenario.what)()
            if not command:
                continue
            if scenario.before:
                settle(builder)
                scenario.before(builder)
            began = time.time() - 0.02
            wall, memory = run(builder, command)
            times[builder.name].append(wall)
            if builder.name == "ostmake":
                peak = memory
            if builder.name in ("ostmake", "ninja -j1"):
                made = sum(path.stat().st_mtime >= began for path in outputs(builder))
                if made != scenario.made:
                    sys.exit(f"{scenario.title}: {builder.name} made {made} outputs, not {scenario.made}")
    for name, walls in times.items():
        if walls:
            ratios = [ours / ninja for ours, ninja in zip(walls, times["ninja -j1"])]
            print(f"| {scenario.title} | {name} | {statistics.median(ratios):.2f} | {min(ratios):.2f} to {max(ratios):.2f} "
                  f"| {statistics.median(walls) * 1e3:.1f} ms | {megabytes(peak) if name == 'ostmake' else ''} |", flush=True)


def grown(tree, classes):
    """The builders of a new tree, in which everything is built."""
    tree.write()
    builders = [each(tree) for each in classes if each is trees.Ostmake or shutil.which(each.name.split()[0])]
    for builder in builders:
        builder.write()
        settle(builder)
    return builders


def one_source(builder):
    (builder.where / builder.tree.source(0, builder.tree.sources // 2)).touch()


def one_header(builder):
    (builder.where / trees.COMMON_HEADER).touch()


def nothing_made(builder):
    builder.clean()


def flat(where, count, classes, rounds, wanted, projects=1):
    """A link of all of 100,000 objects would be longer than a command may be: hence projects."""
    scenarios = [Scenario(f"nothing to do, {count:,} sources"),
                 Scenario(f"one source touched, {count:,} sources", one_source, 1 + projects)]
    if count <= 10_000:
        scenarios.append(Scenario(f"loading, {count:,} sources", what="load"))
    if count <= 1_000:
        scenarios += [Scenario(f"a header of all touched, {count:,} sources", one_header, count + 1),
                      Scenario(f"everything to do, {count:,} sources", nothing_made, count + 1)]
    scenarios = [each for each in scenarios if wanted in each.title]
    if scenarios:
        builders = grown(trees.Tree(where, count // projects, projects), classes)
        for scenario in scenarios:
            measure(scenario, builders, rounds)


def other(where, title, tree, rounds, wanted):
    if wanted in title:
        measure(Scenario(title), grown(tree(where), QUICK), rounds)


def chain_of(where, count, wanted):
    """No peer: it is to end, and not for want of stack."""
    title = f"a chain of {count:,} projects"
    if wanted in title:
        tree = trees.Tree(where, 1, projects=count)
        tree.write()
        builder = trees.Ostmake(tree)
        builder.write()
        for what in ("everything", "nothing"):
            wall, memory = run(builder, builder.build())
            print(f"| {title}, {what} to do | ostmake | | | {wall * 1e3:.0f} ms | {megabytes(memory)} |", flush=True)


def main():
    parser = argparse.ArgumentParser(description=__doc__.split("\n\n")[0])
    parser.add_argument("--rounds", type=int, default=11, help="runs of each, fewer on large trees")
    parser.add_argument("--only", default="", help="the scenarios whose titles hold this text")
    options = parser.parse_args()
    print("| What | Builder | Of ninja's time | Least to largest | Median | Peak of memory |\n|---|---|---|---|---|---|")
    with tempfile.TemporaryDirectory() as folder:
        where = pathlib.Path(folder)
        few = max(3, options.rounds // 3)
        flat(where / "1k", 1_000, ALL, options.rounds, options.only)
        flat(where / "10k", 10_000, QUICK, options.rounds, options.only)
        flat(where / "100k", 100_000, QUICK[:2], few, options.only, projects=10)
        other(where / "chain", "nothing to do, a chain of 1,000 projects",
              lambda path: trees.Tree(path, 1, projects=1_000), options.rounds, options.only)
        other(where / "batch", "nothing to do, 1,000 sources in 10 configurations",
              lambda path: trees.Tree(path, 1_000, configurations=10), options.rounds, options.only)
        chain_of(where / "long", 20_000, options.only)


main()
