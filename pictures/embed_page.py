"""Makes a C++ source of the files that pictures and pages are made of: the style of pictures, and the page of a batch
with its styles and its script, which its policy names by their hashes."""

import argparse
import base64
import hashlib
from pathlib import Path

# A compiler takes literals of at least 65,536 characters; a text is written in shorter ones that join.
LONGEST_LITERAL = 16000


def constant_of(name, text):
    if ')part"' in text:
        raise SystemExit(f"{name} holds the end of the literal that it is to become")
    pieces = [text[start : start + LONGEST_LITERAL] for start in range(0, len(text), LONGEST_LITERAL)]
    literal = "\n".join(f'R"part({piece})part"' for piece in pieces)
    return f"const std::string_view {name} = {literal};\n"


def hash_of(text):
    return "sha256-" + base64.b64encode(hashlib.sha256(text.encode()).digest()).decode()


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--out", type=Path, required=True)
    parser.add_argument("folder", type=Path, help="the folder of the page's files")
    arguments = parser.parse_args()
    read = lambda name: (arguments.folder / name).read_text(encoding="utf-8")
    sheet_style = read("sheet.css")
    style = sheet_style + read("batch.css")
    script = read("batch.js")
    page = read("batch.html")
    for mark, text in (("style hash", hash_of(style)), ("script hash", hash_of(script)), ("style", style), ("script", script)):
        page = page.replace("{{" + mark + "}}", text)
    constants = constant_of("kSheetCss", sheet_style) + "\n" + constant_of("kBatchHtml", page)
    source = f'// Made by {Path(__file__).name}.\n\n#include "pictures/PageParts.h"\n\nnamespace kel {{\n\n'
    arguments.out.parent.mkdir(parents=True, exist_ok=True)
    arguments.out.write_text(f"{source}{constants}\n}} // namespace kel\n", encoding="utf-8")


if __name__ == "__main__":
    main()
