# SPDX-License-Identifier: MIT
"""Hosts of both widths in one prefix: which of them finds the component."""

import os
import pathlib
import shutil
import tempfile

from harness import WindowsTest, class_keys, machine_wide, windows_path, wine

BINS = {width: pathlib.Path(os.environ[f"KEL_WINDOWS_{width}"]) / "bin" for width in (64, 32)}
HIVES = ("HKLM", "HKCU")
CREATED = 42
# A script host ends with 0 at an error that nobody catches.
HOST = f"""Set reader = CreateObject("KELReader81U.clsKELReader")
If reader.LoadDefaults(24) Then WScript.Quit {CREATED}
"""


class BothWidths(WindowsTest):
    def setUp(self):
        self.folder = pathlib.Path(tempfile.mkdtemp())
        self.addCleanup(shutil.rmtree, self.folder)
        self.enterContext(machine_wide())

    def creates(self, width):
        """Whether a script host of a width can create a reader."""
        script = self.folder / "host.vbs"
        script.write_text(HOST)
        answer = wine("cscript", "//nologo", windows_path(script), width=width)
        self.assertIn(answer.returncode, (0, CREATED), answer.stdout)
        return answer.returncode == CREATED

    def who_creates(self):
        return {width for width in BINS if self.creates(width)}

    @staticmethod
    def keys():
        """All keys of the classes; those of 32-bit programs lie in a branch of their own."""
        return {hive: class_keys(hive, 64) for hive in HIVES}
