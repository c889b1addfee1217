#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Installs what is missing, builds with optimisation and prints all measured figures, then those that have a goal beside
# it. With arguments for Google Benchmark, such as --benchmark_filter=Decode, only what they choose.
set -euo pipefail
cd "$(dirname "$0")"

scripts/install-packages.sh build test windows
cmake --preset release >/dev/null
cmake --build --preset release --parallel "$(nproc)" --target kel_benchmarks kel_many_readers kel_python kelreader
results=build/release/benchmarks.json
build/release/bin/kel_benchmarks --benchmark_counters_tabular=true --benchmark_out="$results" \
    --benchmark_out_format=json "$@"

# What a host pays under Windows, in the widths whose programs run here.
com_results=build/release/com_calls.json
rm -f "$com_results"
if [ $# -eq 0 ]; then
    editions=(64=build/windows)
    wine_root=$(scripts/prepare-wine.sh "$PWD/build/wine-root") && editions+=(32=build/windows32)
    for edition in "${editions[@]}"; do
        preset=${edition#*=build/}
        cmake --preset "$preset" -DKEL_BUILD_BENCHMARKS=ON >/dev/null
        cmake --build --preset "$preset" --parallel "$(nproc)" --target com_costs keep_alive >/dev/null
    done
    KEL_WINE_ROOT=$wine_root python3 benchmarks/com_calls.py build/release/bin/kelreader "$com_results" "${editions[@]}"
fi

# What a host in Python pays.
python_results=build/release/python_sheets.json
rm -f "$python_results"
if [ $# -eq 0 ]; then
    PYTHONPATH=build/release/python /usr/bin/python3 benchmarks/python_sheets.py --out "$python_results"
fi

# What goes out of a store.
stream_results=build/release/stream_sheets.json
rm -f "$stream_results"
if [ $# -eq 0 ]; then
    python3 benchmarks/stream_sheets.py build/release/bin/kelreader --out "$stream_results"
fi

# What many readers cost in one station.
station_results=build/release/station_readers.json
rm -f "$station_results"
if [ $# -eq 0 ]; then
    python3 benchmarks/station_readers.py build/release/bin/kelreader build/release/bin/kel_many_readers \
        --out "$station_results"
fi
echo
python3 benchmarks/goals.py "$results" \
    $(find "$com_results" "$python_results" "$stream_results" "$station_results" 2>/dev/null || true)
