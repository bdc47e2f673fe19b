# Point types in the window, each checked in the saved file: a leading
# sheer that would lock a closed spline is refused and nothing changes; a
# point made a leading tangent with a keyed direction is saved as a tangent
# record (direction and relative length).
profile="$(cd "$(dirname "$0")" && pwd)/profile_file.py"
source "$(dirname "$0")/lib.sh"
unset DISPLAY

box=$'1\n0,10\n0,5\n'
# Manipulate (4), modify curve (4), point type (5); RETURN back out of the
# type menu (10), the curve menu (6) and the window (12); save; exit.
leave=$'#item 10\n#item 6\n#item 12\n8\n2\n\n\n11\n9\nyes\n'
# A closed curve of four continuous points: point 1 as a leading sheer (4)
# locks it (the message, RETURN), then "$".
closed=$'2\n1\n0,0\n2,1\n1\n6,1\n1\n6,4\n1\n2,4\n1\n\nyes\n'
run_kntr "sheer"$'\nyes\nACME\nme\n'"$box$closed"$'4\n#item 4\n#item 5\n#item 4\n1\n\n$\n'"$leave"
check "first session exit 0" test "$status" -eq 0
check "deadlock refused" contains out "Deadlock of spline would occur if using a leading sheer point here!"
check "types unchanged in the saved file" python3 - "$profile" <<'PY'
import sys
sys.path.insert(0, sys.argv[1].rsplit("/", 1)[0])
import profile_file as P
prof = P.read_profile("sheer.KNT")
types = [p[0] for p in prof["curves"][0]["points"]]
assert types == [2, 2, 2, 2], types
PY

# An open curve: point 3 a leading tangent (6), direction (1) keyed as
# 1, 2; the next point question "$", DONE leaves the tangent menu.
open=$'2\n1\n0,0\n1,1\n1\n3,2\n1\n5,2.5\n1\n7,2\n1\n9,1\n1\n\nno\n'
tangent=$'4\n#item 4\n#item 5\n#item 6\n#item 1\n3\n1,2\n$\n#picture tangent.png\n'
# With dynamic graphics on, point 2's trailing tangent (7) dragged by
# direction and length (3) to (4, 3): a move, then a pick ends it.
tangent+=$'#item 4\n#button DYN\n#item 7\n#item 3\n2\n#move 3.5, 2.5\n#pick 4, 3\n$\n#item 4\n'
tangent+=$'#picture dragged.png\n'
run_kntr "tangent"$'\nyes\nACME\nme\n'"$box$open$tangent$leave"
check "second session exit 0" test "$status" -eq 0
check "leading tangent menu" contains out "LEADING TANGENT"
# The record of point 3: "3 3 x y", then the leading direction and its
# relative length.
check "tangent record saved" python3 - <<'PY'
rows = [l.split() for l in open("tangent.KNT").read().splitlines()[12:]]
at = next(i for i, r in enumerate(rows) if len(r) == 4 and r[0] == "3")
assert rows[at][1] == "3", rows[at]
values = [float(v) for r in rows[at + 1:at + 3] for v in r][:3]
assert values == [1.0, 2.0, 1.0], rows[at:at + 3]
PY
check "picture written" test -s tangent.png -a -s dragged.png
check "dragged trailing tangent saved" python3 - <<'PY'
rows = [l.split() for l in open("tangent.KNT").read().splitlines()[12:]]
at = next(i for i, r in enumerate(rows) if len(r) == 4 and r[0] == "2")
assert rows[at][1] == "4", rows[at]
x, y, length = [float(v) for r in rows[at + 1:at + 3] for v in r][:3]
# the vector from the point (3, 2) to the pointer (4, 3), kept as it was given
assert abs(x - 1.0) < 1e-9 and abs(y - 1.0) < 1e-9 and length > 0.0, rows[at:at + 3]
PY
finish
