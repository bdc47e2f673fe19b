# Print a profile to the screen, save it, and read it back.
#
# The first session sets a box, keys in a closed spline curve of five points
# with one knuckle and an open curve of plain knuckles (a profile is all
# spline or all polyline, so the open "polyline" is a spline curve whose
# points are all knuckles), prints the profile on the screen, saves it and
# leaves. A second session loads the saved file on its own and prints it
# again.
source "$(dirname "$0")/lib.sh"

box=$'1\n0,10\n0,5\n'
# Spline profile, reference point, five points (the second a knuckle),
# DONE, and close the curve.
closed=$'2\n1\n0,0\n1,1\n1\n3,1\n2\n4,3\n1\n2,4\n1\n1,3\n1\n\nyes\n'
# Four knuckles, DONE, and keep the curve open.
open=$'2\n6,1\n2\n8,1\n2\n9,3\n2\n7,4\n2\n\nno\n'
# Screen; RETURN under the outline page and at the table's paging question.
print=$'5\n1\n\n\n'
# File menu: save (RETURN under the file information and the outline), back.
save=$'8\n2\n\n\n11\n'
run_kntr "demo"$'\nyes\nACME\nme\n'"$box$closed$open$print$save"$'9\nyes\n'
check "exit status 0" test "$status" -eq 0
check "every answer taken" bash -c "! grep -qE 'undefined constant|Input must be|Wrong number' out"
check "target question" contains out "Printer is? (screen = 1, cancel = 2)"
check "outline printed" contains out "Number of curves .................................. :    2"
check "table title" contains out "Profile offset point definition"
check "outline before the table" awk '/Number of curves/ && !o {o = NR} /Profile offset point/ && !t {t = NR} END {exit !(o && o < t)}' out
rule='+------+------------+------------+------------+---------------------+'
check "top, middle and foot rules" test "$(grep -cxF -- "$rule" out)" -eq 3
check "first head line" grep -qxF -- '!Point !   X-coord  !   Y-coord  !   Knuckle  !     Point type      !' out
check "second head line" grep -qxF -- '!number!     [m]    !     [m]    !   weight   !                     !' out
# The current curve is the one keyed in last: the open curve of knuckles.
check "row 1" grep -qxF -- '!    1 !  6.000E+00 !  1.000E+00 !  1.000E+00 ! Knuckle             !' out
check "row 2" grep -qxF -- '!    2 !  8.000E+00 !  1.000E+00 !  1.000E+00 ! Knuckle             !' out
check "row 3" grep -qxF -- '!    3 !  9.000E+00 !  3.000E+00 !  1.000E+00 ! Knuckle             !' out
check "row 4" grep -qxF -- '!    4 !  7.000E+00 !  4.000E+00 !  1.000E+00 ! Knuckle             !' out
check "foot under row 4" test "$(grep -A1 '^!    4 !' out | tail -1)" = "$rule"
check "no fifth row" bash -c "! grep -q '^!    5 !' out"
check "paging question" contains out "Input +, -, NNN, +NNN, -NNN or <R> to quit ?"
check "stored" contains out 'Storing profile-data in "demo.KNT"'
check "plain exit question after the save" contains out "OK to EXIT module ** KNTR ** ? (yes/no)"
check "data file written" test -f demo.KNT

# The file's records: spline profile, box, reference point, then each curve
# with its count, closed flag and parameterization, and each point's number,
# type and coordinates, with the weight of a knuckle behind it.
tail -n +13 demo.KNT >records
cat >expected <<'EOF'
1 0.01 2
0.0 10.0 0.0 5.0
0.0 0.0
5 T 2
1 2 1.0 1.0
2 1 3.0 1.0
1.0
3 2 4.0 3.0
4 2 2.0 4.0
5 2 1.0 3.0
4 F 2
1 1 6.0 1.0
1.0
2 1 8.0 1.0
1.0
3 1 9.0 3.0
1.0
4 1 7.0 4.0
1.0
EOF
check "saved records" diff -u expected records

# A second session loads the project's profile at its start and prints the
# first curve, the current one after a load.
run_kntr $'demo\n\n\n5\n1\n\n\n9\nyes\n'
check "second session took every answer" bash -c "! grep -qE 'undefined constant|Input must be|Wrong number' out"
check "second session exit status 0" test "$status" -eq 0
check "loaded outline" contains out "Number of curves .................................. :    2"
check "loaded row 1" grep -qxF -- '!    1 !  1.000E+00 !  1.000E+00 !          - ! Continous curvature !' out
check "loaded knuckle" grep -qxF -- '!    2 !  3.000E+00 !  1.000E+00 !  1.000E+00 ! Knuckle             !' out
check "loaded row 5" grep -qxF -- '!    5 !  1.000E+00 !  3.000E+00 !          - ! Continous curvature !' out
finish
