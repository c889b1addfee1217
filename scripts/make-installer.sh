#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Makes the installer for Windows of the editions of both widths.
# Usage: scripts/make-installer.sh BUILD64 BUILD32 OUTPUT.exe [VERSION]   (VERSION is that of the builds)
# KEL_SIGN names a command that signs the file whose name follows it: each DLL, the uninstaller and the installer.
set -euo pipefail
cd "$(dirname "$0")/.."
build64=$1 build32=$2 output=$(realpath -m "$3")
version=${4:-$(sed -n 's/^CMAKE_PROJECT_VERSION:STATIC=//p' "$build64/CMakeCache.txt")}

files=$(mktemp -d)
trap 'rm -rf "$files"' EXIT
pack() {
    mkdir -p "$files/$1"
    cp "$2/bin/KELReader81U.dll" "$2/bin/KELReader81U.manifest" "$2/bin/LKELReader81.txt" "$files/$1/"
    "$3-w64-mingw32-strip" "$files/$1/KELReader81U.dll"
    [ -z "${KEL_SIGN:-}" ] || $KEL_SIGN "$files/$1/KELReader81U.dll"
}
pack 64 "$build64" x86_64
pack 32 "$build32" i686
mkdir "$files/docs" "$files/examples" "$files/development"
cp LICENSE "$files/LICENSE.txt"
cp docs/windows.md "$files/docs/"
cp -r docs/readers "$files/docs/readers"
rm -rf "$files/docs/readers/advice"
cp examples/windows/ReadBatch.cpp examples/windows/ReadSheets.* "$files/examples/"
cp com/KELReader81U.idl "$build64/com/generated/KELReader81U.tlb" "$build64/com/generated/KELReader81U.h" "$files/development/"

makensis -V2 -INPUTCHARSET UTF8 -DVERSION="$version" -DFILES="$files" -DOUTPUT="$output" \
    ${KEL_SIGN:+-DSIGN="$KEL_SIGN"} installer/KELReader81U.nsi
