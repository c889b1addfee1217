#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Installs the Debian packages that building, testing and the demo need. Does nothing when all are there.
# Usage: scripts/install-packages.sh [demo] [build] [test] [coverage] [fuzz] [windows]   (default: build test)
set -euo pipefail

demo=(g++ cmake ninja-build pkg-config python3 libserialport-dev libsqlite3-dev libcli11-dev nlohmann-json3-dev)
build=("${demo[@]}" ccache libgensio-dev libnats-dev libcpp-httplib-dev libcrypt-dev qt6-base-dev python3-dev pybind11-dev python3-numpy)
test=(abigail-tools libgtest-dev libgmock-dev libbenchmark-dev fonts-dejavu-core ser2net nats-server openssl dpkg-dev file
      doxygen locales clang libclang-rt-dev llvm clang-format clang-tidy chromium chromium-driver librsvg2-bin
      python3-selenium python3-pytest python3-pandas mypy)
coverage=(gcovr)
fuzz=(clang libclang-rt-dev llvm)
windows=(g++-mingw-w64-x86-64-posix g++-mingw-w64-i686-posix mingw-w64-tools wine64 wine googletest xvfb mmdebstrap nsis
         wixl msitools mono-mcs libmono-microsoft-csharp4.0-cil)

wanted=()
for group in "${@:-build test}"; do
    for name in $group; do
        case "$name" in
            demo) wanted+=("${demo[@]}") ;;
            build) wanted+=("${build[@]}") ;;
            test) wanted+=("${test[@]}") ;;
            coverage) wanted+=("${coverage[@]}") ;;
            fuzz) wanted+=("${fuzz[@]}") ;;
            windows) wanted+=("${windows[@]}") ;;
            *) echo "install-packages.sh: unknown group '$name'; try demo, build, test, coverage, fuzz or windows" >&2; exit 2 ;;
        esac
    done
done

missing=()
for package in "${wanted[@]}"; do
    status=$(dpkg-query -W -f='${Status}' "$package" 2>/dev/null || true)
    [ "$status" = "install ok installed" ] || missing+=("$package")
done
[ ${#missing[@]} -gt 0 ] || exit 0

as_root=()
if [ "$(id -u)" -ne 0 ]; then
    command -v sudo >/dev/null || { echo "install-packages.sh: needs root to install: ${missing[*]}" >&2; exit 1; }
    as_root=(sudo)
fi
echo "Installing ${missing[*]}" >&2
export DEBIAN_FRONTEND=noninteractive
# A mirror that changes its index meanwhile is no reason to stop: what it has had before is there.
"${as_root[@]}" apt-get update -qq || echo "install-packages.sh: the index of packages is not up to date" >&2
"${as_root[@]}" apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
