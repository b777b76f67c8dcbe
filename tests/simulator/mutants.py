#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Puts one fault after the other into the code and looks whether the simulator finds it: mutants.py BUILD [NAME...]

Each fault is one line. The file that gets it is compiled apart, from a copy, and linked in front of the library in the
build folder BUILD, so that the sources stay as they are. A fault that is not found within the time, or whose line is
in its file no more, fails the run.
"""
import json
import pathlib
import shlex
import subprocess
import sys
import time

SECONDS = 120
ROOT = pathlib.Path(__file__).resolve().parents[2]
OUTBOX = "OrvaneKit/Outbox/Outbox.cpp"
SETTLING = "OrvaneKit/Outbox/OutboxSettling.cpp"
STORE = "OrvaneKit/Outbox/OutboxStore.cpp"
STACK = "OrvaneKit/Outbox/ChangeStack.cpp"
RULES = "OrvaneKit/Outbox/OutboxRules.cpp"

# name: (file, what stands there once, what stands there instead)
MUTANTS = {
    "a version handed to everybody": (STACK, "return !version || version->empty() || ", "return true || !version || "),
    "a row removed before the answer": (OUTBOX, "    m_sending = sending.row.seq;\n",
                                        "    co_await m_parts.store->dequeue(sending.row.seq);\n"
                                        "    m_sending = sending.row.seq;\n"),
    "a waiter forgotten": (OUTBOX, "        resume(row.seq, Sent{row.seq, entry});\n", ""),
    "a submit that comes at the end of a pass": (OUTBOX, "    m_isWanted = true;\n    if (m_isFlushing",
                                                 "    m_isWanted = !m_isFlushing;\n    if (m_isFlushing"),
    "a contradiction sent all the same": (STACK, "    if (rebased.isContested)\n        return contest(submission);\n", ""),
    "a change not put on top of another program's": (STACK, "    if (saysTheSame(*submission.base, head))\n        return;\n",
                                                      "    if (!submission.change.entryId().empty())\n        return;\n"),
    "a lost stop that hands another's version on": (RULES, "return stopped && saysTheSame(*stopped, current);",
                                                    "return true || saysTheSame(*stopped, current);"),
    "a creation's echo taken for its answer": (RULES, "    return saysTheSame(entryResponse(create.request, create.id, create.workspaceId), answer);",
                                               "    return create.id == answer.id;"),
    "a creation whose stop stays behind": (
        OUTBOX, "        create->request.stop = std::get<EntryChange::Stop>(sending.stop->change.action).at;\n", "        ;\n"),
    "a change sent behind its conflict": ("OrvaneKit/Outbox/QueuedChanges.cpp", "        return seq <= row.seq && find(seq)",
                                          "        return seq > row.seq && find(seq)"),
    "what stands on a dropped change": (STACK, "        steps.writeRow(row);\n        changed.push_back(row);\n",
                                        "        changed.push_back(row);\n"),
    "another device's stop taken for one's own": (STORE, "head->entry.stop && head->isStoppedByUs &&", "head->entry.stop &&"),
    "a settled change sent after those behind it": (SETTLING, "    m_startsOver = m_isFlushing;\n", ""),
    "a retry not scheduled": (OUTBOX, "    setOffline(true);\n    scheduleRetry();\n", "    setOffline(true);\n"),
    "a gateway's answer taken for a refusal": (RULES, "problem->status >= 500 || ", "problem->status >= 504 || "),
    "two programs that send at once": (OUTBOX, "    if (!m_parts.takeTurn)\n        co_return co_await sendAll();\n",
                                       "    if (m_parts.takeTurn)\n        co_return co_await sendAll();\n"),
    "a commit that does not reach the disk": ("OrvaneKit/LocalStore/Connection.cpp", "PRAGMA synchronous = FULL",
                                              "PRAGMA synchronous = OFF"),
    "a version that the server does not look at": ("local-server/Entries/EntryHandlers.cpp", "    return !ifMatch || *ifMatch == entry.version ||",
                                                   "    return true || !ifMatch || *ifMatch == entry.version ||"),
}


def mutated(name: str) -> str:
    file, before, after = MUTANTS[name]
    text = (ROOT / file).read_text(encoding="utf-8")
    if text.count(before) != 1:
        raise SystemExit(f"{name}: its line stands {text.count(before)} times in {file}")
    return text.replace(before, after)


def compile_command(build: pathlib.Path, file: str, source: pathlib.Path, output: pathlib.Path) -> list[str]:
    entries = json.loads((build / "compile_commands.json").read_text(encoding="utf-8"))
    entry = next(e for e in entries if e["file"] == str(ROOT / file))
    words = shlex.split(entry["command"])
    words[words.index("-o") + 1] = str(output)
    words[words.index(str(ROOT / file))] = str(source)
    # What the change makes superfluous is no fault of its own.
    return [*words, "-w"]


def link_command(build: pathlib.Path, extra: pathlib.Path, output: pathlib.Path) -> list[str]:
    listed = subprocess.run(["ninja", "-C", str(build), "-t", "commands", "-s", "tests/Simulator"], check=True, text=True,
                            capture_output=True).stdout.strip().splitlines()[-1]
    words = [word for word in shlex.split(listed) if word not in (":", "&&")]
    at = words.index("-o")
    words[at + 1] = str(output)
    return [*words[:at], str(extra), *words[at:]]


def find(build: pathlib.Path, place: pathlib.Path, name: str) -> bool:
    file = MUTANTS[name][0]
    source, target, program = place / pathlib.Path(file).name, place / "mutant.o", place / "Simulator"
    source.write_text(mutated(name), encoding="utf-8")
    subprocess.run(compile_command(build, file, source, target), check=True, cwd=build)
    subprocess.run(link_command(build, target, program), check=True, cwd=build)
    began = time.monotonic()
    run = subprocess.run([str(program), "--seconds", str(SECONDS), "--failures", "1"], text=True, capture_output=True,
                         timeout=SECONDS + 60, check=False)
    took = time.monotonic() - began
    fault = next((line for line in run.stdout.splitlines() if line.startswith("FAULT")), None)
    if run.returncode == 1 and fault:
        print(f"found in {took:5.1f} s: {name}\n                 {fault}", flush=True)
        return True
    print(f"NOT FOUND in {took:.0f} s: {name} (exit status {run.returncode})\n{run.stderr[-500:]}", flush=True)
    return False


def main() -> int:
    build = pathlib.Path(sys.argv[1]).resolve()
    names = sys.argv[2:] or list(MUTANTS)
    for name in names:
        mutated(name)
    place = build / "mutants"
    place.mkdir(exist_ok=True)
    missed = [name for name in names if not find(build, place, name)]
    print(f"{len(names) - len(missed)} of {len(names)} faults found")
    return 1 if missed else 0


if __name__ == "__main__":
    sys.exit(main())
