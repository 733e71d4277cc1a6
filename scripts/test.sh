#!/bin/bash
# Sets up, builds and passes the tests. Usage: test.sh [test|asan|tsan], test unless told otherwise.
set -euo pipefail
cd "$(dirname "$0")/.."
preset="${1:-test}"
scripts/setup.sh build run test
scripts/build.sh "$preset"
export LSAN_OPTIONS="suppressions=$PWD/tests/leaks.supp:print_suppressions=0"
# Libraries are built without the thread sanitizer, which doesn't see how they lock.
export TSAN_OPTIONS="ignore_noninstrumented_modules=1"
# A folder of this run's own: another user, or another preset at the same time, has the same file names.
folder="$(mktemp -d)"
trap 'rm -rf "$folder"' EXIT
TEST_TMPDIR="$folder" ctest --preset "$preset"
