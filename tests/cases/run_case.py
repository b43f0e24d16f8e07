#!/usr/bin/env python3
"""Runs one whole-program case: run_case.py BIN CASE [--keep] [--accept]

A case is a folder with a `session.txt` and whatever files its commands need. The files are copied to a new directory,
which is also HOME's parent, and the commands run there. The session is read as bytes, so names of any bytes can stand
in it:

    # a remark
    < tarn/bin/qcomp ../recorders/compiler
                                        before the first command: a place in the case, and the file or folder that is
                                        copied there, counted from the case
    $ ostmake -config Debug app.vkp     a command: words, quoted as in a shell, run without one
    a line of the standard output
    2> a line of the standard error stream
    [1]                                 the exit status, if it is not 0
    ...                                 any lines, but not none

{DIR} stands for the directory and {HOME} for the user's, in commands and in what they print. The programs of BIN come
first in PATH. The scripts of recorders/, which cases share, stand where tools stand. With --accept the session is written
anew with what the commands print; read it before it is committed.
"""
import os
import shlex
import shutil
import subprocess
import sys
import tempfile


def blocks(session):
    """The commands of a session with what they are to print: (command, out, err, status)."""
    command = None
    for line in session.split("\n"):
        if line.startswith("# "):
            continue
        if line.startswith("$ "):
            if command is not None:
                yield command, out, err, status
            command, out, err, status = line[2:], [], [], 0
        elif command is None:
            continue
        elif line.startswith("2> ") or line == "2>":
            err.append(line[3:])
        elif line.startswith("[") and line.endswith("]") and line[1:-1].isdigit():
            status = int(line[1:-1])
        else:
            out.append(line)
    if command is not None:
        while out and not out[-1]:
            out.pop()
        yield command, out, err, status


def borrow(session, case, directory):
    """Copies what a session names before its first command."""
    for line in session.split("\n$ ", 1)[0].split("\n"):
        if line.startswith("< "):
            place, source = line[2:].split()
            source, place = os.path.join(case, source), os.path.join(directory, place)
            os.makedirs(os.path.dirname(place), exist_ok=True)
            (shutil.copytree if os.path.isdir(source) else shutil.copy)(source, place)


def without_blank_end(lines):
    while lines and not lines[-1]:
        lines = lines[:-1]
    return lines


def differs(expected, got):
    """Whether lines are other ones than expected, where a line "..." stands for any lines, but not for none."""
    expected, got = without_blank_end(expected), without_blank_end(got)
    if "..." not in expected:
        return expected != got
    first = expected.index("...")
    rest = expected[first + 1 :]
    return expected[:first] != got[:first] or all(differs(rest, got[next:]) for next in range(first + 1, len(got) + 1))


def main():
    bin_dir, case = sys.argv[1], sys.argv[2]
    work = tempfile.mkdtemp(prefix="ostmake-case.")
    directory = os.path.join(work, "dir")
    shutil.copytree(case, directory)
    environment = {
        "HOME": os.path.join(work, "home"),
        "PATH": os.path.abspath(bin_dir) + ":" + os.environ["PATH"],
        "LC_ALL": "C",
        "TZ": "UTC",
        "ASAN_OPTIONS": os.environ.get("ASAN_OPTIONS", ""),
    }
    os.mkdir(environment["HOME"])
    with open(os.path.join(case, "session.txt"), encoding="latin-1", newline="\n") as file:
        session = file.read()
    borrow(session, case, directory)
    failures = 0
    accepted = []
    for command, out, err, status in blocks(session):
        placed = command.replace("{DIR}", directory).replace("{HOME}", environment["HOME"])
        words = [os.fsencode(word.encode("latin-1")) for word in shlex.split(placed)]
        ran = subprocess.run(words, cwd=directory, env=environment, capture_output=True, timeout=60,
                             stdin=subprocess.DEVNULL)
        got_out, got_err = (text.decode("latin-1").replace(directory, "{DIR}").replace(environment["HOME"], "{HOME}")
                            .split("\n") for text in (ran.stdout, ran.stderr))
        accepted.append(without_blank_end(got_out) + ["2> " + line for line in without_blank_end(got_err)] + (
            [f"[{ran.returncode}]"] if ran.returncode else []))
        if differs(out, got_out) or differs(err, got_err) or ran.returncode != status:
            failures += 1
            print(f"$ {command}")
            print("expected:", *out, *("2> " + line for line in err), f"[{status}]", sep="\n  ")
            print("got:", *without_blank_end(got_out), *("2> " + line for line in without_blank_end(got_err)),
                  f"[{ran.returncode}]", sep="\n  ")
    if "--accept" in sys.argv:
        lines = []
        for line in session.split("\n"):
            if line.startswith(("$ ", "# ", "< ")):
                lines += [line] + (accepted.pop(0) if line[0] == "$" else [])
        with open(os.path.join(case, "session.txt"), "w", encoding="latin-1", newline="\n") as file:
            file.write("\n".join(lines) + "\n")
    if "--keep" in sys.argv:
        print("kept:", work)
    else:
        shutil.rmtree(work, ignore_errors=True)
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main())
