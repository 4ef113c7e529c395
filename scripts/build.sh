#!/usr/bin/env bash
# Configures and builds: build.sh PRESET [TARGET ...]
# PRESET: release, debug, asan, bench, fuzz. With targets, a new build folder is configured without the tests, which need
# more packages; without targets, everything is built, and a folder that was configured without the tests is configured
# anew: what it holds already is not built again.
set -euo pipefail
cd "$(dirname "$0")/.."
preset=$1
shift
folder=build/$preset

configure() {
    local log
    log=$(mktemp)
    cmake --preset "$preset" "$@" >"$log" 2>&1 || {
        cat "$log" >&2
        rm -f "$log"
        exit 1
    }
    rm -f "$log"
}

if [ $# -eq 0 ]; then
    { [ -f "$folder/build.ninja" ] && grep -q '^BUILD_TESTING:BOOL=ON$' "$folder/CMakeCache.txt"; } ||
        configure -DBUILD_TESTING=ON
else
    [ -f "$folder/build.ninja" ] || configure -DBUILD_TESTING=OFF
fi
cmake --build --preset "$preset" ${1:+--target "$@"}
