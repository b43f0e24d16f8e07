#!/usr/bin/env python3
"""startup.py [RUNS]: `ostmake -help` against an empty Qt program and an empty C program, in turn, as whole processes.

Prints the median of each and the ratio to the empty Qt program. Build the release preset first."""
import os
import statistics
import subprocess
import sys
import tempfile
import time

root = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "build", "release")
runs = int(sys.argv[1]) if len(sys.argv) > 1 else 400
work = tempfile.mkdtemp()
empty_c = os.path.join(work, "empty")
subprocess.run(["cc", "-O2", "-x", "c", "-o", empty_c, "-"], input=b"int main(void) { return 0; }", check=True)
commands = {
    "ostmake -help": [os.path.join(root, "bin", "ostmake"), "-help"],
    "empty Qt program": [os.path.join(root, "bench", "EmptyQt")],
    "empty C program": [empty_c],
}
null = os.open(os.devnull, os.O_RDWR)
actions = [(os.POSIX_SPAWN_DUP2, null, 0), (os.POSIX_SPAWN_DUP2, null, 1), (os.POSIX_SPAWN_DUP2, null, 2)]
times = {name: [] for name in commands}
for run in range(runs + 10):
    for name, words in commands.items():
        start = time.perf_counter()
        child = os.posix_spawn(words[0], words, os.environ, file_actions=actions)
        os.waitpid(child, 0)
        if run >= 10:
            times[name].append(time.perf_counter() - start)
base = statistics.median(times["empty Qt program"])
for name, seconds in times.items():
    median = statistics.median(seconds)
    low, high = sorted(seconds)[runs // 10], sorted(seconds)[-runs // 10]
    print(f"{name:18} {median * 1000:6.2f} ms ({low * 1000:.2f} to {high * 1000:.2f})  {median / base:5.2f}")
