#!/bin/bash
# Compares the program with alternatives. Measures its start, the cost of a record, the plugin phase on
# this machine's own modules (against a bare loop over the same files), and a sweep over all encoders
# (against libavcodec alone and the ffmpeg command). Takes all measurements, then ends with 1 if one
# failed or a figure was above its limit. Usage: bench.sh [ROUNDS of the sweep]
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
measure "record, log files" env LOCALAPPDATA="$folder" "$bench/log_record" 2>/dev/null
measure "record" env -u LOCALAPPDATA "$bench/log_record" 2>/dev/null
measure "plugin phase" python3 "$here/../bench/plugin_phase.py" "$here/../build/release/app" "$bench/bare_loop"
measure "assay" python3 "$here/../bench/assay_speed.py" "$here/../build/release/app"
measure "collecting" python3 "$here/../bench/collect_speed.py" "$here/../build/release/app"
measure "state" python3 "$here/../bench/state_speed.py" "$here/../build/release/app"
measure "metrics" /usr/bin/python3 "$here/../bench/fleet_metrics.py" "$here/../build/release/app"
measure "codecs" "$bench/sweep/codec_sweep" "${1:-5}" "$folder"
[ ${#missed[@]} -eq 0 ] || { echo "failed or above the limit: ${missed[*]}" >&2; exit 1; }
