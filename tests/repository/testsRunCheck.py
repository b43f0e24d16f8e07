#!/usr/bin/env python3
"""testsRunCheck.py ROOT: every test file lies in the folder of a layer, under a name that the build picks up, and every
fuzz target has seeds."""
import pathlib
import re
import sys

root = pathlib.Path(sys.argv[1])
failures = []
layers = set(re.findall(r"ostmake_layer\((\w+)|ostmake_program\(\w+ src/(\w+)", (root / "CMakeLists.txt").read_text()))
layers = {name for pair in layers for name in pair if name} | {"toolchain"}
for file in sorted((root / "tests").rglob("*.cpp")):
    folder = file.relative_to(root / "tests").parts[0]
    if re.search(r"\bTEST(_F|_P)?\(", file.read_text()):
        if folder not in layers or not file.name.endswith("Test.cpp") or len(file.relative_to(root).parts) != 3:
            failures.append(f"{file.relative_to(root)} is in no test program")
for file in sorted((root / "fuzz").glob("*Fuzz.cpp")):
    if not any((root / "fuzz/corpus" / file.stem).glob("*")):
        failures.append(f"fuzz/{file.name} has no seeds")
print("\n".join(failures) or "all tests take part")
sys.exit(1 if failures else 0)
