# SPDX-License-Identifier: MIT
"""Tests that the documents, and what cannot ask the build, name the version that CMakeLists.txt has."""

import re
import unittest
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]

[VERSION] = re.findall(r"^project\(\S+ VERSION (\d+\.\d+\.\d+)", (ROOT / "CMakeLists.txt").read_text(encoding="utf-8"), re.M)
MAJOR, MINOR, _ = VERSION.split(".")

# A file, what stands around the version there, and how much of it is meant.
MENTIONS = (
    ("CHANGELOG.md", r"\A.*?^## (\S+?),? ", VERSION),
    ("docs/hosts.md", r"libKELReader81U\.so\.([\d.]*\d)", MAJOR),
    ("docs/hosts.md", r"libKELReader81U_host\.so\.([\d.]*\d)", f"{MAJOR}.{MINOR}"),
    ("docs/hosts.md", r"version (\d+)\.x that is newer", MAJOR),
    ("docs/windows.md", r"`KELReader81U`, version (\d+\.\d+\.\d+\.\d+)", f"{VERSION}.0"),
    ("docs/windows.md", r"\"KELReader (\S+) - Optical Mark Readers\"", f"{MAJOR}.{MINOR}"),
    ("com/KELReader81U.idl", r"version\(([\d.]+)\),", f"{MAJOR}.{MINOR}"),
    ("com/KELReader81U.idl", r"\"KELReader (\S+) - Optical Mark Readers\"", f"{MAJOR}.{MINOR}"),
    ("examples/windows/ReadSheets.vbp", r"#(\d+\.\d+)#0#KELReader81U\.dll#", f"{MAJOR}.{MINOR}"),
    ("examples/windows/ReadSheets.vbp", r"#KELReader (\S+) - Optical Mark Readers", f"{MAJOR}.{MINOR}"),
    ("examples/windows/frmRead.frm", r"\"KELReader (\S+) - Optical Mark Readers\"", f"{MAJOR}.{MINOR}"),
    ("examples/windows/SheetsToCells.cls", r"\"KELReader (\S+) - Optical Mark Readers\"", f"{MAJOR}.{MINOR}"),
)


class VersionTest(unittest.TestCase):
    def test_each_mention_is_of_this_version(self):
        for file, around, expected in MENTIONS:
            with self.subTest(f"{file}: {around}"):
                found = re.findall(around, (ROOT / file).read_text(encoding="utf-8"), re.MULTILINE | re.DOTALL)
                self.assertEqual(set(found), {expected})


if __name__ == "__main__":
    unittest.main()
