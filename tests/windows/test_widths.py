# SPDX-License-Identifier: MIT
"""Both widths side by side: each is there for its own hosts, and goes without taking anything from the other."""

import unittest

from both_widths import BINS, BothWidths
from harness import registry_has, registry_values

LIBRARY = r"\Software\Classes\TypeLib\{D26AAE3A-FCED-44AA-A71D-B230E65BED1F}\8.1"
NAME = r"\Software\Classes\KELReader81U.clsKELReader"


class Registration(BothWidths):
    def register(self, width, *arguments):
        self.run_program("regsvr32", "/s", *arguments, "KELReader81U.dll", cwd=BINS[width], width=width)

    def libraries(self, hive):
        """For which widths the type library is told."""
        return {width for width in BINS if registry_has(rf"{hive}{LIBRARY}\0\win{width}")}

    def test_each_is_there_for_its_own_hosts(self):
        before = self.keys()
        for first, second in ((64, 32), (32, 64)):
            with self.subTest(first=first):
                self.assertEqual(self.who_creates(), set())
                self.register(first)
                self.assertEqual(self.who_creates(), {first})
                self.register(second)
                self.assertEqual(self.who_creates(), {first, second})
                self.assertEqual(self.libraries("HKLM"), {64, 32})
                self.register(first, "/u")
                self.assertEqual(self.who_creates(), {second})
                self.assertEqual(self.libraries("HKLM"), {second})
                self.assertTrue(registry_has("HKLM" + NAME))
                self.register(second, "/u")
                self.assertEqual(self.keys(), before)

    def test_for_one_user(self):
        """Wine has one view of a user's classes for both widths, where Windows has two: they come and go together."""
        before = self.keys()
        user = ("/n", "/i:user")
        for width in BINS:
            self.register(width, *user)
        self.assertEqual(self.libraries("HKCU"), {64, 32})
        self.assertTrue(registry_values("HKCU" + NAME + r"\CLSID"))
        for width in BINS:
            self.register(width, "/u", *user)
        self.assertEqual(self.keys(), before)


if __name__ == "__main__":
    unittest.main()
