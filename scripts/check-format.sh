#!/usr/bin/env bash
# Fails, naming the files, when a source file is not laid out as .clang-format asks.
set -euo pipefail
cd "$(dirname "$0")/.."
git ls-files -z -- '*.cpp' '*.h' | xargs -0 clang-format --dry-run -Werror
echo "Formatting: as .clang-format asks."
