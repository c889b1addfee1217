#!/usr/bin/env bash
# Installs what is missing, builds with optimisation and prints all measured figures, then those that have a goal beside
# it. With arguments for Google Benchmark, such as --benchmark_filter=Decode, only what they choose.
set -euo pipefail
cd "$(dirname "$0")"

scripts/install-packages.sh build test
cmake --preset release >/dev/null
cmake --build --preset release --parallel "$(nproc)" --target kel_benchmarks kelreader
results=build/release/benchmarks.json
build/release/bin/kel_benchmarks --benchmark_counters_tabular=true --benchmark_out="$results" \
    --benchmark_out_format=json "$@"
echo
python3 benchmarks/goals.py "$results"
