#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Puts another user's program in wait for the server's port, and shows that what it gets there is worth nothing.

The server is ended again and again (SIGTERM, SIGKILL) while many requests are under way, and started again by who
sends them. Whenever the port is free, the stranger takes it for a moment, records what comes and answers with a
forgery. After each round everything that it recorded is sent to the new server, as it was and without its proof.

usage: stranger_trial.py BUILD-FOLDER SECONDS      (as root, for the other user)
"""

import base64
import collections
import json
import os
import random
import select
import signal
import socket
import subprocess
import sys
import tempfile
import time

OTHER_USER = 65534
PASSWORD = "a-password-that-no-port-may-see"
FORGED = "forged-by-the-stranger"


class Stranger:
    """The program of the other user: a child process that writes what it records to a pipe, a line each."""

    def __init__(self, port):
        read_end, write_end = os.pipe()
        self.pid = os.fork()
        if self.pid == 0:
            os.close(read_end)
            os.setgroups([])
            os.setgid(OTHER_USER)
            os.setuid(OTHER_USER)
            try:
                lie_in_wait(port, write_end)
            finally:
                os._exit(1)
        os.close(write_end)
        self.pipe = read_end
        self.buffer = b""

    def records(self):
        """The requests recorded since the last call, as bytes."""
        while select.select([self.pipe], [], [], 0)[0]:
            data = os.read(self.pipe, 1 << 16)
            if not data:
                raise SystemExit("the stranger died")
            self.buffer += data
        *lines, self.buffer = self.buffer.split(b"\n")
        return [json.loads(line) for line in lines]

    def end(self):
        os.kill(self.pid, signal.SIGKILL)
        os.waitpid(self.pid, 0)


def lie_in_wait(port, write_end):
    while True:
        listener = socket.socket()
        listener.setsockopt(socket.SOL_SOCKET, socket.SO_REUSEADDR, 1)
        try:
            listener.bind(("127.0.0.1", port))
            listener.listen(128)
        except OSError:
            listener.close()
            time.sleep(0.0001)
            continue
        os.write(write_end, b'{"taken": true}\n')
        serve_forgeries(listener, time.monotonic() + random.uniform(0.005, 0.1), write_end)
        # The server has to come back before there is anything to take again.
        while not answers(port):
            time.sleep(0.001)


def answers(port):
    with socket.socket() as client:
        return client.connect_ex(("127.0.0.1", port)) == 0


def serve_forgeries(listener, until, write_end):
    sockets = {listener: b""}
    while (left := until - time.monotonic()) > 0:
        for ready in select.select(list(sockets), [], [], left)[0]:
            if ready is listener:
                sockets[listener.accept()[0]] = b""
                continue
            try:
                data = ready.recv(1 << 16)
            except OSError:
                data = b""
            if not data:
                ready.close()
                del sockets[ready]
                continue
            sockets[ready] = answer_whole(ready, sockets[ready] + data, write_end)
    for each in sockets:
        each.close()


def answer_whole(connection, data, write_end):
    """Records and answers each whole request; what is left is returned."""
    while b"\r\n\r\n" in data:
        head, rest = data.split(b"\r\n\r\n", 1)
        lengths = [line.split(b":")[1] for line in head.lower().split(b"\r\n") if line.startswith(b"content-length:")]
        length = int(lengths[0]) if lengths else 0
        if len(rest) < length:
            break
        request, data = head + b"\r\n\r\n" + rest[:length], rest[length:]
        os.write(write_end, json.dumps({"request": base64.b64encode(request).decode()}).encode() + b"\n")
        body = json.dumps([{"id": "forged", "workspaceId": "w", "name": FORGED}]).encode()
        proof = b"Orvane-Proof: v1.%s\r\n" % base64.urlsafe_b64encode(os.urandom(32)).rstrip(b"=")
        reply = b"HTTP/1.1 200 OK\r\nContent-Type: application/json\r\n%sContent-Length: %d\r\n\r\n%s"
        try:
            connection.sendall(reply % (proof, len(body), body))
        except OSError:
            pass
    return data


def hello(folder):
    """What the server says over its socket; nothing while it is away."""
    with socket.socket(socket.AF_UNIX) as client:
        client.settimeout(5)
        try:
            client.connect(folder + "/run/server.sock")
            client.sendall(b'{"command":"hello"}\n')
            return json.loads(client.makefile().readline())
        except (OSError, ValueError):
            return None


def other_than(folder, pid):
    """Waits for a server that is another process."""
    until = time.monotonic() + 60
    while time.monotonic() < until:
        found = hello(folder)
        if found and found["pid"] != pid:
            return found
        time.sleep(0.01)
    raise SystemExit("no server came back within a minute")


def status_of(port, request):
    with socket.create_connection(("127.0.0.1", port), 30) as client:
        client.sendall(request)
        line = client.makefile("rb").readline().split()
        return int(line[1]) if len(line) > 1 else 0


def without_proof(request):
    head, body = request.split(b"\r\n\r\n", 1)
    lines = [line for line in head.split(b"\r\n") if not line.lower().startswith(b"orvane-proof:")]
    return b"\r\n".join(lines) + b"\r\n\r\n" + body


def trial(build, folder, seconds):
    load = subprocess.Popen(
        [f"{build}/tests/stranger-load", folder, f"{build}/bin/orvane-server", PASSWORD, FORGED],
        stdin=subprocess.PIPE, stdout=subprocess.PIPE, text=True)
    if load.stdout.readline() != "ready\n":
        raise SystemExit("the load did not begin")
    server = other_than(folder, 0)
    port = int(server["address"].rsplit(":", 1)[1])
    stranger = Stranger(port)
    seen, faults = collections.Counter(), []
    replayed, bare = collections.Counter(), collections.Counter()
    try:
        until = time.monotonic() + seconds
        while time.monotonic() < until:
            time.sleep(random.uniform(0.05, 0.4))
            how = random.choice([signal.SIGTERM, signal.SIGKILL])
            os.kill(server["pid"], how)
            seen[how.name] += 1
            server = other_than(folder, server["pid"])
            for record in stranger.records():
                if "taken" in record:
                    seen["taken"] += 1
                    continue
                request = base64.b64decode(record["request"])
                seen["requests"] += 1
                seen["tokens"] += b"\nauthorization: bearer" in request.lower()
                replayed[status_of(port, request)] += 1
                bare[status_of(port, without_proof(request))] += 1
                if PASSWORD.encode() in request:
                    faults.append("a password was sent to the port")
                if b"\norvane-proof:" not in request.lower():
                    faults.append("a request was sent without a proof")
    finally:
        stranger.end()
        result = load.communicate()[0]
        last = hello(folder)
        if last:
            os.kill(last["pid"], signal.SIGKILL)
    if load.returncode != 0:
        raise SystemExit("the load failed")
    return seen, replayed, bare, json.loads(result), faults


def main():
    if len(sys.argv) != 3 or os.geteuid() != 0:
        raise SystemExit(__doc__)
    build, seconds = os.path.abspath(sys.argv[1]), float(sys.argv[2])
    with tempfile.TemporaryDirectory() as root:
        seen, replayed, bare, load, faults = trial(build, root + "/server", seconds)
    print(f"servers ended: {seen['SIGTERM']} by SIGTERM, {seen['SIGKILL']} by SIGKILL; "
          f"the stranger had the port {seen['taken']} times")
    print(f"it recorded {seen['requests']} requests, {seen['tokens']} of them with a token")
    print(f"sent to the next server: {dict(replayed)} as they were, {dict(bare)} without their proof")
    print(f"the user's programs: {load}")
    if seen["requests"] == 0:
        faults.append("nothing was recorded, so nothing was shown")
    if set(replayed) - {401}:
        faults.append("a recorded request was answered with something else than 401")
    if any(status < 400 for status in bare):
        faults.append("a recorded request was taken once its proof was gone")
    if load["believed"]:
        faults.append("a forged answer was believed")
    for fault in sorted(set(faults)):
        print("stranger: FAILED:", fault)
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
