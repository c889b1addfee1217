#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Installs what is missing, builds, and reads a batch of sheets from a simulated reader at the far end of a real
# pseudo-terminal.
# Usage: ./run-demo.sh [--model NUMBER|NAME] [--sheets N]
# Any model will do; a USB model is read through the simulated library of its maker.
set -euo pipefail
cd "$(dirname "$0")"
sheets=12
model=13
while [ $# -gt 0 ]; do
    case "$1" in
        --model) model=${2:?--model needs a number or a name}; shift 2 ;;
        --sheets) sheets=${2:?--sheets needs a number}; shift 2 ;;
        *) echo "run-demo.sh: unknown word '$1'; try --model NUMBER|NAME or --sheets N" >&2; exit 2 ;;
    esac
done
[[ $sheets =~ ^[1-9][0-9]{0,5}$ ]] || {
    echo "run-demo.sh: --sheets takes a number from 1 to 999999, and not '$sheets'" >&2
    exit 2
}

log=$(mktemp)
cleanup() {
    [ -z "${simulator:-}" ] || { kill "$simulator" && wait "$simulator"; } 2>/dev/null || true
    rm -f "$log" "$log.failed" "${ready:-}" "${form:-}"
}
trap cleanup EXIT

echo "Building; the first time takes about two minutes." >&2
scripts/install-packages.sh demo
cmake --preset demo >"$log" 2>&1 || { cat "$log" >&2; exit 1; }
# In a terminal the build shows its own progress; elsewhere a line every tenth of the way.
build() { NINJA_STATUS='[%p] ' cmake --build --preset demo --parallel "$(nproc)" --target kelreader; }
if [ -t 2 ]; then
    build >&2
else
    shown=-10
    { build 2>&1 || touch "$log.failed"; } | while IFS= read -r said; do
        echo "$said" >>"$log"
        [[ $said =~ ^\[\ *([0-9]+)% ]] && ((BASH_REMATCH[1] >= shown + 10)) || continue
        shown=$((BASH_REMATCH[1] / 10 * 10))
        echo "$shown%" >&2
    done
    if [ -e "$log.failed" ]; then
        cat "$log" >&2
        exit 1
    fi
fi

kelreader=build/demo/bin/kelreader
ready=$(mktemp)
form=$(mktemp)
echo '{"side1Rows":[20],"side1Cols":[48],"side2Rows":[0],"side2Cols":[0]}' >"$form"
"$kelreader" simulate --model "$model" --form "$form" --seed 2024 --count "$sheets" >"$ready" &
simulator=$!
for _ in $(seq 6000); do
    grep -q '"ready"' "$ready" && break
    kill -0 "$simulator" 2>/dev/null || exit 1 # it has said why
    sleep 0.1
done
where() { sed -n "s/.*\"ready\".*\"$1\":\"\([^\"]*\)\".*/\1/p" "$ready" | head -n 1; }
device=$(where device)
library=$(where library)
if [ -n "$device" ]; then
    reader=(--device "$device")
elif [ -n "$library" ]; then
    reader=(--omrapi "$library")
else
    echo "run-demo.sh: the simulated reader did not start" >&2
    exit 1
fi

echo "A simulated reader (model $model) waits at ${reader[1]}; kelreader reads $sheets sheets from it." >&2
"$kelreader" scan --model "$model" "${reader[@]}" --form "$form" --max-sheets "$sheets" --set SleepTime=20 --format table
