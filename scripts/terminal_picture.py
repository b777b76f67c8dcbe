# SPDX-License-Identifier: GPL-3.0-or-later
"""Draws what a terminal shows as SVG. Blocks and lines are drawn as shapes, so that they meet in every font."""

import html
import itertools
import re

# The palette of the picture: the sixteen colours of a terminal on a dark ground.
GROUND, TEXT = "#1b1f27", "#d8dee9"
COLOURS = {
    30: "#4c566a", 31: "#e06c75", 32: "#98c379", 33: "#e5c07b", 34: "#61afef", 35: "#c678dd", 36: "#56b6c2", 37: TEXT,
    90: "#7f8a9e", 91: "#e06c75", 92: "#98c379", 93: "#e5c07b", 94: "#61afef", 95: "#c678dd", 96: "#56b6c2", 97: "#fff",
}
ADVANCE, HEIGHT, MARGIN, SIZE = 8.4, 20, 18, 14

# From where to where a block fills its column.
BLOCKS = {"█": (0, 1), "░": (0, 1), "▐": (0.5, 1), "▕": (0.875, 1)}
BLOCKS |= {character: (0, eighths / 8) for eighths, character in enumerate("▏▎▍▌▋▊▉", 1)}
# The sides of its cell that a line leads to.
LINES = {"─": "lr", "╌": "lr", "│": "tb", "┌": "rb", "┐": "lb", "└": "rt", "┘": "lt"}


def plain(line):
    return re.sub(r"\x1b\[[0-9;]*[A-Za-z]", "", line)


class Pen:
    """How the next characters look."""

    def __init__(self):
        self.colour, self.bold, self.dim = TEXT, False, False

    def take(self, codes):
        numbers = iter([int(text or 0) for text in codes.split(";")])
        for number in numbers:
            if number == 0:
                self.__init__()
            elif number == 1:
                self.bold = True
            elif number == 2:
                self.dim = True
            elif number == 22:
                self.bold = self.dim = False
            elif number == 38 and next(numbers) == 2:
                self.colour = "#" + "".join(f"{part:02x}" for part in itertools.islice(numbers, 3))
            else:
                self.colour = COLOURS.get(number, TEXT if number == 39 else self.colour)


def kind(character):
    if character in BLOCKS:
        return "shade" if character == "░" else "block"
    return "line" if character in LINES else "text"


def block_path(left, top, characters):
    pieces = []
    for character, group in itertools.groupby(characters):
        width = len(list(group)) * ADVANCE
        start, end = BLOCKS[character]
        if (start, end) == (0, 1):
            pieces.append(f"M{left:.1f} {top + 2}h{width:.1f}v{HEIGHT - 4}h{-width:.1f}z")
        else:
            for at in range(round(width / ADVANCE)):
                wide = (end - start) * ADVANCE
                pieces.append(f"M{left + (at + start) * ADVANCE:.1f} {top + 2}h{wide:.1f}v{HEIGHT - 4}h{-wide:.1f}z")
        left += width
    return "".join(pieces)


def line_path(left, top, characters):
    pieces = []
    for at, character in enumerate(characters):
        x, y = left + (at + 0.5) * ADVANCE, top + HEIGHT / 2
        ends = {"l": (x - ADVANCE / 2, y), "r": (x + ADVANCE / 2, y), "t": (x, top), "b": (x, top + HEIGHT)}
        (x1, y1), (x2, y2) = (ends[side] for side in LINES[character])
        pieces.append(f"M{x1:.1f} {y1:.1f}L{x:.1f} {y:.1f}L{x2:.1f} {y2:.1f}")
    return "".join(pieces)


def draw(column, row, text, pen):
    """The elements for characters that share a pen."""
    for what, group in itertools.groupby(text, kind):
        characters = "".join(group)
        left, top = MARGIN + column * ADVANCE, MARGIN + row * HEIGHT
        column += len(characters)
        dim = ' opacity="0.6"' if pen.dim else ""
        if what == "block":
            yield f'<path d="{block_path(left, top, characters)}" fill="{pen.colour}"{dim}/>'
        elif what == "shade":
            yield f'<path d="{block_path(left, top, characters)}" fill="{pen.colour}" opacity="0.35"/>'
        elif what == "line":
            dashes = ' stroke-dasharray="3 3"' if "╌" in characters else ""
            yield f'<path d="{line_path(left, top, characters)}" fill="none" stroke="{pen.colour}"{dashes}{dim}/>'
        elif characters.strip():
            left += (len(characters) - len(characters.lstrip())) * ADVANCE
            shown = characters.strip()
            bold = ' font-weight="bold"' if pen.bold else ""
            yield (f'<text x="{left:.1f}" y="{top + SIZE}" textLength="{len(shown) * ADVANCE:.1f}" '
                   f'fill="{pen.colour}"{bold}{dim}>{html.escape(shown)}</text>')


def svg(lines, title):
    """The lines, with their escape sequences, as a picture on a dark ground."""
    elements = []
    for row, line in enumerate(lines):
        pen, column = Pen(), 0
        for part in re.split(r"(\x1b\[[0-9;]*m)", line):
            code = re.fullmatch(r"\x1b\[([0-9;]*)m", part)
            if code:
                pen.take(code[1])
                continue
            text = plain(part)
            elements += draw(column, row, text, pen)
            column += len(text)
    width = max(len(plain(line)) for line in lines) * ADVANCE + 2 * MARGIN
    size = f'width="{width:.0f}" height="{HEIGHT * len(lines) + 2 * MARGIN}"'
    body = "\n".join(elements)
    return (f'<svg xmlns="http://www.w3.org/2000/svg" {size} font-size="{SIZE}" xml:space="preserve" '
            f'font-family="ui-monospace, SFMono-Regular, Menlo, DejaVu Sans Mono, monospace">\n'
            f'<title>{html.escape(title)}</title>\n<rect {size} rx="8" fill="{GROUND}"/>\n{body}\n</svg>\n')
