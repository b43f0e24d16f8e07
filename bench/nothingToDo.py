#!/usr/bin/env python3
"""nothingToDo.py [-n SOURCES] [-r RUNS]: a build with nothing to do, `ostmake` against `ninja` and `make -rR`.

Generates one tree of C sources with 20 headers each, as a solution whose objects carry what they were made from, as a
build.ninja with the same in ninja's own log, and as a Makefile with dependency files. Everything is built once with a
tool that only creates its output. Then the three run in turn with nothing to do, and the median of each is printed
with the ratio to ninja, and ostmake's peak memory. Build the release preset first."""
import argparse
import os
import pathlib
import statistics
import subprocess
import sys
import tempfile
import time

root = pathlib.Path(__file__).resolve().parent.parent
HEADERS = 200
PER_SOURCE = 20

TOOL = """#!/bin/sh
# Creates the file behind -o, an object that names its source and headers, and with -M the map.
for word; do
    case $last in -o) output=$word ;; esac
    case $word in -M*) : > "${word#-M}" ;; *.c) source=$word ;; esac
    last=$word
done
if [ -n "$source" ]; then cp "templates/$source.vko" "$output"; else : > "$output"; fi
"""


def headers_of(number):
    return [f"include/header_{(number * 7 + i * 13) % HEADERS}.h" for i in range(PER_SOURCE)]


def literal(value):
    if value < 8:
        return bytes([value])
    digits = value.to_bytes((value.bit_length() + 7) // 8, "big")
    return bytes([8, len(digits)]) + digits


def object_file(dependencies):
    """The bytes of an object whose module says what it was made from."""
    key, value = b"dependencies", ";".join(dependencies).encode()
    strings = literal(0) + literal(len(key)) + b"\x23" + literal(len(key)) + literal(len(value)) + b"\x23"
    return literal(len(key) + len(value)) + b"\x26" + key + value + b"\x09\x09\x09\x4a\x4f" + strings + b"\x51\x66"


def write_tree(where, count):
    for folder in ("include", "src", "Debug", "templates/src", "n", "m", "home", "tools/bin"):
        (where / folder).mkdir(parents=True)
    for i in range(HEADERS):
        (where / f"include/header_{i}.h").write_text("")
    files, ninja, make = [], [], []
    for i in range(count):
        source, headers = f"src/f{i}.c", headers_of(i)
        (where / source).write_text("")
        (where / f"templates/{source}.vko").write_bytes(object_file([source] + headers))
        (where / f"m/f{i}.d").write_text(f"m/f{i}.o: {source} {' '.join(headers)}\n")
        (where / f"n/f{i}.d.in").write_text(f"n/f{i}.o: {source} {' '.join(headers)}\n")
        files.append(f'<file file_name="{source}"/>')
        ninja.append(f"build n/f{i}.o: cc {source}")
        make.append(f"m/f{i}.o: {source}\n\t@touch $@\n-include m/f{i}.d\n")
    (where / "app.vkp").write_text(
        '<!DOCTYPE OstrelTarn_Project_File>\n<solution Name="app" version="2">\n<configuration Name="Debug"/>\n'
        '<project Name="app"><configuration Name="Common" link_include_standard_libraries="No"/>\n'
        '<folder Name="Source Files">\n' + "\n".join(files) + "\n</folder>\n</project>\n</solution>\n")
    objects = " ".join(f"{{0}}/f{i}.o" for i in range(count))
    (where / "build.ninja").write_text(
        "rule cc\n  command = cp $out.d.in $out.d && touch $out\n  depfile = $out.d\n  deps = gcc\n"
        "rule link\n  command = touch $out\n" + "\n".join(ninja) +
        f"\nbuild n/app: link {objects.format('n')}\n")
    for i in range(count):
        (where / f"n/f{i}.d.in").rename(where / f"n/f{i}.o.d.in")
    (where / "Makefile").write_text(f"m/app: {objects.format('m')}\n\t@touch $@\n" + "".join(make))
    tool = where / "tools/bin/qcomp"
    tool.write_text(TOOL)
    tool.chmod(0o755)
    (where / "tools/bin/qlink").write_text(TOOL)
    (where / "tools/bin/qlink").chmod(0o755)


def peak_kilobytes(command, environment, where):
    with subprocess.Popen(command, cwd=where, env=environment, stdout=subprocess.DEVNULL) as process:
        return os.wait4(process.pid, 0)[2].ru_maxrss


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("-n", type=int, default=1000)
    parser.add_argument("-r", type=int, default=9)
    options = parser.parse_args()
    where = pathlib.Path(tempfile.mkdtemp())
    write_tree(where, options.n)
    environment = dict(os.environ, HOME=str(where / "home"))
    commands = {
        "ostmake": [str(root / "build/release/bin/ostmake"), "-tarndir", str(where / "tools"), "-config", "Debug",
                    "app.vkp"],
        "ninja": ["ninja"],
        "make -rR": ["make", "-rR", "-s"],
    }
    for command in commands.values():
        subprocess.run(command, cwd=where, env=environment, stdout=subprocess.DEVNULL, check=True)
    times = {name: [] for name in commands}
    for _ in range(options.r):
        for name, command in commands.items():
            began = time.perf_counter()
            ran = subprocess.run(command, cwd=where, env=environment, capture_output=True, text=True, check=True)
            times[name].append(time.perf_counter() - began)
            if name == "ostmake" and "Compiling" in ran.stdout:
                sys.exit("ostmake had something to do:\n" + ran.stdout[:500])
    medians = {name: statistics.median(values) * 1e3 for name, values in times.items()}
    for name, milliseconds in medians.items():
        print(f"{name:10} nothing to do {milliseconds:9.1f} ms  {milliseconds / medians['ninja']:6.2f} of ninja's")
    print(f"ostmake    peak memory {peak_kilobytes(commands['ostmake'], environment, where) / 1024:.0f} MB")


main()
