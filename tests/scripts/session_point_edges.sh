# The edges of point editing in the headless window: refused answers that
# leave the profile as it was; insertion at both ends of an open curve (the
# extrapolated points grow the box) and on the closing segment of a closed
# one; fairing the end point of an open curve, free (it stays) and along a
# given vector (as kntr-tool fair moves it); deleting a curve's points down
# to two and on until the curve goes.
pictures="$(cd "$(dirname "$0")" && pwd)/pictures.py"
profile="$(cd "$(dirname "$0")" && pwd)/profile_file.py"
source "$(dirname "$0")/lib.sh"
unset DISPLAY
mkdir -p "$HOME/T-cnfg"

box=$'1\n0,10\n0,5\n'
# Curve 1 open, curve 2 closed (a rectangle about (7, 3.75)), curve 3 open.
open=$'2\n1\n0,0\n1,1\n1\n3,2\n1\n5,2.5\n1\n7,2\n1\n9,1\n1\n\nno\n'
closed=$'2\n6,3\n1\n8,3\n1\n8,4.5\n1\n6,4.5\n1\n\nyes\n'
short=$'2\n2,4\n1\n3,4.5\n1\n4,4\n1\n\nno\n'
save() { session+=$'#item 6\n#item 12\n8\n3\n'"$1"$'\n\n\n11\n4\n#item 4\n'; }
# Curve 1 current, point editing.
session="$box$open$closed$short"$'4\n#item 1\n#item 4\n'
save r0.knt
# Refused: segments -1 and 99, a pick near no curve; at a given Y on
# segment 0 of an open curve, and a Y the segment does not reach; points 0
# and 99, a pick near no point; the snap line before there is one. Each
# error waits for a line.
session+=$'#item 1\n#item 1\n-1\n\n99\n\n#pick 4.5, 0.3\n\n$\n#item 5\n'
session+=$'#item 1\n#item 3\n0\n\n2\n10\n\n$\n#item 5\n'
session+=$'#item 2\n#item 1\n0\n\n99\n\n#pick 4.5, 0.3\n\n$\n#item 4\n\n#item 7\n'
save r1.knt
# Insert on segment 0 and on the last segment of curve 1, taking the
# proposed points.
session+=$'#item 1\n#item 1\n0\n\n$\n#item 1\n6\n\n$\n#item 5\n#picture ends.png\n'
save ends.knt
# Curve 2 current: insert on segment 0, the closing segment.
session+=$'#item 6\n#item 1\n#item 4\n#item 1\n#item 1\n0\n\n$\n#item 5\n#picture closed.png\n'
save closed.knt
# Fair the first point of curve 1 (picked), free, then along (0, 1).
session+=$'#item 3\n#item 1\n#pick -1, 0\n#item 9\n'
save endfree.knt
session+=$'#item 3\n#item 6\n1\n0,1\n#picture endfaired.png\n#item 9\n'
save endvector.knt
# Curve 3: delete its middle point, then the other two (the message of the
# removed curve waits for a line).
session+=$'#item 4\n#pick 3, 4.5\n$\n#picture two.png\n'
save two.knt
session+=$'#item 4\n#pick 4, 4\n#pick 2, 4\n\n#picture removed.png\n'
save removed.knt
session+=$'#item 6\n#item 12\n9\nyes\n'
run_kntr "demo"$'\nyes\nACME\nme\n'"$session"
check "exit status 0" test "$status" -eq 0
for message in "Segment index cannot be negative!" "Segment index exceeds available profile segments!" \
  "Non-precise selection of profile curve/segment!" "Segment has no point at the given Y-coordinate!" \
  "Segment index must be a segment between two profile points!" "Point number must be positive!" \
  "Point number exceeds available profile points!" "Non-precise selection of point!" \
  "Snap line must be defined first!" "Profile curve is deleted!"; do
  check "says: $message" contains out "$message"
done
check "refusals change nothing" python3 "$profile" same r1.knt r0.knt
point() { python3 "$profile" point "$1" "$2" "$3"; }
count() { python3 "$profile" count "$1" "$2"; }
near() { awk -v a="$1" -v b="$2" -v e="$3" 'BEGIN { d = a - b; exit !(d <= e && d >= -e) }'; }

# Open curve: the first point reflected through the second, the last
# through the one before; the box grows to the curve plus a tenth.
check "two points more on the open curve" test "$(count ends.knt 1)" -eq 7
check "segment 0 proposes start + (start - next)" test "$(point ends.knt 1 1)" = "-1.0 0.0"
check "the last segment proposes end + (end - previous)" test "$(point ends.knt 1 7)" = "11.0 0.0"
read -r xmin xmax ymin ymax <<<"$(python3 "$profile" box ends.knt)"
check "box grown left to -2 ($xmin)" near "$xmin" -2 0.01
check "box grown right to 12.2 ($xmax)" near "$xmax" 12.2 0.01
check "box kept below and above ($ymin, $ymax)" test "$ymin" = "0.0" -a "$ymax" = "5.0"

# Closed curve: the new first point is the middle of the closing segment.
check "one point more on the closed curve" test "$(count closed.knt 2)" -eq 5
read -r x y <<<"$(point closed.knt 2 1)"
check "new point on the closing segment's middle ($x, $y)" near "$y" 3.75 1e-9
check "the closing segment bulges out (x = $x)" awk -v x="$x" 'BEGIN { exit !(x < 6 && x > 5) }'
check "the old first point follows" test "$(point closed.knt 2 2)" = "6.0 3.0"

# End point fairing.
check "free fairing keeps an open curve's end" test "$(point endfree.knt 1 1)" = "-1.0 0.0"
"$KNTR_TOOL" fair endfree.knt 1 1 --along 0,1 -o tool.knt >/dev/null
read -r fx fy <<<"$(point endvector.knt 1 1)"
read -r tx ty <<<"$(point tool.knt 1 1)"
check "fairing along (0, 1) as the tool ($fx, $fy against $tx, $ty)" \
  awk -v a="$fx" -v b="$fy" -v c="$tx" -v d="$ty" 'BEGIN { exit !((a-c)^2 + (b-d)^2 < 1e-6 && a == -1) }'

# Deletion down to two points, then the curve goes.
check "three points down to two" test "$(count two.knt 3)" -eq 2
check "the end points stay" test "$(point two.knt 3 1) $(point two.knt 3 2)" = "2.0 4.0 4.0 4.0"
check "the curve with its last point goes" test "$(python3 "$profile" curves removed.knt)" -eq 2
check "the other curves stay" test "$(count removed.knt 2)" -eq 5
for shot in ends closed endfaired two removed; do
  check "$shot picture written" test -s "$shot.png"
done
finish
