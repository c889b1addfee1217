# SPDX-License-Identifier: MIT
"""The installers: silent for the machine and for a user, over an older version, as a repair, and gone again."""

import pathlib
import subprocess
import tempfile
import time
import unittest

from both_widths import BINS, BothWidths
from harness import (PATIENCE, PREFIX, environment, registry_has, registry_values, version, windows_path,
                     wine)

PROJECT = pathlib.Path(__file__).resolve().parents[2]
UNINSTALL = r"\Software\Microsoft\Windows\CurrentVersion\Uninstall\KELReader81U"
HOSTS_KEY = r"HKCU\Software\A host\Reader"
MEGABYTE = 1 << 20
OLD, NEW = "1.0.0", version()
DRIVE = PREFIX / "drive_c"
MACHINE = DRIVE / "Program Files" / "KELReader81U"
FILES = {"docs/windows.md", "docs/readers/README.md", "examples/ReadBatch.cpp", "examples/ReadSheets.vbs",
         "examples/ReadSheets.js", "examples/ReadSheets.vbp", "examples/frmRead.frm", "examples/ReadTyped.csproj", "development/KELReader81U.idl", "LICENSE.txt"}
FILES |= {f"{width}/{name}" for width in (64, 32)
          for name in ("KELReader81U.dll", "KELReader81U.manifest", "LKELReader81.txt", "ReadBatch.exe",
                       "ReadBatch.exe.manifest")}
FILES |= {"32/kelreader.exe", "32/simulated/OMRAPI.dll"}
OF_THE_PROGRAM = {"KELReader81U-setup.exe", "uninstall.exe"}
MACHINE_PATH = r"HKLM\System\CurrentControlSet\Control\Session Manager\Environment"
USER_PATH = r"HKCU\Environment"
LONG = ";".join([r"%SystemRoot%"] + [rf"C:\A folder of somebody else\{number}" for number in range(60)])


def links():
    return {path for path in DRIVE.rglob("KELReader81U/*.lnk")}


def path(key):
    """A Path of the registry: its type and its text; None if there is none."""
    return {name.upper(): value for name, value in registry_values(key).items()}.get("PATH")


def folders_of(value):
    """Those of a Path; Wine's msiexec leaves an empty one."""
    return [folder for folder in value[1].split(";") if folder]


class Installer(BothWidths):
    @classmethod
    def setUpClass(cls):
        super().setUpClass()
        installers = tempfile.TemporaryDirectory()
        cls.addClassCleanup(installers.cleanup)
        cls.installers = pathlib.Path(installers.name)

    def installer(self, version, kind="exe"):
        """Made by the first test that asks for it."""
        output = self.installers / f"KELReader81U-{version}.{kind}"
        if not output.exists():
            subprocess.run([PROJECT / "scripts/make-installer.sh", BINS[64].parent, BINS[32].parent, output, version],
                           check=True, stdout=subprocess.DEVNULL)
        self.assertLess(output.stat().st_size, 8 * MEGABYTE)
        return output

    def set_path(self, key, text):
        before = path(key)
        self.addCleanup(lambda: wine("reg", "delete", key, "/v", "Path", "/f") if before is None else
                        wine("reg", "add", key, "/v", "Path", "/t", before[0], "/d", before[1], "/f"))
        wine("reg", "add", key, "/v", "Path", "/t", "REG_EXPAND_SZ", "/d", text, "/f", check=True)

    def command_works(self, place):
        """From any folder, by its name alone."""
        read = wine("cmd", "/c", "kelreader", "scan", "--simulate", "--model", 21, "--count", 1, "--max-sheets", 1,
                    "--set", "Timeout=600", cwd=self.folder, env=environment(WINEPATH=windows_path(place / "32")))
        self.assertEqual(read.returncode, 0, read.stdout)
        self.assertIn('"event":"sheet"', read.stdout)

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
        old, new = self.installer(OLD), self.installer(NEW)
        self.set_path(MACHINE_PATH, LONG)

        self.install(old, "/AllUsers", "/PATH")
        self.assertLessEqual(FILES | OF_THE_PROGRAM, self.files(MACHINE))
        on_path = ("REG_EXPAND_SZ", LONG + r";C:\Program Files\KELReader81U\32")
        self.assertEqual(path(MACHINE_PATH), on_path)
        self.command_works(MACHINE)
        self.assertEqual(self.who_creates(), {64, 32})
        self.assertEqual(self.entry("HKLM", "DisplayVersion"), OLD)
        self.assertEqual(self.entry("HKLM", "Publisher"), "The KELReader81U developers")
        self.assertEqual(len(links()), 4)

        self.addCleanup(wine, "reg", "delete", HOSTS_KEY, "/f")
        wine("reg", "add", HOSTS_KEY, "/v", "ScannerType", "/d", "13", "/f", check=True)
        (MACHINE / "docs" / "of the old version.md").write_text("")
        self.install(new, "/AllUsers")
        self.assertEqual(self.entry("HKLM", "DisplayVersion"), NEW)
        self.assertEqual(self.who_creates(), {64, 32})
        self.assertEqual(registry_values(HOSTS_KEY)["ScannerType"][1], "13")
        self.assertEqual(path(MACHINE_PATH), on_path, "an upgrade leaves it")
        self.assertNotIn("docs/of the old version.md", self.files(MACHINE))

        for damaged in ("64/LKELReader81.txt", "32/KELReader81U.dll", "docs/windows.md"):
            (MACHINE / damaged).unlink()
        self.assertEqual(self.who_creates(), {64})
        self.install(MACHINE / "KELReader81U-setup.exe", "/AllUsers")
        self.assertLessEqual(FILES | OF_THE_PROGRAM, self.files(MACHINE))
        self.assertEqual(self.who_creates(), {64, 32})

        self.uninstall(MACHINE, "/AllUsers")
        self.assertEqual(self.keys(), before)
        self.assertFalse(registry_has("HKLM" + UNINSTALL, width=32))
        self.assertEqual(links(), set())
        self.assertEqual(path(MACHINE_PATH), ("REG_EXPAND_SZ", LONG))
        self.assertEqual(registry_values(HOSTS_KEY)["ScannerType"][1], "13")

    def test_for_a_user(self):
        before = self.keys()
        self.assertIsNone(path(USER_PATH))
        machines = path(MACHINE_PATH)
        program = self.installer(NEW)
        self.install(program, "/CurrentUser")
        self.assertIsNone(path(USER_PATH))
        self.install(program, "/CurrentUser", "/PATH")
        [place] = (path.parent for path in DRIVE.glob("users/*/AppData/Local/**/KELReader81U/uninstall.exe"))
        self.assertLessEqual(FILES | OF_THE_PROGRAM, self.files(place))
        self.assertEqual(self.entry("HKCU", "DisplayVersion"), NEW)
        self.assertEqual(path(USER_PATH), ("REG_EXPAND_SZ", str(pathlib.PureWindowsPath("C:\\", *place.parts[len(DRIVE.parts):], "32"))))
        self.assertEqual(path(MACHINE_PATH), machines)
        self.install(program, "/CurrentUser", "/PATH=0")
        self.assertIsNone(path(USER_PATH))
        self.assertFalse(MACHINE.exists())
        self.assertFalse(registry_has(r"HKLM\Software\Classes\KELReader81U.clsKELReader"))
        for width in BINS:
            self.assertTrue(registry_has(r"HKCU\Software\Classes\KELReader81U.clsKELReader\CLSID", width=width))
        self.uninstall(place, "/CurrentUser")
        self.assertEqual(self.keys(), before)
        self.assertFalse(registry_has("HKCU" + UNINSTALL, width=32))
        self.assertEqual(links(), set())
        self.assertIsNone(path(USER_PATH))

    def test_package_for_administrators(self):
        before = self.keys()
        old, new = self.installer(OLD, "msi"), self.installer(NEW, "msi")
        self.set_path(MACHINE_PATH, LONG)
        for package in (old, new):
            self.addCleanup(wine, "msiexec", "/x", windows_path(package), "/qn", cwd=self.folder)
            self.run_program("msiexec", "/i", windows_path(package), "/qn", "ADDLOCAL=ALL", cwd=self.folder)
            self.assertLessEqual(FILES, self.files(MACHINE))
            self.assertEqual(self.who_creates(), {64, 32})
            self.assertEqual(folders_of(path(MACHINE_PATH)), [*LONG.split(";"), r"C:\Program Files\KELReader81U\32"])
        self.run_program("msiexec", "/x", windows_path(new), "/qn", cwd=self.folder)
        self.assertFalse(MACHINE.exists(), self.files(MACHINE))
        left = {key for hive, keys in self.keys().items() for key in keys ^ before[hive]}
        self.assertEqual({key for key in left if r"\Classes\Installer" not in key}, set())  # the system's own book
        self.assertEqual(folders_of(path(MACHINE_PATH)), LONG.split(";"))


if __name__ == "__main__":
    unittest.main()
