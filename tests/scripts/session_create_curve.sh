# Curves made in the window: a closed spline of six points by picks, one of
# them made a knuckle, a second curve by keyed points and then deleted, and
# a creation cancelled; the saved file holds exactly the first curve.
pictures="$(cd "$(dirname "$0")" && pwd)/pictures.py"
source "$(dirname "$0")/lib.sh"
unset DISPLAY

box=$'1\n0,10\n0,5\n'
# Create (3) in an empty profile: spline type (1), reference point keyed.
create=$'4\n#item 3\n#item 1\n0.5,0.5\n'
# The pointer moved before the third point: a rubber band follows it.
create+=$'#pick 1, 1\n#pick 3, 1\n#item 1\n#picture noband.png\n#move 4.5, 3.5\n#picture band.png\n#pick 4, 3\n#pick 3, 4\n#pick 2, 4.5\n#pick 1, 3\n#item 3\n'
create+=$'#picture created.png\n'
# A second curve keyed in and taken off with DONE, then deleted (5); a
# third cancelled (row 2) after two points.
second=$'#item 3\n6,1\n8,1\n9,3\n#item 4\n#item 5\n'
cancelled=$'#item 3\n6,2\n7,2\n#item 2\n#picture after.png\n#item 12\n'
save=$'8\n2\n\n\n11\n'
run_kntr "demo"$'\nyes\nACME\nme\n'"$box$create$second$cancelled$save"$'9\nyes\n'
check "exit status 0" test "$status" -eq 0
check "creation menu" contains out "PROFILE CURVE CREATION"
check "pictures written" test -s created.png -a -s after.png
before=$(python3 "$pictures" count noband.png green)
after=$(python3 "$pictures" count band.png green)
check "a rubber band to the pointer ($before -> $after green pixels)" test "$after" -gt $((before + 40))
records() { tail -n +13 demo.KNT; }
check "one curve saved" test "$(records | awk 'NR == 1 {print $3}')" = "1"
check "reference point keyed" test "$(records | awk 'NR == 3')" = "0.5 0.5"
check "six points, closed" test "$(records | awk 'NR == 4 {print $1, $2}')" = "6 T"
# "j type x y": the second point is the knuckle, the others continuous
check "points and types as picked" python3 - <<'PY'
rows = [l.split() for l in open("demo.KNT").read().splitlines()[12:]]
pts = [r for r in rows[4:] if len(r) == 4]
want = [(1, 1, 2), (3, 1, 1), (4, 3, 2), (3, 4, 2), (2, 4.5, 2), (1, 3, 2)]
got = [(float(r[2]), float(r[3]), int(r[1])) for r in pts]
assert len(got) == 6, got
for (x, y, t), (gx, gy, gt) in zip(want, got):
    # a pick lands on the pixel under the point: within a pixel's worth
    assert abs(x - gx) < 0.03 and abs(y - gy) < 0.03 and t == gt, (want, got)
PY
finish
