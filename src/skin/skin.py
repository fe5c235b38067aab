#!/usr/bin/env python3
"""The CorvaneSkin pictures: their catalogue and the SVG writer.

Every picture is one SVG from svg/: either a finished drawing (*.svg) or a template (*.svg.in)
whose ${name} fields are filled from the values below (colours of a theme or a state, texts,
and the geometry of the 1x and 2x settings card). The build renders each SVG with rsvg-convert
at the picture's exact pixel size.

Bar pictures and every button picture are transparent around their shapes; the login prompt's
backgrounds are opaque and filled with the window colour (#FFFFFF light, #202020 dark) so they
blend into the prompt (rsvg-convert stores such fully opaque pictures as 24-bit RGB).

  skin.py manifest        one line per picture: name,source,width,height
  skin.py svg NAME OUT    writes the SVG of picture NAME to OUT

Only the standard library is used.
"""

import string
import sys
from pathlib import Path

SVG_DIR = Path(__file__).resolve().parent / "svg"

# --- colours -----------------------------------------------------------------------------------

# The two faces of the login prompt: window background (the prompt's brush), text, illustration.
LIGHT = dict(
    page="#FFFFFF", ink="#1A1A1A", ink2="#5F5F5F",
    backdrop="#EEF5FD", deco="#0067C0",
    cloud_top="#5DB2F5", cloud_bottom="#1A7FD6",
    badge_top="#2A8CE8", badge_bottom="#0061B8", badge_ink="#FFFFFF",
    folder_back="#E8A317", folder_top="#FFD766", folder_bottom="#FFC133",
    card="#FBFBFB", card_stroke="#E3E3E3", footer="#F3F3F3", footer_line="#E5E5E5",
)
DARK = dict(
    page="#202020", ink="#FFFFFF", ink2="#CFCFCF",
    backdrop="#313A44", deco="#4CC2FF",
    cloud_top="#7AD2FF", cloud_bottom="#2B97DE",
    badge_top="#3FB4F5", badge_bottom="#1479C9", badge_ink="#FFFFFF",
    folder_back="#E8A317", folder_top="#FFD766", folder_bottom="#FFC133",
    card="#2B2B2B", card_stroke="#3A3A3A", footer="#262626", footer_line="#1C1C1C",
)

# Accent button faces: body, bottom edge, text.
BUTTON = {
    "light":          dict(fill="#0067C0", edge="#00529A", text="#FFFFFF"),
    "light_hover":    dict(fill="#1975C5", edge="#145E9E", text="#FFFFFF"),
    "light_disabled": dict(fill="#C8C8C8", edge="#C8C8C8", text="#FFFFFF"),
    "dark":           dict(fill="#4CC2FF", edge="#3FA3D8", text="#000000"),
    "dark_hover":     dict(fill="#48B2E9", edge="#3C95C4", text="#000000"),
    "dark_disabled":  dict(fill="#434343", edge="#434343", text="#A7A7A7"),
}

# Baseline of a 15 px label in a 40 px button, from the button's top: the 39 px body is centred on
# 19.5, and the ideographs' ink is centred about 0.36 em above the baseline.
BUTTON_BASELINE = 25

# Bar icons: light theme normal, dark theme normal, hover and pressed.
ICON_INK_SYNC = {"tb_normal": "#122133", "tb_normal1": "#FFFFFF", "tb_pre": "#0091FF"}
ICON_INK_GEAR = {"setting_normal": "#102133", "setting_normal1": "#FFFFFF", "setting_pre": "#0091FF"}

# --- catalogue ---------------------------------------------------------------------------------

PICTURES = {}


def picture(name, source, width, height, values=None):
    PICTURES[name] = (source, width, height, values or {})


def num(v):
    return f"{v:g}"


def card_values(scale, part, theme, state):
    """The settings card at 1x (437 x 447) or 2x (874 x 879, i.e. 439.5 units tall).

    part "all" is the background picture; "footer" is the button picture laid over its bottom
    122 units. The background shows the footer in its normal state.
    """
    card_height = 447 if scale == 1 else 439.5
    footer_top = card_height - 122
    palette = LIGHT if theme == "light" else DARK
    button = BUTTON[state]
    if part == "all":
        view_box = f"0 0 437 {num(card_height)}"
        width, height = 437 * scale, round(card_height * scale)
        page_rect = (f'<rect x="0" y="0" width="437" height="{num(card_height)}" '
                     f'fill="{palette["page"]}"/>')
    else:
        view_box = f"0 {num(footer_top)} 437 122"
        width, height = 437 * scale, 122 * scale
        page_rect = ""
    values = dict(palette)
    values.update(
        width=width, height=height, view_box=view_box, page_rect=page_rect,
        card_height=num(card_height), footer_top=num(footer_top),
        card_inner_height=num(card_height - 1), card_bottom=num(card_height - 0.5),
        footer_corner_y=num(card_height - 8.5), content_shift=num(footer_top - 325),
        button_top=num(footer_top + 26), button_baseline=num(footer_top + 26 + BUTTON_BASELINE),
        hint_baseline=num(footer_top + 96),
        button_fill=button["fill"], button_edge=button["edge"], button_text=button["text"],
    )
    return width, height, values


def button_values(width, height, label, state):
    values = dict(BUTTON[state])
    values.update(width=width, height=height, body_height=height - 1, label=label,
                  centre_x=num(width / 2), baseline=num(BUTTON_BASELINE))
    return values


def build_catalogue():
    # The bar.
    picture("logo1", "logo1.svg", 28, 28)
    for name, ink in ICON_INK_SYNC.items():
        picture(name, "icon_sync.svg.in", 32, 32, dict(ink=ink))
    for name, ink in ICON_INK_GEAR.items():
        picture(name, "icon_gear.svg.in", 32, 32, dict(ink=ink))
    picture("zsk", "zsk.svg", 32, 32)

    # The login prompt: small buttons.
    for stem, width, label in (("btn_login", 124, "登录"), ("btn_setting01", 157, "打开同步设置")):
        for suffix, state in (("", "light"), ("_dark", "dark"), ("_hover", "light_hover"),
                              ("_unable", "light_disabled")):
            picture(stem + suffix, "button.svg.in", width, 40,
                    button_values(width, 40, label, state))

    # The login face.
    picture("bk_login", "login.svg.in", 760, 414, LIGHT)
    picture("bk_login_dark", "login.svg.in", 760, 414, DARK)

    # The settings card at both sizes.
    for scale, x in ((1, ""), (2, "X")):
        for suffix, theme in (("", "light"), ("_dark", "dark")):
            w, h, values = card_values(scale, "all", theme, theme)
            picture(f"bk_setting{x}{suffix}", "card.svg.in", w, h, values)
        for suffix, theme, state in (("", "light", "light"),
                                     ("_dark", "dark", "dark"),
                                     ("_hover", "light", "light_hover"),
                                     ("_hover_dark", "dark", "dark_hover"),
                                     ("_unable_dark", "dark", "dark_disabled")):
            w, h, values = card_values(scale, "footer", theme, state)
            picture(f"btn_setting{x}{suffix}", "card.svg.in", w, h, values)


def render_svg(name):
    source, _, _, values = PICTURES[name]
    text = (SVG_DIR / source).read_text(encoding="utf-8")
    if source.endswith(".in"):
        text = string.Template(text).substitute({k: str(v) for k, v in values.items()})
    return text


def main(argv):
    build_catalogue()
    if len(argv) == 2 and argv[1] == "manifest":
        for name, (source, width, height, _) in PICTURES.items():
            print(f"{name},{source},{width},{height}")
        return 0
    if len(argv) == 4 and argv[1] == "svg":
        name, out = argv[2], Path(argv[3])
        if name not in PICTURES:
            print(f"skin.py: no picture named {name}", file=sys.stderr)
            return 1
        out.write_text(render_svg(name), encoding="utf-8")
        return 0
    print(__doc__, file=sys.stderr)
    return 2


if __name__ == "__main__":
    sys.exit(main(sys.argv))
