#!/usr/bin/env python3
"""namesDocCheck.py ROOT: what a user can write stands in the manual: each option of ostmake, also in the man page, each
command and option of ostquery, each word of the tools, each macro."""
import pathlib
import re
import sys

root = pathlib.Path(sys.argv[1])

# Where names come from, and in which page each stands in backquotes or as a heading: files, pattern, page.
NAMES = [
    ("src/driver/OstmakeArgParse.cpp", r'add(?:Switch|Handler)\("(-\w+)"', "docs/manual/options.md"),
    ("src/driver/OstmakeArgParse.cpp", r'add(?:Switch|Handler)\("(-\w+)"', "docs/man/ostmake.1"),
    ("src/query/Commands.cpp", r'^    \{"(\w+)", "', "docs/manual/ostquery.md"),
    ("src/query/*.cpp", r'\{"([a-z]+)",\s*"[a-z]+ [^"]*"', "docs/manual/ostquery.md"),
    ("toolchain/**/*.cpp", r'\{"(-[^"]+)", ToolWord::\w+', "docs/manual/toolchain.md"),
    ("src/project/NodeMacros.cpp", r'\{QLatin1String\("(\w+)"\)', "docs/manual/macros.md"),
    ("src/macros/SystemMacros.cpp", r'setSystemMacro\w*\("(\w+)"', "docs/manual/macros.md"),
]

failures = []
count = 0
for files, pattern, page in NAMES:
    text = (root / page).read_text().replace("\\-", "-").replace("\\fB", "`")
    names = {name for file in root.glob(files) for name in re.findall(pattern, file.read_text(), re.M)}
    count += len(names)
    failures += [f"{page} does not tell of {name}" for name in sorted(names)
                 if not re.search(rf"(`(?:--)?|^#+ ){re.escape(name)}(?![a-z])", text, re.M)]
    failures += [f"{files} has no names: {pattern}"] if not names else []
print("\n".join(failures) or f"{count} names are told of")
sys.exit(1 if failures else 0)
