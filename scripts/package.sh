#!/bin/bash
# Builds the Debian package and prints its path.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/setup.sh build package
scripts/build.sh release
(cd build/release && cpack)
ls "$PWD"/build/release/*.deb
