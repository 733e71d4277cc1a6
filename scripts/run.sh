#!/bin/bash
# Sets up, builds and runs the main job: Assayer with the given arguments, or a check of all plugins
# and of the codecs that most media files use. Ends with Assayer's exit code.
set -euo pipefail
here="$(cd "$(dirname "$0")" && pwd)"
"$here/setup.sh" build run
"$here/build.sh" release
if [ $# -eq 0 ]; then
    set -- plugins 60
fi
echo "+ Assayer $*"
exec "$here/../build/release/app/Assayer" "$@"
