# SPDX-License-Identifier: MIT
"""Makes a C++ table of the advice in docs/readers/advice, so that the program says what the pages say."""

import argparse
import re
from pathlib import Path

from reader_advice import parse_advice

ROOT = Path(__file__).resolve().parents[1]


def plain(markdown):
    """A text without the signs of Markdown; a link becomes the quoted name of what it leads to."""
    text = re.sub(r"\[([^\]]+)\]\([^)]*\)", "\u201c\\1\u201d", markdown)
    return text.replace("`", "").replace("**", "")


def sentence(text, above):
    """A text that stands alone: "as above" refers to the message before it on its page."""
    if text.startswith("as above"):
        text = above.rstrip(".") + text.removeprefix("as above")
    return text[:1].upper() + text[1:]


def literal(text):
    return '"' + text.replace("\\", "\\\\").replace('"', '\\"') + '"'


def rows_of(path, modules, problems):
    advice = parse_advice(path, path.read_text(encoding="utf-8"), problems)
    # A report's words may be in any language: it is known by their number, or as the only one of its driver without.
    if len(advice.literals_of_texts()) > 1:
        problems.append(f"{path}: more than one text has no number, and their reports cannot be told apart")
    cause = remedy = ""
    for message in advice.messages():
        cause, remedy = sentence(plain(message.cause), cause), sentence(plain(message.do), remedy)
        told = f"{literal(cause)}, {literal(remedy)}"
        reported = [(text, 0) for text in message.texts] + [(0, failure) for failure in message.failures]
        for module in modules:
            for text, failure in reported:
                number = 0 if isinstance(text, str) else text
                yield f"    {{{literal(module)}, {number}, {failure}, {told}}},"


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--out", type=Path, required=True)
    arguments = parser.parse_args()
    problems = []
    rows = []
    folder = ROOT / "docs/readers/advice"
    for drivers in sorted(ROOT.glob("drivers/*/")):
        page = folder / f"{drivers.name}.md"
        if page.is_file():
            rows += rows_of(page, sorted(header.stem for header in drivers.glob("bas*.h")), problems)
    rows += rows_of(folder / "common.md", [""], problems)
    if problems:
        raise SystemExit("\n".join(problems))
    arguments.out.parent.mkdir(parents=True, exist_ok=True)
    arguments.out.write_text(
        f"// Made by {Path(__file__).name} from docs/readers/advice.\n\n"
        '#include "host/ReaderAdviceRows.h"\n\nnamespace kel::host {\n\n'
        "const AdviceRow kAdviceRows[] = {\n" + "\n".join(rows) + "\n};\n"
        f"const std::size_t kAdviceCount = {len(rows)};\n\n}} // namespace kel::host\n",
        encoding="utf-8",
    )


if __name__ == "__main__":
    main()
