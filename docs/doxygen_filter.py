#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Prints a header for Doxygen: declarations that stand together under one comment get it each.

    /// Serial port, 1 to 16.
    [[nodiscard]] Int16 Port() const;
    void Port(Int16 value);

A blank line ends what belongs together, and so does another comment. Left out is what needs no words: copies, comparisons
of equality, constructors without arguments. So is a macro that makes members: the comment of the class tells of them.
"""

import re
import sys

SCOPE = re.compile(r"(template.*>\s*)?(namespace|class|struct|enum)\b[^;()]*\{$")
NO_DECLARATION = re.compile(r"[{}#]|//|(public|protected|private):|static_assert\b|(class|struct) \w+;")
MAKES_MEMBERS = re.compile(r"KEL_\w+\(.*\)$")
NEEDS_NO_WORDS = re.compile(
    r"(\w+)\((const \1& \w+)?\)( = default)?;|\w+& operator=\(const \w+& \w+\);|friend (constexpr )?bool operator==\(.*= default;"
)


def with_shared_comments(lines):
    comment = []  # of the declarations that stand together
    told = False  # whether the comment in front of the next declaration is its own
    depth = 0  # of open parentheses and braces within a declaration
    continues = False  # a declaration that goes over several lines
    in_enumeration = False
    for line in lines:
        text = line.strip()
        if MAKES_MEMBERS.match(text) or (not told and NEEDS_NO_WORDS.match(text)):
            continue
        code = re.sub(r'"(?:\\.|[^"\\])*"|//.*', "", text).strip()
        if SCOPE.match(code) and depth == 0:
            comment, told, continues = [], False, False
            in_enumeration = "enum" in code
        elif continues:
            pass
        elif not text:
            comment, told = [], False
        elif text.startswith("///"):
            comment = comment + [line] if told else [line]
            told = True
        elif code.startswith("}"):
            comment, told, in_enumeration = [], False, False
        elif not NO_DECLARATION.match(text) and not in_enumeration:
            behind = re.search(r"///< (.*)", text)
            if behind:
                comment = [f"/// {behind[1]}\n"]
            elif not told:
                yield from comment
            told = False
        yield line
        if continues or (code and not SCOPE.match(code) and not NO_DECLARATION.match(text)):
            depth = max(0, depth + len(re.findall(r"[({]", code)) - len(re.findall(r"[)}]", code)))
            continues = not in_enumeration and (depth > 0 or not re.search(r"[;}]$", code))


def main():
    with open(sys.argv[1], encoding="utf-8") as header:
        sys.stdout.writelines(with_shared_comments(header.readlines()))


if __name__ == "__main__":
    main()
