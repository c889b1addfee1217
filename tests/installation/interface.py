#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Compares the library's binary interface with that of the last release, which lies beside this file.

Usage: interface.py INCLUDE-FOLDER LIBRARY [--write]

A host that was built with the last release has to find every function and every class as it was: a function that is
gone, a class of another size or a virtual function at another place is an error; what is new is none. Records that may
grow are left out, and so is the layer kel::host, whose library has a name for each minor version. --write keeps the
interface as it is now, for the release that is being made.
"""

import re
import subprocess
import sys
import tempfile
from pathlib import Path

KEPT = Path(__file__).with_name("interface.txt")
MAY_GROW = {"kel::ErrorReport", "kel::CrashReport", "kel::FailedPort"}


def functions(library):
    """What the library defines for hosts, mangled; not what the compiler makes anew in each host."""
    listing = subprocess.run(
        ["nm", "--dynamic", "--defined-only", "--with-symbol-versions", library], check=True, capture_output=True, text=True
    ).stdout
    for line in listing.splitlines():
        found = re.match(r"[0-9a-f]+ [TDBR] (_Z\w+)@@KELReader81U_8", line)
        if found:
            yield f"function {found[1]}"


def classes(include):
    """Sizes and tables of virtual functions, as the compiler sees the headers."""
    with tempfile.TemporaryDirectory() as folder:
        source = Path(folder, "all.cpp")
        source.write_text("#include <KELReader81U/KELReader81U.h>\n", encoding="utf-8")
        subprocess.run(
            ["g++", "-std=c++20", "-I", include, "-fdump-lang-class", "-c", source.name, "-o", "/dev/null"],
            check=True,
            cwd=folder,
        )
        dump = next(Path(folder).glob("*.class")).read_text(encoding="utf-8")
    for block in dump.split("\n\n"):
        found = re.match(r"(Class|Vtable for) (kel::(?!host::|RegistryPath)[\w:]+)\n", block)
        if not found or found[2] in MAY_GROW:
            continue
        if found[1] == "Class":
            size = re.search(r"size=(\d+) align=(\d+)", block)
            yield f"class {found[2]} size {size[1]} alignment {size[2]}"
        else:
            # Place and function; typeinfo and the addresses of bases are the compiler's own.
            for place, function in re.findall(r"^(\d+)\s+(?:\(int \(\*\)\(\.\.\.\)\))?(kel::\S.*)$", block, re.MULTILINE):
                yield f"virtual {found[2]} {place} {function}"


def main():
    present = sorted({*functions(sys.argv[2]), *classes(sys.argv[1])})
    if "--write" in sys.argv[3:]:
        KEPT.write_text("\n".join(present) + "\n", encoding="utf-8")
        return
    missing = [line for line in KEPT.read_text(encoding="utf-8").splitlines() if line not in set(present)]
    if missing:
        sys.exit("interface.py: hosts of the last release would miss:\n  " + "\n  ".join(missing))


if __name__ == "__main__":
    main()
