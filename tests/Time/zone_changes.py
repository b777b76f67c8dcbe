#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Prints what Python makes of the zone files in a folder: zone_changes.py FOLDER NAME...

For each file "zone NAMES OFFSET", the offset being that of 1970, then a line "INSTANT OFFSET" for each change up to the
end of 2040, in seconds. Zones with the same file share what follows.
"""

import datetime
import pathlib
import struct
import sys
import zoneinfo

FROM = 0
TO = int(datetime.datetime(2041, 1, 1, tzinfo=datetime.timezone.utc).timestamp())
# After a file's table changes come by a yearly rule; the closest are Morocco's, a month apart.
STEP = 13 * 86400
HEADER = 44


def offset_at(zone, instant):
    offset = datetime.datetime.fromtimestamp(instant, zone).utcoffset()
    return offset.days * 86400 + offset.seconds


def change_between(zone, low, high):
    """The first second with the offset of `high`."""
    before = offset_at(zone, low)
    while high - low > 1:
        middle = (low + high) // 2
        if offset_at(zone, middle) == before:
            low = middle
        else:
            high = middle
    return high


def counts(data, start):
    return struct.unpack(">6L", data[start + 20:start + HEADER])


def table(data):
    """The instants in the file's table: some changes are taken back within days."""
    utc, standard, leaps, changes, types, letters = counts(data, 0)
    second = HEADER + changes * 5 + types * 6 + letters + leaps * 8 + standard + utc
    changes = counts(data, second)[3]
    return struct.unpack_from(f">{changes}q", data, second + HEADER)


def print_changes(names, data):
    zone = zoneinfo.ZoneInfo(names[0])
    offset = offset_at(zone, FROM)
    print("zone", *names, offset)
    instants = [instant for instant in table(data) if FROM < instant < TO]
    for instant in instants:
        if offset_at(zone, instant) != offset:
            offset = offset_at(zone, instant)
            print(instant, offset)
    instant = instants[-1] if instants else FROM
    while instant < TO:
        following = instant + STEP
        if offset_at(zone, following) != offset:
            following = change_between(zone, instant, following)
            offset = offset_at(zone, following)
            print(following, offset)
        instant = following


def main(folder, names):
    zoneinfo.reset_tzpath([folder])
    same = {}
    for name in names:
        same.setdefault(pathlib.Path(folder, name).read_bytes(), []).append(name)
    for data, group in same.items():
        print_changes(group, data)


if __name__ == "__main__":
    main(sys.argv[1], sys.argv[2:])
