# SPDX-License-Identifier: MIT
"""Tests that the sources are laid out as .clang-format says, and that what is changed here passes .clang-tidy.

Changed is what is not committed, or differs from the upstream branch. A file takes clang-tidy up to a minute, so many
changed files are left to scripts/check-release.sh, which sets KEL_TIDY=all to look at all of them.
"""

import os
import re
import subprocess
import unittest
from pathlib import Path

ROOT = Path(__file__).resolve().parents[1]
MOST_CHANGED = 12
ALL = os.environ.get("KEL_TIDY") == "all"
INCLUDED = [folder for folder in os.environ.get("KEL_INCLUDE_FOLDERS", "").split(":") if folder]

# What only compiles with the headers of another system or of a library that the build may lack.
ELSEWHERE = re.compile(r"(^com|(^|/)(windows|win32|qt|nats|web|remote_line)|^python|^fuzz|^benchmarks|^examples)/")


def told(*command):
    """The lines that a command writes; none if it fails."""
    done = subprocess.run(command, cwd=ROOT, capture_output=True, text=True)
    return done.stdout.splitlines() if done.returncode == 0 else []


def sources():
    """The sources in C++ that git knows or would take."""
    return [path for path in told("git", "ls-files", "--cached", "--others", "--exclude-standard", "*.h", "*.cpp")
            if (ROOT / path).is_file()]


def changed():
    """The changed sources, of those that compile on this system without further libraries."""
    files = [path for path in sources() if path.endswith(".cpp") and not ELSEWHERE.search(path)]
    if ALL:
        return files
    upstream = told("git", "merge-base", "HEAD", "@{upstream}") or told("git", "rev-parse", "HEAD")
    new = set(told("git", "diff", "--name-only", *upstream))
    new.update(told("git", "ls-files", "--others", "--exclude-standard"))
    return [path for path in files if path in new]


@unittest.skipUnless(sources(), "this is no checkout of git")
class StyleTest(unittest.TestCase):
    def test_layout(self):
        checked = subprocess.run(["clang-format", "--dry-run", "--Werror", *sources()], cwd=ROOT, capture_output=True, text=True)
        wrong = sorted({line.split(":")[0] for line in checked.stderr.splitlines() if "error: code should" in line})
        self.assertEqual(checked.returncode, 0, "clang-format -i " + " ".join(wrong))

    def test_what_was_changed(self):
        files = changed()
        if not files:
            self.skipTest("nothing is changed")
        if len(files) > MOST_CHANGED and not ALL:
            self.skipTest(f"{len(files)} files are changed; 'scripts/check-release.sh tidy' checks them")
        options = ["-xc++", "-std=c++20", *(f"-I{folder}" for folder in INCLUDED)]
        checked = subprocess.run(["clang-tidy", "--quiet", *files, "--", *options], cwd=ROOT, capture_output=True, text=True)
        self.assertEqual(checked.returncode, 0, checked.stdout)


if __name__ == "__main__":
    unittest.main()
