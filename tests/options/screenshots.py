# SPDX-License-Identifier: MIT
"""Screenshots against those that are kept.

    screenshots.py TAKEN KEPT       compares each bitmap TAKEN/<name>.bmp with KEPT/<name>.png
    screenshots.py --keep TAKEN KEPT     makes those the kept ones, for a person to look at before they are committed

Two pictures are alike if they have the same size and no small square of them differs so much that another letter, or
the same letter a pixel further, could stand there. The smoothing of letters may differ.
"""

import pathlib
import struct
import sys
import zlib

import numpy

SQUARE = 8     # pixels
TOLERANCE = 28  # levels of 255, on the average of a square

SIGNATURE = b"\x89PNG\r\n\x1a\n"


def read_bitmap(path):
    """A bitmap of 32 or 24 bits a pixel without compression, as rows of (red, green, blue)."""
    data = pathlib.Path(path).read_bytes()
    start, = struct.unpack_from("<I", data, 10)
    width, height = struct.unpack_from("<ii", data, 18)
    depth, = struct.unpack_from("<H", data, 28)
    stride = (width * depth // 8 + 3) // 4 * 4
    rows = numpy.frombuffer(data, numpy.uint8, stride * abs(height), start).reshape(abs(height), stride)
    pixels = rows[:, :width * depth // 8].reshape(abs(height), width, depth // 8)[:, :, 2::-1]
    return pixels if height < 0 else pixels[::-1]


def write_png(path, pixels):
    height, width, _ = pixels.shape
    rows = numpy.concatenate([numpy.zeros((height, 1), numpy.uint8), pixels.reshape(height, 3 * width)], axis=1)

    def chunk(kind, data):
        return struct.pack(">I", len(data)) + kind + data + struct.pack(">I", zlib.crc32(kind + data))
    head = struct.pack(">IIBBBBB", width, height, 8, 2, 0, 0, 0)
    pathlib.Path(path).write_bytes(SIGNATURE + chunk(b"IHDR", head) + chunk(b"IDAT", zlib.compress(rows.tobytes(), 9)) +
                                   chunk(b"IEND", b""))


def read_png(path):
    """A picture that `write_png` has written."""
    data = pathlib.Path(path).read_bytes()
    width, height = struct.unpack_from(">II", data, 16)
    length, = struct.unpack_from(">I", data, 33)
    rows = numpy.frombuffer(zlib.decompress(data[41:41 + length]), numpy.uint8).reshape(height, 1 + 3 * width)
    return rows[:, 1:].reshape(height, width, 3)


def difference(taken, kept):
    """What is wrong with a picture, in a few words; nothing if it is like the kept one."""
    if taken.shape != kept.shape:
        return "{1} x {0} pixels, and not {3} x {2}".format(*taken.shape[:2], *kept.shape[:2])
    height, width = (size // SQUARE * SQUARE for size in taken.shape[:2])
    apart = numpy.abs(taken.astype(int) - kept.astype(int)).max(axis=2)
    # What is beyond the last whole square belongs to one that ends at the edge.
    for part in (apart[:height, :width], apart[-height:, -width:]):
        squares = part.reshape(height // SQUARE, SQUARE, width // SQUARE, SQUARE).mean(axis=(1, 3))
        if (squares > TOLERANCE).any():
            row, column = (int(place) * SQUARE for place in numpy.argwhere(squares > TOLERANCE)[0])
            return f"{int((squares > TOLERANCE).sum())} squares differ, the first of them near {column}, {row}"
    return None


def compare(taken, kept):
    """What is wrong with the pictures of a folder, a line each."""
    taken, kept = pathlib.Path(taken), pathlib.Path(kept)
    names = {path.stem for path in taken.glob("*.bmp")}
    missing = {path.stem for path in kept.glob("*.png")} - names
    complaints = [f"{name}: not taken" for name in sorted(missing)]
    for name in sorted(names):
        picture = read_bitmap(taken / f"{name}.bmp")
        write_png(taken / f"{name}.png", picture)
        path = kept / f"{name}.png"
        wrong = difference(picture, read_png(path)) if path.exists() else f"none is kept in {kept}"
        if wrong:
            complaints.append(f"{taken / name}.png: {wrong}")
    return complaints


def keep(taken, kept):
    taken, kept = pathlib.Path(taken), pathlib.Path(kept)
    kept.mkdir(parents=True, exist_ok=True)
    for path in kept.glob("*.png"):
        path.unlink()
    for path in taken.glob("*.bmp"):
        write_png(kept / f"{path.stem}.png", read_bitmap(path))


def main(arguments):
    if len(arguments) == 3 and arguments[0] == "--keep":
        keep(*arguments[1:])
        return 0
    if len(arguments) != 2:
        print(__doc__, file=sys.stderr)
        return 2
    complaints = compare(*arguments)
    print("\n".join(complaints) or "all alike")
    return 1 if complaints else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
