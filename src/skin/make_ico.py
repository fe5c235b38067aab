#!/usr/bin/env python3
"""Packs square RGBA PNG renderings into one Windows .ico file.

Usage: make_ico.py <out.ico> <png>...

Sizes below 256 are stored as 32-bit DIBs with an AND mask, which every icon loader reads; the
256-pixel image stays PNG, as Windows stores large icons. Standard library only."""
import struct
import sys
import zlib


def read_png(path):
    """Width, height and rows of RGBA bytes of an 8-bit RGBA, non-interlaced PNG."""
    data = open(path, "rb").read()
    if data[:8] != b"\x89PNG\r\n\x1a\n":
        raise SystemExit(f"{path}: not a PNG")
    pos, idat, header = 8, b"", None
    while pos < len(data):
        length, kind = struct.unpack(">I4s", data[pos:pos + 8])
        body = data[pos + 8:pos + 8 + length]
        pos += 12 + length
        if kind == b"IHDR":
            header = struct.unpack(">IIBBBBB", body)
        elif kind == b"IDAT":
            idat += body
    width, height, depth, colour, _, _, interlace = header
    if depth != 8 or colour != 6 or interlace != 0:
        raise SystemExit(f"{path}: expected 8-bit RGBA without interlacing")
    raw, stride, rows, prev = zlib.decompress(idat), width * 4, [], bytearray(width * 4)
    for y in range(height):
        kind = raw[y * (stride + 1)]
        line = bytearray(raw[y * (stride + 1) + 1:(y + 1) * (stride + 1)])
        for i in range(stride):
            a = line[i - 4] if i >= 4 else 0
            b = prev[i]
            c = prev[i - 4] if i >= 4 else 0
            if kind == 1:
                line[i] = (line[i] + a) & 0xFF
            elif kind == 2:
                line[i] = (line[i] + b) & 0xFF
            elif kind == 3:
                line[i] = (line[i] + (a + b) // 2) & 0xFF
            elif kind == 4:
                p = a + b - c
                pa, pb, pc = abs(p - a), abs(p - b), abs(p - c)
                line[i] = (line[i] + (a if pa <= pb and pa <= pc else b if pb <= pc else c)) & 0xFF
        rows.append(bytes(line))
        prev = line
    return width, height, rows


def dib(width, height, rows):
    """BITMAPINFOHEADER, bottom-up BGRA pixels, then the AND mask (1 = transparent)."""
    header = struct.pack("<IiiHHIIiiII", 40, width, height * 2, 1, 32, 0, 0, 0, 0, 0, 0)
    pixels, mask_stride, mask = bytearray(), ((width + 31) // 32) * 4, bytearray()
    for row in reversed(rows):
        bits = bytearray(mask_stride)
        for x in range(width):
            r, g, b, alpha = row[x * 4:x * 4 + 4]
            pixels += bytes((b, g, r, alpha))
            if alpha == 0:
                bits[x // 8] |= 0x80 >> (x % 8)
        mask += bits
    return header + bytes(pixels) + bytes(mask)


def main():
    out, images = sys.argv[1], []
    for path in sys.argv[2:]:
        width, height, rows = read_png(path)
        body = open(path, "rb").read() if width >= 256 else dib(width, height, rows)
        images.append((width, height, body))
    images.sort(key=lambda image: image[0])
    blob = struct.pack("<HHH", 0, 1, len(images))
    offset = 6 + 16 * len(images)
    for width, height, body in images:
        blob += struct.pack("<BBBBHHII", width % 256, height % 256, 0, 0, 1, 32, len(body), offset)
        offset += len(body)
    for _, _, body in images:
        blob += body
    open(out, "wb").write(blob)


if __name__ == "__main__":
    main()
