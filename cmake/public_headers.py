#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Lays the headers that a host sees into one folder, KELReader81U, under the names by which hosts include them.

Usage: public_headers.py OUT-FOLDER HEADER...  (in the folder of the sources)

A header of a room is KELReader81U/NAME.h, one of host/ is KELReader81U/host/NAME.h, and KELReader81U/KELReader81U.h
includes them all. They include each other by their places beside each other, so that no header of the host's own can
stand in the way. Files that stay the same are not touched.
"""

import os
import re
import sys
from pathlib import Path

PREFIX = "KELReader81U"


def place(header):
    """Where a header goes, below the prefix."""
    path = Path(header)
    return Path("host", path.name) if path.parts[0] == "host" else Path(path.name)


def public_text(header, places):
    text = Path(header).read_text(encoding="utf-8")

    def include(found):
        if found[1] not in places:
            sys.exit(f"public_headers.py: {header} includes {found[1]}, which hosts do not get")
        beside = os.path.relpath(places[found[1]], places[header].parent)
        return f'#include "{beside}"'

    text = re.sub(r'#include "([^"]+)"', include, text)
    # Comments that name another header.
    return re.sub(
        r"(?<![\w/\"])(" + "|".join(map(re.escape, places)) + r")(?![\w\"])",
        lambda found: f"{PREFIX}/{places[found[1]]}",
        text,
    )


def write(path, text):
    if not path.is_file() or path.read_text(encoding="utf-8") != text:
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_text(text, encoding="utf-8")


def main():
    out, headers = Path(sys.argv[1], PREFIX), sys.argv[2:]
    places = {header: place(header) for header in headers}
    if len(set(places.values())) != len(places):
        sys.exit("public_headers.py: two headers have one name")
    for header in headers:
        write(out / places[header], public_text(header, places))
    lines = "".join(f'#include "{path}"\n' for path in sorted(places.values()))
    write(out / f"{PREFIX}.h", f"#pragma once\n\n// All that a host sees.\n{lines}")
    for file in set(out.rglob("*.h")) - {out / path for path in places.values()} - {out / f"{PREFIX}.h"}:
        file.unlink()


if __name__ == "__main__":
    main()
