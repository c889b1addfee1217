#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Measures how many sheets a second go out of a store into a stream, on one server and in three replicas on this machine,
and out of that stream into the store of a collector.

    stream_sheets.py KELREADER [--out RESULTS.json] [--sheets N]

The store is filled first, with sheets of 63 rows and 48 columns that people might have marked; then a station sends it,
and with three replicas a collector collects it.
"""

import argparse
import json
import os
import random
import sqlite3
import subprocess
import sys
import tempfile
import time
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parents[1] / "scripts"))
from store_rows import number_in
from stream_servers import Servers, wait_for

ROWS, COLUMNS = 63, 48
STREAM = "KELREADER"


def station_file(folder, servers, replicas):
    file = folder / "hall.json"
    file.write_text(json.dumps({
        "station": "hall", "store": "hall.db", "stream": {"servers": servers.urls, "replicas": replicas},
        "readers": [{"name": "none", "model": 13, "simulate": {"count": 0}}]}), encoding="utf-8")
    return file


def fill(program, folder, readers, sheets, marks):
    """A store with so many sheets of so many readers."""
    subprocess.run([program, "scan", "--simulate", "--model", "13", "--rate", "unlimited", "--count", "1", "--max-sheets",
                    "1", "--set", "SleepTime=1", "--store", folder / "hall.db"], check=True, capture_output=True)
    chance = random.Random(1)
    with sqlite3.connect(folder / "hall.db") as database:
        identity, = database.execute("SELECT identity FROM store").fetchone()
        database.execute("DELETE FROM sheet")
        database.execute("DELETE FROM failure")
        database.execute("DELETE FROM batch")
        database.executemany("INSERT INTO batch VALUES (?, ?, 'hall', ?, 'all', ?)",
                             [(reader, identity, f"reader{reader}", sheets) for reader in range(1, readers + 1)])
        for number in range(1, sheets + 1):
            cells = sorted(chance.sample(range(ROWS * COLUMNS), marks))
            side = json.dumps({"rows": ROWS, "columns": COLUMNS,
                               "marks": [[cell // COLUMNS + 1, cell % COLUMNS + 1, chance.randrange(1, 16)]
                                         for cell in cells]}, separators=(",", ":"))
            database.execute("INSERT INTO sheet SELECT ?, ?, ?, ?, '2024-01-31T12:00:00.000Z', min(id), ?, NULL, ?, -1, "
                             "'[]', NULL, 0, 0, '[]' FROM setup",
                             (number, f"{identity}-{number}", number % readers + 1, number, side, ROWS))
        database.execute("UPDATE store SET last = ?", (sheets,))


def figure(name, place, sheets, readers, marks):
    """The time from the first sheets that come to a place to the last one; `place` gives how many are there."""
    first = wait_for(place, "the first sheet")
    begin = time.monotonic()
    last = wait_for(lambda: (now := place()) >= sheets and now, "the last sheet")
    return {"name": name, "sheets_per_second": (last - first) / (time.monotonic() - begin), "readers": readers, "marks": marks}


def measure(program, name, count, readers, sheets, marks):
    """A station sends a full store; then a collector collects it, if there are several servers."""
    with tempfile.TemporaryDirectory() as path, Servers(path, count) as servers:
        folder = Path(path)
        os.environ["KELREADER_REGISTRY_DIR"] = str(folder / "settings")
        fill(program, folder, readers, sheets, marks)
        servers.start()
        with subprocess.Popen([program, "station", station_file(folder, servers, count)],
                              stderr=subprocess.DEVNULL) as station:
            yield figure(f"Stream_{name}", lambda: number_in(folder / "hall.db", "SELECT sent FROM store"), sheets,
                         readers, marks)
            station.terminate()
        if count == 1:
            return
        with subprocess.Popen([program, "collect", "--from", ",".join(servers.urls), "--store", folder / "all.db"],
                              stderr=subprocess.DEVNULL) as collector:
            yield figure(f"Collect_{name}", lambda: number_in(folder / "all.db", "SELECT count(*) FROM sheet"), sheets,
                         readers, marks)
            collector.terminate()


def main():
    arguments = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    arguments.add_argument("program", type=Path)
    arguments.add_argument("--out", type=Path)
    arguments.add_argument("--sheets", type=int, default=20_000)
    options = arguments.parse_args()
    results = []
    for name, count, readers, marks in (("OneServer", 1, 64, 100), ("OneServerManyMarks", 1, 64, 600),
                                        ("OneServerOneReader", 1, 1, 100), ("ThreeReplicas", 3, 64, 100),
                                        ("ThreeReplicasManyMarks", 3, 64, 600), ("ThreeReplicasOneReader", 3, 1, 100)):
        sheets = options.sheets if readers > 1 else options.sheets // 5
        for result in measure(options.program.resolve(), name, count, readers, sheets, marks):
            results.append(result)
            print(f"{result['name']}: {result['sheets_per_second']:.0f} sheets a second", flush=True)
    if options.out:
        options.out.write_text(json.dumps({"benchmarks": results}, indent=1), encoding="utf-8")
    return 0


if __name__ == "__main__":
    sys.exit(main())
