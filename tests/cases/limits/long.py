"""long.py COUNT BYTES: builds a file with that many definitions of that length, "-D" and all, and says what came of it. The
lengths of the other words are not the same everywhere."""
import re
import subprocess
import sys

count, size = int(sys.argv[1]), int(sys.argv[2])
definitions = ";".join("A" * (size - 2) for _ in range(count))
with open("long.vkp", "w", encoding="latin-1") as solution:
    solution.write('<!DOCTYPE OstrelTarn_Project_File>\n<solution Name="long" version="2"><configuration Name="Debug"/>'
                   '<project Name="long"><configuration Name="Common" project_type="Object file" '
                   f'c_preprocessor_definitions="{definitions}"/><file file_name="a.c"/></project></solution>\n')
ran = subprocess.run(["ostmake", "-config", "Debug", "-tarndir", "tarn", "long.vkp"], capture_output=True, text=True)
print(re.sub(r"\d+ bytes,", "N bytes,", ran.stdout), end="")
print("status", ran.returncode)
words = open("words.txt", encoding="latin-1").read().split("\n") if ran.returncode == 0 else []
print("words that arrived:", sum(word.startswith("-DAAA") and len(word) == size for word in words))
