#!/usr/bin/env python3
"""formatCheck.py ROOT: every C++ file is as clang-format leaves it; what cases are made of is data."""
import pathlib
import subprocess
import sys

root = pathlib.Path(sys.argv[1])
folders = ["src", "tests", "bench", "fuzz", "toolchain"]
files = [str(file) for folder in folders for file in sorted((root / folder).rglob("*.[ch]*")) if file.suffix in
         (".cpp", ".h") and root / "tests/cases" not in file.parents]
ran = subprocess.run(["clang-format-14", "--dry-run", "-Werror", *files], capture_output=True, text=True)
unclean = sorted({line.split(":")[0] for line in ran.stderr.splitlines() if "-Wclang-format-violations" in line})
print("\n".join(f"not as clang-format leaves it: {name}" for name in unclean) or ran.stderr or f"{len(files)} files")
sys.exit(ran.returncode)
