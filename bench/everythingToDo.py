#!/usr/bin/env python3
"""everythingToDo.py [-n SOURCES] [-r RUNS]: a build with everything to do, step by step, `ostmake` against `ninja -j1`.

Both compile the same C sources in the same order with the same words of the same tool, which does nothing but create the
file behind -o, and link in the end. Each run starts without outputs (and ninja without its log). The two take turns, and
the medians are printed: wall time of a step, CPU time of a step (of the two programs with all that they start), and their
ratio. The third row is the least that any of them could take: the tools alone, started one by one. Build the release
preset first."""
import argparse
import os
import pathlib
import resource
import shutil
import statistics
import subprocess
import tempfile
import time

root = pathlib.Path(__file__).resolve().parent.parent
bench = root / "build/release/bench"


def write_tree(where, count):
    for folder in ("src", "home", "tools/bin"):
        (where / folder).mkdir(parents=True)
    for tool in ("qcomp", "qlink"):
        shutil.copy(bench / "CreateOutput", where / f"tools/bin/{tool}")
    files = []
    for i in range(count):
        (where / f"src/f{i}.c").write_text("")
        files.append(f'<file file_name="src/f{i}.c"/>')
    (where / "app.vkp").write_text(
        '<!DOCTYPE OstrelTarn_Project_File>\n<solution Name="app" version="2">\n<configuration Name="Debug"/>\n'
        '<project Name="app"><configuration Name="Common" link_include_standard_libraries="No" '
        'linker_section_placement_file=""/>\n' + "\n".join(files) + "\n</project>\n</solution>\n")


def write_ninja(where, commands):
    """The commands that ostmake has shown, as a build.ninja."""
    lines = ["rule run\n  command = $words\n  description = $caption"]
    objects = []
    for words in commands:
        output = words[words.index("-o") + 1]
        inputs = " ".join(objects) if words[0].endswith("qlink") else next(word for word in words if word.endswith(".c"))
        objects.append(output)
        lines.append(f"build {output}: run {inputs}\n  words = {' '.join(words)}\n  caption = Compiling {output}")
    (where / "build.ninja").write_text("\n".join(lines) + "\n")


def run(command, where, environment):
    """Wall and CPU time of one build without outputs, in seconds."""
    shutil.rmtree(where / "Debug", ignore_errors=True)
    (where / "Debug").mkdir()
    for log in (".ninja_log", ".ninja_deps"):
        (where / log).unlink(missing_ok=True)
    before = resource.getrusage(resource.RUSAGE_CHILDREN)
    began = time.perf_counter()
    subprocess.run(command, cwd=where, env=environment, stdout=subprocess.DEVNULL, check=True)
    wall = time.perf_counter() - began
    after = resource.getrusage(resource.RUSAGE_CHILDREN)
    return wall, after.ru_utime + after.ru_stime - before.ru_utime - before.ru_stime


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("-n", type=int, default=1000)
    parser.add_argument("-r", type=int, default=9)
    options = parser.parse_args()
    where = pathlib.Path(tempfile.mkdtemp())
    write_tree(where, options.n)
    environment = dict(os.environ, HOME=str(where / "home"))
    ostmake = [str(root / "build/release/bin/ostmake"), "-tarndir", str(where / "tools"), "-config", "Debug", "app.vkp"]
    shown = subprocess.run(ostmake + ["-show"], cwd=where, env=environment, capture_output=True, text=True, check=True)
    commands = [line.split() for line in shown.stdout.split("\n") if line.strip().startswith(str(where))]
    assert len(commands) == options.n + 1, shown.stdout[:500]
    write_ninja(where, commands)
    (where / "alone").write_text("".join(word + "\0" for words in commands for word in words + [""]))
    peers = {"ostmake": ostmake, "ninja -j1": ["ninja", "-j1"], "tools alone": [str(bench / "CreateOutput"), "--each", "alone"]}
    times = {name: [] for name in peers}
    for _ in range(options.r):
        for name, command in peers.items():
            times[name].append(run(command, where, environment))
            made = len(list((where / "Debug").glob("*.vk[ox]")))
            assert made == options.n + 1, f"{name} made {made} files"
    for name, runs in times.items():
        wall, cpu = (statistics.median(values) / (options.n + 1) * 1e6 for values in zip(*runs))
        ninja_wall, ninja_cpu = (statistics.median(values) / (options.n + 1) * 1e6 for values in zip(*times["ninja -j1"]))
        print(f"{name:12} a step: {wall:7.0f} us wall, {wall / ninja_wall:5.2f} of ninja's; "
              f"{cpu:7.0f} us CPU, {cpu / ninja_cpu:5.2f} of ninja's")
    shutil.rmtree(where)


main()
