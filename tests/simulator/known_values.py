#!/usr/bin/env python3
"""known_values.py BIN ROOT WORK [--all]: programs compute in the simulator what they compute on this machine.

WORK becomes an installed tree: the programs of BIN, the headers of ROOT/toolchain, and what ROOT/support holds. The
libraries that the links ask for are built in it, then known/known.vkp, one program for each multiplier that the simulator
has and each size of a double; two of the four unless --all is given. What they print on the simulated console has to be,
line by line, what the same source prints when this machine's compiler and C library have their turn with it.
"""
import pathlib
import shutil
import subprocess
import sys

from runtime import MISSING, build_libraries, copy_newer, prepare, run

CONFIGURATIONS = {"soft_double": "double", "hw16_single": "float"}
MORE = {"soft_single": "float", "hw16_double": "double"}
FORMAT = {"float": "float_long_long", "double": "double_long_long"}


def expected(source, real, work):
    program = work / f"known_{real}"
    wide = ["-DWIDE_REAL"] if real == "double" else []
    run("clang-19", "-w", "-std=gnu99", "-fno-builtin", f"-DREAL={real}", *wide, source, "-lm", "-o", program)
    return run(program).splitlines()


def simulated(executable):
    commands = ["simio add console console", "simio add hwmult multiplier", f"prog {executable}", "setbreak exit", "run"]
    text = run("mspdebug", "-n", "-q", "sim", *commands, timeout=100)
    lines = text.splitlines()
    if "end" not in lines or not any(line.startswith("Running") for line in lines):
        sys.exit(f"{executable} did not come to its end:\n{text[-2000:]}")
    first = next(i for i, line in enumerate(lines) if line.startswith("Running"))
    return lines[first + 1 : lines.index("end") + 1]


def main():
    binaries, root, work = (pathlib.Path(word).resolve() for word in sys.argv[1:4])
    if not shutil.which("mspdebug") or not shutil.which("clang-19"):
        print("mspdebug or clang-19 is not installed")
        sys.exit(MISSING)
    prepare(binaries, root, work)
    here = pathlib.Path(__file__).parent / "known"
    copy_newer(here, work / "known")
    for header in sorted((work / "include" / "devices").glob("MSP430*.h")):
        run(work / "bin" / "qcomp", "-we", "-ansi", "-O-9", f"-D__TARGET_PROCESSOR={header.stem}", f"-J{work / 'include'}",
            work / "known" / "device.c", "-o", work / f"{header.stem}.vko")
    ostmake = work / "bin" / "ostmake"
    configurations = {**CONFIGURATIONS, **(MORE if "--all" in sys.argv else {})}
    wrong = 0
    for configuration, real in configurations.items():
        libraries = ["libc", "libm", "libdebugio", "libc_targetio_impl", "libc_user_libc",
                     f"lib_vfprintf_{FORMAT[real]}", f"lib_vfscanf_{FORMAT[real]}_cc"]
        build_libraries(work, configuration, libraries)
        # No link looks at the time of a library of the runtime.
        run(ostmake, "-config", configuration, "-rebuild", "known.vkp", cwd=work / "known")
        wanted = expected(here / "known.c", real, work)
        got = simulated(work / "known" / configuration / "known.vkx")
        for number in range(max(len(wanted), len(got))):
            pair = [lines[number] if number < len(lines) else "(nothing)" for lines in (wanted, got)]
            if pair[0] != pair[1]:
                wrong += 1
                print(f"{configuration}, line {number + 1}: expected {pair[0]!r}, got {pair[1]!r}")
        print(f"{configuration}: {len(got)} lines")
    sys.exit(1 if wrong else 0)


main()
