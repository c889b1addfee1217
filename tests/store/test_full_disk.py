# SPDX-License-Identifier: MIT
"""A station whose disk is full, on a file system of its own. KELREADER names the program."""

import json
import os
import shutil
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

# Runs the rest of the words where the first one names a small disk, on which so much of the space is taken.
ON_A_SMALL_DISK = """
mount -t tmpfs -o size=%d none "$1" && head -c %d /dev/zero > "$1/taken" && shift && exec "$@"
"""
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

    def start(self, taken):
        self.station = Station(
            PROGRAM,
            [{"name": "left", "model": MODEL, "device": self.device, "form": "form.json", "set": {"SleepTime": 1}}],
            self.folder,
            [*FILE_SYSTEM_OF_ITS_OWN, "sh", "-c", ON_A_SMALL_DISK % (DISK, taken), "sh", str(self.folder / "disk")],
            store="disk/hall.db")
        self.addCleanup(self.station.close)

    def make_space(self):
        Path(f"/proc/{self.station.process.pid}/root{self.folder}/disk/taken").unlink()  # as the station sees it

    def enterContext(self, manager):
        self.addCleanup(manager.__exit__, None, None, None)
        return manager.__enter__()

    def fed(self):
        events = map(json.loads, self.reader_log.read_text(encoding="utf-8").splitlines())
        return sum(event["event"] == "fed" for event in events)

    def sheets(self, store, *within):
        """What a store shows, sheet for sheet, without the times."""
        shown = subprocess.run([*within, PROGRAM, "sheets", str(store), "--format", "json"], capture_output=True,
                               text=True, check=True, timeout=HUNG).stdout
        entries = map(json.loads, shown.splitlines())
        return [(entry["sheet"], entry["side1"]) for entry in entries if entry["event"] == "sheet"]

    def stored(self):
        return self.sheets(self.folder / "disk" / "hall.db", "nsenter", "--user", "--mount", "--preserve-credentials",
                           "--target", str(self.station.process.pid))

    def as_scanned(self):
        """The same from a scan of the same sheets that has all the space it wants."""
        store = self.folder / "scanned.db"
        subprocess.run([PROGRAM, "scan", "--simulate", *made_up(), "--set", "SleepTime=1", "--form", self.form,
                        "--max-sheets", str(SHEETS), "--store", store], capture_output=True, check=True, timeout=HUNG)
        return self.sheets(store)

    def test_a_station_starts_on_a_full_disk_and_reads_when_there_is_space(self):
        self.start(DISK)
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
        self.start(TAKEN)
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
