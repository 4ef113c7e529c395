#!/usr/bin/env bash
# Builds the fuzzers and lets each make up files for some seconds: fuzz.sh [SECONDS]
# Fails with the first file that brings a reader down; it lies in build/fuzz/. The same seed every time, so that nothing
# fails by chance; files found before are begun with the next time.
set -euo pipefail
cd "$(dirname "$0")/.."
seconds=${1:-10}
scripts/install-packages.sh build run fuzz
scripts/build.sh fuzz codecs_fuzz document_fuzz export_fuzz messages_fuzz strokes_fuzz write_seeds
cd build/fuzz
bin/write_seeds seeds
export QT_QPA_PLATFORM=offscreen
for fuzzer in codecs document export messages strokes; do
    seeds=seeds/pictures
    case "$fuzzer" in messages | strokes) seeds=seeds/$fuzzer ;; esac
    mkdir -p "found/$fuzzer"
    echo "Fuzzing: $fuzzer, $seconds seconds"
    # A file that takes longer than this is a fault as well.
    "bin/${fuzzer}_fuzz" "found/$fuzzer" "$seeds" -max_total_time="$seconds" -max_len=65536 -rss_limit_mb=4000 \
        -seed=1 -timeout=60 -close_fd_mask=1 >"$fuzzer.log" 2>&1 || {
        tail -n 60 "$fuzzer.log" >&2
        exit 1
    }
    tail -n 1 "$fuzzer.log"
done
