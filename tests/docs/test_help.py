# SPDX-License-Identifier: MIT
"""Tests that the manual page has what the help of the commands for stations has: options, defaults, variables."""

import os
import re
import subprocess
import unittest
from pathlib import Path

PROGRAM = Path(os.environ["KELREADER"]).resolve()
PAGE = Path(__file__).resolve().parents[2] / "docs/kelreader.1"
COMMANDS = ("station", "collect", "sheets")
EVERYWHERE = {"--help", "--language"}  # options of each command


def plain(troff):
    """The words of a manual page: without its requests, fonts and quotes."""
    text = re.sub(r'^\.[A-Z]+ ?', "", troff, flags=re.MULTILINE)
    text = re.sub(r"\\f[A-Z]", "", text).replace("\\-", "-").replace('"', "")
    return " ".join(text.split())


def entries(command):
    """What the manual page says of a command."""
    page = PAGE.read_text(encoding="utf-8")
    found = [plain(entry) for entry in page.split("\n.TP\n")]
    return " ".join(entry for entry in found if entry.startswith(command + " "))


def help_of(command):
    return subprocess.run([PROGRAM, command, "--help"], capture_output=True, text=True, check=True).stdout


class HelpTest(unittest.TestCase):
    def test_the_manual_page_has_every_option(self):
        for command in COMMANDS:
            options = set(re.findall(r"^  (--[a-z-]+)", help_of(command), re.MULTILINE)) - EVERYWHERE
            self.assertGreater(len(options), 2)
            found = set(re.findall(r"--[a-z]+", entries(command)))
            self.assertEqual(options - found, set(), command)
            self.assertEqual(found - options - {"--store"}, set(), command)  # that of a scan

    def test_the_manual_page_has_every_default(self):
        for command in COMMANDS:
            defaults = set(re.findall(r"^  \S+ [A-Z]+(?::\{.*?\})?=(\S+)", help_of(command), re.MULTILINE))
            self.assertTrue(defaults, command)
            text = re.sub(r"\[.*?\]", "", entries(command))  # without what may be given
            words = set(re.findall(r"[^\s,;]+", text))
            self.assertEqual({value for value in defaults if not {value, value + "."} & words}, set(), command)

    def test_the_manual_page_has_every_variable(self):
        variables = set(re.findall(r"\(Env:(\w+)\)", help_of("collect")))
        self.assertGreater(len(variables), 5)
        listed = set(re.findall(r"KELREADER_\w+", PAGE.read_text(encoding="utf-8"))) - {"KELREADER_REGISTRY_DIR"}
        self.assertEqual(variables, listed)

    def test_an_option_without_a_stated_default_says_what_is_without_it(self):
        texts = {name: " ".join(text.split()) for name, text in
                 re.findall(r"^  (--[a-z]+)(.*?)(?=^  -|^\S|\Z)", help_of("sheets"), re.MULTILINE | re.DOTALL)}
        for option in ("--reader", "--batch"):
            self.assertIn("by default", texts[option])
        self.assertIn("by default the system's", " ".join(help_of("collect").split()))


if __name__ == "__main__":
    unittest.main()
