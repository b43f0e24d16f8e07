#!/usr/bin/env bash
# keepCorpus.sh [TARGET...]: of what runs of the fuzz targets have found, in build/fuzz/corpus, keeps the fewest inputs that
# reach the same code, in fuzz/corpus/TARGET.tar.gz.
set -euo pipefail
cd "$(dirname "$0")/.."

./scripts/build.sh fuzz
[ $# -gt 0 ] || set -- $(cd fuzz && ls ./*Fuzz.cpp | sed 's|^\./||; s|\.cpp$||')
kept=$(mktemp -d)
trap 'rm -rf "$kept"' EXIT
for target; do
    if [ ! -d "build/fuzz/corpus/$target" ]; then
        echo "keepCorpus: there are no runs of $target: ./scripts/fuzz.sh 600 $target" >&2
        exit 1
    fi
    mkdir "$kept/$target"
    "build/fuzz/fuzz/$target" -set_cover_merge=1 "$kept/$target" "build/fuzz/corpus/$target" "fuzz/corpus/$target" \
        2>/dev/null
    (cd "$kept/$target" && find . -type f -size -64k -printf '%P\n' | LC_ALL=C sort |
        tar --owner=0 --group=0 --mtime=@0 --mode=644 -cf - -T - | gzip -n9) >"fuzz/corpus/$target.tar.gz"
    echo "$target: $(ls "$kept/$target" | wc -l) inputs"
done
