#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Compares the library's binary interface with that of the last release, which interface/ holds.

Usage: interface.py INCLUDE-FOLDER LIBRARY [--write]

A host that was built with the last release has to find every function and every type as it was. The functions are a
list, FUNCTIONS. The types are a record of libabigail, TYPES: fields and their offsets, sizes, tables of virtual
functions, enumerators. abidiff compares it with what the installed headers say now, and interface/suppressions.ini says
what may change. What is new is no error, unless a class gets it that hosts have laid out themselves. The layer kel::host
is left out: its library has a name for each minor version. --write keeps the interface as it is now, for the release
that is being made.
"""

import subprocess
import sys
import tempfile
from pathlib import Path

from declarations import Declarations, exported, readable

FOLDER = Path(__file__).with_name("interface")
FUNCTIONS = FOLDER / "functions.txt"
TYPES = FOLDER / "types.abi"
SUPPRESSIONS = FOLDER / "suppressions.ini"
OF_THE_HOST_LAYER = {"kel::RegistryPath"}


def functions(library):
    """Without the tables and names of types, which compilers make anew in each host."""
    names = (name for name, version in exported(library) if version == "KELReader81U_8")
    return sorted(name for name in names if not name.startswith("_ZT"))


def types(include):
    """The record of a library that points to an object of each type."""
    pointers = sorted(Declarations(include).outermost - OF_THE_HOST_LAYER)
    with tempfile.TemporaryDirectory() as folder:
        source, library = Path(folder, "types.cpp"), Path(folder, "types.so")
        source.write_text(
            "#include <KELReader81U/KELReader81U.h>\n"
            + "".join(f"{name}* {name.replace('::', '_')};\n" for name in pointers),
            encoding="utf-8",
        )
        flags = ["-std=c++20", "-g", "-shared", "-fPIC", "-femit-class-debug-always"]
        subprocess.run(["g++", *flags, "-I", include, source.name, "-o", library.name], check=True, cwd=folder)
        written = ["--no-corpus-path", "--no-comp-dir-path", "--no-show-locs", "--type-id-style", "hash"]
        command = ["abidw", *written, "--headers-dir", str(Path(include).resolve()), str(library)]
        return subprocess.run(command, check=True, capture_output=True, text=True).stdout


def faults(include, library):
    gone = set(FUNCTIONS.read_text(encoding="utf-8").splitlines()) - set(functions(library))
    for name in sorted(readable(gone)):
        yield f"gone: {name}"
    with tempfile.NamedTemporaryFile("w", suffix=".abi", encoding="utf-8") as present:
        present.write(types(include))
        present.flush()
        options = ["--leaf-changes-only", "--no-added-syms", "--no-show-locs", "--suppressions", str(SUPPRESSIONS)]
        compared = subprocess.run(["abidiff", *options, str(TYPES), present.name], capture_output=True, text=True)
    if compared.returncode != 0:
        yield compared.stdout + compared.stderr


def main():
    include, library, *options = sys.argv[1:]
    if "--write" in options:
        FUNCTIONS.write_text("\n".join(functions(library)) + "\n", encoding="utf-8")
        TYPES.write_text(types(include), encoding="utf-8")
        return
    found = list(faults(include, library))
    if found:
        sys.exit("interface.py: hosts of the last release would miss, or misread:\n" + "\n".join(found))


if __name__ == "__main__":
    main()
