#!/bin/bash
# Sets up, builds and runs Assayer with the given arguments; without arguments, checks all plugins and
# the codecs that most media files use. Ends with Assayer's exit code.
set -euo pipefail
here="$(cd "$(dirname "$0")" && pwd)"
"$here/setup.sh" build run
"$here/build.sh" release
if [ $# -eq 0 ]; then
    codecs=AAC,H264,H265,AC3,DVVIDEO,H263,OPUS,VP9,FLAC,MP3
    set -- all 60 FFMPEG_IMPL "CODEC_ID_${codecs//,/,CODEC_ID_}"
fi
echo "+ Assayer $*"
exec "$here/../build/release/app/Assayer" "$@"
