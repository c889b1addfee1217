#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Kills a station again and again while simulated readers feed, and counts what its store holds.

Each sheet is random, and no two are the same. A reader gets the command to feed the next sheet once the store has the
last one: so a sheet may be missing only if it was the last that was fed when the station was killed, or was fed because
the station had asked for it by then. The store is read without the program that wrote it. With --stream the station
also sends to a stream: what is in the store is in the stream once, and comes out of it once.

Usage: kill_stations.py KELREADER [--readers N] [--sheets N] [--kills N] [--seed N] [--stream]
"""

import argparse
import collections
import json
import os
import random
import signal
import sqlite3
import subprocess
import sys
import tempfile
import time
from pathlib import Path

from stream_servers import PATIENCE, Servers, miscounted, report, wait_for

MODEL = "13"
FORM = {"side1Rows": [63], "side1Cols": [48]}


def marks_of(side):
    """The marks of a side as the store has it, or as a line of JSON has it."""
    if isinstance(side, dict):
        return tuple(tuple(mark) for mark in side["marks"])
    return tuple(
        (row, column, value)
        for row, cells in enumerate(side, 1)
        for column, value in enumerate(cells, 1)
        if value != 0
    )


class Reader:
    """A simulated reader that outlives the station."""

    def __init__(self, program, folder, number, sheets):
        self.name = f"reader{number}"
        self.sheets = sheets
        self.device = folder / self.name
        made_up = ["--model", MODEL, "--seed", str(1000 + number), "--count", str(sheets), "--rate", "unlimited"]
        self.log = folder / f"{self.name}.log"
        self.expected = self.read_once(program, made_up)
        with open(self.log, "w", encoding="utf-8") as log:
            self.process = subprocess.Popen([program, "simulate", *made_up, "--link", self.device], stdout=log)

    def read_once(self, program, made_up):
        """What the sheets hold, from a scan that nobody disturbs."""
        scan = subprocess.run(
            [program, "scan", "--simulate", *made_up, "--set", "SleepTime=1", "--max-sheets", str(self.sheets)],
            capture_output=True, text=True, check=True, timeout=PATIENCE * 10)
        lines = [json.loads(line) for line in scan.stdout.splitlines()]
        found = {marks_of(line["side1"]): line["sheet"] for line in lines if line["event"] == "sheet"}
        assert len(found) == self.sheets, "sheets that are not all there, or not all different"
        return found

    def last_fed(self):
        fed = 0
        for line in self.log.read_text(encoding="utf-8").splitlines():
            event = json.loads(line)
            if event["event"] == "fed":
                fed = event["sheet"]
        return fed


def write_file(folder, readers, stream):
    (folder / "form.json").write_text(json.dumps(FORM), encoding="utf-8")
    file = folder / "station.json"
    file.write_text(json.dumps({
        "station": "killed", "store": "store.db", "batch": "all", "retry": {"first": 0.02, "longest": 0.1}, **stream,
        "readers": [{"name": reader.name, "model": int(MODEL), "device": str(reader.device), "form": "form.json",
                     "set": {"SleepTime": 1}} for reader in readers]}), encoding="utf-8")
    return file


def stored(folder, name="store.db"):
    """How many sheets a store holds."""
    store = folder / name
    if not store.exists():
        return 0
    with sqlite3.connect(store, timeout=30) as database:
        try:
            return database.execute("SELECT count(*) FROM sheet").fetchone()[0]
        except sqlite3.OperationalError:
            return 0 # it is being made


def unsent(folder):
    """How many sheets and reports of the store the stream does not have."""
    with sqlite3.connect(folder / "store.db", timeout=30) as database:
        return database.execute("SELECT last - sent FROM store").fetchone()[0]


def last_stored(folder, reader):
    """Which sheet of a reader was stored last, in a set; an empty one if there is none."""
    with sqlite3.connect(folder / "store.db", timeout=30) as database:
        rows = database.execute("SELECT side1 FROM sheets WHERE reader = ? ORDER BY id DESC LIMIT 1", (reader.name,)).fetchall()
    return {reader.expected.get(marks_of(json.loads(side))) for side, in rows}


def kill_again_and_again(program, folder, readers, kills, chance, stream):
    """Kills the station at random moments, and notes which sheets were on their way."""
    file = write_file(folder, readers, stream)
    total = sum(reader.sheets for reader in readers)
    on_their_way = collections.defaultdict(list)
    done = 0
    for _ in range(kills):
        before = stored(folder)
        if sum(reader.last_fed() for reader in readers) >= total:
            break
        station = subprocess.Popen([program, "station", file], stderr=subprocess.DEVNULL)
        wanted = before + chance.randrange(1, max(2, 2 * total // (kills + 1)))
        wait_for(lambda: stored(folder) >= wanted or sum(r.last_fed() for r in readers) >= total, "reading")
        time.sleep(chance.random() * 0.3)
        station.send_signal(signal.SIGKILL)
        station.wait()
        done += 1
        # The reader may still find a command in its line.
        for reader in readers:
            last = reader.last_fed()
            on_their_way[reader.name].append((last, last + 1))
    station = subprocess.Popen([program, "station", file], stderr=subprocess.DEVNULL)
    wait_for(lambda: all(reader.last_fed() == reader.sheets for reader in readers), "feeding the last sheet")
    # A station that is told to end leaves out a sheet that it is reading.
    wait_for(lambda: all(reader.sheets in last_stored(folder, reader).union(*on_their_way[reader.name]) for reader in readers),
             "storing the last sheet")
    if stream:
        wait_for(lambda: unsent(folder) == 0, "sending the last sheet")
    station.terminate()
    station.wait()
    return done, on_their_way


# What the station knows the stream to have.
SENT = "id <= (SELECT sent FROM main.store)"


def number_in(database, rows):
    return database.execute(f"SELECT count(*) FROM {rows}").fetchone()[0]


def faults_of_stream(program, folder, servers):
    """What is wrong with the stream and with what comes out of it."""
    with sqlite3.connect(folder / "store.db") as database:
        sheets = number_in(database, f"sheet WHERE {SENT}")
    with subprocess.Popen([program, "collect", "--from", servers.all[0].url, "--store", folder / "all.db"],
                          stderr=subprocess.DEVNULL) as collector:
        wait_for(lambda: stored(folder, "all.db") >= sheets, "collecting the last sheet")
        collector.terminate()
    faults = []
    with sqlite3.connect(folder / "store.db") as database:
        database.execute("ATTACH ? AS other", (str(folder / "all.db"),))
        rows = "SELECT identity, number, side1 FROM"
        lost = number_in(database, f"({rows} sheet WHERE {SENT} EXCEPT {rows} other.sheet)")
        others = number_in(database, f"({rows} other.sheet EXCEPT {rows} sheet)")
        marked = number_in(database, f"sheet WHERE {SENT}") + number_in(database, f"failure WHERE {SENT}")
        entries = number_in(database, "sheet") + number_in(database, "failure")
    if lost or others:
        faults.append(f"{lost} of {sheets} sheets did not come out of the stream as they went in, and {others} others did")
    return faults + miscounted(marked, servers.messages("KELREADER"), entries)


def unexplained(missing, on_their_way):
    """The missing sheets that no kill explains. One kill costs a reader one sheet: the last one that was fed, or the next
    one, which is fed only if the last one is stored."""
    rest = sorted(missing)
    for ways in on_their_way:
        if lost := next((sheet for sheet in rest if sheet in ways), None):
            rest.remove(lost)
    return rest


def count(folder, readers, on_their_way):
    """What is wrong with the store, and how many sheets were on their way."""
    with sqlite3.connect(folder / "store.db") as database:
        rows = database.execute("SELECT reader, number, side1 FROM sheets ORDER BY id").fetchall()
    faults = []
    lost = 0
    for reader in readers:
        mine = [(number, marks_of(json.loads(side))) for name, number, side in rows if name == reader.name]
        numbers = [number for number, _ in mine]
        if numbers != list(range(1, len(numbers) + 1)):
            faults.append(f"{reader.name}: the numbers are not 1 to {len(numbers)}, each once")
        found = [reader.expected.get(marks) for _, marks in mine]
        if None in found:
            faults.append(f"{reader.name}: {found.count(None)} sheets that nobody has fed")
        if len(set(found)) != len(found):
            faults.append(f"{reader.name}: {len(found) - len(set(found))} sheets are there more than once")
        missing = set(reader.expected.values()) - set(found)
        lost += len(missing)
        if wrongly := unexplained(missing, on_their_way[reader.name]):
            faults.append(f"{reader.name}: sheets {wrongly} are missing, and no kill explains it")
    return len(rows), lost, faults


def main():
    arguments = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    arguments.add_argument("program", type=Path)
    arguments.add_argument("--readers", type=int, default=8)
    arguments.add_argument("--sheets", type=int, default=10_000, help="of all readers together")
    arguments.add_argument("--kills", type=int, default=200)
    arguments.add_argument("--seed", type=int, default=1)
    arguments.add_argument("--stream", action="store_true", help="send into a stream, too")
    options = arguments.parse_args()
    program = options.program.resolve()
    with tempfile.TemporaryDirectory() as name, Servers(name, 1 if options.stream else 0) as servers:
        folder = Path(name)
        servers.start()
        stream = {"stream": {"servers": servers.urls}} if options.stream else {}
        os.environ["KELREADER_REGISTRY_DIR"] = str(folder / "settings")
        each = options.sheets // options.readers
        readers = []
        try:
            for number in range(options.readers):
                readers.append(Reader(program, folder, number, each))
            wait_for(lambda: all(reader.device.exists() for reader in readers), "making the lines")
            kills, ways = kill_again_and_again(program, folder, readers, options.kills, random.Random(options.seed),
                                               stream)
        finally:
            for reader in readers:
                reader.process.kill()
                reader.process.wait()
        rows, lost, faults = count(folder, readers, ways)
        if options.stream:
            faults += faults_of_stream(program, folder, servers)
    return report(f"{each * len(readers)} sheets fed by {len(readers)} readers, {kills} kills: {rows} sheets stored, "
                  f"{lost} were on their way at a kill", faults)


if __name__ == "__main__":
    sys.exit(main())
