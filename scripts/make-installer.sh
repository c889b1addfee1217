#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Makes the installer for Windows of the editions of both widths: a program that asks, or a package for administrators.
# Usage: scripts/make-installer.sh BUILD64 BUILD32 OUTPUT.exe|OUTPUT.msi [VERSION]   (VERSION is that of the builds)
# KEL_SIGN names a command that signs the file whose name follows it: each DLL and program, the uninstaller, the installer.
set -euo pipefail
cd "$(dirname "$0")/.."
build64=$1 build32=$2 output=$(realpath -m "$3")
version=${4:-$(sed -n 's/^CMAKE_PROJECT_VERSION:STATIC=//p' "$build64/CMakeCache.txt")}

files=$(mktemp -d)
trap 'rm -rf "$files"' EXIT
pack() {
    mkdir -p "$files/$1"
    cp "$2/bin/KELReader81U.dll" "$2/bin/KELReader81U.manifest" "$2/bin/LKELReader81.txt" "$files/$1/"
    cp "$2/bin/ReadBatch.exe" "$2/ReadBatch.exe.manifest" "$files/$1/"
    # One command serves all: that of 32 bits, which alone can load the library of the USB readers' maker.
    if [ "$1" = 32 ]; then
        mkdir "$files/$1/simulated"
        cp "$2/bin/kelreader.exe" "$files/$1/"
        cp "$2/bin/simulated/OMRAPI.dll" "$files/$1/simulated/"
    fi
    find "$files/$1" \( -name '*.dll' -o -name '*.exe' \) -print | while read -r image; do
        "$3-w64-mingw32-strip" "$image"
        [ -z "${KEL_SIGN:-}" ] || $KEL_SIGN "$image"
    done
}
pack 64 "$build64" x86_64
pack 32 "$build32" i686
mkdir "$files/docs" "$files/examples" "$files/development"
cp LICENSE "$files/LICENSE.txt"
cp docs/windows.md "$files/docs/"
cp -r docs/readers "$files/docs/readers"
rm -rf "$files/docs/readers/advice"
cp examples/windows/* "$files/examples/"
rm "$files/examples/CMakeLists.txt" "$files/examples"/*.in
cp com/KELReader81U.idl "$build64/com/generated/KELReader81U.tlb" "$build64/com/generated/KELReader81U.h" "$files/development/"

make_program() {
    makensis -V2 -INPUTCHARSET UTF8 -DVERSION="$version" -DFILES="$files" -DOUTPUT="$output" \
        ${KEL_SIGN:+-DSIGN="$KEL_SIGN"} installer/KELReader81U.nsi
}

# The files of $files that a `find` expression chooses, as a part of the package: $1 its name, $2 its width.
package_part() {
    local name=$1 width=$2
    shift 2
    (cd "$files" && find . -type f "$@" -printf '%P\n') | sort |
        wixl-heat --prefix '' --directory-ref INSTALLDIR --component-group "$name" --var var.FILES --win64 |
        # The two DLLs get names, by which they are registered.
        sed "s|Id=\"fil[0-9A-F]*\" \(.*/$width/KELReader81U.dll\"\)|Id=\"Dll$width\" \1|" >"$parts/$name.wxs"
}

make_package() {
    parts=$(mktemp -d)
    trap 'rm -rf "$files" "$parts"' EXIT
    package_part FilesOf64Bits 64 -path './64/*'
    package_part OtherFiles 32 -not -path './64/*'
    sed -i 's/\$(var.Win64)/yes/' "$parts/FilesOf64Bits.wxs"
    sed -i 's/\$(var.Win64)/no/' "$parts/OtherFiles.wxs"
    cp installer/KELReader81U.wxs "$parts"
    # It takes files from below the folder that it runs in.
    (cd "$files" && wixl -a x64 -D VERSION="$version" -D FILES=. -o "$output" "$parts"/*.wxs)
    cp installer/SelfReg.idt installer/Environment.idt "$parts"
    msibuild "$output" -i "$parts/SelfReg.idt" -i "$parts/Environment.idt"
    for step in "SelfUnregModules 2200" "RemoveEnvironmentStrings 3300" "WriteEnvironmentStrings 5200" "SelfRegModules 5600"; do
        msibuild "$output" -q \
            "INSERT INTO \`InstallExecuteSequence\` (\`Action\`, \`Sequence\`) VALUES ('${step% *}', ${step#* })"
    done
    [ -z "${KEL_SIGN:-}" ] || $KEL_SIGN "$output"
}

case "$output" in
    *.msi) make_package ;;
    *) make_program ;;
esac
