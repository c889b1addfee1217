#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Finds Wine for programs of 32 and of 64 bits, or installs it: beside this system's packages where they leave room for
# those of 32 bits, otherwise in a root of its own.
# Usage: scripts/prepare-wine.sh ROOT
# Prints nothing if this system's own Wine runs both widths, or ROOT if that is where it is; fails if neither can be had.
set -euo pipefail
cd "$(dirname "$0")/.."
root=$1

installed() { [ "$(dpkg-query -W -f='${Status}' "$1" 2>/dev/null || true)" = "install ok installed" ]; }

beside_our_packages() {
    local had_architecture=false plan
    dpkg --print-foreign-architectures | grep -qx i386 && had_architecture=true
    $had_architecture || { dpkg --add-architecture i386 && apt-get update -qq; } || true
    if plan=$(apt-get install --simulate --no-install-recommends wine32:i386 2>&1) && ! grep -q '^Remv' <<<"$plan"; then
        DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --no-install-recommends wine32:i386 >&2 && return 0
    fi
    $had_architecture || { dpkg --remove-architecture i386 && apt-get update -qq; } || true
    return 1
}

if installed wine32:i386; then
    exit 0
elif [ -e "$root/made" ]; then
    echo "$root"
elif [ "$(id -u)" -ne 0 ]; then
    echo "prepare-wine.sh: only root can install Wine for 32 bits; run this script as root once" >&2
    exit 1
elif beside_our_packages; then
    exit 0
else
    scripts/wine-root.sh make "$root" >&2
    echo "$root"
fi
