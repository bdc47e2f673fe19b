# Point editing in the headless window, each change saved and read back:
# a point inserted on a segment at a given X lies on the curve as it was;
# a horizontal move keeps Y; a point moved away and faired back lands where
# kntr-tool fair puts it from the same file; a deleted point is gone and
# the others close up. Each step writes a picture of the change.
pictures="$(cd "$(dirname "$0")" && pwd)/pictures.py"
profile="$(cd "$(dirname "$0")" && pwd)/profile_file.py"
source "$(dirname "$0")/lib.sh"
unset DISPLAY
mkdir -p "$HOME/T-cnfg"

box=$'1\n0,10\n0,5\n'
curve=$'2\n1\n0,0\n1,1\n1\n3,2\n1\n5,2.5\n1\n7,2\n1\n9,1\n1\n\nno\n'
# Leave the window, save under a name, come back to point editing.
save() { session+=$'#item 6\n#item 12\n8\n3\n'"$1"$'\n\n\n11\n4\n#item 4\n'; }
# Insert at a given X (row 2) on segment 2, X = 4; the segment question
# comes again, a cancel ends it.
insert=$'#item 1\n#item 2\n2\n4\n$\n#item 5\n#picture inserted.png\n'
# Move horizontally (row 2) point 3 to X = 4.6.
move=$'#item 2\n#item 2\n3\n4.6\n$\n#item 7\n#picture moved.png\n'
# Move point 4 up (row 3) to Y = 4, save, then fair it freely.
displace=$'#item 2\n#item 3\n4\n4\n$\n#item 7\n'
fair=$'#item 3\n#item 1\n4\n#picture faired.png\n#item 9\n'
# Delete point 2.
delete=$'#item 4\n2\n$\n#picture deleted.png\n'
session="$box$curve"$'8\n3\nstart.knt\n\n\n11\n4\n#item 4\n'
session+="$insert"; save inserted.knt; session+="$move"; save moved.knt
session+="$displace"; save displaced.knt; session+="$fair"; save faired.knt
session+="$delete"; save deleted.knt; session+=$'#item 6\n#item 12\n9\nyes\n'
run_kntr "demo"$'\nyes\nACME\nme\n'"$session"
check "exit status 0" test "$status" -eq 0
check "modification menu" contains out "PROFILE CURVE MODIFICATI"
check "insertion menu" contains out "CURVE POINT INSERTION"
check "all saves written" test -s inserted.knt -a -s moved.knt -a -s displaced.knt -a -s faired.knt -a -s deleted.knt
point() { python3 "$profile" point "$1" 1 "$2"; }
count() { python3 "$profile" count "$1" 1; }

# Insertion: one more point, the third at X = 4 exactly, on the old curve
# (its polyline, to the profile's accuracy of 0.01).
check "insertion adds a point" test "$(count inserted.knt)" -eq 6
read -r x y <<<"$(point inserted.knt 3)"
check "inserted point at X = 4 ($x)" test "$x" = "4.0"
"$KNTR_TOOL" polyline start.knt >start.txt
curve_y=$(awk -v X=4 '/^curve/ {n++} n == 1 && NF == 2 && $1 ~ /^[0-9.-]+$/ {
  if (px != "" && (px - X) * ($1 - X) <= 0 && $1 != px) { print py + (X - px) * ($2 - py) / ($1 - px); exit }
  px = $1; py = $2 }' start.txt)
check "inserted point on the old curve ($y against $curve_y)" \
  awk -v a="$y" -v b="$curve_y" 'BEGIN { d = a - b; exit !(b != "" && d < 0.01 && d > -0.01) }'
check "the other points stay" test "$(point inserted.knt 4)" = "$(point start.knt 3)"

# The horizontal move keeps Y and takes the new X.
read -r x y <<<"$(point moved.knt 3)"
read -r x0 y0 <<<"$(point inserted.knt 3)"
check "horizontal move to X = 4.6 ($x)" test "$x" = "4.6"
check "horizontal move keeps Y ($y)" test "$y" = "$y0"

# Fairing: point 4 moved up to Y = 4, faired back as the tool fairs it.
check "displaced to Y = 4" test "$(point displaced.knt 4)" = "5.0 4.0"
"$KNTR_TOOL" fair displaced.knt 1 4 -o tool.knt >/dev/null
read -r fx fy <<<"$(point faired.knt 4)"
read -r tx ty <<<"$(point tool.knt 4)"
check "faired point ($fx, $fy) where the tool puts it ($tx, $ty)" \
  awk -v a="$fx" -v b="$fy" -v c="$tx" -v d="$ty" 'BEGIN { exit !((a-c)^2 + (b-d)^2 < 1e-6 && b < 3.9) }'

# Deletion: one point less, point 2 now the old point 3.
check "deletion removes a point" test "$(count deleted.knt)" -eq 5
check "following points move down" test "$(point deleted.knt 2)" = "$(point faired.knt 3)"

# The pictures show each change: the curve (red, current) moves.
for shot in inserted moved faired deleted; do
  check "$shot picture written" test -s "$shot.png"
done
check "the fairing changed the picture" test "$(python3 "$pictures" count faired.png red)" -ne "$(python3 "$pictures" count moved.png red)"
finish
