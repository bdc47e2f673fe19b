# Shared by the window sessions: where a model point lands in the window,
# colours read off pictures, and a program fed line by line on an X display.
pictures="$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)/pictures.py"

# predicted W H X Y: the window pixel of model point (X, Y) for the box
# 0..10 x 0..5 on a window of W x H, through the margins of the window's
# frame and equal units on both axes.
predicted() {
  python3 - "$@" <<'PY'
import sys
W, H, x, y = (float(v) for v in sys.argv[1:])
asp = H / W
fx = 0.03 * asp
ml, mr, mb, mt = fx, 0.2 + fx, 0.1 + 0.03, 0.05 + 0.03
x0, x1, y0, y1 = 0.0, 10.0, 0.0, 5.0
a, b = 1 - ml - mr, 1 - mt - mb
w, h = x1 - x0, y1 - y0
r = (a / b) * (h / w) / asp
d = asp * w / a - h / b
ex, ey = (0.0, 0.5 - r / 2) if d > 0 else (0.5 - 1 / (2 * r), 0.0)
X0 = x0 - (ex + ml / a) * w / (1 - 2 * ex)
X1 = x1 + (ex + mr / a) * w / (1 - 2 * ex)
Y0 = y0 - (ey + mb / b) * h / (1 - 2 * ey)
Y1 = y1 + (ey + mt / b) * h / (1 - 2 * ey)
print(round((W - 1) * (x - X0) / (X1 - X0)), round((H - 1) * (1 - (y - Y0) / (Y1 - Y0))))
PY
}
# colour_near FILE X Y COLOUR: a pixel of COLOUR within 2 pixels of (X, Y).
colour_near() {
  python3 - "$pictures" "$@" <<'PY'
import sys
sys.path.insert(0, sys.argv[1].rsplit("/", 1)[0])
import pictures as P
path, x, y, colour = sys.argv[2], int(sys.argv[3]), int(sys.argv[4]), sys.argv[5]
width, height, raw = P.read_png(path)
want = P.COLOURS[colour]
for j in range(y - 2, y + 3):
    for i in range(x - 2, x + 3):
        p = raw[3 * (j * width + i):3 * (j * width + i) + 3]
        if all(abs(c - v) < 90 for c, v in zip(p, want)):
            sys.exit(0)
sys.exit(1)
PY
}
no_colour_near() { ! colour_near "$@"; }
say() { printf '%s' "$1" >>feed; }
# wait_for TEXT: until the transcript shows TEXT (at most 15 s).
wait_for() {
  for _ in $(seq 150); do
    grep -qF -- "$1" out && return 0
    sleep 0.1
  done
  return 1
}
screenshot() { xwd -root -silent | convert xwd:- "$1"; }

# x_session_start: the program on the X display, reading a file that grows,
# so that a session can wait for what it prints before it goes on.
x_session_start() {
  : >feed
  mkfifo pipe
  tail -n +1 -f feed >pipe &
  tailpid=$!
  "$KNTR" <pipe >out 2>&1 &
  kntrpid=$!
}
