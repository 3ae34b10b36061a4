"""Reads and writes the picture files of the tests with the standard library alone."""

import struct
import zlib

SIGNATURE = b"\x89PNG\r\n\x1a\n"


def chunk(kind, data):
    body = kind + data
    return struct.pack(">I", len(data)) + body + struct.pack(">I", zlib.crc32(body))


def write_png(path, rows, palette=None, transparency=None, depth=8):
    """rows: lists of tuples of 1 to 4 samples; with a palette: tuples of one index."""
    samples = len(rows[0][0])
    kind = 3 if palette else {1: 0, 2: 4, 3: 2, 4: 6}[samples]
    form = ">%dH" if depth == 16 else ">%dB"
    raw = b"".join(
        b"\0" + struct.pack(form % (len(row) * samples), *(s for pixel in row for s in pixel))
        for row in rows
    )
    data = SIGNATURE + chunk(
        b"IHDR", struct.pack(">IIBBBBB", len(rows[0]), len(rows), depth, kind, 0, 0, 0)
    )
    if palette:
        data += chunk(b"PLTE", bytes(s for colour in palette for s in colour))
    if transparency:
        data += chunk(b"tRNS", transparency)
    data += chunk(b"IDAT", zlib.compress(raw)) + chunk(b"IEND", b"")
    path.write_bytes(data)


def write_bmp(path, rows):
    """24-bit, bottom row first, rows padded to four bytes."""
    width, height = len(rows[0]), len(rows)
    lines = []
    for row in reversed(rows):
        line = b"".join(bytes((b, g, r)) for r, g, b in row)
        lines.append(line + b"\0" * (-len(line) % 4))
    data = b"".join(lines)
    path.write_bytes(
        b"BM"
        + struct.pack("<IHHI", 54 + len(data), 0, 0, 54)
        + struct.pack("<IiiHHIIiiII", 40, width, height, 1, 24, 0, len(data), 0, 0, 0, 0)
        + data
    )


def unfilter(kind, line, above, step):
    for i in range(len(line)):
        left = line[i - step] if i >= step else 0
        up = above[i]
        corner = above[i - step] if i >= step else 0
        if kind == 1:
            add = left
        elif kind == 2:
            add = up
        elif kind == 3:
            add = (left + up) // 2
        elif kind == 4:
            guess = left + up - corner
            distances = [(abs(guess - v), n) for n, v in enumerate((left, up, corner))]
            add = (left, up, corner)[min(distances)[1]]
        else:
            add = 0
        line[i] = (line[i] + add) & 255


def read_png(path):
    """Rows of tuples of 3 or 4 samples, of an 8-bit picture that is not interlaced."""
    return parse_png(path.read_bytes())


def parse_png(data):
    """The same, of a file's bytes."""
    assert data[:8] == SIGNATURE, "not a PNG"
    position, packed, header = 8, b"", None
    while position < len(data):
        length, kind = struct.unpack(">I4s", data[position : position + 8])
        body = data[position + 8 : position + 8 + length]
        (crc,) = struct.unpack(">I", data[position + 8 + length : position + 12 + length])
        assert crc == zlib.crc32(kind + body), "damaged chunk"
        if kind == b"IHDR":
            header = struct.unpack(">IIBBBBB", body)
        elif kind == b"IDAT":
            packed += body
        position += 12 + length
    assert kind == b"IEND", "cut off"
    width, height, depth, colour, _, _, interlace = header
    assert depth == 8 and colour in (2, 6) and interlace == 0, header
    step = 4 if colour == 6 else 3
    raw = zlib.decompress(packed)
    assert len(raw) == (width * step + 1) * height, "wrong amount of pixels"
    above, rows = bytearray(width * step), []
    for y in range(height):
        start = y * (width * step + 1)
        line = bytearray(raw[start + 1 : start + 1 + width * step])
        unfilter(raw[start], line, above, step)
        rows.append([tuple(line[x * step : x * step + step]) for x in range(width)])
        above = line
    return rows
