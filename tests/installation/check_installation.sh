#!/usr/bin/env bash
# Installs a build into an empty folder, builds the example host against what lies there, and reads sheets from a
# simulated reader with it and with the installed command.
# Usage: check_installation.sh BUILD_FOLDER SOURCE_FOLDER WORK_FOLDER [COMPILER_FLAGS]
set -euo pipefail
build=$1 source=$2 work=$3 flags=${4:-}
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

# A host sees the public classes and nothing else.
hidden=$(nm -D --defined-only -C "$library"/libKELReader81U.so.?.?.? | grep -v ' A KELReader81U_' | cut -d' ' -f3- |
         grep -vE '^((typeinfo( name)?|vtable) for |non-virtual thunk to )?kel::|^__odr_asan' || true)
[ -z "$hidden" ] || fail "symbols that are nobody's business: $hidden"

# The texts come from the installed language file, and the remote lines' module is found.
"$kelreader" models --format csv | grep -q 'Scantron Scanmark 2500' || fail "the installed command lists no models"
remote=$("$kelreader" scan --model 24 --device tcp:127.0.0.1:1 --max-sheets 1 2>&1 || true)
case "$remote" in *'"number":80'*) ;; *) fail "a remote line is not tried: $remote" ;; esac

# A host built against the package.
cmake -S "$source/examples" -B "$work/host" -G Ninja -DCMAKE_PREFIX_PATH="$work/root" \
      -DCMAKE_CXX_COMPILER_LAUNCHER=ccache -DCMAKE_CXX_FLAGS="$flags" >"$work/configure.log"
cmake --build "$work/host" >"$work/build.log" || { cat "$work/build.log" >&2; exit 1; }

# The same through pkg-config.
export PKG_CONFIG_PATH=$(dirname "$(find "$work/root" -name KELReader81U.pc -print -quit)")
read -ra described <<<"$(pkg-config --cflags KELReader81U) $flags"
ccache c++ "${described[@]}" -fsyntax-only "$source/examples/read_batch.cpp"

"$kelreader" simulate --model 24 --seed 5 --count 3 --rate unlimited >"$work/simulate.log" &
simulator=$!
for _ in $(seq 100); do
    grep -q '"ready"' "$work/simulate.log" && break
    sleep 0.1
done
device=$(sed -n 's/.*"device":"\([^"]*\)".*/\1/p' "$work/simulate.log" | head -n 1)
[ -n "$device" ] || fail "the simulated reader did not start"
"$kelreader" ports set 1 "$device" >/dev/null
"$work/host/read_batch" 24 3 >"$work/sheets.txt" || fail "the host program ended with an error"
[ "$(grep -c '^Sheet ' "$work/sheets.txt")" = 3 ] || fail "the host program read: $(cat "$work/sheets.txt")"

# The Debian packages: what they bring works from where they put it.
(cd "$build" && cpack -G DEB -B "$work/packages" >"$work/cpack.log") || { cat "$work/cpack.log" >&2; exit 1; }
for package in "$work"/packages/*.deb; do
    dpkg-deb -x "$package" "$work/debian"
done
"$work/debian/usr/bin/kelreader" models --format csv | grep -q 'Scantron Scanmark 2500' || fail "the packaged command"
[ -f "$work/debian/usr/lib/kelreader81u/libKELReader81U_options_qt.so" ] || fail "the options window is in no package"
dpkg-deb -I "$work"/packages/kelreader81u_*.deb triggers | grep -q ldconfig || fail "the linker would not be told"
echo "installed, built against, packaged and read"
