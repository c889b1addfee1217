# SPDX-License-Identifier: MIT
"""Tests that the lists of the documents are complete: the tests, and the parts of a release's check."""

import re
import unittest
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]
PAGE = (ROOT / "tests/README.md").read_text(encoding="utf-8")


def first_cells(head):
    """The names in the first column of the table with this head, without what stands for several."""
    table = PAGE.partition(head)[2].partition("\n\n")[0]
    cells = re.findall(r"^\| (`.*?) \|", table, re.MULTILINE)
    return {re.sub(r"<N>|\*", "", name) for cell in cells for name in re.findall(r"`([^`]*)`", cell)}


def tests():
    """The names that the build gives its tests; those of shards without their numbers."""
    files = [file for folder in ("tests", "fuzz", "benchmarks") for file in (ROOT / folder).rglob("CMakeLists.txt")]
    for file in [*files, ROOT / "cmake/BuildFixture.cmake"]:
        text = file.read_text(encoding="utf-8")
        yield from re.findall(r"^ *(?:add_test\(NAME|kel_shards\() *(\w+)", text, re.MULTILINE)


class ListsTest(unittest.TestCase):
    def test_the_page_lists_every_test(self):
        listed = first_cells("| In ctest |")
        found = set(tests())
        self.assertIn("Rooms", found)
        self.assertEqual({name for name in found if not {name, "_".join(name.split("_")[:2])} & listed}, set())
        self.assertEqual(listed - {"Windows"}, listed & (found | {"Options_window"}))

    def test_the_page_lists_every_part_of_the_check_before_a_release(self):
        script = (ROOT / "scripts/check-release.sh").read_text(encoding="utf-8")
        parts = set(re.findall(r"^check_(\w+)\(\)", script, re.MULTILINE))
        self.assertIn("sweep", parts)
        self.assertEqual(first_cells("| Part |"), parts)
        self.assertEqual(set(re.findall(r"^#   (\w+) ", script, re.MULTILINE)), parts)


if __name__ == "__main__":
    unittest.main()
