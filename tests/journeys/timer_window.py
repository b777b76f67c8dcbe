#!/usr/bin/python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""What people do in the timer's window, with keys and pointer. Each journey ends by comparing what the screen shows
with what the command lists and what the server holds.

timer_window.py PROGRAMS [--out FOLDER] [JOURNEY…]     (playing.py says more)
"""

import playing
from window import PATIENCE, Window, wait

FIELD = "What are you working on"
# A second for who works with it; under sanitizers, beside other tests, all takes longer.
SOON = 5


def expect_everywhere(seen, entries):
    """The same on the screen, for the command, and in the server."""
    desk, entries = seen.desk, sorted(entries)
    wait_for_entries(seen, entries)
    seen.waits_for("label", "All saved")
    assert desk.served() == entries, desk.served()
    assert desk.listed() == entries, desk.listed()
    wait_for_entries(seen, entries)


def wait_for_entries(seen, entries, seconds=PATIENCE):
    try:
        wait(lambda: seen.entries() == sorted(entries), "the entries", seconds)
    except AssertionError as error:
        raise AssertionError(f"{error}: {seen.entries()} instead of {sorted(entries)}") from None


def recorded(seen, what, seconds=PATIENCE):
    """(what, from, to) as the window shows it of something that is going on or has just ended."""
    entry = wait(lambda: next((entry for entry in seen.entries() if entry[0] == what), None), repr(what), seconds)
    # The window's clock is a little behind: it begins when the window is up.
    for clock in entry[1:] if entry[2] != "now" else entry[1:2]:
        late = (minutes(seen.desk.now[11:16]) - minutes(clock)) % (24 * 60)
        assert late <= 2, f"{entry} at {seen.desk.now}"
    return entry


def minutes(clock):
    hours, past = clock.split(":")
    return 60 * int(hours) + int(past)


def type_and_enter(seen, sentence, before=""):
    seen.waits_for_focus("text", FIELD)
    seen.types(sentence)
    seen.waits_for_text(FIELD, before + sentence)
    seen.keys("Return")
    seen.waits_for_text(FIELD, "")


def choose(seen, description):
    """With the arrows, from the field or from row to row, to the row of an entry."""
    if wait(seen.focused, "the keyboard anywhere")[0] == "text":
        seen.keys("Down")
    seen.waits_for_focus("list item", "")
    rows = [row.name for row in sorted(seen.all_seen("list item"), key=lambda row: row.extents().y)]
    wanted = next(name for name in rows if name.startswith(description + ", "))
    while (there := seen.focused()) != ("list item", wanted):
        seen.keys("Up" if rows.index(wanted) < rows.index(there[1]) else "Down")
        wait(lambda: seen.focused() not in (None, there), f"another row than {there}")


def open_editor(seen, description):
    choose(seen, description)
    seen.keys("Return")
    seen.waits_for_focus("text", "Description")
    seen.waits_for_text("Description", description)


def rename(seen, description):
    """In the editor, where the old one is selected."""
    seen.types(description)
    seen.waits_for_text("Description", description)


def tab_to(seen, role, name, most):
    for _ in range(most):
        before = seen.focused()
        if before == (role, name):
            return
        seen.keys("Tab")
        wait(lambda: seen.focused() not in (None, before), f"the field after {before}")
    seen.waits_for_focus(role, name)


def first_start(desk):
    """Nothing is there yet: who starts the program types and is understood."""
    seen = Window(desk)
    type_and_enter(seen, "Write the report")
    seen.waits_for("frame", "Write the report – Orvane")
    running = recorded(seen, "Write the report")
    assert running[2] == "now", running
    expect_everywhere(seen, [running])
    seen.keys("ctrl+t")
    seen.waits_until_gone("panel", "Running timer")
    stopped = recorded(seen, "Write the report")
    assert stopped[1] == running[1] and stopped[2] != "now", stopped
    expect_everywhere(seen, [stopped])
    seen.closes()


def edit(desk):
    """An entry is corrected in its place; other edits are left as they were."""
    desk.types('orvane add "Answer mail 9:00-9:30"')
    desk.types('orvane add "Call the printer 10:00-10:45"')
    seen = Window(desk)
    open_editor(seen, "Answer mail")
    rename(seen, "Answer all mail")
    tab_to(seen, "text", "Start", most=5)
    seen.keys(*["Up"] * 5)
    seen.waits_for_text("Start", "09:05")
    seen.waits_for_text("Length", "25m")
    seen.keys("Return")
    seen.waits_until_gone("form", "Edit")
    expected = [("Answer all mail", "9:05", "9:30"), ("Call the printer", "10:00", "10:45")]
    expect_everywhere(seen, expected)
    seen.keys("ctrl+n")
    seen.waits_for_focus("text", FIELD)
    open_editor(seen, "Call the printer")
    rename(seen, "Something else")
    seen.keys("Escape")
    seen.waits_until_gone("form", "Edit")
    seen.waits_for_focus("list item", "Call the printer, ")
    # With the pointer from one to the other.
    for description in ("Call the printer", "Answer all mail"):
        seen.clicks("list item", description + ", ")
        seen.waits_for_text("Description", description)
        seen.waits_for_focus("text", "Description")
    seen.keys("Escape")
    seen.waits_for_focus("list item", "Answer all mail, ")
    expect_everywhere(seen, expected)
    seen.closes()


def earlier_work(desk):
    """While a description is typed, those from before stand below it."""
    desk.types('orvane add "Answer mail 9:00-9:30"')
    desk.types('orvane add "Call the printer 10:00-10:45"')
    seen = Window(desk)
    open_editor(seen, "Call the printer")
    seen.types("ans")
    seen.waits_for("list item", "Answer mail$")
    seen.keys("Escape")
    seen.waits_until_gone("list item", "Answer mail$")
    seen.waits_for_text("Description", "ans")
    seen.types("w")
    seen.waits_for("list item", "Answer mail$")
    seen.keys("Down", "Return")
    seen.waits_for_text("Description", "Answer mail")
    seen.waits_until_gone("list item", "Answer mail$")
    seen.keys("Return")
    seen.waits_until_gone("form", "Edit")
    expect_everywhere(seen, [("Answer mail", "9:00", "9:30"), ("Answer mail", "10:00", "10:45")])
    seen.closes()


def undo(desk):
    """What was deleted comes back, goes away again, and comes back."""
    desk.types('orvane add "Answer mail 9:00-9:30"')
    desk.types('orvane add "Call the printer 10:00-10:45"')
    seen = Window(desk)
    both = [("Answer mail", "9:00", "9:30"), ("Call the printer", "10:00", "10:45")]
    choose(seen, "Answer mail")
    for keys, entries, said in (("Delete", both[1:], "Deleted “Answer mail”"), ("ctrl+z", both, "Undone: "),
                                ("ctrl+shift+z", both[1:], "Done again: "), ("ctrl+z", both, "Undone: ")):
        seen.keys(keys)
        seen.waits_for("alert", said)
        expect_everywhere(seen, entries)
    seen.closes()


def offline(desk):
    """The server is gone: all goes on, also after leaving, and arrives once when it is back."""
    desk.types('orvane add "Answer mail 9:00-9:30"')
    seen = Window(desk, "--no-start-server")
    seen.waits_for("label", "All saved")
    desk.kill_server()
    type_and_enter(seen, "Draft the letter")
    running = recorded(seen, "Draft the letter")
    open_editor(seen, "Answer mail")
    rename(seen, "Answer all mail")
    seen.keys("Return")
    seen.waits_until_gone("form", "Edit")
    seen.keys("ctrl+t")
    seen.waits_until_gone("panel", "Running timer")
    seen.waits_for("list item", "Draft the letter, .*, waiting to send$")
    seen.keys("ctrl+z")
    expected = sorted([("Answer all mail", "9:00", "9:30"), running])
    wait_for_entries(seen, expected)
    seen.waits_for("label", r"\d changes waiting\. Offline\.")
    seen.closes()
    assert desk.served() == [("Answer mail", "9:00", "9:30")], desk.served()
    seen = Window(desk, "--no-start-server")
    wait_for_entries(seen, expected)
    assert desk.listed("--no-start-server") == expected, desk.listed("--no-start-server")
    desk.serve()
    expect_everywhere(seen, expected)
    assert desk.value("orvane --json status")["outbox"] == {"pending": 0, "offline": False, "conflicts": 0}
    seen.closes()


def half_a_sentence(desk):
    """The program is killed in the middle of a word."""
    seen = Window(desk)
    seen.waits_for_focus("text", FIELD)
    seen.types("Half a sent")
    drafts = desk.data / "drafts.json"
    wait(lambda: drafts.exists() and "Half a sent" in drafts.read_text(encoding="utf-8"), "the draft")
    assert drafts.stat().st_mode & 0o777 == 0o600
    seen.kill()
    seen = Window(desk)
    seen.waits_for_text(FIELD, "Half a sent")
    seen.waits_for_focus("text", FIELD)
    seen.keys("End")
    type_and_enter(seen, "ence", before="Half a sent")
    expect_everywhere(seen, [recorded(seen, "Half a sentence")])
    wait(lambda: not drafts.exists(), "no draft of what is recorded")
    seen.closes()


def command_beside(desk):
    """What a terminal does stands in the window, with the server and without it."""
    desk.types("orvane status")
    seen = Window(desk, "--no-start-server")
    seen.waits_for("label", "All saved")
    desk.types('orvane start "Plan the week"')
    planned = recorded(seen, "Plan the week", SOON)
    assert planned[2] == "now", planned
    desk.kill_server()
    desk.types("orvane --no-start-server edit last --description Planning")
    wait_for_entries(seen, [("Planning", *planned[1:])], SOON)
    desk.types('orvane --no-start-server stop')
    wait(lambda: not seen.all_seen("panel", "Running timer"), "no running timer", SOON)
    stopped = recorded(seen, "Planning", SOON)
    desk.serve()
    expect_everywhere(seen, [stopped])
    seen.closes()


def midnight(desk):
    """Today becomes yesterday by itself; who sees the window too late for that opens it once more, earlier."""
    desk.now = "2026-03-06T21:00:00Z"
    desk.types('orvane add "Answer mail 9:00-9:30"')
    for seconds in (8, 20, 50):
        desk.now = f"2026-03-06T23:59:{60 - seconds:02}Z"
        seen = Window(desk)
        seen.waits_for("list item", "(Today|Yesterday), 6 March 2026, 30m")
        if seen.all_seen("list item", "Today, "):
            break
        seen.closes()
    else:
        raise AssertionError("the window was never up before midnight")
    seen.waits_for("list item", "Yesterday, 6 March 2026, 30m", seconds=PATIENCE + 60)
    assert not seen.all_seen("list item", "Today, ")
    # The totals beside the list: nothing today, and the same week.
    totals = [node.name for node in seen.waits_for("panel", "Totals").children]
    assert totals[:4] == ["Today", "0m", "This week", "30m"], totals
    expect_everywhere(seen, [("Answer mail", "9:00", "9:30")])
    type_and_enter(seen, "Sleep")
    expect_everywhere(seen, [("Answer mail", "9:00", "9:30"), recorded(seen, "Sleep")])
    seen.closes()


JOURNEYS = {journey.__name__: journey for journey in (
    first_start, edit, earlier_work, undo, offline, half_a_sentence, command_beside, midnight)}


if __name__ == "__main__":
    playing.main(JOURNEYS, __file__)
