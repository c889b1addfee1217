# SPDX-License-Identifier: MIT
"""Stores of other versions: a station brings those of older ones up to date and sends what they still hold; one of a newer
version stays as it is. kept/ has a store of each older version as SQL. KELREADER names the program."""

import sqlite3
import unittest
from pathlib import Path

from stream_case import PATIENCE, StreamCase, query, wait_for

KEPT = sorted((Path(__file__).resolve().parent / "kept").glob("version*.sql"))
NEWEST = 3
FED = 2


class OlderStores(StreamCase):
    def put(self, kept):
        """Makes the station's store of what is kept, as a program of its version had left it."""
        store = self.folder / "hall.db"
        store.unlink(missing_ok=True)
        with sqlite3.connect(store) as database:
            database.executescript("PRAGMA journal_mode = WAL;\n" + kept.read_text(encoding="utf-8"))
        database.close()
        return store

    def test_a_station_sends_what_a_store_of_an_older_version_holds_and_counts_on(self):
        self.servers.start()
        self.assertEqual(len(KEPT), NEWEST)
        for version, kept in enumerate(KEPT, 1):
            with self.subTest(kept.name):
                self.sends_and_counts_on(version, self.put(kept))

    def sends_and_counts_on(self, version, store):
        held = "SELECT id FROM held" if version > 2 else "0"
        sent = "(SELECT sent FROM store)" if version > 1 else "0"
        unsent = query(store, f"SELECT identity FROM sheet WHERE id > {sent} OR id IN ({held})")
        reports = query(store, f"SELECT identity FROM failure WHERE id > {sent}")
        before = self.sheets("hall.db")
        last, = query(store, "SELECT last FROM store")[0]
        self.assertTrue(unsent and before)

        stream, subject = f"VERSION{version}", f"version{version}"
        station = self.station(sheets=FED, stream={"servers": self.servers.urls, "name": stream, "subject": subject})
        collector = self.command("collect", "--from", self.server.url, "--store", f"{stream}.db", "--stream", stream,
                                 "--subject", subject)
        wait_for(lambda: len(self.sheets(f"{stream}.db")) >= len(unsent) + 2 * FED, "collecting the sheets")
        wait_for(lambda: self.unsent("hall.db") == [(0,)], "knowing that all is sent")
        self.assertEqual((station.end(), collector.end()), (0, 130), station.lines)

        # What it held is there, and the readers' sheets have the numbers after it, whatever has been forgotten.
        self.assertEqual(query(store, "PRAGMA user_version"), [(NEWEST,)])
        after = self.sheets("hall.db")
        self.assertEqual([sheet for sheet in after if sheet in before], before)
        for reader, number in (("left", 4), ("right", 3)):
            new = query(store, f"SELECT number FROM sheets WHERE id > {last} AND reader = '{reader}' ORDER BY id")
            self.assertEqual(new, [(number + 1,), (number + 2,)])
        self.assertEqual(query(store, "SELECT id FROM held"), [])

        # What had not been sent came out of the stream, and the new sheets; each once.
        collected = self.folder / f"{stream}.db"
        new = query(store, f"SELECT identity FROM sheet WHERE id > {last}")
        self.assertCountEqual(query(collected, "SELECT identity FROM sheet"), unsent + new)
        self.assertLessEqual(set(self.sheets(collected.name)), set(after))
        self.assertLessEqual(set(reports), set(query(collected, "SELECT identity FROM failure")))
        marked, = query(store, f"SELECT (SELECT count(*) FROM sheet WHERE id <= sent AND id > {last}) + "
                               f"(SELECT count(*) FROM failure WHERE id <= sent AND id > {last}) FROM store")[0]
        entries, = query(store, f"SELECT last - {last} FROM store")[0]
        messages = self.servers.messages(stream) - len(unsent) - len(reports)
        self.assertTrue(marked <= messages <= entries, (marked, messages, entries))

    def test_a_store_of_a_newer_version_stays_as_it_is(self):
        store = self.put(KEPT[-1])
        with sqlite3.connect(store) as database:
            database.execute(f"PRAGMA user_version = {NEWEST + 1}")
        database.close()
        content = store.read_bytes()
        station = self.station()
        station.says(f"hall.db has version {NEWEST + 1}, and this program knows versions up to {NEWEST}; use the newer "
                     "kelreader that wrote it.")
        self.assertEqual(station.process.wait(PATIENCE), 1)
        self.assertEqual(store.read_bytes(), content)
        self.assertLessEqual({file.name for file in self.folder.glob("hall.db*")}, {"hall.db", "hall.db-lock"})


if __name__ == "__main__":
    unittest.main()
