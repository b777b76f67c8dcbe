#!/usr/bin/python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Accounts on two servers, and what survives the end of the program. Played and compared as in timer_window.py.

accounts_window.py PROGRAMS [--out FOLDER] [JOURNEY…]
"""

import playing
from timer_window import FIELD, choose, expect_everywhere, open_editor, recorded, rename, tab_to, type_and_enter, \
    wait_for_entries
from window import Window, wait

HERE = "Workspace .*, This Computer"


def open_switcher(seen, place):
    seen.clicks("push button", f"Workspace .*, {place}")
    return seen.waits_for("popup menu", "Servers and Workspaces")


def register_and_switch(desk):
    """An account on the team's server beside this computer's: what is typed at one is not at the other."""
    team = desk.home / "team"
    address = desk.serve(team)
    place = r"127\.0\.0\.1"
    seen = Window(desk)
    type_and_enter(seen, "Write at home")
    at_home = [recorded(seen, "Write at home")]
    expect_everywhere(seen, at_home)

    open_switcher(seen, "This Computer")
    seen.clicks("menu item", "Add Server…")
    seen.waits_for_focus("text", "Server address")
    seen.types(address)
    seen.clicks("push button", "Create an account")
    seen.waits_for_focus("text", "Email")
    seen.types("kim@example.com")
    seen.keys("Tab")
    seen.waits_for_focus("password text", "")
    seen.types("correct horse")
    seen.keys("Return")
    seen.waits_for("push button", f"Workspace .*, {place}")
    wait_for_entries(seen, [])
    type_and_enter(seen, "Plan with the team")
    at_team = [recorded(seen, "Plan with the team")]
    seen.waits_for("label", "All changes sent")
    assert desk.served(team) == at_team, desk.served(team)
    assert desk.served() == at_home, desk.served()

    # They are numbered by address, this computer's last.
    seen.keys("ctrl+alt+2")
    seen.waits_for("push button", HERE)
    expect_everywhere(seen, at_home)
    seen.keys("ctrl+alt+1")
    seen.waits_for("push button", f"Workspace .*, {place}")
    wait_for_entries(seen, at_team)

    open_switcher(seen, place)
    seen.clicks("menu item", "Account and Sign Out…")
    seen.clicks("push button", "Sign Out")
    seen.waits_for("push button", HERE)
    seen.keys("ctrl+1")
    expect_everywhere(seen, at_home)
    open_switcher(seen, "This Computer")
    seen.clicks("push button", "Sign In…")
    seen.waits_for_text("Server address", address)
    seen.waits_for_text("Email", "kim@example.com")
    seen.closes()
    assert (desk.served(team), desk.served()) == (at_team, at_home)


def kill_in_the_editor(desk):
    """The program is killed while an entry is half changed: the next one has it as it was typed."""
    desk.types('orvane add "Answer mail 9:00-9:30"')
    desk.types('orvane add "Call the printer 10:00-10:45"')
    seen = Window(desk)
    open_editor(seen, "Answer mail")
    rename(seen, "Answer all m")
    tab_to(seen, "text", "Start", most=5)
    seen.keys(*["Up"] * 5)
    seen.waits_for_text("Length", "25m")
    drafts = desk.data / "drafts.json"
    wait(lambda: drafts.exists() and all(typed in drafts.read_text(encoding="utf-8")
                                         for typed in ("Answer all m", "09:05")), "the draft")
    seen.kill()
    before = [("Answer mail", "9:00", "9:30"), ("Call the printer", "10:00", "10:45")]
    assert (desk.served(), desk.listed()) == (before, before)
    seen = Window(desk)
    seen.waits_for_text("Description", "Answer all m")
    seen.waits_for_text("Start", "09:05")
    seen.waits_for_text("Length", "25m")
    seen.waits_for_focus("text", "Description")
    seen.keys("End")
    seen.types("ail")
    seen.waits_for_text("Description", "Answer all mail")
    seen.keys("Return")
    seen.waits_until_gone("form", "Edit")
    expect_everywhere(seen, [("Answer all mail", "9:05", "9:30"), before[1]])
    wait(lambda: not drafts.exists(), "no draft of what is saved")
    seen.closes()


def split(desk):
    """One entry becomes two at a typed time, which is one step to take back."""
    desk.types('orvane add "Answer mail 9:00-10:00"')
    seen = Window(desk)
    choose(seen, "Answer mail")
    seen.keys("s")
    seen.waits_for_focus("text", "Split at")
    seen.types("9:20")
    seen.keys("Up")
    seen.waits_for_text("Split at", "09:21")
    seen.keys("Return")
    seen.waits_until_gone("dialog", "Split")
    expect_everywhere(seen, [("Answer mail", "9:00", "9:21"), ("Answer mail", "9:21", "10:00")])
    seen.waits_for_focus("list item", "Answer mail, ")
    seen.keys("ctrl+z")
    expect_everywhere(seen, [("Answer mail", "9:00", "10:00")])
    seen.keys("ctrl+shift+z")
    expect_everywhere(seen, [("Answer mail", "9:00", "9:21"), ("Answer mail", "9:21", "10:00")])
    seen.closes()


if __name__ == "__main__":
    playing.main({journey.__name__: journey for journey in (register_and_switch, kill_in_the_editor, split)}, __file__)
