# kntr-tool plot on the reference profiles: pictures of the asked size that
# independent readers accept, and clear refusals of bad requests.
source "$(dirname "$0")/lib.sh"
bench="$KNTR_SOURCE_DIR/data/bench"
# Width and height from a PNG header.
png_size() {
  python3 -c 'import struct,sys; d=open(sys.argv[1],"rb").read(24); assert d[:8]==b"\x89PNG\r\n\x1a\n"; print(*struct.unpack(">II", d[16:24]))' "$1"
}
for profile in square square-hole spline-lens; do
  "$KNTR_TOOL" plot "$bench/$profile.kntr" --size 800x600 --png "$profile.png"
  check "$profile: png exit 0" test $? -eq 0
  check "$profile: png of 800x600" test "$(png_size "$profile.png")" = "800 600"
  "$KNTR_TOOL" plot "$bench/$profile.kntr" --mesh 500 --svg "$profile.svg"
  check "$profile: svg exit 0" test $? -eq 0
  check "$profile: svg parses as XML" python3 -c 'import sys, xml.etree.ElementTree as E; r=E.parse(sys.argv[1]).getroot(); assert r.tag.endswith("svg")' "$profile.svg"
  "$KNTR_TOOL" plot "$bench/$profile.kntr" --no-grid --pdf "$profile.pdf"
  check "$profile: pdf exit 0" test $? -eq 0
  check "$profile: ghostscript renders the pdf" \
    gs -q -dSAFER -dBATCH -dNOPAUSE -sDEVICE=png16m -r30 -sOutputFile="$profile-gs.png" "$profile.pdf"
  check "$profile: ghostscript wrote a page" test -s "$profile-gs.png"
done
# The default picture is the display's size.
"$KNTR_TOOL" plot "$bench/square.kntr" --png default.png
check "default size 1280x960" test "$(png_size default.png)" = "1280 960"

# Refusals: one line on standard error, a non-zero exit, no file left.
"$KNTR_TOOL" plot "$bench/square.kntr" --size 10 --png bad.png 2>err.txt
check "bad size is wrong usage" test $? -eq 2
check "usage line names plot" grep -q '^usage: kntr-tool plot' err.txt
"$KNTR_TOOL" plot "$bench/square.kntr" 2>err.txt
check "no output kind is wrong usage" test $? -eq 2
"$KNTR_TOOL" plot missing.kntr --png missing.png 2>err.txt
check "missing file exit 1" test $? -eq 1
check "missing file message" grep -qF '"missing.kntr" is non-existent!' err.txt
check "no picture of a missing file" test ! -e missing.png
"$KNTR_TOOL" plot "$bench/square.kntr" --svg no-such-dir/out.svg 2>err.txt
check "unwritable picture exit 1" test $? -eq 1
check "unwritable picture says so" grep -q 'Cannot make the picture no-such-dir/out.svg' err.txt
check "nothing half-written" test -z "$(ls | grep -F .part)"
finish
