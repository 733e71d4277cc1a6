#!/bin/bash
# Installs the Debian package in a Debian root directory, as users would, and runs it there as an
# ordinary user. Needs root. Usage: smoke.sh PACKAGE ROOT
set -euo pipefail
package="$(realpath "$1")"
root="$(realpath "$2")"

# In a mount namespace of its own, so that the mounts end with the test.
if [ -z "${SMOKE_NAMESPACE:-}" ]; then
    SMOKE_NAMESPACE=1 exec unshare --mount --propagation private "$0" "$package" "$root"
fi
mount -t proc proc "$root/proc"
mount --rbind /dev "$root/dev"

environment=(env -i PATH=/usr/sbin:/usr/bin:/sbin:/bin DEBIAN_FRONTEND=noninteractive)
as_root() { chroot "$root" "${environment[@]}" "$@"; }
as_user() { chroot --userspec=nobody "$root" "${environment[@]}" "$@"; }
fail() { echo "smoke test: $*" >&2; exit 1; }

# check RECORD ARGUMENT... fails unless Assayer ends with code 0 and writes the record.
check() {
    local record="$1" code=0
    shift
    as_user /usr/lib/assayer/Assayer "$@" >"$output" 2>&1 || code=$?
    cat "$output"
    [ "$code" -eq 0 ] || fail "Assayer $*: code $code"
    grep -qF "$record" "$output" || fail "Assayer $*: no $record"
}

output="$(mktemp)"
trap 'rm -f "$output"' EXIT
install -m 644 "$package" "$root/tmp/assayer.deb"
as_root apt-get update -q
as_root apt-get install -q -y --reinstall /tmp/assayer.deb

check '[LOADED_PLUGINS]true[/LOADED_PLUGINS]' plugins 60
check '[TEST_CODEC]Decoder.FFMPEG_IMPL.CODEC_ID_H264[/TEST_CODEC]' \
    codecs 60 FFMPEG_IMPL,MEDIA_FOUNDATION_IMPL CODEC_ID_AAC,CODEC_ID_H264
[ -e "$root/usr/share/man/man1/assay.1" ] || fail "no manual page"
[ -e "$root/usr/share/bash-completion/completions/assay" ] || fail "no completion"

# A user's own installation survives an upgrade; without the package it says what is wrong.
home="$(as_user mktemp -d)"
assay() { as_user HOME="$home" assay "$@"; }
before="$(as_root find /usr/lib/assayer -printf '%p %s %T@ %l\n' | sort)"
assay collect || fail "assay collect"
assay all --codec CODEC_ID_AAC,CODEC_ID_H264 || [ $? -eq 1 ] || fail "assay all"
[ "$before" = "$(as_root find /usr/lib/assayer -printf '%p %s %T@ %l\n' | sort)" ] ||
    fail "a file of the package was touched"
as_root apt-get install -q -y --reinstall /tmp/assayer.deb
assay plugins || [ $? -eq 1 ] || fail "assay plugins after an upgrade"

rm "$root/tmp/assayer.deb"
as_root apt-get purge -q -y assayer
[ ! -e "$root/usr/lib/assayer" ] || fail "purged, but something is left"
echo "smoke test: passed"
