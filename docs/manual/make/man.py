#!/usr/bin/env python3
"""man.py DIRECTORY [--check]: writes the man pages there, out of the pages of the manual. With --check it compares them with
those that are there, and ends with 77 if cmark-gfm is not installed.

The roff is kept in docs/man, so that an installed tree has man pages without any tool.
"""
import pathlib
import re
import shutil
import subprocess
import sys
import xml.etree.ElementTree as xml

import pages

here = pathlib.Path(__file__).parent
manual = here.parent
MISSING = 77

# NAME: what the program does, and the sections: (heading, page, heading there); "" is what stands above the first one, and
# "synopsis" the first indented block of that. The sections below a section come with it.
TOOLS = "toolchain.md"
CALLS = ("EXIT STATUS", TOOLS, "How they are called")
PAGES = {
    "ostmake": ("build embedded C and assembly projects for MSP430 microcontrollers",
                [("SYNOPSIS", "options.md", "synopsis"), ("DESCRIPTION", "options.md", ""), ("OPTIONS", "options.md", "The options"),
                 ("INDIRECT FILES", "options.md", "Indirect files"), ("EXIT STATUS", "options.md", "Exit status"),
                 ("EXAMPLES", "options.md", "Examples"), ("FILES", "options.md", "Files")]),
    "ostquery": ("look into what ostmake works on",
                 [("SYNOPSIS", "ostquery.md", "synopsis"), ("DESCRIPTION", "ostquery.md", ""), ("OPTIONS", "ostquery.md", "Options"), *(
                     (name.upper(), "ostquery.md", name) for name in (
                         "tree", "settings", "catalogue", "configurations", "order", "macros", "why", "memory", "object", "package",
                         "symbols"))]),
    "qcomp": ("compile or assemble a source for MSP430 microcontrollers", [("SYNOPSIS", TOOLS, "qcomp and qasm"), CALLS]),
    "qasm": ("", "qcomp"),
    "qlink": ("link object files and libraries for MSP430 microcontrollers", [("SYNOPSIS", TOOLS, "qlink"), CALLS]),
    "qarc": ("put object files into a library", [("SYNOPSIS", TOOLS, "qarc"), CALLS]),
    "qcvt": ("convert an executable into a load file", [("SYNOPSIS", TOOLS, "qcvt"), CALLS]),
    "qlst": ("list an executable with its source", [("SYNOPSIS", TOOLS, "qlst"), CALLS]),
}


def section(page, name):
    """The Markdown below a heading, up to the next one of its level; or above the first heading but the title."""
    text = (manual / page).read_text()
    lines = text.split("\n")
    marks = list(pages.headings(text)) + [(len(lines) + 1, 1, "", "")]
    if name in ("", "synopsis"):
        head = lines[marks[0][0] : marks[1][0] - 1]
        code = [line for line in head if line.startswith("    ")]
        return "\n".join(code if name else [line for line in head if line not in code])
    for place, (line, level, heading, _) in enumerate(marks):
        if heading == name:
            end = next(mark[0] for mark in marks[place + 1 :] if mark[1] <= level)
            return "\n".join(lines[line : end - 1])
    sys.exit(f"man: {page} has no section {name}")


def escaped(text):
    return text.replace("\\", "\\e").replace("-", "\\-").replace("'", "\\(aq").replace("`", "\\(ga")


def tag(node):
    return node.tag.split("}")[1]


def inline(node):
    """The text of a node with the fonts of its parts."""
    parts = []
    for child in node:
        kind = tag(child)
        if kind in ("text", "code"):
            parts.append(f"\\fB{escaped(child.text or '')}\\fR" if kind == "code" else escaped(child.text or ""))
        elif kind == "softbreak":
            parts.append("\n")
        elif kind in ("linebreak", "html_inline"):
            parts.append("\n.br\n")
        else:
            font = {"emph": "I", "strong": "B"}.get(kind, "R")
            parts.append(f"\\f{font}{inline(child)}\\fR" if font != "R" else inline(child))
    return "".join(parts)


def guarded(text):
    """Lines that begin with a control character of roff, and are none of its requests, keep it."""
    return re.sub(r"(?m)^(?=\.(?!br$))", r"\\&", text)


def row(header, cells):
    """A row as a tagged paragraph: the first cell, then the last one, with those between in parentheses; a cell "x" stands for
    the head of its column."""
    marks = [head for head, cell in zip(header[1:], cells[1:]) if cell == "x"]
    rest = [cell for cell in cells[1:] if cell not in ("x", "")]
    between = marks + rest[:-1]
    told = (f"({', '.join(between)}) " if between else "") + "".join(rest[-1:])
    return f".TP\n{guarded(cells[0])}\n{guarded(told)}" if cells[0] else f".PP\n{guarded(told)}"


def block(node):
    kind = tag(node)
    if kind == "heading":
        return f".SS {inline(node)}"
    if kind == "paragraph":
        return f".PP\n{guarded(inline(node))}"
    if kind == "code_block":
        lines = escaped(node.text.rstrip("\n")).split("\n")
        name = (node.get("info") or "").partition(" ")[2]
        return "\n".join([".PP", *([f"\\fI{escaped(name)}\\fR:"] if name else []), ".RS 4", ".nf", *("\\&" + line if line[:1] in (".", "\\") else line for line in lines),
                          ".fi", ".RE"])
    if kind == "list":
        items = []
        for number, item in enumerate(node, 1):
            label = f"{number}." if node.get("type") == "ordered" else "\\(bu"
            blocks = [block(child) for child in item]
            blocks[0] = blocks[0].removeprefix(".PP\n")
            items.append("\n".join([f".IP {label} 3", *blocks]))
        return "\n".join(items)
    if kind == "table":
        header, *rows = [[inline(cell) for cell in line] for line in node]
        return "\n".join(row(header, cells) for cells in rows)
    return ""


def roff(markdown):
    made = subprocess.run(["cmark-gfm", "-e", "table", "-t", "xml"], input=markdown, text=True, capture_output=True,
                          check=True).stdout
    return "\n".join(filter(None, map(block, xml.fromstring(re.sub(r"<!DOCTYPE[^>]*>", "", made)))))


def page_text(name, version):
    what, sections = PAGES[name]
    if isinstance(sections, str):
        return f".so man1/{sections}.1\n"
    names = [name, *(other for other, (_, same) in PAGES.items() if same == name)]
    lines = [f'.TH {name.upper()} 1 "" "ostmake {version}" "User Commands"', ".SH NAME", f"{', '.join(names)} \\- {what}"]
    for heading, page, part in sections:
        body = roff(section(page, part))
        if heading == "SYNOPSIS" and part != "synopsis":
            synopsis, _, body = body.partition(".RE\n")
            lines += [".SH SYNOPSIS", synopsis + ".RE", ".SH DESCRIPTION", body]
        else:
            lines += [f".SH {heading}", body]
    others = ", ".join(f"\\fB{other}\\fR(1)" for other in PAGES if other not in names)
    return "\n".join([*lines, ".SH SEE ALSO", others + "."]) + "\n"


def main():
    check = "--check" in sys.argv
    if not shutil.which("cmark-gfm"):
        print("cmark-gfm is not installed; scripts/setup.sh does that")
        sys.exit(MISSING if check else 1)
    directory = pathlib.Path(sys.argv[1])
    directory.mkdir(parents=True, exist_ok=True)
    version = re.search(r"project\(ostmake VERSION ([\d.]+)", (here.parents[2] / "CMakeLists.txt").read_text())[1]
    wrong = []
    for name in PAGES:
        file = directory / f"{name}.1"
        text = page_text(name, version)
        if not check:
            file.write_text(text)
        elif not file.exists() or file.read_text() != text:
            wrong.append(f"{file} is not what man.py makes of the manual: write it anew")
    wrong += [f"{file} belongs to no program" for file in directory.glob("*.1") if check and file.stem not in PAGES]
    print("\n".join(wrong) or f"{len(PAGES)} man pages in {directory}")
    sys.exit(1 if wrong else 0)


if __name__ == "__main__":
    main()
