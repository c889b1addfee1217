#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Installs what is missing, builds for Windows in both widths, builds with g++ as packages are made, and with clang under the
# address and undefined-behaviour sanitizers, and runs all tests.
# Usage: ./run-tests.sh [arguments of ctest]
set -euo pipefail
cd "$(dirname "$0")"

scripts/install-packages.sh build test windows
configure() {
    cmake --preset "$@" >build.log 2>&1 || { cat build.log >&2; exit 1; }
    rm -f build.log
}

# Wine for 32 bits may have to be fetched, which takes minutes.
mkdir -p build
scripts/prepare-wine.sh "$PWD/build/wine-root" >build/wine.root 2>build/wine.log &
wine=$!

# The Windows editions, whose tests are among those of this system and run under Wine. The command is built in the width
# that is installed, and with less optimization, which takes three quarters of the time; scripts/check-release.sh has the
# other width, and both as they are released.
configure windows -DKEL_COMMAND=OFF -DCMAKE_CXX_FLAGS_RELEASE=-O1
configure windows32 -DCMAKE_CXX_FLAGS_RELEASE=-O1
for preset in windows windows32; do
    cmake --build --preset "$preset" --parallel "$(nproc)"
done

widths="64;32"
wait "$wine" || widths=64
configure gnu
cmake --build --preset gnu --parallel "$(nproc)"
configure asan -DKEL_BUILD_IN_CTEST=ON -DKEL_GNU_BUILD="$PWD/build/gnu" -DKEL_WINDOWS_BUILD="$PWD/build/windows" \
    -DKEL_WINDOWS32_BUILD="$PWD/build/windows32" -DKEL_WINE_ROOT="$(cat build/wine.root)" -DKEL_WINE_WIDTHS="$widths"

# The last build is the first of the tests: those of Windows run beside it. More run at once than there are cores, since
# most of them mostly wait.
status=0
ctest --preset asan --parallel 16 "$@" || status=$?
if [ "$widths" = 64 ]; then
    tail -n 3 build/wine.log
    echo "The 32-bit Windows tests were NOT run: there is no Wine for them here. The 32-bit DLL was built and looked into."
fi
exit "$status"
