#!/usr/bin/env python3
"""Make the stroke font and marker files from the Hershey glyphs.

Reads the public-domain Hershey glyphs in the ".jhf" form of Debian's
hershey-fonts-data package and writes the formatted font files and the
marker file "sfmark.fsa".

    mkfonts.py [SOURCE_DIR [OUTPUT_DIR]]

SOURCE_DIR defaults to /usr/share/hershey-fonts, OUTPUT_DIR to the current
directory. The output depends on the glyphs alone, so a second run writes the
same bytes.

Font file: for each character code 32 to 127 in order, a line
"n left right", then n lines "x y pen stroke":
  x, y    the point in font units; y = 0 is the baseline and y = 21 the top
          of a capital, x = 0 the middle of the glyph
  pen     0 moves to the point (a stroke starts there), 1 draws to it
  stroke  the number of the stroke that the point belongs to, from 1
  left, right  where the glyph's box begins and ends along x; the pen
          advances by right - left after the glyph

Marker file: the count of markers, then per marker a line with its point
count and one line "x y pen" per point, x and y as decimals in a square of
-1 to 1 around the marker's centre, pen as in the fonts.
"""

import os
import sys

# Font files and the Hershey glyph sets they are made from. A glyph missing
# from the set (the complex greek set has no Y, Z, y, z) is taken from the
# second set.
FONTS = [
    ("sfsrom", "rowmans", None),   # simplex roman
    ("sfdrom", "rowmand", None),   # duplex roman
    ("sftrom", "rowmant", None),   # triplex roman
    ("sfcrom", "timesr", None),    # complex roman
    ("sfcgre", "greekc", "timesr"),  # complex greek
]

# Baseline and capital height of the roman and greek sets, in the glyphs'
# own downward y.
BASELINE = 9
CAPITAL_TOP = -12

# Markers: glyphs of the marker set (by their place in markers.jhf, from 0)
# with a scale; several glyphs make one marker. Hershey markers have a
# radius of about 7 units, which becomes 1.
MARKER_RADIUS = 7.0
CIRCLE, SQUARE, TRIANGLE, DIAMOND, STAR, OPEN_PLUS, PLUS, CROSS, ASTERISK = range(33, 42)
FILLED_CIRCLE, FILLED_SQUARE, FILLED_UP, FILLED_LEFT, FILLED_DOWN, FILLED_RIGHT = range(42, 48)
MARKERS = [
    [(PLUS, 1.0)],                       # 1 plus: curve points, grid crosses
    [(CIRCLE, 1.0), (PLUS, 1.0)],        # 2 circle with a plus: reference point
    [(CIRCLE, 1.0)],                     # 3 circle
    [(SQUARE, 1.0)],                     # 4 square
    [(CROSS, 1.0)],                      # 5 diagonal cross: interpolated points
    [(TRIANGLE, 1.0)],                   # 6 triangle
    [(DIAMOND, 1.0)],                    # 7 diamond
    [(STAR, 1.0)],                       # 8 star
    [(ASTERISK, 1.0)],                   # 9 asterisk
    [(OPEN_PLUS, 1.0)],                  # 10 outlined plus
    [(FILLED_CIRCLE, 1.5)],              # 11 filled circle
    [(FILLED_SQUARE, 1.5)],              # 12 filled square
    [(FILLED_UP, 1.5)],                  # 13 filled triangle, point up
    [(FILLED_DOWN, 1.5)],                # 14 filled triangle, point down
    [(SQUARE, 1.0), (CROSS, 1.2)],       # 15 square with a cross: snap line ends
    [(FILLED_LEFT, 1.5)],                # 16 filled triangle, point left
    [(FILLED_RIGHT, 1.5)],               # 17 filled triangle, point right
    [(DIAMOND, 1.0), (PLUS, 0.6)],       # 18 diamond with a plus
]


def read_glyphs(path):
    """The glyph records of a .jhf file, continuation lines joined."""
    records = []
    with open(path, encoding="latin-1") as f:
        for line in f:
            line = line.rstrip("\r\n")
            if not line.strip():
                continue
            head = line[:5].strip()
            if records and not (head.isdigit() and line[5:8].strip().isdigit()):
                records[-1] += line
            else:
                records.append(line)
    return records


def decode(record):
    """(left, right, strokes): strokes are lists of (x, y) in glyph units."""
    count = int(record[5:8])
    body = record[8:8 + 2 * count]
    left = ord(body[0]) - ord("R")
    right = ord(body[1]) - ord("R")
    strokes, current = [], []
    for k in range(2, len(body) - 1, 2):
        pair = body[k:k + 2]
        if pair == " R":
            if current:
                strokes.append(current)
            current = []
            continue
        current.append((ord(pair[0]) - ord("R"), ord(pair[1]) - ord("R")))
    if current:
        strokes.append(current)
    return left, right, strokes


def font_text(records, fallback):
    lines = []
    for code in range(32, 128):
        index = code - 32
        left, right, strokes = decode(records[index])
        if not strokes and code != 32 and fallback is not None:
            left, right, strokes = decode(fallback[index])
        points = []
        for number, stroke in enumerate(strokes, start=1):
            for k, (x, y) in enumerate(stroke):
                points.append((x, BASELINE - y, 0 if k == 0 else 1, number))
        lines.append("%4d %4d %4d" % (len(points), left, right))
        for p in points:
            lines.append("%4d %4d %2d %3d" % p)
    return "\n".join(lines) + "\n"


def marker_text(records):
    lines = ["%4d" % len(MARKERS)]
    for parts in MARKERS:
        points = []
        for glyph, scale in parts:
            _, _, strokes = decode(records[glyph])
            for stroke in strokes:
                for k, (x, y) in enumerate(stroke):
                    points.append((scale * x / MARKER_RADIUS, -scale * y / MARKER_RADIUS,
                                   0 if k == 0 else 1))
        lines.append("%4d" % len(points))
        for x, y, pen in points:
            # "+0.0" is avoided so that equal points read as equal text.
            lines.append("%8.4f %8.4f %2d" % (x + 0.0, y + 0.0, pen))
    return "\n".join(lines).replace("-0.0000", " 0.0000") + "\n"


def write(directory, name, text):
    with open(os.path.join(directory, name), "w", encoding="ascii", newline="\n") as f:
        f.write(text)


def main(argv):
    source = argv[1] if len(argv) > 1 else "/usr/share/hershey-fonts"
    output = argv[2] if len(argv) > 2 else "."
    try:
        os.makedirs(output, exist_ok=True)
        for name, glyphs, fallback in FONTS:
            records = read_glyphs(os.path.join(source, glyphs + ".jhf"))
            spare = read_glyphs(os.path.join(source, fallback + ".jhf")) if fallback else None
            if len(records) < 96 or (spare is not None and len(spare) < 96):
                sys.stderr.write("mkfonts: %s.jhf has fewer than 96 glyphs\n" % glyphs)
                return 1
            text = font_text(records, spare)
            write(output, name + ".fsa", text)
            write(output, name + ".psa", text)
        markers = read_glyphs(os.path.join(source, "markers.jhf"))
        write(output, "sfmark.fsa", marker_text(markers))
    except OSError as error:
        sys.stderr.write("mkfonts: %s\n" % error)
        return 1
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv))
