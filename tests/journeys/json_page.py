#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""docs/json.md says what `--json` prints: each of its examples is run, in order, in a fresh installation.

json_page.py ORVANE [--write]     (--write puts what was printed into the page)
"""

import json
import re
import sys

import terminal

# A command with its exit status and the value below it; a block of commands without one sets things up.
EXAMPLE = re.compile(r"^<!-- here the server is ended -->$|"
                     r"^```console\n(?P<lines>(?:\$ [^\n]*\n)+)```(?:\n\n```json\n(?P<value>.*?)^```)?$",
                     re.DOTALL | re.MULTILINE)
# Members named after what they hold, such as a field's complaints or a repository's time.
MAPS = {"fieldErrors", "attention", "agent"}


def differences(shown, real, place="the value"):
    """Where a real value has other members, or values of another kind, than the one shown; `null` goes with all."""
    if shown is None or real is None:
        return
    kinds = [(float if isinstance(value, (int, float)) and not isinstance(value, bool) else type(value))
             for value in (shown, real)]
    if kinds[0] is not kinds[1]:
        yield f"{place} is {json.dumps(real)}, not {json.dumps(shown)}"
    elif isinstance(shown, dict) and place.split(".")[-1] not in MAPS:
        for name in sorted(shown.keys() ^ real.keys()):
            yield f"{place} {'lacks' if name in shown else 'has also'} {name}"
        for name in sorted(shown.keys() & real.keys()):
            yield from differences(shown[name], real[name], f"{place}.{name}")
    elif isinstance(shown, list):
        if bool(shown) != bool(real):
            yield f"{place} has {len(real)} elements, not {len(shown)}"
        for number, element in enumerate(real):
            if shown:
                yield from differences(shown[min(number, len(shown) - 1)], element, f"{place}[{number}]")


def pretty(value, indent="", room=100):
    """Short values on one line, like a person would write them."""
    line = json.dumps(value, ensure_ascii=False)
    if len(indent) + len(line) <= room or not isinstance(value, (dict, list)) or not value:
        return line
    inner = indent + "  "
    if isinstance(value, dict):
        items = [f"{json.dumps(name)}: {pretty(item, inner, room - len(name) - 4)}" for name, item in value.items()]
    else:
        items = [pretty(item, inner, room) for item in value]
    ends = "{}" if isinstance(value, dict) else "[]"
    return f"{ends[0]}\n{inner}" + f",\n{inner}".join(items) + f"\n{indent}{ends[1]}"


class Page:
    """Runs the examples and collects what is wrong with them."""

    def __init__(self, installation):
        self.installation = installation
        self.problems, self.compared = [], 0

    def example(self, found):
        """Compares one example; answers its text with what was really printed."""
        if found["lines"] is None:
            terminal.kill_server(self.installation.data)
            return found[0]
        lines = [line[2:] for line in found["lines"].splitlines()]
        for line in lines if found["value"] is None else lines[:-1]:
            if self.installation.run(line)[0] != 0:
                self.problems.append(f"{line}: failed")
        if found["value"] is None:
            return found[0]
        status, output = self.installation.run(lines[-1])
        shown, real = json.loads(found["value"]), json.loads(output)
        self.compared += 1
        if (status != 0) != ("error" in shown):
            self.problems.append(f"{lines[-1]}: ended with {status}")
        self.problems += [f"{lines[-1]}: {difference}" for difference in differences(shown, real)]
        return f"```console\n{found['lines']}```\n\n```json\n{pretty(real)}\n```"


def check_comparison():
    """The comparison itself finds what it is for."""
    shown = {"a": [{"b": 1, "c": None}]}
    assert not list(differences(shown, {"a": [{"b": 2.5, "c": "text"}]}))
    for wrong in ({"a": []}, {"a": [{"b": 1}]}, {"a": [{"b": "1", "c": 1}]}, {"a": [{"b": 1, "c": 1}, {"b": 1}]}, {}):
        assert list(differences(shown, wrong)), wrong


def main():
    check_comparison()
    text = terminal.PAGE.read_text(encoding="utf-8")
    with terminal.Installation(sys.argv[1]) as installation:
        page = Page(installation)
        text = EXAMPLE.sub(page.example, text)
    if "--write" in sys.argv:
        terminal.PAGE.write_text(text, encoding="utf-8")
        return
    for problem in page.problems:
        print(problem)
    print(f"{page.compared} examples compared, {len(page.problems)} differences")
    values = sum(1 for language, _ in terminal.code_blocks() if language == "json")
    sys.exit(1 if page.problems or page.compared != values else 0)


if __name__ == "__main__":
    main()
