#!/usr/bin/python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""What people do in the panel while they work in another application, which has the keyboard before and after. Each
journey ends by comparing what the command lists with what the server holds.

panel_window.py PROGRAMS [--out FOLDER] [JOURNEY…]     (playing.py says more)
"""

import subprocess

import playing
from timer_window import FIELD, expect_everywhere, recorded
from window import PATIENCE, Window, wait

PANEL = "Quick Entry"


class Terminal:
    """Another application: what is typed into it goes into a file, line by line."""

    def __init__(self, desk):
        self._desk, self._file, self._lines = desk, desk.home / "typed", 0
        desk.screen.starts("xterm", "-e", "sh", "-c", f"cat > {self._file}")
        wait(self._file.exists, "the other application")
        self.takes_keyboard()

    def takes_keyboard(self):
        assert self._desk.screen.does("xdotool", "search", "--sync", "--class", "xterm", "windowactivate", "--sync")

    def gets(self, line):
        """What is typed now arrives there."""
        self._desk.screen.types(line + "\n")
        wait(lambda: self._read()[-1:] == [line], f"{line!r} in the other application")
        self._lines += 1
        assert len(self._read()) == self._lines, self._read()

    def _read(self):
        return self._file.read_text(encoding="utf-8").splitlines()


class Panel:
    """The panel in a program that may have its window as well."""

    def __init__(self, seen):
        self._seen = seen

    def frame(self):
        return next((node for node in self._seen.nodes() if node.role == "frame" and node.name == PANEL), None)

    def _in_it(self, role, name=""):
        return [node for _, node in self.frame().all() if node.role == role and node.name.startswith(name)]

    def waits(self, text=""):
        """It is there with the keyboard, and that in its field."""
        wait(lambda: (frame := self.frame()) and frame.has("ACTIVE"), "the panel")
        self.waits_for_text(text)

    def waits_for_text(self, text):
        wait(lambda: [field.text() for field in self._in_it("text", FIELD)] == [text], f"{text!r} in the panel")

    def waits_for(self, role, name):
        return wait(lambda: self._in_it(role, name), f"{role} {name!r} in the panel")

    def waits_until_gone(self):
        wait(lambda: not self.frame(), "no panel")

    def rows(self):
        return [node.name for node in self._in_it("list item")]


def start_again(desk, *arguments):
    """A second start, which hands over what it was started for."""
    ended = subprocess.run([desk.programs / "orvane-desktop", "--data-dir", desk.data, *arguments], cwd=desk.home,
                           env=desk.environment(), stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                           stderr=subprocess.STDOUT, text=True, timeout=PATIENCE, check=False)
    assert (ended.returncode, ended.stdout) == (0, ""), ended


def expect_stored(desk, entries):
    """The same for the command and in the server."""
    wait(lambda: desk.served() == sorted(entries), f"{entries} in the server")
    assert desk.listed() == sorted(entries), desk.listed()


def by_itself(desk):
    """Nothing of the program runs: the panel alone comes, takes a sentence and is gone with its program."""
    desk.types('orvane projects add "Atlas API"')
    other = Terminal(desk)
    other.gets("before")
    seen = Window(desk, "--panel")
    panel = Panel(seen)
    panel.waits()
    assert [node.name for node in seen.nodes() if node.role == "frame"] == [PANEL]
    seen.types("Review the limits @atl")
    panel.waits_for("list item", "Atlas API, Project")
    seen.keys("Tab")
    panel.waits_for_text("Review the limits @Atlas-API ")
    seen.types("since 16:00")
    panel.waits_for("label", "16:00 – now")
    seen.keys("Return")
    seen.waits_for_end()
    other.gets("after")
    expect_stored(desk, [("Review the limits", "16:00", "now")])

    seen = Window(desk, "--panel")
    panel = Panel(seen)
    panel.waits_for("list item", "Stop Timer, Review the limits")
    seen.keys("Escape")
    seen.waits_for_end()
    other.gets("and after that")
    expect_stored(desk, [("Review the limits", "16:00", "now")])


def beside_the_window(desk):
    """The program runs behind another application: a second start opens its panel, as often as it is wanted."""
    desk.types('orvane add "Answer mail 9:00-9:30"')
    seen = Window(desk)
    seen.waits_for("label", "All saved")
    other = Terminal(desk)
    panel = Panel(seen)
    start_again(desk, "--panel")
    panel.waits()
    seen.types("Half a sent")
    panel.waits_for_text("Half a sent")
    seen.keys("Escape")
    panel.waits_until_gone()
    other.gets("in between")
    start_again(desk, "--panel")
    panel.waits("Half a sent")
    # Whoever turns to another application has left it.
    other.takes_keyboard()
    panel.waits_until_gone()
    start_again(desk, "--panel")
    panel.waits("Half a sent")
    seen.types("ence")
    panel.waits_for_text("Half a sentence")
    seen.keys("Return")
    panel.waits_until_gone()
    other.gets("after that")
    running = recorded(seen, "Half a sentence")
    expect_everywhere(seen, [("Answer mail", "9:00", "9:30"), running])

    # A row that is chosen is what Return does.
    start_again(desk, "--panel")
    panel.waits()
    seen.types("answ")
    panel.waits_for("list item", "Answer mail, ")
    seen.keys("Down", "Return")
    panel.waits_until_gone()
    other.gets("once more")
    again = wait(lambda: [entry for entry in seen.entries() if entry[2] == "now" and entry[0] == "Answer mail"],
                 "the entry that goes on")
    stopped = recorded(seen, "Half a sentence")
    expect_everywhere(seen, [("Answer mail", "9:00", "9:30"), stopped, *again])

    # From the window, to which the keyboard returns.
    start_again(desk)
    seen.waits_for_focus("text", FIELD)
    seen.keys("ctrl+alt+space")
    panel.waits()
    seen.keys("Escape")
    panel.waits_until_gone()
    seen.types("Typed in the window")
    seen.waits_for_text(FIELD, "Typed in the window")
    seen.closes()


def killed_and_offline(desk):
    """The program is killed in the middle of a word, and goes on without the server: the sentence arrives later, once."""
    desk.types("orvane status")
    seen = Window(desk, "--panel")
    Panel(seen).waits()
    seen.types("Draft the let")
    drafts = desk.data / "drafts.json"
    wait(lambda: drafts.exists() and "Draft the let" in drafts.read_text(encoding="utf-8"), "the draft")
    seen.kill()
    desk.kill_server()
    seen = Window(desk, "--panel", "--no-start-server")
    panel = Panel(seen)
    panel.waits("Draft the let")
    seen.types("ter 16:00-16:15")
    panel.waits_for("label", "16:00 – 16:15")
    seen.keys("Return")
    seen.waits_for_end()
    assert not drafts.exists()
    assert desk.served() == [], desk.served()
    desk.serve()
    assert desk.listed() == [("Draft the letter", "16:00", "16:15")], desk.listed()
    expect_stored(desk, [("Draft the letter", "16:00", "16:15")])


if __name__ == "__main__":
    playing.main({journey.__name__: journey for journey in (by_itself, beside_the_window, killed_and_offline)}, __file__)
