#!/usr/bin/env bash
# Sets everything up and runs the tests: ./test.sh [release|debug|asan]
set -euo pipefail
cd "$(dirname "$0")"
preset=${1:-release}
[ -f "build/$preset/bin/engine_tests" ] ||
    echo "Setting up: what the tests need is installed and everything is built. This is done once and takes some minutes."
scripts/install-packages.sh build run test
scripts/build.sh "$preset"
ctest --test-dir "build/$preset" --output-on-failure --no-tests=error -j "$(nproc)"
