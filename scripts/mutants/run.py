"""Tells which mutants the tests see; ../mutants.sh starts this and says how."""
import argparse
import collections
import concurrent.futures
import json
import os
import pathlib
import signal
import sys
import threading

from drawing import ROOT, Drawing, digest, export, files_in, run
from testing import SECONDS, TIMES, Sandboxes, tests_of


def options():
    parser = argparse.ArgumentParser(prog="mutants.sh")
    parser.add_argument("-n", "--number", type=int, default=200, help="how many mutants (200)")
    parser.add_argument("-s", "--seed", type=int, default=1, help="which ones (1)")
    parser.add_argument("--sources", default="HEAD", metavar="REVISION", help="the revision whose sources they change (HEAD)")
    parser.add_argument("--tests", default=str(ROOT / "tests"), metavar="REVISION|FOLDER",
                        help="the tests that are to see them (those of this checkout)")
    parser.add_argument("--only", default="", metavar="NUMBER,...", help="only these mutants, once more")
    parser.add_argument("-j", "--jobs", type=int, default=os.cpu_count(), help="how many tests at a time")
    return parser.parse_args()


def tests_folder(name, base):
    if os.path.isdir(name):
        return pathlib.Path(name).resolve()
    revision = run("git", "-C", ROOT, "rev-parse", "--verify", f"{name}^{{commit}}").strip()
    export(revision, base / f"tests-{revision[:10]}")
    return base / f"tests-{revision[:10]}/tests"


class Results:
    """What was found out with one set of mutants and of tests. It is kept, so that a run goes on where one has ended."""

    def __init__(self, folder):
        folder.mkdir(exist_ok=True)
        self.folder = folder
        self.costs_file, self.verdicts_file = folder / "tests.json", folder / "verdicts.txt"
        self.lock = threading.Lock()

    def costs(self, measure):
        if not self.costs_file.exists():
            self.costs_file.write_text(json.dumps(measure(), indent=1))
        return json.loads(self.costs_file.read_text())

    def verdicts(self):
        lines = self.verdicts_file.read_text().splitlines() if self.verdicts_file.exists() else []
        return {verdict["number"]: verdict for verdict in map(json.loads, lines)}

    def add(self, verdict):
        with self.lock, open(self.verdicts_file, "a") as file:
            file.write(json.dumps(verdict) + "\n")


def measured(tests, sandboxes, jobs):
    """What each test costs and reaches without a mutant. One that does not pass, twice, can't judge mutants."""
    def measure(test):
        passed, seconds, reached = sandboxes.run(test)
        if passed is False:
            passed, seconds, reached = sandboxes.run(test)
        return {"name": test.name, "passed": passed, "seconds": round(seconds, 3), "reached": reached}
    with concurrent.futures.ThreadPoolExecutor(jobs) as pool:
        return list(pool.map(measure, tests))


def judged(number, tests, costs, sandboxes):
    """The verdict on a mutant: the tests that reach it run, cheapest first, until one fails. A failure has to repeat."""
    ready = sorted((cost["seconds"], cost["name"]) for cost in costs if cost["passed"] and number in cost["reached"])
    for count, (seconds, name) in enumerate(ready, 1):
        limit = TIMES * seconds + SECONDS
        passed, took, _ = sandboxes.run(tests[name], number, limit)
        hangs = took >= limit
        if passed is False and (hangs or sandboxes.run(tests[name], number, limit)[0] is False):
            return {"number": number, "caught": name, "hangs": hangs, "ran": count, "reach": len(ready)}
    return {"number": number, "caught": None, "hangs": False, "ran": len(ready), "reach": len(ready)}


def report(rows):
    """The survivors, and the share caught by folder, as two tables."""
    lines = ["| Mutant | Place | Original | Mutated | Tests that run it |", "|---|---|---|---|---|"]
    shares = collections.defaultdict(list)
    for row in rows:
        for name in (os.path.dirname(row["file"]), "all"):
            shares[name].append(bool(row["caught"]))
        if not row["caught"]:
            marked, mutated = (row[key].replace("|", "\\|") for key in ("marked", "mutated"))
            lines.append(f"| {row['number']} | {row['place']} | `{marked}` | `{mutated}` | {row['reach']} |")
    lines += ["", "| Folder | Mutants | Caught |", "|---|---|---|"]
    for name, caught in sorted(shares.items(), key=lambda share: (share[0] == "all", share[0])):
        lines.append(f"| {name} | {len(caught)} | {100 * sum(caught) / len(caught):.1f} % |")
    return "\n".join(lines)


def main():
    sys.setrecursionlimit(20_000)
    signal.signal(signal.SIGINT, signal.SIG_DFL)  # ends all threads at once, and with them the sandboxes
    given = options()
    drawing = Drawing(given.sources, given.seed, given.number, given.jobs)
    folder = tests_folder(given.tests, drawing.base)
    chosen = drawing.draw(folder)
    tests = {test.name: test for test in tests_of(drawing.build_folder)}
    sandboxes = Sandboxes(drawing, given.jobs)
    changes = [(number, mutant["file"], mutant["edits"]) for number, mutant in chosen.items()]
    contents = [part for name, path in files_in(folder).items() for part in (name, path.read_bytes())]
    results = Results(drawing.base / f"results-{digest(*changes, *contents)}")
    costs = results.costs(lambda: measured(tests.values(), sandboxes, given.jobs))
    for cost in costs:
        if not cost["passed"]:
            print(f"mutants: {cost['name']} does not pass without a mutant and is left out", file=sys.stderr)
    only = {int(number) for number in given.only.split(",") if number}
    left = only & chosen.keys() or chosen.keys() - results.verdicts().keys()
    with concurrent.futures.ThreadPoolExecutor(given.jobs) as pool:
        for done in concurrent.futures.as_completed(
                [pool.submit(judged, number, tests, costs, sandboxes) for number in sorted(left)]):
            results.add(done.result())
            print(f"mutants: {done.result()}", file=sys.stderr)
    verdicts = results.verdicts()
    rows = [{key: mutant[key] for key in ("file", "place", "operator", "marked", "mutated")} | verdicts[number]
            for number, mutant in sorted(chosen.items(), key=lambda item: (item[1]["file"], item[1]["edits"]))
            if number in verdicts]
    (results.folder / "results.json").write_text(json.dumps(rows, indent=1))
    print(report(rows))
    print(f"mutants: {results.folder.relative_to(ROOT)}/results.json", file=sys.stderr)


if __name__ == "__main__":
    main()
