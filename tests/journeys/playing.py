# SPDX-License-Identifier: GPL-3.0-or-later
"""Plays journeys of a script, each in a process and on a screen of its own.

SCRIPT PROGRAMS [--out FOLDER] [JOURNEY…]     (of a journey that fails a picture goes into the folder)
"""

import argparse
import concurrent.futures
import contextlib
import pathlib
import subprocess
import sys
import time
import traceback

from window import Desk, Screen

# What a process ends with that got no display or bus, which is no fault of the window's.
NO_SCREEN = 75


def play(journey, options):
    """What went wrong, if anything did."""
    with contextlib.ExitStack() as ends:
        try:
            screen = ends.enter_context(Screen())
        except AssertionError:
            traceback.print_exc()
            sys.exit(NO_SCREEN)
        desk = ends.enter_context(Desk(screen, options.programs))
        try:
            journey(desk)
        except Exception:  # pylint: disable=broad-except
            return traceback.format_exc() + evidence(desk, journey, options.out)
    return None


def play_apart(name, options, script):
    """In a process of its own, which has one screen all its life."""
    began = time.monotonic()
    for _ in range(3):
        played = subprocess.run([sys.executable, "-B", script, options.programs, "--out", options.out, name],
                                stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True,
                                check=False)
        if played.returncode != NO_SCREEN:
            break
    print(f"{name}: {'FAILED' if played.returncode else 'passed'} ({time.monotonic() - began:.1f} s)", flush=True)
    return played.stdout if played.returncode else None


def evidence(desk, journey, folder):
    """How it looks where a journey failed, for people."""
    folder.mkdir(parents=True, exist_ok=True)
    picture = folder / f"{journey.__name__}.png"
    desk.screen.picture(picture)
    said = [f"{picture}\n"]
    for seen in desk.windows:
        if seen.is_running():
            with contextlib.suppress(Exception):
                said.append(seen.outline())
        said.append(seen.log())
    return "\n".join(said)


def main(journeys, script):
    parser = argparse.ArgumentParser()
    parser.add_argument("programs")
    parser.add_argument("--out", type=pathlib.Path, default=pathlib.Path("window-journeys"))
    parser.add_argument("journeys", nargs="*", help=", ".join(journeys))
    options = parser.parse_intermixed_args()
    if len(options.journeys) == 1:
        sys.exit(play(journeys[options.journeys[0]], options))
    with concurrent.futures.ThreadPoolExecutor(2) as pool:
        played = list(pool.map(lambda name: play_apart(name, options, script), options.journeys or journeys))
    sys.exit("\n".join(filter(None, played)) or None)
