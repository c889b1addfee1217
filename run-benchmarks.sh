#!/usr/bin/env bash
# Installs what is missing, builds with optimisation and prints all measured figures in one table.
# Usage: ./run-benchmarks.sh [arguments of Google Benchmark]
set -euo pipefail
cd "$(dirname "$0")"

scripts/install-packages.sh build test
cmake --preset release >/dev/null
cmake --build --preset release --parallel "$(nproc)" --target kel_benchmarks kelreader
exec build/release/bin/kel_benchmarks --benchmark_counters_tabular=true "$@"
