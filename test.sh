#!/usr/bin/env bash
# Builds everything and runs every test: first a normal build, then a build
# with AddressSanitizer and UndefinedBehaviorSanitizer (clang), which also
# runs the fuzz targets for a bounded time.
set -euo pipefail
here="$(cd "$(dirname "$0")" && pwd)"
cd "$here"
scripts/ensure-deps.sh
jobs="${KNTR_JOBS:-$(nproc)}"
fuzz_seconds="${KNTR_FUZZ_SECONDS:-60}"

echo "== normal build"
cmake -S . -B build/release -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo
cmake --build build/release -j "$jobs"
ctest --test-dir build/release --output-on-failure -j "$jobs"

echo "== sanitizer build"
CC=clang CXX=clang++ cmake -S . -B build/sanitize -G Ninja -DCMAKE_BUILD_TYPE=Debug \
  -DKNTR_SANITIZE=ON -DKNTR_FUZZ=ON -DKNTR_BENCH=OFF
cmake --build build/sanitize -j "$jobs"
ASAN_OPTIONS=detect_leaks=1:abort_on_error=1 UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1 \
  ctest --test-dir build/sanitize --output-on-failure -j "$jobs"

echo "== fuzzing (${fuzz_seconds}s each)"
scripts/run-fuzzers.sh build/sanitize "$fuzz_seconds"
echo "== all tests passed"
