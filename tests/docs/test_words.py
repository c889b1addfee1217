# SPDX-License-Identifier: MIT
"""Tests that the documents and the public headers keep to the glossary of CONTRIBUTING.md."""

import re
import unittest
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]
LIST = (ROOT / "cmake/PublicHeaders.cmake").read_text(encoding="utf-8")
HEADERS = re.findall(r"^    (\w+/\w+\.h)$", LIST, re.MULTILINE)

# What not to write, and the glossary's word for it.
WORDS = {
    r"behind": "after, or at the far end of",
    r"in front of": "before",
    r"tells?|told|telling": "reports, shows, says",
    r"anew|once more": "again",
    r"in (the )?place of": "instead of",
    r"(takes?|taken|took|taking) ((?!or\b|and\b)\w+ ){0,3}away": "removes, deletes",
    r"mend(s|ed|ing)?": "fix",
    r"what (came|comes|became|becomes) of": "the result of",
    r"nothing for": "null, or nullopt, for",
    r"is no (number|text|letter|row|choice|model)": "is not a",
    r"kept settings|keeps? settings": "saved settings, saves settings",
    r"bubbles?|dumm(y|ies)": "cell, simulated reader",
}
FORBIDDEN = re.compile(r"\b(" + "|".join(f"(?:{word})" for word in WORDS) + r")\b", re.IGNORECASE)


def documents():
    """The texts of all documents, without the glossary itself."""
    folders = [entry for entry in ROOT.iterdir() if entry.is_dir() and entry.name != "build" and entry.name[0] != "."]
    for file in sorted([*ROOT.glob("*.md"), *(page for folder in folders for page in folder.rglob("*.md"))]):
        text = file.read_text(encoding="utf-8")
        if file.name == "CONTRIBUTING.md":
            text = text.partition("\n| Write | For | Not |")[0]
        yield str(file.relative_to(ROOT)), text


def comments():
    """The comments of the headers that a host sees."""
    for header in HEADERS:
        text = (ROOT / header).read_text(encoding="utf-8")
        yield header, "\n".join(line.strip() for line in re.findall(r"//[/<]*(.*)", text))


def offences(text):
    """The forbidden words of a text. Messages and code are what they are: quoted texts and samples do not count."""
    text = re.sub(r"^(```.*?^```|    .*?|> <a id=.*?)$", "", text, flags=re.MULTILINE | re.DOTALL)
    text = re.sub(r'`[^`]*`|"[^"\n]*"|“[^”]*”', "", text)
    return [" ".join(found[0].split()) for found in FORBIDDEN.finditer(re.sub(r"\s+", " ", text))]


class WordsTest(unittest.TestCase):
    def test_documents_keep_to_the_glossary(self):
        pages = dict(documents())
        self.assertIn("README.md", pages)
        self.assertEqual({path: found for path, text in pages.items() if (found := offences(text))}, {})

    def test_public_headers_keep_to_the_glossary(self):
        headers = dict(comments())
        self.assertIn("reader/clsKELReader.h", headers)
        self.assertEqual({path: found for path, text in headers.items() if (found := offences(text))}, {})

    def test_finds_what_is_forbidden_and_nothing_else(self):
        self.assertEqual(offences("It stands\nbehind the line, in front\nof it."), ["behind", "in front of"])
        self.assertEqual(offences("A view tells it anew; it takes all rows away."), ["tells", "anew", "takes all rows away"])
        self.assertEqual(offences('The text "behind", `in place of` and\n```\ntold\n```\nor\n    anew\n'), [])


if __name__ == "__main__":
    unittest.main()
