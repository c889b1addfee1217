#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# What is too long for every run of the tests, before a release. Each part prints what it counted, and ends the script
# when it fails.
# Usage: scripts/check-release.sh [pty] [sweep] [cycles] [scarce] [threads] [gnu] [stream] [windows] [demo] [fuzz]
#        [tidy] (default: all)
#
#   pty      all sessions over a pseudo-terminal and with hostile servers; the tests run a sample of them
#   sweep    a reader that is unplugged, falls silent or sends a wrong byte, at every byte of a short session
#   cycles   ten thousand starts and ends of a session a family, under the leak checker
#   scarce   the command with little memory, no room for files, no threads, no descriptors, no processor time
#   threads  64 threads at once under the thread sanitizer
#   gnu      faults of the processor and the Python package, in code of g++ under the sanitizers
#   stream   a station that is killed 200 times while it stores and sends 10,000 sheets, and three servers of a stream that
#            are killed, frozen and stopped in ten rounds; KEL_KILLS, KEL_SHEETS and KEL_ROUNDS are other numbers
#   windows  the tests of both Windows editions as they are released, which is with more optimization than the tests build
#            them, and with the command in 64 bits too
#   demo     the demo: its build and twelve sheets
#   fuzz     the replay with inputs of a megabyte; ten minutes of each fuzz target, or KEL_FUZZ_SECONDS, with limits of
#            length, time and memory
#   tidy     clang-tidy on all sources, each by itself; the tests look at changed ones only
set -euo pipefail
cd "$(dirname "$0")/.."

fail() { echo "check-release.sh: $*" >&2; exit 1; }
all=(pty sweep cycles scarce threads gnu stream windows demo fuzz tidy)
parts=("${@:-${all[@]}}")

# Configures a preset, and builds some of its targets.
build() {
    local preset=$1 log=build/check-release-$1.log
    shift
    mkdir -p build
    { cmake --preset "$preset" && cmake --build --preset "$preset" --parallel "$(nproc)" --target "$@"; } >"$log" 2>&1 ||
        { tail -n 40 "$log" >&2; fail "$preset does not build"; }
}

# Runs tests in full and in shards side by side, and adds up what they counted.
long_tests() {
    local filter=$1 shards=$2 logs failed=0 processes=()
    build asan kel_tests
    logs=$(mktemp -d)
    for ((shard = 0; shard < shards; ++shard)); do
        KEL_LONG_TESTS=1 GTEST_TOTAL_SHARDS=$shards GTEST_SHARD_INDEX=$shard build/asan/bin/kel_tests \
            --gtest_brief=1 --gtest_filter="$filter" >"$logs/$shard" 2>&1 &
        processes+=($!)
    done
    for process in "${processes[@]}"; do wait "$process" || failed=1; done
    [ $failed -eq 0 ] || { grep -hv '^counted: ' "$logs"/* >&2; fail "$filter failed; the logs are in $logs"; }
    cat "$logs"/* | awk '
        /^\[  PASSED  \]/ { tests += $4 }
        /^counted: /      { n = $2; $1 = $2 = ""; counts[$0] += n }
        END { print "  " tests " tests"; for (what in counts) print "  " counts[what] what }'
    rm -r "$logs"
}

# Sessions over a pseudo-terminal mostly wait: there are more shards than cores.
check_pty() { long_tests '*OverAPseudoTerminal*:*Hostile*:-*FaultSweep*' 8; }
check_sweep() { long_tests '*FaultSweep*' 8; }
check_cycles() { long_tests '*StartAndEndCycles*' "$(nproc)"; }
check_scarce() {
    build release kelreader
    python3 -B scripts/check_scarce_systems.py build/release/bin/kelreader
}
check_threads() {
    build tsan kel_thread_stress
    TSAN_OPTIONS=halt_on_error=1 build/tsan/bin/kel_thread_stress
}
check_gnu() {
    local folder=build/gnu-sanitized log=build/check-release-gnu.log
    { cmake --preset gnu -B "$folder" -DKEL_SANITIZE=address,undefined &&
        cmake --build "$folder" --parallel "$(nproc)" && ctest --test-dir "$folder"; } >"$log" 2>&1 ||
        { tail -n 40 "$log" >&2; fail "the code of g++ fails; the log is $log"; }
    echo "  $(grep 'tests passed' "$log")"
}
check_stream() {
    local log sheets=${KEL_SHEETS:-10000}
    log=$(mktemp)
    build release kelreader
    counted() {
        python3 -B "$@" >"$log" 2>&1 || { tail -n 40 "$log" >&2; fail "$1 has found something; its output is in $log"; }
        sed 's/^/  /;$!d' "$log"
    }
    counted scripts/kill_stations.py build/release/bin/kelreader --stream --sheets "$sheets" --kills "${KEL_KILLS:-200}"
    counted scripts/kill_streams.py build/release/bin/kelreader --readers 16 --sheets $((sheets / 16)) \
        --rounds "${KEL_ROUNDS:-10}"
    rm "$log"
}
check_windows() {
    cmake --preset windows -DKEL_COMMAND=ON >/dev/null
    build windows all
    build windows32 all
    cmake --preset asan -DKEL_WINDOWS_BUILD="$PWD/build/windows" -DKEL_WINDOWS32_BUILD="$PWD/build/windows32" >/dev/null
    build asan kelreader
    ctest --preset asan -R '^Windows' --parallel 4
}
check_demo() {
    local log
    log=$(mktemp)
    ./run-demo.sh --sheets 12 >"$log" 2>&1 || { tail -n 40 "$log" >&2; fail "the demo fails; its output is in $log"; }
    echo "  $(grep -c '^Sheet ' "$log") sheets"
    rm "$log"
}
check_fuzz() {
    scripts/install-packages.sh fuzz
    local found name
    found=$(mktemp -d)
    build asan fuzz_replay
    KEL_LONG_TESTS=1 build/asan/bin/fuzz_replay --gtest_brief=1 >"$found/replay.log" 2>&1 ||
        { tail -n 40 "$found/replay.log" >&2; fail "the replay fails; its log is in $found"; }
    echo "  $(grep -o 'PASSED.*' "$found/replay.log") of the replay"
    build fuzz all
    for target in fuzz/*_fuzz.cpp; do
        name=$(basename "$target" .cpp)
        mkdir -p "$found/$name"
        # An input of a megabyte takes its time under the sanitizers; one that takes minutes is a find.
        build/fuzz/bin/"$name" -max_total_time="${KEL_FUZZ_SECONDS:-600}" -max_len=1048576 -timeout=120 \
            -rss_limit_mb=2048 -detect_leaks=0 -artifact_prefix="$found/$name-" "$found/$name" \
            "fuzz/corpus/${name%_fuzz}" >"$found/$name.log" 2>&1 ||
            { tail -n 40 "$found/$name.log" >&2; fail "$name has found something; it is in $found"; }
        echo "  $name: $(grep -o 'Done [0-9]* runs' "$found/$name.log" | tail -n 1)"
    done
    rm -r "$found"
}
check_tidy() {
    build asan all
    build gnu all
    cmake --preset windows -DKEL_COMMAND=ON >/dev/null
    build windows all
    KEL_TIDY=all KEL_BUILDS="$PWD/build/asan:$PWD/build/gnu:$PWD/build/windows" python3 -B tests/test_style.py
}

for part in "${parts[@]}"; do
    declare -F "check_$part" >/dev/null ||
        fail "there is no part '$part'; there are ${all[*]}"
done
scripts/install-packages.sh build test
for part in "${parts[@]}"; do
    echo "$part:"
    "check_$part"
done
echo "all of it is well"
