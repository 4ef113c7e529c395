#!/usr/bin/env bash
# Configures and builds a preset (release, debug, asan, bench): build.sh PRESET [TARGET ...]
set -euo pipefail
cd "$(dirname "$0")/.."
preset=$1
shift
[ -f "build/$preset/build.ninja" ] || cmake --preset "$preset" >"/tmp/hazelmark-configure-$$.log" 2>&1 || {
    cat "/tmp/hazelmark-configure-$$.log" >&2
    exit 1
}
rm -f "/tmp/hazelmark-configure-$$.log"
cmake --build --preset "$preset" ${1:+--target "$@"}
