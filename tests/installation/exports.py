#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Compares what the installed headers declare with what the installed libraries export: they have to be the same.

Usage: exports.py INCLUDE-FOLDER LIBRARY...

A function that is declared and not exported fails when a host is linked; one that is exported and not declared is a
promise that nobody has made. What a library exports to others of its own build alone, under the version INTERNAL, must
not be declared.
"""

import re
import sys

from declarations import Declarations, exported, readable

INTERNAL = "KELReader81U_INTERNAL"


def faults(include, libraries):
    headers = Declarations(include)
    names = [found for library in libraries for found in exported(library)]
    public = readable(name for name, version in names if version != INTERNAL)
    internal = readable(name for name, version in names if version == INTERNAL)
    declared = readable(headers.declared)
    for name in sorted(readable(headers.needed()) - public):
        yield f"declared, but exported by no library: {name}"
    for name in sorted(public):
        of_type = re.fullmatch(r"(?:typeinfo|typeinfo name|vtable) for (.*)", name)
        of_function = re.sub(r"^(non-virtual thunk|virtual thunk) to ", "", name)
        if not (of_type[1] in headers.types if of_type else of_function in declared):
            yield f"exported, but declared in no public header: {name}"
    for name in sorted(internal & declared):
        yield f"declared in a public header, but exported as internal: {name}"


def main():
    found = list(faults(sys.argv[1], sys.argv[2:]))
    if found:
        sys.exit("exports.py:\n  " + "\n  ".join(found))


if __name__ == "__main__":
    main()
