#!/usr/bin/python3
"""Makes the recipes' picture and document, and compares what programs made of them.

    pixels.py make                       page.tif, page.raw, page.pdf
    pixels.py compare FILE PURE NEAR ANY with proof.tif: levels that pure inks, near black, anything
                                         may differ; foreign ink in pure ones is never allowed
    pixels.py page FILE LINK-OF-PAGE     a rendered page.pdf against the link's colours
"""

from __future__ import annotations

import subprocess
import sys
from pathlib import Path

import numpy as np
from PIL import Image

# What page.pdf paints: rectangles of 15 x 30 points, then text, then a ramp of black as a picture.
INKS = [(0, 0, 0, 255), (255, 0, 0, 0), (0, 255, 0, 0), (0, 0, 255, 0), (255, 255, 0, 0), (0, 255, 255, 0),
        (255, 0, 255, 0), (0, 0, 0, 51), (102, 51, 0, 0), (51, 153, 102, 0), (10, 5, 5, 230)]
PURE = 7  # so many of them come out exactly


def picture() -> np.ndarray:
    random = np.random.default_rng(3)
    page = random.integers(0, 256, (64, 64, 4), np.uint8)
    mixes = [(0, 0, 0, 1), (1, 0, 0, 0), (0, 1, 0, 0), (0, 0, 1, 0), (1, 1, 0, 0), (0, 1, 1, 0), (1, 0, 1, 0), (0, 0, 0, 0)]
    for row in range(16):
        page[row] = np.outer(np.arange(64) * 255 // 63, mixes[row % 8])
    page[16:24] = (0, 0, 0, 255)
    page[24:32] = np.array([5, 5, 5, 230]) + random.integers(-5, 6, (8, 64, 4))
    return page


def document() -> bytes:
    paint = [f"{' '.join(f'{ink / 255:.6f}' for ink in inks)} k {10 + at * 15} 10 15 30 re f" for at, inks in enumerate(INKS)]
    paint.append(f"0 g {10 + len(INKS) * 15} 10 15 30 re f")
    paint.append("BT /F 30 Tf 10 60 Td 0 0 0 1 k (Black text) Tj ET")
    paint.append("q 128 0 0 30 10 100 cm /I Do Q")
    content = "\n".join(paint).encode()
    ramp = bytes(level for x in range(64) for level in (0, 0, 0, x * 255 // 63)) * 4
    objects = [
        b"<< /Type /Catalog /Pages 2 0 R >>", b"<< /Type /Pages /Kids [3 0 R] /Count 1 >>",
        b"<< /Type /Page /Parent 2 0 R /MediaBox [0 0 210 150] /Contents 4 0 R "
        b"/Resources << /Font << /F 5 0 R >> /XObject << /I 6 0 R >> >> >>",
        b"<< /Length %d >>\nstream\n%s\nendstream" % (len(content), content),
        b"<< /Type /Font /Subtype /Type1 /BaseFont /Helvetica >>",
        b"<< /Type /XObject /Subtype /Image /Width 64 /Height 4 /ColorSpace /DeviceCMYK "
        b"/BitsPerComponent 8 /Length %d >>\nstream\n%s\nendstream" % (len(ramp), ramp)]
    out, places = b"%PDF-1.4\n", []
    for number, one in enumerate(objects, 1):
        places.append(len(out))
        out += b"%d 0 obj\n%s\nendobj\n" % (number, one)
    table = b"".join(b"%010d 00000 n \n" % place for place in places)
    return out + b"xref\n0 %d\n0000000000 65535 f \n%strailer << /Size %d /Root 1 0 R >>\nstartxref\n%d\n%%%%EOF\n" % (
        len(objects) + 1, table, len(objects) + 1, len(out))


def read(path: str) -> np.ndarray:
    if path.endswith(".raw"):
        return np.fromfile(path, np.uint8).reshape(64, 64, 4).astype(int)
    with Image.open(path) as image:
        assert image.mode == "CMYK", image.mode
        return np.array(image).astype(int)


def through(tool: str, colours: np.ndarray) -> np.ndarray:
    lines = "\n".join(" ".join(map(str, colour)) for colour in colours.tolist())
    told = subprocess.run([tool, "convert", "--link", "proof.icc"], input=lines, capture_output=True, text=True, check=True)
    return np.array([line.split() for line in told.stdout.splitlines()], int)


def compare(path: str, pure: int, near: int, anything: int) -> bool:
    wanted, seen, given = read("proof.tif"), read(path), read("page.raw")
    assert seen.shape == wanted.shape, seen.shape
    off = np.abs(seen - wanted)
    foreign = seen[:24][given[:24] == 0].max()
    found = (int(off[:24].max()), int(off[24:32].max()), int(off.max()))
    print(f"foreign ink {foreign}; off by {found[0]} pure, {found[1]} near black, {found[2]} anywhere")
    return foreign == 0 and found[0] <= pure and found[1] <= near and found[2] <= anything


def page(path: str, tool: str) -> bool:
    seen, good = read(path), True
    assert seen.shape == (150, 210, 4), seen.shape

    def require(what: str, holds: bool) -> None:
        nonlocal good
        if not holds:
            print(what)
        good = good and holds

    wanted = through(tool, np.array(INKS))
    for at, inks in enumerate(INKS):
        block = seen[112:138, 12 + at * 15:23 + at * 15]
        require(f"{inks} becomes {block[5, 5]}, wanted {wanted[at]}",
                bool(np.abs(block - wanted[at]).max() <= (0 if at < PURE else 2)))
    require("grey is not black alone", bool((seen[112:138, 12 + len(INKS) * 15:23 + len(INKS) * 15] == (0, 0, 0, 255)).all()))
    # Text has edges that are not smoothed: black ink, and nothing else, anywhere in it.
    text = seen[60:97].reshape(-1, 4)
    require("text has other inks than black", bool((text[:, :3] == 0).all() and set(text[:, 3]) == {0, 255}))
    require("no text", bool((text[:, 3] == 255).sum() > 500))
    levels = np.array([(0, 0, 0, x * 255 // 63) for x in range(64)])
    ramp, curve = seen[35, 10:138:2], through(tool, levels)
    require("the ramp has other inks than black", bool((seen[22:48, 10:138, :3] == 0).all()))
    require(f"the ramp is off by {np.abs(ramp - curve).max()}", bool(np.abs(ramp - curve).max() <= 2))
    # Paper is everything that nobody painted.
    blank = np.ones(seen.shape[:2], bool)
    blank[109:141, 9:11 + 15 * (len(INKS) + 1)] = blank[55:100] = blank[19:51, 9:139] = False
    require("paper has ink", bool((seen[blank] == 0).all() and blank.sum() > 8000))
    return good


def main(arguments: list[str]) -> bool:
    if arguments[0] == "make":
        made = picture()
        Image.fromarray(made, "CMYK").save("page.tif")
        made.tofile("page.raw")
        Path("page.pdf").write_bytes(document())
        return True
    if arguments[0] == "compare":
        return compare(arguments[1], *map(int, arguments[2:]))
    return page(arguments[1], arguments[2])


if __name__ == "__main__":
    sys.exit(0 if main(sys.argv[1:]) else 1)
