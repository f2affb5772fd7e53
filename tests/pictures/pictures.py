#!/usr/bin/python3
"""Makes pictures of every kind that kolink image reads, and says what is in others.

    pictures.py make FOLDER              by Pillow, a reader and writer that is not ours
    pictures.py same A B [MOST]          whether the samples of two differ by at most so much
    pictures.py says FILE WHAT           mode, dpi, orientation, description, author, xmp, iptc, icc,
                                         subsampling, adobe
    pictures.py plain IN.jpg OUT.jpg     a CMYK picture without Adobe's mark, its samples the other way
    pictures.py broken IN OUT HOW        cut, bits or crc: damaged
    pictures.py claims FILE KIND         a picture of 60,000 x 60,000 pixels in a few hundred bytes
"""

from __future__ import annotations

import struct
import sys
import zlib
from pathlib import Path

import numpy as np
from PIL import Image, PngImagePlugin

Image.MAX_IMAGE_PIXELS = None
XMP = b'<x:xmpmeta xmlns:x="adobe:ns:meta/">kept</x:xmpmeta>'
IPTC = bytes([0x1C, 2, 120, 0, 7]) + b"caption"


def levels() -> np.ndarray:
    y, x = np.mgrid[0:61, 0:83]
    return np.stack([x * 255 // 83, y * 255 // 61, (x + y) * 255 // 144], -1).astype(np.uint8)


def resources() -> bytes:
    return b"8BIM" + struct.pack(">HHI", 0x0404, 0, len(IPTC)) + IPTC + b"\0" * (len(IPTC) % 2)


def with_markers(path: Path, markers: list[tuple[int, bytes]]) -> None:
    data = path.read_bytes()
    path.write_bytes(data[:2] + b"".join(bytes([0xFF, 0xE0 + number]) + struct.pack(">H", len(body) + 2) + body
                                         for number, body in markers) + data[2:])


def make(folder: Path) -> None:
    colours = levels()
    image = Image.fromarray(colours)
    exif = Image.Exif()
    exif[0x0112], exif[0x010E], exif[0x013B] = 6, "A description", "Somebody"
    image.save(folder / "rgb.png")
    image.save(folder / "rgb.tif", compression="tiff_lzw", dpi=(300, 200))
    image.convert("RGBA").save(folder / "alpha.png")
    Image.fromarray(colours[..., 0]).save(folder / "grey.png")
    Image.fromarray(colours[..., 0].astype(np.uint16) * 257).save(folder / "grey16.png")
    image.quantize(256, dither=0).save(folder / "palette.png")
    image.quantize(256, dither=0).convert("RGB").save(folder / "of-palette.png")
    image.save(folder / "fine.jpg", quality=97, subsampling=0)
    image.save(folder / "coarse.jpg", quality=60, subsampling=2)
    image.save(folder / "progressive.jpg", quality=95, progressive=True)
    Image.fromarray(colours[..., 0]).save(folder / "grey.jpg", quality=95)
    ink = np.concatenate([colours, colours[::-1, :, :1]], -1)
    Image.fromarray(ink, "CMYK").save(folder / "cmyk.tif")
    Image.fromarray(ink, "CMYK").save(folder / "adobe.jpg", quality=98, subsampling=0)
    profile = Path(sys.argv[3]).read_bytes()
    image.save(folder / "told.jpg", quality=90, dpi=(300, 200), exif=exif.tobytes(), icc_profile=profile)
    with_markers(folder / "told.jpg", [(1, b"http://ns.adobe.com/xap/1.0/\0" + XMP), (13, b"Photoshop 3.0\0" + resources())])
    notes = PngImagePlugin.PngInfo()
    notes.add_itxt("XML:com.adobe.xmp", XMP.decode())
    image.save(folder / "told.png", dpi=(300, 200), exif=exif.tobytes(), icc_profile=profile, pnginfo=notes)
    two = [Image.fromarray(colours), Image.fromarray(colours[::-1])]
    two[0].save(folder / "pages.tif", save_all=True, append_images=two[1:])


def samples(path: str) -> np.ndarray:
    with Image.open(path) as image:
        if "orientation" in image.info or getattr(image, "tag_v2", {}).get(274, 1) != 1:
            raise SystemExit(f"{path}: Pillow would turn it")
        return np.array(image).astype(int)


def same(one: str, other: str, most: int) -> bool:
    a, b = samples(one), samples(other)
    if a.shape != b.shape:
        print(a.shape, b.shape)
        return False
    print("off by", np.abs(a - b).max())
    return bool(np.abs(a - b).max() <= most)


def says(path: str, what: str) -> str:
    data = Path(path).read_bytes()
    with Image.open(path) as image:
        if what == "mode":
            return f"{image.mode} {image.width} {image.height}"
        if what == "dpi":
            return " ".join(str(round(float(value))) for value in image.info["dpi"])
        if what in ("orientation", "description", "author"):
            return str(image.getexif().get({"orientation": 0x0112, "description": 0x010E, "author": 0x013B}[what]))
        if what == "icc":
            return str(len(image.info.get("icc_profile") or b""))
        if what == "subsampling":
            return " ".join(f"{h}x{v}" for _, h, v, _ in image.layer)
        if what == "adobe":
            return str(image.info.get("adobe_transform"))
    return str({"xmp": XMP, "iptc": IPTC}[what] in data)


def plain(given: str, made: str) -> None:
    """Without the mark nobody turns the samples: they stand as ink in the file."""
    with Image.open(given) as image:
        quality = image.quantization
        ink = np.array(image)
    # Pillow writes the mark and turns the samples; turned before and with the mark taken out they are plain.
    Image.fromarray(255 - ink, "CMYK").save(made, qtables=quality, subsampling=0)
    data = Path(made).read_bytes()
    at = data.index(b"\xff\xeeX" if b"\xff\xeeX" in data else b"\xff\xee")
    size = struct.unpack(">H", data[at + 2:at + 4])[0]
    Path(made).write_bytes(data[:at] + data[at + 2 + size:])


def broken(given: str, made: str, how: str) -> None:
    data = bytearray(Path(given).read_bytes())
    if how == "cut":
        del data[len(data) * 2 // 3:]
    elif how == "bits":
        at = len(data) * 3 // 4
        data[at:at + 24] = b"\xff" * 24
    else:
        data[data.index(b"iCCP") + 30] ^= 1
    Path(made).write_bytes(data)


def claims(path: str, kind: str) -> None:
    if kind == "png":
        def chunk(name: bytes, body: bytes) -> bytes:
            return struct.pack(">I", len(body)) + name + body + struct.pack(">I", zlib.crc32(name + body))
        Path(path).write_bytes(b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", struct.pack(">IIBBBBB", 60000, 60000, 8, 2, 0, 0, 0)) +
                               chunk(b"IDAT", zlib.compress(bytes(100))) + chunk(b"IEND", b""))
        return
    Image.fromarray(levels()).save(path, format="JPEG", progressive=kind == "progressive")
    data = bytearray(Path(path).read_bytes())
    at = data.index(b"\xff\xc2" if kind == "progressive" else b"\xff\xc0")
    data[at + 5:at + 9] = struct.pack(">HH", 60000, 60000)
    Path(path).write_bytes(data)


if __name__ == "__main__":
    command, arguments = sys.argv[1], sys.argv[2:]
    if command == "make":
        make(Path(arguments[0]))
    elif command == "same":
        sys.exit(0 if same(arguments[0], arguments[1], int(arguments[2]) if len(arguments) > 2 else 0) else 1)
    elif command == "says":
        print(says(arguments[0], arguments[1]))
    else:
        {"plain": plain, "broken": broken, "claims": claims}[command](*arguments)
