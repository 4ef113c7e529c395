#!/usr/bin/env bash
# Fails when ./run.sh needs a package that it does not install itself: builds and runs the program as ./run.sh does, in
# the folder that it uses, with what belongs to the tests and benchmarks alone hidden from CMake. The folder is left as
# ./run.sh leaves it, for ./test.sh to go on from.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/install-packages.sh build run
hidden=()
for package in GTest benchmark OpenCV; do
    hidden+=("-DCMAKE_DISABLE_FIND_PACKAGE_$package=ON")
done
cmake --no-warn-unused-cli --preset release -DBUILD_TESTING=OFF "${hidden[@]}" >/dev/null
env -u DISPLAY -u WAYLAND_DISPLAY ./run.sh
cmake --no-warn-unused-cli --preset release "${hidden[@]/%=ON/=OFF}" >/dev/null
