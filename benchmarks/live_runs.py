# SPDX-License-Identifier: GPL-3.0-or-later
"""Live sync as its clients see it: from a change on one to the news of it on another, beside a server that only takes a
POST, commits it and hands it to a WebSocket; and a thousand who listen at once."""

import base64
import http.client
import os
import resource
import select
import socket
import statistics
import struct
import subprocess
import time

import server_runs

RECORD_END = b"\x1e"


class WebSocket:
    """As little of a WebSocket as short texts need."""

    def __init__(self, host, target, token=None):
        address, port = host.split(":")
        self.socket = socket.create_connection((address, int(port)))
        self.socket.setsockopt(socket.IPPROTO_TCP, socket.TCP_NODELAY, 1)
        key = base64.b64encode(os.urandom(16)).decode()
        bearer = f"Authorization: Bearer {token}\r\n" if token else ""
        self.socket.sendall(f"GET {target} HTTP/1.1\r\nHost: {host}\r\nUpgrade: websocket\r\nConnection: Upgrade\r\n"
                            f"Sec-WebSocket-Key: {key}\r\nSec-WebSocket-Version: 13\r\n{bearer}\r\n".encode())
        answer = b""
        while b"\r\n\r\n" not in answer:
            answer += self.more()
        if not answer.startswith(b"HTTP/1.1 101"):
            raise RuntimeError(answer.decode())

    def more(self):
        got = self.socket.recv(65536)
        if not got:
            raise RuntimeError("the server hung up")
        return got

    def send(self, text):
        size = struct.pack("!B", 0x80 | len(text)) if len(text) < 126 else struct.pack("!BH", 0x80 | 126, len(text))
        self.socket.sendall(b"\x81" + size + bytes(4) + text)

    def hear(self, end=b""):
        """What comes next, up to those bytes."""
        heard = self.more()
        while not heard.endswith(end):
            heard += self.more()
        return heard


def watcher(server, workspace, token):
    ticket = server.link.call("POST", "/api/hubs/sync/negotiate?negotiateVersion=1")["connectionToken"]
    hub = WebSocket(server.host, f"/api/hubs/sync?id={ticket}", token)
    hub.send(b'{"protocol":"json","version":1}' + RECORD_END)
    hub.hear(RECORD_END)
    hub.send(b'{"type":1,"invocationId":"0","target":"Watch","arguments":["%s"]}' % workspace.encode() + RECORD_END)
    if b'"result":true' not in hub.hear(RECORD_END):
        raise RuntimeError("the workspace cannot be watched")
    return hub


def posted(connection, path, body, headers, hears):
    """The time from a POST to what `hears` waits for, in seconds; the POST's answer comes after that."""
    began = time.perf_counter()
    connection.request("POST", path, body, headers)
    hears()
    took = time.perf_counter() - began
    answer = connection.getresponse()
    answer.read()
    if answer.status != 201:
        raise RuntimeError(f"POST {path}: {answer.status}")
    return took


def entry(number):
    return (f'{{"id":"live-{number}","description":"Review number {number}","tagIds":[],"isBillable":false,"shares":[],'
            '"describeParts":false,"start":"2026-03-02T09:00:00.000Z","stop":"2026-03-02T09:30:00.000Z"}')


def of_account(server):
    """The account's workspace, and its token."""
    return server.link.call("GET", "/api/me")["defaultWorkspaceId"], server.link.headers["Authorization"].split()[1]


def latency(binaries, programs, folder, count):
    """The middle times from a change to the news of it: ours and bare, taken in turn, in seconds."""
    with server_runs.Server(binaries, f"{folder}/live") as server:
        workspace, token = of_account(server)
        hub = watcher(server, workspace, token)
        bare = subprocess.Popen([programs / "BareLive", f"{folder}/bare-live.sqlite"], stdout=subprocess.PIPE)
        try:
            post_port, socket_port = bare.stdout.readline().split()
            echo = WebSocket(f"127.0.0.1:{socket_port.decode()}", "/")
            bare_posts = http.client.HTTPConnection("127.0.0.1", int(post_port))
            ours, theirs = [], []
            for number in range(count):
                ours.append(posted(server.link.http, f"/api/workspaces/{workspace}/time-entries", entry(number),
                                   server.link.headers, lambda: hub.hear(RECORD_END)))
                theirs.append(posted(bare_posts, "/post", entry(number), server.link.headers, lambda: echo.hear(b"}")))
        finally:
            bare.terminate()
            bare.wait()
            bare.stdout.close()
    # The first ones find caches empty.
    return statistics.median(ours[count // 10:]), statistics.median(theirs[count // 10:])


def resident(process):
    """In KiB."""
    with open(f"/proc/{process.pid}/status", encoding="ascii") as status:
        return next(int(line.split()[1]) for line in status if line.startswith("VmRSS:"))


def all_hear(sockets):
    """Waits until each has heard a record."""
    poll = select.epoll()
    waiting = {hub.socket.fileno(): hub for hub in sockets}
    for descriptor in waiting:
        poll.register(descriptor, select.EPOLLIN)
    while waiting:
        for descriptor, _ in poll.poll(10):
            if waiting[descriptor].hear().endswith(RECORD_END):
                poll.unregister(descriptor)
                del waiting[descriptor]
    poll.close()


def crowd(binaries, folder, count, repetitions):
    """What one of that many watching connections takes of the server's memory, in KiB, and the middle time until all have
    heard of a change, in seconds."""
    _, most = resource.getrlimit(resource.RLIMIT_NOFILE)
    resource.setrlimit(resource.RLIMIT_NOFILE, (min(most, 8192), most))
    with server_runs.Server(binaries, f"{folder}/crowd") as server:
        workspace, token = of_account(server)
        first = watcher(server, workspace, token)
        before = resident(server.process)
        crowded = [watcher(server, workspace, token) for _ in range(count)]
        memory = (resident(server.process) - before) / count
        path = f"/api/workspaces/{workspace}/time-entries"
        times = [posted(server.link.http, path, entry(number), server.link.headers, lambda: all_hear([first, *crowded]))
                 for number in range(repetitions)]
    return memory, statistics.median(times)
