#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Measures which lines and branches the tests reach, and prints them by folder.
# Usage: scripts/measure-coverage.sh [BUILD-FOLDER]   (default: build/coverage)
#
# Branches to exceptions do not count: nearly every call has one. Tests of the Windows component do not run here.
# Needs the packages of `scripts/install-packages.sh build test coverage`. This lists the lines that no test reaches:
#   gcovr --root . --object-directory BUILD-FOLDER --exclude-throw-branches --filter drivers/ BUILD-FOLDER
set -euo pipefail

cd "$(dirname "$0")/.."
build=${1:-build/coverage}

cmake --preset coverage -B "$build" >/dev/null
cmake --build "$build" --parallel "$(nproc)"
# What an earlier run has counted does not count.
find "$build" -name '*.gcda' -delete
ctest --test-dir "$build" --exclude-regex '^Windows_' --output-on-failure --parallel 4

gcovr --root . --object-directory "$build" --exclude-throw-branches --exclude-unreachable-branches \
      --exclude tests/ --exclude "$build" --json-summary "$build/coverage.json" "$build"

python3 - "$build/coverage.json" <<'TABLE'
import collections
import json
import sys

KEYS = ("line_covered", "line_total", "branch_covered", "branch_total")
folders = collections.defaultdict(collections.Counter)
for file in json.load(open(sys.argv[1]))["files"]:
    folder = file["filename"].partition("/")[0] + "/"
    for name in (folder, "all"):
        folders[name].update({key: file[key] for key in KEYS})

print("| Folder | Lines | of | | Branches | of | |")
print("|---|---:|---:|---:|---:|---:|---:|")
for name in sorted(folders, key=lambda folder: (folder == "all", folder)):
    counts = folders[name]
    cells = [name]
    for what in ("line", "branch"):
        covered, total = counts[what + "_covered"], counts[what + "_total"]
        cells += [covered, total, f"{100 * covered / total:.1f} %" if total else ""]
    print("| " + " | ".join(str(cell) for cell in cells) + " |")
TABLE
