"""Reads PNG pictures (8-bit RGB or RGBA, no interlace) with the standard
library, and measures what the window sessions look for in them."""
import shutil
import struct
import subprocess
import sys
import zlib


def read_png(path):
    """Width, height and the pixels as one run of r, g, b bytes: through
    ImageMagick when it is there, by the decoder below otherwise."""
    if shutil.which("convert"):
        size = subprocess.run(["identify", "-format", "%w %h", path], check=True,
                              capture_output=True, text=True).stdout.split()
        raw = subprocess.run(["convert", path, "-depth", "8", "rgb:-"], check=True,
                             capture_output=True).stdout
        return int(size[0]), int(size[1]), raw
    return decode_png(path)


def decode_png(path):
    """Width, height and the pixels as r, g, b bytes, by the standard library."""
    data = open(path, "rb").read()
    assert data[:8] == b"\x89PNG\r\n\x1a\n", path + " is not a PNG"
    pos, idat = 8, b""
    while pos < len(data):
        (length,) = struct.unpack(">I", data[pos:pos + 4])
        kind, body = data[pos + 4:pos + 8], data[pos + 8:pos + 8 + length]
        if kind == b"IHDR":
            width, height, depth, colour = struct.unpack(">IIBB", body[:10])
            assert depth == 8 and colour in (2, 6), "unexpected PNG format"
        elif kind == b"IDAT":
            idat += body
        pos += 12 + length
    raw = zlib.decompress(idat)
    bpp = 4 if colour == 6 else 3
    stride = width * bpp
    rows, prev, p = [], bytearray(stride), 0
    for _ in range(height):
        kind, line = raw[p], bytearray(raw[p + 1:p + 1 + stride])
        p += 1 + stride
        for x in range(stride):
            a = line[x - bpp] if x >= bpp else 0
            b = prev[x]
            c = prev[x - bpp] if x >= bpp else 0
            if kind == 1:
                line[x] = (line[x] + a) & 255
            elif kind == 2:
                line[x] = (line[x] + b) & 255
            elif kind == 3:
                line[x] = (line[x] + (a + b) // 2) & 255
            elif kind == 4:
                est = a + b - c
                pa, pb, pc = abs(est - a), abs(est - b), abs(est - c)
                line[x] = (line[x] + (a if pa <= pb and pa <= pc else b if pb <= pc else c)) & 255
        rgb = bytearray(3 * width)
        for k in range(3):
            rgb[k::3] = line[k::bpp]
        rows.append(bytes(rgb))
        prev = line
    return width, height, b"".join(rows)


COLOURS = {"red": (255, 0, 0), "green": (0, 255, 0), "magenta": (255, 0, 255),
           "cyan": (0, 255, 255), "yellow": (255, 255, 0), "blue": (20, 60, 255),
           "orange": (255, 135, 0)}


def picture_pixels(path, colour):
    """Pixels of a colour inside the picture area (left of the menu, between
    the heading line and the prompt lines)."""
    width, height, raw = read_png(path)
    want = COLOURS[colour]
    x0, x1 = int(0.02 * width), int(0.78 * width)
    found = []
    for y in range(int(0.06 * height), int(0.88 * height)):
        base = 3 * (y * width + x0)
        end = 3 * (y * width + x1)
        reds, greens, blues = raw[base:end:3], raw[base + 1:end:3], raw[base + 2:end:3]
        for i, (r, g, b) in enumerate(zip(reds, greens, blues)):
            if abs(r - want[0]) < 90 and abs(g - want[1]) < 90 and abs(b - want[2]) < 90:
                found.append((x0 + i, y))
    return found


def span(points):
    if not points:
        return 0
    xs = [p[0] for p in points]
    ys = [p[1] for p in points]
    return max(max(xs) - min(xs), max(ys) - min(ys))


if __name__ == "__main__":
    # pictures.py count FILE COLOUR | span FILE COLOUR | pixel FILE X Y
    what = sys.argv[1]
    if what == "count":
        print(len(picture_pixels(sys.argv[2], sys.argv[3])))
    elif what == "span":
        print(span(picture_pixels(sys.argv[2], sys.argv[3])))
    elif what == "pixel":
        width, _, raw = read_png(sys.argv[2])
        at = 3 * (int(sys.argv[4]) * width + int(sys.argv[3]))
        print(*raw[at:at + 3])
