#!/bin/bash
# Builds the Debian package, tries it in a fresh Debian root if it may make one (as root), and prints its
# path.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/setup.sh build package
scripts/build.sh release
(cd build/release && cpack)
package="$(ls "$PWD"/build/release/*.deb)"
if [ "$(id -u)" -eq 0 ]; then
    root="$(mktemp -d)"
    trap 'rm -rf --one-file-system "$root"' EXIT
    debootstrap --variant=minbase bookworm "$root"
    tests/package/smoke.sh "$package" "$root"
else
    echo "Not tried: that takes root"
fi
echo "$package"
