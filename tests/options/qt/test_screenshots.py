# SPDX-License-Identifier: MIT
"""The window in four languages and on finer screens: no text is cut off, and it looks as it did.

    test_screenshots.py PROGRAM TAKEN            runs the tests of texts; compares what they put below TAKEN with kept/
    test_screenshots.py --keep PROGRAM TAKEN     makes those the kept ones, for a person to look at
"""

import os
import pathlib
import shutil
import subprocess
import sys

HERE = pathlib.Path(__file__).resolve().parent
sys.path.insert(0, str(HERE.parent))
import screenshots  # noqa: E402

KEPT = HERE / "kept"

# The name of a row of pictures: the language, the scale of the screen, the tests.
ROWS = {
    "English": ("English", "1", "TextsTest.*"),
    "German": ("German", "1", "TextsTest.FirstShown:*.NoneIsCutOff*"),
    "French": ("French", "1", "TextsTest.FirstShown:*.NoneIsCutOff*"),
    "Spanish": ("Spanish", "1", "TextsTest.FirstShown:*.NoneIsCutOff*"),
    "1.5": ("English", "1.5", "TextsTest.FirstShown:*.NoneIsCutOff*"),
    "2": ("English", "2", "TextsTest.FirstShown:*.NoneIsCutOff*"),
}


def take(program, folder, language, scale, tests):
    """Runs tests; True if they pass."""
    shutil.rmtree(folder, ignore_errors=True)
    folder.mkdir(parents=True)
    screen = folder.with_suffix(".json")
    screen.write_text('{"screens": [{"name": "test", "x": 0, "y": 0, "width": 2560, "height": 1600, "logicalDpi": 96, '
                      '"logicalBaseDpi": 96, "dpr": 1}]}')
    environment = dict(os.environ, QT_QPA_PLATFORM=f"offscreen:configfile={screen}", QT_SCALE_FACTOR=scale,
                       KEL_SCREENSHOTS=str(folder))
    done = subprocess.run([program, "--gtest_brief=1", f"--gtest_filter={tests}", f"/L={language}"], env=environment)
    return done.returncode == 0


def main(arguments):
    keeps = arguments[:1] == ["--keep"]
    program, taken = arguments[1:] if keeps else arguments
    fails = False
    for name, row in ROWS.items():
        folder = pathlib.Path(taken) / name
        if not take(program, folder, *row):
            print(f"{name}: the tests fail")
            fails = True
        elif keeps:
            screenshots.keep(folder, KEPT / name)
        else:
            complaints = screenshots.compare(folder, KEPT / name)
            print(f"{name}: " + ("\n".join(complaints) or "all alike"))
            fails = fails or bool(complaints)
    return 1 if fails else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
