# SPDX-License-Identifier: GPL-3.0-or-later
"""Makes up a day with coding agents: three repositories, and the logs that the agents kept of it."""

import datetime
import json
import subprocess

DAY = datetime.datetime(2026, 3, 5)
# An agent that works leaves a line about so often, in seconds.
PACE = 50

# Agent, repository and folder in it, title, branch, and turns: the prompt's time, the prompt, for how many minutes the
# agent worked after it.
SESSIONS = [
    ("claude", "api/sync", "Retry an upload that was cut off", "retry", [
        ("08:52", "Retry an upload that was cut off, from the byte where it stopped", 9),
        ("09:05", "Write the test that cuts it off first", 13),
        ("09:24", "Now the back-off: double it, up to a minute", 11),
        ("09:47", "Use the clock that the tests advance", 18),
        ("10:31", "Rebase onto main", 5)]),
    ("codex", "website", "Lay out the pricing page", "pricing", [
        ("09:12", "Lay out the pricing page as three columns", 17),
        ("09:38", "One column on a phone", 21),
        ("10:12", "The yearly prices behind a switch", 14),
        ("10:40", "Fewer shadows", 8)]),
    ("claude", "mobile", "Port the tests to the new runner", "runner", [
        ("10:58", "Port the tests to the new runner, folder by folder", 95),
        ("13:22", "Two of them fail on tablets", 24),
        ("13:41", "Keep the old names", 16)]),
    ("copilot", "api", "Why is the search slow after midnight?", "main", [
        ("13:30", "Why is the search slow after midnight?", 7),
        ("14:02", "Move that job to the queue", 10),
        ("14:19", "Measure it again", 6)]),
    ("codex", "website", "Compress the images when they are uploaded", "images", [
        ("15:04", "Compress the images when they are uploaded", 33),
        ("15:29", "Keep the original", 20),
        ("16:10", "Show how much was saved", 26)]),
    ("claude", "api", "Limit the requests of one client", "limits", [
        ("15:16", "Limit the requests of one client to 20 a second", 38),
        ("15:52", "Answer with Retry-After", 12),
        ("16:24", "Document it", 9),
        ("17:02", "Go through the tests once more, all of them", 34)]),
]


def moment(time, seconds=0):
    hours, minutes = map(int, time.split(":"))
    return DAY + datetime.timedelta(hours=hours, minutes=minutes, seconds=seconds)


def stamp(time, seconds=0):
    return moment(time, seconds).isoformat(timespec="milliseconds") + "Z"


def work(minutes):
    return range(PACE, minutes * 60, PACE)


def claude_lines(session, folder, title, branch, turns):
    def line(kind, when, content):
        return {"parentUuid": None, "isSidechain": False, "cwd": folder, "sessionId": session, "gitBranch": branch,
                "type": kind, "message": {"role": kind, "content": content}, "timestamp": when}
    for time, prompt, minutes in turns:
        yield line("user", stamp(time), prompt)
        for seconds in work(minutes):
            yield line("assistant", stamp(time, seconds), [{"type": "tool_use", "id": "t", "name": "Edit", "input": {}}])
    yield {"type": "ai-title", "sessionId": session, "aiTitle": title}


def codex_lines(session, folder, title, branch, turns):
    def line(kind, when, payload):
        return {"timestamp": when, "type": kind, "payload": payload}
    yield line("session_meta", stamp(turns[0][0]),
               {"id": session, "cwd": folder, "source": "cli", "git": {"branch": branch}})
    for time, prompt, minutes in turns:
        yield line("event_msg", stamp(time), {"type": "task_started", "turn_id": time})
        yield line("event_msg", stamp(time), {"type": "user_message", "message": prompt})
        for seconds in work(minutes):
            yield line("response_item", stamp(time, seconds), {"type": "message", "role": "assistant", "content": []})


def copilot_lines(session, folder, title, branch, turns):
    def line(kind, when, data):
        return {"type": kind, "data": data, "timestamp": when}
    yield line("session.start", stamp(turns[0][0]), {"sessionId": session, "context": {"cwd": folder, "branch": branch}})
    for time, prompt, minutes in turns:
        yield line("user.message", stamp(time), {"content": prompt})
        for seconds in work(minutes):
            yield line("assistant.message", stamp(time, seconds), {})


LINES = {"claude": claude_lines, "codex": codex_lines, "copilot": copilot_lines}
FILES = {"claude": ".claude/projects/{project}/{session}.jsonl",
         "codex": ".codex/sessions/2026/03/05/rollout-2026-03-05T{time}-{session}.jsonl",
         "copilot": ".copilot/session-state/{session}/events.jsonl"}


def write_lines(file, lines):
    file.parent.mkdir(parents=True, exist_ok=True)
    file.write_text("".join(json.dumps(line) + "\n" for line in lines), encoding="utf-8")


def write(home):
    """Makes the repositories and the logs in a home folder."""
    titles = []
    for number, (agent, place, title, branch, turns) in enumerate(SESSIONS):
        folder = home / place
        repository = home / place.split("/")[0]
        if not repository.exists():
            subprocess.run(["git", "init", "-q", repository], check=True)
        folder.mkdir(exist_ok=True)
        session = f"{number:08x}-3c1d-4f6a-9b52-7e0d4a8c61f3"
        name = FILES[agent].format(project=str(repository).replace("/", "-"), session=session,
                                   time=turns[0][0].replace(":", "-") + "-00")
        write_lines(home / name, LINES[agent](session, str(folder), title, branch, turns))
        if agent == "codex":
            titles.append({"id": session, "thread_name": title})
    write_lines(home / ".codex/session_index.jsonl", titles)
