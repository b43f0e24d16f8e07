#!/usr/bin/env python3
"""optionsDocCheck.py ROOT: every row of the option table stands in the manual and in the man page."""
import pathlib
import re
import sys

root = pathlib.Path(sys.argv[1])
options = re.findall(r'add(?:Switch|Handler)\("(-\w+)"', (root / "src/driver/OstmakeArgParse.cpp").read_text())
manual = (root / "docs/manual/options.md").read_text()
page = (root / "docs/man/ostmake.1").read_text()
failures = [f"docs/manual/options.md does not tell of {option}" for option in options if not re.search(rf"`{option}\b", manual)]
failures += [f"docs/man/ostmake.1 does not tell of {option}" for option in options
             if not re.search(rf"\\{option}\b", page)]
print("\n".join(failures) or f"{len(options)} options are told of")
sys.exit(1 if failures or not options else 0)
