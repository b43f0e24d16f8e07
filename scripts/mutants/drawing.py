"""Draws mutants from the sources of a revision, and builds a copy of the sources with all of them in it."""
import collections
import concurrent.futures
import fcntl
import hashlib
import json
import os
import pathlib
import random
import shlex
import shutil
import subprocess
import sys

from operators import mutants_in
from schemata import instrumented

HERE = pathlib.Path(__file__).resolve().parent
ROOT = HERE.parents[1]
SWITCH_SIZE = 65_536
# A function that no longer returns at its end is a trap: else the optimizer takes it that the mutant is never on.
FLAGS = "-O1 -DNDEBUG -w -fsanitize=return,unreachable -fsanitize-undefined-trap-on-error"


def run(*words, **options):
    """What a command prints; ends this program if it fails."""
    ran = subprocess.run([str(word) for word in words], capture_output=True, **options)
    if ran.returncode:
        print(f"mutants: failed: {' '.join(map(str, words))}", file=sys.stderr)
        sys.exit((ran.stdout + ran.stderr)[-5000:].decode(errors="replace"))
    return ran.stdout.decode(errors="replace")


def digest(*parts):
    return hashlib.sha256(b"\0".join(part if isinstance(part, bytes) else str(part).encode() for part in parts)).hexdigest()[:10]


def write(path, data):
    """Writes a file unless it holds that already, so that what was built of it stays up to date."""
    if not path.exists() or path.read_bytes() != data:
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_bytes(data)


def copy(source, target):
    """Makes a folder the same as another, and writes what differs only."""
    wanted = files_in(source)
    for name in files_in(target).keys() - wanted.keys():
        (target / name).unlink()
    for name, path in wanted.items():
        write(target / name, path.read_bytes())
        (target / name).chmod(path.stat().st_mode)


def files_in(folder):
    return {str(path.relative_to(folder)): path for path in sorted(folder.rglob("*"))
            if path.is_file() and "__pycache__" not in path.parts}


def export(revision, folder):
    """Makes a folder of what a revision holds."""
    if folder.exists():
        return
    partial = folder.with_name(folder.name + ".new")
    shutil.rmtree(partial, ignore_errors=True)
    partial.mkdir(parents=True)
    archive = subprocess.run(["git", "-C", ROOT, "archive", revision], check=True, capture_output=True).stdout
    run("tar", "-x", "-C", partial, input=archive)
    partial.rename(folder)


def for_clang(command):
    """The arguments of a compilation that say how a source is to be read."""
    words, kept = iter(shlex.split(command)[1:]), []
    for word in words:
        if word in ("-o", "-c", "-include"):
            next(words)
        elif word.startswith(("-D", "-I", "-std=")):
            kept.append(word)
        elif word == "-isystem":
            kept += [word, next(words)]
    return kept


class Drawing:
    """base/sources is what the revision holds, base/tree the copy with the mutants and its build. In base/trial there
    is one mutant at a time, to see whether it compiles."""

    def __init__(self, revision, seed, count, jobs):
        self.seed, self.count, self.jobs = seed, count, jobs
        entries = run("git", "-C", ROOT, "ls-tree", revision).splitlines()
        self.base = ROOT / "build/mutants" / digest(*(entry for entry in entries if not entry.endswith("\ttests")))
        self.sources, self.tree, self.trial = (self.base / name for name in ("sources", "tree", "trial"))
        self.build_folder, self.switch = self.tree / "build", self.base / "switch"
        self.base.mkdir(parents=True, exist_ok=True)
        self.lock = open(self.base / "lock", "w")
        try:
            fcntl.flock(self.lock, fcntl.LOCK_EX | fcntl.LOCK_NB)
        except BlockingIOError:
            sys.exit(f"mutants: another run works in {self.base}; wait for its end")
        export(revision, self.sources)
        self.texts = {name: path for name, path in files_in(self.sources).items() if not name.startswith("tests/")}
        self.switch.write_bytes(bytes(SWITCH_SIZE))
        rules = digest((HERE / "operators.py").read_bytes())
        self.found = self.base / f"found-{rules}.json"
        self.dropped = self.base / f"dropped-{rules}-{seed}.json"

    def draw(self, tests):
        """Draws, and builds the copy with the tests of a folder. Returns the mutants by number, the place in the draw; so
        the first ones of a longer draw are the same."""
        copy(tests, self.tree / "tests")
        if not self.found.exists():
            self.write_sources(self.tree, {})
            self.found.write_text(json.dumps(self.find()))
        found = json.loads(self.found.read_text())
        random.Random(self.seed).shuffle(found)
        while True:
            dropped = json.loads(self.dropped.read_text()) if self.dropped.exists() else []
            numbers = [number for number in range(1, len(found) + 1) if number not in dropped][:self.count]
            chosen = {number: found[number - 1] for number in numbers}
            failing = self.failing(chosen)
            if not failing:
                return {number: self.placed(mutant) for number, mutant in chosen.items()}
            print(f"mutants: {len(failing)} do not compile; others take their places", file=sys.stderr)
            self.dropped.write_text(json.dumps(sorted({*dropped, *failing})))

    def placed(self, mutant):
        """With its place, as compilers write it, and with the source line in which it is marked."""
        text = self.texts[mutant["file"]].read_bytes().decode("latin-1")
        begin, end = mutant["edits"][0][0], max(edit[1] for edit in mutant["edits"] if edit[2] != "replace")
        start = text.rfind("\n", 0, begin) + 1
        place = f"{mutant['file']}:{text.count(chr(10), 0, begin) + 1}:{begin - start + 1}"
        marked = f"{text[start:begin]}\u00ab{text[begin:end]}\u00bb{text[end:].partition(chr(10))[0]}"
        return mutant | {"place": place, "marked": " ".join(marked.split())}

    def find(self):
        """All mutants of the sources, in an order that depends on nothing else."""
        units = {}
        for entry in self.configure():
            name = os.path.relpath(entry["file"], self.tree)
            if name in self.texts:
                units[str(self.sources / name)] = for_clang(entry["command"].replace(str(self.tree), str(self.sources)))
        found = {}
        with concurrent.futures.ProcessPoolExecutor(self.jobs) as pool:
            for done, mutants in enumerate(pool.map(mutants_in, units, units.values(), [str(self.sources)] * len(units)), 1):
                print(f"mutants: read {done} of {len(units)} files", end="\r", file=sys.stderr)
                found |= {(mutant["file"], str(mutant["edits"])): mutant for mutant in mutants}
        return [found[key] for key in sorted(found)]

    def configure(self):
        run("cmake", "-S", self.tree, "-B", self.build_folder, "-G", "Ninja", "-DCMAKE_BUILD_TYPE=Release",
            "-DOSTMAKE_BENCH=OFF", "-DCMAKE_EXPORT_COMPILE_COMMANDS=ON", f"-DCMAKE_CXX_FLAGS_RELEASE={FLAGS}")
        return json.loads((self.build_folder / "compile_commands.json").read_text())

    def write_sources(self, folder, chosen):
        edits = collections.defaultdict(list)
        for number, mutant in chosen.items():
            edits[mutant["file"]].append((number, mutant["edits"]))
        for name, path in self.texts.items():
            text = path.read_bytes()
            write(folder / name, instrumented(text.decode("latin-1"), edits[name]).encode("latin-1") if name in edits else text)
            (folder / name).chmod(path.stat().st_mode)
        write(folder / "src/foundation/MutantSwitch.cpp",
              f'#define SWITCH "{self.switch}"\n'.encode() + (HERE / "switch.cpp").read_bytes())

    def failing(self, chosen):
        """Builds the copy; the numbers of the mutants that do not compile."""
        self.write_sources(self.tree, chosen)
        self.configure()
        ran = subprocess.run(["cmake", "--build", self.build_folder, "-j", str(self.jobs), "--", "-k", "0"],
                             capture_output=True, text=True, errors="replace")
        failing = set()
        for block in ran.stdout.split("\nFAILED: ")[1:]:
            command = block.split("\n")[1]
            if " -c " in command and self.compiles({}, command):
                failing |= {number for number, mutant in chosen.items() if mutant["file"] in block.split("\n[")[0]
                            and not self.compiles({number: mutant}, command)}
        if ran.returncode and not failing:
            sys.exit(f"mutants: the copy with the mutants does not build\n{ran.stdout[-5000:]}")
        return failing

    def compiles(self, chosen, command):
        """Whether a compilation succeeds with these mutants and no others."""
        self.write_sources(self.trial, chosen)
        for folder in ("src", "toolchain"):
            command = command.replace(str(self.tree / folder), str(self.trial / folder))
        command = command.replace(f"-I{self.tree} ", f"-I{self.trial} ") + " -fsyntax-only"
        return subprocess.run(command, shell=True, cwd=self.build_folder, capture_output=True).returncode == 0
