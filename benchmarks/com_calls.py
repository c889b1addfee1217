#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Measures what calls of the COM server cost, under Wine, and writes them as benchmarks in JSON.

    com_calls.py WINDOWS_BUILD_FOLDER KELREADER OUTPUT
"""

import json
import os
import pathlib
import sys

sys.dont_write_bytecode = True
PROGRAM = "com_lifetime.exe"


def main():
    if len(sys.argv) != 4:
        sys.exit(__doc__)
    build, program, output = (pathlib.Path(argument).resolve() for argument in sys.argv[1:])
    os.environ.update(KEL_WINDOWS_BIN=str(build / "bin"), KEL_WINDOWS_WIDTH="64", KEL_READER_PROGRAM=str(program),
                      WINEPREFIX=str(build / "benchmark_prefix"))
    sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[1] / "tests" / "windows"))
    import harness  # needs the environment

    report = build / "com_calls.json"
    harness.start_display()
    try:
        harness.make_prefix()
        harness.wine(PROGRAM, "--gtest_filter=*.WhatCallsCost", "--gtest_output=json:" + harness.windows_path(report),
                     check=True)
    finally:
        harness.stop_server()
        harness.stop_display()
    [suite] = json.loads(report.read_text())["testsuites"]
    [test] = suite["testsuite"]
    figures = [{"name": name, "real_time": float(value), "time_unit": "ns"}
               for name, value in test.items() if name.startswith("Com_")]
    output.write_text(json.dumps({"benchmarks": figures}))


if __name__ == "__main__":
    main()
