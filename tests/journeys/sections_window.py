#!/usr/bin/python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""The sections beside the timer's, with keys and pointer: a project is made, renamed and undone; a format is seen in the
list at once; keys are recorded and used.

sections_window.py PROGRAMS [--out FOLDER] [JOURNEY…]     (playing.py says more)
"""

import playing
from timer_window import FIELD, choose
from window import Window, wait


def names_of(desk, what):
    return sorted(item["name"] for item in desk.value(f"orvane --json {what}"))


def projects(seen):
    """Made, renamed, and the renaming taken back."""
    seen.clicks("page tab", "Projects$")
    seen.waits_for("panel", "Projects$")
    seen.keys("ctrl+shift+n")
    seen.waits_for_focus("text", "Name")
    seen.types("Website")
    seen.keys("Return")
    seen.waits_for("list item", "Website")
    seen.clicks("list item", "Website")
    seen.waits_for_focus("text", "Name")
    seen.types("Site")
    seen.waits_for_text("Name", "Site")
    seen.keys("Return")
    seen.waits_for("list item", "Site")
    assert names_of(seen.desk, "projects") == ["Site"]
    seen.keys("ctrl+z")
    seen.waits_for("list item", "Website")
    assert names_of(seen.desk, "projects") == ["Website"]


def formats(seen):
    """Half a sentence waits while the clock is changed, which every list shows."""
    seen.keys("ctrl+7")
    seen.clicks("radio button", "12-hour")
    wait(lambda: seen.waits_for("radio button", "12-hour").has("CHECKED"), "the chosen clock")
    seen.keys("ctrl+1")
    seen.waits_for_text(FIELD, "Half a sen")
    seen.waits_for("list item", "Answer mail, .*9:00 am to 9:30 am")
    # In the field that would take back what is typed.
    seen.keys("ctrl+7")
    seen.waits_for("panel", "Settings$")
    seen.keys("ctrl+z")
    wait(lambda: seen.waits_for("radio button", "24-hour").has("CHECKED"), "the clock as it was")
    seen.keys("ctrl+1")
    seen.waits_for("list item", "Answer mail, .*09:00 to 09:30")


def keys(seen):
    """Those of another command are taken only when that is agreed to, and then give the command."""
    seen.keys("ctrl+7")
    seen.clicks("page tab", "Shortcuts")
    seen.clicks("push button", "Keys of Split")
    seen.waits_for_focus("push button", "Press keys for Split")
    seen.keys("ctrl+e")
    seen.waits_for("label", r"Ctrl\+E is Edit What Runs\. Used here, Edit What Runs has no keys\.")
    seen.keys("Escape")
    seen.clicks("push button", "Keys of Split…: S")
    seen.waits_for_focus("push button", "Press keys for Split")
    seen.keys("x")
    seen.waits_for("push button", "Keys of Split…: X")
    seen.keys("ctrl+1")
    seen.waits_for_focus("text", FIELD)
    choose(seen, "Answer mail")
    seen.keys("x")
    seen.waits_for("dialog", "Split")
    seen.keys("Escape")
    seen.waits_until_gone("dialog", "Split")


STAND_IN = """#!/bin/sh
echo "$*" >> "$HOME/calls"
[ "$2" != login ] || sleep 300
"""


def agents(seen):
    """One that is not there, then one whose sign-in is called off by the key that is shown beside it."""
    folder = seen.desk.home / ".local" / "bin"
    folder.mkdir(parents=True)
    seen.keys("ctrl+7")
    seen.clicks("page tab", "Connect Agents")
    seen.clicks("push button", "Connect Codex")
    seen.waits_for("alert", "Codex isn't installed, or its command isn't on the shell's path. Copy the commands instead.")
    seen.waits_for("push button", "Add: copy the command")
    (folder / "claude").write_text(STAND_IN, encoding="utf-8")
    (folder / "claude").chmod(0o755)
    seen.clicks("push button", "Connect Claude Code")
    seen.waits_for("alert", "Waiting for Claude Code. Your browser opens to sign in.")
    seen.waits_for_focus("push button", "Cancel connecting Claude Code")
    wait(lambda: "mcp login orvane" in (seen.desk.home / "calls").read_text(encoding="utf-8"), "the sign-in")
    seen.keys("Escape")
    seen.waits_for("alert", "Not signed in. Connect again when you're ready")
    seen.waits_for_focus("push button", "Connect Claude Code")
    assert seen.desk.home.joinpath("calls").read_text(encoding="utf-8").startswith("mcp add --transport http")


def sections(desk):
    desk.types('orvane settings set time-format 24h')
    desk.types('orvane add "Answer mail 9:00-9:30"')
    seen = Window(desk)
    seen.waits_for_focus("text", FIELD)
    seen.types("Half a sen")
    seen.waits_for_text(FIELD, "Half a sen")
    projects(seen)
    formats(seen)
    keys(seen)
    agents(seen)
    seen.closes()


if __name__ == "__main__":
    playing.main({journey.__name__: journey for journey in (sections,)}, __file__)
