"""An installed tree for tests, and the libraries of the runtime in it."""
import os
import shutil
import subprocess
import sys

MISSING = 77


def run(*words, **options):
    ran = subprocess.run([str(word) for word in words], capture_output=True, text=True, errors="replace", **options)
    if ran.returncode:
        sys.exit(f"{' '.join(map(str, words))}\n{ran.stdout}{ran.stderr}")
    return ran.stdout


def copy_newer(source, target):
    for file in source.rglob("*"):
        copy = target / file.relative_to(source)
        if file.is_dir():
            copy.mkdir(parents=True, exist_ok=True)
        elif not copy.exists() or copy.stat().st_mtime < file.stat().st_mtime:
            copy.parent.mkdir(parents=True, exist_ok=True)
            shutil.copy2(file, copy)


def prepare(binaries, root, work):
    """Makes `work` an installed tree, and the user's home: the programs of `binaries`, the headers of the tool chain, and
    what root/support holds."""
    work.mkdir(parents=True, exist_ok=True)
    copy_newer(binaries, work / "bin")
    copy_newer(root / "toolchain" / "include", work / "include")
    copy_newer(root / "support", work)
    os.environ["HOME"] = str(work)


def build_libraries(work, configuration, libraries):
    for library in libraries:
        run(work / "bin" / "ostmake", "-config", configuration, "-project", library, "runtime.vkp",
            cwd=work / "source" / "runtime")
