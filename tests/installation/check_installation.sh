#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Installs a build into an empty folder, builds the example host against what lies there, and reads sheets from a
# simulated reader with it and with the installed command.
# Usage: check_installation.sh BUILD_FOLDER SOURCE_FOLDER WORK_FOLDER
set -euo pipefail
build=$1 source=$2 work=$3
fail() { echo "check_installation.sh: $*" >&2; exit 1; }

rm -rf "$work"
mkdir -p "$work"
trap '[ -z "${simulator:-}" ] || kill "$simulator" 2>/dev/null || true' EXIT
export KELREADER_REGISTRY_DIR=$work/settings

cmake --install "$build" --prefix "$work/root" >"$work/install.log"
kelreader=$work/root/bin/kelreader
library=$(dirname "$(find "$work/root" -name 'libKELReader81U.so.*.*.*' -print -quit)")
[ -L "$kelreader" ] || fail "the command is not where it is looked for"
[ -f "$library/LKELReader81.txt" ] || fail "the language file is not beside the component"
[ -f "$work/root/share/man/man1/kelreader.1" ] || fail "the manual page is missing"
[ -f "$work/root/share/doc/KELReader81U/readers/scantron.md" ] || fail "the operators' pages are missing"
[ -f "$work/root/share/doc/KELReader81U/hosts.md" ] || fail "the hosts' page is missing"
for unit in kelreader-station kelreader-collect; do
    [ -f "$work/root/lib/systemd/system/$unit@.service" ] || fail "the unit $unit is missing"
done
[ -f "$work/root/share/kelreader/station.schema.json" ] || fail "the schema of a station's file is missing"
[ -f "$work/root/share/kelreader/message.schema.json" ] || fail "the schema of a stream's messages is missing"
if command -v systemd-analyze >/dev/null; then
    # The program is not where the units look for it, and all else has to be right.
    for unit in kelreader-station kelreader-collect; do
        wrong=$(systemd-analyze --man=no verify "$work/root/lib/systemd/system/$unit@.service" 2>&1 |
                grep "$unit" | grep -v 'is not executable' || true)
        [ -z "$wrong" ] || fail "the unit $unit is wrong: $wrong"
    done
fi

# The command and the layer for hosts use the component, and have none of their own.
for file in kelreader libKELReader81U_host.so; do
    readelf -d "$library/$file" | grep -q 'NEEDED.*libKELReader81U\.so\.[0-9]' || fail "$file does not load the component"
done

# A host can use what the public headers declare, and nothing else.
python3 -B "$source/tests/installation/exports.py" "$work/root/include" "$library"/libKELReader81U{,_host}.so.?.?.? ||
    fail "the headers and the libraries do not agree"

# Hosts of the last release find everything as it was.
python3 -B "$source/tests/installation/interface.py" "$work/root/include" "$library"/libKELReader81U.so.?.?.? ||
    fail "the binary interface has changed"

# The texts come from the installed language file, and the remote lines' module is found.
"$kelreader" models --format csv | grep -q 'Scantron Scanmark 2500' || fail "the installed command lists no models"
remote=$("$kelreader" scan --model 24 --device tcp:127.0.0.1:1 --max-sheets 1 2>&1 || true)
case "$remote" in *'"number":80'*) ;; *) fail "a remote line is not tried: $remote" ;; esac

# So is the module with a station's page, where it was built.
if [ -e "$build/bin/libKELReader81U_web.so" ]; then
    echo '{"store": "x.db", "page": {"port": 0}, "readers": [{"name": "a", "model": 13, "simulate": {}}]}' >"$work/station.json"
    "$kelreader" station --check "$work/station.json" >/dev/null || fail "a station with a page is refused"
fi

# Hosts built against the package by each compiler, with nothing of ours on their path but one folder.
for compiler in g++ clang++; do
    cmake -S "$source/examples" -B "$work/host-$compiler" -G Ninja -DCMAKE_PREFIX_PATH="$work/root" \
          -DCMAKE_CXX_COMPILER="$compiler" -DCMAKE_CXX_COMPILER_LAUNCHER=ccache \
          -DCMAKE_CXX_FLAGS="-Wall -Wextra -Wpedantic -Werror" >"$work/configure.log"
    cmake --build "$work/host-$compiler" >"$work/build.log" || { cat "$work/build.log" >&2; exit 1; }
done
[ "$(ls "$work/root/include")" = KELReader81U ] || fail "hosts get more than one folder: $(ls "$work/root/include")"

# The headers by themselves, whichever comes first; and the same through pkg-config.
export PKG_CONFIG_PATH=$(dirname "$(find "$work/root" -name KELReader81U.pc -print -quit)")
read -ra described <<<"$(pkg-config --cflags KELReader81U)"
(cd "$work/root/include" && find KELReader81U -name '*.h') >"$work/headers"
for compiler in g++ clang++; do
    sed 's/.*/#include <&>\n#include <&>/' "$work/headers" >"$work/headers.cpp"
    "$compiler" "${described[@]}" -Wall -Wextra -Wpedantic -Werror -fsyntax-only "$work/headers.cpp" ||
        fail "$compiler refuses the headers"
done
# A header that another one includes before all else stands by itself if that one does.
first_included() {
    local header first
    while read -r header; do
        first=$(grep -m 1 '^#include' "$work/root/include/$header" || true)
        case $first in
            *'"'*) first=${first#*\"}
                   realpath --relative-to="$work/root/include" "$work/root/include/$(dirname "$header")/${first%\"*}" ;;
        esac
    done
}
first_included <"$work/headers" >"$work/first_included"
grep -vxFf "$work/first_included" "$work/headers" >"$work/by_themselves"
while read -r header; do
    echo "#include <$header>" | g++ "${described[@]}" -Werror -fsyntax-only -x c++ - ||
        fail "$header does not stand by itself"
done <"$work/by_themselves"

# An ALS AccelScan: its driver waits for what comes, however late that is on a busy machine.
read_with_hosts() {
    "$kelreader" simulate --model 22 --seed 5 --count 3 --rate unlimited >"$work/simulate.log" &
    simulator=$!
    for _ in $(seq 6000); do
        grep -q '"ready"' "$work/simulate.log" && break
        kill -0 "$simulator" 2>/dev/null || break
        sleep 0.1
    done
    device=$(sed -n 's/.*"device":"\([^"]*\)".*/\1/p' "$work/simulate.log" | head -n 1)
    [ -n "$device" ] || fail "the simulated reader did not start"
    "$kelreader" ports set 1 "$device" >/dev/null
    "$1/read_batch" 22 3 >"$work/sheets.txt" || fail "$1/read_batch ended with an error"
    [ "$(grep -c '^Sheet ' "$work/sheets.txt")" = 3 ] || fail "$1/read_batch read: $(cat "$work/sheets.txt")"
    kill "$simulator" 2>/dev/null && wait "$simulator" || true
    simulator=

    "$1/read_sheets" 22 simulated 2 >"$work/range.txt" || fail "$1/read_sheets ended with an error"
    [ "$(grep -c '^Sheet ' "$work/range.txt")" = 2 ] || fail "$1/read_sheets read: $(cat "$work/range.txt")"
}
read_with_hosts "$work/host-g++"
read_with_hosts "$work/host-clang++"

# The Python package, if it was built.
read_with_python() {
    PYTHONPATH=$1 /usr/bin/python3 -B -c '
import kelreader
with kelreader.simulate("AccelScan", count=2, options=["feed-ms=0"]) as simulated:
    with simulated.reader(timeout=600) as reader:
        assert [sheet.side1.shape for sheet in reader] == [(128, 12)] * 2
assert kelreader.__file__.startswith("'"$1"'"), kelreader.__file__'
}
packages=lib/python3/dist-packages
[ ! -d "$build/python/kelreader" ] || read_with_python "$work/root/$packages" || fail "the installed Python package"

# The Debian packages: what they bring works from where they put it.
(cd "$build" && cpack -G DEB -B "$work/packages" >"$work/cpack.log") || { cat "$work/cpack.log" >&2; exit 1; }
for package in "$work"/packages/*.deb; do
    dpkg-deb -x "$package" "$work/debian"
done
"$work/debian/usr/bin/kelreader" models --format csv | grep -q 'Scantron Scanmark 2500' || fail "the packaged command"
dpkg-deb -e "$work"/packages/kelreader81u_*.deb "$work/control"
python3 -B "$source/tests/installation/package.py" "$work/debian" "$work/control" || fail "the services of the package"
[ -f "$work/debian/usr/lib/kelreader81u/libKELReader81U_options_qt.so" ] || fail "the options window is in no package"
[ ! -d "$build/python/kelreader" ] || read_with_python "$work/debian/usr/$packages" || fail "the packaged Python package"
dpkg-deb -I "$work"/packages/kelreader81u_*.deb triggers | grep -q ldconfig || fail "the linker would not be told"
echo "installed, built against, packaged and read"
