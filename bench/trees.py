"""Trees of sources, and what each builder needs to build them: the same steps with the same tool, one at a time.

A tree is a list of `Step`: a step makes `output` of `inputs`, and the tool tells the headers that went into it. Each builder
keeps its outputs in a folder of its own, so that none disturbs another."""
import dataclasses
import os
import pathlib
import shutil

root = pathlib.Path(__file__).resolve().parent.parent
TOOL = root / "build/release/bench/CreateOutput"
HEADERS = 200
PER_SOURCE = 20
COMMON_HEADER = "include/header_0.h"


@dataclasses.dataclass
class Step:
    output: str  # without the folder of the builder
    inputs: list
    headers: list


@dataclasses.dataclass
class Tree:
    """`projects` programs of `sources` sources each, in `configurations`; each program depends on the one in front."""
    where: pathlib.Path
    sources: int
    projects: int = 1
    configurations: int = 1

    def configs(self):
        return [f"C{number}" for number in range(self.configurations)]

    def source(self, project, number):
        return f"p{project}/f{number}.c"

    def headers(self, number):
        others = [f"include/header_{(number * 7 + i * 13) % HEADERS}.h" for i in range(PER_SOURCE - 1)]
        return [COMMON_HEADER] + [name for name in others if name != COMMON_HEADER]

    def steps(self):
        """In an order in which they can be built, without the endings of the outputs."""
        for config in self.configs():
            for project in range(self.projects):
                objects = []
                for number in range(self.sources):
                    objects.append(f"{config}/p{project}/f{number}")
                    yield Step(objects[-1] + ".o", [self.source(project, number)], self.headers(number))
                before = [f"{config}/p{project - 1}/program"] if project else []
                yield Step(f"{config}/p{project}/program", [name + ".o" for name in objects] + before, [])

    def write(self):
        (self.where / "include").mkdir(parents=True)
        for number in range(HEADERS):
            (self.where / f"include/header_{number}.h").write_text("")
        for project in range(self.projects):
            (self.where / f"p{project}").mkdir()
            for number in range(self.sources):
                (self.where / self.source(project, number)).write_text("")


class Builder:
    """A builder of a tree: writes what it needs, and knows its commands."""
    name = ""
    folder = ""  # of its outputs
    logs = ()
    compares_times = True  # of inputs and outputs, and nothing that it keeps of them

    def __init__(self, tree):
        self.tree = tree
        self.where = tree.where
        self.environment = dict(os.environ, HOME=str(tree.where / "home"))

    def out(self, name):
        return name if name.endswith(".c") else f"{self.folder}/{name}"

    def headers_file(self, step):
        """What the tool is to tell of the headers, in the words of make."""
        made_in = self.where / f"{self.out(step.output)}.d.in"
        made_in.parent.mkdir(parents=True, exist_ok=True)
        made_in.write_text(f"{self.out(step.output)}: {' '.join(step.inputs + step.headers)}\n")

    def first_build(self):
        """A build that is not measured."""
        return self.build()

    def clean(self):
        """Takes all outputs away."""
        for path in (self.where / self.folder).rglob("*"):
            if path.suffix != ".in" and path.is_file():
                path.unlink()
        for log in self.logs:
            (self.where / log).unlink(missing_ok=True)


def literal(value):
    if value < 8:
        return bytes([value])
    digits = value.to_bytes((value.bit_length() + 7) // 8, "big")
    return bytes([8, len(digits)]) + digits


def object_file(dependencies):
    """The bytes of an object whose module says what it was made from."""
    key, value = b"dependencies", ";".join(dependencies).encode()
    strings = literal(0) + literal(len(key)) + b"\x23" + literal(len(key)) + literal(len(value)) + b"\x23"
    return literal(len(key) + len(value)) + b"\x26" + key + value + b"\x09\x09\x09\x4a\x4f" + strings + b"\x51\x66"


class Ostmake(Builder):
    name, folder = "ostmake", "ours"
    program = str(root / "build/release/bin/ostmake")

    def write(self):
        tree = self.tree
        (self.where / "home").mkdir(exist_ok=True)
        (self.where / "tarn/bin").mkdir(parents=True)
        for tool in ("qcomp", "qlink"):
            shutil.copy(TOOL, self.where / f"tarn/bin/{tool}")
        for step in tree.steps():
            if step.headers:
                made_in = self.where / (self.out(step.output)[:-2] + ".vko.in")
                made_in.parent.mkdir(parents=True, exist_ok=True)
                made_in.write_bytes(object_file(step.inputs + step.headers))
        lines = ['<!DOCTYPE OstrelTarn_Project_File>\n<solution Name="app" version="2">']
        lines += [f'<configuration Name="{config}"/>' for config in tree.configs()]
        batch = f'batch_build_configurations="{";".join(tree.configs())}" ' if tree.configurations > 1 else ""
        for project in range(tree.projects):
            before = f' project_dependencies="p{project - 1}"' if project else ""
            lines.append(
                f'<project Name="p{project}"><configuration Name="Common" {batch}link_include_standard_libraries="No" '
                f'linker_section_placement_file="" build_intermediate_directory="ours/$(Configuration)/p{project}" '
                f'build_output_directory="ours/$(Configuration)/p{project}"{before}/>')
            lines += [f'<file file_name="{tree.source(project, number)}"/>' for number in range(tree.sources)]
            lines.append("</project>")
        # Loading it is to load all of it.
        lines.append('<project Name="empty"><configuration Name="Common" project_type="Staging"/></project>\n</solution>\n')
        (self.where / "app.vkp").write_text("\n".join(lines))

    def command(self, *options):
        return [self.program, "-tarndir", str(self.where / "tarn"), "-config", "C0", *options, "app.vkp"]

    def build(self):
        last = ["-project", f"p{self.tree.projects - 1}"]
        return self.command(*last) if self.tree.configurations == 1 else self.command(*last, "-batch")

    def load(self):
        return self.command("-project", "empty")


class Ninja(Builder):
    name, folder, logs = "ninja -j1", "n", (".ninja_log", ".ninja_deps")

    def write(self):
        lines = [f"rule cc\n  command = {TOOL} $in -o $out -MF $out.d\n  depfile = $out.d\n  deps = gcc\n"
                 f"rule link\n  command = {TOOL} -o $out\nbuild empty: phony"]
        for step in self.tree.steps():
            rule = "cc" if step.headers else "link"
            if step.headers:
                self.headers_file(step)
            (self.where / self.out(step.output)).parent.mkdir(parents=True, exist_ok=True)
            lines.append(f"build {self.out(step.output)}: {rule} {' '.join(map(self.out, step.inputs))}")
        (self.where / "build.ninja").write_text("\n".join(lines) + "\n")

    def build(self):
        return ["ninja", "-j1"]

    def first_build(self):
        return ["ninja"]

    def load(self):
        return ["ninja", "-j1", "empty"]


class Make(Builder):
    name, folder = "make -rR", "m"

    def write(self):
        outputs = " ".join(self.out(step.output) for step in self.tree.steps() if not step.headers)
        lines = [f"all: {outputs}\nempty:\n.PHONY: all empty"]
        for step in self.tree.steps():
            output = self.out(step.output)
            if step.headers:
                self.headers_file(step)
                lines.append(f"{output}: {step.inputs[0]}\n\t@{TOOL} $< -o $@ -MF $@.d\n-include {output}.d")
            else:
                lines.append(f"{output}: {' '.join(map(self.out, step.inputs))}\n\t@{TOOL} -o $@")
        (self.where / "Makefile").write_text("\n".join(lines) + "\n")

    def build(self):
        return ["make", "-rR", "-s"]

    def load(self):
        return ["make", "-rR", "-s", "empty"]


class Scons(Builder):
    name, folder, logs, compares_times = "scons", "s", (".sconsign.dblite",), False

    def write(self):
        lines = ["import os", "Decider('make')", "env = Environment(tools=[], ENV=os.environ)", "Alias('empty', [])"]
        for step in self.tree.steps():
            output = self.out(step.output)
            lines.append(f"env.Command({output!r}, {list(map(self.out, step.inputs))!r}, '@{TOOL} -o $TARGET')")
            if step.headers:
                lines.append(f"env.Depends({output!r}, {step.headers!r})")
        (self.where / "SConstruct").write_text("\n".join(lines) + "\n")

    def build(self):
        return ["scons", "-Q", "--silent", self.folder]

    def load(self):
        return ["scons", "-Q", "--silent", "empty"]


class Qbs(Builder):
    """Has no list of headers that a tool tells, so that each source depends on all of them."""
    name, folder, compares_times = "qbs", "q", False

    def write(self):
        files = ", ".join(f'"{self.tree.source(0, number)}"' for number in range(self.tree.sources))
        (self.where / "app.qbs").write_text(f"""
Product {{
    type: ["program"]
    Group {{ files: [{files}]; fileTags: ["source"] }}
    Group {{ files: ["include/*.h"]; fileTags: ["header"] }}
    Rule {{
        inputs: ["source"]
        explicitlyDependsOn: ["header"]
        Artifact {{ filePath: input.completeBaseName + ".o"; fileTags: ["object"] }}
        prepare: {{
            var command = new Command("{TOOL}", ["-o", output.filePath]);
            command.silent = true;
            return command;
        }}
    }}
    Rule {{
        multiplex: true
        inputs: ["object"]
        Artifact {{ filePath: "program"; fileTags: ["program"] }}
        prepare: {{
            var command = new Command("{TOOL}", ["-o", output.filePath]);
            command.silent = true;
            return command;
        }}
    }}
}}
""")

    def clean(self):
        shutil.rmtree(self.where / self.folder, ignore_errors=True)

    def build(self):
        return ["qbs", "build", "-q", "-j1", "-f", "app.qbs", "-d", self.folder, "config:debug", "profile:none",
                "qbs.targetPlatform:linux", "qbs.architecture:x86_64"]

    def load(self):
        return None
