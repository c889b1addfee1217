#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Measures what a host in Python pays for a sheet, and whether sessions leave anything behind, with simulated readers.

    PYTHONPATH=build/release/python python_sheets.py [--out RESULTS.json] [--sessions N]

--sessions 10000 is for a release: it fails if the sessions after the first tenth still take memory.
"""

import argparse
import gc
import json
import os
import statistics
import sys
import tempfile
import threading
import time

import kelreader

ROWS, COLUMNS = 63, 48
FORM = {"side1Rows": [ROWS], "side1Cols": [COLUMNS]}
SHEET = [[(row * column) % 16 for column in range(COLUMNS)] for row in range(ROWS)]
MOST_KILOBYTES = 2048  # what the allocator may come to keep in the long run


def to_array(sheets):
    """Microseconds from the event to the array, for each sheet."""
    times = []
    for sheet in sheets:
        side = sheet.side1
        times.append((time.monotonic() - sheet.read_at) * 1e6)
        assert side.shape == (ROWS, COLUMNS) and side[1, 1] == SHEET[1][1]
    return times


def on_a_line(count, **more):
    """The times of a simulated Scanmark, which sends its sheets as fast as its line is."""
    with kelreader.simulate("Scanmark 2500", sheets=[SHEET] * count, form=FORM) as simulated:
        with simulated.reader(sleep_time=1, **more) as reader:
            return to_array(reader)


def a_call():
    """Microseconds for a call of a function that does next to nothing."""
    begin = time.monotonic()
    [number for number in range(3)]
    return (time.monotonic() - begin) * 1e6


def after_a_pause():
    time.sleep(0.02)
    return a_call()


def figure(name, times):
    return {"name": name, "us_p50": statistics.median(times), "us_p99": statistics.quantiles(times, n=100)[98]}


def event_to_array():
    """From a line, where the processor has paused before each burst of bytes and all that it had at hand is gone; from a
    recorded session without pauses, which shows what is the module's own; and, beside the two, a call with and without
    a pause before it."""
    with tempfile.TemporaryDirectory() as folder:
        trace = os.path.join(folder, "session.trace")
        live = on_a_line(200, trace=trace)
        recorded = []
        for _ in range(5):
            with kelreader.replay(trace) as session:
                recorded += to_array(session)
    return [figure("Python_EventToArray", recorded), figure("Python_EventToArrayOnALine", live),
            figure("Python_Call", [a_call() for _ in range(200)]),
            figure("Python_CallAfterAPause", [after_a_pause() for _ in range(200)])]


def sixty_four_readers():
    times = []
    threads = [threading.Thread(target=lambda: times.extend(on_a_line(20))) for _ in range(64)]
    for thread in threads:
        thread.start()
    for thread in threads:
        thread.join()
    assert len(times) == 64 * 20, "every reader has read every sheet"
    return {"name": "Python_SixtyFourReaders", "us_p50": statistics.median(times)}


def kilobytes():
    """The memory of this process that is in use."""
    gc.collect()
    with open("/proc/self/statm", encoding="ascii") as file:
        return int(file.read().split()[1]) * os.sysconf("SC_PAGESIZE") // 1024


def sessions(count):
    """Holds recorded sessions, which take no time, and a live one for every hundred of them."""
    with tempfile.TemporaryDirectory() as folder:
        trace = os.path.join(folder, "session.trace")
        with kelreader.simulate("Scanmark 2500", sheets=[SHEET] * (2 + count // 100), form=FORM) as simulated:

            def live(**more):
                with simulated.reader(max_sheets=1, sleep_time=1, **more) as reader:
                    assert [sheet.side1.shape for sheet in reader] == [(ROWS, COLUMNS)]

            live(trace=trace)
            for number in range(count):
                if number == count // 10:
                    before = kilobytes()
                with kelreader.replay(trace) as session:
                    assert len(list(session)) == 1
                if number % 100 == 0:
                    live()
            after = kilobytes()
            return {"name": "Python_Sessions", "kB": after - before, "kB_before": before, "kB_after": after}


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--out")
    parser.add_argument("--sessions", type=int)
    arguments = parser.parse_args()
    if arguments.sessions:
        memory = sessions(arguments.sessions)
        left = memory["kB"]
        print(f"{arguments.sessions} sessions leave {left} kB: {memory['kB_before']} kB in use after the first tenth, "
              f"{memory['kB_after']} kB at the end")
        sys.exit(0 if left < MOST_KILOBYTES else "python_sheets.py: sessions leave memory behind")
    figures = [*event_to_array(), sixty_four_readers(), sessions(1000)]
    for one in figures:
        print(one)
    if arguments.out:
        with open(arguments.out, "w", encoding="utf-8") as file:
            json.dump({"benchmarks": figures}, file)


if __name__ == "__main__":
    main()
