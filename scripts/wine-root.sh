#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Wine for both widths in a root of its own, for a machine whose packages leave no room for those of 32 bits.
# Usage: scripts/wine-root.sh make ROOT                        a Debian of about 1 GB, made once
#        scripts/wine-root.sh run ROOT PROGRAM [ARGUMENT ...]  a program in it
#
# The program sees this folder, /tmp, /proc and /dev as they are here. Nothing stays mounted: the mounts are those of a
# namespace that ends with the program.
set -euo pipefail
here=$(cd "$(dirname "$0")/.." && pwd)
task=$1 root=$2
shift 2

in_root() {
    exec unshare --mount sh -c '
        mount --make-rprivate /
        for folder in /proc /dev /tmp "$2"; do
            mkdir -p "$1$folder" && mount --rbind "$folder" "$1$folder"
        done
        folder=$PWD root=$1
        shift 2
        exec chroot "$root" sh -c "cd \"\$1\" && shift && exec \"\$@\"" sh "$folder" "$@"' sh "$root" "$here" "$@"
}

make() {
    [ ! -e "$root/made" ] || return 0
    [ "$(id -u)" -eq 0 ] || { echo "wine-root.sh: only root makes a root" >&2; return 1; }
    rm -rf "$root"
    mkdir -p "$root"
    mirror=$(grep -rhsoE 'https?://[^ ]*debian\.org/debian/?( |$)' /etc/apt/sources.list /etc/apt/sources.list.d | head -n 1 || true)
    debootstrap --arch=i386 --variant=minbase bookworm "$root" "${mirror:-http://deb.debian.org/debian}"
    cp /etc/resolv.conf "$root/etc/"
    printf '#!/bin/sh\nexit 101\n' >"$root/usr/sbin/policy-rc.d" # no service starts
    chmod +x "$root/usr/sbin/policy-rc.d"
    (in_root sh -c '
        export DEBIAN_FRONTEND=noninteractive LC_ALL=C.UTF-8
        dpkg --add-architecture amd64 || exit
        # An index that a mirror replaces meanwhile does not fit its checksum.
        for pause in 10 20 40 end; do
            ! apt-get -qq update --error-on=any || break
            [ "$pause" != end ] && sleep "$pause" || exit 1
        done
        apt-get -qq install -y --no-install-recommends wine wine32:i386 wine64:amd64 && apt-get clean')
    touch "$root/made"
}

case "$task" in
    make) make ;;
    run) in_root "$@" ;;
    *) echo "wine-root.sh: unknown task '$task'; try make or run" >&2; exit 2 ;;
esac
