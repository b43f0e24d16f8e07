#!/usr/bin/env python3
"""messagesCheck.py ROOT: what the programs can complain of stands in the manual.

Each literal of a statement that throws, fails or reports has to stand in a page of the manual, in backquotes or in an example;
of a message that is put together, each piece. What a message holds in capitals on the page is what the code puts in.
"""
import pathlib
import re
import sys

root = pathlib.Path(sys.argv[1])

# How messages leave the code: the beginning of a statement, up to its ";" or to the "{" of a body.
REPORTS = [
    r"throw \w+[({]",
    r"\bfail\w*\(",
    r"\berror\(",
    r"\berror\(\) <<",
    r"\bwarning\(",
    r"\bwarn\(",
    r"\bprintLine\(",
    r"\brefuse\(",
    r"\bcerr <<",
    r"\bbecause\(",
    r"\bsuccess\(",
    r"\bupToDate\(const",
    r"\berrorText =",
    r"\bsnprintf\(",
    r"\bspend\(",
    r"\bpopAs<\w+>\(",
    r"\breport\w*\(",
    r"\bmessage\(",
    r"\bcannotFind\(",
]
# What a page tells once for many messages.
PREFIX = re.compile(r"^(bad object file|XmlPP::processConditionals\(\)|bad ELF file|ostquery): ")


def literals(statement):
    """The texts of a statement, neighbours joined and cut where something is put in."""
    texts = []
    end = None
    for found in re.finditer(r'"((?:[^"\\]|\\.)*)"', statement):
        if end is not None and not statement[end : found.start()].strip(" \nuL8"):
            texts[-1] += found[1]
        else:
            texts.append(found[1])
        end = found.end()
    plain = [re.sub(r"\\(.)", lambda escape: " " if escape[1] == "n" else escape[1], text) for text in texts]
    return [part for text in plain for part in re.split(r"%\w", text)]


def statements(code):
    """(line, kind, text) of each statement that reports."""
    for kind, pattern in enumerate(REPORTS):
        for found in re.finditer(pattern, code):
            end = re.compile(r'(?:[^";{}]|"(?:[^"\\]|\\.)*"|\{(?:[^";{}]|"(?:[^"\\]|\\.)*")*\})*').match(code, found.start()).end()
            yield code.count("\n", 0, found.start()) + 1, kind, code[found.start() : end]


def told(pages):
    """All that stands in backquotes or in an example, blanks alike."""
    parts = []
    for page in pages:
        text = page.read_text()
        parts += re.findall(r"```.*?```|(?m:^    .*$)", text, re.S)
        parts += re.findall(r"`([^`\n]+)`", text)
    return re.sub(r"\s+", " ", "\n".join(parts).replace("\\|", "|"))


manual = told(sorted((root / "docs" / "manual").rglob("*.md")))
failures = []
kinds = set()
count = 0
# The usage text is no message.
for file in sorted([*(root / "src").rglob("*.cpp"), *(root / "src").rglob("*.h"), *(root / "toolchain").rglob("*.cpp")]):
    if file.name == "Usage.cpp":
        continue
    code = re.sub(r"//.*", "", file.read_text())
    for line, kind, statement in statements(code):
        for text in literals(statement):
            text = PREFIX.sub("", re.sub(r"\s+", " ", text)).strip(" :;,.\"'()")
            if not re.search(r"[A-Za-z]{3}", text):
                continue
            count += 1
            kinds.add(kind)
            if text not in manual:
                failures.append(f"{file.relative_to(root)}:{line}: the manual does not tell of: {text}")
failures += [f"no statement looks like {REPORTS[kind]}: take it off" for kind in range(len(REPORTS)) if kind not in kinds]
print("\n".join(dict.fromkeys(failures)) or f"{count} texts are told of")
sys.exit(1 if failures else 0)
