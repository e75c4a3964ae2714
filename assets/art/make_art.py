#!/usr/bin/env python3
"""Makes the PNG files of the toolbar, the cursors and the icon, and the camera labels, from their sources. Needs
rsvg-convert (librsvg2-bin).

Toolbar images and the icon are SVG. Cursors are text, a character a pixel: "#" black, "o" white, "." clear; every
clear pixel that touches a black one from outside becomes white, so that a cursor shows on any ground. A "-" stays clear.

The labels are one file: eight images of 80 by 16 bytes, 0 or 255, bottom row first, from the last camera to the first.
Their letters are text too: the letter, then its rows from the top, "#" ink; nine rows stand above the baseline.
"""

import pathlib
import struct
import subprocess
import zlib

ASSETS = pathlib.Path(__file__).resolve().parent.parent
CURSOR_SIDE = 32
LABEL_WIDTH, LABEL_HEIGHT = 80, 16
# Words with the row of their baseline, counted from the bottom.
LABELS = [("Bottom", 5), ("Top", 5), ("Right", 5), ("Left", 4), ("Back", 5), ("Front", 5), ("Ortho", 5), ("Perspective", 5)]
COLORS = {"#": b"\0\0\0\xff", "o": b"\xff\xff\xff\xff", ".": b"\0\0\0\0", "-": b"\0\0\0\0"}


def chunk(kind, data):
    return struct.pack(">I", len(data)) + kind + data + struct.pack(">I", zlib.crc32(kind + data))


def write_png(path, rows):
    """Rows of RGBA pixels."""
    header = struct.pack(">IIBBBBB", len(rows[0]), len(rows), 8, 6, 0, 0, 0)
    data = b"".join(b"\0" + b"".join(row) for row in rows)
    path.write_bytes(
        b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", header) + chunk(b"IDAT", zlib.compress(data, 9)) + chunk(b"IEND", b"")
    )


def with_edge(rows):
    def touches_black(x, y):
        around = [rows[b][a] for b in range(max(0, y - 1), y + 2) for a in range(max(0, x - 1), x + 2)
                  if b < CURSOR_SIDE and a < CURSOR_SIDE]
        return "#" in around

    return ["".join("o" if c == "." and touches_black(x, y) else c for x, c in enumerate(row))
            for y, row in enumerate(rows)]


def draw_cursor(source, target):
    rows = source.read_text().split()
    if len(rows) != CURSOR_SIDE or any(len(row) != CURSOR_SIDE for row in rows):
        raise SystemExit(f"{source.name}: not {CURSOR_SIDE} by {CURSOR_SIDE}")
    write_png(target, [[COLORS[c] for c in row] for row in with_edge(rows)])


def read_letters(source):
    blocks = [block.split() for block in source.read_text().split("\n\n")]
    return {block[0]: block[1:] for block in blocks}


def draw_label(word, baseline, letters):
    image = bytearray(LABEL_WIDTH * LABEL_HEIGHT)
    column = 1
    for letter in word:
        rows = letters[letter]
        for down, row in enumerate(rows):
            for right, c in enumerate(row):
                if c == "#":
                    image[(baseline + 8 - down) * LABEL_WIDTH + column + right] = 255
        column += len(rows[0]) + 1
    return bytes(image)


def draw_svg(source, target, side):
    subprocess.run(["rsvg-convert", "-w", str(side), "-h", str(side), "-o", target, source], check=True)


def main():
    for source in sorted((ASSETS / "art" / "cursors").glob("*.txt")):
        draw_cursor(source, ASSETS / "cursors" / (source.stem + ".png"))
    for source in sorted((ASSETS / "art" / "toolbar").glob("*.svg")):
        draw_svg(source, ASSETS / "toolbar" / (source.stem + ".png"), 16)
        draw_svg(source, ASSETS / "toolbar" / (source.stem + "@2x.png"), 32)
    letters = read_letters(ASSETS / "art" / "labels" / "letters.txt")
    labels = b"".join(draw_label(word, baseline, letters) for word, baseline in LABELS)
    (ASSETS / "labels" / "cameras.bin").write_bytes(labels)
    icon = ASSETS / "icon" / "beastwright.svg"
    small = ASSETS / "icon" / "beastwright-small.svg"
    for side in (16, 24, 32, 48, 64, 128, 256):
        draw_svg(small if side <= 24 else icon, ASSETS / "icon" / f"beastwright-{side}.png", side)
    draw_svg(icon, ASSETS / "icon" / "beastwright.png", 64)


if __name__ == "__main__":
    main()
