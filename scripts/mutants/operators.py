"""Finds the places in C++ sources where a small fault could stand, and what the fault would be.

libclang says what a piece of source is; the table OPERATORS says which faults it can take. A mutant is a dictionary:
file, operator, `original` and `mutated` for people, `edits` for schemata.py. Nothing here knows of tests, so the same
sources have the same mutants whatever tests them.
"""
import re

from clang.cindex import Index, TypeKind

COMPARISONS = {"<": "<=", "<=": "<", ">": ">=", ">=": ">", "==": "!=", "!=": "=="}
LOGIC = {"&&": "||", "||": "&&"}
INTEGER = re.compile(r"(0[xX][0-9a-fA-F']+|[0-9][0-9']*)[uUlLzZ]*")
# Calls that only make a program faster, and calls that take their arguments in any order.
ONLY_FASTER = {"reserve", "squeeze", "shrink_to_fit"}
SYMMETRIC = {"min", "max", "swap"}
# The compiler itself needs these values, so they can't depend on a switch.
COMPILE_TIME = {"ENUM_CONSTANT_DECL", "STATIC_ASSERT", "TEMPLATE_NON_TYPE_PARAMETER"}
DECLARATIONS = {"VAR_DECL", "FUNCTION_DECL", "CXX_METHOD", "CONSTRUCTOR", "CONVERSION_FUNCTION", "FUNCTION_TEMPLATE"}
CONDITIONAL = {"IF_STMT", "WHILE_STMT", "DO_STMT", "FOR_STMT"}
WITH_STATEMENTS = {*CONDITIONAL, "COMPOUND_STMT", "CASE_STMT", "DEFAULT_STMT", "CXX_FOR_RANGE_STMT"}


class Piece:
    """A node of the syntax tree, and its place in the file."""

    def __init__(self, cursor, source, parent=None):
        self.cursor, self.source, self.parent, self.kind = cursor, source, parent, cursor.kind.name
        self.begin, self.end = cursor.extent.start.offset, cursor.extent.end.offset
        self.text = source[self.begin:self.end]
        self.before = source[max(self.begin - 200, 0):self.begin].rstrip()
        self.next = source[self.end:self.end + 200].lstrip()[:1]
        self._children = None

    @property
    def children(self):
        if self._children is None:
            self._children = [Piece(child, self.source, self) for child in self.cursor.get_children()]
        return self._children

    def operation(self):
        """(left, operator, right) of a binary operator, built in or a function; the operator is "" if it is none."""
        parts = self.children
        if self.kind == "BINARY_OPERATOR" and len(parts) == 2:
            return parts[0], self.source[parts[0].end:parts[1].begin].strip(), parts[1]
        if self.kind == "CALL_EXPR" and len(parts) == 3 and parts[0].end <= parts[1].begin < parts[2].begin:
            return parts[0], parts[1].text, parts[2]
        return None, "", None

    def is_statement(self):
        """Whether it is a whole statement, and not a part of one."""
        above = self.parent
        while above and above.kind == "UNEXPOSED_EXPR" and above.text == self.text:
            above = above.parent
        if not above or above.kind not in WITH_STATEMENTS or self.next != ";":
            return False
        in_header = above.kind == "FOR_STMT" and above.children[-1].end != self.end
        return not in_header and bool(re.search(r"([{};:)]|\b(else|do))$", self.before))

    def condition(self):
        """The condition of a statement or of "?:"; None if there is none that could be negated at run time."""
        if self.kind == "CONDITIONAL_OPERATOR":
            return self.children[0]
        end = ";" if self.kind == "FOR_STMT" else ")"
        for child in self.children:
            if child.cursor.kind.is_expression() and child.before[-1:] in "(;" and child.next == end:
                return None if "constexpr" in self.source[self.begin:child.begin] else child
        return None


# What becomes of a piece: None, or edits, the original and the mutated text. An edit is (begin, end, schema, text).


def choose(piece, mutated):
    return [(piece.begin, piece.end, "choose", mutated)], piece.text, mutated


def invert(piece):
    return [(piece.begin, piece.end, "invert", "")], piece.text, f"!({piece.text})"


def remove(piece):
    return ([(piece.begin, piece.end, "remove", "")], piece.text + ";", ";") if piece.is_statement() else None


def replaced_comparison(piece):
    left, sign, right = piece.operation()
    return choose(piece, f"{left.text} {COMPARISONS[sign]} {right.text}") if sign in COMPARISONS else None


def replaced_logic(piece):
    left, sign, right = piece.operation()
    return choose(piece, f"({left.text}) {LOGIC[sign]} ({right.text})") if sign in LOGIC else None


def off_by_one(piece):
    """Up or down, as the place has it."""
    down = piece.begin % 2 and piece.text != "0"
    return choose(piece, f"{piece.text} {'-' if down else '+'} 1") if INTEGER.fullmatch(piece.text) else None


def negated_condition(piece):
    condition = piece.condition()
    return invert(condition) if condition else None


def inverted_result(piece):
    result = piece.children[0] if piece.children else None
    return invert(result) if result and result.cursor.type.get_canonical().kind == TypeKind.BOOL else None


def dropped_call(piece):
    if not piece.text.endswith(")") or piece.cursor.spelling in ONLY_FASTER or piece.cursor.spelling.startswith("operator"):
        return None
    if piece.parent.kind == "BINARY_OPERATOR" and piece.parent.operation()[:2] == (piece, ","):
        return [(piece.begin, piece.end, "void", "")], piece.text, "void()"
    return remove(piece)


def removed_statement(piece):
    does_more = {"RETURN_STMT": bool(piece.children), "BINARY_OPERATOR": piece.operation()[1] != "=",
                 "CALL_EXPR": not re.fullmatch(r"operator\W+", piece.cursor.spelling)}
    return None if does_more.get(piece.kind) else remove(piece)


def swapped_arguments(piece):
    """The first two neighbours among the arguments that the compiler takes in either order."""
    arguments = [Piece(argument, piece.source) for argument in piece.cursor.get_arguments() if argument]
    for first, second in zip(arguments, arguments[1:]):
        one, other = first.text, second.text
        kinds = {argument.cursor.type.get_canonical().spelling for argument in (first, second)}
        if (one and other and one != other and "{" not in (one[0], other[0]) and len(kinds) == 1
                and "dependent" not in kinds.pop() and piece.source[first.end:second.begin].strip() == ","
                and piece.cursor.spelling not in SYMMETRIC):
            edits = [(first.begin, first.end, "choose", other), (second.begin, second.end, "choose", one)]
            return edits, f"{one}, {other}", f"{other}, {one}"
    return None


OPERATORS = {
    "comparison replaced": (replaced_comparison, {"BINARY_OPERATOR", "CALL_EXPR"}),
    "and/or": (replaced_logic, {"BINARY_OPERATOR"}),
    "off by one": (off_by_one, {"INTEGER_LITERAL"}),
    "negated condition": (negated_condition, {*CONDITIONAL, "CONDITIONAL_OPERATOR"}),
    "inverted result": (inverted_result, {"RETURN_STMT"}),
    "dropped call": (dropped_call, {"CALL_EXPR"}),
    "removed statement": (removed_statement, {"CALL_EXPR", "BINARY_OPERATOR", "COMPOUND_ASSIGNMENT_OPERATOR",
                                              "UNARY_OPERATOR", "RETURN_STMT", "BREAK_STMT", "CONTINUE_STMT"}),
    "swapped arguments": (swapped_arguments, {"CALL_EXPR"}),
}


def thawed(piece):
    """The edits that make a compile-time constant or function one of the run time. Where the compiler needs it after all,
    the mutant does not compile and is dropped."""
    start = piece.source[piece.begin:piece.cursor.location.offset]
    word = re.search(r"\b(constexpr|consteval)\b", start)
    if piece.kind not in DECLARATIONS or not word:
        return []
    inline = "" if re.search(r"\binline\b", start) else "inline"
    if piece.kind == "VAR_DECL":
        is_member = piece.parent and piece.parent.kind in {"CLASS_DECL", "STRUCT_DECL", "CLASS_TEMPLATE"}
        inline = f"{inline} const" if is_member else "const"
    return [(piece.begin + word.start(), piece.begin + word.end(), "replace", inline)]


def mutants_of(piece, file, thaw=()):
    """The mutants of a piece and of all within it."""
    is_written = piece.kind != "COMPOUND_STMT" or piece.text.startswith("{")  # not so the body of what is `= default`
    start = piece.cursor.extent.start.file
    if piece.kind in COMPILE_TIME or not is_written or not start or start.name != file:
        return
    thaw = () if piece.kind == "LAMBDA_EXPR" else (*thaw, *thawed(piece))
    for name, (mutate, kinds) in OPERATORS.items():
        found = mutate(piece) if piece.kind in kinds else None
        if found and all("\n" not in text or not re.search('//|#|R"', text) for text in (piece.text, found[2])):
            edits, original, mutated = found
            yield {"operator": name, "original": " ".join(original.split()), "mutated": " ".join(mutated.split()),
                   "edits": [[*place, schema, text.replace("\n", " ")] for *place, schema, text in (*edits, *thaw)]}
    for child in piece.children[1:] if piece.kind == "CASE_STMT" else piece.children:
        yield from mutants_of(child, file, thaw)


def mutants_in(unit, arguments, root):
    """All mutants of a translation unit and of the headers below `root` that it includes; `file` counts from there."""
    parsed = Index.create().parse(unit, arguments)
    failures = [str(diagnostic) for diagnostic in parsed.diagnostics if diagnostic.severity >= 3]
    if failures:
        raise SystemExit(f"mutants: clang can't read {unit}: {failures[0]}")
    sources, found = {}, {}
    for cursor in parsed.cursor.get_children():
        file = cursor.extent.start.file
        if not file or not file.name.startswith(f"{root}/"):
            continue
        if file.name not in sources:
            with open(file.name, encoding="latin-1", newline="") as stream:
                sources[file.name] = stream.read()
        for mutant in mutants_of(Piece(cursor, sources[file.name]), file.name):
            mutant["file"] = file.name[len(root) + 1:]
            found.setdefault((mutant["file"], str(mutant["edits"])), mutant)
    compared = {(mutant["file"], *mutant["edits"][0][:2]) for mutant in found.values()
                if mutant["operator"] == "comparison replaced" and re.search("[!=]=", mutant["edits"][0][3])}
    return [mutant for mutant in found.values()  # "==" turned to "!=" is the negated condition already
            if mutant["edits"][0][2] != "invert" or (mutant["file"], *mutant["edits"][0][:2]) not in compared]
