#!/usr/bin/env python3
"""Checks the rendered CorvaneSkin folder: every picture the bar and the login prompt load is
there, with its exact size, as 8-bit RGBA (the opaque backgrounds may be 8-bit RGB), and with the
transparency or the window colour its place needs.

  check_skin.py <CorvaneSkin folder>

Exit status 0 when everything holds; otherwise each fault is printed and the status is 1.
Standard library only: the PNGs are decoded here (non-interlaced, 8 bits per channel, RGB or RGBA).
"""

import struct
import sys
import zlib
from pathlib import Path

WHITE = (255, 255, 255)
DARK_WINDOW = (0x20, 0x20, 0x20)

# name: (width, height, kind, extra)
#   "icon"    bar icon: transparent corners; every partly covered pixel carries the ink colour
#             (extra), so no dark or light fringe shows on either bar; drawing centred on 16, 16
#   "picture" bar picture of several colours: transparent corners
#   "button"  login prompt button: rounded corners, so the corner pixel is (partly) transparent
#   "card"    lower part of the settings card: transparent below its rounded bottom corners
#   "page"    login prompt background: opaque (RGB or RGBA), with the window colour (extra) at
#             its corners
EXPECTED = {
    "logo1.png": (28, 28, "picture", None),
    "tb_normal.png": (32, 32, "icon", (18, 33, 51)),
    "tb_normal1.png": (32, 32, "icon", WHITE),
    "tb_pre.png": (32, 32, "icon", (0, 145, 255)),
    "setting_normal.png": (32, 32, "icon", (16, 33, 51)),
    "setting_normal1.png": (32, 32, "icon", WHITE),
    "setting_pre.png": (32, 32, "icon", (0, 145, 255)),
    "zsk.png": (32, 32, "picture", None),
    "btn_login.png": (124, 40, "button", None),
    "btn_login_dark.png": (124, 40, "button", None),
    "btn_login_hover.png": (124, 40, "button", None),
    "btn_login_unable.png": (124, 40, "button", None),
    "btn_setting01.png": (157, 40, "button", None),
    "btn_setting01_dark.png": (157, 40, "button", None),
    "btn_setting01_hover.png": (157, 40, "button", None),
    "btn_setting01_unable.png": (157, 40, "button", None),
    "btn_setting.png": (437, 122, "card", None),
    "btn_setting_dark.png": (437, 122, "card", None),
    "btn_setting_hover.png": (437, 122, "card", None),
    "btn_setting_hover_dark.png": (437, 122, "card", None),
    "btn_setting_unable_dark.png": (437, 122, "card", None),
    "btn_settingX.png": (874, 244, "card", None),
    "btn_settingX_dark.png": (874, 244, "card", None),
    "btn_settingX_hover.png": (874, 244, "card", None),
    "btn_settingX_hover_dark.png": (874, 244, "card", None),
    "btn_settingX_unable_dark.png": (874, 244, "card", None),
    "bk_login.png": (760, 414, "page", WHITE),
    "bk_login_dark.png": (760, 414, "page", DARK_WINDOW),
    "bk_setting.png": (437, 447, "page", WHITE),
    "bk_setting_dark.png": (437, 447, "page", DARK_WINDOW),
    "bk_settingX.png": (874, 879, "page", WHITE),
    "bk_settingX_dark.png": (874, 879, "page", DARK_WINDOW),
}

# The login button is laid over this rectangle of the login background (x, y, width, height).
LOGIN_BUTTON_AREA = (318, 374, 124, 40)


class Png:
    def __init__(self, path):
        data = Path(path).read_bytes()
        if data[:8] != b"\x89PNG\r\n\x1a\n":
            raise ValueError("not a PNG file")
        pos, idat, self.chunks = 8, b"", []
        while pos < len(data):
            length, kind = struct.unpack(">I4s", data[pos:pos + 8])
            body = data[pos + 8:pos + 8 + length]
            self.chunks.append(kind)
            if kind == b"IHDR":
                (self.width, self.height, self.depth, self.colour_type,
                 _, _, self.interlace) = struct.unpack(">IIBBBBB", body)
            elif kind == b"IDAT":
                idat += body
            pos += 12 + length
        self.rows = None
        self.bpp = {2: 3, 6: 4}.get(self.colour_type)
        if self.depth == 8 and self.bpp and self.interlace == 0:
            self.rows = self._unfilter(zlib.decompress(idat), self.bpp)

    def _unfilter(self, raw, bpp):
        stride = self.width * bpp
        rows, prev, pos = [], bytearray(stride), 0
        for _ in range(self.height):
            ftype, line = raw[pos], bytearray(raw[pos + 1:pos + 1 + stride])
            pos += 1 + stride
            for i in range(stride):
                a = line[i - bpp] if i >= bpp else 0
                b = prev[i]
                c = prev[i - bpp] if i >= bpp else 0
                if ftype == 1:
                    line[i] = (line[i] + a) & 0xFF
                elif ftype == 2:
                    line[i] = (line[i] + b) & 0xFF
                elif ftype == 3:
                    line[i] = (line[i] + (a + b) // 2) & 0xFF
                elif ftype == 4:
                    p = a + b - c
                    pa, pb, pc = abs(p - a), abs(p - b), abs(p - c)
                    pred = a if pa <= pb and pa <= pc else (b if pb <= pc else c)
                    line[i] = (line[i] + pred) & 0xFF
            rows.append(bytes(line))
            prev = line
        return rows

    def pixel(self, x, y):
        """(red, green, blue, alpha); alpha is 255 in an RGB picture."""
        px = tuple(self.rows[y][self.bpp * x:self.bpp * x + self.bpp])
        return px if self.bpp == 4 else px + (255,)


def fringe(rgba, ink):
    """How far (in levels of 255) a partly covered pixel shifts the bar from what the ink colour
    at the same coverage would give. The stored colour of a faint pixel is coarse (it was divided
    by a small alpha), but its effect is small; a dark or light halo has a large effect."""
    *rgb, a = rgba
    return max(abs(c - i) for c, i in zip(rgb, ink)) * a / 255


def check_picture(name, png, kind, extra):
    faults = []
    w, h = png.width, png.height
    corners = [png.pixel(0, 0), png.pixel(w - 1, 0), png.pixel(0, h - 1), png.pixel(w - 1, h - 1)]
    if kind in ("icon", "picture"):
        if any(p[3] != 0 for p in corners):
            faults.append(f"corners not transparent: {corners}")
    if kind == "button":
        if any(p[3] == 255 for p in corners):
            faults.append(f"corners not rounded off (alpha 255): {corners}")
        if png.pixel(w // 2, h // 2)[3] != 255:
            faults.append("button body not opaque")
    if kind == "card":
        if png.pixel(0, h - 1)[3] != 0 or png.pixel(w - 1, h - 1)[3] != 0:
            faults.append("card bottom corners not transparent")
        if png.pixel(w // 2, 0)[3] != 255 or png.pixel(w // 2, h // 2)[3] != 255:
            faults.append("card body not opaque")
    if kind == "page":
        if any(p[3] != 255 for p in (png.pixel(x, y) for y in range(h) for x in range(w))):
            faults.append("background not opaque")
        if any(p[:3] != extra for p in corners):
            faults.append(f"corners {corners} are not the window colour {extra}")
    if kind == "icon":
        ink, xs, ys, ws, worst = extra, 0.0, 0.0, 0.0, None
        for y in range(h):
            for x in range(w):
                px = png.pixel(x, y)
                a = px[3]
                if 0 < a < 255 and fringe(px, ink) > 4 and worst is None:
                    worst = (x, y, px)
                xs, ys, ws = xs + a * (x + 0.5), ys + a * (y + 0.5), ws + a
        if worst:
            faults.append(f"edge pixel at ({worst[0]}, {worst[1]}) is {worst[2]}, not the ink {ink}")
        if ws == 0:
            faults.append("icon is empty")
        else:
            cx, cy = xs / ws, ys / ws
            if abs(cx - w / 2) > 1 or abs(cy - h / 2) > 1:
                faults.append(f"drawing not centred: centre of ink at ({cx:.2f}, {cy:.2f})")
    if name.startswith("bk_login"):
        x0, y0, bw, bh = LOGIN_BUTTON_AREA
        # One pixel round the button too, so that nothing peeps out from under it.
        for y in range(y0 - 1, min(y0 + bh + 1, h)):
            for x in range(x0 - 1, x0 + bw + 1):
                if png.pixel(x, y)[:3] != extra:
                    faults.append(f"login button area not plain window colour at ({x}, {y})")
                    break
            else:
                continue
            break
    return faults


def main(argv):
    if len(argv) != 2:
        print(__doc__, file=sys.stderr)
        return 2
    folder = Path(argv[1])
    faults = 0
    for name, (width, height, kind, extra) in EXPECTED.items():
        path = folder / name
        if not path.is_file():
            print(f"FAIL {name}: missing from {folder}")
            faults += 1
            continue
        try:
            png = Png(path)
        except (ValueError, struct.error, zlib.error) as error:
            print(f"FAIL {name}: unreadable ({error})")
            faults += 1
            continue
        problems = []
        if (png.width, png.height) != (width, height):
            problems.append(f"size {png.width}x{png.height}, expected {width}x{height}")
        allowed = (6, 2) if kind == "page" else (6,)
        if png.depth != 8 or png.colour_type not in allowed or png.interlace != 0:
            problems.append(f"not 8-bit {'RGB(A)' if kind == 'page' else 'RGBA'} "
                            f"(depth {png.depth}, colour type {png.colour_type}, "
                            f"interlace {png.interlace})")
        if not problems and png.rows is not None:
            problems += check_picture(name, png, kind, extra)
        for problem in problems:
            print(f"FAIL {name}: {problem}")
        if problems:
            faults += 1
        else:
            print(f"ok   {name} {width}x{height}")
    print(f"{len(EXPECTED) - faults} of {len(EXPECTED)} pictures pass")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv))
