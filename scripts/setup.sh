#!/bin/bash
# Installs missing Debian packages of the given groups (see packages.list), as root or with sudo.
# Usage: setup.sh GROUP...
set -euo pipefail

list="$(dirname "$0")/packages.list"
missing=()
for group in "$@"; do
    while read -r name; do
        dpkg-query -W -f '${db:Status-Status}' "$name" 2>/dev/null | grep -qx installed ||
            missing+=("$name")
    done < <(awk -v group="$group" '$1 == group { print $2 }' "$list")
done
[ ${#missing[@]} -gt 0 ] || exit 0

as_root=()
if [ "$(id -u)" -ne 0 ]; then
    command -v sudo >/dev/null || {
        echo "These packages are missing, and installing them needs root or sudo: ${missing[*]}" >&2
        exit 1
    }
    as_root=(sudo)
fi
echo "Installing: ${missing[*]}"
"${as_root[@]}" apt-get update -q
"${as_root[@]}" env DEBIAN_FRONTEND=noninteractive \
    apt-get install -q -y --no-install-recommends "${missing[@]}"
