#!/usr/bin/env bash
# Long fuzzing: builds the sanitizer build if needed and runs each fuzz
# target for $1 seconds (default 600), keeping what it finds in the work
# corpus under build/sanitize/fuzz-work/.
set -euo pipefail
here="$(cd "$(dirname "$0")/.." && pwd)"
cd "$here"
seconds="${1:-600}"
scripts/ensure-deps.sh
CC=clang CXX=clang++ cmake -S . -B build/sanitize -G Ninja -DCMAKE_BUILD_TYPE=Debug \
  -DCMAKE_CXX_FLAGS_DEBUG="-gline-tables-only -O1" -DKNTR_SANITIZE=ON -DKNTR_FUZZ=ON -DKNTR_BENCH=OFF
cmake --build build/sanitize -j "${KNTR_JOBS:-$(nproc)}"
scripts/run-fuzzers.sh build/sanitize "$seconds"
