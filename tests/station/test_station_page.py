# SPDX-License-Identifier: MIT
"""Tests the page of a station in a browser. KELREADER names the program.

With KEEP_SCREENSHOTS=1 the screenshots that are compared are taken anew.
"""

import json
import os
import sqlite3
import sys
import unittest
from pathlib import Path

HERE = Path(__file__).resolve().parent
sys.path.insert(0, str(HERE.parent / "pictures"))

from browser import Browser  # noqa: E402
from selenium.common.exceptions import TimeoutException  # noqa: E402
from selenium.webdriver.common.by import By  # noqa: E402
from selenium.webdriver.common.keys import Keys  # noqa: E402
from station_run import Station, simulated  # noqa: E402

PROGRAM = os.environ.get("KELREADER", "kelreader")
KEPT = HERE / "kept"

HOSTILE = [
    "<script>document.title='owned'</script>",
    "\"'><img src=x onerror=\"document.title='owned'\">&amp;",
    "</title></script><script>document.title='owned'</script>",
    "\u0001\u001f\u007f]]>-->",
    "A" * 10000,
]

# What a browser could have made of a text.
MADE_OF_TEXTS = "return document.querySelectorAll('main script, dialog script, main [onerror], img[src=\"x\"]').length"


def setUpModule():
    """One browser for all tests: its start takes longer than most of them."""
    Page.browser = Browser()
    unittest.addModuleCleanup(Page.browser.close)


class Page(unittest.TestCase):
    def station(self, readers, **more):
        station = Station(PROGRAM, readers, **more)
        self.addCleanup(station.close)
        return station

    def visit(self, station):
        self.addCleanup(self.browser.visit, "about:blank")
        self.visited = station
        self.browser.visit(station.address() + "/")

    def text(self, selector):
        return self.browser.run("return document.querySelector(arguments[0])?.textContent ?? ''", selector)

    def texts(self, selector):
        return self.browser.run(
            "return [...document.querySelectorAll(arguments[0])].map((e) => e.textContent)", selector)

    def click(self, selector):
        self.browser.run("document.querySelector(arguments[0]).click()", selector)

    def wait_for_text(self, selector, text):
        self.browser.wait_for("return document.querySelector(arguments[0])?.textContent === arguments[1]", selector, text)

    def wait_for_cards(self, count):
        try:
            self.browser.wait_for("return document.querySelectorAll('#last li').length === arguments[0]", count)
        except TimeoutException:
            self.fail(f"{len(self.texts('#last li'))} sheets and not {count}. The station told:\n{self.visited.told()}")

    def search(self, **fields):
        """What a search finds, by the sheets' numbers."""
        self.browser.run("""
            const form = document.getElementById("search");
            form.reset();
            for (const [name, value] of Object.entries(arguments[0])) {
              const field = form.elements[name];
              if (field.type === "checkbox") field.checked = value; else field.value = value;
            }
            document.getElementById("found").textContent = "";
            form.requestSubmit();""", fields)
        self.browser.wait_for("return document.getElementById('found').textContent")
        return [int(number) for number in self.texts("#rows tbody td:nth-child(4)")]


class WatchedStationTest(Page):
    def test_shows_readers_and_sheets_as_they_come(self):
        station = self.station([simulated("left", count=5), simulated("right", count=3, seed=2)])
        self.visit(station)
        self.wait_for_cards(8)
        self.browser.wait_for("return document.querySelectorAll('#readers .state.idle').length === 2")
        self.assertEqual(self.text("h1"), "Station hall")
        self.assertEqual(self.text("#summary"), "2 readers, 2 idle")
        self.assertEqual(self.texts("#readers tbody th"), ["left", "right"])
        self.assertEqual(self.texts("#readers tbody td:nth-child(4)"), ["5", "3"])
        self.assertEqual(sorted(self.texts("#last .name")),
                         sorted([f"left · {n}" for n in range(1, 6)] + [f"right · {n}" for n in range(1, 4)]))
        # Each picture is there, and was drawn.
        self.browser.run("document.querySelectorAll('#last img').forEach((image) => { image.loading = 'eager'; })")
        self.browser.wait_for(
            "return [...document.querySelectorAll('#last img')].every((image) => image.complete && image.naturalWidth > 0)")
        fetched = self.browser.run("return performance.getEntriesByType('resource').map((entry) => entry.name)")
        self.assertTrue(all(name.startswith(station.address() + "/") for name in fetched), fetched)
        self.assertEqual(self.browser.complaints(), [])

    def test_a_failure_stands_with_what_to_do(self):
        station = self.station([simulated("left", model=13, count=0),
                                {**simulated("right", model=13), "simulate": {"unlimited": True, "count": 3, "faults": ["jam@sheet=2"]}}])
        self.visit(station)
        self.browser.wait_for("return document.querySelector('#readers .problem')")
        self.assertIn("ailure", self.text(".problem b"))
        self.assertIn("What to do: ", self.text(".problem"))
        self.assertEqual(self.browser.complaints(), [])

    def test_says_whether_the_stream_has_the_sheets(self):
        station = self.station([simulated("left", count=2)], stream={"servers": ["nats://127.0.0.1:1"]})
        self.visit(station)
        self.wait_for_cards(2)
        # What readers report counts, too.
        self.browser.wait_for("return /^Stream: down, [2-9] sheets and reports not sent yet[.] [A-Z]/.test("
                              "document.getElementById('stream').textContent)")
        self.assertEqual(self.browser.run("return document.getElementById('stream').className"), "warning")
        self.assertEqual(self.browser.complaints(), [])

    def test_says_nothing_of_a_stream_that_is_not_there(self):
        self.visit(self.station([simulated("left", count=1)]))
        self.wait_for_cards(1)
        self.assertTrue(self.browser.run("return document.getElementById('stream').hidden"))

    def test_says_that_a_station_is_gone_and_goes_on_when_it_is_back(self):
        station = self.station([simulated("left", count=2)])
        self.visit(station)
        self.wait_for_cards(2)
        port = int(station.address().rpartition(":")[2])
        self.assertEqual(station.stop(), 0)
        self.browser.wait_for("return !document.getElementById('trouble').hidden")
        self.assertIn("does not answer", self.text("#trouble"))
        again = self.station([simulated("left", count=1)], folder=station.folder, page={"port": port})
        self.browser.wait_for("return document.getElementById('trouble').hidden")
        self.wait_for_cards(3)
        self.assertEqual(sorted(self.texts("#last .name")), ["left · 1", "left · 2", "left · 3"])
        self.assertEqual(again.stop(), 0)

    def test_sixteen_readers_do_not_make_it_grow(self):
        sheets = 6
        # Once their sheets are read, the readers stay closed: each further try would open files for a while.
        station = self.station([simulated(f"reader-{n}", count=sheets, seed=n) for n in range(1, 17)],
                               retry={"first": 3600, "longest": 3600})

        def counts():
            """Those of the store apart: SQLite keeps one for each request that was ever answered beside others."""
            own = Path(f"/proc/{station.process.pid}")
            files = [os.path.realpath(file) for file in (own / "fd").iterdir()]
            stores = files.count(os.path.realpath(station.store))
            return {"files": len(files) - stores, "threads": len(list((own / "task").iterdir())), "stores": stores}

        def has_at_most(most):
            return all(count <= most[name] for name, count in counts().items())

        self.visit(station)
        self.browser.wait_for(
            "return [...document.querySelectorAll('#readers tbody td:nth-child(4)')].reduce((sum, e) => sum + Number(e.textContent), 0)"
            " === arguments[0]", 16 * sheets)
        self.wait_for_cards(24)
        station.wait(lambda: station.told().count("has no more sheets") == 16)
        station.wait(lambda: station.json("/state")["watchers"] == 1)
        at_once = 16
        before = {**counts(), "stores": at_once}
        for _ in range(6):
            self.browser.driver.refresh()
            self.wait_for_cards(24)
        # Those who have gone are gone, and nothing was kept of them.
        station.wait(lambda: station.json("/state")["watchers"] == 1)
        station.wait(lambda: has_at_most(before))
        self.assertGreater(len(self.texts("#last li")), at_once)
        self.assertEqual(self.browser.complaints(), [])


class StoredSheetsTest(Page):
    @classmethod
    def setUpClass(cls):
        cls.fixed = Station(PROGRAM, [simulated("left", count=12), simulated("right", count=1, seed=2, batch="tuesday")])
        cls.addClassCleanup(cls.fixed.close)
        cls.fixed.wait_for_sheets(13)
        with sqlite3.connect(cls.fixed.store, timeout=300) as store:
            # A batch of 70 sheets of one.
            for number in range(2, 71):
                store.execute("""
                    INSERT INTO sheet SELECT (SELECT last FROM store) + 1, identity || '-' || ?1, sheet.batch, ?1, time, setup,
                        side1, side2, side1TimingMarks, side2TimingMarks, barcodes, record, rejected, printed, printedLines
                    FROM sheet JOIN batch ON batch.id = sheet.batch WHERE reader = 'right' AND number = 1""", (number,))
                store.execute("UPDATE store SET last = last + 1")
            left = [row[0] for row in store.execute(
                "SELECT sheet.id FROM sheet JOIN batch ON batch.id = sheet.batch WHERE reader = 'left' ORDER BY number")]
            for id, text in zip(left, HOSTILE):
                texts = json.dumps([text])
                store.execute("UPDATE sheet SET barcodes = ?, printedLines = ?, record = ? WHERE id = ?",
                              (texts, texts, json.dumps({text[:200]: text}), id))
            store.execute("UPDATE sheet SET barcodes = '[\"EXAM-7\"]', rejected = 1 WHERE id = ?", (left[6],))
            store.execute("""UPDATE sheet SET side1 = '{"rows":40,"columns":12,"marks":[]}' WHERE id = ?""", (left[7],))
            store.execute("UPDATE sheet SET time = '2020-01-01T00:00:00.000Z' WHERE id = ?", (left[8],))
        store.close()

    def setUp(self):
        self.visit(self.fixed)
        self.wait_for_cards(24)

    def test_the_search_filters(self):
        self.assertEqual(self.search(reader="left"), list(range(12, 0, -1)))
        self.assertEqual(self.search(barcode="EXAM"), [7])
        self.assertEqual(self.search(rejected=True), [7])
        self.assertEqual(self.search(blank=True), [8])
        self.assertEqual(self.search(batch="monday", since="2021-01-01T00:00"), [12, 11, 10, 8, 7, 6, 5, 4, 3, 2, 1])
        self.assertEqual(self.search(barcode=HOSTILE[1]), [2])
        self.assertEqual(self.search(batch="sunday"), [])
        self.assertEqual(self.text("#found"), "No sheet was found.")

    def test_shows_more(self):
        self.assertEqual(self.search(batch="tuesday"), list(range(70, 10, -1)))
        self.assertEqual(self.text("#found"), "60 sheets, and there may be more")
        self.click("#more")
        self.wait_for_text("#found", "70 sheets")
        self.assertEqual([int(number) for number in self.texts("#rows tbody td:nth-child(4)")], list(range(70, 0, -1)))

    def test_texts_are_only_text(self):
        self.search(reader="left")
        for number, hostile in enumerate(HOSTILE, 1):
            self.click(f'#rows button[aria-label="Show sheet {number} of left"]')
            details = self.texts("#details dd")
            self.assertEqual(details.count(hostile), 3, hostile[:40])
            self.assertIn(hostile[:200], self.texts("#details dt"))
            # A long name leaves its text more room than a column of single letters.
            self.assertGreater(self.browser.run("return Math.min(...[...document.querySelectorAll('#details dd')].map("
                                                "(text) => text.getBoundingClientRect().width))"), 200)
            picture = self.browser.wait_for(
                "const image = document.getElementById('picture'); return image.complete && image.naturalWidth")
            self.assertGreater(picture, 0)
            self.click("#close")
        self.assertEqual(self.browser.run(MADE_OF_TEXTS), 0)
        self.assertTrue(all(len(text) < 100 for text in self.texts("#rows td.text")))
        self.assertEqual(self.text("title"), "Station hall")
        self.assertEqual(self.browser.complaints(), [])

    def test_pictures_run_nothing(self):
        rows = self.fixed.json("/sheets?reader=left")["sheets"]
        for row in rows[-len(HOSTILE):]:
            self.browser.visit(f"{self.fixed.address()}/pictures/{row['id']}.svg")
            self.assertEqual(self.browser.run("return document.documentElement.nodeName"), "svg")
            self.assertEqual(self.browser.run("return document.querySelectorAll('script, foreignObject, image').length"), 0)
            self.assertRegex(self.browser.driver.title, "^Sheet [1-5]")

    def test_batches_are_tables_for_a_spreadsheet(self):
        self.browser.wait_for("return document.querySelectorAll('#batches tbody tr').length === 2")
        # Read at once: the page makes its links anew when a sheet comes.
        links = self.browser.run(
            "return [...document.querySelectorAll('#batches a')].map((a) => [a.getAttribute('aria-label'), a.href])")
        self.assertEqual(len(links), 2)
        for label, address in links:
            batch = "monday" if "monday" in label else "tuesday"
            _, headers, text = self.fixed.request(address.removeprefix(self.fixed.address()))
            shown = self.fixed.run("sheets", self.fixed.store, "--batch", batch, "--format", "csv")
            self.assertEqual(text, shown.stdout)
            self.assertIn("attachment; filename=", headers["Content-Disposition"])

    def test_keys_reach_the_sheets(self):
        self.search(reader="left")
        self.browser.run("document.querySelector('#rows button').focus()")
        self.browser.driver.switch_to.active_element.send_keys(Keys.ENTER)
        self.assertEqual(self.text("#viewer-title"), "Sheet 12 of left")
        self.browser.driver.switch_to.active_element.send_keys(Keys.ARROW_RIGHT)
        self.assertEqual(self.text("#viewer-title"), "Sheet 11 of left")
        self.browser.driver.switch_to.active_element.send_keys(Keys.ESCAPE)
        self.assertFalse(self.browser.run("return document.getElementById('viewer').open"))

    def test_a_screen_reader_has_names_for_all_of_it(self):
        self.search(reader="left")
        buttons = self.browser.names("button")
        self.assertIn("Show sheet 12 of left", buttons)
        self.assertNotIn("", buttons)
        self.assertIn("Barcode", self.browser.names("searchbox"))
        self.assertIn("CSV of batch monday of left", self.browser.names("link"))


class PrintedPageTest(Page):
    def test_prints_what_is_to_be_read(self):
        station = self.station([simulated("left", count=2)])
        self.visit(station)
        self.wait_for_cards(2)
        self.browser.emulate(media="print")
        self.addCleanup(self.browser.emulate)
        seen = lambda selector: self.browser.driver.find_element(By.CSS_SELECTOR, selector).is_displayed()
        self.assertTrue(seen("#readers") and seen("#last li"))
        self.assertFalse(seen("#search"))
        self.click("#last button")
        self.assertTrue(seen("#picture"))
        self.assertFalse(seen("#readers"))
        self.assertTrue(self.browser.pdf().startswith(b"%PDF"))


class HostileNamesTest(Page):
    def test_texts_of_batches_and_failures_are_only_text(self):
        hostile = HOSTILE[1]
        station = self.station([simulated("left", count=2, batch=hostile),
                                {"name": "gone", "model": 21, "device": "/dev/" + hostile.replace("/", "")}])
        self.visit(station)
        self.wait_for_cards(2)
        self.browser.wait_for("return document.querySelector('#readers .problem')")
        self.browser.wait_for("return document.querySelector('#batches tbody tr')")
        self.assertIn("<img src=x", self.text(".problem"))
        self.assertEqual(self.text("#batches tbody td:nth-child(2)"), hostile)
        self.search(batch=hostile)
        self.assertEqual(len(self.texts("#rows tbody tr")), 2)
        self.assertEqual(self.browser.run(MADE_OF_TEXTS), 0)
        self.assertEqual(self.text("title"), "Station hall")
        self.assertEqual(self.browser.complaints(), [])


class AppearanceTest(Page):
    def test_looks_as_it_did(self):
        station = self.station([simulated("left", count=6),
                                {"name": "right", "model": 13, "device": "/dev/no-reader"}])
        size = self.browser.driver.get_window_size()
        self.addCleanup(self.browser.driver.set_window_size, size["width"], size["height"])
        self.browser.driver.set_window_size(1280, 900)
        self.visit(station)
        self.wait_for_cards(6)
        self.browser.wait_for("return document.querySelector('.state.idle') && document.querySelector('.problem')")
        self.browser.wait_for(
            "return [...document.querySelectorAll('#last img')].every((image) => image.complete && image.naturalWidth > 0)")
        # What differs from run to run: a station that is gone changes no more.
        self.assertEqual(station.stop(), 0)
        self.browser.wait_for("return !document.getElementById('trouble').hidden")
        self.browser.run("""
            for (const time of document.querySelectorAll("time")) time.textContent = "12:00:00";
            for (const speed of document.querySelectorAll("#readers td:nth-child(6)")) speed.textContent = "40";
            for (const state of document.querySelectorAll("#readers .state"))
              if (state.textContent === "stopped") { state.textContent = "idle"; state.className = "state idle"; }
            document.activeElement.blur();""")
        for name, dark in (("station", False), ("station-dark", True)):
            self.browser.emulate(dark=dark)
            taken = self.browser.driver.find_element(By.CSS_SELECTOR, "main").screenshot_as_base64
            with self.subTest(name):
                self.shots = getattr(self, "shots", {}) | {name: taken}
        self.browser.emulate()
        for name, taken in self.shots.items():
            self.assertIs(self.browser.looks_like(KEPT / f"{name}.png", taken), True)


if __name__ == "__main__":
    unittest.main()
