#!/usr/bin/env bash
# Builds KNTR (kntr and kntr-tool, in build/release/app/) if needed and
# starts kntr. Arguments go to the program.
set -euo pipefail
here="$(cd "$(dirname "$0")" && pwd)"
"$here/scripts/ensure-deps.sh" >&2
[ -x "$here/build/release/app/kntr" ] ||
  echo "Building kntr for the first time (a few minutes; progress in $here/build.log) ..." >&2
if ! cmake -S "$here" -B "$here/build/release" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo \
     -DKNTR_TESTS=OFF >/dev/null 2>"$here/build-configure.log" ||
   ! cmake --build "$here/build/release" --target kntr kntr-tool >"$here/build.log" 2>&1; then
  echo "Build failed; see $here/build.log" >&2
  exit 1
fi
rm -f "$here/build-configure.log"
exec "$here/build/release/app/kntr" "$@"
