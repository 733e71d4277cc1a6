#!/bin/bash
# What the tests alone don't show: formatting, the other compiler's warnings, static analysis, the
# tests under the sanitizers, a short run of each fuzz target.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/setup.sh build run test bench check
jobs="$(nproc)"

echo "== formatting"
git ls-files '*.h' '*.cpp' | xargs clang-format --dry-run --Werror

echo "== clang++ and clang-tidy"
scripts/build.sh clang -DASSAYER_BENCH=ON
git ls-files '*.cpp' | grep -v -e '^fuzz/' -e Direct3D12 |
    xargs -P "$jobs" -n 4 clang-tidy -p build/clang --quiet

echo "== sanitizers"
scripts/test.sh asan
scripts/test.sh tsan

echo "== fuzzing"
scripts/fuzz.sh 20000
