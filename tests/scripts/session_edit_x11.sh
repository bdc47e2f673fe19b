# Editing with the mouse on an X display (a virtual one of 1600x1200): a
# curve created by real clicks in the window, then one of its points
# dragged with dynamic graphics on (the curve follows the pointer, the next
# click ends the drag); the saved file has the clicked and dragged points.
here="$(cd "$(dirname "$0")" && pwd)"
if [ -z "${KNTR_UNDER_XVFB:-}" ]; then
  export KNTR_UNDER_XVFB=1
  exec xvfb-run -a -s "-screen 0 1600x1200x24" bash "$0" "$@"
fi
source "$here/lib.sh"

source "$here/window_lib.sh"
x_session_start

# click_at X Y: a left click where the model point (X, Y) is drawn.
click_at() {
  read -r px py < <(predicted 1280 960 "$1" "$2")
  xdotool mousemove "$px" "$py"
  sleep 0.2
  xdotool click 1
  sleep 0.4
}

say "demo"$'\nyes\nACME\nme\n'$'1\n0,10\n0,5\n'
say $'4\n'
window_shown() { timeout 15 xdotool search --sync --name '^KNTR$' >/dev/null; }
check "window appears" window_shown
wait_for "PROFILE MANIPULATION"
sleep 0.5
# Create (3) in the empty profile: spline (1), reference point keyed; then
# three clicks, DONE (4).
say $'#item 3\n#item 1\n0,0\n'
check "creation asks for points" wait_for "Select item, digitize point or input coordinates"
click_at 2 1
click_at 5 1
click_at 5 4
screenshot created.png
say $'#item 4\n'
# Dynamic graphics and auto redraw on; modify curve (4), move (2), free (1): pick point 3 by
# a click, move the pointer in steps (the curve follows), click to end.
say $'#button DYN\n#button ADR\n#item 4\n#item 2\n#item 1\n'
check "the move asks for its point" wait_for "Select item, pick or input point number to move"
click_at 5 4
for step in "6 3.8" "6.5 3.6" "7 3.5"; do
  read -r px py < <(predicted 1280 960 $step)
  xdotool mousemove "$px" "$py"
  sleep 0.3
done
screenshot dragging.png
xdotool click 1
sleep 0.5
say $'$\n#item 7\n#item 6\n#item 12\n8\n2\n\n\n11\n9\nyes\n'
for _ in $(seq 100); do kill -0 "$kntrpid" 2>/dev/null || break; sleep 0.1; done
wait "$kntrpid"
check "program ends with status 0" test $? -eq 0
# A click lands on the pixel under the point: within a pixel's worth.
check "saved points: two clicked, one dragged" python3 - <<'PY'
rows = [l.split() for l in open("demo.KNT").read().splitlines()[12:]]
pts = [(float(r[2]), float(r[3])) for r in rows[4:] if len(r) == 4]
want = [(2, 1), (5, 1), (7, 3.5)]
assert len(pts) == 3, pts
assert all(abs(a - c) < 0.03 and abs(b - d) < 0.03 for (a, b), (c, d) in zip(pts, want)), pts
PY
read -r px py < <(predicted 1280 960 7 3.5)
check "the curve followed the pointer" colour_near dragging.png "$px" "$py" red
kill "$tailpid" 2>/dev/null
finish
