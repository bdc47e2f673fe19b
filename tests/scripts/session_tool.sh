# kntr-tool on the reference profiles: polylines, fairing, and errors.
source "$(dirname "$0")/lib.sh"
bench="$KNTR_SOURCE_DIR/data/bench"
"$KNTR_TOOL" polyline "$bench/spline-lens.kntr" >poly.txt
check "polyline exit 0" test $? -eq 0
check "two curves" test "$(grep -c '^curve' poly.txt)" -eq 2
check "curve 2 closes on 8 offset points" grep -qx 'index 1 3 5 7 9 11 13 15' poly.txt
check "full precision" grep -q '^0.83333333333333337 0.64704761275630196$' poly.txt
"$KNTR_TOOL" fair "$bench/spline-lens.kntr" 1 5 --iterations 5 -o faired.kntr >fair.txt
check "fair exit 0" test $? -eq 0
check "fair report" grep -Eq '^iterations [1-5] energy( [0-9.e+-]+)+ moved [0-9.e+-]+ [0-9.e+-]+$' fair.txt
check "faired file written" test -s faired.kntr
"$KNTR_TOOL" fair faired.kntr 1 5 --along 1,0 --restraint 0.001 -o again.kntr >/dev/null
check "directional fairing on the written file" test $? -eq 0
for profile in square square-hole spline-lens; do
  for count in 1000 5000 10000; do
    "$KNTR_TOOL" mesh "$bench/$profile.kntr" --triangles "$count" --plain plain.txt >mesh.txt
    check "$profile $count: exit 0" test $? -eq 0
    made=$(awk '{print $4}' mesh.txt)
    check "$profile $count: $made triangles within 25%" \
      awk -v m="$made" -v c="$count" 'BEGIN { exit !(m >= 0.75 * c && m <= 1.25 * c) }'
    check "$profile $count: figures line" \
      grep -Eq '^vertices [0-9]+ triangles [0-9]+ quality( [0-9.e+-]+){4}$' mesh.txt
    check "$profile $count: plain file counts" \
      awk -v m="$made" 'NR == 1 { nv = $1; nt = $2; ok = (nt == m) } END { exit !(ok && NR == 1 + nv + nt) }' plain.txt
  done
done
"$KNTR_TOOL" mesh "$bench/square-hole.kntr" --auto 0.85 --smooth --fem mesh.fem --tvew mesh.tvw >auto.txt
check "auto quality exit 0" test $? -eq 0
check "auto mean within 1% or above" awk '{ exit !($8 >= 0.85 * 0.99) }' auto.txt
check "finite element file" grep -q '^element      1 201' mesh.fem
check "viewer file header" grep -q '^\* FILE VERSION:    4' mesh.tvw
"$KNTR_TOOL" mesh "$bench/square.kntr" --fem mesh.fem >/dev/null
check "existing output is replaced" test $? -eq 0
"$KNTR_TOOL" mesh "$bench/square-hole.kntr" --classic --no-improve --smooth >/dev/null
check "plain pipeline exit 0" test $? -eq 0
"$KNTR_TOOL" mesh "$bench/square-hole.kntr" --auto 0.999 --triangles 500 >out.txt 2>err.txt
check "unreachable quality exit 0" test $? -eq 0
check "unreachable quality warned" grep -qxF 'Required mesh quality was not obtained!' err.txt
# The hole moved across the right side of the square: refused, curves named.
awk '/^[0-9]+ T [0-9]+$/ { c++ } c == 2 && NF == 4 { $3 = $3 + 5 } { print }' \
  "$bench/square-hole.kntr" >crossing.kntr
"$KNTR_TOOL" mesh crossing.kntr >out.txt 2>err.txt
check "crossing curves exit 1" test $? -eq 1
check "crossing curves named" grep -qF '(IQCVCR) Curves 1 and 2 cross, overlap or touch each other!' err.txt
"$KNTR_TOOL" polyline missing.kntr 2>err.txt
check "missing file exit 1" test $? -eq 1
check "missing file message" grep -qF '"missing.kntr" is non-existent!' err.txt
printf 'not a profile\n' >bad.kntr
"$KNTR_TOOL" polyline bad.kntr 2>err.txt
check "bad file exit 1" test $? -eq 1
check "bad file message" grep -q 'Attempt to read from file \*\* bad.kntr \*\* failed' err.txt
"$KNTR_TOOL" fair "$bench/spline-lens.kntr" 1 >/dev/null 2>&1
check "usage exit 2" test $? -eq 2
finish
