# SPDX-License-Identifier: MIT
"""Stores that are there twice, on their way into one: of two machines that began as one image, and one that was put back;
and one that was moved away with sheets in it. KELREADER names the program."""

import shutil
import subprocess
import unittest

from stream_case import PATIENCE, PROGRAM, StreamCase, query, wait_for


class CopiedStores(StreamCase):
    def copy(self, store, to):
        self.assertFalse((self.folder / f"{store}-wal").exists())
        shutil.copy(self.folder / store, self.folder / to)

    def identities(self, *stores):
        return {row for store in stores for row in query(self.folder / store, "SELECT identity FROM sheet")}

    def feed(self, total, **station):
        """A session of a station, at whose end its store holds so many sheets, and the stream has them."""
        name = station.get("name", "hall")
        command = self.station(**station)
        self.wait_sent(f"{name}.db", total)
        self.assertEqual(command.end(), 0, command.lines)

    def test_stations_of_one_image_both_arrive_whole(self):
        image = self.station(sheets=2)
        wait_for(lambda: len(self.sheets("hall.db")) == 4, "storing the sheets of the image")
        image.end()
        self.copy("hall.db", "yard.db")
        self.servers.start()
        # What the image held is sent by both.
        stations = [self.station(sheets=3, seed=10), self.station(sheets=5, seed=20, name="yard")]
        self.wait_sent("hall.db", 4 + 6)
        self.wait_sent("yard.db", 4 + 10)
        collector = self.collector()
        wait_for(lambda: len(self.sheets("all.db")) >= 4 + 6 + 10, "collecting all sheets")
        self.assertEqual([station.end() for station in stations], [0, 0])
        self.assertEqual(collector.end(), 130)
        self.assertEqual(self.identities("all.db"), self.identities("hall.db", "yard.db"))
        self.assertCountEqual(self.sheets("all.db"), set(self.sheets("hall.db") + self.sheets("yard.db")))
        self.assertEqual(query(self.folder / "all.db", "SELECT reason FROM unread"), [])

    def test_what_contradicts_a_store_that_was_put_back_is_set_aside(self):
        self.servers.start()
        collector = self.collector()
        self.feed(4, sheets=2)
        self.copy("hall.db", "old.db")
        self.feed(8, sheets=2, seed=10)
        wait_for(lambda: len(self.sheets("all.db")) == 8, "collecting all sheets")
        collected = self.sheets("all.db")
        self.copy("old.db", "hall.db")
        self.feed(10, sheets=3, seed=20)

        # The numbers 3 and 4 are there twice, and what came first stays.
        wait_for(lambda: len(self.sheets("all.db")) == 10, "collecting the others")
        wait_for(lambda: len(query(self.folder / "all.db", "SELECT id FROM unread")) == 4, "setting the others aside")
        self.assertEqual([sheet for sheet in self.sheets("all.db") if sheet in collected], collected)
        said = "".join(collector.lines)
        for reader in ("left", "right"):
            for number in (3, 4):
                self.assertIn(f"A message of kelreader.sheet.hall.{reader} is set aside: Sheet {number} of the batch all of "
                              f"the reader {reader} already exists, as another sheet.", said)
            numbers = query(self.folder / "all.db", f"SELECT number FROM sheets WHERE reader = '{reader}' ORDER BY number")
            self.assertEqual(numbers, [(number,) for number in range(1, 6)])
        self.assertEqual(collector.end(), 130)

    def test_a_station_without_readers_sends_what_a_store_holds_that_was_moved_away(self):
        station = self.station(sheets=2)
        wait_for(lambda: len(self.sheets("hall.db")) == 4, "storing the sheets")
        station.end()
        self.servers.start()
        station = self.station(readers=())
        station.says("The station has no readers; it sends what its store holds.")
        collector = self.collector()
        wait_for(lambda: len(self.sheets("all.db")) == 4, "collecting all sheets")
        self.assertEqual(self.sheets("all.db"), self.sheets("hall.db"))
        self.wait_sent("hall.db", 4)
        state = subprocess.run([PROGRAM, "station", self.folder / "hall.json", "--state"], capture_output=True, text=True,
                               check=True, timeout=PATIENCE)
        self.assertIn("Stream: up, 0 not sent yet\n", state.stdout)
        self.assertEqual((station.end(), collector.end()), (0, 130))


if __name__ == "__main__":
    unittest.main()
