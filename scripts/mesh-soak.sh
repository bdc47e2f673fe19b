#!/usr/bin/env bash
# The long run of the mesher's robust mode: 2,000 random regions (or the
# count given) at each of the box sides 0.001, 1 and 1000 and with a hole
# 1000 times smaller than its region, with and without smoothing and the
# quality stage. Every region must mesh properly.
set -euo pipefail
cd "$(dirname "$0")/.."
count="${1:-2000}"
build=build/release
cmake -S . -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo >/dev/null
cmake --build "$build" -j2 --target mesher_tests
KNTR_SOAK="$count" "$build/tests/mesher_tests" \
  --gtest_filter='RobustTest.RandomRegionsMeshProperlyAtEveryScale'
