#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Measures how many sheets a second go out of a store into a stream, on one server and in three replicas on this machine.

    stream_sheets.py KELREADER [--out RESULTS.json] [--sheets N]

The store is filled first, with sheets of 63 rows and 48 columns that people might have marked; then a station sends it.
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
from stream_servers import PATIENCE, Servers, wait_for

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


def measure(program, name, count, readers, sheets, marks):
    """A station sends a full store; the time is that from its first message to its last."""
    with tempfile.TemporaryDirectory() as path, Servers(path, count) as servers:
        folder = Path(path)
        os.environ["KELREADER_REGISTRY_DIR"] = str(folder / "settings")
        fill(program, folder, readers, sheets, marks)
        servers.start()
        with subprocess.Popen([program, "station", station_file(folder, servers, count)],
                              stderr=subprocess.DEVNULL) as station, \
                sqlite3.connect(folder / "hall.db", timeout=PATIENCE) as database:
            def sent():
                return database.execute("SELECT sent FROM store").fetchone()[0]
            first = wait_for(sent, "sending")
            begin = time.monotonic()
            last = wait_for(lambda: (now := sent()) >= sheets and now, "sending all")
            seconds = time.monotonic() - begin
            station.terminate()
    return {"name": f"Stream_{name}", "sheets_per_second": (last - first) / seconds, "readers": readers, "marks": marks}


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
        results.append(measure(options.program.resolve(), name, count, readers, sheets, marks))
        print(f"{name}: {results[-1]['sheets_per_second']:.0f} sheets a second", flush=True)
    if options.out:
        options.out.write_text(json.dumps({"benchmarks": results}, indent=1), encoding="utf-8")
    return 0


if __name__ == "__main__":
    sys.exit(main())
