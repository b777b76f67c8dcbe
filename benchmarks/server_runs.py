# SPDX-License-Identifier: GPL-3.0-or-later
"""The server under load, as a process of its own: whoever asks while passwords are hashed, and many who list and change
entries at once."""

import http.client
import json
import os
import shutil
import sqlite3
import statistics
import subprocess
import threading
import time
import urllib.parse

import command_runs

REGISTRATIONS = 16


class Server:
    """A server over a folder of its own, and its account's sign-in."""

    def __init__(self, binaries, folder):
        self.folder = folder
        self.process = subprocess.Popen([binaries / "orvane-server", "--data-dir", folder, "--foreground"],
                                        stdout=subprocess.PIPE, stderr=subprocess.DEVNULL)
        if not self.process.stdout.readline():
            raise RuntimeError("the server does not start")
        self.link = command_runs.Link(f"{folder}/run/server.sock")
        self.link.sign_in()
        self.host = urllib.parse.urlsplit(self.link.hello["address"]).netloc

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.process.terminate()
        self.process.wait()
        self.process.stdout.close()
        shutil.rmtree(self.folder)

    def processor_time(self):
        """What it has used so far, in seconds."""
        with open(f"/proc/{self.process.pid}/stat", encoding="ascii") as stat:
            fields = stat.read().rsplit(")", 1)[1].split()
        return (int(fields[11]) + int(fields[12])) / os.sysconf("SC_CLK_TCK")

    def look(self):
        """How long a GET takes, in seconds."""
        began = time.perf_counter()
        self.link.call("GET", "/api/me")
        return time.perf_counter() - began

    def register(self, number, statuses):
        connection = http.client.HTTPConnection(self.host)
        body = {"email": f"user{number}@example.org", "password": "correct horse battery"}
        connection.request("POST", "/api/auth/register", json.dumps(body), {"Content-Type": "application/json"})
        statuses.append(connection.getresponse().status)
        connection.close()


def beside_registrations(binaries, folder):
    """The middle time of a GET when nothing else happens, and while accounts are registered, in seconds."""
    with Server(binaries, f"{folder}/registering") as server:
        idle = [server.look() for _ in range(400)][100:]
        statuses, beside = [], []
        threads = [threading.Thread(target=server.register, args=(number, statuses)) for number in range(REGISTRATIONS)]
        for thread in threads:
            thread.start()
        while len(statuses) < REGISTRATIONS:
            beside.append(server.look())
            time.sleep(0.002)
        for thread in threads:
            thread.join()
        if statuses != [201] * REGISTRATIONS:
            raise RuntimeError(f"the registrations were answered {statuses}")
    return statistics.median(idle), statistics.median(beside)


def under_load(binaries, programs, folder, clients, seconds):
    """What the load's program says, with the processor time that the server used for it; and the bare transactions."""
    with Server(binaries, f"{folder}/load") as server:
        workspace = server.link.call("GET", "/api/me")["defaultWorkspaceId"]
        token = server.link.headers["Authorization"].split()[1]
        used = server.processor_time()
        load = json.loads(subprocess.run(
            [programs / "ServerLoad", server.host.split(":")[1], token, workspace, str(clients), str(seconds)],
            check=True, capture_output=True).stdout)
        load["used"] = server.processor_time() - used
        with sqlite3.connect(f"{server.folder}/orvane-server.sqlite") as database:
            database.execute("VACUUM INTO ?", (f"{folder}/bare.sqlite",))
    bare = json.loads(subprocess.run([programs / "BareTransactions", f"{folder}/bare.sqlite", str(max(3, seconds // 5))],
                                     check=True, capture_output=True).stdout)
    return load, bare
