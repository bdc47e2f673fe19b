# Digitizing off a drawing: a scanned drawing (PNG) under the plot, the
# digitizer calibrated on three of its known points, a curve of four points
# digitized, and the saved coordinates in the drawing's own units.
here="$(cd "$(dirname "$0")" && pwd)"
source "$here/lib.sh"
source "$here/window_lib.sh"
unset DISPLAY

# The drawing: a white sheet with a blue rectangle, 600 x 300 pixels, for a
# box of 10 x 5 (the drawing fills the box).
python3 - <<'PY'
import struct, zlib
w, h = 600, 300
rows = []
for y in range(h):
    row = bytearray(b"\xff" * (3 * w))
    for x in range(w):
        if (y in (120, 180) and 240 <= x <= 360) or (x in (240, 360) and 120 <= y <= 180):
            row[3 * x:3 * x + 3] = b"\x00\x00\xff"
    rows.append(b"\x00" + bytes(row))
def chunk(kind, body):
    return struct.pack(">I", len(body)) + kind + body + struct.pack(">I", zlib.crc32(kind + body))
png = b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", struct.pack(">IIBBBBB", w, h, 8, 2, 0, 0, 0))
png += chunk(b"IDAT", zlib.compress(b"".join(rows))) + chunk(b"IEND", b"")
open("drawing.png", "wb").write(png)
PY
# The same drawing as a JPEG (a scanner's usual form), and a file that is
# no picture at all.
/usr/bin/convert drawing.png -quality 95 drawing.jpg
echo "not a picture" >notes.txt

box=$'1\n0,10\n0,5\n'
# pixel_of U V: "PX, PY", the window pixel under pixel (U, V) of the drawing
# (600 x 300, filling the box 0..10 x 0..5).
pixel_of() {
  read -r px py < <(predicted 1280 960 "$(python3 -c "print($1 / 60)")" "$(python3 -c "print(5 - $2 / 60)")")
  echo "$px, $py"
}
# Digitize profile (3): the drawing under the plot (row 3), then scale the
# digitizer (1) on three points of the plot with the drawing's coordinates:
# in the drawing's units a plot point (u, v) is (2 + u/2, 1 + v/2).
digitize=$'3\n#item 3\ndrawing.png\n#picture underlay.png\n#item 1\n'
digitize+=$'#pick 2, 1\n3,1.5\n#pick 8, 1\n6\n#pick 2, 4\n3\n'
# Create (2): reference point, then the rectangle's four corners by the
# window pixels under the drawing's pixels; DONE.
digitize+=$'#item 2\n#pick 5, 2.5\n'
for corner in "240 180" "360 180" "360 120" "240 120"; do
  digitize+="#pixel $(pixel_of $corner)"$'\n'
done
digitize+=$'#item 3\n#picture digitized.png\n'
# The JPEG under the plot instead; a file that is no picture is refused.
digitize+=$'#underlay drawing.jpg\n#picture jpeg.png\n#underlay notes.txt\n\n#picture none.png\n#item 4\n'
save=$'8\n2\n\n\n11\n'
run_kntr "demo"$'\nyes\nACME\nme\n'"$box$digitize$save"$'9\nyes\n'
check "exit status 0" test "$status" -eq 0
check "digitizing menu" contains out "PROFILE DIGITIZING"
check "the calibration asked for the fix-point" contains out "Digitize a known fix-point"
check "the drawing shows under the plot" test "$(python3 "$pictures" count underlay.png blue)" -gt 100
check "a JPEG drawing shows too" test "$(python3 "$pictures" count jpeg.png blue)" -gt 100
check "a file that is no picture is refused" contains out "Cannot show the drawing"
check "and no drawing stays under the plot" test "$(python3 "$pictures" count none.png blue)" -lt 20
# A window pixel is about 10/990 of the box; in the drawing's units half of
# that is 0.0026.
check "digitized points in the drawing's units, within half a pixel" python3 - <<'PY'
rows = [l.split() for l in open("demo.KNT").read().splitlines()[12:]]
assert rows[2] == ["4.5", "2.25"], rows[2]          # the reference point
pts = [(float(r[2]), float(r[3])) for r in rows[4:] if len(r) == 4]
want = [(4, 2), (5, 2), (5, 2.5), (4, 2.5)]
assert len(pts) == 4, pts
assert all(abs(a - c) < 0.0026 and abs(b - d) < 0.0026 for (a, b), (c, d) in zip(pts, want)), pts
PY
finish
