#!/usr/bin/env python3
"""layersCheck.py ROOT: an include goes sideways within a folder of src/ or down the layers of CMakeLists.txt, never up.

The calls that run against the order by the nature of the system stand in docs/architecture.md, one line each in the
form "- `from/File.cpp` includes `to/File.h`"; the list must be true and no longer than that."""
import pathlib
import re
import sys

root = pathlib.Path(sys.argv[1])


def layers():
    """The layers below each layer, as the build file names them, everything below included."""
    below = {}
    for line in (root / "CMakeLists.txt").read_text().splitlines():
        if match := re.match(r"ostmake_layer\((\w+) (.*)\)", line):
            name, rest = match[1], match[2]
        elif match := re.match(r"ostmake_program\(\w+ src/(\w+) (.*)\)", line):
            name, rest = match[1], match[2]
        else:
            continue
        direct = [word for word in rest.split() if word in below]
        below[name] = set(direct).union(*(below[word] for word in direct))
    return below


below = layers()
listed = set(re.findall(r"^- `([\w/.]+)` includes `([\w/.]+)`", (root / "docs/architecture.md").read_text(), re.M))
used = set()
failures = []
for file in sorted((root / "src").rglob("*.[ch]*")):
    name = file.relative_to(root / "src").as_posix()
    layer = name.split("/")[0]
    if layer not in below:
        failures.append(f"src/{layer} is no layer of CMakeLists.txt")
        continue
    for included in re.findall(r'^#include "([\w/.]+)"', file.read_text(), re.M):
        if not (root / "src" / included).exists():
            failures.append(f"src/{name} includes {included}, which is not counted from src/")
        elif included.split("/")[0] not in below[layer] | {layer}:
            used.add((name, included))
            if name.endswith(".h"):
                failures.append(f"src/{name} includes {included}: a header never includes upward")
            elif (name, included) not in listed:
                failures.append(f"src/{name} includes {included}, which is not below it")
failures += [f"docs/architecture.md lists an include that is gone: {a} includes {b}" for a, b in sorted(listed - used)]
print("\n".join(failures) or f"{len(below)} layers in order")
sys.exit(1 if failures or not below else 0)
