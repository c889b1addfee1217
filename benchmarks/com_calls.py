#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Measures what the COM server costs its hosts, under Wine, and writes it as benchmarks in JSON.

    com_calls.py KELREADER OUTPUT WIDTH=WINDOWS_BUILD_FOLDER...     WIDTH is 64 or 32

The figures of 64 bits are called Com_..., those of 32 Com32_... KEL_WINE_ROOT says where Wine is, if not on this system.
"""

import importlib
import json
import os
import pathlib
import statistics
import sys
import time

sys.dont_write_bytecode = True
sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[1] / "tests" / "windows"))
PROGRAM = "com_costs.exe"
PROCESSES = 25  # the first ones read files that the system keeps from then on; the middle one counts


def told(harness, what):
    """The figures that the program writes, in nanoseconds."""
    lines = harness.wine(PROGRAM, what, check=True).stdout.splitlines()
    return {name: float(value) for name, value in map(str.split, lines)}


def processes(harness):
    """CreateObject in a fresh process, and that process beside one that creates nothing; by turns, as the machine's load
    changes."""
    created, took = [], {"first": [], "nothing": []}
    for _ in range(PROCESSES):
        for what, times in took.items():
            begin = time.perf_counter_ns()
            created += told(harness, what).values()
            times.append(time.perf_counter_ns() - begin)
    return {"FirstCreation": statistics.median(created), "ProcessWithReader": statistics.median(took["first"]),
            "EmptyProcess": statistics.median(took["nothing"])}


def measure(width, build, program, prefix):
    os.environ.update(KEL_WINDOWS_BIN=str(build / "bin"), KEL_WINDOWS_WIDTH=width, KEL_READER_PROGRAM=str(program),
                      WINEPREFIX=str(prefix))
    sys.modules.pop("harness", None)
    harness = importlib.import_module("harness")  # reads the environment
    harness.start_display()
    try:
        harness.make_prefix()
        harness.start_server()
        harness.wine("regsvr32", "/s", "KELReader81U.dll", check=True)
        return told(harness, "calls") | processes(harness)
    finally:
        harness.stop_server()
        harness.stop_display()


def main():
    if len(sys.argv) < 4:
        sys.exit(__doc__)
    program, output = (pathlib.Path(argument).resolve() for argument in sys.argv[1:3])
    figures = []
    for edition in sys.argv[3:]:
        width, _, build = edition.partition("=")
        group = {"64": "Com_", "32": "Com32_"}[width]
        measured = measure(width, pathlib.Path(build).resolve(), program, output.with_name("com_prefix" + width))
        figures += [{"name": group + name, "real_time": value, "time_unit": "ns"} for name, value in measured.items()]
    output.write_text(json.dumps({"benchmarks": figures}))


if __name__ == "__main__":
    main()
