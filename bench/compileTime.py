#!/usr/bin/env python3
"""compileTime.py BIN [FILE...]: what qcomp adds to the time that clang itself takes, for each file. Without files some of
growing size are made. Each figure is the least of many runs, taken in turn, and counts the processor time of the tool and
all that it starts."""
import pathlib
import resource
import shlex
import subprocess
import sys
import tempfile

RUNS = 15


def sources(directory):
    """A few lines, a usual file, a large one."""
    function = """
unsigned table{n}[8] = {{{n}, 2, 3, 5}};
int work{n}(int count, const char *text) {{
    int sum = 0;
    for (int i = 0; i < count; ++i) {{
        switch (text[i] & 7) {{
        case 0: sum += table{n}[i & 7]; break;
        case 1: sum ^= i << 2; break;
        case 2: sum -= text[i] * {n}; break;
        case 3: return sum;
        default: sum = sum * 3 + other(sum); break;
        }}
    }}
    return sum;
}}
"""
    for name, count in (("small.c", 2), ("usual.c", 40), ("large.c", 150)):
        path = pathlib.Path(directory, name)
        path.write_text("#include <stdint.h>\nint other(int);\n" + "".join(function.format(n=n) for n in range(count)))
        yield str(path)


def seconds(words):
    """Processor time of a command and all that it starts."""
    before = resource.getrusage(resource.RUSAGE_CHILDREN)
    subprocess.run(words, stdout=subprocess.DEVNULL, check=True)
    after = resource.getrusage(resource.RUSAGE_CHILDREN)
    return after.ru_utime + after.ru_stime - before.ru_utime - before.ru_stime


def main():
    qcomp = str(pathlib.Path(sys.argv[1], "qcomp"))
    with tempfile.TemporaryDirectory() as directory:
        out = str(pathlib.Path(directory, "out.vko"))
        print(f"{'file':>10} {'lines':>6} {'clang':>9} {'qcomp':>9} {'added':>7}")
        for source in sys.argv[2:] or list(sources(directory)):
            words = [qcomp, "-V", "-g", "-O-9", "-Orl", "-msd", source, "-o", out]
            told = subprocess.run(words, capture_output=True, text=True, check=True).stdout
            clang = shlex.split(told.splitlines()[0].split(": ", 1)[1])
            clang[clang.index("-o") + 1] = str(pathlib.Path(directory, "out.o"))
            clang += ["-MD", "-MF", str(pathlib.Path(directory, "out.d"))]
            del words[1]
            pairs = [(seconds(clang), seconds(words)) for _ in range(RUNS)]
            alone, whole = (min(pair[side] for pair in pairs) for side in (0, 1))
            lines = len(pathlib.Path(source).read_text().splitlines())
            print(f"{pathlib.Path(source).name:>10} {lines:>6} {alone * 1e3:>6.1f} ms {whole * 1e3:>6.1f} ms "
                  f"{(whole / alone - 1) * 100:>5.1f} %")


main()
