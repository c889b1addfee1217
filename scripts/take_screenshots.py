"""Takes the screenshots of the documents, of what a simulated reader has read.

Usage: /usr/bin/python3 scripts/take_screenshots.py path/to/kelreader
"""

import base64
import json
import random
import subprocess
import sys
import tempfile
from pathlib import Path

ROOT = Path(__file__).resolve().parents[1]
sys.path.insert(0, str(ROOT / "tests" / "pictures"))

from browser import Browser  # noqa: E402

SHOTS = ROOT / "docs" / "screenshots"
ROWS, COLUMNS = 40, 48
SHEETS = 30


def window(column, row=8, rows=30, columns=5):
    return {"StartRow": row, "NumRows": rows, "RowGap": 1, "StartCol": column, "NumCols": columns, "ColGap": 1,
            "Page": 1, "Orientation": 1}


FORM = {"side1Rows": [ROWS], "side1Cols": [COLUMNS], "windows": [window(column) for column in (4, 15, 26)] +
        [window(38, row=8, rows=10, columns=8)],
        "barcodes": [{"Page": 1, "Distance": 2, "Length": 22, "Symbology": 1, "Orientation": 1}]}


def sheet(number, chance):
    marks = [[0] * COLUMNS for _ in range(ROWS)]
    for box in FORM["windows"]:
        for row in range(box["NumRows"]):
            if number != 5 and chance.random() < 0.93:
                choice = chance.randrange(box["NumCols"])
                marks[box["StartRow"] - 1 + row][box["StartCol"] - 1 + choice] = min(15, max(2, round(chance.gauss(9, 3))))
    if number != 5:
        marks[11][44] = 15  # dirt on the head
    return {"side1": marks, "barcodes": [] if number == 9 else [f"EXAM-{100200 + number * 37}"]}


def main():
    program = sys.argv[1]
    SHOTS.mkdir(exist_ok=True)
    chance = random.Random(81)
    browser = Browser()
    with tempfile.TemporaryDirectory() as folder:
        where = Path(folder)
        (where / "sheets.json").write_text(json.dumps([sheet(number, chance) for number in range(1, SHEETS + 1)]))
        (where / "form.json").write_text(json.dumps(FORM))
        page = where / "batch.html"
        subprocess.run([program, "scan", "--model", "7", "--simulate", "--rate", "unlimited", "--form",
                        str(where / "form.json"), "--sheets", str(where / "sheets.json"), "--max-sheets", str(SHEETS),
                        "--set", "Barcode=true", "--set", "Rejecter=true", "--reject-sheets", "5", "--format", "html",
                        "--out", str(page)], check=True)
        browser.open(page)
        browser.driver.set_window_size(1280, 900)
        browser.driver.save_screenshot(str(SHOTS / "batch.png"))
        browser.run("document.querySelector('#rows button').click(); document.activeElement.blur()")
        picture = browser.driver.find_element("css selector", "#picture svg")
        (SHOTS / "sheet.png").write_bytes(base64.b64decode(picture.screenshot_as_base64))
    browser.close()


if __name__ == "__main__":
    main()
