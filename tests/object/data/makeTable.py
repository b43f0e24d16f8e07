#!/usr/bin/env python3
"""makeTable.py: writes msp430.txt, a table of MSP430 instructions with the bytes that LLVM's assembler gives for them.
makeTable.py --check: assembles every source text and every printed text of the table again and compares the bytes.

Each row is: what LLVM assembles | flags | opcode word | source | destination | our printed text | LLVM's bytes

  - "here" in a source text is the address of the instruction, HERE in our records. Operands are numbers, "-" if absent.
  - The opcode and the operands are what a record is made of. With the flag "c" the constructor is asked to use the
    constant generator, so the opcode has the immediate form that LLVM's bytes no longer show; with "x" the processor
    has the extension, which allows PUSH the constants 4 and 8.
  - The printed text is that of the record. A rule of few lines below turns it into LLVM's notation again.

The opcode words come from the field tables below and not from LLVM, so that a row ties three things together.
Exit status: 0 when all is well, 1 for a difference, 77 when LLVM is not there."""
import itertools
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile

TABLE = pathlib.Path(__file__).with_name("msp430.txt")
HERE = 0x4400
SLOT = 16  # bytes from one instruction to the next in the assembled image: 14 for it, 2 for its length

TWO_OPERANDS = {
    "mov": 0x4000, "add": 0x5000, "addc": 0x6000, "subc": 0x7000, "sub": 0x8000, "cmp": 0x9000,
    "dadd": 0xA000, "bit": 0xB000, "bic": 0xC000, "bis": 0xD000, "xor": 0xE000, "and": 0xF000,
}
ONE_OPERAND = {
    "rrc": (0x1000, "RRC.W"), "rrc.b": (0x1040, "RRC.B"), "swpb": (0x1080, "SWPB"), "rra": (0x1100, "RRA.W"),
    "rra.b": (0x1140, "RRA.B"), "sxt": (0x1180, "SXT"), "push": (0x1200, "PUSH.W"), "push.b": (0x1240, "PUSH.B"),
    "call": (0x1280, "CALL"),
}
JUMPS = {
    "jne": (0x2000, "JNZ"), "jeq": (0x2400, "JZ"), "jlo": (0x2800, "JNC"), "jhs": (0x2C00, "JC"),
    "jn": (0x3000, "JN"), "jge": (0x3400, "JGE"), "jl": (0x3800, "JL"), "jmp": (0x3C00, "JMP"),
}
# Customary names for single words of the table above.
FIXED = {
    "ret": (0x4130, "RET"), "reti": (0x1300, "RETI"), "nop": (0x4303, "NOP"), "clrc": (0xC312, "CLRC"),
    "setc": (0xD312, "SETC"), "clrn": (0xC222, "CLRN"), "setn": (0xD222, "SETN"), "clrz": (0xC322, "CLRZ"),
    "setz": (0xD322, "SETZ"), "dint": (0xC232, "DINT"), "eint": (0xD232, "EINT"),
}
CONSTANTS = {0: 0, 1: 1, 2: 2, 4: 4, 8: 8, -1: -1}


def register(number):
    return ("PC", "SP", "SR", "R3")[number] if number < 4 else f"R{number}"


class Operand:
    """One operand: LLVM's text, the mode and register bits, the word's value or None, and our text."""

    def __init__(self, text, mode, number, value, printed):
        self.text, self.mode, self.number, self.value, self.printed = text, mode, number, value, printed


def direct(number):
    return Operand(f"r{number}", 0, number, None, register(number))


def indexed(number, value):
    return Operand(f"{value}(r{number})", 1, number, value, f"{value}({register(number)})")


def symbolic(distance):
    return Operand(f"here{distance:+d}", 1, 0, HERE + distance, f"{HERE + distance}(PC)")


def absolute(value):
    return Operand(f"&{value}", 1, 2, value, f"&{value}")


def indirect(number, increment):
    plus = "+" if increment else ""
    return Operand(f"@r{number}{plus}", 3 if increment else 2, number, None, f"@{register(number)}{plus}")


def immediate(value):
    return Operand(f"#{value}", 3, 0, value, f"#{value}")


def sources(turn):
    """Every addressing mode, with registers and values that change from turn to turn."""
    number = 4 + turn % 12
    return [direct(number), indexed(number, 2 + 0x111 * (turn % 7)), indexed(number, -2), symbolic(0x20 + 2 * turn),
            symbolic(-0x1000), absolute(0x200 + 3 * turn), indirect(number, False), indirect(number, True),
            immediate(0x1357 + turn)]


def destinations(turn):
    number = 4 + (5 * turn + 3) % 12
    return [direct(number), indexed(number, 0x7FFE - 3 * turn), symbolic(0x400 - 2 * turn), absolute(0xFF00 + turn)]


def row(text, opcode, source, destination, printed, flags="-"):
    value = lambda operand: "-" if operand is None or operand.value is None else str(operand.value)
    return [text, flags, f"{opcode:04x}", value(source), value(destination), printed]


def two_operand_row(name, byte, source, destination, flags="-", constant=None):
    opcode = TWO_OPERANDS[name] | source.number << 8 | destination.mode << 7 | byte << 6 | source.mode << 4
    opcode |= destination.number
    printed = f"{name.upper()}.{'B' if byte else 'W'}\\t{source.printed}, {destination.printed}"
    if opcode & 0xF0CF == 0x4000:
        printed = f"\\tBR\\t{source.printed}"
    if opcode & 0xFFB0 == 0x4130:
        printed = f"POP.{'B' if byte else 'W'}\\t{destination.printed}"
    text = source.text if constant is None else f"#{constant}"
    return row(f"{name}{'.b' if byte else ''} {text}, {destination.text}", opcode, source, destination, printed, flags)


def constant_rows(name, byte, destination):
    """The constant generator; in byte mode 0xFF is a -1 that LLVM leaves alone when it is written so."""
    for number, constant in enumerate([*CONSTANTS, *([0xFF] if byte else [])]):
        asked = -1 if constant == 0xFF else constant
        made = two_operand_row(name, byte, immediate(constant), destination, "c", asked)
        made[5] = made[5].replace(f"#{constant},", f"#{asked},")
        yield made


def rows():
    for turn, (name, byte) in enumerate(itertools.product(TWO_OPERANDS, (0, 1))):
        for source, destination in itertools.product(sources(turn), destinations(turn)):
            yield two_operand_row(name, byte, source, destination)
        for destination in destinations(turn)[:2]:
            yield from constant_rows(name, byte, destination)
    for source, destination in itertools.product((direct(0), direct(1), direct(2), indirect(1, True)), (5, 1, 2)):
        yield two_operand_row("mov", 0, source, direct(destination))
    for source in sources(3):
        yield two_operand_row("mov", 0, source, direct(0))
    for turn, (name, (opcode, printed)) in enumerate(ONE_OPERAND.items()):
        for source in sources(turn):
            if source.mode != 3 or source.number or name in ("push", "push.b", "call"):
                yield row(f"{name} {source.text}", opcode | source.mode << 4 | source.number, source, None,
                          f"{printed}\\t{source.printed}")
    for constant in CONSTANTS:
        flags = "cx" if constant in (4, 8) else "c"
        yield row(f"push #{constant}", 0x1230, immediate(constant), None, f"PUSH.W\\t#{constant}", flags)
    for name, (opcode, printed) in JUMPS.items():
        for distance in (2, 4, 0, -2, 0x100, -0x100, 0x400, -0x3FE):
            target = HERE + distance
            yield row(f"{name} here{distance:+d}", opcode, symbolic(distance), None,
                      f"{printed}\\t{target}\\t ; = {target:04X}")
    for name, (opcode, printed) in FIXED.items():
        yield row(name, opcode, None, None, printed)


def for_llvm(printed):
    """Our printed text in LLVM's notation."""
    text = printed.replace("\\t", " ").strip()
    text = re.sub(r"  ; = .*", "", text)
    text = re.sub(r"(\d+)\(PC\)", lambda found: f"here{int(found[1]) - HERE:+d}", text)
    text = re.sub(r"^(J\w+) (\d+)$", lambda found: f"{found[1]} here{int(found[2]) - HERE:+d}", text)
    text = re.sub(r"^BR (.*)", r"MOV \1, PC", text)
    text = re.sub(r"^POP(\..) (.*)", r"MOV\1 @SP+, \2", text)
    return text.replace(".W ", " ").lower()


def assemble(texts):
    """The bytes of each text, None where LLVM refuses one."""
    refused = set()
    while True:
        lines = []
        for number, text in enumerate(texts):
            text = "" if number in refused else re.sub(r"\bhere\b", f"L{number}", text)
            lines.append(f".org {SLOT * number}\nL{number}: {text}\nE{number}: .org {SLOT * number + 14}\n"
                         f".short E{number} - L{number}\n")
        with tempfile.TemporaryDirectory() as folder:
            source, image = pathlib.Path(folder) / "all.s", pathlib.Path(folder) / "all.o"
            source.write_text("".join(lines))
            ran = subprocess.run(["llvm-mc-14", "--arch=msp430", "--filetype=obj", "-o", image, source],
                                 capture_output=True, text=True)
            if ran.returncode == 0:
                raw = pathlib.Path(folder) / "all.bin"
                subprocess.run(["llvm-objcopy-14", "-O", "binary", "--only-section=.text", image, raw], check=True)
                return split(raw.read_bytes(), len(texts), refused)
        bad = {(int(line) - 2) // 4 for line in re.findall(r"all\.s:(\d+):\d+: error", ran.stderr)}
        if not bad - refused:
            sys.exit(ran.stderr)
        refused |= bad


def split(image, count, refused):
    found = []
    for number in range(count):
        slot = image[SLOT * number:SLOT * (number + 1)]
        length = int.from_bytes(slot[14:], "little")
        found.append(None if number in refused or not length else slot[:length].hex())
    return found


def write():
    made = list(rows())
    encoded = assemble([each[0] for each in made])
    lines = [" | ".join([*each, code]) for each, code in zip(made, encoded) if code]
    TABLE.write_text("# Made by makeTable.py, which says what the columns are.\n" + "\n".join(lines) + "\n")
    print(f"{len(lines)} rows; LLVM does not know:", *sorted({each[0] for each, code in zip(made, encoded) if not code}),
          sep="\n")


def check():
    table = [line.split(" | ") for line in TABLE.read_text().splitlines() if not line.startswith("#")]
    wrong = [f"{fields[0]}: {code}, not {fields[6]}" for fields, code in zip(table, assemble([f[0] for f in table]))
             if code != fields[6]]
    printed = [for_llvm(fields[5]) for fields in table]
    wrong += [f"{fields[5]} as {text}: {code}, not {fields[6]}"
              for fields, text, code in zip(table, printed, assemble(printed)) if code != fields[6]]
    print("\n".join(wrong) or f"{len(table)} instructions assemble to the same bytes")
    return 1 if wrong or not table else 0


if __name__ == "__main__":
    if not all(map(shutil.which, ("llvm-mc-14", "llvm-objcopy-14"))):
        print("skipped: llvm-mc-14 and llvm-objcopy-14 are not there")
        sys.exit(77)
    sys.exit(check() if sys.argv[1:] == ["--check"] else write())
