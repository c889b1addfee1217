#!/usr/bin/env bash
# Installs what is missing, builds under the address and undefined-behaviour sanitizers, and runs all tests.
# Usage: ./run-tests.sh [arguments of ctest]
set -euo pipefail
cd "$(dirname "$0")"

scripts/install-packages.sh build test
cmake --preset asan >build-asan.log 2>&1 || { cat build-asan.log >&2; exit 1; }
rm -f build-asan.log
cmake --build --preset asan --parallel "$(nproc)"
exec ctest --preset asan --parallel 8 "$@"
