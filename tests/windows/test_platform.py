"""The Windows edition from within: ports, pump, registry; and the options dialog in each language."""

import unittest

from harness import FarEnd, WindowsTest

PROGRAM = "windows_platform_tests.exe"
DIALOG = "OptionsDialogWindowTest.*"


class Platform(WindowsTest):
    def run_tests(self, *arguments):
        output = self.run_program(PROGRAM, *arguments, timeout=100)
        self.assertIn("[  PASSED  ]", output)
        self.assertNotIn("Running 0 tests", output)

    def test_platform(self):
        with FarEnd(port=1):
            self.run_tests(f"--gtest_filter=-{DIALOG}")

    def test_options_dialog(self):
        for language in ("English", "German", "French", "Spanish"):
            with self.subTest(language):
                self.run_tests(f"--gtest_filter={DIALOG}", f"/L={language}")


if __name__ == "__main__":
    unittest.main()
