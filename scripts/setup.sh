#!/usr/bin/env bash
# setup.sh [PACKAGE...]: installs packages by name on Debian 12: those that building and testing need, if none is named.
# Prints nothing when all are there.
set -euo pipefail

packages=(
    cmake ninja-build g++ qt6-base-dev            # the programs
    clang-19 libelf-dev libdw-dev pkg-config      # the tool chain: what it runs, what it reads with
    mspdebug llvm-19 lld-19 srecord               # the tests of the tool chain
    libgtest-dev libgmock-dev python3 strace      # the tests; strace lets the system fail under them
    libbenchmark-dev libpugixml-dev libexpat1-dev # the benchmarks and the peers in them
    cmark-gfm                                     # the manual: HTML, and whether its man pages are up to date
    valgrind                                      # the test of what fixed runs cost
    clang-14 libclang-rt-14-dev clang-format-14   # the fuzz targets, the format check
)
[ $# -eq 0 ] || packages=("$@")

missing=()
for package in "${packages[@]}"; do
    state=$(dpkg-query -W -f '${db:Status-Status}' "$package" 2>/dev/null || true)
    [ "$state" = installed ] || missing+=("$package")
done
[ ${#missing[@]} -eq 0 ] && exit 0

if [ "$(id -u)" -eq 0 ]; then
    root=()
elif command -v sudo >/dev/null; then
    root=(sudo)
else
    echo "setup: these packages are missing, and installing them needs root: ${missing[*]}" >&2
    echo "setup: run as root: apt-get install ${missing[*]}" >&2
    exit 1
fi

echo "setup: installing ${missing[*]}"
log=$(mktemp)
trap 'rm -f "$log"' EXIT
install() {
    "${root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get install -y --no-install-recommends "${missing[@]}"
}
if ! install >"$log" 2>&1; then
    "${root[@]}" apt-get update >>"$log" 2>&1 || true
    if ! install >>"$log" 2>&1; then
        tail -n 20 "$log" >&2
        echo "setup: could not install: ${missing[*]}" >&2
        exit 1
    fi
fi
