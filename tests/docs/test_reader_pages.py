# SPDX-License-Identifier: MIT
"""Tests of the pages about the readers: they are up to date, and what drivers report has advice.

The environment variable KELREADER names the command that tells the catalogue.
"""

import contextlib
import io
import os
import shutil
import sys
import tempfile
import unittest
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]
SOURCES = tuple("contract dispatch docs/readers drivers failure options profiles reader strings types".split())

sys.dont_write_bytecode = True
sys.path.insert(0, str(ROOT / "scripts"))

import generate_reader_pages
import reader_facts

PROGRAM = os.environ.get("KELREADER") or reader_facts.usual_program(ROOT)


class ReaderPagesCase(unittest.TestCase):
    """Works on a copy of the sources that the pages are made of."""

    def setUp(self):
        directory = tempfile.TemporaryDirectory()
        self.addCleanup(directory.cleanup)
        self.root = Path(directory.name)
        for folder in SOURCES:
            shutil.copytree(ROOT / folder, self.root / folder)

    def change(self, path, old, new):
        file = self.root / path
        text = file.read_text(encoding="utf-8")
        self.assertIn(old, text)
        file.write_text(text.replace(old, new), encoding="utf-8")

    def add(self, path, text):
        with open(self.root / path, "a", encoding="utf-8") as file:
            file.write(text)

    def run_script(self, *arguments):
        """Exit status and lines of complaint."""
        complaint = io.StringIO()
        with contextlib.redirect_stderr(complaint):
            status = generate_reader_pages.main(["--root", str(self.root), "--kelreader", PROGRAM, *arguments])
        return status, complaint.getvalue().splitlines()


class PagesTest(ReaderPagesCase):
    def test_the_pages_are_up_to_date(self):
        self.assertEqual(self.run_script("--check"), (0, []))

    def test_a_page_that_was_changed_by_hand_is_told(self):
        self.add("docs/readers/ncs.md", "One more line.\n")
        self.assertEqual(
            self.run_script("--check"),
            (1, ["docs/readers/ncs.md is not up to date: run scripts/generate_reader_pages.py"]),
        )
        self.assertEqual(self.run_script(), (0, []))
        self.assertEqual(self.run_script("--check"), (0, []))

    def test_a_changed_text_makes_its_page_old(self):
        self.change("strings/texts/English.txt", "354 = The reader did not answer", "354 = The reader gave no answer")
        self.assertEqual(
            self.run_script("--check")[1],
            ["docs/readers/peripheral_dynamics.md is not up to date: run scripts/generate_reader_pages.py"],
        )
        self.assertEqual(self.run_script(), (0, []))
        page = (self.root / "docs/readers/peripheral_dynamics.md").read_text(encoding="utf-8")
        self.assertIn("The reader gave no answer the status query.", page)

    def test_links_lead_somewhere(self):
        self.change("docs/readers/advice/ncs.md", "common.md#no-answer", "common.md#answer")
        self.assertEqual(
            self.run_script()[1], ["docs/readers/ncs.md: the link to common.md#answer leads nowhere"]
        )


class AdviceTest(ReaderPagesCase):
    DRIVER = "drivers/peripheral_dynamics/basPeripheralDynamics.cpp"

    def test_a_reported_number_needs_advice(self):
        self.change(self.DRIVER, "text::kPdFaultBit40", "text::kStFaultBit40")
        self.assertEqual(
            self.run_script()[1],
            [
                f"{self.DRIVER}: text 466 has no advice in docs/readers/advice/peripheral_dynamics.md",
                "docs/readers/advice/peripheral_dynamics.md: text 362 is not reported any more",
            ],
        )

    def test_names_in_comments_and_texts_are_none(self):
        source = '// text::kJam\n/* text::kJam\n */ const char* k = "text::kJam \\" text::kJam"; f(466, kJam);\n'
        self.assertEqual(reader_facts.numbers_in(source, {"kJam": 466}), set())

    def test_every_other_name_counts(self):
        for text in ("f(text::kJam);", "{text::kJam, 1}", "TextNumber k = text::kJam;", "a ? text::kJam : b"):
            with self.subTest(text):
                self.assertEqual(reader_facts.numbers_in(text, {"kJam": 466}), {466})

    def test_words_without_a_number_need_advice(self):
        self.add(self.DRIVER, 'void f() { reportReaderFault(kReadPage, "No paper at all", "Paper Fault"); }\n')
        self.assertEqual(
            [line.partition(" has no")[0] for line in self.run_script()[1]],
            [f'{self.DRIVER}: the text "No paper at all"', f'{self.DRIVER}: the text "Paper Fault"'],
        )

    def test_advice_says_when_cause_and_do(self):
        self.change("docs/readers/advice/chatsworth.md", "Cause: a set-up command", "Because: a set-up command")
        self.assertIn("does not say When, Cause and Do", "\n".join(self.run_script()[1]))

    def test_a_family_needs_a_file_of_advice(self):
        (self.root / "docs/readers/advice/scantron.md").unlink()
        self.assertEqual(
            self.run_script()[1], ["docs/readers/advice/scantron.md: the advice for drivers/scantron is missing"]
        )

    def test_an_excuse_has_to_be_needed(self):
        self.change("docs/readers/advice/common.md", "ReaderModels.cpp 372", "ReaderModels.cpp 372 374")
        self.assertIn("ReaderModels.cpp does not name text 374", "\n".join(self.run_script()[1]))

    def test_every_failure_needs_advice(self):
        self.change("docs/readers/advice/common.md", "## failure 8015", "## failure 8016")
        self.assertEqual(
            [line.partition(": ")[2] for line in self.run_script()[1]],
            ["failure 8015 has no advice", "there is no failure 8016"],
        )

    def test_every_text_stands_on_some_page(self):
        self.add("strings/texts/English.txt", "700 = A new message.\n")
        self.assertEqual(self.run_script()[1], ["strings/texts/English.txt: text 700 stands on no page"])


if __name__ == "__main__":
    unittest.main()
