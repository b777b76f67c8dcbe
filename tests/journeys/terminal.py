# SPDX-License-Identifier: GPL-3.0-or-later
"""People and scripts at a terminal, each with an installation of their own, and the code blocks of a page."""

import fcntl
import json
import os
import pathlib
import pty
import re
import signal
import socket
import struct
import subprocess
import tempfile
import termios

PAGE = pathlib.Path(__file__).resolve().parents[2] / "docs" / "json.md"


def plain(text):
    return re.sub(r"\x1b\[[0-9;]*[A-Za-z]", "", text).replace("\r\n", "\n")


def kill_server(data_folder):
    """Ends the server that a command started for the folder; its socket says which process it is."""
    try:
        with socket.socket(socket.AF_UNIX) as connection:
            connection.connect(str(data_folder / "server/run/server.sock"))
            connection.sendall(b'{"command":"hello"}\n')
            os.kill(json.loads(connection.makefile().readline())["pid"], signal.SIGKILL)
    except (FileNotFoundError, ConnectionRefusedError):
        pass


class Installation:
    """A fresh one, in whose shells `orvane` means the program with this installation's folder."""

    def __init__(self, program, columns=80, now="2026-03-06T16:20:00Z"):
        self.columns, self.now = columns, now
        self.transcript = []
        self._folder = tempfile.TemporaryDirectory(ignore_cleanup_errors=True)
        self.home = pathlib.Path(self._folder.name)
        self.data = self.home / "data"
        self.data.mkdir()
        (self.home / "bin").mkdir()
        command = self.home / "bin" / "orvane"
        command.write_text(f'#!/bin/sh\nexec "{program}" --data-dir "{self.data}" "$@"\n', encoding="utf-8")
        command.chmod(0o755)

    def __enter__(self):
        return self

    def __exit__(self, *_):
        # A sign-in would stay in the kernel's keyring.
        self.run("orvane logout")
        kill_server(self.data)
        self._folder.cleanup()

    def environment(self):
        return {"HOME": str(self.home), "PATH": f"{self.home}/bin:/usr/bin:/bin", "TERM": "xterm-256color",
                "LANG": "C.UTF-8", "TZ": "UTC", "ORVANE_NOW": self.now}

    def run(self, line):
        """As a script runs it: the exit status and what was written on standard output."""
        done = subprocess.run(["bash", "-c", line], env=self.environment(), cwd=self.home, timeout=60,
                              stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.PIPE, check=False)
        return done.returncode, done.stdout.decode()

    def value(self, line):
        """The one JSON value that a line prints."""
        status, output = self.run(line)
        assert status == 0, f"{line}: {output}"
        return json.loads(output)

    def types(self, line, status=0):
        """As a person types it, at a terminal of so many columns: what is shown there."""
        child, terminal = pty.fork()
        if child == 0:
            fcntl.ioctl(0, termios.TIOCSWINSZ, struct.pack("HHHH", 40, self.columns, 0, 0))
            os.chdir(self.home)
            os.execve("/bin/bash", ["bash", "-c", line], self.environment())
        written = b""
        while True:
            try:
                piece = os.read(terminal, 65536)
            except OSError:  # Linux answers EIO when the last writer has gone
                break
            if not piece:
                break
            written += piece
        os.close(terminal)
        exit_status = os.waitstatus_to_exitcode(os.waitpid(child, 0)[1])
        # What a progress line showed meanwhile is wiped out again.
        shown = re.sub(r"[^\n]*\r(?=\x1b\[K|[^\n])", "", written.decode().replace("\r\n", "\n"))
        self.transcript.append((line, plain(shown)))
        assert exit_status == status, f"{line} ended with {exit_status}:\n{plain(shown)}"
        return plain(shown)


def code_blocks(page=PAGE):
    """(language, text) of each block of a page, in order."""
    return re.findall(r"^```(\w+)\n(.*?)^```$", page.read_text(encoding="utf-8"), flags=re.DOTALL | re.MULTILINE)


def block_with(words, page=PAGE):
    """The one block that holds these words."""
    found = [text for _, text in code_blocks(page) if words in text]
    assert len(found) == 1, f"{page.name} has {len(found)} blocks with {words}"
    return found[0]
