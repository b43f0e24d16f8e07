#!/usr/bin/env python3
"""web.py DIRECTORY: writes the manual there, a page of HTML for each page of docs/ and one stylesheet. With --check in the
place of a directory every link in it is followed, and the status is 77 if cmark-gfm is not installed.

cmark-gfm makes the text; headings get the anchors that they have on the web, links lead to the pages beside, and the
navigation is what docs/index.md lists. A link out of docs/ becomes plain text, since nothing lies there once it is installed.
"""
import html
import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile

import pages

here = pathlib.Path(__file__).parent
docs = here.parents[1]
MISSING = 77

TEMPLATE = """<!DOCTYPE html>
<html lang="en">
<head>
<meta charset="utf-8">
<meta name="viewport" content="width=device-width, initial-scale=1">
<title>{title}</title>
<link rel="stylesheet" href="{root}style.css">
</head>
<body>
<input type="checkbox" id="menu"><label for="menu">Contents</label>
<nav>
{navigation}
</nav>
<main>
{body}
</main>
</body>
</html>
"""


def output_name(page):
    """Where a page goes: those of docs/manual lie beside those of docs."""
    name = page.relative_to(docs).with_suffix(".html").as_posix()
    return name.removeprefix("manual/")


def leads_to(page, link):
    """The link to a page of the manual as HTML has it; null if it leads out of docs/."""
    path, _, anchor = link.partition("#")
    if re.match(r"\w+:", link) or not path:
        return link
    target = (page.parent / path).resolve()
    if target.suffix != ".md" or docs not in target.parents:
        return None
    to = os.path.relpath(output_name(target), os.path.dirname(output_name(page)) or ".")
    return to + (f"#{anchor}" if anchor else "")


def body_of(page):
    text = page.read_text()
    made = subprocess.run(["cmark-gfm", "-e", "table", "--unsafe", "--full-info-string"], input=text, text=True,
                          capture_output=True, check=True).stdout
    anchors = iter(pages.headings(text))

    def anchored(found):
        return f'<h{found[1]} id="{next(anchors)[3]}">{found[2]}</h{found[1]}>'

    def linked(found):
        to = leads_to(page, html.unescape(found[1]))
        return f'<a href="{html.escape(to)}">{found[2]}</a>' if to is not None else found[2]

    made = re.sub(r"<h(\d)>(.*?)</h\d>", anchored, made, flags=re.S)
    made = re.sub(r'<a href="([^"]*)">(.*?)</a>', linked, made, flags=re.S)
    made = re.sub(r'<pre><code class="[\w-]*" data-meta="([^"]*)">', r'<p class="file">\1</p><pre><code>', made)
    return made.replace("<table>", '<div class="table"><table>').replace("</table>", "</table></div>")


def navigation(page):
    """The list of docs/index.md, with the page itself marked."""
    root = os.path.relpath("index.html", os.path.dirname(output_name(page)) or ".")
    lines = [f'<p><a href="{root}">ostmake</a></p>', "<ul>"]
    heading = ""
    for line in (docs / "index.md").read_text().split("\n"):
        if line.startswith("## "):
            heading = f"</ul><h2>{html.escape(line[3:])}</h2><ul>"
        for title, link in re.findall(r"^- \[([^]]*)\]\(([^)#]*)\)", line):
            target = docs / link
            to = os.path.relpath(output_name(target), os.path.dirname(output_name(page)) or ".")
            mark = ' aria-current="page"' if target == page else ""
            lines.append(f'{heading}<li><a href="{to}"{mark}>{html.escape(title)}</a></li>')
            heading = ""
    return "\n".join([*lines, "</ul>"])


def dead_links(directory):
    """The links of the written pages that lead nowhere in the directory."""
    texts = {file: file.read_text() for file in directory.rglob("*.html")}
    ids = {file: set(re.findall(r'id="([^"]*)"', text)) for file, text in texts.items()}
    dead = []
    for file, text in texts.items():
        for link in re.findall(r'href="([^"]*)"', text):
            path, _, anchor = html.unescape(link).partition("#")
            target = (file.parent / path).resolve() if path else file
            if not re.match(r"\w+:", link) and (not target.exists() or anchor and anchor not in ids[target]):
                dead.append(f"{file.relative_to(directory)}: {link} leads nowhere")
    return dead


def write(directory):
    """Writes all pages, and returns how many."""
    written = sorted(docs.rglob("*.md"))
    for page in written:
        file = directory / output_name(page)
        file.parent.mkdir(parents=True, exist_ok=True)
        title = next(pages.headings(page.read_text()))[2].replace("`", "")
        root = "../" * output_name(page).count("/")
        file.write_text(TEMPLATE.format(title=html.escape(title), root=root, navigation=navigation(page), body=body_of(page)))
    shutil.copy(here / "style.css", directory)
    return len(written)


def main():
    check = "--check" in sys.argv
    if not shutil.which("cmark-gfm"):
        print("cmark-gfm is not installed; scripts/setup.sh does that")
        sys.exit(MISSING if check else 1)
    if not check:
        print(f"{write(pathlib.Path(sys.argv[1]))} pages in {sys.argv[1]}")
        return
    with tempfile.TemporaryDirectory() as made:
        directory = pathlib.Path(made).resolve()
        count = write(directory)
        dead = dead_links(directory)
    print("\n".join(dead) or f"{count} pages, and all their links lead somewhere")
    sys.exit(1 if dead else 0)


if __name__ == "__main__":
    main()
