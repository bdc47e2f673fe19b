#!/usr/bin/env bash
# Builds everything and runs every test: first a normal build, then a build
# with AddressSanitizer and UndefinedBehaviorSanitizer (clang, optimised a
# little so that the tests run fast), which also runs each fuzz target for a
# short time. Long fuzzing runs: scripts/fuzz-long.sh.
#
# Each phase is a function below; a new phase (a graphics library, window
# tests) is one more function and one more line in the list at the end.
# KNTR_JOBS (default: all cores) and KNTR_FUZZ_SECONDS (default 15) tune it;
# KNTR_CCACHE=0 turns the compiler cache off.
set -euo pipefail
here="$(cd "$(dirname "$0")" && pwd)"
cd "$here"
scripts/ensure-deps.sh
jobs="${KNTR_JOBS:-$(nproc)}"
fuzz_seconds="${KNTR_FUZZ_SECONDS:-15}"

# A compiler cache, when there is one, makes rebuilds of unchanged sources free.
launcher=()
if [ "${KNTR_CCACHE:-1}" != 0 ] && command -v ccache >/dev/null; then
  launcher=(-DCMAKE_CXX_COMPILER_LAUNCHER=ccache)
fi

phase() {  # phase NAME: prints the phase and the time since the start
  echo "== $1 ($((SECONDS / 60))m$((SECONDS % 60))s)"
}

normal() {
  phase "normal build"
  cmake -S . -B build/release -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo "${launcher[@]}"
  cmake --build build/release -j "$jobs"
  phase "normal tests"
  ctest --test-dir build/release --output-on-failure -j "$jobs"
}

sanitized() {
  phase "sanitizer build"
  CC=clang CXX=clang++ cmake -S . -B build/sanitize -G Ninja -DCMAKE_BUILD_TYPE=Debug \
    -DCMAKE_CXX_FLAGS_DEBUG="-g -O1" -DKNTR_SANITIZE=ON -DKNTR_FUZZ=ON -DKNTR_BENCH=OFF \
    "${launcher[@]}"
  cmake --build build/sanitize -j "$jobs"
  phase "sanitizer tests"
  ASAN_OPTIONS=detect_leaks=1:abort_on_error=1 UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1 \
    ctest --test-dir build/sanitize --output-on-failure -j "$jobs"
}

fuzzing() {
  phase "fuzzing (${fuzz_seconds}s each)"
  scripts/run-fuzzers.sh build/sanitize "$fuzz_seconds"
}

for step in normal sanitized fuzzing; do
  "$step"
done
phase "all tests passed"
