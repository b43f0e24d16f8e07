#!/usr/bin/env python3
"""makeSolution.py [-p PROJECTS] [-f FILES]: writes a solution to the standard output, settings at all levels.

FILES is the number of files in each project. The default, 1000 times 100, makes about 25 MB."""
import argparse
import sys


def settings(number, level):
    return (f'c_preprocessor_definitions="LEVEL_{level}={number};USE_LCD" '
            f'c_user_include_directories="$(ProjectDir)/include;../module_{number}" '
            'build_treat_warnings_as_errors="Yes" compile_pre_build_command=""')


def solution(projects, files, out):
    out.write('<!DOCTYPE OstrelTarn_Project_File>\n<solution Name="bench" version="2">\n')
    for name, inherited in (("Common", ""), ("Debug", "Flash;Traced;Checked;Small"), ("Release", "Flash;Small"),
                            ("Flash", ""), ("Traced", ""), ("Checked", ""), ("Small", "")):
        list_ = f' inherited_configurations="{inherited}"' if inherited else ""
        out.write(f'  <configuration Name="{name}"{list_} {settings(0, "SOLUTION")}/>\n')
    for p in range(projects):
        out.write(f'  <project Name="project_{p}">\n    <configuration Name="Common" project_type="Executable" '
                  f'project_directory="projects/project_{p}" {settings(p, "PROJECT")}')
        out.write(f' project_dependencies="project_{p - 1}"/>\n' if p % 10 else "/>\n")
        out.write(f'    <configuration Name="Debug" {settings(p, "DEBUG")}/>\n')
        out.write('    <folder Name="Source Files">\n      <configuration Name="Common" filter="c;s43"/>\n')
        for f in range(files):
            out.write(f'      <file file_name="source/part_{f % 7}/module_{p}_{f}.c">\n'
                      f'        <configuration Name="Common" {settings(f, "FILE")}/>\n      </file>\n')
        out.write("    </folder>\n  </project>\n")
    out.write("</solution>\n")


parser = argparse.ArgumentParser(description=__doc__.split("\n\n")[0])
parser.add_argument("-p", "--projects", type=int, default=1000)
parser.add_argument("-f", "--files", type=int, default=100)
arguments = parser.parse_args()
solution(arguments.projects, arguments.files, sys.stdout)
