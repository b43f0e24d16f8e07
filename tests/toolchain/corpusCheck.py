#!/usr/bin/env python3
"""corpusCheck.py BIN: a program out of many functions, linked by qlink from our object files and by lld from clang's, has
the same bytes at the same addresses; and our listing of it names the same instructions as llvm-objdump. The functions are
those of makeCorpus.py, of the runtime and of the samples.

Ends with status 77, which counts as skipped, where lld or llvm-objdump is not installed."""
import pathlib
import re
import shlex
import shutil
import subprocess
import sys
import tempfile

ROOT = pathlib.Path(__file__).resolve().parents[2]
SAMPLE_WORDS = ["-D__TARGET_PROCESSOR=MSP430F449", "-DSAMPLE_RATE=8"]
OPTIONS = [["-O-9", "-msd"], ["-O+9"], ["-O-9", "-Or-", "-g"]]

# Spellings: what llvm-objdump shows in words of its own, and the instruction that it is.
EMULATED = {"inc": "add #1,", "incd": "add #2,", "dec": "sub #1,", "decd": "sub #2,", "tst": "cmp #0,", "clr": "mov #0,",
            "inv": "xor #-1,", "adc": "addc #0,", "sbc": "subc #0,", "dadc": "dadd #0,"}
DOUBLED = {"rla": "add", "rlc": "addc"}
WORDS = {"pop": "mov @sp+,", "ret": "mov @sp+, pc", "nop": "mov #0, r3", "clrc": "bic #1, sr", "setc": "bis #1, sr",
         "clrz": "bic #2, sr", "setz": "bis #2, sr", "clrn": "bic #4, sr", "setn": "bis #4, sr", "dint": "bic #8, sr",
         "eint": "bis #8, sr", "br": "mov"}
JUMPS = {"jlo": "jnc", "jhs": "jc", "jeq": "jz", "jne": "jnz"}


def run(*words):
    ran = subprocess.run([str(word) for word in words], capture_output=True, text=True)
    if ran.returncode:
        sys.exit(f"{shlex.join(map(str, words))}\n{ran.stdout}{ran.stderr}")
    return ran.stdout


def compile_all(tools, directory, sources, options):
    """Both object files of each source: ours, and what clang makes with the words that qcomp gives it."""
    ours, theirs = [], []
    for source in sources:
        ours.append(directory / f"{source.stem}.vko")
        theirs.append(directory / f"{source.stem}.o")
        told = run(tools / "qcomp", "-V", "-w", *options, source, "-o", ours[-1])
        clang = shlex.split(told.splitlines()[0].split(": ", 1)[1])
        clang[clang.index("-o") + 1] = str(theirs[-1])
        run(*clang)
    return ours, theirs


def undefined(nm, objects):
    names = set()
    defined = set()
    for line in run(nm, *objects).splitlines():
        if match := re.match(r"\s+([Uw]) (\S+)", line):
            names.add(match[2])
        elif match := re.match(r"[0-9a-f]+ [A-Z] (\S+)", line):
            defined.add(match[1])
    return sorted(names - defined)


def vectors_of(objdump, objects):
    """The numbers of the interrupt vectors that the objects fill."""
    return sorted({int(number) for number in re.findall(r"__interrupt_vector_(\d+)", run(objdump, "-h", *objects))})


def link(tools, lld, directory, ours, theirs, missing, vectors):
    """Far too large for a real device, so that nothing is left out; the references wrap at 64 K on both sides alike."""
    values = {name: 0x200 + 2 * number for number, name in enumerate(missing)}
    map_file = directory / "ours.map"
    run(tools / "qlink", *ours, *(f"-D{name}={value}" for name, value in values.items()),
        "-TCODE=1100-c000", "-TCONST=c000-f000", "-TIDATA0=f000-f800", "-TUDATA0=f800-ff80", "-TINTVEC=ff80-ffff",
        "-GCODE=L", "-GCONST=L", "-GIDATA0=L", "-GINTVEC=L", f"-M{map_file}", "-o", directory / "ours.vkx")
    starts = {}
    for match in re.finditer(r"^  ([0-9A-F]{6})  [0-9A-F]{6} +\d+  (\S+)", map_file.read_text(), re.M):
        starts.setdefault(match[2], int(match[1], 16))
    # Without the empty .text of each file, whose alignment would leave gaps.
    script = "SECTIONS {\n"
    for name, pattern in (("CODE", ".text.*"), ("CONST", ".rodata .rodata.*"), ("IDATA0", ".data .data.*"),
                          ("UDATA0", ".bss .bss.* COMMON")):
        if name in starts:
            script += f"  {name} {starts[name]:#x} : {{ *({pattern}) }}\n"
    if "INTVEC" in starts:
        script += f"  INTVEC {starts['INTVEC']:#x} : {{\n"
        for number in vectors:
            script += f"    . = {starts['INTVEC'] + 2 * number:#x}; KEEP(*(__interrupt_vector_{number}))\n"
        script += "  }\n"
    (directory / "link.ld").write_text(script + "}\n")
    run(lld, "-O0", "-m", "msp430elf", "-T", directory / "link.ld", "--noinhibit-exec", "-e", "0x1100",
        *(f"--defsym={name}={value}" for name, value in values.items()), *theirs, "-o", directory / "theirs.elf")


def images(objcopy, program, vectors):
    """The bytes of each section, none if the program lacks it; of the vectors those that are filled."""
    found = {}
    for name in ("CODE", "CONST", "IDATA0", "INTVEC"):
        part = program.with_suffix(f".{name}")
        part.unlink(missing_ok=True)
        run(objcopy, "-O", "binary", "--only-section=" + name, program, part)
        found[name] = part.read_bytes() if part.exists() else b""
    found["INTVEC"] = b"".join(found["INTVEC"][2 * number:2 * number + 2] for number in vectors)
    return found


def compare_images(objcopy, directory, vectors):
    ours, theirs = (images(objcopy, directory / name, vectors) for name in ("ours.vkx", "theirs.elf"))
    for name, image in ours.items():
        if image != theirs[name]:
            place = next((at for at, pair in enumerate(zip(image, theirs[name])) if pair[0] != pair[1]), "the end")
            sys.exit(f"{name} of {len(image)} and {len(theirs[name])} bytes differs at {place}")
    return sum(map(len, ours.values()))


def number(text):
    return int(text) & 0xFFFF


def canonical(name, operands):
    """Name without width, width, operands with plain numbers: the same for both spellings."""
    name = name.lower()
    name, _, width = name.partition(".")
    width = "b" if width == "b" else "w"
    operands = operands.lower()
    if name in JUMPS:
        name = JUMPS[name]
    if name in DOUBLED:
        name, operands = DOUBLED[name], f"{operands}, {operands}"
    for table in (EMULATED, WORDS):
        if name in table:
            head, _, rest = table[name].partition(" ")
            name, operands = head, f"{rest} {operands}" + (", pc" if head == "mov" and table[name] == "mov" else "")
    for register, plain in (("pc", "r0"), ("sp", "r1"), ("sr", "r2")):
        operands = re.sub(rf"\b{register}\b", plain, operands)
    # Indirect and indexed by 0 are two spellings of one source in some disassemblers, but two encodings here.
    operands = re.sub(r"-?\b\d+\b(?![^,]*\br\d)|(?<=[#&])-?\d+", lambda m: str(number(m[0])), operands)
    operands = re.sub(r"(?<![r\d])-?\d+(?=\()", lambda m: str(number(m[0])), operands)
    return name, width, re.sub(r"\s+", "", operands)


def theirs_by_address(objdump, program):
    found = {}
    for line in run(objdump, "-d", "--section=CODE", program).splitlines():
        match = re.match(r"\s*([0-9a-f]+): ((?:[0-9a-f]{2} )+)\s*\t(\S+)\s*(.*)", line)
        if not match:
            continue
        address, operands = int(match[1], 16), match[4]
        if jump := re.fullmatch(r"\$([+-]\d+)", operands):
            operands = str(address + int(jump[1]))
        found[address] = (match[2].replace(" ", "").upper(), canonical(match[3], operands))
    return found


def ours_by_address(listing, symbols):
    """For each address all readings of the line: a name of static things in several files stands for one of them."""
    found = {}
    in_code = False
    for line in listing.splitlines():
        if line.startswith("Section "):
            in_code = line.startswith("Section CODE")
        match = re.match(r"  ([0-9A-F]{6})  ((?:[0-9A-F]{2})+) +(\S+) *(.*)", line)
        if not in_code or not match:
            continue
        readings = [match[4].split(" ; = ")[0].strip()]
        for name in re.findall(r"[A-Za-z_][\w.]*", readings[0]):
            if name in symbols:
                readings = [re.sub(rf"\b{re.escape(name)}(?![\w.])", str(value), text)
                            for text in readings for value in symbols[name]]
        found[int(match[1], 16)] = [(match[2], canonical(match[3], text)) for text in readings]
    return found


def compare_listings(tools, objdump, nm, directory):
    run(tools / "qlst", directory / "ours.vkx", "-o", directory / "ours.lst")
    symbols = {}
    for line in run(nm, directory / "ours.vkx").splitlines():
        symbols.setdefault(line.split()[2], set()).add(int(line.split()[0], 16))
    ours = ours_by_address((directory / "ours.lst").read_text(), symbols)
    theirs = theirs_by_address(objdump, directory / "ours.vkx")
    if list(ours) != list(theirs):
        sys.exit(f"instructions begin at other addresses: {sorted(set(ours) ^ set(theirs))[:5]}")
    differing = [f"{address:06X} {theirs[address]} is here {ours[address]}" for address in ours
                 if theirs[address] not in ours[address]]
    if differing:
        sys.exit(f"{len(differing)} of {len(ours)} instructions differ:\n" + "\n".join(differing[:20]))
    return len(ours)


def programs_of(directory):
    """What is linked together: a title, the sources, and the words that they need."""
    yield "corpus", sorted(directory.glob("*.c")), []
    runtime = ROOT / "support/source/runtime"
    include = [f"-J{ROOT / 'support/include'}"]
    words = ["-DMULTIPLIER=0", "-DLEVEL=2", "-DWIDTHS=1", "-DFLOATS=1", "-DCLASSES=1", "-std=c99", "-fno-builtin"]
    yield "runtime", sorted(runtime.glob("*.c")), include + words
    for sample in sorted((ROOT / "samples").iterdir()):
        sources = sorted(sample.rglob("*.c"))
        if sources:
            folders = sorted({source.parent for source in sample.rglob("*.h")})
            yield f"sample {sample.name}", sources, include + SAMPLE_WORDS + [f"-I{folder}" for folder in folders]


def main():
    tools = pathlib.Path(sys.argv[1])
    programs = [shutil.which(f"{name}-19") for name in ("ld.lld", "llvm-objdump", "llvm-objcopy", "llvm-nm")]
    if not all(programs) or not shutil.which("clang-19"):
        print("llvm-19 and lld-19 are not installed")
        sys.exit(77)
    lld, objdump, objcopy, nm = programs
    with tempfile.TemporaryDirectory() as name:
        directory = pathlib.Path(name)
        run(sys.executable, pathlib.Path(__file__).with_name("makeCorpus.py"), directory)
        for options in OPTIONS:
            for title, sources, words in programs_of(directory):
                ours, theirs = compile_all(tools, directory, sources, options + words)
                # As many files together as fit: without optimisation one.
                parts = len(ours) if "-Or-" in options else min(5, len(ours))
                for part in range(parts):
                    some, others = ours[part::parts], theirs[part::parts]
                    vectors = vectors_of(objdump, others)
                    link(tools, lld, directory, some, others, undefined(nm, others), vectors)
                    size = compare_images(objcopy, directory, vectors)
                    count = compare_listings(tools, objdump, nm, directory)
                    print(f"{title}, {' '.join(options)}: {size} bytes and {count} instructions agree")


main()
