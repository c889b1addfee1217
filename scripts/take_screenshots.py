# SPDX-License-Identifier: MIT
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
sys.path[:0] = [str(ROOT / "tests" / "pictures"), str(ROOT / "tests" / "station")]

from browser import Browser  # noqa: E402
from station_run import Station, simulated  # noqa: E402

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


def take_station(browser, program, where):
    """A station at work: readers of three makers, one of which does not answer."""
    form = {"form": "form.json"}
    station = Station(program, [
        simulated("hall-left", model=7, **form, rejectBlank=True) |
        {"set": {"Barcode": True, "Rejecter": True}, "simulate": {"sheets": "sheets.json"}},
        simulated("hall-right", model=13, count=7, seed=5),
        simulated("office", count=4, seed=8),
        {"name": "rear", "model": "Scantron iNSIGHT 4 (OMR)", "device": "/dev/serial/by-id/usb-FTDI_0004"},
    ], folder=where, station="hall-2")
    try:
        browser.driver.set_window_size(1280, 1150)
        browser.visit(station.address() + "/")
        station.wait(lambda: station.json("/state")["readers"][0]["sheets"] >= 13)
        browser.wait_for("return document.querySelectorAll('#last li').length === 24")
        browser.wait_for("return [...document.querySelectorAll('#last li')].slice(0, 16).every("
                         "(item) => item.querySelector('img').naturalWidth > 0)")
        browser.driver.save_screenshot(str(SHOTS / "station.png"))
    finally:
        station.close()


def main():
    program = str(Path(sys.argv[1]).resolve())
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
        take_station(browser, program, where)
    browser.close()


if __name__ == "__main__":
    main()
