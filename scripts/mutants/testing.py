"""Runs tests of an instrumented copy, each in a sandbox in which a mutant can do no harm."""
import json
import os
import pathlib
import queue
import re
import shutil
import struct
import subprocess
import time

from drawing import SWITCH_SIZE, run

# These test no behaviour of the programs: counts of instructions, rules of the repository.
EXCLUDED = re.compile(r"(bench|repository)\.")
# What one process may take, since a mutant may know no end; and signals as they are at first, whoever started this.
LIMITS = ("env", "--default-signal", "prlimit", f"--as={4 << 30}", f"--fsize={1 << 30}", "--core=0")
TIMES, SECONDS = 10, 5  # a test hangs that runs for that many times its usual time, and so much longer


class Test:
    def __init__(self, entry):
        self.name, self.command = entry["name"], entry.get("command")
        properties = {entry["name"]: entry["value"] for entry in entry["properties"]}
        self.directory = properties["WORKING_DIRECTORY"]
        self.skipped = properties.get("SKIP_RETURN_CODE")
        self.environment = dict(word.split("=", 1) for word in properties.get("ENVIRONMENT", []))


def tests_of(build_folder):
    entries = json.loads(run("ctest", "--test-dir", build_folder, "--show-only=json-v1"))["tests"]
    return [Test(entry) for entry in entries if not EXCLUDED.match(entry["name"])]


class Sandboxes:
    """As many as tests run at a time. All files are read-only in one, but for a /tmp and a simulator's folder of its own,
    and its own switch; what a test has started ends with it."""

    def __init__(self, drawing, jobs):
        self.drawing = drawing
        self.free = queue.SimpleQueue()
        for number in range(jobs):
            self.free.put(drawing.base / f"sandbox{number}")

    def run(self, test, mutant=0, limit=600):
        """Whether the test passed (None if it was skipped, False after `limit` seconds too), the seconds, the numbers of
        the mutants that it reached."""
        box = self.free.get()
        try:
            shutil.rmtree(box, ignore_errors=True)
            for name in ("tmp/home", "simulator"):
                (box / name).mkdir(parents=True)
            (box / "switch").write_bytes(struct.pack("i", mutant).ljust(SWITCH_SIZE, b"\0"))
            start = time.monotonic()
            status = self.status(box, test, limit)
            reached = (box / "switch").read_bytes()[4:]
            passed = None if status == test.skipped and status is not None else status == 0
            return passed, time.monotonic() - start, [number for number, byte in enumerate(reached) if byte]
        finally:
            self.free.put(box)

    def status(self, box, test, limit):
        tree = self.drawing.tree
        simulator = tree / "build/simulator"
        simulator.mkdir(exist_ok=True)
        sandbox = ["bwrap", "--die-with-parent", "--unshare-pid", "--unshare-net", "--ro-bind", "/", "/", "--dev", "/dev",
                   "--proc", "/proc", "--unsetenv", "OSTMAKE_MUTANT", "--bind", box / "tmp", "/tmp", "--ro-bind", tree, tree,
                   "--bind", box / "simulator", simulator, "--bind", box / "switch", self.drawing.switch,
                   "--chdir", test.directory, "--"]
        environment = os.environ | {"HOME": "/tmp/home", "TMPDIR": "/tmp", "PYTHONDONTWRITEBYTECODE": "1"} | test.environment
        with open(box / "output", "wb") as output:
            started = subprocess.Popen([*map(str, sandbox), *LIMITS, *test.command], env=environment, stdin=subprocess.DEVNULL,
                                       stdout=output, stderr=output)
            try:
                return started.wait(limit)
            except subprocess.TimeoutExpired:
                started.kill()
                started.wait()
                return None
