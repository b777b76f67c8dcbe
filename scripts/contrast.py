#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Checks that what stands on what in the window can be told from it, in the light and in the dark, from the colours in
Theme.qml: contrast.py [THEME.qml]. Ratios are those of WCAG 2. Fails with the pairs that miss theirs."""

import pathlib
import re
import sys

THEME = pathlib.Path(__file__).parent.parent / "Orvane/Components/Theme.qml"
COLOR = re.compile(r'property color (\w+): dark \? "#(\w{6}|\w{8})" : "#(\w{6}|\w{8})"')
HUES = "blue orange violet leaf rose ochre sky plum brick slate".split()
PLAIN = "content chrome raised control".split()
TINTS = "accentTint dangerTint warningTint".split()

# What stands on what, and the least ratio in the light and in the dark.
RULES = [
    ("ink1", ["content"], 17.1, 14.3),
    ("ink1", PLAIN + TINTS + ["sunken", "inset", "lifted"], 7, 7),
    ("ink1", ["accentTint"], 14.7, 11.2),
    ("ink2", ["content"], 8.0, 8.4),
    ("ink2", PLAIN + TINTS + ["sunken", "inset"], 4.5, 4.5),
    ("ink3", ["content"], 5.1, 6.0),
    ("ink3", ["chrome"], 4.7, 6.5),
    ("ink3", PLAIN + ["inset"], 4.5, 4.5),
    ("accent", ["content"], 6.0, 8.2),
    ("accent", PLAIN + ["accentTint", "inset"], 4.5, 4.5),
    ("inkOnAccent", ["accentFill"], 6.0, 4.6),
    ("danger", ["content"], 5.9, 6.7),
    ("danger", PLAIN + ["dangerTint"], 4.5, 4.5),
    ("warning", ["content"], 6.1, 9.3),
    ("warning", PLAIN + ["warningTint"], 4.5, 4.5),
    ("field", ["content"], 3.5, 3.6),
    ("field", PLAIN, 3, 3),
    ("none", ["content"], 3, 3),
] + [(hue, ["content"], 4.0, 6.5) for hue in HUES]
# Text on a block in a project's colour, and under the pointer.
ON_BLOCKS = [("ink1", 7), ("ink2", 5.65)]
BLOCK_SHARE = {"light": 0.13, "dark": 0.21}


def channels(color):
    """Alpha (0 to 1) and the three channels (0 to 255) of RRGGBB or AARRGGBB."""
    alpha = int(color[:2], 16) / 255 if len(color) == 8 else 1
    return alpha, [int(color[-6:][at : at + 2], 16) for at in (0, 2, 4)]


def laid_on(over, ground, share=None):
    alpha, top = channels(over)
    alpha = alpha if share is None else share
    below = channels(ground)[1]
    return "%02X%02X%02X" % tuple(round(t * alpha + b * (1 - alpha)) for t, b in zip(top, below))


def luminance(color):
    linear = [c / 255 for c in channels(color)[1]]
    linear = [c / 12.92 if c <= 0.04045 else ((c + 0.055) / 1.055) ** 2.4 for c in linear]
    return 0.2126 * linear[0] + 0.7152 * linear[1] + 0.0722 * linear[2]


def ratio(one, other):
    darker, lighter = sorted((luminance(one), luminance(other)))
    return (lighter + 0.05) / (darker + 0.05)


def read_theme(path):
    light, dark = {}, {}
    for name, in_dark, in_light in COLOR.findall(path.read_text(encoding="utf-8")):
        dark[name], light[name] = in_dark, in_light
    return {"light": light, "dark": dark}


def pairs(scheme, colors):
    """Each (what, on what, its ratio, the least)."""
    for ink, grounds, light, dark in RULES:
        for ground in grounds:
            yield ink, ground, ratio(colors[ink], colors[ground]), light if scheme == "light" else dark
    for ink, least in ON_BLOCKS:
        for hue in HUES + ["none"]:
            block = laid_on(colors[hue], colors["content"], BLOCK_SHARE[scheme])
            yield ink, f"a block in {hue}", ratio(colors[ink], block), least
        for wash in ("hover", "press"):
            for ground in PLAIN:
                yield ink, f"{ground} under {wash}", ratio(colors[ink], laid_on(colors[wash], colors[ground])), 4.5


def main():
    themes = read_theme(pathlib.Path(sys.argv[1]) if len(sys.argv) > 1 else THEME)
    checked, missed = 0, 0
    for scheme, colors in themes.items():
        named = {name for rule in RULES for name in [rule[0], *rule[1]]} | {"hover", "press"}
        if absent := sorted(named - colors.keys()):
            sys.exit(f"Theme.qml has no {', '.join(absent)} that this understands.")
        for ink, ground, found, least in pairs(scheme, colors):
            checked += 1
            if found < least:
                missed += 1
                print(f"{scheme}: {ink} on {ground} has {found:.2f}, not {least}")
    print(f"{checked} pairs of colours, {missed} too close")
    return 1 if missed else 0


sys.exit(main())
