# SPDX-License-Identifier: MIT
"""Makes a C++ source of the files that pictures and pages are made of: the style of pictures, and the page of a batch
with its styles and its script, which its policy names by their hashes."""

import argparse
import base64
import hashlib
import sys
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parents[1] / "scripts"))

from embed_texts import text_of, write_source  # noqa: E402


def hash_of(text):
    return "sha256-" + base64.b64encode(hashlib.sha256(text.encode()).digest()).decode()


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--out", type=Path, required=True)
    parser.add_argument("folder", type=Path, help="the folder of the page's files")
    arguments = parser.parse_args()
    read = lambda name: text_of(arguments.folder / name)
    sheet_style = read("sheet.css")
    style = sheet_style + read("common.css") + read("batch.css")
    script = read("batch.js")
    page = read("batch.html")
    for mark, text in (("style hash", hash_of(style)), ("script hash", hash_of(script)), ("style", style), ("script", script)):
        page = page.replace("{{" + mark + "}}", text)
    write_source(arguments.out, "pictures/PageParts.h", {"kSheetCss": sheet_style, "kBatchHtml": page})


if __name__ == "__main__":
    main()
