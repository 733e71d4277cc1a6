#!/bin/bash
# Configures and builds. Usage: build.sh BUILD_PRESET (see CMakePresets.json)
set -euo pipefail
cd "$(dirname "$0")/.."
case "$1" in
    test | slow | bench) configuration=release ;;
    *) configuration="$1" ;;
esac
log="$(mktemp)"
trap 'rm -f "$log"' EXIT
cmake --preset "$configuration" >"$log" 2>&1 || { cat "$log" >&2; exit 1; }
cmake --build --preset "$1"
