#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Makes the C++ of the API from its document: generate.py openapi.yaml OUTPUT_FOLDER.

The types and operations go to OUTPUT_FOLDER/OrvaneAPI, the client's calls of them to OUTPUT_FOLDER/Http.

The same document always makes the same files, and a file whose content stays is not touched, so that a change of the
document compiles again only what it changes. A document that this does not understand makes nothing."""

from pathlib import Path
import sys

from generator import calls, document, operations, schemas


def write_if_changed(path, text):
    if path.exists() and path.read_text(encoding="utf-8") == text:
        return
    path.write_text(text, encoding="utf-8")


def main(arguments):
    if len(arguments) != 2:
        print(__doc__, file=sys.stderr)
        return 2
    source, folder = Path(arguments[0]), Path(arguments[1])
    try:
        api = document.load(source.read_text(encoding="utf-8"))
        files = schemas.files(api) | operations.files(api) | calls.files(api)
    except document.Refusal as refusal:
        print(f"{source}: {refusal}", file=sys.stderr)
        return 1
    for name, text in sorted(files.items()):
        (folder / name).parent.mkdir(parents=True, exist_ok=True)
        write_if_changed(folder / name, text)
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
