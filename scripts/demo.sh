#!/usr/bin/env bash
# Sets up, builds and installs to dist/, builds the runtime and the samples there, and runs two of them in the simulator.
set -euo pipefail
cd "$(dirname "$0")/.."

./scripts/build.sh release ostmake ostquery qcomp qasm qlink qarc qcvt qlst
installed=$(cmake --install build/release --prefix dist | grep -c -e '^-- Installing:' || true)
if [ "$installed" -gt 0 ]; then
    echo "installed $installed files to dist/"
else
    echo "dist/ is up to date"
fi
HOME=$PWD/dist/home
mkdir -p "$HOME"
export HOME
dist=$PWD/dist

# make DIRECTORY WORD...: runs ostmake there and tells what it did: tools that ran, and how long it took.
make() {
    local directory=$1 log=$dist/make.log start=$SECONDS did
    shift
    if ! (cd "$dist/$directory" && "$dist/bin/ostmake" "$@") >"$log" 2>&1; then
        tail -n 20 "$log" >&2
        echo "demo: the build of $directory failed" >&2
        exit 1
    fi
    did=$(awk '/^    (Compiling|Assembling|Archiving|Linking|Copying)/ { n[$1]++ }
               END { for (c in n) printf "%s %d, ", c, n[c] }' "$log")
    [ -z "$did" ] || did="$did$((SECONDS - start)) s"
    printf '%-22s %s\n' "$directory" "${did:-up to date}"
}

# simulate BREAKPOINT EXECUTABLE COMMAND...: loads a program; the commands run it.
simulate() {
    local stop=$1 executable=$2
    shift 2
    timeout 60 mspdebug -n -q sim 'simio add console c' 'simio add hwmult m' 'simio add wdt w' 'simio add gpio p1' \
        'simio config p1 base 0x20' 'simio config p1 verbose' "prog $dist/samples/$executable" "setbreak $stop" "$@"
}

make source/runtime -batch -config soft_single runtime.vkp
for sample in hello light statistics assembly package; do
    make "samples/$sample" -config Release "$sample.vkp"
done
make samples/documentation -config Web documentation.vkp

echo
echo "hello in the simulator:"
simulate exit hello/Release/hello.vkx run | sed -n '/^Running/,/^ *( PC/p' | sed '1d;$d;s/^/    /'
echo "the light, after 16 beats of its timer:"
simulate beat light/Release/light.vkx run run run run run run run run run run run run run run run run run |
    grep -a '^p1\|gpio' | sed 's/^/    /'
echo
echo "Programs, libraries, headers and samples are in dist/; docs/manual/tutorial.md tells how to go on."
