#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Makes figures of one width a font's default ones, because Qt before 6.7 cannot switch font features on, and takes its
contextual alternates out, which turn what is being typed into something else ("->", "3x4"). The font gets another family
name, as its licence (OFL) wants of a changed one.

usage: freeze_tnum.py IN.otf OUT.otf "Family Name"   (needs python3-fonttools)"""

import sys

from fontTools.ttLib import TTFont


def replacements(gsub, tag):
    """Which glyph a feature puts in the place of which."""
    swap = {}
    for record in gsub.FeatureList.FeatureRecord:
        if record.FeatureTag == tag:
            for index in record.Feature.LookupListIndex:
                for table in gsub.LookupList.Lookup[index].SubTable:
                    swap.update(getattr(table, "ExtSubTable", table).mapping)
    return swap


def freeze_figures(font):
    swap = replacements(font["GSUB"].table, "tnum")
    if not swap:
        sys.exit("This font has no figures of one width.")
    for table in font["cmap"].tables:
        if table.isUnicode():
            for code in map(ord, "0123456789"):
                if code in table.cmap:
                    table.cmap[code] = swap.get(table.cmap[code], table.cmap[code])


def drop_alternates(font):
    for record in font["GSUB"].table.FeatureList.FeatureRecord:
        if record.FeatureTag == "calt":
            record.Feature.LookupListIndex = []
            record.Feature.LookupCount = 0


def rename(font, family):
    old = font["name"].getDebugName(16) or font["name"].getDebugName(1)
    for name in font["name"].names:
        if name.nameID in (1, 3, 4, 6, 16):
            text = name.toUnicode().replace(old, family if name.nameID != 6 else family.replace(" ", ""))
            font["name"].setName(text, name.nameID, name.platformID, name.platEncID, name.langID)


def main():
    source, target, family = sys.argv[1:4]
    # The time of the build would make each build another.
    font = TTFont(source, recalcTimestamp=False)
    freeze_figures(font)
    drop_alternates(font)
    rename(font, family)
    font.save(target)


main()
