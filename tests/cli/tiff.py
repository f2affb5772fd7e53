#!/usr/bin/env python3
"""Makes TIFF pictures and says what is in them; uncompressed, little-endian, mostly of one page.

  tiff.py make FILE WIDTH HEIGHT SAMPLES BITS PHOTOMETRIC SEED   random pixels, 300 dpi
  tiff.py pages FILE COUNT PROFILE   pages with texts and a profile, the last directory last
  tiff.py claim FILE WIDTH HEIGHT COMPRESSION   so many pixels, of which it holds a few bytes
  tiff.py colours FILE      the pixels as lines of numbers, 16-bit samples as 8-bit ones
  tiff.py ramp FILE SAMPLES PHOTOMETRIC   4,096 levels of 16 bits, in CMYK of black alone
  tiff.py levels FILE       how many levels the channel has that has most
  tiff.py tag FILE NUMBER   a tag's values
"""
import random
import struct
import sys

SIZES = {1: 1, 2: 1, 3: 2, 4: 4, 5: 8, 7: 1}
FORMATS = {1: "B", 2: "B", 3: "H", 4: "I", 7: "B"}


def claim(path, width, height, compression):
    entries = [(256, 4, width), (257, 4, height), (258, 3, 8), (259, 3, compression), (262, 3, 2),
               (273, 4, 8 + 2 + 12 * 9 + 4), (277, 3, 3), (278, 4, height), (279, 4, 64)]
    with open(path, "wb") as out:
        out.write(b"II*\0" + struct.pack("<IH", 8, len(entries)))
        for tag, kind, value in entries:
            out.write(struct.pack("<HHII", tag, kind, 1, value))
        out.write(bytes(4) + bytes(range(64)))


def pages(path, count, profile):
    text = b"a text that lies outside"
    with open(profile, "rb") as file:
        icc = file.read()
    out = bytearray(b"II*\0" + bytes(4))
    link = 4  # where it is said where the next directory is
    for number in range(count):
        pixels = len(out)
        out += bytes((number + at * 7) % 256 for at in range(36)) + icc + bytes(len(icc) % 2)
        texts = len(out)
        out += text + b"\0" + bytes(1)
        entries = [(256, 4, 1, 4), (257, 4, 1, 3), (258, 3, 1, 8), (259, 3, 1, 1), (262, 3, 1, 2),
                   (270, 2, len(text), texts), (273, 4, 1, pixels), (277, 3, 1, 3), (278, 4, 1, 3),
                   (279, 4, 1, 36), (305, 2, len(text), texts), (315, 2, len(text), texts),
                   (33432, 2, len(text), texts), (34675, 7, len(icc), pixels + 36)]
        out += bytes(len(out) % 2)
        struct.pack_into("<I", out, link, len(out))
        out += struct.pack("<H", len(entries)) + b"".join(struct.pack("<HHII", *entry) for entry in entries)
        link = len(out)
        out += bytes(4)
    with open(path, "wb") as file:
        file.write(out)


def make(path, width, height, samples, bits, photometric, seed, data=None):
    rng = random.Random(seed)
    data = data or rng.randbytes(width * height * samples * bits // 8)
    description = b"a test\0"
    extra = b""
    entries = []

    def add(tag, kind, values):
        nonlocal extra
        packed = (values if kind in (2, 7) else
                  b"".join(struct.pack("<II", v, 1) for v in values) if kind == 5 else
                  b"".join(struct.pack("<" + FORMATS[kind], v) for v in values))
        entries.append([tag, kind, len(packed) // SIZES[kind], packed])

    add(256, 4, [width])
    add(257, 4, [height])
    add(258, 3, [bits] * samples)
    add(259, 3, [1])
    add(262, 3, [photometric])
    add(270, 2, description)
    add(273, 4, [0])
    add(277, 3, [samples])
    add(278, 4, [height])
    add(279, 4, [len(data)])
    add(282, 5, [300])
    add(283, 5, [200])
    add(296, 3, [2])
    directory = 8
    after = directory + 2 + 12 * len(entries) + 4
    for entry in entries:
        if len(entry[3]) > 4:
            place = after + len(extra)
            extra += entry[3] + b"\0" * (len(entry[3]) % 2)
            entry.append(place)
    start = after + len(extra)
    with open(path, "wb") as out:
        out.write(b"II*\0" + struct.pack("<I", directory) + struct.pack("<H", len(entries)))
        for tag, kind, count, packed, *place in entries:
            value = struct.pack("<I", place[0]) if place else packed.ljust(4, b"\0")
            if tag == 273:
                value = struct.pack("<I", start)
            out.write(struct.pack("<HHI", tag, kind, count) + value)
        out.write(b"\0\0\0\0" + extra + data)


def ramp(path, samples, photometric):
    pixels = []
    for level in range(4096):
        value = (level * 65535 + 2047) // 4095
        pixels += [0, 0, 0, value] if samples == 4 else [value] * samples
    make(path, 64, 64, samples, 16, photometric, 0, struct.pack("<%dH" % len(pixels), *pixels))


def read(path):
    data = open(path, "rb").read()
    assert data[:4] == b"II*\0", "not a little-endian TIFF"
    at = struct.unpack_from("<I", data, 4)[0]
    tags = {}
    for i in range(struct.unpack_from("<H", data, at)[0]):
        tag, kind, count = struct.unpack_from("<HHI", data, at + 2 + 12 * i)
        if kind not in SIZES:
            continue
        size = SIZES[kind] * count
        place = at + 10 + 12 * i if size <= 4 else struct.unpack_from("<I", data, at + 10 + 12 * i)[0]
        if kind == 5:
            pairs = struct.unpack_from("<%dI" % (2 * count), data, place)
            tags[tag] = [pairs[2 * j] / pairs[2 * j + 1] for j in range(count)]
        else:
            tags[tag] = list(struct.unpack_from("<%d%s" % (count, FORMATS[kind]), data, place))
    return data, tags


def colours(path):
    data, tags = read(path)
    assert tags.get(259, [1]) == [1], "compressed"
    pixels = b"".join(data[o:o + n] for o, n in zip(tags[273], tags[279]))
    samples = tags[277][0]
    if tags[258][0] == 16:
        values = [(v * 255 + 32767) // 65535 for v in struct.unpack("<%dH" % (len(pixels) // 2), pixels)]
    else:
        values = list(pixels)
    for i in range(0, len(values), samples):
        print(*values[i:i + samples])


def levels(path):
    data, tags = read(path)
    samples = tags[277][0]
    assert tags[258][0] == 16, "no 16 bits"
    pixels = b"".join(data[o:o + n] for o, n in zip(tags[273], tags[279]))
    values = struct.unpack("<%dH" % (len(pixels) // 2), pixels)
    print(max(len(set(values[channel::samples])) for channel in range(samples)))


if sys.argv[1] == "ramp":
    ramp(sys.argv[2], *map(int, sys.argv[3:]))
elif sys.argv[1] == "levels":
    levels(sys.argv[2])
elif sys.argv[1] == "make":
    make(sys.argv[2], *map(int, sys.argv[3:]))
elif sys.argv[1] == "pages":
    pages(sys.argv[2], int(sys.argv[3]), sys.argv[4])
elif sys.argv[1] == "claim":
    claim(sys.argv[2], *map(int, sys.argv[3:]))
elif sys.argv[1] == "colours":
    colours(sys.argv[2])
else:
    print(*read(sys.argv[2])[1].get(int(sys.argv[3]), ["none"]))
