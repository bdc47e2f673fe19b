# The graphic mode without a display: the window is an off-screen image, and
# a script drives it with graphic event lines. A profile of two curves is
# keyed in; "Manipulate profile" draws it; two zooms with the panel, a
# picture, the grid turned off, a second picture, back to the terminal.
pictures="$(cd "$(dirname "$0")" && pwd)/pictures.py"
source "$(dirname "$0")/lib.sh"
unset DISPLAY
mkdir -p "$HOME/T-cnfg"

box=$'1\n0,10\n0,5\n'
closed=$'2\n1\n0,0\n1,1\n1\n3,1\n2\n4,3\n1\n2,4\n1\n1,3\n1\n\nyes\n'
open=$'2\n6,1\n2\n8,1\n2\n9,3\n2\n7,4\n2\n\nno\n'
# In terminal mode a graphic event is refused, and "#?" lists the events.
terminal=$'#pick 1, 2\n\n#?\n\n'
# Zoom in twice about the closed curve (the second centre an expression),
# picture, grid off in "DISPLAY CONTROL", picture; an SVG of the same.
manipulate=$'4\n#picture whole.png\n#button in\n#pick 3, 2.5\n#button IN\n#pick 6/2, 5/2\n'
manipulate+=$'#picture zoomed.png\n#item 11\n#item 3\n#item 1\n#picture nogrid.png\n#picture nogrid.svg\n'
manipulate+=$'#undo\n\n#item 4\n#item 5\n#item 12\n'
# A second visit: the window shows again; a keyed item number answers too.
again=$'4\n12\n'
run_kntr "demo"$'\nyes\nACME\nme\n'"$box$closed$open$terminal$manipulate$again"$'9\nyes\n'
check "exit status 0" test "$status" -eq 0
check "terminal mode refuses a pick" contains out "Only available in graphic mode"
check "#? lists the graphic events" contains out "PICTURE file"
check "manipulation menu" contains out "PROFILE MANIPULATION"
check "display control menu" contains out "DISPLAY CONTROL"
check "undo with nothing done says so" contains out "Nothing to undo!"
check "pictures written" test -s whole.png -a -s zoomed.png -a -s nogrid.png
check "svg picture parses" python3 -c 'import sys, xml.etree.ElementTree as E; assert E.parse(sys.argv[1]).getroot().tag.endswith("svg")' nogrid.svg
check "back in the main menu twice" test "$(grep -c 'MANIPULATE KNTR DATA' out)" -ge 3
check "headless noted once in the log" test "$(grep -c 'No graphics display' "$HOME/T-cnfg/Tarvik.log")" -eq 1

# The closed curve is green (not current): zoomed in twice it spans more
# than twice as many pixels; the grid crosses (magenta) are there until the
# grid is turned off.
whole=$(python3 "$pictures" span whole.png green)
zoomed=$(python3 "$pictures" span zoomed.png green)
check "curve spans more pixels zoomed ($whole -> $zoomed)" test "$zoomed" -gt $((2 * whole))
check "grid crosses in the whole view" test "$(python3 "$pictures" count whole.png magenta)" -gt 200
check "grid crosses in the zoomed view" test "$(python3 "$pictures" count zoomed.png magenta)" -gt 10
check "no grid crosses after the toggle" test "$(python3 "$pictures" count nogrid.png magenta)" -eq 0
check "the curve stays after the toggle" test "$(python3 "$pictures" span nogrid.png green)" -eq "$zoomed"
finish
