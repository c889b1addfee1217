#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Prints the measured figures beside what they are to reach, and beside the nearest thing that a host would write.

Usage: goals.py RESULTS.json...    (as kel_benchmarks --benchmark_out, and the scripts beside this one write them)
"""

import json
import sys

MEGA = 1e6

# What, the benchmark, its counter, a factor, the unit, the bound ("<" or ">" and the number), the alternative's
# benchmark of the same counter.
GOALS = [
    ("page time over wire time", "Line_PageTimeOverWireTime", "page/wire", 1, "", "< 1.01", "Alternative_BlockingReads"),
    ("last byte to the host, p99", "Line_PageTimeOverWireTime", "last_byte_ms_p99", 1, "ms", "< 0.1",
     "Alternative_BlockingReads"),
    ("waiting for a sheet", "Line_IdleProcessorShare", "percent_of_a_core", 1, "% of a core", "< 0.05",
     "Alternative_BusyLoop"),
    ("waiting for a sheet, wake-ups", "Line_IdleProcessorShare", "wakeups_per_second", 1, "a second", "< 5", None),
    ("system calls, bursts of 15", "Line_SystemCallsAByte", "calls/byte", 1, "a byte", "< 0.14",
     "Alternative_SystemCallsAByte"),
    ("whole stack, line in memory", "Stack_BytesOnALineInMemory", "ns/byte", 1, "ns a byte", "< 150", None),
    ("text look-up", "Stack_TextLookUp", "time_ns", 1, "ns", "< 20", None),
    ("kelreader models", "Command_Models", "time_ns", 1e-6, "ms", "< 50", None),
    ("kelreader models, memory", "Command_Models", "MB", 1, "MB", "< 20", None),
    ("loading 19 settings", "Settings_Load", "time_ns", 1e-6, "ms", "< 2", None),
    ("search, 15 of 16 ports absent", "Search_SixteenPorts", "time_ns", 1e-6, "ms", "< 600", None),
    ("VMR138 decoder", "Decode_PeripheralDynamics", "bytes_per_second", 1 / MEGA, "MB/s", "> 100", None),
    ("Scanmark page decoder", "Decode_ScantronPage", "bytes_per_second", 1 / MEGA, "MB/s", "> 100", None),
    ("Scanmark window decoder", "Decode_ScantronWindow", "bytes_per_second", 1 / MEGA, "MB/s", "> 100", None),
    ("OpScan decoder, cells", "Decode_NcsPage", "bytes_per_second", 1 / MEGA, "MB/s", "> 100", None),
    ("packed marks", "Decode_PackedMarks", "bytes_per_second", 1 / MEGA, "MB/s", "> 100", None),
    ("BenchMark 3000 line, 50 answers", "Decode_BenchMark3000Line", "time_ns", 1e-3, "us", None, None),
    ("Advantage 1200 line, 50 answers", "Decode_Advantage1200Line", "time_ns", 1e-3, "us", None, None),
    ("Advantage Link block, 50 rows", "Decode_AdvantageLinkBlock", "time_ns", 1e-3, "us", None, None),
    ("GradeMaster block, 100 rows", "Decode_GradeMasterBlock", "time_ns", 1e-3, "us", None, None),
    ("USB side of 9,600 cells", "Decode_SekonicUsbSide", "cpu_ns", 1e-3, "us", "< 20", None),
    ("a guarded call", "Guarded_Call", "time_ns", 1, "ns", None, "Guarded_NoTrap"),
    ("a guarded call with variables", "Guarded_CallWithVariables", "time_ns", 1, "ns", None,
     "Guarded_NoTrapWithVariables"),
    ("a guarded call of an object", "Guarded_CallOfAnObject", "time_ns", 1, "ns", None, "Guarded_NoTrap"),
    ("options window, 16 absent ports", "Options_Show", "time_ns", 1e-6, "ms", "< 300", None),
    ("options window, another model", "Options_ModelChange", "time_ns", 1e-6, "ms", "< 5", None),
    ("COM: property by vtable", "Com_PropertyByVtable", "time_ns", 1, "ns", "< 50", None),
    ("COM: property by IDispatch", "Com_PropertyByIDispatch", "time_ns", 1e-3, "us", "< 2", None),
    ("COM: property by name", "Com_PropertyByName", "time_ns", 1e-3, "us", None, None),
    ("COM: a reader made and released", "Com_Creation", "time_ns", 1e-6, "ms", "< 1", None),
    ("COM: CreateObject in a fresh process", "Com_FirstCreation", "time_ns", 1e-6, "ms", "< 50", None),
    ("COM: that process, and an empty one", "Com_ProcessWithReader", "time_ns", 1e-6, "ms", None,
     "Com_EmptyProcess"),
    ("COM, 32 bits: property by vtable", "Com32_PropertyByVtable", "time_ns", 1, "ns", "< 50", None),
    ("COM, 32 bits: property by IDispatch", "Com32_PropertyByIDispatch", "time_ns", 1e-3, "us", "< 2", None),
    ("COM, 32 bits: property by name", "Com32_PropertyByName", "time_ns", 1e-3, "us", None, None),
    ("COM, 32 bits: a reader made and released", "Com32_Creation", "time_ns", 1e-6, "ms", "< 1", None),
    ("COM, 32 bits: CreateObject in a fresh process", "Com32_FirstCreation", "time_ns", 1e-6, "ms", "< 50", None),
    ("COM, 32 bits: that process, and an empty one", "Com32_ProcessWithReader", "time_ns", 1e-6, "ms", None,
     "Com32_EmptyProcess"),
    ("Python: a sheet from the event to its array", "Python_EventToArray", "us_p50", 1, "us", "< 20", None),
    ("Python: the same on a line, after a pause", "Python_EventToArrayOnALine", "us_p50", 1, "us", None,
     "Python_CallAfterAPause"),
    ("Python: 64 readers, event to array", "Python_SixtyFourReaders", "us_p50", 1, "us", None, None),
    ("Python: memory that 1,000 sessions leave", "Python_Sessions", "kB", 1, "kB", None, None),
    ("sheets from a store into one server", "Stream_OneServer", "sheets_per_second", 1, "a second", "> 5000", None),
    ("sheets from a store into three replicas", "Stream_ThreeReplicas", "sheets_per_second", 1, "a second", "> 1500",
     "Stream_ThreeReplicasOneReader"),
    ("sheets from three replicas into a store", "Collect_ThreeReplicas", "sheets_per_second", 1, "a second", None,
     "Collect_ThreeReplicasOneReader"),
    ("a station that waits for a sheet, wake-ups", "Station_Waiting", "wakeups_per_second", 1, "a second", "< 5", None),
    ("a station that waits for a sheet", "Station_Waiting", "percent_of_a_core", 1, "% of a core", "< 0.05", None),
    ("a commit to the store, added to a sheet", "Store_Commit", "ms", 1, "ms", "< 10", None),
    ("64 readers in a station: page time over one alone", "Station_64Readers", "page/alone", 1, "", "< 1.01",
     "Component_64Readers"),
    ("64 readers in a station", "Station_64Readers", "percent_of_a_core", 1, "% of a core", "< 20", "Component_64Readers"),
    ("64 readers in a station, memory", "Station_64Readers", "MB/reader", 1, "MB a reader", "< 1", "Component_64Readers"),
    ("512 readers in a station: page time over one alone", "Station_512Readers", "page/alone", 1, "", "< 1.5",
     "Component_512Readers"),
    ("512 readers in a station", "Station_512Readers", "percent_of_a_core", 1, "% of a core", "< 100",
     "Component_512Readers"),
    ("512 readers in a station, memory", "Station_512Readers", "MB/reader", 1, "MB a reader", "< 1",
     "Component_512Readers"),
]

NANOSECONDS = {"ns": 1, "us": 1e3, "ms": 1e6, "s": 1e9}


def figure(results, name, counter):
    """A counter of a benchmark, or None if it did not run."""
    # A name may carry its arguments after it.
    found = next((r for r in results if r["name"] == name or r["name"].startswith(name + "/")), None)
    if found is None:
        return None
    if counter == "time_ns":
        return found["real_time"] * NANOSECONDS[found["time_unit"]]
    if counter == "cpu_ns":
        return found["cpu_time"] * NANOSECONDS[found["time_unit"]]
    return found.get(counter)


def shown(value, unit):
    return "-" if value is None else f"{value:.3g} {unit}".strip()


def reached(value, bound):
    sign, number = bound.split()
    return value < float(number) if sign == "<" else value > float(number)


def table(results):
    rows = [("figure", "goal", "reached", "alternative", "")]
    for what, name, counter, factor, unit, bound, alternative in GOALS:
        value = figure(results, name, counter)
        if value is None:
            continue
        other = figure(results, alternative, counter) if alternative else None
        verdict = "" if bound is None else "ok" if reached(value * factor, bound) else "MISSED"
        rows.append((what, f"{bound} {unit}".strip() if bound else "-", shown(value * factor, unit),
                     shown(None if other is None else other * factor, unit), verdict))
    widths = [max(len(row[i]) for row in rows) for i in range(len(rows[0]))]
    return "\n".join("  ".join(cell.ljust(width) for cell, width in zip(row, widths)).rstrip() for row in rows)


def main():
    if len(sys.argv) < 2:
        sys.exit(__doc__)
    results = []
    for name in sys.argv[1:]:
        with open(name, encoding="utf-8") as file:
            results += json.load(file)["benchmarks"]
    print(table(results))


if __name__ == "__main__":
    main()
