# SPDX-License-Identifier: MIT
"""Makes C++ constants of files of text.

As a program: embed_texts.py --out FILE --header HEADER NAME=FILE[+FILE]..., for a header that declares the names in the
namespace kel. Several files are joined. The line with the licence stays in the source: what is written with a text is
somebody else's.
"""

import argparse
import re
from pathlib import Path

# A compiler takes literals of at least 65,536 characters; a text is written in shorter ones that join.
LONGEST_LITERAL = 16000


LICENCE = re.compile(r"\A(//|/\*|<!--) SPDX-License-Identifier: .*\n")


def text_of(file):
    """What a file holds, without its licence."""
    return LICENCE.sub("", Path(file).read_text(encoding="utf-8"))


def constant_of(name, text):
    if ')part"' in text:
        raise SystemExit(f"{name} holds the end of the literal that it is to become")
    pieces = [text[start : start + LONGEST_LITERAL] for start in range(0, len(text), LONGEST_LITERAL)]
    literal = "\n".join(f'R"part({piece})part"' for piece in pieces)
    return f"const std::string_view {name} = {literal};\n"


def write_source(out, header, texts):
    """Writes the source that defines what a header declares."""
    constants = "\n".join(constant_of(name, text) for name, text in texts.items())
    out.parent.mkdir(parents=True, exist_ok=True)
    out.write_text(f'// Made from files of text.\n\n#include "{header}"\n\nnamespace kel {{\n\n{constants}\n}} // namespace kel\n',
                   encoding="utf-8")


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--out", type=Path, required=True)
    parser.add_argument("--header", required=True)
    parser.add_argument("texts", nargs="+", metavar="NAME=FILE[+FILE]")
    arguments = parser.parse_args()
    texts = {}
    for text in arguments.texts:
        name, _, files = text.partition("=")
        texts[name] = "".join(text_of(file) for file in files.split("+"))
    write_source(arguments.out, arguments.header, texts)


if __name__ == "__main__":
    main()
