"""Holds operators.py, schemata.py and switch.cpp against sample.cpp: see ../mutants.sh."""
import os
import pathlib
import subprocess
import sys
import tempfile

from operators import OPERATORS, mutants_in
from schemata import instrumented

HERE = pathlib.Path(__file__).resolve().parent


def printed(program, number):
    environment = {"OSTMAKE_MUTANT": str(number)}
    ran = subprocess.run(["timeout", "5", program], env=environment, capture_output=True)
    return ran.stdout, ran.returncode


def main():
    mutants = mutants_in(str(HERE / "sample.cpp"), ["-std=c++20"], str(HERE))
    failures = [f"no mutant of the kind: {name}" for name in OPERATORS.keys() - {mutant["operator"] for mutant in mutants}]
    with tempfile.TemporaryDirectory() as folder:
        source, program = f"{folder}/sample.cpp", f"{folder}/sample"
        with open(source, "w") as file:
            file.write(instrumented((HERE / "sample.cpp").read_text(), [
                (number, mutant["edits"]) for number, mutant in enumerate(mutants, 1)]))
        subprocess.run(["c++", "-std=c++20", "-w", '-DSWITCH="/nowhere"', "-o", program, source, HERE / "switch.cpp"], check=True)
        plain = printed(program, 0)
        for number, mutant in enumerate(mutants, 1):
            if printed(program, number) == plain:
                failures.append(f"nothing changes: {mutant['original']} -> {mutant['mutated']}")
    print(plain[0].decode(), "\n".join(failures) or f"{len(mutants)} mutants change what the sample prints", sep="")
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main())
