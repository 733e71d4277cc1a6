#!/bin/bash
# Builds the fuzz targets and runs each a fixed number of times. Usage: fuzz.sh RUNS
set -euo pipefail
here="$(cd "$(dirname "$0")" && pwd)"
runs="$1"
"$here/setup.sh" build check
"$here/build.sh" fuzz
fuzzers="$here/../build/fuzz/fuzz"
for corpus in "$here"/../fuzz/corpus/*; do
    target="$(basename "$corpus")"
    found="$(mktemp -d)"
    # Fuzzing a reader of shared objects needs a valid one as the seed.
    [ "$target" != FuzzModuleFile ] || cp "$fuzzers/seed.so" "$found/"
    echo "$target: $runs runs"
    "$fuzzers/$target" -runs="$runs" -seed=1 -max_len=65536 -verbosity=0 \
        -artifact_prefix="$fuzzers/$target-" "$found" "$corpus" 2>"$found.log" ||
        { cat "$found.log" >&2; echo "$target found a fault; its input is $fuzzers/$target-*" >&2; exit 1; }
    rm -rf "$found" "$found.log"
done
