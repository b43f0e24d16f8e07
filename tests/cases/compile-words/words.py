"""words.py TABLE: builds a project with a file for each row of the table, and compares the words of each command with
those that the row names.

A row is FILE | SETTINGS | WORDS: the attributes of the file's configuration "Common", and the whole command, word by
word, quoted as in a shell. NAME = WORDS defines a short form, which {NAME} stands for; {IN} is the file and {OUT} is
"-o" with its object. Rows without words run no command."""
import os
import shlex
import subprocess
import sys

forms = {}
rows = []
for line in open(sys.argv[1], encoding="utf-8"):
    line = line.rstrip("\n")
    if not line or line.startswith("#"):
        continue
    if "|" not in line:
        name, words = line.split(" = ", 1)
        forms[name] = words.format(**forms, DIR=os.getcwd())
        continue
    file, settings, words = (column.strip() for column in line.split(" |"))
    stem = os.path.basename(file).split(".")[0]
    expected = words.format(**forms, DIR=os.getcwd(), IN=shlex.quote(file), OUT=shlex.quote("-o") + " " +
                            shlex.quote(f"Debug/{stem}.vko"))
    rows.append((file, settings, shlex.split(expected)))

files = "".join(f'<file file_name="{file}"><configuration Name="Common" {settings}/></file>\n'
                for file, settings, _ in rows)
with open("words.vkp", "w", encoding="latin-1") as solution:
    solution.write('<!DOCTYPE OstrelTarn_Project_File>\n<solution Name="words" version="2"><configuration Name="Debug"/>\n'
                   '<project Name="p"><configuration Name="Common" project_type="Object file"/>\n' + files +
                   "</project></solution>\n")
subprocess.run(["ostmake", "-config", "Debug", "-tarndir", os.getcwd() + "/tarn", "-packagesdir", os.getcwd() + "/packages",
                "words.vkp"], check=True, stdout=subprocess.DEVNULL)
ran = [command.split("\n") for command in open("words.txt", encoding="latin-1").read().split("\n\n")[:-1]]
directories = {command.pop(0) for command in ran}
if directories != {os.getcwd()}:
    print("ran in", directories)
expected = [(file, words) for file, _, words in rows if words]
for (file, words), got in zip(expected, ran):
    if words != got:
        print(f"{file}\n  expected {shlex.join(words)}\n  got      {shlex.join(got)}")
print(f"{len(rows)} rows, {len(expected)} commands" if len(expected) == len(ran) else f"{len(ran)} commands ran")
