#!/usr/bin/env python3
"""documentation.py [DIRECTORY...]: "docgen" beside doxygen 1.9 on the same headers, in one run.

The headers of the directories (if none is given, those of QtCore, of the Linux kernel's interface and of the C library)
are copied, each block comment made one for documentation, "/*!", which both programs take. The scanner and the pages run
in memory, and ostmake stages the copies as a whole: reading the project, scanning, and writing every page. doxygen makes
HTML, without graphs, search index or warnings.
"""
import json
import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile
import time

root = pathlib.Path(__file__).resolve().parent.parent
DEFAULTS = ["/usr/include/x86_64-linux-gnu/qt6/QtCore", "/usr/include/linux", "/usr/include/x86_64-linux-gnu/bits",
            "/usr/include/x86_64-linux-gnu/sys"]


def copied(directories, sources):
    names = []
    size = 0
    for directory in directories:
        for file in sorted(pathlib.Path(directory).rglob("*.h")):
            text = re.sub(rb"/\*+<?!?", b"/*!", file.read_bytes())
            name = f"{len(names):05}_{file.name}"
            (sources / name).write_bytes(text)
            names.append(name)
            size += len(text)
    return names, size


def timed(words, directory, environment):
    before = os.times()
    start = time.monotonic()
    subprocess.run(words, cwd=directory, env=environment, check=True, stdout=subprocess.DEVNULL)
    after = os.times()
    return (time.monotonic() - start,
            after.children_user + after.children_system - before.children_user - before.children_system)


def project(names, work):
    files = "".join(f'<file file_name="sources/{name}" />\n' for name in names)
    (work / "pages.vkp").write_text(
        '<!DOCTYPE OstrelTarn_Project_File>\n<solution Name="pages" version="2"><configuration Name="Web" />\n'
        '<project Name="pages"><configuration Name="Common" project_type="Staging" '
        'stage_command="docgen &quot;$(RelInputPath)&quot; ours" '
        f'stage_output_filepath="ours/$(InputName).htm" />\n{files}</project></solution>\n')
    return [str(root / "build/release/bin/ostmake"), "-config", "Web", "pages.vkp"]


def in_memory(sources):
    """Seconds of CPU that the scanner and the pages take, without a file."""
    output = subprocess.run([str(root / "build/release/bench/DocgenBench"), "--benchmark_filter=pages", "--benchmark_format=json"],
                            env=dict(os.environ, DOCGEN_HEADERS=str(sources)), check=True, capture_output=True).stdout
    return json.loads(output)["benchmarks"][0]["cpu_time"] / 1e3


def doxyfile(work):
    (work / "Doxyfile").write_text("""INPUT = sources
OUTPUT_DIRECTORY = theirs
GENERATE_LATEX = NO
HAVE_DOT = NO
CLASS_GRAPH = NO
SEARCHENGINE = NO
SOURCE_BROWSER = NO
VERBATIM_HEADERS = NO
QUIET = YES
WARNINGS = NO
WARN_LOGFILE = /dev/null
""")
    return ["doxygen", "Doxyfile"]


def pages(directory):
    return sum(1 for _ in directory.rglob("*.htm*"))


def main():
    if not shutil.which("doxygen"):
        sys.exit("documentation.py: doxygen is missing: apt-get install doxygen")
    # In memory if possible: thousands of new files measure the disk, and who else writes to it.
    memory = "/dev/shm" if os.access("/dev/shm", os.W_OK) else None
    work = pathlib.Path(tempfile.mkdtemp(prefix="ostmake-documentation.", dir=memory))
    try:
        (work / "sources").mkdir()
        names, size = copied(sys.argv[1:] or DEFAULTS, work / "sources")
        environment = dict(os.environ, HOME=str(work))
        megabytes = size / 1e6
        print(f"{len(names)} headers, {megabytes:.1f} MB")
        theirs = timed(doxyfile(work), work, environment)
        words = project(names, work)
        ours = timed(words, work, environment)
        scanned = in_memory(work / "sources")
        print(f"scanner and pages: {scanned:.3f} s of CPU, {megabytes / scanned:.0f} MB/s of CPU")
        for name, (wall, cpu), folder in (("ostmake", ours, "ours"), ("doxygen", theirs, "theirs")):
            print(f"{name}: {wall:.2f} s, {cpu:.2f} s of CPU, {megabytes / cpu:.1f} MB/s of CPU, "
                  f"{pages(work / folder)} pages")
        print(f"doxygen takes {theirs[1] / scanned:.0f} times the CPU of the scanner and the pages, "
              f"{theirs[0] / ours[0]:.0f} times the time of ostmake as a whole")
    finally:
        shutil.rmtree(work)


if __name__ == "__main__":
    main()
