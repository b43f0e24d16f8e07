#!/usr/bin/env python3
"""faults.py BIN SCENARIO...: lets the system fail under the programs of BIN, and looks what becomes of the files.
faults.py --list: the names of the scenarios.

Each scenario makes a tree that was built from old sources, changes the sources, and builds again while something fails.
Then: sources and settings are whole, a file that is replaced in one go is the old or the new one, and a further run
leaves just the tree that a run without any fault leaves, and nothing beside it.

A scenario that injects a fault at each call in turn that changes files stops after some seconds, having spread its
choice over all calls; with FAULTS_ALL set it goes through all of them. Ends with 77 where nothing may be traced.
"""
import collections
import os
import re
import shlex
import shutil
import signal
import struct
import subprocess
import sys
import tempfile
import time
import zlib

SECONDS = 12
START = int(time.time())
CHANGES = ("write,writev,pwrite64,openat,linkat,rename,unlink,mkdir,fchmod,chmod,ftruncate,utimensat,fsync,flock,dup,close,vfork,"
           "clone3,exit_group")
NOTHING_WRITTEN = re.compile(r"openat\((?!.*(O_CREAT|O_TMPFILE))|write\([12],|close\(")  # a fault there is another matter

# Tools that write as most tools of others do: in place, and bit by bit. The object tells its source and holds it.
TOOLS = {
    "qcomp": r"""#!/bin/sh
for word; do
    [ "$word" = -o ] && source=$previous
    [ "$previous" = -o ] && output=$word
    previous=$word
done
length=$(printf %o ${#source})
all=$(printf %o $((12 + ${#source})))
printf "\\010\\001\\$all\\046dependencies$source\\011\\011\\011\\112\\116\\000\\041\\117\\000\\010\\001\\014\\043" >"$output"
if [ -f half ]; then touch reached; until [ -f go ]; do sleep 0.01; done; fi
printf "\\010\\001\\014\\010\\001\\$length\\043\\121\\146" >>"$output"
cat "$source" >>"$output"
[ ! -f failing ]
""",
    "qarc": '#!/bin/sh\nshift; output=$1; shift; cat "$@" >"$output"\n',
    "qlink": r"""#!/bin/sh
for word; do
    case $word in -M*) echo map >"${word#-M}" ;; *.vko | *.vka) inputs="$inputs $word" ;; esac
    [ "$previous" = -o ] && output=$word
    previous=$word
done
cat $inputs >"$output"
""",
    "qcvt": '#!/bin/sh\n[ ! -f failing.qcvt ] && cat "$1" >"$3.${4#-F}"\n',
    "join": '#!/bin/sh\noutput=$1; shift; : >"$output"; for file; do cat "$file" >>"$output"; done\n',
}

COMPILING = """  <project Name="base">
    <configuration Name="Common" project_type="Library" build_output_directory="Debug" />
    <file file_name="util.c" />
  </project>
  <project Name="app">
    <configuration Name="Common" project_type="Executable" project_dependencies="base" linker_output_format="hex"
      linker_map_file="Yes" link_include_standard_libraries="No" linker_post_build_command="cp $(TargetPath) shipped.vkx" />
    <file file_name="main.c" />
  </project>
"""
STAGING = """  <project Name="packed">
    <configuration Name="Common" project_type="Staging" stage_output_filepath="out/$(InputFileName)" stage_set_readonly="Yes"
      stage_package_filepath="all.vkq" stage_package_member_name="$(InputFileName)"
      stage_post_build_command="cp all.vkq shipped.vkq" />
    <file file_name="main.c" />
    <file file_name="util.c" />
  </project>
  <project Name="joined">
    <configuration Name="Common" project_type="Combining" combine_output_filepath="out/joined.txt"
      combine_command="$(TarnDir)/bin/join &quot;$(CombiningOutputFilePath)&quot; $(CombiningRelInputPaths)" />
    <file file_name="main.c" />
    <file file_name="util.c" />
  </project>
  <project Name="pages">
    <configuration Name="Common" project_type="Staging" stage_command="docgen $(RelInputPath) pages"
      stage_output_filepath="pages/$(InputName).htm" />
    <file file_name="api.h" />
  </project>
"""


class Fault(Exception):
    """What a scenario finds wrong."""


def sources(state):
    """The sources, in their old or new state; all of them change."""
    return {
        "main.c": f"int main(void) {{ return {len(state)}; }}\n/* {state * 20} */\n",
        "util.c": f"int util(void) {{ return {len(state)}; }}\n/* {state * 30} */\n",
        "api.h": f"//! \\brief The {state} one.\n//! {state * 500}\nint first(void);\n"
                 f"//! \\brief Second, {state}.\nint second(void);\n",
    }


def members(package):
    """The members of a package, name, time and contents, in no order: the one that was updated last stands behind."""
    image = zlib.decompress(package[12:])
    entries = [struct.unpack_from("<1024sIIII", image, 8 + 1040 * index)
               for index in range(struct.unpack_from("<i", image, 4)[0])]
    return {(name.rstrip(b"\0"), moment, image[offset:offset + size]) for name, offset, size, _, moment in entries}


class Tree:
    """A directory with a solution in it, and a user's directory."""

    def __init__(self, bin_dir, projects, tools=TOOLS):
        self.bin = os.path.abspath(bin_dir)
        self.work = tempfile.mkdtemp(prefix="ostmake-faults.")
        self.dir = self.work + "/dir"
        self.home = self.work + "/home"
        self.projects = projects
        self.tools = tools
        self.tarn = self.dir + "/tarn" if tools else self.work + "/tarn"
        self.environment = {
            "HOME": self.home, "PATH": self.bin + ":" + os.environ["PATH"], "LC_ALL": "C", "TZ": "UTC",
            "ASAN_OPTIONS": os.environ.get("ASAN_OPTIONS", "") + ":detect_leaks=0",  # no leak is found under a tracer
        }
        self.words = ["ostmake", "-tarndir", self.tarn, "-config", "Debug", "-D", "LEVEL=2", "app.vkp"]
        self.fresh()
        self.expect(self.run())
        self.old = self.snapshot()
        self.age()
        shutil.copytree(self.work, self.work + ".saved", symlinks=True)
        self.change()
        self.expect(self.run())
        self.new = self.snapshot()

    def fresh(self):
        shutil.rmtree(self.work)
        os.makedirs(self.home)
        os.makedirs(self.tarn + "/bin")
        os.makedirs(self.dir, exist_ok=True)
        for name, text in (self.tools or {}).items():
            with open(f"{self.tarn}/bin/{name}", "w") as file:
                file.write(text)
            os.chmod(file.name, 0o755)
        if not self.tools:
            for name in ("qcomp", "qlink", "qarc", "qcvt", "qlst"):
                os.symlink(f"{self.bin}/{name}", f"{self.tarn}/bin/{name}")
        with open(self.dir + "/app.vkp", "w") as file:
            file.write('<!DOCTYPE OstrelTarn_Project_File>\n<solution Name="app" version="2">\n'
                       f'  <configuration Name="Debug" />\n{self.projects}</solution>\n')
        self.write(sources("old"), 1000)

    def write(self, files, age):
        for name, text in files.items():
            with open(f"{self.dir}/{name}", "w") as file:
                file.write(text)
            os.utime(file.name, (START - age,) * 2)

    def age(self):
        """Makes all that a build has made older, so that nothing happens within the same second."""
        for directory, _, names in os.walk(self.work):
            for name in names:
                path = os.path.join(directory, name)
                if not os.path.islink(path) and os.stat(path).st_mtime > START - 900:
                    os.utime(path, (START - 900,) * 2)

    def change(self):
        """The sources are edited, and settings change."""
        self.write(sources("newer"), 100)
        self.words[6] = "LEVEL=3"

    def restore(self):
        """The tree as it was built from the old sources, with the new ones in it."""
        shutil.rmtree(self.work)
        shutil.copytree(self.work + ".saved", self.work, symlinks=True)
        self.change()

    def __enter__(self):
        return self

    def __exit__(self, *_):
        shutil.rmtree(self.work, ignore_errors=True)
        shutil.rmtree(self.work + ".saved", ignore_errors=True)

    def snapshot(self):
        """The contents of all files by name, counted from the tree."""
        found = {}
        for directory, _, names in os.walk(self.work):
            for name in names:
                path = os.path.join(directory, name)
                if "/tarn/" not in path:
                    with open(path, "rb") as file:
                        contents = file.read()
                    found[os.path.relpath(path, self.work)] = members(contents) if name.endswith(".vkq") else contents
        return found

    def start(self, words, **more):
        return subprocess.Popen(words, cwd=self.dir, env=self.environment, stdin=subprocess.DEVNULL,
                                stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True, errors="replace",
                                start_new_session=True, **more)

    def run(self, words=None, before=()):
        """Runs to the end and ends what is left of it, as a crash of the machine would: (status, printed)."""
        process = self.start([*before, *(words or self.words)])
        printed = process.communicate(timeout=60)[0]
        self.end(process)
        return process.returncode, printed.replace(self.work, "{WORK}")

    @staticmethod
    def end(process):
        try:
            while True:
                os.killpg(process.pid, signal.SIGKILL)
                process.wait()
                time.sleep(0.005)
        except ProcessLookupError:
            process.wait()

    def expect(self, ran, status=0, printed=None):
        if ran[0] != status or (printed is not None and printed not in ran[1]):
            raise Fault(f"status {ran[0]}, and it printed:\n{ran[1]}"
                        f"expected was the status {status}" + (f" and:\n{printed}" if printed else ""))

    def check_kept(self, in_place=()):
        """Behind a fault: nothing is lost, and what is replaced in one go is whole."""
        now = self.snapshot()
        for name, contents in now.items():
            if ".ostmake-" in name or "unfinished-" in name or name.endswith(in_place):
                continue
            known = [files.get(name) for files in (self.old, self.new)]
            if contents not in known and not (name.endswith(".vkq") and contents <= set.union(*known)):
                raise Fault(f"{name} is neither the old file nor the new one")
        for name in self.old:
            if name not in now and (name.endswith((".c", ".h", ".vkp", ".vkq", "settings.xml"))
                                    and "/out/" not in name and "shipped" not in name):
                raise Fault(f"{name} is lost")

    def check_next(self, words=None):
        """The next run is right."""
        ran = self.run(words)
        self.expect(ran)
        now = self.snapshot()
        if now != self.new:
            names = sorted(name for name in {*now, *self.new} if now.get(name) != self.new.get(name))
            raise Fault(f"behind the next run these are not as they should be: {names}\nit printed:\n{ran[1]}")


IN_PLACE = (".vko", ".vka", ".vkx", ".hex", ".map", "joined.txt")  # what tools write bit by bit


def changing_calls(tree, words):
    """The calls that change something, each as the name and the how manieth of that name it is, in an order that is
    spread over all of them."""
    log = tree.work + ".calls"
    tree.run(words, ["strace", "-qq", "-o", log, "-e", "trace=" + CHANGES, "-e", "signal=none"])
    chosen = []
    counts = collections.Counter()
    with open(log, errors="replace") as file:
        for line in file:
            name = line.split("(")[0]
            counts[name] += 1
            if "(" in line and not NOTHING_WRITTEN.match(line):
                chosen.append((name, counts[name]))
    os.remove(log)
    if not chosen:
        raise Fault("nothing was traced")
    step = next(step for step in range(len(chosen) * 5 // 8, 10 * len(chosen)) if all(
        step % divisor or len(chosen) % divisor for divisor in range(2, len(chosen) + 1)))
    return [chosen[index * step % len(chosen)] for index in range(len(chosen))]


def at_each_call(tree, words, fault, check, seconds=SECONDS):
    """Lets each call that changes something meet the fault, in a tree of its own."""
    tree.restore()
    calls = changing_calls(tree, words)
    end = time.monotonic() + seconds
    done = 0
    for name, number in calls:
        if done > 1 and time.monotonic() > end and "FAULTS_ALL" not in os.environ:
            break
        tree.restore()
        ran = tree.run(words, ["strace", "-qq", "-o", "/dev/null", "-e", "trace=" + CHANGES, "-e", "signal=none",
                               "-e", f"inject={name}:{fault}:when={number}"])
        try:
            check(ran)
        except Fault as failure:
            raise Fault(f"{fault} at {name} number {number}: {failure}\nthe run had status {ran[0]} and printed:\n{ran[1]}")
        done += 1
    print(f"  {fault}: {done} of {len(calls)} calls")


def killed(projects):
    """ostmake and all that it has started are killed at once."""
    def scenario(bin_dir):
        with Tree(bin_dir, projects) as tree:
            def check(_):
                tree.check_kept(IN_PLACE)
                tree.check_next()

            at_each_call(tree, None, "signal=KILL", check)
    return scenario


def refused(*rows):
    """Each call that changes something fails once: there is no room, or no permission."""
    def scenario(bin_dir):
        for projects, error in rows:
            with Tree(bin_dir, projects) as tree:
                def check(ran):
                    if ran[0] not in (0, 1):
                        raise Fault("it did not end by itself")
                    tree.check_kept(IN_PLACE)
                    tree.check_next()

                at_each_call(tree, None, "error=" + error, check, SECONDS / len(rows))
    return scenario


def told(bin_dir):
    """What the user sees: which call fails with what, for which projects, the status, the text."""
    rows = (
        ("fsync:error=ENOSPC:when=1", STAGING, 0,
         'Copying main.c\n    cp failed: can\'t copy "{WORK}/dir/main.c" to "{WORK}/dir/out/main.c"\n'),
        ("fchmod:error=EPERM:when=2", STAGING, 0,
         "Copying main.c\n    chmod failed: can't make \"{WORK}/dir/out/main.c\" writable\n"),
        ("unlink:error=EROFS:when=1+", STAGING, 0, "Copying main.c\n    adding "),
        ("vfork,clone,clone3:error=EAGAIN:when=1+", COMPILING, 1,
         "Compiling util.c\n    can't execute command \"{WORK}/dir/tarn/bin/qcomp\"\n"),
        ("fsync,rename:error=ENOSPC:when=1+", COMPILING, 0, 'Building "app"'),  # settings: silence
    )
    for inject, projects, status, text in rows:
        with Tree(bin_dir, projects) as tree:
            tree.restore()
            try:
                tree.expect(tree.run(before=["strace", "-qq", "-o", "/dev/null", "-e", "signal=none", "-e",
                                             "trace=" + inject.split(":")[0], "-e", "inject=" + inject]), status, text)
                tree.check_kept(IN_PLACE)
                tree.check_next()
            except Fault as failure:
                raise Fault(f"{inject}: {failure}")
    with Tree(bin_dir, COMPILING) as tree:
        tree.restore()
        tree.expect(tree.run(["sh", "-c", shlex.join(tree.words) + " >/dev/full"]), 1,
                    "error: can't write to the standard output: No space left on device\n")
        tree.check_next()


def settings(bin_dir):
    """The user's settings can't be written, or not be read."""
    with Tree(bin_dir, COMPILING) as tree:
        home = "/proc/nowhere"
        tree.restore()
        tree.environment["HOME"] = home
        tree.expect(tree.run(), 1, f"error: cannot create {home}/.ferrant_associates_limited/ostrel_for_msp430/packages/"
                                   "targets/project_templates.xml\n")
        packages = tree.home + "/.ferrant_associates_limited/ostrel_for_msp430/packages"
        tree.expect(tree.run([*tree.words[:-1], "-packagesdir", packages, "app.vkp"]), 0, "Linking app.vkx")
        tree.environment["HOME"] = tree.home
        tree.check_next()

        name = tree.home + "/.ferrant_associates_limited/ostrel_for_msp430/settings.xml"
        for damage in ("<settings><setting name=", "", "\0" * 5000):
            tree.restore()
            with open(name, "w") as file:
                file.write(damage)
            tree.check_next()
        tree.restore()
        os.remove(name)
        os.mkdir(name)
        tree.expect(tree.run())
        os.rmdir(name)
        tree.check_next()


def unfinished(bin_dir):
    """A tool that writes in place doesn't come to its end."""
    def wait_for(name):
        end = time.monotonic() + 30
        while not os.path.exists(f"{tree.dir}/{name}"):
            if time.monotonic() > end:
                raise Fault(f"no {name}")
            time.sleep(0.01)

    def killed_all(process):
        wait_for("reached")
        tree.end(process)
        tree.expect(tree.run(["ostquery", "why", "app.vkp", "--config", "Debug", "--tarndir", tree.tarn]), 0,
                    "  util.c -> Debug/util.vko: Debug/util.vko was not finished.\n")

    def killed_alone(process):  # the tool goes on, and comes to its end
        wait_for("reached")
        process.kill()
        process.wait()
        open(tree.dir + "/go", "w").close()
        end = time.monotonic() + 30
        while not open(f"{tree.dir}/Debug/util.vko", "rb").read().endswith(b"*/\n") and time.monotonic() < end:
            time.sleep(0.01)
        tree.end(process)

    def killed_tool(process):
        wait_for("reached")
        with open(f"/proc/{process.pid}/task/{process.pid}/children") as file:
            os.kill(int(file.read().split()[0]), signal.SIGKILL)
        tree.expect((process.wait(), process.stdout.read().replace(tree.work, "{WORK}")), 1,
                    "Compiling util.c\n    can't execute command \"{WORK}/dir/tarn/bin/qcomp\"\n")

    def interrupted(process):
        wait_for("reached")
        process.send_signal(signal.SIGINT)
        tree.expect((process.wait(), process.stdout.read().replace(tree.work, "{WORK}")), -signal.SIGINT,
                    "    interrupted, removed \"{WORK}/dir/Debug/util.vko\"\n")

    def failing(process):  # the tool has written its output and ends with 1
        tree.expect((process.wait(), process.stdout.read()), 1, "Compiling util.c\n")
        tree.expect(tree.run([*tree.words[:-1], "-verbose", "app.vkp"]), 1, "  Debug/util.vko was not finished.\n")

    def failing_converter(process):  # behind the link, which has succeeded
        tree.expect((process.wait(), process.stdout.read()), 1, "Linking app.vkx\n")

    with Tree(bin_dir, COMPILING) as tree:
        for files, end in ((["half"], killed_all), (["half"], killed_alone), (["half"], killed_tool), (["half"], interrupted),
                           (["failing"], failing), (["failing.qcvt"], failing_converter)):
            tree.restore()
            for name in files:
                open(f"{tree.dir}/{name}", "w").close()
            process = tree.start(tree.words)
            try:
                end(process)
                for name in (*files, "reached", "go"):
                    if os.path.exists(f"{tree.dir}/{name}"):
                        os.remove(f"{tree.dir}/{name}")
                tree.check_kept(IN_PLACE)
                tree.check_next()
            except Fault as failure:
                raise Fault(f"{end.__name__}: {failure}")
            finally:
                tree.end(process)


def clock(bin_dir):
    """The clock jumps."""
    def shift(names, seconds):
        for name in names:
            os.utime(f"{tree.dir}/{name}", (START + seconds,) * 2)

    with Tree(bin_dir, COMPILING) as tree:
        tree.restore()
        shift(("main.c", "util.c"), 7200)  # sources of the future: each run makes them anew
        tree.check_next()
        tree.expect(tree.run(), 0, "Compiling main.c\n")
        tree.restore()
        shift(("main.c", "util.c"), -START - 10 ** 9)  # and of the past, before 1970
        tree.check_next([*tree.words[:-1], "-rebuild", "app.vkp"])
        tree.expect(tree.run([*tree.words[:-1], "-verbose", "app.vkp"]), 0, "'Debug/main.vko' is up to date\n")
        tree.restore()  # outputs of a clock that was ahead: their times are believed until they are rebuilt
        shift([f"Debug/{name}" for name in os.listdir(tree.dir + "/Debug")], 7200)
        tree.expect(tree.run([*tree.words[:-1], "-verbose", "app.vkp"]), 0, "'Debug/main.vko' is up to date\n")
        tree.check_next([*tree.words[:-1], "-rebuild", "app.vkp"])
        tree.expect(tree.run([*tree.words[:-1], "-verbose", "app.vkp"]), 0, "'Debug/main.vko' is up to date\n")


# What the tools of BIN build.
REAL = """  <project Name="base">
    <configuration Name="Common" project_type="Library" build_output_directory="{out}" build_intermediate_directory="{out}" />
    <file file_name="util.c" />
  </project>
  <project Name="app">
    <configuration Name="Common" project_type="Executable" project_dependencies="base" build_output_directory="{out}" build_intermediate_directory="{out}"
      linker_output_format="hex" linker_map_file="Yes" linker_absolute_listing="Yes" link_include_standard_libraries="No"
      linker_additional_options="-TCODE=4000-5000;-TINTVEC=ffe0-10000" linker_keep_symbols="main" />
    <file file_name="main.c" />
  </project>
"""


def tools(bin_dir):
    """Each tool of ours is killed, and finds no room, at each call that changes something."""
    with Tree(bin_dir, REAL.format(out="Debug"), tools=None) as tree:
        def killed_tool(_):
            tree.check_kept((".lst",))  # which shows the new sources beside the old program
            tree.check_next()

        def refused_tool(ran):
            if ran[0] != 0:
                tree.expect(ran, 1, f"{words[0]}: error: ")
            tree.check_kept((".lst",))  # which shows the new sources beside the old program
            tree.check_next()

        tree.restore()
        commands = re.findall("(/tarn/bin/q.*)", tree.run([*tree.words[:-1], "-rebuild", "-show", "app.vkp"])[1])
        for words in (line.replace("/tarn/bin/", "").replace("{WORK}", tree.work).split() for line in commands[1:]):
            at_each_call(tree, words, "signal=KILL", killed_tool, SECONDS / 8)
            at_each_call(tree, words, "error=ENOSPC", refused_tool, SECONDS / 8)
            tree.restore()
            output = words[-1] if words[-2] == "-o" else None
            if output:
                tree.expect(tree.run([word.replace(output, "/dev/full") for word in words]), 1,
                            f"{words[0]}: error: can't write /dev/full: No space left on device\n")


def together(bin_dir):
    """Several builds at once, in one directory and for one user."""
    staging = STAGING[:STAGING.index('  <project Name="joined">')].replace('stage_post_build_command="cp all.vkq shipped.vkq"', "")
    with Tree(bin_dir, REAL.format(out="Debug") + staging, tools=None) as tree:
        for _ in range(5):
            tree.restore()
            processes = [tree.start(tree.words) for _ in range(3)]
            for process in processes:
                tree.expect((process.wait(), process.stdout.read()))
            tree.check_next()


def read_only(bin_dir):
    """The tree of sources can't be written."""
    def locked(words):
        if os.geteuid() != 0:
            return words
        return ["unshare", "-m", "sh", "-c",
                f"mount --bind {tree.dir} {tree.dir} && mount -o remount,ro,bind {tree.dir} && cd {tree.dir} && exec {shlex.join(words)}"]

    def lock(mode):
        if os.geteuid() != 0:
            for directory, _, _ in os.walk(tree.dir):
                os.chmod(directory, mode)

    for out, status, text in (("../built", 0, "Linking app.vkx"), ("Debug", 1, "qcomp: error: can't write Debug/util.vko: "),
                              ("fresh", 1, "qcomp: error: can't write fresh/util.vko: ")):
        with Tree(bin_dir, REAL.format(out=out), tools=None) as tree:
            tree.restore()
            if out == "fresh":
                shutil.rmtree(tree.dir + "/fresh")
            lock(0o555)
            ran = tree.run(locked(tree.words))
            lock(0o755)
            if "mount" in ran[1] or "unshare" in ran[1]:
                print("  no mounts here")
                return
            tree.expect(ran, status, text)
            tree.check_next()


SCENARIOS = {
    "killed_build": killed(COMPILING),
    "killed_staging": killed(STAGING),
    "refused_build": refused((COMPILING, "ENOSPC")),
    "refused_staging": refused((STAGING, "ENOSPC"), (STAGING, "EACCES")),
    "told": told,
    "settings": settings,
    "unfinished": unfinished,
    "clock": clock,
    "tools": tools,
    "together": together,
    "read_only": read_only,
}


def may_trace():
    try:
        return subprocess.run(["strace", "-o", "/dev/null", "true"], capture_output=True).returncode == 0
    except FileNotFoundError:
        return False


def main():
    if sys.argv[1:] == ["--list"]:
        print(";".join(SCENARIOS), end="")
        return 0
    if not may_trace():
        print("nothing may be traced here")
        return 77
    status = 0
    for name in sys.argv[2:]:
        print(name)
        try:
            SCENARIOS[name](sys.argv[1])
        except Fault as failure:
            print(failure)
            status = 1
    return status


if __name__ == "__main__":
    sys.exit(main())
