# SPDX-License-Identifier: MIT
"""The installer: silent for the machine and for a user, over an older version, as a repair, and gone again."""

import pathlib
import subprocess
import time
import unittest

from both_widths import BINS, BothWidths
from harness import PATIENCE, PREFIX, registry_has, registry_values, wine

PROJECT = pathlib.Path(__file__).resolve().parents[2]
UNINSTALL = r"\Software\Microsoft\Windows\CurrentVersion\Uninstall\KELReader81U"
HOSTS_KEY = r"HKCU\Software\A host\Reader"
MEGABYTE = 1 << 20
DRIVE = PREFIX / "drive_c"
MACHINE = DRIVE / "Program Files" / "KELReader81U"
FILES = {"64/KELReader81U.dll", "64/KELReader81U.manifest", "64/LKELReader81.txt", "32/KELReader81U.dll",
         "32/KELReader81U.manifest", "32/LKELReader81.txt", "docs/windows.md", "docs/readers/README.md",
         "examples/ReadBatch.cpp", "examples/ReadSheets.vbs", "examples/ReadSheets.js", "development/KELReader81U.idl",
         "LICENSE.txt", "KELReader81U-setup.exe", "uninstall.exe"}


def links():
    return {path for path in DRIVE.rglob("KELReader81U/*.lnk")}


class Installer(BothWidths):
    def installer(self, version):
        output = self.folder / f"KELReader81U-{version}.exe"
        subprocess.run([PROJECT / "scripts/make-installer.sh", BINS[64].parent, BINS[32].parent, output, version], check=True,
                       stdout=subprocess.DEVNULL)
        self.assertLess(output.stat().st_size, 8 * MEGABYTE)
        return output

    def install(self, program, *arguments):
        self.run_program(program, "/S", *arguments, cwd=self.folder, width=32)

    def uninstall(self, place, *arguments):
        """The uninstaller goes on in a copy of its own: it has ended when the folder is gone."""
        wine(place / "uninstall.exe", "/S", *arguments, cwd=self.folder, width=32, check=True)
        end = time.monotonic() + PATIENCE
        while place.exists() and time.monotonic() < end:
            time.sleep(0.1)
        self.assertFalse(place.exists(), list(place.rglob("*")) if place.exists() else "")

    def entry(self, hive, name):
        return registry_values(hive + UNINSTALL, width=32)[name][1]

    def files(self, place):
        return {str(path.relative_to(place)) for path in place.rglob("*") if path.is_file()}

    def test_for_the_machine(self):
        before = self.keys()
        old, new = self.installer("8.0.9"), self.installer("8.1.0")

        self.install(old, "/AllUsers")
        self.assertLessEqual(FILES, self.files(MACHINE))
        self.assertEqual(self.who_creates(), {64, 32})
        self.assertEqual(self.entry("HKLM", "DisplayVersion"), "8.0.9")
        self.assertEqual(self.entry("HKLM", "Publisher"), "The KELReader81U developers")
        self.assertEqual(len(links()), 4)

        self.addCleanup(wine, "reg", "delete", HOSTS_KEY, "/f")
        wine("reg", "add", HOSTS_KEY, "/v", "ScannerType", "/d", "13", "/f", check=True)
        (MACHINE / "docs" / "of the old version.md").write_text("")
        self.install(new, "/AllUsers")
        self.assertEqual(self.entry("HKLM", "DisplayVersion"), "8.1.0")
        self.assertEqual(self.who_creates(), {64, 32})
        self.assertEqual(registry_values(HOSTS_KEY)["ScannerType"][1], "13")
        self.assertNotIn("docs/of the old version.md", self.files(MACHINE))

        for damaged in ("64/LKELReader81.txt", "32/KELReader81U.dll", "docs/windows.md"):
            (MACHINE / damaged).unlink()
        self.assertEqual(self.who_creates(), {64})
        self.install(MACHINE / "KELReader81U-setup.exe", "/AllUsers")
        self.assertLessEqual(FILES, self.files(MACHINE))
        self.assertEqual(self.who_creates(), {64, 32})

        self.uninstall(MACHINE, "/AllUsers")
        self.assertEqual(self.keys(), before)
        self.assertFalse(registry_has("HKLM" + UNINSTALL, width=32))
        self.assertEqual(links(), set())
        self.assertEqual(registry_values(HOSTS_KEY)["ScannerType"][1], "13")

    def test_for_a_user(self):
        before = self.keys()
        self.install(self.installer("8.1.0"), "/CurrentUser")
        [place] = (path.parent for path in DRIVE.glob("users/*/AppData/Local/**/KELReader81U/uninstall.exe"))
        self.assertLessEqual(FILES, self.files(place))
        self.assertEqual(self.entry("HKCU", "DisplayVersion"), "8.1.0")
        self.assertFalse(MACHINE.exists())
        self.assertFalse(registry_has(r"HKLM\Software\Classes\KELReader81U.clsKELReader"))
        for width in BINS:
            self.assertTrue(registry_has(r"HKCU\Software\Classes\KELReader81U.clsKELReader\CLSID", width=width))
        self.uninstall(place, "/CurrentUser")
        self.assertEqual(self.keys(), before)
        self.assertFalse(registry_has("HKCU" + UNINSTALL, width=32))
        self.assertEqual(links(), set())


if __name__ == "__main__":
    unittest.main()
