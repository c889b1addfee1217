# SPDX-License-Identifier: MIT
"""The options dialog on a display: how it works in each language, and what it looks like there and on finer screens."""

import contextlib
import pathlib
import subprocess
import unittest

from harness import PREFIX, WIDTH, WindowsTest, environment, machine_wide, on_the_screen, windows_path, wine

PROGRAM = "windows_platform_tests.exe"
HERE = pathlib.Path(__file__).resolve().parent
KEPT = HERE / "options/kept"
COMPARE = HERE.parent / "options/screenshots.py"

LOOKS = "*.FirstShown:*.NoTextIsCutOff*:*.EveryAccessKey*"
IN_EACH_LANGUAGE = LOOKS + ":OptionsDialogAccess.*-*.TheTabKey*"
OTHER_LANGUAGES = ("German", "French", "Spanish")
FINE = (144, 192)  # dots per inch
DESKTOP = r"HKCU\Control Panel\Desktop"


@contextlib.contextmanager
def dots_per_inch(number):
    """Programs that are started meanwhile find this resolution."""
    with machine_wide():
        wine("reg", "add", DESKTOP, "/v", "LogPixels", "/t", "REG_DWORD", "/d", str(number), "/f", check=True)
        try:
            yield
        finally:
            wine("reg", "delete", DESKTOP, "/v", "LogPixels", "/f", check=True)


class Dialog(WindowsTest):
    def run_tests(self, name, tests, language="English"):
        """Runs tests, and compares their screenshots with those of this name; screenshots.py --keep makes them so."""
        taken = PREFIX.with_name(PREFIX.name + ".screenshots") / name
        taken.mkdir(parents=True, exist_ok=True)
        for old in taken.iterdir():
            old.unlink()
        with on_the_screen():
            output = self.run_program(PROGRAM, f"--gtest_filter={tests}", f"/L={language}",
                                      env=environment(KEL_SCREENSHOTS=windows_path(taken)))
        self.assertIn("[  PASSED  ]", output)
        self.assertNotIn("Running 0 tests", output)
        if WIDTH == 64:  # the 32-bit edition has the same dialog, and perhaps other typefaces
            answer = subprocess.run(["/usr/bin/python3", "-B", COMPARE, taken, KEPT / name], text=True,
                                    stdout=subprocess.PIPE, stderr=subprocess.STDOUT)
            self.assertEqual(answer.returncode, 0, answer.stdout)

    def test_works(self):
        self.run_tests("English", "OptionsDialog*")

    def test_other_languages(self):
        for language in OTHER_LANGUAGES:
            with self.subTest(language):
                self.run_tests(language, IN_EACH_LANGUAGE, language)

    def test_fine_screens(self):
        for number in FINE:
            with self.subTest(number), dots_per_inch(number):
                self.run_tests(str(number), LOOKS)


if __name__ == "__main__":
    unittest.main()
