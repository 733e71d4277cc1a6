#!/bin/bash
# Checks what the release tests don't show: formatting, includes between folders, static analysis with
# another compiler's warnings, the slow tests, the others under the sanitizers, and a short run of each
# fuzz target.
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

echo "== slow tests"
scripts/test.sh slow

echo "== sanitizers"
scripts/test.sh asan
scripts/test.sh tsan

echo "== fleet"
promtool check rules fleet/alerts.yml
promtool test rules tests/fleet/alerts_test.yml
scripts/build.sh release
ASSAYER_APP="$PWD/build/release/app" PYTHONDONTWRITEBYTECODE=1 pytest-3 -q -p no:cacheprovider tests/fleet

echo "== fuzzing"
scripts/fuzz.sh 20000
