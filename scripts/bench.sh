#!/bin/bash
# Measures the program beside the alternatives: its start, a tagged line, the plugin phase over this
# machine's own modules against a bare loop over the same files, a pass over all encoders against
# libavcodec alone and the ffmpeg command. Usage: bench.sh [ROUNDS of the pass over all encoders]
set -euo pipefail
here="$(cd "$(dirname "$0")" && pwd)"
"$here/setup.sh" build run bench
"$here/build.sh" bench
bench="$here/../build/release/bench"
folder="$(mktemp -d)"
trap 'rm -rf "$folder"' EXIT

echo "== machine"
echo "$(nproc) cores of $(sed -n 's/^model name[^:]*: //p' /proc/cpuinfo | head -n 1)"
echo "== tagged line"
LOCALAPPDATA="$folder" "$bench/tagged_line" 2>/dev/null
env -u LOCALAPPDATA "$bench/tagged_line" 2>/dev/null
echo "== plugin phase"
python3 "$here/../bench/plugin_phase.py" "$here/../build/release/app" "$bench/bare_loop"
echo "== codecs"
"$bench/sweep/codec_sweep" "${1:-5}" "$folder"
