# SPDX-License-Identifier: MIT
"""Tests the page of a batch in a browser, with sheets that a simulated reader has sent.

KELREADER names the program. With KEEP_SCREENSHOTS=1 the screenshots that are compared are taken anew.
"""

import json
import os
import random
import subprocess
import tempfile
import unittest
from pathlib import Path

from browser import Browser, data_of
from selenium.webdriver.common.by import By
from selenium.webdriver.common.keys import Keys

PROGRAM = os.environ.get("KELREADER", "kelreader")
KEPT = Path(__file__).resolve().parent / "kept"

HOSTILE = [
    "<script>document.title='owned'</script>",
    "\"'><img src=x onerror=\"document.title='owned'\">&amp;",
    "</script><script>document.title='owned'</script>",
    "\u0001\u001f\u007f]]>-->",
    "A" * 10000,
]
# An SR-601 sends "?" for a barcode that it could not read.
BARCODES = HOSTILE + ["1009", "1002", None, "1010", "1003", "1007", "1000"]
REJECTED, BLANK, BARCODELESS, DOUBLE = 3, 6, 8, 9


def sheets():
    chance = random.Random(3)
    for number, barcode in enumerate(BARCODES, 1):
        marks = [[0] * 48 for _ in range(20)]
        if number != BLANK:
            for _ in range(30 + number):
                marks[chance.randrange(8, 20)][chance.randrange(48)] = chance.randint(1, 9)
            marks[4][7] = 9
        if number == DOUBLE:
            marks[3][5] = marks[3][6] = 8
        yield {"side1": marks, "barcodes": [] if barcode is None else [barcode]}


FORM = {
    "side1Rows": [20], "side1Cols": [48],
    "windows": [{"StartRow": 3, "NumRows": 5, "RowGap": 1, "StartCol": 6, "NumCols": 5, "ColGap": 1, "Page": 1,
                 "Orientation": 1}],
    "barcodes": [{"Page": 1, "Distance": 40, "Length": 30, "Symbology": 1, "Orientation": 1}],
}


class BatchPageTest(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.folder = tempfile.TemporaryDirectory()
        cls.addClassCleanup(cls.folder.cleanup)
        where = Path(cls.folder.name)
        (where / "sheets.json").write_text(json.dumps(list(sheets())))
        (where / "form.json").write_text(json.dumps(FORM))
        cls.page = where / "batch.html"
        cls.pictures = where / "pictures"
        cls.scan("--model", "7", "--form", where / "form.json", "--sheets", where / "sheets.json", "--set",
                 "Barcode=true", "--set", "Rejecter=true", "--reject-sheets", REJECTED, "--max-sheets", len(BARCODES),
                 "--pictures", cls.pictures, "--out", cls.page)
        cls.browser = Browser()
        cls.addClassCleanup(cls.browser.close)

    @classmethod
    def scan(cls, *arguments):
        command = [PROGRAM, "scan", "--simulate", "--rate", "unlimited", "--format", "html", *map(str, arguments)]
        environment = {**os.environ, "KELREADER_REGISTRY_DIR": cls.folder.name}
        return subprocess.run(command, env=environment, stderr=subprocess.DEVNULL).returncode

    def setUp(self):
        self.browser.emulate()
        self.browser.open(self.page)

    def find(self, selector):
        return self.browser.driver.find_element(By.CSS_SELECTOR, selector)

    def text(self, selector):
        return self.browser.run("return document.querySelector(arguments[0]).textContent", selector)

    def numbers(self, column=2):
        return self.browser.run(
            "return [...document.querySelectorAll(`#rows tr td:nth-child(${arguments[0]})`)].map((c) => c.textContent)",
            column)

    def click(self, selector):
        self.browser.run("document.querySelector(arguments[0]).click()", selector)

    def view(self, sheet):
        self.click(f'#rows button[aria-label="Show sheet {sheet}"]')

    def test_shows_the_batch_and_fetches_nothing(self):
        self.assertEqual(self.numbers(), [str(number) for number in range(1, len(BARCODES) + 1)])
        self.assertIn("SR-601", self.text("h1"))
        self.assertEqual(self.text("#summary"), "12 sheets, 1 rejected, 1 blank, 1 with double marks")
        self.assertEqual(self.browser.run("return performance.getEntriesByType('resource').length"), 0)
        self.assertEqual(self.browser.complaints(), [])

    def test_texts_of_sheets_are_only_text(self):
        for number, barcode in enumerate(HOSTILE, 1):
            self.view(number)
            self.assertEqual(self.text("#details dd"), barcode)
            self.assertEqual(self.browser.run(
                "return document.querySelectorAll('dialog script, dialog img, #rows script, #rows img').length"), 0)
            self.assertLess(len(self.text("#picture svg")), 1000)
            self.click("#close")
        self.assertNotIn("owned", self.browser.driver.title)
        self.assertEqual(self.browser.complaints(), [])

    def test_the_headings_sort(self):
        for key, column in (("marks1", 3), ("number", 2)):
            self.click(f'[data-sort="{key}"] button')
            self.assertEqual(self.find(f'[data-sort="{key}"]').get_attribute("aria-sort"), "ascending")
            self.assertEqual(self.numbers(column), sorted(self.numbers(column), key=int))
            self.click(f'[data-sort="{key}"] button')
            self.assertEqual(self.find(f'[data-sort="{key}"]').get_attribute("aria-sort"), "descending")
            self.assertEqual(self.numbers(column), sorted(self.numbers(column), key=int, reverse=True))

    def test_the_buttons_filter(self):
        for name, sheet in (("rejected", REJECTED), ("blank", BLANK), ("barcodeless", BARCODELESS), ("double", DOUBLE)):
            self.click(f'[data-filter="{name}"]')
            self.assertEqual(self.numbers(), [str(sheet)], name)
            self.assertEqual(self.find(f'[data-filter="{name}"]').get_attribute("aria-pressed"), "true")
            self.assertEqual(self.text("#shown"), "1 of 12 sheets")
        self.click('[data-filter="all"]')
        self.find("#search").send_keys("1010")
        self.assertEqual(self.numbers(), ["9"])

    def test_keys_reach_every_sheet(self):
        self.browser.run("document.querySelector('#rows button').focus()")
        active = self.browser.driver.switch_to.active_element
        active.send_keys(Keys.ENTER)
        self.assertEqual(self.text("#viewer-title"), "Sheet 1")
        self.browser.driver.switch_to.active_element.send_keys(Keys.ARROW_RIGHT)
        self.assertEqual(self.text("#viewer-title"), "Sheet 2")
        self.browser.driver.switch_to.active_element.send_keys(Keys.ESCAPE)
        self.assertFalse(self.browser.run("return document.getElementById('viewer').open"))
        self.assertEqual(self.browser.run("return document.activeElement.getAttribute('aria-label')"), "Show sheet 1")

    def test_a_screen_reader_has_names_for_all_of_it(self):
        buttons = self.browser.names("button")
        self.assertIn("Show sheet 12", buttons)
        self.assertNotIn("", buttons)
        self.assertIn("Barcode or number", self.browser.names("searchbox"))
        self.assertTrue(any(name.startswith("How often each cell") for name in self.browser.names("image")))
        self.view(REJECTED)
        self.assertTrue(any(name.startswith("Sheet 3, rejected, marks on side 1: ")
                            for name in self.browser.names("image")))

    def test_prints_all_sheets_or_the_one_that_is_shown(self):
        self.assertTrue(self.browser.pdf().startswith(b"%PDF"))
        self.browser.emulate(media="print")
        self.assertFalse(self.find(".filters").is_displayed())
        self.assertTrue(self.find("#rows tr:last-child").is_displayed())
        self.view(1)
        self.assertFalse(self.find("#sheets").is_displayed())
        self.assertTrue(self.find("#picture svg").is_displayed())

    def test_cells_values_and_timing_marks_of_the_batch(self):
        first = [cell.text for cell in self.browser.driver.find_elements(
            By.CSS_SELECTOR, "#suspects tbody tr:first-child td")]
        self.assertEqual(first, ["1", "5", "8", "11 of 12 sheets"])
        self.assertIn("No cell is marked on every sheet.", self.text("#suspects"))
        self.assertIn("22 of the 25 cells of the read windows are never marked", self.text("#suspects"))
        counts = self.browser.run(
            "return [...document.querySelectorAll('#histogram td:nth-child(2)')].map((cell) => +cell.textContent)")
        self.assertEqual(sum(counts), sum(int(count) for count in self.numbers(3)))
        self.assertIn("threshold 5", self.text("#histogram"))
        self.assertEqual(self.text("#timing-counts tbody tr"), "1202012")

    def test_a_page_that_was_cut_off_opens(self):
        whole = self.page.read_text(encoding="utf-8")
        third = whole.index('"sheet":3,')
        for cut, sheets_left in ((whole.index("data-is=\"layout\""), 0), (third, 2), (third + 400, 2),
                                 (whole.index("\n", third), 3), (whole.index("data-is=\"end\""), 12)):
            page = Path(self.folder.name) / "cut.html"
            page.write_text(whole[:cut], encoding="utf-8")
            self.browser.open(page)
            self.assertEqual(len(self.numbers()), sheets_left)
            self.assertIn("the batch was cut off", self.text("#summary"))
            self.assertEqual(self.browser.complaints(), [])

    def test_what_is_written_bears_no_licence(self):
        for path in (self.page, *self.pictures.iterdir()):
            self.assertNotIn("SPDX", path.read_text(encoding="utf-8"), path)

    def test_pictures_of_the_page_are_those_of_the_files(self):
        page = self.page.read_text(encoding="utf-8")
        layouts = data_of(page, "layout")
        for sheet in data_of(page, "sheet"):
            picture = (self.pictures / f"{sheet['sheet']:06}.svg").read_text(encoding="utf-8")
            self.assertIn(layouts[sheet["layout"]]["drawing"], picture)
            self.assertIn(sheet["drawing"], picture)
            self.view(sheet["sheet"])
            self.assertEqual(
                self.browser.run("return document.querySelector('#picture svg').getAttribute('viewBox')"),
                f"0 0 {layouts[sheet['layout']]['width']} {sheet['height']}")
            self.assertTrue(self.browser.run(
                "const at = document.querySelector('#picture use').getAttribute('href');"
                "return document.querySelector(at).querySelector('.paper') !== null"))
            self.click("#close")

    def test_failures_stand_with_what_to_do(self):
        page = Path(self.folder.name) / "failed.html"
        self.assertEqual(self.scan("--model", "13", "--count", 3, "--fault", "jam@sheet=2", "--out", page), 1)
        self.browser.open(page)
        self.assertTrue(self.find("#failures").is_displayed())
        self.assertIn("What to do: ", self.text(".failure"))
        self.assertIn("after sheet 1;", self.text(".failure .source"))

    def test_looks_as_it_did(self):
        for name, dark in (("sheet", False), ("sheet-dark", True), ("cells", False)):
            self.browser.emulate(dark=dark)
            self.browser.open(self.page)
            if name == "cells":
                element = self.find("#heat svg")
            else:
                self.view(REJECTED)
                self.browser.run("document.activeElement.blur()")
                element = self.find("#picture svg")
            taken = element.screenshot_as_base64
            self.assertIs(self.browser.looks_like(KEPT / f"{name}.png", taken), True)


if __name__ == "__main__":
    unittest.main()
