#!/usr/bin/env bash
# Sets everything up and opens the program: ./run.sh [PHOTO]
set -euo pipefail
cd "$(dirname "$0")"
photo=${1:+$(realpath -- "$1")}
[ -x build/release/bin/hazelmark ] ||
    echo "Setting Hazelmark up: what it needs is installed and the program is built. This is done once and takes some minutes."
scripts/install-packages.sh build run
scripts/build.sh release hazelmark hazelmark-cli examples

if [ -z "${DISPLAY:-}" ] && [ -z "${WAYLAND_DISPLAY:-}" ]; then
    sample=build/release/share/hazelmark/examples
    out=examples/hazel-blurred.jpg
    echo "There is no display to open a window on; rendering the sample photo with the command line instead."
    mkdir -p examples
    build/release/bin/hazelmark-cli render "$sample/hazel.jpg" --mask "$sample/hazel-mask.png" --output "$out"
    echo "Wrote $PWD/$out"
    exit 0
fi
exec build/release/bin/hazelmark ${photo:+"$photo"}
