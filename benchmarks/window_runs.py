# SPDX-License-Identifier: GPL-3.0-or-later
"""The window measured on a display of its own, over an installation with five thousand entries and a running timer."""

import datetime
import json
import os
import statistics
import subprocess
import time
import uuid

import command_runs


def spoken(program, *arguments):
    """What a program that measures itself says."""
    done = subprocess.run([program, *arguments], check=True, stdout=subprocess.PIPE, text=True, timeout=300,
                          env={**os.environ, "QT_QPA_PLATFORM": "xcb", "ORVANE_BENCHMARK_BEGAN": str(time.monotonic())})
    return json.loads(done.stdout.strip().splitlines()[-1])


def filled(binaries, folder):
    """Makes the installation and leaves its server running; answers the way to it."""
    os.chdir(folder)
    orvane = [binaries / "orvane", "--data-dir", folder, "--zone", "UTC"]
    command_runs.run(*orvane, "status")
    link = command_runs.Link("server/run/server.sock")
    link.sign_in()
    me = link.call("GET", "/api/me")
    today = datetime.datetime.now(datetime.timezone.utc).date()
    midnight = datetime.datetime.combine(today, datetime.time())
    monday = midnight - datetime.timedelta(days=(today.isoweekday() - me["preferences"]["weekStart"]) % 7)
    command_runs.fill(link, me["defaultWorkspaceId"], monday, today)
    command_runs.run(*orvane, "start", "Look at the report's totals")
    if command_runs.snapshot_size() < command_runs.ENTRIES:
        raise RuntimeError(f"the snapshot holds {command_runs.snapshot_size()} entries")
    return link


def painted(window, folder, link, count=20):
    """The time from a change on another device to the frame that shows it, the middle one, in ms."""
    workspace = link.call("GET", "/api/me")["defaultWorkspaceId"]
    with subprocess.Popen([window, "live", folder, str(count)], stdout=subprocess.PIPE, text=True,
                          env={**os.environ, "QT_QPA_PLATFORM": "xcb"}) as shown:
        if shown.stdout.readline() != "watching\n":
            raise RuntimeError("the window does not watch")
        took = []
        for number in range(count):
            stop = datetime.datetime.now(datetime.timezone.utc)
            entry = {"id": str(uuid.uuid4()), "description": f"Live {number}", "tagIds": [], "isBillable": False,
                     "shares": [], "describeParts": False, "stop": command_runs.instant(stop),
                     "start": command_runs.instant(stop - datetime.timedelta(seconds=60))}
            began = time.perf_counter()
            link.call("POST", f"/api/workspaces/{workspace}/time-entries", entry)
            if shown.stdout.readline() != f"Live {number}\n":
                raise RuntimeError("the window shows something else")
            took.append(1e3 * (time.perf_counter() - began))
            time.sleep(0.2)
    return statistics.median(took)


def measure(binaries, programs, folder, runs, seconds):
    """What opening, scrolling, typing and doing nothing come to, beside an empty window where that says something."""
    screen = subprocess.Popen(["Xvfb", "-displayfd", "1", "-screen", "0", "1500x950x24", "-nolisten", "tcp",
                               "-noreset"], stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, text=True)
    os.environ["DISPLAY"] = ":" + screen.stdout.readline().strip()
    # It gives the window the keyboard.
    manager = subprocess.Popen(["openbox"], stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
    window = programs / "WindowBenchmark"
    try:
        link = filled(binaries, folder)
        try:
            ours, bare = [], []
            for _ in range(runs):
                ours.append(spoken(window, "open", folder))
                bare.append(spoken(programs / "BareWindow"))
            ratio = {what: statistics.median(each[what] for each in ours) / statistics.median(each[what] for each in bare)
                     for what in ("firstFrame", "memory")}
            return {"ratio": ratio, "open": ours[-1], "bare": bare[-1],
                    "scroll": spoken(window, "scroll", folder),
                    "type": spoken(window, "type", folder),
                    "panel": spoken(window, "panel", folder),
                    "painted": painted(window, folder, link),
                    "rest": spoken(window, "rest", folder, str(seconds)),
                    "hidden": spoken(window, "hidden", folder, str(seconds))}
        finally:
            command_runs.wait_until_gone(link.hello["pid"])
    finally:
        manager.terminate()
        manager.wait()
        screen.terminate()
        screen.wait()
