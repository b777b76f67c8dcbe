# SPDX-License-Identifier: GPL-3.0-or-later
"""The real window on a display of its own, found by accessible roles and names, worked with real keys and pointer.

Roles and names are what a screen reader gets of the window, so a control without them cannot be used here either.
"""

import contextlib
import datetime
import functools
import os
import pathlib
import re
import signal
import sqlite3
import subprocess
import tempfile
import time

import gi
from gi.repository import GLib

import terminal

SUPPORT = pathlib.Path(__file__).resolve().parents[1] / "support"
LAUNCHER = "/usr/libexec/at-spi-bus-launcher"
# A busy machine under sanitizers is slow; whoever waits goes on as soon as what is waited for is there.
SCREEN_PATIENCE = 20
PATIENCE = 40
# Who asked Qt for what it keeps is only seen when stacks are really unwound, since Qt has no frame pointers; all of
# each stack would take seconds.
UNWINDING = "fast_unwind_on_malloc=0:malloc_context_size=10"
# What the screen shows of an entry: "Write the report, no project, 09:00 to 09:30, 30m".
SPOKEN_TIMES = re.compile(r"\b(\d+:\d\d) to (\d+:\d\d)\b")


def wait(condition, what, seconds=PATIENCE):
    """What the condition answers once that is true."""
    deadline = time.monotonic() + seconds
    while True:
        with contextlib.suppress(GLib.Error):  # it looked at something that was just going away
            if answer := condition():
                return answer
        assert time.monotonic() < deadline, f"waited {seconds} s in vain for {what}"
        time.sleep(0.05)


class Screen:
    """A display with a window manager, a session bus and the bus of accessibility. One for a process, which gets its
    environment, since it reads the display and the buses from there."""

    def __init__(self):
        self._ends = contextlib.ExitStack()
        self._folder = pathlib.Path(self._ends.enter_context(
            tempfile.TemporaryDirectory(prefix="orvane-screen-", ignore_cleanup_errors=True)))
        self.environment = {"LC_ALL": "C.UTF-8", "QT_LINUX_ACCESSIBILITY_ALWAYS_ON": "1",
                            "QT_QUICK_BACKEND": "software", "QT_QPA_PLATFORM": "xcb"}

    def __enter__(self):
        try:
            self._begin()
        except BaseException as error:
            error.add_note((self._folder / "log").read_text(encoding="utf-8", errors="replace"))
            self._ends.close()
            raise
        return self

    def __exit__(self, *_):
        self._ends.close()

    def _begin(self):
        runtime = self._folder / "run"
        runtime.mkdir(mode=0o700)
        self.environment["XDG_RUNTIME_DIR"] = str(runtime)
        # Left to itself, one that begins may take the number of one that is just ending and removes its socket. Without
        # -noreset it would refuse others at the moment when its only client goes.
        self.environment["DISPLAY"] = f":{100 + os.getpid() % 50000}"
        self._says(["Xvfb", self.environment["DISPLAY"], "-displayfd", "1", "-screen", "0", "1500x950x24",
                    "-nolisten", "tcp", "-noreset"])
        self.environment["DBUS_SESSION_BUS_ADDRESS"] = self._says(
            ["dbus-daemon", "--nofork", "--print-address", f"--config-file={SUPPORT / 'bare-bus.conf'}"])
        self._runs([LAUNCHER, "--launch-immediately"])
        self._runs(["openbox"])
        os.environ.update(self.environment)
        wait(lambda: self.does("dbus-send", "--session", "--print-reply", "--dest=org.a11y.Bus", "/org/a11y/bus",
                               "org.a11y.Bus.GetAddress"), "the bus of accessibility", SCREEN_PATIENCE)
        wait(lambda: self.does("xdotool", "get_num_desktops"), "the window manager", SCREEN_PATIENCE)

    def starts(self, *command):
        """Another program, which ends with the screen."""
        self._runs(command)

    def does(self, *command):
        return subprocess.run(command, env=self._whole(), stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL,
                              stderr=subprocess.DEVNULL, timeout=PATIENCE, check=False).returncode == 0

    def _whole(self):
        return {"HOME": str(self._folder), "PATH": "/usr/bin:/bin", **self.environment}

    def _runs(self, command, **options):
        # Should this process be killed, they end as well.
        with open(self._folder / "log", "ab") as log:
            process = subprocess.Popen(["setpriv", "--pdeathsig", "KILL", *command], env=self._whole(),
                                       stdin=subprocess.DEVNULL, stderr=log, **{"stdout": log, **options})
        self._ends.callback(end, process)
        return process

    def _says(self, command):
        process = self._runs(command, stdout=subprocess.PIPE, text=True)
        line = process.stdout.readline().strip()
        process.stdout.close()
        assert line, f"{command[0]} does not start: {(self._folder / 'log').read_text()}"
        return line

    def picture(self, path):
        self.does("import", "-window", "root", str(path))

    def keys(self, *chords):
        """Chords such as "ctrl+z", one after the other."""
        assert self.does("xdotool", "key", "--delay", "4", *chords), chords

    def types(self, text):
        assert self.does("xdotool", "type", "--delay", "4", text), text

    def clicks(self, extents):
        self.points_at(extents)
        assert self.does("xdotool", "click", "1")

    def points_at(self, extents):
        x, y = extents.x + extents.width // 2, extents.y + extents.height // 2
        assert self.does("xdotool", "mousemove", str(x), str(y))


def end(process):
    process.terminate()
    try:
        process.wait(10)
    except subprocess.TimeoutExpired:
        process.kill()
        process.wait()


class Desk(terminal.Installation):
    """An installation whose command and window share the screen's buses and a clock that runs on from `now`."""

    def __init__(self, screen, programs, now="2026-03-06T16:20:00Z"):
        self.screen, self.programs = screen, pathlib.Path(programs)
        super().__init__(self.programs / "orvane", now=now)
        self.windows = []
        self._servers = []

    def __exit__(self, *_):
        for window in self.windows:
            window.kill()
        super().__exit__()
        for server in self._servers:
            end(server)

    @property
    def now(self):
        now = self._now + datetime.timedelta(seconds=time.monotonic() - self._set)
        return now.strftime("%Y-%m-%dT%H:%M:%S.%fZ")[:-4] + "Z"

    @now.setter
    def now(self, text):
        self._now = datetime.datetime.fromisoformat(text.replace("Z", "+00:00"))
        self._set = time.monotonic()

    def environment(self):
        return {**super().environment(), **self.screen.environment}

    def kill_server(self):
        terminal.kill_server(self.data)

    def serve(self, data=None):
        """The server of this data folder, or of another, comes back by itself, without a command that would send what
        waits. Its address."""
        environment = {name: value for name, value in self.environment().items() if name != "ORVANE_NOW"}
        server = subprocess.Popen(
            ["setpriv", "--pdeathsig", "KILL", self.programs / "orvane", "--data-dir", data or self.data, "serve"],
            env=environment, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, text=True)
        self._servers.append(server)
        address = server.stdout.readline().strip()
        assert address.startswith("http://"), "the server says where it is"
        return address

    def listed(self, options=""):
        """What the command lists of yesterday and today, the running entry among it, as (what, from, to)."""
        days = self.value(f"orvane --json {options} list --from yesterday")["days"]
        return sorted(entry_of(entry["description"], moment(entry["start"]), entry["stop"] and moment(entry["stop"]))
                      for day in days for entry in day["entries"])

    def served(self, data=None):
        """The same as it stands in the server's own database, this data folder's or another's."""
        with contextlib.closing(sqlite3.connect(
                f"file:{data or self.data}/server/orvane-server.sqlite?mode=ro", uri=True)) as database:
            rows = database.execute("SELECT description, start_at, stop_at FROM time_entries").fetchall()
        return sorted(entry_of(what, *(at and datetime.datetime.fromtimestamp(at / 1000, datetime.timezone.utc)
                                       for at in times)) for what, *times in rows)


def moment(text):
    return datetime.datetime.fromisoformat(text.replace("Z", "+00:00"))


def entry_of(what, start, stop):
    return what, f"{start:%-H:%M}", f"{stop:%-H:%M}" if stop else "now"


class Node:
    """Something accessible with what is seen in it, as it was when it was looked at."""

    def __init__(self, accessible):
        self._accessible = accessible
        self.role, self.name = accessible.get_role_name(), accessible.get_name()
        self._states = accessible.get_state_set()
        self.children = list(self._look()) if self.has("SHOWING") else []

    def _look(self):
        for index in range(self._accessible.get_child_count()):
            child = self._accessible.get_child_at_index(index)
            node = child and Node(child)
            if node and node.has("SHOWING"):
                yield node

    def has(self, state):
        return self._states.contains(getattr(atspi().StateType, state))

    def all(self, depth=0):
        """(depth, node) of this one and of what is in it."""
        yield depth, self
        for child in self.children:
            yield from child.all(depth + 1)

    # These two as they are now.

    def text(self):
        """What stands in a field."""
        return self._accessible.get_text_iface().get_text(0, -1)

    def extents(self):
        return self._accessible.get_extents(atspi().CoordType.SCREEN)


@functools.cache
def atspi():
    """Not before the screen is there: it looks for the bus once."""
    gi.require_version("Atspi", "2.0")
    from gi.repository import Atspi  # pylint: disable=import-outside-toplevel
    # What is read is what is there now; nothing here hears of changes.
    Atspi.get_desktop(0).set_cache_mask(Atspi.Cache.NONE)
    return Atspi


class Window:
    """The program's window, from its start to its end."""

    def __init__(self, desk, *arguments):
        self.desk, self._screen = desk, desk.screen
        self._log = tempfile.TemporaryFile()
        environment = {**desk.environment(), "ASAN_OPTIONS": UNWINDING,
                       "LSAN_OPTIONS": f"suppressions={SUPPORT / 'window-leaks.supp'}:print_suppressions=0"}
        self._process = subprocess.Popen(
            ["setpriv", "--pdeathsig", "KILL", desk.programs / "orvane-desktop", "--data-dir", desk.data, *arguments],
            env=environment, cwd=desk.home, stdin=subprocess.DEVNULL, stdout=self._log, stderr=self._log)
        desk.windows.append(self)
        self._application = wait(self._find_application, "the window on the bus of accessibility")
        wait(lambda: any(node.role == "frame" and node.has("ACTIVE") for node in self.nodes()), "the active window")

    def _find_application(self):
        assert self.is_running(), f"the window ended:\n{self.log()}"
        desktop = atspi().get_desktop(0)
        for index in range(desktop.get_child_count()):
            with contextlib.suppress(GLib.Error):  # one that is about to go
                application = desktop.get_child_at_index(index)
                if application and application.get_process_id() == self._process.pid:
                    return application
        return None

    # What it shows

    def tree(self):
        """(depth, node) of all that is seen."""
        while True:
            try:
                return list(Node(self._application).all())
            except GLib.Error:  # what was looked at was just going away
                assert self.is_running(), f"the window ended:\n{self.log()}"

    def nodes(self):
        return [node for _, node in self.tree()]

    def outline(self):
        return "\n".join(f"{'  ' * depth}{node.role} {node.name!r}{' *' if node.has('FOCUSED') else ''}"
                         for depth, node in self.tree())

    def all_seen(self, role, name=""):
        """The controls of that role whose name the pattern matches from the beginning."""
        return [node for node in self.nodes() if node.role == role and re.match(name, node.name)]

    def waits_for(self, role, name, **options):
        """The one control of that role and name."""
        return wait(lambda: len(found := self.all_seen(role, name)) == 1 and found[0], f"{role} {name!r}", **options)

    def waits_until_gone(self, role, name):
        wait(lambda: not self.all_seen(role, name), f"no {role} {name!r}")

    def focused(self):
        """The role and name of what has the keyboard."""
        # Qt calls what is around it focused, too.
        return next(((node.role, node.name) for node in reversed(self.nodes())
                     if node.has("FOCUSED") and node.has("FOCUSABLE")), None)

    def waits_for_focus(self, role, name):
        wait(lambda: (found := self.focused()) and found[0] == role and re.match(name, found[1]),
             f"the keyboard at {role} {name!r}")

    def waits_for_text(self, name, text):
        """The field of that name holds the text."""
        wait(lambda: [field.text() for field in self.all_seen("text", name)] == [text], f"{text!r} in {name!r}")

    def entries(self):
        """What the rows and the running band say: (what, from, to). A row that draws something else stands out."""
        shown = []
        for node in self.nodes():
            if node.role == "list item" and (times := SPOKEN_TIMES.search(node.name)):
                what = node.name.split(", ")[0]
                drawn = {child.name for _, child in node.all() if child is not node}
                if not {what, " – ".join(times.groups())} <= drawn:
                    what = f"{node.name}, drawn as {drawn}"
                shown.append((what, *map(unpadded, times.groups())))
            elif node.role == "panel" and node.name == "Running timer":
                what = next(child.name for child in node.children if child.role == "push button")
                labels = [child.name for child in node.children if child.role == "label"]
                since = "".join(label for label in labels if label.startswith("since "))
                shown.append((what, unpadded(since[len("since "):][:5]), "now"))
        return sorted(shown)

    # What one does with it

    def keys(self, *chords):
        self._screen.keys(*chords)

    def types(self, text):
        self._screen.types(text)

    def clicks(self, role, name):
        self._screen.clicks(self.waits_for(role, name).extents())

    def points_at(self, role, name):
        self._screen.points_at(self.waits_for(role, name).extents())

    def top(self, role, name):
        """Where its upper edge is on the screen."""
        return self.waits_for(role, name).extents().y

    # How it ends

    def log(self):
        """What it said, but for the most of a long one."""
        self._log.seek(0)
        return self._log.read(4000).decode(errors="replace")

    def is_running(self):
        return self._process.poll() is None

    def closes(self):
        """As a person closes it."""
        self.keys("alt+F4")
        self.waits_for_end()

    def waits_for_end(self):
        """It ends by itself and in order, leaks nothing and had no fault to tell of."""
        assert self._process.wait(PATIENCE) == 0, f"the window ended with {self._process.returncode}:\n{self.log()}"
        assert not self.log(), f"the window complains:\n{self.log()}"

    def halts(self):
        """It hears and does nothing for a while."""
        self._process.send_signal(signal.SIGSTOP)

    def goes_on(self):
        self._process.send_signal(signal.SIGCONT)

    def kill(self):
        self._process.kill()
        self._process.wait()


def unpadded(clock):
    return clock.removeprefix("0")
