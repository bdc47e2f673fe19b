# Dragging points in the headless window with dynamic graphics on: the
# pointer moves come as "#move X, Y" lines and a "#pick" or RETURN ends the
# drag. Without auto redraw a rubber line follows the pointer; with it the
# curve itself. A horizontal drag keeps Y; Escape ("$") puts the point
# back; a position on a neighbour is skipped; positions are clamped to the
# box; the whole drag is one step of undo.
pictures="$(cd "$(dirname "$0")" && pwd)/pictures.py"
profile="$(cd "$(dirname "$0")" && pwd)/profile_file.py"
source "$(dirname "$0")/lib.sh"
unset DISPLAY
mkdir -p "$HOME/T-cnfg"

box=$'1\n0,10\n0,5\n'
curve=$'2\n1\n0,0\n1,1\n1\n3,2\n1\n5,2.5\n1\n7,2\n1\n9,1\n1\n\nno\n'
save() { session+=$'#item 6\n#item 12\n8\n3\n'"$1"$'\n\n\n11\n4\n#item 4\n'; }
session="$box$curve"$'4\n#button DYN\n#item 4\n#item 2\n'
# Free: point 3 to (6, 3), ended by a pick, with a picture on the way.
session+=$'#item 1\n3\n#move 5, 3\n#move 5.5, 3.5\n#picture rubber.png\n#pick 6, 3\n$\n'
# Horizontal with auto redraw: point 2 to X = 3.8, ended by RETURN.
# An undo in the middle of it is refused (the error waits for a line).
session+=$'#button ADR\n#item 2\n2\n#move 3.5, 1\n#picture dragging.png\n#undo\n\n#move 3.8, 0\n\n$\n'
# Free: point 4 dragged and put back; point 5 onto point 4 (skipped);
# point 1 far out of the box.
session+=$'#item 1\n4\n#move 8, 4\n$\n5\n#move 7, 2\n\n1\n#move -3, 9\n\n$\n#item 7\n#picture dragged.png\n'
save dragged.knt
session+=$'#item 2\n#undo\n#item 7\n'
save undone.knt
session+=$'#item 6\n#item 12\n9\nyes\n'
run_kntr "demo"$'\nyes\nACME\nme\n'"$session"
check "exit status 0" test "$status" -eq 0
check "saves written" test -s dragged.knt -a -s undone.knt
point() { python3 "$profile" point "$1" 1 "$2"; }
check "a pick ends the drag where it is" test "$(point dragged.knt 3)" = "6.0 3.0"
check "no undo in the middle of a drag" contains out "Finish the present command before undo or redo!"
check "a horizontal drag keeps Y" test "$(point dragged.knt 2)" = "3.8 2.0"
check "Escape puts the point back" test "$(point dragged.knt 4)" = "7.0 2.0"
check "a position on the neighbour is skipped" test "$(point dragged.knt 5)" = "9.0 1.0"
check "positions are clamped to the box" test "$(point dragged.knt 1)" = "0.0 5.0"
check "one undo takes back the whole last drag" test "$(point undone.knt 1)" = "1.0 1.0"
check "and no more" test "$(point undone.knt 2)" = "3.8 2.0"
# The curve is red (current); the rubber line is green, and goes.
check "a rubber line follows the pointer" test "$(python3 "$pictures" count rubber.png green)" -gt 100
check "no rubber line after the drag" test "$(python3 "$pictures" count dragged.png green)" -lt 20
check "with auto redraw the curve follows" test "$(python3 "$pictures" count dragging.png red)" -gt 300
finish
