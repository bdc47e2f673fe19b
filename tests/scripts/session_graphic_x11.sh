# The graphics window on an X display (a virtual one of 1600x1200): the
# profile drawn with the curves' colours where the scaling puts them, a
# click on a menu box, keys typed in the window, a resize that redraws at
# the new size, a close during a wait, and a clean exit with no window left.
here="$(cd "$(dirname "$0")" && pwd)"
if [ -z "${KNTR_UNDER_XVFB:-}" ]; then
  export KNTR_UNDER_XVFB=1
  exec xvfb-run -a -s "-screen 0 1600x1200x24" bash "$0" "$@"
fi
source "$here/lib.sh"

source "$here/window_lib.sh"
x_session_start

# Two straight polyline curves: y = 1 (green, not current) and y = 3 (red,
# the current curve).
say "demo"$'\nyes\nACME\nme\n'$'1\n0,10\n0,5\n'
say $'2\n2\n0,0\n2,1\n8,1\n\n'$'2\n2,3\n8,3\n\n'
say $'4\n'
window_shown() { timeout 15 xdotool search --sync --name '^KNTR$' >/dev/null; }
check "window appears" window_shown
window=$(xdotool search --name '^KNTR$' | head -1)
wait_for "PROFILE MANIPULATION"
sleep 0.5
screenshot first.png
read -r gx gy < <(predicted 1280 960 4.3 1)
read -r rx ry < <(predicted 1280 960 4.3 3)
check "green curve at ($gx, $gy)" colour_near first.png "$gx" "$gy" green
check "red current curve at ($rx, $ry)" colour_near first.png "$rx" "$ry" red
check "no red on the green curve" no_colour_near first.png "$gx" "$gy" red

# A click on the box of item 11, "Display options".
xdotool mousemove 1146 754
sleep 0.2
xdotool click 1
check "a click on a menu box selects it" wait_for "DISPLAY OPTIONS"
# Keys typed in the window: item 5, RETURN.
xdotool key 5 Return
sleep 0.5
check "keys in the window answer" test "$(grep -c 'PROFILE MANIPULATION' out)" -ge 2

# A new size: the picture and the panel are drawn for it.
xdotool windowsize "$window" 1000 700
sleep 1
screenshot resized.png
read -r rx ry < <(predicted 1000 700 4.3 3)
check "red curve redrawn at ($rx, $ry) of the new size" colour_near resized.png "$rx" "$ry" red
check "panel redrawn at the new size" colour_near resized.png 815 637 cyan

# The wheel zooms by 1.25 about the pointer: the pointer's point stays, the
# green curve moves away from it. A middle-button drag moves the picture
# with the pointer.
read -r gx gy < <(predicted 1000 700 4.3 1)
xdotool mousemove "$rx" "$ry"
sleep 0.2
xdotool click 4
sleep 0.7
screenshot wheel.png
zx=$(( rx + (gx - rx) * 5 / 4 )) zy=$(( ry + (gy - ry) * 5 / 4 ))
check "wheel keeps the pointer's point" colour_near wheel.png "$rx" "$ry" red
check "wheel zooms about the pointer: green at ($zx, $zy)" colour_near wheel.png "$zx" "$zy" green
check "green no longer where it stood" no_colour_near wheel.png "$gx" "$gy" green
xdotool mousemove 500 350 mousedown 2
sleep 0.2
xdotool mousemove 540 330
sleep 0.2
xdotool mouseup 2
sleep 0.7
screenshot dragged.png
check "a middle drag pans with the pointer" colour_near dragged.png $((zx + 40)) $((zy - 20)) green

# Closing the window during the wait ends it: back to the terminal menu.
lines=$(grep -c 'MANIPULATE KNTR DATA' out)
xdotool windowclose "$window"
sleep 0.5
check "closing ends the wait" test "$(grep -c 'MANIPULATE KNTR DATA' out)" -gt "$lines"
say $'9\nyes\n'
for _ in $(seq 100); do kill -0 "$kntrpid" 2>/dev/null || break; sleep 0.1; done
wait "$kntrpid"
check "program ends with status 0" test $? -eq 0
check "no X errors" bash -c "! grep -q 'X Error' out"
check "no window left on the display" bash -c "! xdotool search --name '^KNTR$'"
kill "$tailpid" 2>/dev/null
finish
