# SPDX-License-Identifier: GPL-3.0-or-later
"""Reading half a gigabyte of agents' logs as a whole process, beside the plainest tool and the fastest reporter."""

import json
import os
import pathlib
import shutil
import statistics
import subprocess
import sys
import time
import uuid

import agent_log_corpus

FIRST_DAY = agent_log_corpus.FIRST_DAY.strftime("%Y-%m-%d")
PEER = "ccusage"


def install_peer(folder):
    """The reporter's own native program out of npm; None where npm does not have it."""
    program = next(folder.glob("node_modules/@ccusage/*/bin/ccusage"), None)
    if program is None and shutil.which("npm"):
        folder.mkdir(parents=True, exist_ok=True)
        machine = {"x86_64": "x64", "aarch64": "arm64", "arm64": "arm64"}.get(os.uname().machine)
        system = os.uname().sysname.lower()
        subprocess.run(["npm", "install", "--no-audit", "--no-fund", "--prefix", folder, f"@{PEER}/{PEER}-{system}-{machine}"],
                       check=False, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        program = next(folder.glob("node_modules/@ccusage/*/bin/ccusage"), None)
    if program is not None:
        program.chmod(0o755)
    return program


def run(arguments, cores, environment=None):
    """How long a program took on these cores, in seconds, and the most memory it held, in MB."""
    quiet = [(os.POSIX_SPAWN_OPEN, descriptor, "/dev/null", os.O_RDWR, 0) for descriptor in (0, 1, 2)]
    mine = os.sched_getaffinity(0)
    os.sched_setaffinity(0, cores)
    try:
        began = time.perf_counter()
        pid = os.posix_spawn(arguments[0], [str(argument) for argument in arguments], {**os.environ, **(environment or {})},
                             file_actions=quiet)
        _, status, usage = os.wait4(pid, 0)
        took = time.perf_counter() - began
    finally:
        os.sched_setaffinity(0, mine)
    if os.waitstatus_to_exitcode(status) != 0:
        raise RuntimeError(f"{arguments[0]} failed")
    return took, usage.ru_maxrss / 1024


def take_turns(programs, cores, runs):
    """For each program the middle of its times, and its largest memory; they take turns."""
    times = {name: [] for name in programs}
    memory = dict.fromkeys(programs, 0)
    for turn in range(runs + 1):
        for name, (arguments, environment) in programs.items():
            took, held = run(arguments, cores, environment)
            memory[name] = max(memory[name], held)
            if turn > 0:
                times[name].append(took)
    return {name: statistics.median(taken) for name, taken in times.items()}, memory


def logs(home):
    """The large corpus, made by a process of its own."""
    subprocess.run([sys.executable, agent_log_corpus.__file__, home], check=True, stdout=subprocess.DEVNULL)
    return sorted((home / ".claude" / "projects").glob("*/*.jsonl"))


def cold(binaries, folder, runs):
    """Reading everything into days on one core and on two: seconds by program, and our most memory."""
    home = folder / "agent-logs"
    files = logs(home)
    # Into the page cache. A program that is started begins with its parent's memory as its largest, so this one stays
    # small.
    subprocess.run(["cat", *files], check=True, stdout=subprocess.DEVNULL)
    programs = {
        "orvane": ([binaries / "orvane", "--data-dir", folder / "nothing", "--home", home, "--zone", "UTC", "--json",
                    "activity", "--week", FIRST_DAY], None),
        "wc": ([shutil.which("wc"), "-l", *files], None),
    }
    peer = install_peer(folder / "peers")
    if peer is not None:
        programs["peer"] = ([peer, "daily", "--json", "--offline"], {"CLAUDE_CONFIG_DIR": str(home / ".claude")})
    (folder / "nothing").mkdir(exist_ok=True)
    available = sorted(os.sched_getaffinity(0))
    one, memory = take_turns(programs, available[:1], runs)
    two, more = take_turns(programs, available[:2], runs)
    return one, two, max(memory["orvane"], more["orvane"])


def make_many(home, files=10_000):
    folder = home / ".claude" / "projects"
    if len(list(folder.glob("*/*.jsonl"))) == files:
        return
    shutil.rmtree(home, ignore_errors=True)
    for number in range(files):
        project = folder / f"-p-{number % 100}"
        project.mkdir(parents=True, exist_ok=True)
        session = uuid.uuid4()
        line = {"type": "user", "sessionId": str(session), "cwd": f"/tmp/p{number % 100}", "isSidechain": False,
                "gitBranch": "main", "message": {"content": "hello"},
                "timestamp": f"2026-04-0{6 + number % 3}T{number % 24:02d}:00:00.000Z"}
        (project / f"{session}.jsonl").write_text(json.dumps(line) + "\n")


def make_large(home, corpus, size=100_000_000):
    """One log of so many bytes, of one session."""
    log = home / ".claude" / "projects" / "-p" / "11111111-2222-4333-8444-555555555555.jsonl"
    log.parent.mkdir(parents=True, exist_ok=True)
    with open(log, "wb") as out:
        for file in corpus:
            with open(file, "rb") as part:
                shutil.copyfileobj(part, out)
            if out.tell() >= size:
                break
    return log


def again(programs, folder):
    """Second requests in one process: with nothing changed in 10,000 files, and after a line more in a large log."""
    many, large = folder / "many-logs", folder / "large-log"
    make_many(many)
    log = make_large(large, logs(folder / "agent-logs"))
    time.sleep(3)  # a folder that changed just now is listed again
    unchanged = json.loads(subprocess.check_output([programs / "ActivityRequests", many, FIRST_DAY]))
    grown = json.loads(subprocess.check_output([programs / "ActivityRequests", large, FIRST_DAY, log]))
    log.unlink()
    return unchanged, grown
