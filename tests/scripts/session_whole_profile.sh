# Whole-profile operations in the headless window: a rotation about the
# reference point, a split and a join, the type to polyline and back, a
# new parameterization, and the snap line; each checked in the saved file.
source "$(dirname "$0")/lib.sh"
unset DISPLAY

box=$'1\n0,10\n0,5\n'
# Spline profile, reference point (5, 2.5), five points, DONE, closed.
closed=$'2\n1\n5,2.5\n3,1\n1\n6,1\n1\n7,3\n1\n5,4\n1\n3,3\n1\n\nyes\n'
save=$'8\n2\n\n\n11\n'
# Modify entire profile (7), orient (4), rotate (2) by 90 degrees, back.
rotate=$'4\n#item 7\n#item 4\n#item 2\n90\n#item 3\n'
# Split the lone closed curve at point 3; join it again; polyline profile.
split=$'#item 3\n3\n#picture split.png\n#item 3\n1\n#item 1\n#item 2\n#item 7\n'
# The snap line through two keyed points.
snap=$'#item 8\n1,1\n#pick 9, 4\n#picture snap.png\n#item 12\n'
run_kntr "demo"$'\nyes\nACME\nme\n'"$box$closed$rotate$split$snap$save"$'9\nyes\n'
check "first session exit 0" test "$status" -eq 0
check "modification menu" contains out "PROFILE MODIFICATION"
check "orient menu" contains out "ORIENT PROFILE"
check "split asks for its point" contains out "Select item, pick point or input point number"

# Points of the saved curve: "j type x y" records after the curve's head.
points() { tail -n +13 demo.KNT | awk 'NR > 3 && NF == 4 { print $3, $4 }'; }
curvehead() { tail -n +13 demo.KNT | awk 'NR == 4'; }
points >rotated.txt
# The keyed points turned by 90 degrees about (5, 2.5), starting at the third
# (the split point): (x, y) -> (5 - (y - 2.5), 2.5 + (x - 5)).
printf '%s\n' "7 3" "5 4" "3 3" "3 1" "6 1" |
  awk '{ print 5 - ($2 - 2.5), 2.5 + ($1 - 5) }' >expected.txt
check "rotated about the reference point within 1e-12, from the split point on" \
  python3 -c '
import sys
got = [tuple(map(float, l.split())) for l in open("rotated.txt")]
want = [tuple(map(float, l.split())) for l in open("expected.txt")]
assert len(got) == len(want), (got, want)
assert all(abs(a - c) < 1e-12 and abs(b - d) < 1e-12 for (a, b), (c, d) in zip(got, want)), (got, want)'
check "the curve is closed again after the join" test "$(curvehead | awk '{print $2}')" = "T"
check "polyline profile saved" test "$(tail -n +13 demo.KNT | awk 'NR == 1 {print $1}')" = "0"
check "reference point kept" test "$(tail -n +13 demo.KNT | awk 'NR == 3')" = "5.0 2.5"
check "split picture written" test -s split.png -a -s snap.png

# Second session on the saved profile (RETURN under the file information
# and the outline): back to spline, saved; then centripetal, saved.
back=$'\n\n4\n#item 7\n#item 1\n#item 1\n#item 7\n#item 12\n'
centripetal=$'4\n#item 7\n#item 2\nN\n#item 7\n#item 12\n'
resave=$'8\n2\nyes\n\n\n11\n'
run_kntr "demo"$'\n'"$back$resave$centripetal$resave"$'9\nyes\n'
check "second session exit 0" test "$status" -eq 0
check "spline profile again" test "$(tail -n +13 demo.KNT | awk 'NR == 1 {print $1}')" = "1"
check "centripetal parameterization" test "$(curvehead | awk '{print $3}')" = "4"
"$KNTR_TOOL" polyline demo.KNT >after.txt 2>&1
# the same profile with chord lengths, written by hand from the saved one
tail -n +13 demo.KNT | awk 'NR == 4 { $3 = 2 } { print }' >records
head -n 12 demo.KNT | cat - records >chord.KNT
"$KNTR_TOOL" polyline chord.KNT >before.txt 2>&1
check "polylines of both parameterizations made" test -s before.txt -a -s after.txt
check "the polyline follows the new parameterization" bash -c '! cmp -s before.txt after.txt'
finish
