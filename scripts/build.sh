#!/bin/bash
# Configures and builds a preset. Usage: build.sh PRESET [cmake option...]
set -euo pipefail
cd "$(dirname "$0")/.."
preset="$1"
shift
log="$(mktemp)"
trap 'rm -f "$log"' EXIT
cmake --preset "$preset" "$@" >"$log" 2>&1 || { cat "$log" >&2; exit 1; }
cmake --build --preset "$preset"
