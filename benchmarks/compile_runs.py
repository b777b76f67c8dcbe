# SPDX-License-Identifier: GPL-3.0-or-later
"""How long the compiler takes for a source that calls every operation of the API, in seconds of processor time."""

import json
import pathlib
import re
import resource
import shlex
import subprocess

# Compiled as any folder of the kit is.
MODEL = "OrvaneKit.dir/Unity/unity_Tracker_cxx.cxx"


def calls(header):
    """The calls' names, each with the types of what they are given."""
    text = re.sub(r"//.*", "", header.read_text(encoding="utf-8"))
    found = []
    for name, given in re.findall(r"Task<CallResult<[^;]*?> (\w+)\(([^;]*?)\) const;", text, re.DOTALL):
        # Each is a type and a name; a default goes along with them.
        given = re.sub(r"\s*=\s*[^,]+", "", " ".join(given.split()))
        parts, depth, start = [], 0, 0
        for at, letter in enumerate(given + ","):
            depth += (letter == "<") - (letter == ">")
            if letter == "," and depth == 0:
                if given[start:at].strip():
                    parts.append(given[start:at].strip().rsplit(" ", 1)[0])
                start = at + 1
        found.append((name, parts))
    return found


def source(found):
    lines = [f"    static_cast<void>(calls.{name}({', '.join(kind + '{}' for kind in kinds)}));\n" for name, kinds in found]
    return ("#include \"Http/ServerCalls.h\"\n\nnamespace orvane {\nvoid callAll(const ServerCalls &calls);\n"
            f"void callAll(const ServerCalls &calls)\n{{\n{''.join(lines)}}}\n}} // namespace orvane\n")


def all_calls(build, folder):
    """How many there are, and the seconds."""
    found = calls(build / "server-api" / "generated" / "Http" / "ServerCalls.h")
    made = pathlib.Path(folder) / "AllCalls.cpp"
    made.write_text(source(found), encoding="utf-8")
    commands = json.loads((build / "compile_commands.json").read_text(encoding="utf-8"))
    model = next(entry for entry in commands if entry["file"].endswith(MODEL))
    words = shlex.split(model["command"])
    words = words[next(at for at, word in enumerate(words) if "clang++" in word):]
    words[words.index("-o") + 1] = str(pathlib.Path(folder) / "AllCalls.o")
    words[words.index(model["file"])] = str(made)
    before = resource.getrusage(resource.RUSAGE_CHILDREN).ru_utime
    subprocess.run(words, check=True, cwd=build)
    return len(found), resource.getrusage(resource.RUSAGE_CHILDREN).ru_utime - before
