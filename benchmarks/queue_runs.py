# SPDX-License-Identifier: GPL-3.0-or-later
"""A queue of changes sent by the command, and a start beside a server that hangs or a long queue."""

import datetime
import json
import os
import shutil
import signal
import sqlite3
import subprocess
import time
import uuid

import command_runs

# What is kept in the store counts seconds from here.
EPOCH = datetime.datetime(2001, 1, 1, tzinfo=datetime.timezone.utc)


class Installation:
    """An installation of the command, its server running."""

    def __init__(self, binaries, folder):
        os.makedirs(folder)
        self.folder = folder
        self.orvane = [str(binaries / "orvane"), "--data-dir", folder, "--zone", "UTC"]
        command_runs.run(*self.orvane, "status")
        self.link = command_runs.Link(f"{folder}/server/run/server.sock")
        self.pid = self.link.hello["pid"]
        self.link.sign_in()
        self.workspace = self.link.call("GET", "/api/me")["defaultWorkspaceId"]

    def __enter__(self):
        return self

    def __exit__(self, *_):
        os.kill(self.pid, signal.SIGCONT)
        command_runs.wait_until_gone(self.pid)
        shutil.rmtree(self.folder)

    def store(self):
        (name,) = [name for name in os.listdir(self.folder) if name.endswith(".sqlite")]
        return sqlite3.connect(f"{self.folder}/{name}")

    def queue(self, count):
        """As many creations as if they had been made without the server, half an hour each, long ago."""
        start = (datetime.datetime(2026, 1, 5, tzinfo=datetime.timezone.utc) - EPOCH).total_seconds()
        with self.store() as database:
            for number in range(count):
                begin = start + 3600 * number
                details = {"description": f"Queued {number}", "tagIds": [], "isBillable": False, "shares": []}
                change = {"create": {"_0": {"details": details, "start": begin, "stop": begin + 1800,
                                            "describeParts": False},
                                     "id": str(uuid.uuid4()), "workspaceId": self.workspace}}
                database.execute("INSERT INTO outbox (change, created_at) VALUES (?, ?)",
                                 (json.dumps(change).encode(), time.time()))

    def waiting(self):
        with self.store() as database:
            return database.execute("SELECT COUNT(*) FROM outbox").fetchone()[0]

    def start(self):
        """How long `start` took, and how long after the call its entry begins, in seconds."""
        called = time.time()
        began = time.perf_counter()
        out = subprocess.run([*self.orvane, "--json", "start", "Measured"], capture_output=True, check=True).stdout
        took = time.perf_counter() - began
        begins = datetime.datetime.fromisoformat(json.loads(out)["entry"]["start"].replace("Z", "+00:00"))
        return took, begins.timestamp() - called


def processor_time(*arguments):
    """Runs a program to its end; the seconds of processor time that it used."""
    quiet = [(os.POSIX_SPAWN_OPEN, descriptor, "/dev/null", os.O_RDWR, 0) for descriptor in (0, 1, 2)]
    pid = os.posix_spawn(arguments[0], [str(argument) for argument in arguments], os.environ, file_actions=quiet)
    _, status, usage = os.wait4(pid, 0)
    if os.waitstatus_to_exitcode(status) != 0:
        raise RuntimeError(f"{arguments} failed")
    return usage.ru_utime + usage.ru_stime


def drain(installation, count):
    installation.queue(count)
    used = processor_time(*installation.orvane, "outbox", "flush")
    if installation.waiting() != 0:
        raise RuntimeError("the queue was not sent")
    return used


def draining(binaries, programs, folder):
    """Processor time of sending 1,000 and 4,000 changes, and of a bare program that makes 1,000 entries."""
    with Installation(binaries, f"{folder}/drain") as installation:
        drain(installation, 100)
        short = drain(installation, 1000)
        long = drain(installation, 4000)
        bare = processor_time(programs / "BareDrain", f"{installation.folder}/server/run/server.sock",
                              f"{folder}/bare.sqlite", 1000)
    os.remove(f"{folder}/bare.sqlite")
    return short, long, bare


def starting(binaries, folder):
    """`start` with a server that hangs, and beside 2,000 queued changes: how long it took, and its moment."""
    with Installation(binaries, f"{folder}/start") as installation:
        os.kill(installation.pid, signal.SIGSTOP)
        hanging = installation.start()
        os.kill(installation.pid, signal.SIGCONT)
        installation.queue(2000)
        behind = installation.start()
    return hanging, behind
