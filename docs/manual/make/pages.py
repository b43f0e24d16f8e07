"""What the makers and the checks of the manual share: pages of Markdown, their lines, headings and links."""
import re


def slug(heading):
    """The anchor that readers of Markdown on the web give a heading."""
    plain = re.sub(r"\[([^]]*)\]\([^)]*\)", r"\1", heading)
    return re.sub(r"[^\w\- ]", "", plain.strip().lower()).replace(" ", "-")


def plain_lines(text):
    """The lines of a page with their numbers, without fenced and indented code."""
    fence = False
    blank = True
    code = False
    for number, line in enumerate(text.split("\n"), 1):
        if line.startswith("```"):
            fence = not fence
        code = not fence and line.startswith("    ") and (blank or code)
        blank = not line.strip()
        if not fence and not code and not line.startswith("```"):
            yield number, line


def headings(text):
    """(line, level, heading, anchor) of each heading; a repeated one gets a number, as on the web."""
    seen = {}
    for number, line in plain_lines(text):
        if found := re.match(r"(#+) (.*)", line):
            anchor = slug(found[2])
            count = seen.get(anchor, 0)
            seen[anchor] = count + 1
            yield number, len(found[1]), found[2], f"{anchor}-{count}" if count else anchor


def links(text):
    """(line, target) of each link."""
    for number, line in plain_lines(text):
        for found in re.finditer(r"\]\(([^)\s]+)\)", re.sub(r"`[^`]*`", "`", line)):
            yield number, found[1]
