# SPDX-License-Identifier: MIT
"""A station whose disk is full, on a file system of its own. KELREADER names the program."""

import contextlib
import json
import os
import shutil
import sqlite3
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parents[1] / "station"))

from station_run import HUNG, Station

PROGRAM = str(Path(os.environ.get("KELREADER") or shutil.which("kelreader")).resolve())
MODEL = 13
FORM = {"side1Rows": [63], "side1Cols": [48]}
SHEETS = 30
DISK, TAKEN = 8 << 20, 7850 << 10  # what is free takes a new store and some of the sheets
LARGE_DISK = 48 << 20  # takes a store with its reserve
OLD, COPIES = 2, 600  # the sheets of last year, and how many there are of each
FORGOTTEN = f"kelreader: {OLD * COPIES} sheets forgotten.\n"

# Runs the rest of the words where the first one names a disk of a size, which is made ready.
ON_A_DISK_OF_ITS_OWN = 'mount -t tmpfs -o size=%d none "$1" && cd "$1" && shift && { %s; } && cd / && exec "$@"'
SO_MUCH_IS_TAKEN = "head -c %d /dev/zero > taken"
ALL_IS_TAKEN = "cat /dev/zero > taken 2>/dev/null || true"
FILE_SYSTEM_OF_ITS_OWN = ["unshare", "--user", "--map-root-user", "--mount"]


def made_up():
    return ["--model", str(MODEL), "--seed", "7", "--count", str(SHEETS), "--rate", "unlimited"]


@unittest.skipIf(subprocess.run([*FILE_SYSTEM_OF_ITS_OWN, "true"], capture_output=True, check=False).returncode,
                 "this system lets nobody mount a file system of his own")
class FullDisk(unittest.TestCase):
    def setUp(self):
        self.folder = Path(self.enterContext(tempfile.TemporaryDirectory()))
        (self.folder / "disk").mkdir()
        self.form = self.folder / "form.json"
        self.form.write_text(json.dumps(FORM), encoding="utf-8")
        device = self.folder / "reader"
        self.reader_log = self.folder / "reader.log"
        with self.reader_log.open("w") as log:
            reader = subprocess.Popen([PROGRAM, "simulate", *made_up(), "--link", str(device)], stdout=log)
        self.addCleanup(reader.wait, HUNG)
        self.addCleanup(reader.terminate)
        self.device = str(device)

    def start(self, size, made_ready):
        self.station = Station(
            PROGRAM,
            [{"name": "left", "model": MODEL, "device": self.device, "form": "form.json", "set": {"SleepTime": 1}}],
            self.folder,
            self.on_a_disk(size, made_ready),
            store="disk/hall.db")
        self.addCleanup(self.station.close)

    def on_a_disk(self, size, made_ready):
        """The words before those of a program that is to find a disk."""
        return [*FILE_SYSTEM_OF_ITS_OWN, "sh", "-c", ON_A_DISK_OF_ITS_OWN % (size, made_ready), "sh", str(self.folder / "disk")]

    def old_store(self):
        """Words that copy a store with the sheets of last year to the disk, where a scan opens it once. With them a
        full disk has what another one would not have, too: something to forget."""
        store = self.folder / "old.db"
        self.scan(store, OLD)
        with contextlib.closing(sqlite3.connect(store)) as database, database:
            columns = [row[1] for row in database.execute("PRAGMA table_info(sheet)")]
            places = {"id": "id + 1000 * copy", "identity": "identity || '-' || copy", "number": "number + 1000 * copy"}
            database.execute("WITH RECURSIVE copies(copy) AS (VALUES (1) UNION ALL SELECT copy + 1 FROM copies WHERE "
                             f"copy + 1 < {COPIES}) INSERT INTO sheet SELECT "
                             f"{', '.join(places.get(column, column) for column in columns)} FROM sheet, copies")
            database.execute("UPDATE sheet SET time = '2023-05-01T12:00:00.000Z'")
            database.execute("UPDATE failure SET time = '2023-05-01T12:00:00.000Z'")
            database.execute("UPDATE store SET last = (SELECT max(id) FROM sheet)")
        return (f"cp {store} hall.db && {PROGRAM} scan --simulate --model {MODEL} --count 1 --rate unlimited --max-sheets 1 "
                "--set SleepTime=1 --batch opened --store hall.db >/dev/null")

    def make_space(self):
        Path(f"/proc/{self.station.process.pid}/root{self.folder}/disk/taken").unlink()  # as the station sees it

    def enterContext(self, manager):
        self.addCleanup(manager.__exit__, None, None, None)
        return manager.__enter__()

    def fed(self):
        events = map(json.loads, self.reader_log.read_text(encoding="utf-8").splitlines())
        return sum(event["event"] == "fed" for event in events)

    def sheets(self, store, *within):
        """What a store shows of the batch, sheet for sheet, without the times."""
        shown = subprocess.run([*within, PROGRAM, "sheets", str(store), "--batch", "monday", "--format", "json"],
                               capture_output=True, text=True, check=True, timeout=HUNG).stdout
        entries = map(json.loads, shown.splitlines())
        return [(entry["sheet"], entry["side1"]) for entry in entries if entry["event"] == "sheet"]

    def at_the_station(self):
        """Words that run a program where the station's disk is."""
        return ["nsenter", "--user", "--mount", "--preserve-credentials", "--target", str(self.station.process.pid)]

    def stored(self):
        return self.sheets(self.folder / "disk" / "hall.db", *self.at_the_station())

    def forget(self, *within):
        return subprocess.run([*within, PROGRAM, "sheets", str(self.folder / "disk" / "hall.db"), "--forget", "--before",
                               "2024-01-01"], capture_output=True, text=True, timeout=HUNG)

    def scan(self, store, sheets):
        subprocess.run([PROGRAM, "scan", "--simulate", *made_up(), "--set", "SleepTime=1", "--form", self.form,
                        "--max-sheets", str(sheets), "--batch", "monday", "--store", store], capture_output=True,
                       check=True, timeout=HUNG)

    def as_scanned(self):
        """The same from a scan of the same sheets that has all the space it wants."""
        store = self.folder / "scanned.db"
        self.scan(store, SHEETS)
        return self.sheets(store)

    def test_a_station_starts_on_a_full_disk_and_reads_when_there_is_space(self):
        self.start(DISK, SO_MUCH_IS_TAKEN % DISK)
        self.station.wait(lambda: "is full: its disk has no space left. Free some" in self.station.told())
        state = self.station.wait(lambda: (now := self.station.json("/state"))["readers"][0]["state"] == "storing" and now)
        self.assertIn("is full", state["storeProblem"])
        self.assertEqual(self.fed(), 0)
        self.make_space()
        self.station.wait(lambda: "takes sheets again." in self.station.told())
        self.station.wait(lambda: self.fed() == SHEETS and len(self.stored()) == SHEETS)
        self.assertEqual(self.stored(), self.as_scanned())
        self.assertEqual(self.station.told().count("is full"), 1)
        self.assertEqual(self.station.stop(), 0)

    def test_nothing_is_fed_until_there_is_space_and_no_sheet_is_lost(self):
        self.start(DISK, SO_MUCH_IS_TAKEN % TAKEN)
        self.station.wait(lambda: "is full: its disk has no space left. Free some" in self.station.told())
        stored = len(self.stored())
        self.assertLess(stored, SHEETS)
        self.assertEqual(self.fed(), stored + 1)  # one sheet waits until it is stored
        self.make_space()
        self.station.wait(lambda: "takes sheets again." in self.station.told())
        self.station.wait(lambda: len(self.stored()) == SHEETS)
        self.assertEqual(self.stored(), self.as_scanned())
        self.assertEqual(self.station.told().count("is full"), 1)
        self.assertEqual(self.station.stop(), 0)

    def test_sheets_that_are_forgotten_make_room_for_those_that_wait(self):
        self.start(LARGE_DISK, f"{self.old_store()} && {ALL_IS_TAKEN}")
        self.station.wait(lambda: "is full: its disk has no space left. Free some" in self.station.told())
        self.station.wait(lambda: self.station.json("/state")["readers"][0]["state"] == "storing")
        forgotten = self.forget(*self.at_the_station())
        self.assertEqual((forgotten.returncode, forgotten.stderr), (0, FORGOTTEN))
        self.station.wait(lambda: "takes sheets again." in self.station.told())
        self.station.wait(lambda: self.fed() == SHEETS and len(self.stored()) == SHEETS)
        self.assertEqual(self.stored(), self.as_scanned())
        self.assertEqual(self.station.stop(), 0)

    def test_sheets_can_be_forgotten_on_a_full_disk_while_nobody_has_the_store_open(self):
        forgotten = self.forget(*self.on_a_disk(LARGE_DISK, f"{self.old_store()} && {ALL_IS_TAKEN}"))
        self.assertEqual((forgotten.returncode, forgotten.stderr), (0, FORGOTTEN))

    def test_a_full_disk_without_a_reserve_has_a_sentence(self):
        forgotten = self.forget(*self.on_a_disk(LARGE_DISK,
                                                f"{self.old_store()} && rm hall.db-reserve && {ALL_IS_TAKEN}"))
        self.assertEqual(forgotten.returncode, 1)
        self.assertIn("hall.db is full, and to remove sheets needs some room, too. Make room for 10 MB there", forgotten.stderr)
