#!/bin/bash
# Measures the plugin phase over this machine's own modules against a bare loop over the same files.
# Usage: bench.sh [ROUNDS]
set -euo pipefail
here="$(cd "$(dirname "$0")" && pwd)"
"$here/setup.sh" build run bench
"$here/build.sh" release -DASSAYER_BENCH=ON
release="$here/../build/release"
exec python3 "$here/../bench/plugin_phase.py" "$release/app" "$release/bench/bare_loop" "$@"
