#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Wine for both widths in a root of its own, for a machine whose packages leave no room for those of 32 bits.
# Usage: scripts/wine-root.sh make ROOT                        Wine and its libraries, 1.3 GB, made once
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
    mkdir -p "$(dirname "$root")"
    mirror=$(grep -rhsoE 'https?://[^ ]*debian\.org/debian/?( |$)' /etc/apt/sources.list /etc/apt/sources.list.d | head -n 1 || true)
    mirror=${mirror:-http://deb.debian.org/debian}
    # Programs find their libraries as they lie; only Wine's set something up. An index that a mirror replaces meanwhile
    # does not fit its checksum.
    for pause in 10 20 40 end; do
        ! mmdebstrap --quiet --variant=extract --architectures=amd64,i386 \
            --include=coreutils,dash,libc-bin,wine64:amd64,wine32:i386 \
            --extract-hook='for package in "$1"/var/cache/apt/archives/libwine_*.deb; do
                dpkg-deb --info "$package" postinst | chroot "$1" sh -s configure || exit
            done' bookworm "$root" "${mirror% }" || break
        rm -rf "$root"
        [ "$pause" != end ] && sleep "$pause" || return 1
    done
    cp /etc/passwd "$root/etc/"
    touch "$root/made"
}

case "$task" in
    make) make ;;
    run) in_root "$@" ;;
    *) echo "wine-root.sh: unknown task '$task'; try make or run" >&2; exit 2 ;;
esac
