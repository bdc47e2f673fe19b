# kntr-tool refuses files that the interactive reader would take: each
# refusal is one line of its own and a non-zero exit, with no internal text.
source "$(dirname "$0")/lib.sh"
good="$KNTR_SOURCE_DIR/data/bench/square.kntr"
head -12 "$good" >header.txt
body() { tail -n +13 "$good"; }
# refuse NAME EXPECTED-TEXT: the tool on NAME.kntr fails with one line holding the text.
refuse() {
  "$KNTR_TOOL" polyline "$1.kntr" >/dev/null 2>err.txt
  local code=$?
  check "$1: non-zero exit" test "$code" -ne 0
  check "$1: one line" test "$(wc -l <err.txt)" -eq 1
  check "$1: says '$2'" grep -qF -- "$2" err.txt
  check "$1: no internal text" bash -c '! grep -q "specifier\|(GTFLHD)\|{" err.txt'
}
{ cat header.txt; body | sed '1s/^0 /99 /'; } >type99.kntr
refuse type99 "Profile type 99 is neither 0 nor 1"
{ cat header.txt; body | sed '4s/^40 T 2/40 T 99/'; } >param99.kntr
refuse param99 "has parameterization 99, not 1 to 5"
{ cat header.txt; body | sed '2s/.*/11.0 -1.0 -1.0 11.0/'; } >inverted.kntr
refuse inverted "The bounding box is inverted"
{ cat header.txt; printf '0 0.012 1\n-1 11 -1 11\n0 0\n1 T 2\n1 2 0.0 0.0\n'; } >onepoint.kntr
refuse onepoint "Curve 1 is closed with fewer than 2 points"
{ sed 's/PROGRAM: KNTR/PROGRAM: HULL/' header.txt; body; } >other.kntr
refuse other "is not a KNTR file (its header names HULL)"
{ cat header.txt; body; printf 'garbage 1 2 3\n'; } >trailing.kntr
refuse trailing "Data after the last record"
{ cat header.txt; body | sed '2s/.*/-1.0 1e308 -1.0 11.0/'; } >huge.kntr
refuse huge "Value 1e308 out of range"
head -5 "$good" >short.kntr
refuse short "The file header of \"short.kntr\" is incomplete or unreadable"
{ cat header.txt; body | head -20; } >cut.kntr
refuse cut "Incorrect file format detected at line"
# The interactive reader still takes what its file format allows.
"$KNTR_TOOL" polyline "$good" >/dev/null 2>err.txt
check "the reference file is taken" test $? -eq 0
finish
