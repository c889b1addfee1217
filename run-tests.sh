#!/usr/bin/env bash
# Installs what is missing, builds for Windows, builds under the address and undefined-behaviour sanitizers, and runs all tests.
# Usage: ./run-tests.sh [arguments of ctest]
set -euo pipefail
cd "$(dirname "$0")"

scripts/install-packages.sh build test windows
configure() {
    cmake --preset "$@" >build.log 2>&1 || { cat build.log >&2; exit 1; }
    rm -f build.log
}

# The Windows edition, whose tests are among those of this system and run under Wine.
configure windows
cmake --build --preset windows --parallel "$(nproc)"

configure asan -DKEL_WINDOWS_BUILD="$PWD/build/windows"
cmake --build --preset asan --parallel "$(nproc)"
exec ctest --preset asan --parallel 8 "$@"
