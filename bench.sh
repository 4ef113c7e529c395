#!/usr/bin/env bash
# Installs what the benchmarks need, builds them and prints their table. Arguments go to the benchmark program, for
# example --benchmark_filter=blur
set -euo pipefail
cd "$(dirname "$0")"
scripts/install-packages.sh build bench
scripts/build.sh bench hazelmark_bench >&2
build/bench/bin/hazelmark_bench "$@"
