"""Writes mutants into a source text, all of them at once, each behind its switch.

An edit is (begin, end, schema, mutated text); what stands between begin and end stays, and takes the edits within it.
"""

SCHEMATA = {
    "choose": "(::mutants::on({number}) ? ({mutated}) : ({original}))",
    "invert": "(::mutants::on({number}) != static_cast<bool>({original}))",
    "remove": "if (::mutants::on({number})) {{}} else {original}",
    "void": "(::mutants::on({number}) ? void() : void({original}))",
    "replace": "{mutated}",
}


def instrumented(source, mutants):
    """`source` with `mutants`, pairs of a number and edits. Lines keep their numbers."""
    edits = {(begin, end, schema, mutated, 0 if schema == "replace" else number)
             for number, list_of_edits in mutants for begin, end, schema, mutated in list_of_edits}
    if not edits:
        return source
    ordered = sorted(edits, key=lambda edit: (edit[0], -edit[1], edit[4]))
    return "namespace mutants { bool on(int) noexcept; }\n#line 1\n" + with_edits(source, 0, len(source), ordered)


def with_edits(source, begin, end, edits):
    """source[begin:end] with `edits`, which are in the order of their beginnings, outer ones first."""
    result = []
    while edits:
        first, last, schema, mutated, number = edits[0]
        inner = [edit for edit in edits[1:] if edit[0] < last]
        original = with_edits(source, first, last, inner)
        result += [source[begin:first], SCHEMATA[schema].format(number=number, mutated=mutated, original=original)]
        begin, edits = last, edits[1 + len(inner):]
    return "".join(result) + source[begin:end]
