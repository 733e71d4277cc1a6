#!/bin/bash
# Sets up, builds and runs the tests. Usage: test.sh [test|slow|asan|tsan]; test is the default, slow the
# tests that take long.
set -euo pipefail
cd "$(dirname "$0")/.."
preset="${1:-test}"
scripts/setup.sh build run test
scripts/build.sh "$preset"
export LSAN_OPTIONS="suppressions=$PWD/tests/leaks.supp:print_suppressions=0"
# Libraries have no frame pointers, and the leak check must see who called a graphics driver that is
# unloaded by then.
export ASAN_OPTIONS="fast_unwind_on_malloc=0"
# Libraries aren't built with the thread sanitizer, so it can't see their locks.
export TSAN_OPTIONS="ignore_noninstrumented_modules=1"
# This run needs its own folder: other users, or other presets at the same time, use the same file names.
folder="$(mktemp -d)"
trap 'rm -rf "$folder"' EXIT
TEST_TMPDIR="$folder" ctest --preset "$preset"
