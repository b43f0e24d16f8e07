#!/usr/bin/env python3
"""doorsCheck.py ROOT: nothing but the doors meets the outside world. Each rule is a pattern and the files that may hold
it; a file that is named and no longer holds the pattern is a failure too."""
import pathlib
import re
import sys

root = pathlib.Path(sys.argv[1])

RULES = {
    "opens, stats, lists or changes files": (
        r"(?<![\w>])::(open|stat|lstat|fstat|unlink|rename|mkdir|opendir|creat|f?chmod|f?utime\w*|mkostemp|realpath|getcwd)\("
        r"|\bfopen\(|\bQFile\b|\bQFileInfo\b|\bQDir\b|\bQSaveFile\b|[io]fstream|std::filesystem",
        {"foundation/HostFiles.cpp"},
    ),
    "reads the environment": (r"\bgetenv\(|\bqgetenv\(|\bqEnvironmentVariable\b", {"foundation/HostFiles.cpp"}),
    "starts processes": (r"\bv?fork\(|\bexecv\w*\(|\bposix_spawn|\bsystem\(|\bpopen\(|\bQProcess\b", {"driver/Spawn.cpp"}),
    "waits for processes": (r"::wait(pid|id)?\(|\bSYS_pidfd_open\b", {"driver/Spawn.cpp", "driver/ProcessDescriptor.h"}),
    "sends, blocks or catches signals": (
        r"\b(sigaction|sigprocmask|signalfd|raise|kill)\(|(?<!\w)::signal\(|\bSYS_pidfd_send_signal\b",
        {
            "driver/Console.cpp",
            "driver/Interruption.cpp",
            "driver/ProcessDescriptor.h",
            "driver/Spawn.cpp",
            "driver/ToolStop.cpp",
        },
    ),
    "changes the current directory": (r"\bf?chdir\(", {"driver/Spawn.cpp"}),
    "writes to descriptors": (
        r"(?<![\w>])::(p?writev?|send|sendfile)\(",
        {"foundation/HostFiles.cpp", "driver/Console.cpp"},
    ),
    "prints": (
        r"std::c(out|err)\b|\bf?printf\(|\bputs\(|\bfputs\(|\bqInfo\(|\bqDebug\(",
        {"driver/Usage.cpp", "driver/Ostmake.cpp"},
    ),
    "ends the process": (r"\b(std::)?_?exit\(|\babort\(|std::terminate\(", {"driver/Interruption.cpp", "driver/Spawn.cpp"}),
}

failures = []
for what, (pattern, doors) in RULES.items():
    holders = set()
    for file in sorted((root / "src").rglob("*.[ch]*")):
        name = file.relative_to(root / "src").as_posix()
        code = re.sub(r"//.*", "", file.read_text())
        if found := re.search(pattern, code):
            holders.add(name)
            if name not in doors:
                failures.append(f"src/{name} {what}: {found[0]}")
    failures += [f"src/{name} no longer {what}: take it off the list" for name in sorted(doors - holders)]
print("\n".join(failures) or "only the doors")
sys.exit(1 if failures else 0)
