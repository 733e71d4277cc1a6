#!/bin/bash
# What the release tests alone don't show: formatting, the borders between the folders, static analysis
# with the other compiler's warnings, the tests under the sanitizers, a short run of each fuzz target.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/setup.sh build run test bench check

echo "== formatting"
git ls-files '*.h' '*.cpp' | xargs clang-format --dry-run --Werror
git ls-files '*.sh' .ci/run | xargs shellcheck

echo "== includes"
scripts/check_includes.py

echo "== static analysis"
cmake --preset tidy >/dev/null
git ls-files '*.cpp' | grep -v Direct3D12 | xargs -P "$(nproc)" -n 4 clang-tidy -p build/tidy --quiet

echo "== sanitizers"
scripts/test.sh asan
scripts/test.sh tsan

echo "== fuzzing"
scripts/fuzz.sh 20000
