#!/usr/bin/env bash
# Builds everything and runs every test: first the normal build of the
# programs and benchmarks with the scripted sessions, then a build with
# AddressSanitizer and UndefinedBehaviorSanitizer (clang, optimised a little
# so that the tests run fast, with line tables for the reports) that runs
# every test and each fuzz target for a short time. Long fuzzing runs:
# scripts/fuzz-long.sh.
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

# A compiler cache, when there is one, makes rebuilds of unchanged sources
# free, also in another clone of the repository (paths are taken relative).
launcher=()
if [ "${KNTR_CCACHE:-1}" != 0 ] && command -v ccache >/dev/null; then
  launcher=(-DCMAKE_CXX_COMPILER_LAUNCHER=ccache)
  export CCACHE_BASEDIR="$here" CCACHE_NOHASHDIR=1
fi

phase() {  # phase NAME: prints the phase and the time since the start
  echo "== $1 ($((SECONDS / 60))m$((SECONDS % 60))s)"
}

# The programs and the benchmarks as users build them; the unit tests are
# compiled and run once, in the sanitizer build below, and the scripted
# sessions run against both builds.
normal() {
  phase "normal build"
  cmake -S . -B build/release -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo -DKNTR_TESTS=ON \
    -DKNTR_BENCH=ON "${launcher[@]}"
  cmake --build build/release -j "$jobs" --target app/all bench/all
  phase "normal build: scripted sessions"
  ctest --test-dir build/release --output-on-failure -j "$jobs" -R '^script\.'
}

sanitized() {
  phase "sanitizer build"
  CC=clang CXX=clang++ cmake -S . -B build/sanitize -G Ninja -DCMAKE_BUILD_TYPE=Debug \
    -DCMAKE_CXX_FLAGS_DEBUG="-gline-tables-only -O1" -DKNTR_SANITIZE=ON -DKNTR_FUZZ=ON -DKNTR_BENCH=OFF \
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
