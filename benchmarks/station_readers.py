#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Measures a station with many simulated readers, its store and its stream included, beside the component alone.

    station_readers.py KELREADER KEL_MANY_READERS [--out RESULTS.json] [--readers 64,512] [--seconds N]
                       [--disk FOLDER]

The readers feed sheets of 63 rows and 48 columns at 38,400 baud, in a process of their own. Bytes come in bursts of 15, as
serial ports give them; those of 512 readers as serial adapters give them, after 16 milliseconds.
"""

import argparse
import contextlib
import json
import os
import sqlite3
import statistics
import subprocess
import sys
import tempfile
import time
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parents[1] / "scripts"))
from stream_servers import PATIENCE, Servers, wait_for

ROWS, COLUMNS = 63, 48
BURST, ADAPTER = 4, 16  # milliseconds
MANY = 100  # readers, from which on they are taken to stand behind adapters
WARM_UP = 5
SHEETS = 500  # to find what a commit takes


def processor_seconds(process):
    fields = Path(f"/proc/{process.pid}/stat").read_text(encoding="ascii").rpartition(")")[2].split()
    return (int(fields[11]) + int(fields[12])) / os.sysconf("SC_CLK_TCK")


def megabytes(process):
    lines = Path(f"/proc/{process.pid}/status").read_text(encoding="ascii").splitlines()
    return next(int(line.split()[1]) / 1024 for line in lines if line.startswith("VmRSS"))


@contextlib.contextmanager
def fed(program, folder, readers):
    """Readers that feed for as long as the block lasts."""
    burst = str(ADAPTER if readers >= MANY else BURST)
    with subprocess.Popen([program, "feed", folder, str(readers), burst], stdin=subprocess.PIPE,
                          stdout=subprocess.PIPE, text=True) as feeder:
        assert feeder.stdout.readline() == "ready\n"
        yield
        feeder.stdin.close()


def watch(process, seconds):
    """What a process takes while it reads: its share of a core, and its memory."""
    time.sleep(WARM_UP)
    before, begin = processor_seconds(process), time.monotonic()
    time.sleep(seconds)
    share = (processor_seconds(process) - before) / (time.monotonic() - begin)
    return {"percent_of_a_core": 100 * share, "MB": megabytes(process)}


def component(program, readers, seconds):
    """The component alone, a thread a reader."""
    with tempfile.TemporaryDirectory() as folder, fed(program, folder, readers):
        sheets = 2 * (seconds + WARM_UP)  # a page takes 0.8 seconds
        with subprocess.Popen([program, "read", folder, str(readers), str(sheets)], stdout=subprocess.PIPE,
                              text=True) as process:
            found = watch(process, seconds)
            pages = [float(line) for line in process.communicate()[0].split()]
    assert len(pages) == readers
    return {**found, "page_ms": statistics.median(pages)}


def station_file(folder, servers, readers):
    (folder / "form.json").write_text(json.dumps({"side1Rows": [ROWS], "side1Cols": [COLUMNS]}), encoding="utf-8")
    file = folder / "hall.json"
    file.write_text(json.dumps({
        "station": "hall", "store": "hall.db", "batch": "all", "stream": {"servers": servers.urls},
        "readers": [{"name": f"reader{number}", "model": 13, "device": str(folder / str(number)), "form": "form.json",
                     "set": {"BaudRate": 38400, "SleepTime": 10, "Timeout": 600}} for number in range(readers)]}),
        encoding="utf-8")
    return file


def wake_ups(process):
    """How often the threads of a process have waited for something, up to now."""
    texts = [(task / "status").read_text(encoding="ascii") for task in Path(f"/proc/{process.pid}/task").iterdir()]
    return sum(int(line.split()[1]) for text in texts for line in text.splitlines()
               if line.startswith("voluntary_ctxt_switches"))


def waiting(kelreader, seconds):
    """A station with a reader that waits for a sheet, and with a stream."""
    with tempfile.TemporaryDirectory() as path, Servers(path, 1) as servers:
        folder = Path(path)
        os.environ["KELREADER_REGISTRY_DIR"] = str(folder / "settings")
        servers.start()
        late = f"late={1000 * (seconds + 60)}@sheet=2"
        with subprocess.Popen([kelreader, "simulate", "--model", "13", "--count", "3", "--rate", "unlimited", "--fault", late,
                               "--link", folder / "0"], stdout=subprocess.PIPE, text=True) as reader, \
                subprocess.Popen([kelreader, "station", station_file(folder, servers, 1)],
                                 stderr=subprocess.DEVNULL) as process:
            wait_for(lambda: '"fed","sheet":2' in reader.stdout.readline(), "feeding the second sheet")
            time.sleep(WARM_UP)
            before, processor, begin = wake_ups(process), processor_seconds(process), time.monotonic()
            time.sleep(seconds)
            passed = time.monotonic() - begin
            found = {"wakeups_per_second": (wake_ups(process) - before) / passed,
                     "percent_of_a_core": 100 * (processor_seconds(process) - processor) / passed}
            process.kill()
            reader.kill()
    return found


def station(kelreader, program, readers, seconds):
    """A station with all of them, which stores and sends."""
    with tempfile.TemporaryDirectory() as path, Servers(path, 1) as servers, fed(program, path, readers):
        folder = Path(path)
        os.environ["KELREADER_REGISTRY_DIR"] = str(folder / "settings")
        servers.start()
        store = folder / "hall.db"
        with subprocess.Popen([kelreader, "station", station_file(folder, servers, readers)],
                              stderr=subprocess.DEVNULL) as process:
            wait_for(store.exists, "making the store")
            with contextlib.closing(sqlite3.connect(store, timeout=PATIENCE)) as database:
                def reading():
                    with contextlib.suppress(sqlite3.OperationalError):  # it is being made
                        return database.execute("SELECT count(DISTINCT batch) FROM sheet").fetchone()[0] == readers
                    return False
                wait_for(reading, "reading with all readers")
                found = watch(process, seconds)
                rows = database.execute("SELECT (julianday(max(time)) - julianday(min(time))) * 86400000 / (count(*) - 1) "
                                        "FROM sheet GROUP BY batch").fetchall()
            process.terminate()
            assert process.wait(PATIENCE) == 0
    return {**found, "page_ms": statistics.median(row[0] for row in rows)}


def interval(kelreader, folder, *more):
    """The median time from sheet to sheet of a simulated reader that loses none, in milliseconds."""
    command = [kelreader, "scan", "--simulate", "--model", "13", "--rate", "unlimited", "--count", str(SHEETS),
               "--max-sheets", str(SHEETS), "--set", "SleepTime=1", "--format", "csv", *more]
    with subprocess.Popen(command, stdout=subprocess.PIPE, env={**os.environ, "KELREADER_REGISTRY_DIR": str(folder)}) as scan:
        scan.stdout.readline()  # the heading
        times = [time.monotonic() for _ in scan.stdout]
    assert scan.returncode == 0 and len(times) == SHEETS
    return 1000 * statistics.median(after - before for before, after in zip(times, times[1:]))


def commit(kelreader, parent):
    """What a store on a disk adds to a sheet; None if the folder is on no disk."""
    disk = subprocess.run(["findmnt", "-no", "SOURCE,FSTYPE", "-T", parent], capture_output=True, text=True,
                          check=True).stdout.split()
    if disk[-1] in ("tmpfs", "ramfs"):
        return None
    with tempfile.TemporaryDirectory(dir=parent) as folder:
        without = interval(kelreader, folder)
        return {"ms": interval(kelreader, folder, "--store", f"{folder}/hall.db") - without, "disk": " ".join(disk)}


def main():
    arguments = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    arguments.add_argument("kelreader", type=Path)
    arguments.add_argument("program", type=Path)
    arguments.add_argument("--out", type=Path)
    arguments.add_argument("--readers", default="64,512")
    arguments.add_argument("--seconds", type=int, default=30)
    arguments.add_argument("--disk", type=Path, default=Path.cwd(), help="a folder on the disk for the time of a commit")
    options = arguments.parse_args()
    if not options.disk.is_dir():
        arguments.error(f"{options.disk} is no folder; make it, or name another one with --disk")
    kelreader, program = options.kelreader.resolve(), options.program.resolve()
    measures = {"Component": lambda readers: component(program, readers, options.seconds),
                "Station": lambda readers: station(kelreader, program, readers, options.seconds)}
    results = [{"name": "Station_Waiting", **waiting(kelreader, options.seconds)}]
    print(f"a station that waits: {results[0]['wakeups_per_second']:.2f} wake-ups a second", flush=True)
    if found := commit(kelreader, options.disk):
        results.append({"name": "Store_Commit", **found})
        print(f"a commit to {found['disk']}: {found['ms']:.2f} ms a sheet", flush=True)
    else:
        print(f"a commit: {options.disk} is on no disk; name another folder with --disk", flush=True)
    alone = {name: measure(1) for name, measure in measures.items()}
    print(f"one reader alone: {alone['Component']['page_ms']:.1f} ms a page", flush=True)
    for readers in map(int, options.readers.split(",")):
        for name, measure in measures.items():
            found = measure(readers)
            found["page/alone"] = found["page_ms"] / alone["Component"]["page_ms"]
            found["MB/reader"] = (found["MB"] - alone[name]["MB"]) / (readers - 1)
            results.append({"name": f"{name}_{readers}Readers", **found})
            print(f"{name}, {readers} readers: " + ", ".join(f"{what} {value:.4g}" for what, value in found.items()),
                  flush=True)
    if options.out:
        options.out.write_text(json.dumps({"benchmarks": results}, indent=1), encoding="utf-8")
    return 0


if __name__ == "__main__":
    sys.exit(main())
