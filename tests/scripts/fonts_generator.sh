#!/usr/bin/env bash
# The font generator, run on the Hershey glyphs, writes the checked-in font
# and marker files byte for byte.
set -euo pipefail
source_dir=${1:?source directory}
glyphs=${2:-/usr/share/hershey-fonts}
out=$(mktemp -d)
trap 'rm -rf "$out"' EXIT
python3 "$source_dir/tools/mkfonts.py" "$glyphs" "$out"
count=0
for made in "$out"/*; do
  name=$(basename "$made")
  cmp "$made" "$source_dir/data/fonts/$name"
  count=$((count + 1))
done
checked_in=$(ls "$source_dir"/data/fonts/*.fsa "$source_dir"/data/fonts/*.psa | wc -l)
if [ "$count" -ne 11 ] || [ "$checked_in" -ne 11 ]; then
  echo "expected 11 font files, made $count, checked in $checked_in" >&2
  exit 1
fi
echo "fonts reproduced: $count files"
