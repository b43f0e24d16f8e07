#!/usr/bin/env python3
"""linksCheck.py ROOT: what a page links to is there, files and headings alike, nothing names a page that is gone, and
every page of the manual is reached from its index."""
import pathlib
import re
import subprocess
import sys

root = pathlib.Path(sys.argv[1]).resolve()
sys.dont_write_bytecode = True
sys.path.insert(0, str(root / "docs" / "manual" / "make"))
import pages  # noqa: E402

failures = []
names = [root / "README.md", *sorted((root / "docs").rglob("*.md"))]
anchors = {page: {anchor for _, _, _, anchor in pages.headings(page.read_text())} for page in names}
count = 0
linked = {}
for page in names:
    for line, link in pages.links(page.read_text()):
        if re.match(r"https?:|mailto:", link):
            continue
        count += 1
        path, _, anchor = link.partition("#")
        target = (page.parent / path).resolve() if path else page
        linked.setdefault(page, set()).add(target)
        if not target.exists():
            failures.append(f"{page.relative_to(root)}:{line}: {link} is not there")
        elif anchor and anchor not in anchors.get(target, ()):
            failures.append(f"{page.relative_to(root)}:{line}: {link} is no heading there")

index = root / "docs" / "index.md"
failures += [f"{page.relative_to(root)}: docs/index.md does not link to it" for page in names
             if page.parent != root and page not in linked[index] | {index}]

listed = subprocess.run(["git", "-C", root, "ls-files", "-z"], capture_output=True, text=True)
sources = listed.stdout.split("\0") if listed.returncode == 0 else []
for name in sources:
    if re.search(r"\.(cpp|h|c|py|sh|txt|cmake|md|vkp|xml|inc|ld|s43)$", name) and (root / name).is_file():
        for named in re.findall(r"\bdocs/[\w/.-]*\.(?:md|1)\b", (root / name).read_text(errors="replace")):
            if not (root / named).exists():
                failures.append(f"{name}: {named} is not there")

print("\n".join(failures) or f"{count} links lead somewhere")
sys.exit(1 if failures or not count else 0)
