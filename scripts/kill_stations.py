#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Kills a station again and again while simulated readers feed, and counts what its store holds.

Each sheet is random, and no two are the same. A reader gets the command to feed the next sheet once the station has
answered for the last one. So the readers are witnesses: of the sheets that a reader fed for a station, only the last may
be missing, if the station was killed before it asked for the next one, which the trace of the session shows; each other one
was answered for, and is in the store once. The store is read without the program that wrote it. With --stream the station
also sends to a stream: what is in the store is in the stream once, and comes out of it once.

Usage: kill_stations.py KELREADER [--readers N] [--sheets N] [--kills N] [--seed N] [--stream]
"""

import argparse
import collections
import json
import os
import random
import re
import signal
import sqlite3
import subprocess
import sys
import tempfile
import termios
import time
import tty
from concurrent.futures import ThreadPoolExecutor
from pathlib import Path

from store_rows import number_in, query
from stream_servers import PATIENCE, Servers, miscounted, report, wait_for

MODEL = "13"
STRANGER = "WHO?" # no command of the model
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
        self.trace = folder / f"{self.name}.trace"
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

    def events(self):
        return [json.loads(line) for line in self.log.read_text(encoding="utf-8").splitlines()]

    def last_fed(self):
        return max((event["sheet"] for event in self.events() if event["event"] == "fed"), default=0)

    def has_asked_for_next(self, fed):
        """Whether a station that is dead, and had fed so many sheets in one session, answered for the last one. It asks for
        the status after each sheet, to know whether it is whole, and again before the next one."""
        commands = re.findall('^> 1B "([A-Z]{4})', self.trace.read_text(encoding="utf-8"), re.MULTILINE)
        if commands.count("READ") != fed: # a session before it had fed some of them
            return False
        return commands[::-1].index("READ") > 1

    def last_fed_for_the_dead(self):
        """The last sheet that was fed for a station that has been killed: commands that it left in the line are obeyed
        first. They end with two of this script's: one that gives up whatever is under way, and one that no reader knows,
        which it notes."""
        def strangers():
            return sum(event["event"] == "error" and STRANGER in event["text"] for event in self.events())
        before = strangers()
        line = os.open(self.device, os.O_RDWR | os.O_NOCTTY | os.O_NONBLOCK)
        try:
            tty.setraw(line)
            os.write(line, f"\x1bSRST\r\x1b{STRANGER}\r".encode())

            def is_noted():
                termios.tcflush(line, termios.TCIFLUSH) # answers that nobody wants keep it from none
                return strangers() > before
            wait_for(is_noted, "obeying the last commands")
        finally:
            os.close(line)
        return self.last_fed()


def write_file(folder, readers, stream):
    (folder / "form.json").write_text(json.dumps(FORM), encoding="utf-8")
    file = folder / "station.json"
    file.write_text(json.dumps({
        "station": "killed", "store": "store.db", "batch": "all", "retry": {"first": 0.02, "longest": 0.1}, **stream,
        "readers": [{"name": reader.name, "model": int(MODEL), "device": str(reader.device), "form": "form.json",
                     "trace": reader.trace.name, "set": {"SleepTime": 1}} for reader in readers]}), encoding="utf-8")
    return file


def stored(folder, name="store.db"):
    """How many sheets a store holds."""
    return number_in(folder / name, "SELECT count(*) FROM sheet")


def unsent(folder):
    """How many sheets and reports of the store the stream does not have."""
    return number_in(folder / "store.db", "SELECT last - sent FROM store")


def last_stored(folder, reader):
    """Which sheet of a reader was stored last, in a set; an empty one if there is none."""
    rows = query(folder / "store.db", "SELECT side1 FROM sheets WHERE reader = ? ORDER BY id DESC LIMIT 1", reader.name)
    return {reader.expected.get(marks_of(json.loads(side))) for side, in rows}


def kill_again_and_again(program, folder, readers, kills, chance, stream):
    """Kills the station at random moments, and notes which sheet of each reader it may not have answered for."""
    file = write_file(folder, readers, stream)
    total = sum(reader.sheets for reader in readers)
    unanswered = collections.defaultdict(set)
    done = 0
    for left in range(kills, 0, -1):
        before = stored(folder)
        unread = total - sum(reader.last_fed() for reader in readers)
        if unread <= 0:
            break
        fed = {reader.name: reader.last_fed() for reader in readers}
        station = subprocess.Popen([program, "station", file], stderr=subprocess.DEVNULL)
        # On average half of what would use up the sheets with the last kill: some are fed while it comes.
        wanted = before + chance.randrange(1, max(2, unread // left))
        wait_for(lambda: stored(folder) >= wanted or sum(r.last_fed() for r in readers) >= total, "reading")
        time.sleep(chance.random() * 0.3)
        station.send_signal(signal.SIGKILL)
        station.wait()
        done += 1
        for reader in readers:
            last = reader.last_fed_for_the_dead()
            mine = last - fed[reader.name] # were fed for this station, and not for one before it
            if mine > 0 and not reader.has_asked_for_next(mine):
                unanswered[reader.name].add(last)
    station = subprocess.Popen([program, "station", file], stderr=subprocess.DEVNULL)
    wait_for(lambda: all(reader.last_fed() == reader.sheets for reader in readers), "feeding the last sheet")
    # A station that is told to end leaves out a sheet that it is reading.
    wait_for(lambda: all(reader.sheets in last_stored(folder, reader) | unanswered[reader.name] for reader in readers),
             "storing the last sheet")
    if stream:
        wait_for(lambda: unsent(folder) == 0, "sending the last sheet")
    station.terminate()
    station.wait()
    return done, unanswered


# What the station knows the stream to have.
SENT = "id <= (SELECT sent FROM main.store)"


def faults_of_stream(program, folder, servers):
    """What is wrong with the stream and with what comes out of it."""
    sheets = number_in(folder / "store.db", f"SELECT count(*) FROM sheet WHERE {SENT}")
    with subprocess.Popen([program, "collect", "--from", servers.all[0].url, "--store", folder / "all.db"],
                          stderr=subprocess.DEVNULL) as collector:
        wait_for(lambda: stored(folder, "all.db") >= sheets, "collecting the last sheet")
        collector.terminate()
    faults = []
    with sqlite3.connect(folder / "store.db") as database:
        database.execute("ATTACH ? AS other", (str(folder / "all.db"),))
        rows = "SELECT identity, number, side1 FROM"
        lost, others, marked, entries = (database.execute(f"SELECT count(*) FROM {what}").fetchone()[0] for what in (
            f"({rows} sheet WHERE {SENT} EXCEPT {rows} other.sheet)",
            f"({rows} other.sheet EXCEPT {rows} sheet)",
            f"(SELECT id FROM sheet UNION ALL SELECT id FROM failure) WHERE {SENT}",
            "(SELECT id FROM sheet UNION ALL SELECT id FROM failure)"))
    if lost or others:
        faults.append(f"{lost} of {sheets} sheets did not come out of the stream as they went in, and {others} others did")
    return faults + miscounted(marked, servers.messages("KELREADER"), entries)


def count(folder, readers, unanswered):
    """What is wrong with the store, and how many sheets are missing for which no station had answered."""
    rows = query(folder / "store.db", "SELECT reader, number, side1 FROM sheets ORDER BY id")
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
        lost += len(missing & unanswered[reader.name])
        if wrongly := sorted(missing - unanswered[reader.name]):
            faults.append(f"{reader.name}: sheets {wrongly} are missing, and a station had answered for them")
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
            with ThreadPoolExecutor(options.readers) as pool: # each reads its sheets once, which takes minutes
                readers.extend(pool.map(lambda number: Reader(program, folder, number, each), range(options.readers)))
            wait_for(lambda: all(reader.device.exists() for reader in readers), "making the lines")
            kills, unanswered = kill_again_and_again(program, folder, readers, options.kills, random.Random(options.seed),
                                               stream)
        finally:
            for reader in readers:
                reader.process.kill()
                reader.process.wait()
        rows, lost, faults = count(folder, readers, unanswered)
        if options.stream:
            faults += faults_of_stream(program, folder, servers)
    return report(f"{each * len(readers)} sheets fed by {len(readers)} readers, {kills} kills: {rows} sheets stored, "
                  f"{lost} were not answered for at a kill", faults)


if __name__ == "__main__":
    sys.exit(main())
