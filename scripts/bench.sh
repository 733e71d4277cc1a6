#!/bin/bash
# Measures the program beside the alternatives: its start, a tagged line, the plugin phase over this
# machine's own modules against a bare loop over the same files, a pass over all encoders against
# libavcodec alone and the ffmpeg command. Ends with 1 if a measurement failed or a figure is above
# its limit, after all the others. Usage: bench.sh [ROUNDS of the pass over all encoders]
set -euo pipefail
here="$(cd "$(dirname "$0")" && pwd)"
"$here/setup.sh" build run bench
"$here/build.sh" bench
bench="$here/../build/release/bench"
folder="$(mktemp -d)"
trap 'rm -rf "$folder"' EXIT
missed=()
measure() {
    local what="$1"
    shift
    echo "== $what"
    "$@" || missed+=("$what")
}

echo "== machine"
echo "$(nproc) cores of $(sed -n 's/^model name[^:]*: //p' /proc/cpuinfo | head -n 1)"
measure "tagged line, log files" env LOCALAPPDATA="$folder" "$bench/tagged_line" 2>/dev/null
measure "tagged line" env -u LOCALAPPDATA "$bench/tagged_line" 2>/dev/null
measure "plugin phase" python3 "$here/../bench/plugin_phase.py" "$here/../build/release/app" "$bench/bare_loop"
measure "assay" python3 "$here/../bench/assay_speed.py" "$here/../build/release/app"
measure "codecs" "$bench/sweep/codec_sweep" "${1:-5}" "$folder"
[ ${#missed[@]} -eq 0 ] || { echo "failed or above the limit: ${missed[*]}" >&2; exit 1; }
