#!/usr/bin/env python3
"""Runs the examples of a page of the manual: run_page.py BIN ROOT TREE PAGE [--accept]

The blocks of the page that are marked are carried out from its top down, in a new directory that is also HOME:

    ```c main.c                         the file main.c, with the lines of the block; of other languages as well
    ```console                          commands behind "$ ", run by a shell, each with what it prints: both streams, as on
                                        a terminal. The line "..." stands for any lines, but not for none
    <!-- copy: PLACE SOURCE -->         SOURCE, counted from ROOT, is copied to PLACE
    <!-- built: CONFIGURATION LIBRARY... -->
                                        these libraries of the runtime are there

The page writes /home/me for the directory, and /opt/ostmake for the installed tree, which TREE becomes. `ostmake` and
`ostquery` are those of the tree. Commands of the simulator are left out where it is not installed; without the compiler
nothing runs, and the status is 77. With --accept the page is written anew with what the commands print.
"""
import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile
import time

from run_case import differs, without_blank_end

sys.path.append(str(pathlib.Path(__file__).parents[1] / "simulator"))
from runtime import MISSING, build_libraries, prepare  # noqa: E402


class Reader:
    """Someone who does what a page says."""

    def __init__(self, root, tree, work):
        self.root, self.tree = root, tree
        self.home = self.directory = work / "home"
        self.status = 0
        self.home.mkdir()
        path = work / "path"
        path.mkdir()
        for program in ("ostmake", "ostquery"):
            (path / program).write_text(f'#!/bin/sh\nexec {tree}/bin/{program} "$@"\n')
            (path / program).chmod(0o755)
        self.environment = {"HOME": str(self.home), "PATH": f"{path}:{os.environ['PATH']}", "LC_ALL": "C", "TZ": "UTC",
                            "ASAN_OPTIONS": os.environ.get("ASAN_OPTIONS", "")}

    def copy(self, place, source):
        (shutil.copytree if (self.root / source).is_dir() else shutil.copy)(self.root / source, self.directory / place)

    def write(self, name, lines):
        file = self.directory / name
        file.parent.mkdir(parents=True, exist_ok=True)
        if file.exists():  # who changes a file takes longer than a second, and builds compare whole ones
            time.sleep(1.1)
        file.write_text("".join(line + "\n" for line in lines))

    def lacks(self, command):
        """Whether the command is one of the simulator, and there is none."""
        return command.startswith("mspdebug ") and not shutil.which("mspdebug", path=self.environment["PATH"])

    def run(self, command):
        """The lines that a command prints."""
        placed = command.replace("/opt/ostmake", str(self.tree)).replace("/home/me", str(self.home))
        if placed.startswith("cd "):
            self.directory = (self.directory / placed[3:]).resolve()
            return []
        ran = subprocess.run(["sh", "-c", f"(exit {self.status}); {placed}"], cwd=self.directory, env=self.environment,
                             stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, timeout=120)
        self.status = ran.returncode
        text = ran.stdout.decode("latin-1").replace(str(self.tree), "/opt/ostmake").replace(str(self.home), "/home/me")
        return without_blank_end(text.split("\n"))


def examples(lines):
    """The marked blocks: (language, file or "", number of the first line, number of the line behind the last)."""
    opened = None
    for number, line in enumerate(lines):
        if line.startswith("```") and opened is not None:
            language, _, name = lines[opened][3:].partition(" ")
            yield language, name, opened + 1, number
            opened = None
        elif line.startswith("```"):
            opened = number
        elif opened is None and (found := re.fullmatch(r"<!-- (copy|built): (.*) -->", line)):
            yield found[1], found[2], number, number


def commands(block):
    """The commands of a console block with what they print; a "\\" at the end of a line joins the next."""
    found = []
    joined = False
    for line in block:
        if line.startswith("$ ") or joined:
            if joined:
                found[-1][0].append(line)
            else:
                found.append(([line[2:]], []))
            joined = line.endswith("\\")
        else:
            found[-1][1].append(line)
    return found


def main():
    binaries, root, tree, page = (pathlib.Path(word).resolve() for word in sys.argv[1:5])
    accept = "--accept" in sys.argv
    if not shutil.which("clang-19"):
        print("clang-19 is not installed")
        sys.exit(MISSING)
    prepare(binaries, root, tree)
    lines = page.read_text().split("\n")
    work = pathlib.Path(tempfile.mkdtemp(prefix="ostmake-page."))
    reader = Reader(root, tree, work)
    failures = ran = 0
    accepted = {}
    for kind, name, first, behind in examples(lines):
        if kind == "copy":
            reader.copy(*name.split())
        elif kind == "built":
            build_libraries(tree, name.split()[0], name.split()[1:])
        elif name:
            reader.write(name, lines[first:behind])
        elif kind == "console":
            block = []
            for command, expected in commands(lines[first:behind]):
                got = expected
                if reader.lacks(command[0]):
                    print(f"left out: {command[0]}")
                else:
                    got = reader.run("\n".join(command))
                    ran += 1
                if differs(expected, got):
                    failures += 1
                    print(f"{page.name}:{first}: $ {command[0]}", "expected:", *expected, "got:", *got, sep="\n  ")
                block += ["$ " + command[0], *command[1:], *(got if differs(expected, got) else expected)]
            accepted[first] = (behind, block)
    if accept:
        for first, (behind, block) in sorted(accepted.items(), reverse=True):
            lines[first:behind] = without_blank_end(block)
        page.write_text("\n".join(lines))
    shutil.rmtree(work, ignore_errors=True)
    print(f"{ran} commands, {failures} otherwise than the page says")
    sys.exit(1 if failures or not ran else 0)


if __name__ == "__main__":
    main()
