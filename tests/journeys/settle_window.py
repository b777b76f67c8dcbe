#!/usr/bin/python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""What people do in the timer's window about changes that the server did not just take: another device changed the
entry, or a rule forbids it by now; and about several entries at once. Played and compared as in timer_window.py.

settle_window.py PROGRAMS [--out FOLDER] [JOURNEY…]
"""

import contextlib

import playing
from timer_window import FIELD, expect_everywhere, choose, open_editor, rename, tab_to
from window import Window, wait

SETTLE = "1 entry to settle"


@contextlib.contextmanager
def meanwhile(desk, seen):
    """What the other device does before the window hears of it: a command with a store of its own, at the same
    server."""
    desk.kill_server()
    yield
    seen.halts()
    desk.serve()
    other = desk.home / "other"
    other.mkdir()
    (other / "server").symlink_to(desk.data / "server")


def elsewhere(desk, command):
    status, output = desk.run(f'"{desk.programs}/orvane" --data-dir "{desk.home}/other" {command}')
    assert status == 0, output


def conflict(desk):
    """Changed here while the server was away, and on another device: settled field by field, with the keyboard."""
    desk.types('orvane add "Answer mail 9:00-9:30"')
    seen = Window(desk, "--no-start-server")
    seen.waits_for("label", "All saved")
    with meanwhile(desk, seen):
        open_editor(seen, "Answer mail")
        rename(seen, "Answer all mail")
        tab_to(seen, "text", "End", most=6)
        seen.keys("Up")
        seen.waits_for_text("Length", "31m")
        seen.keys("Return")
        seen.waits_for("list item", "Answer all mail, .*waiting to send")
    elsewhere(desk, 'edit last --description "Answer the mail" --stop 9:45')
    seen.goes_on()
    seen.waits_for("push button", SETTLE)
    choose(seen, "Answer all mail")
    seen.waits_for("list item", "Answer all mail, .*changed on another device")
    assert not seen.all_seen("dialog"), "it never opens by itself"
    seen.keys("Return")
    seen.waits_for_focus("radio button", "Description, mine")
    seen.keys("Escape")
    seen.waits_until_gone("dialog", "Changed on another device")
    # And from the line that says so.
    seen.clicks("push button", SETTLE)
    seen.waits_for_focus("radio button", "Description, mine")
    seen.waits_for("label", "Will be saved: Answer all mail, .*31m")
    seen.keys("alt+Right")
    seen.waits_for("label", "Will be saved: Answer the mail, .*45m")
    seen.waits_for_focus("radio button", "Description, theirs")
    seen.keys("Left", "Down")
    seen.waits_for_focus("radio button", "Stop, theirs")
    seen.waits_for("label", "Will be saved: Answer all mail, .*45m")
    seen.keys("Return")
    seen.waits_until_gone("dialog", "Changed on another device")
    expect_everywhere(seen, [("Answer all mail", "9:00", "9:45")])
    seen.closes()


def refusal(desk):
    """A rule has come meanwhile: what was typed stands above the list, also after a restart, and is corrected."""
    desk.types('orvane add "Answer mail 9:00-9:30"')
    seen = Window(desk, "--no-start-server")
    seen.waits_for("label", "All saved")
    with meanwhile(desk, seen):
        open_editor(seen, "Answer mail")
        rename(seen, "Answer all mail")
        seen.keys("Return")
        seen.waits_for("list item", "Answer all mail, .*waiting to send")
    elsewhere(desk, "settings set require-project on")
    seen.goes_on()
    seen.waits_for("panel", "Refused: Answer all mail")
    expect_everywhere(seen, [("Answer mail", "9:00", "9:30")])
    seen.closes()
    elsewhere(desk, "settings set require-project off")
    seen = Window(desk, "--no-start-server")
    seen.waits_for("label", "All saved")
    seen.clicks("push button", "Edit Answer all mail")
    seen.waits_for_focus("text", "Description")
    seen.waits_for_text("Description", "Answer all mail")
    rename(seen, "Answer nearly all mail")
    seen.keys("Return")
    seen.waits_until_gone("panel", "Refused: ")
    expect_everywhere(seen, [("Answer nearly all mail", "9:00", "9:30")])
    seen.closes()


def steady(desk):
    """Another device's entry comes in above, and the row under the pointer stays where it is."""
    desk.types('orvane add "Answer mail 9:00-9:30"')
    seen = Window(desk)
    before = seen.top("list item", "Answer mail")
    other = desk.home / "other"
    other.mkdir()
    (other / "server").symlink_to(desk.data / "server")
    seen.points_at("list item", "Answer mail")
    elsewhere(desk, 'add "Call the printer 10:00-10:45"')
    seen.waits_for("list item", "Call the printer")
    assert seen.top("list item", "Answer mail") == before, "the row has moved"
    # Once the pointer is elsewhere, the list stands as it belongs.
    seen.points_at("page tab", "Settings")
    wait(lambda: seen.top("list item", "Answer mail") > before, "the row below the new one")
    seen.closes()


def several(desk):
    """Two of three entries are changed as one step, which is taken back as one; then an overlap is trimmed."""
    for entry in ("Answer mail 9:00-9:30", "Call the printer 10:00-10:45", "Plan 11:00-11:30"):
        desk.types(f'orvane add "{entry}"')
    desk.types('orvane add "Read 11:20-12:00"')
    seen = Window(desk)
    both = [("Plan", "11:00", "11:30"), ("Read", "11:20", "12:00")]
    choose(seen, "Call the printer")
    seen.keys("shift+Down")
    seen.waits_for("list item", "Answer mail, .*chosen")
    seen.keys("Return")
    seen.waits_for_focus("text", "Description of all")
    seen.types("Office")
    seen.waits_for("label", "Description: 2 change to “Office”")
    seen.keys("Return")
    seen.waits_until_gone("form", "Edit 2 entries")
    expect_everywhere(seen, both + [("Office", "9:00", "9:30"), ("Office", "10:00", "10:45")])
    seen.keys("ctrl+z")
    expect_everywhere(seen, both + [("Answer mail", "9:00", "9:30"), ("Call the printer", "10:00", "10:45")])
    choose(seen, "Plan")
    seen.keys("t")
    expect_everywhere(seen, [("Plan", "11:00", "11:20"), both[1], ("Answer mail", "9:00", "9:30"),
                             ("Call the printer", "10:00", "10:45")])
    seen.closes()


def locked(desk):
    """Yesterday is locked: its rows say so, and nothing that is done with them changes one."""
    desk.types('orvane add "Answer mail yesterday 9:00-9:30"')
    desk.types('orvane add "Call the printer yesterday 9:10-9:45"')
    desk.types('orvane add "Plan 11:00-11:30"')
    entries = [("Answer mail", "9:00", "9:30"), ("Call the printer", "9:10", "9:45"), ("Plan", "11:00", "11:30")]
    seen = Window(desk)
    seen.waits_for("list item", "Answer mail, .*overlaps$")
    seen.keys("ctrl+7")
    seen.clicks("page tab", "Workspace")
    seen.clicks("text", "Locked before")
    seen.waits_for_focus("text", "Locked before")
    seen.types("2026-03-06")
    seen.keys("Return")
    seen.keys("ctrl+1")
    seen.waits_for("list item", "Answer mail, .*locked$")
    seen.waits_for("list item", "Yesterday, Time before .* is locked")
    # Nothing is to be trimmed or chosen by Shift there; who wants more is told.
    for keys in (("t", "Return"), ("shift+Down", "Return"), ("s",), ("Delete",)):
        choose(seen, "Call the printer")
        seen.keys(*keys)
        is_told(seen, "Call the printer")
    seen.clicks("list item", "Answer mail, ")
    is_told(seen, "Answer mail")
    expect_everywhere(seen, entries)
    seen.closes()


def is_told(seen, description):
    seen.waits_for("alert", "This entry lies in a locked period")
    assert not seen.all_seen("form") and not seen.all_seen("dialog")
    assert not seen.all_seen("list item", f"{description}, .*chosen")
    seen.clicks("push button", "Dismiss")
    seen.waits_until_gone("alert", "")
    seen.keys("ctrl+n")
    seen.waits_for_focus("text", FIELD)


JOURNEYS = {journey.__name__: journey for journey in (conflict, refusal, steady, several, locked)}

if __name__ == "__main__":
    playing.main(JOURNEYS, __file__)
