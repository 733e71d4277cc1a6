#!/bin/bash
# Sets up, builds and passes the tests. Usage: test.sh [PRESET], release unless told otherwise.
set -euo pipefail
here="$(cd "$(dirname "$0")" && pwd)"
preset="${1:-release}"
"$here/setup.sh" build run test
"$here/build.sh" "$preset" -DASSAYER_TESTS=ON
export LSAN_OPTIONS="suppressions=$here/../tests/leaks.supp:print_suppressions=0"
# Libraries are built without the thread sanitizer, which doesn't see how they lock.
export TSAN_OPTIONS="ignore_noninstrumented_modules=1"
# A folder of this run's own: another user, or another preset at the same time, has the same file names.
folder="$(mktemp -d)"
trap 'rm -rf "$folder"' EXIT
TEST_TMPDIR="$folder" ctest --test-dir "$here/../build/$preset" --output-on-failure
