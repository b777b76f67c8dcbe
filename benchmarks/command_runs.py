# SPDX-License-Identifier: GPL-3.0-or-later
"""The command measured as a whole process, in an installation of its own with five thousand entries."""

import base64
import datetime
import hashlib
import http.client
import json
import os
import secrets
import signal
import socket
import sqlite3
import statistics
import time
import urllib.parse
import uuid

ENTRIES = 5000
ENTRIES_TODAY = 20
QUEUED = 100


def run(*arguments):
    """Runs a program to its end; how long it took in seconds, and the most memory it held in MB."""
    quiet = [(os.POSIX_SPAWN_OPEN, descriptor, "/dev/null", os.O_RDWR, 0) for descriptor in (0, 1, 2)]
    began = time.perf_counter()
    pid = os.posix_spawn(arguments[0], [str(argument) for argument in arguments], os.environ, file_actions=quiet)
    _, status, usage = os.wait4(pid, 0)
    took = time.perf_counter() - began
    if os.waitstatus_to_exitcode(status) != 0:
        raise RuntimeError(f"{arguments} failed")
    return took, usage.ru_maxrss / 1024


def side_by_side(runs, first, second):
    """The middle time of two programs that take turns, and the most memory of the first."""
    times = ([], [])
    peak = 0
    for turn in range(runs + 2):
        for side, arguments in enumerate((first, second)):
            took, memory = run(*arguments)
            if turn >= 2:
                times[side].append(took)
            peak = max(peak, memory if side == 0 else 0)
    return statistics.median(times[0]), statistics.median(times[1]), peak


class Link:
    """The server's own socket, and its API as the account on this computer."""

    def __init__(self, path):
        self.socket = socket.socket(socket.AF_UNIX)
        self.socket.connect(path)
        self.lines = self.socket.makefile("rw")
        self.hello = self.ask({"command": "hello"})

    def ask(self, request):
        self.lines.write(json.dumps(request) + "\n")
        self.lines.flush()
        return json.loads(self.lines.readline())

    def sign_in(self):
        verifier = secrets.token_urlsafe(48)
        digest = hashlib.sha256(verifier.encode()).digest()
        challenge = base64.urlsafe_b64encode(digest).rstrip(b"=").decode()
        code = self.ask({"command": "code", "codeChallenge": challenge, "timeZone": "UTC"})["code"]
        self.http = http.client.HTTPConnection(urllib.parse.urlsplit(self.hello["address"]).netloc)
        self.headers = {"Content-Type": "application/json"}
        tokens = self.call("POST", "/api/auth/external/exchange", {"code": code, "codeVerifier": verifier})["tokens"]
        self.headers["Authorization"] = "Bearer " + tokens["accessToken"]

    def call(self, method, path, body=None):
        self.http.request(method, path, json.dumps(body) if body is not None else None, self.headers)
        answer = self.http.getresponse()
        text = answer.read()
        if answer.status >= 300:
            raise RuntimeError(f"{method} {path}: {answer.status} {text.decode()}")
        return json.loads(text) if text else None


def instant(moment):
    return moment.strftime("%Y-%m-%dT%H:%M:%S.000Z")


def starts(monday, today):
    """When the entries start: a few of them today, the others over the week's other days."""
    others = [monday + datetime.timedelta(days=day) for day in range(7)]
    others = [day for day in others if day.date() != today]
    for number in range(ENTRIES - ENTRIES_TODAY):
        yield others[number % 6] + datetime.timedelta(seconds=90 * (number // 6))
    midnight = datetime.datetime.combine(today, datetime.time())
    for number in range(ENTRIES_TODAY):
        yield midnight + datetime.timedelta(minutes=5 * number)


def fill(link, workspace, monday, today):
    path = f"/api/workspaces/{workspace}"
    projects = [link.call("POST", path + "/projects",
                          {"name": f"Project {number}", "color": "#3366cc", "isPrivate": False, "isBillable": True})
                for number in range(10)]
    for number, start in enumerate(starts(monday, today)):
        link.call("POST", path + "/time-entries", {
            "id": str(uuid.uuid4()), "description": f"Review the change to the report's totals, number {number}",
            "projectId": projects[number % 10]["id"], "tagIds": [], "isBillable": True, "shares": [],
            "describeParts": False, "start": instant(start), "stop": instant(start + datetime.timedelta(seconds=60))})


def store_file():
    (store,) = [name for name in os.listdir() if name.endswith(".sqlite")]
    return store


def snapshot_size():
    """How many entries the installation keeps for the time without the server."""
    with sqlite3.connect(store_file()) as database:
        rows = database.execute("SELECT value FROM document WHERE key LIKE 'workspace:%'").fetchall()
    return sum(len(json.loads(value)["entries"]) for (value,) in rows)


def queue_changes(orvane):
    """Makes changes while the server is away, so that they wait."""
    for number in range(QUEUED):
        run(*orvane, "--no-start-server", "start", f"Look at the report's totals, number {number}")
    with sqlite3.connect(store_file()) as database:
        (rows,) = database.execute("SELECT COUNT(*) FROM outbox").fetchone()
    if rows < QUEUED:
        raise RuntimeError(f"{rows} changes wait")


def wait_until_gone(pid):
    """The server is nobody's child here; its socket refuses once it is gone."""
    os.kill(pid, signal.SIGTERM)
    deadline = time.monotonic() + 20
    while time.monotonic() < deadline:
        try:
            os.kill(pid, 0)
        except ProcessLookupError:
            return
        time.sleep(0.02)
    raise RuntimeError("the server does not end")


def measure(binaries, programs, folder, runs):
    """Times and memory of `status`, `list` and a bar's line, each beside its bare program."""
    os.chdir(folder)
    orvane = [binaries / "orvane", "--data-dir", folder, "--zone", "UTC"]
    run(*orvane, "status")
    link = Link("server/run/server.sock")
    pid = link.hello["pid"]
    try:
        link.sign_in()
        workspace = link.call("GET", "/api/me")["defaultWorkspaceId"]
        today = datetime.datetime.now(datetime.timezone.utc).date()
        midnight = datetime.datetime.combine(today, datetime.time())
        preferences = link.call("GET", "/api/me")["preferences"]
        monday = midnight - datetime.timedelta(days=(today.isoweekday() - preferences["weekStart"]) % 7)
        fill(link, workspace, monday, today)
        run(*orvane, "status")
        if snapshot_size() != ENTRIES:
            raise RuntimeError(f"the snapshot holds {snapshot_size()} entries")
        bare = [programs / "BareStatus", "server/run/server.sock", instant(monday),
                instant(monday + datetime.timedelta(days=7))]
        status = side_by_side(runs, [*orvane, "status"], bare)
    finally:
        wait_until_gone(pid)
    offline = side_by_side(runs, [*orvane, "--no-start-server", "list"], [programs / "BareIdle"])
    queue_changes(orvane)
    line = side_by_side(runs, [*orvane, "status", "--format", "{running} {elapsed} {today} {project} {waiting}"],
                        [programs / "BareStatusLine", store_file()])
    return status, offline, line
