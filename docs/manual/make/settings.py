#!/usr/bin/env python3
"""settings.py BIN [--accept]: the tables of settings in settings.md are what the programs in BIN say.

What a setting is, and which words it adds to which command as far as its row in the sources says so, `ostquery catalogue`
answers. The rest stands in settings-words.txt: words that take code, what reads a setting without words, better examples.
All words are compared with those of `ostmake -show` with and without the setting. With --accept both files are written
anew; read them before they are committed.
"""
import collections
import itertools
import json
import os
import pathlib
import re
import shlex
import subprocess
import sys
import tempfile
from xml.sax.saxutils import quoteattr

here = pathlib.Path(__file__).parent
data = here / "settings-words.txt"
page = here.parent / "settings.md"
begin, end = "<!-- The tables are made by make/settings.py. -->", "<!-- Here the tables end. -->"

CAPTION = re.compile(r"    (Compiling|Assembling|Linking|Archiving|Copying|Combining|Running|Pre-|Post-)")
NOTHING = re.compile("(No build step|The build does not) reads? it|reaches? no command line|They reach no command line")
BASIC = '<configuration Name="Common" file_type="Basic"/>'
SOURCES = {"main.c": "", "start.s43": "", "more.bas": BASIC}
FILES = {
    "map.xml": '<!DOCTYPE Board_Memory_Definition_File><root name="d"><MemorySegment name="RAM" start="0x200" size="0x800"/>'
               "</root>",
    "placement.xml": '<!DOCTYPE Linker_Placement_File><Root><MemorySegment name="RAM"><ProgramSection name="UDATA0" '
                     'load="No"/></MemorySegment></Root>',
}


class Row:
    """What one value of a setting adds; or what reads the setting, if it has no words."""

    def __init__(self, setting, value, context, words, reader=None):
        self.setting, self.value, self.context, self.words, self.reader = setting, value, context, words, reader
        self.name = setting.split(" (")[0] if setting != "(Name)" else setting

    @classmethod
    def stated(cls, line):
        """A line of settings-words.txt."""
        setting, value, *rest = (column.strip() for column in line.split("|"))
        if value == "none":
            return cls(setting, value, {}, {}, rest[0])
        words = {}
        for part in filter(None, rest[-1].split("; ")):
            tools, those = part.split(": ", 1)
            words |= dict.fromkeys(tools.split(), those)
        return cls(setting, value, dict(re.findall(r'(\w+)="([^"]*)"', rest[0])), words)

    @classmethod
    def derived(cls, setting, entry, entries):
        """What the setting's own row in the sources says: a value for each of its words that are different."""
        rows = {}
        for words in entry["words"]:
            value, context = example(words, entry), {}
            if "setting" in words and words["when"] != entries[words["setting"]]["default"]:
                context = {words["setting"]: words["when"]}
            added = " ".join(words["text"] + part for part in parts_of(words, value))
            row = rows.setdefault((value, *context.items()), cls(setting, value, context, {}))
            row.words |= dict.fromkeys(words["tools"], added)
        return list(rows.values())

    def words_text(self):
        """TOOL TOOL: WORDS; TOOL: WORDS; those that have the same words together."""
        tools = collections.defaultdict(list)
        for tool, words in self.words.items():
            tools[words].append(tool)
        return "; ".join(f"{' '.join(each)}: {words}" for words, each in tools.items())

    def line(self):
        if self.reader is not None:
            return f"{self.setting} | none | {self.reader}"
        context = " ".join(f'{name}="{value}"' for name, value in self.context.items())
        return f"{self.setting} | {self.value} | {context} | {self.words_text()}".replace("|  |", "| |").rstrip()


def example(words, entry):
    """A value with which the words are there."""
    if words["form"] == "entries":
        return "first;second"
    if words["form"] == "other than default":
        return "OTHER"
    if "minimum" in entry:
        return str(entry["maximum"])
    if "when" in words and "setting" not in words:
        return words["when"]
    values = entry.get("values", ["Yes", "No"])
    return next(value for value in values if value != words.get("unless"))


def parts_of(words, value):
    """What stands behind the text of each word."""
    return value.split(";") if words["form"] == "entries" else [""] if words["form"] == "word" else [value]


class Build:
    """A project in a directory of its own, whose commands are shown and not carried out."""

    def __init__(self, binaries, directory):
        self.directory = pathlib.Path(directory).resolve()
        self.ostmake = binaries / "ostmake"
        for name, text in {**FILES, **dict.fromkeys(SOURCES, "")}.items():
            (self.directory / name).write_text(text)

    def commands(self, settings):
        """The words of each tool; of "command" whole command lines."""
        attributes = " ".join(f"{name}={quoteattr(value)}" for name, value in settings.items())
        compiled = settings.get("project_type", "Library") == "Library"
        files = [f'<file file_name="{name}">{inside}</file>' for name, inside in SOURCES.items()]
        (self.directory / "app.vkp").write_text(
            '<!DOCTYPE OstrelTarn_Project_File>\n<solution Name="app" version="2"><configuration Name="Debug"/>\n<project '
            f'Name="app"><configuration Name="Common" {attributes}/>{"".join(files if compiled else files[:1])}</project>'
            "</solution>\n")
        words = [self.ostmake, "-config", "Debug", "-show", "-tarndir", "/$", "-packagesdir", "packages", "app.vkp"]
        shown = subprocess.run(words, cwd=self.directory, capture_output=True, text=True, check=True,
                               env={**os.environ, "HOME": str(self.directory)}).stdout
        found = collections.defaultdict(list)
        for line in shown.replace("/$/", "$(TarnDir)/").replace(f"{self.directory}/", "/app/").split("\n")[1:]:
            tool, _, rest = line.strip().partition(" ")
            if tool.startswith("$(TarnDir)/bin/"):
                found[tool.split("/")[-1]] += rest.split(" ")
            elif tool and not CAPTION.match(line):
                found["command"].append(line.strip())
        return found

    def added(self, name, value, other, context):
        """What the value adds to the commands, as against another value; null leaves the setting unstated."""
        stated = self.commands({name: value, **context})
        before = self.commands({**({} if other is None else {name: other}), **context})
        result = {}
        for tool, words in stated.items():
            left = collections.Counter(before[tool])
            more = []
            for word in words:
                left[word] -= 1
                if left[word] < 0 and word not in more:
                    more.append(word)
            if more:
                result[tool] = " ".join(more) if tool != "command" else more[0]
        return result


def other_value(value, entry):
    if value != entry["default"]:
        return None
    return "No" if value == "Yes" else "Yes" if value == "No" else "other"


def words_differ(rows, entries, build, accepted):
    """Complains of words that are not what a build says; takes them over for rows that are `accepted`."""
    wrong = []
    for row in rows:
        entry = entries[row.setting]
        if row.reader is not None:
            if row.reader.startswith("nothing") and (got := build.added(row.name, "other", None, {})):
                wrong.append(f"{row.setting} is said to be read by nothing, and adds {got}")
            continue
        got = build.added(row.name, row.value, other_value(row.value, entry), row.context)
        if row in accepted:
            row.words = got
        if got != row.words or not got:
            wrong.append(f"{row.setting} = {row.value} adds {got}, not {row.words}")
    return wrong


def code(text):
    return f"`{text}`"


def words_cell(row):
    """As in: `Yes`: qcomp, qasm `-g`."""
    if row.reader is not None:
        return ""
    parts = []
    for part in row.words_text().split("; "):
        tools, words = part.split(": ", 1)
        libraries = [word for word in words.split(" ") if word.startswith("$(TarnDir)/lib/")]
        if len(libraries) > 1:
            words = f"{code(libraries[0])} and {len(libraries) - 1} more libraries"
        elif tools == "command":
            words = code(words)
        else:
            words = " ".join(code(word) for word in words.split(" "))
        parts.append(f"{', '.join(tools.split())} {words}".replace("command ", "the command "))
    context = " ".join(f'{name}="{value}"' for name, value in row.context.items())
    return f"{code(row.value)}{f' with {code(context)}' if context else ''}: {'; '.join(parts)}"


def type_cell(entry):
    kind = ", ".join(entry["values"]) if "values" in entry else entry["type"]
    if "minimum" in entry:
        kind = f"{entry['minimum']} to {entry['maximum']}"
    return kind + ("" if entry["default"] is None else f"; {code(entry['default'])}")


def tables(entries, rows):
    """A table for each group of the catalogue, behind its heading."""
    lines = [begin, ""]
    for (name, group), members in itertools.groupby(entries.items(), lambda item: (item[1]["page"], item[1]["group"])):
        heading = "Information: what the system tells" if name == "(Information)" else f"{name}: {group}"
        lines += [f"## {heading}", "", "| Setting | Type or values; default | Exists on | Meaning; words |", "|---|---|---|---|"]
        for key, entry in members:
            mine = [row for row in rows if row.setting == key]
            meaning = [entry["meaning"], *filter(None, map(words_cell, mine))]
            if mine[0].reader is not None and not (mine[0].reader == "nothing" and NOTHING.search(entry["meaning"])):
                meaning.append(f"Read by: {mine[0].reader}")
            lines.append(f"| {code(entry['name'])} | {type_cell(entry)} | {'; '.join(entry['nodes'])} | "
                         f"{'<br>'.join(meaning)} |")
        lines.append("")
    return "\n".join([*lines, end])


def main():
    binaries, accept = pathlib.Path(sys.argv[1]).resolve(), "--accept" in sys.argv
    answer = subprocess.run([binaries / "ostquery", "catalogue", "--json"], capture_output=True, check=True).stdout
    catalogue = json.loads(answer)
    names = collections.Counter(entry["name"] for entry in catalogue)
    entries = {entry["name"] if names[entry["name"]] == 1 else f"{entry['name']} ({entry['label']})": entry
               for entry in catalogue}
    text = data.read_text()
    stated = [Row.stated(line) for line in text.split("\n") if line and not line.startswith("#")]
    rows = list(stated)
    for key in entries.keys() - {row.setting for row in stated}:
        rows += Row.derived(key, entries[key], entries)
    wrong = [f"settings-words.txt does not tell of {key}" for key in entries if all(row.setting != key for row in rows)]
    wrong += [f"settings-words.txt tells of {row.setting}, which is no setting" for row in rows if row.setting not in entries]
    if not wrong:
        with tempfile.TemporaryDirectory() as directory:
            wrong = words_differ(rows, entries, Build(binaries, directory), stated if accept else [])
    if not wrong:
        made = iter(stated)
        accepted = "\n".join(next(made).line() if line and not line.startswith("#") else line for line in text.split("\n"))
        before, _, rest = page.read_text().partition(begin)
        whole = before + tables(entries, rows) + rest.partition(end)[2]
        if accept:
            data.write_text(accepted)
            page.write_text(whole)
        elif whole != page.read_text():
            wrong = ["the tables of settings.md are not those that settings.py makes: run it with --accept"]
    print("\n".join(wrong) or f"{len(entries)} settings, {sum(row.reader is None for row in rows)} with words")
    sys.exit(1 if wrong else 0)


if __name__ == "__main__":
    main()
