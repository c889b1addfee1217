#!/usr/bin/env bash
# Installs what is missing, builds, and reads a batch of sheets from a simulated reader behind a real pseudo-terminal.
# Usage: ./run-demo.sh [sheets] [model]
set -euo pipefail
cd "$(dirname "$0")"
sheets=${1:-12}
model=${2:-24}

echo "Building (the first time takes some minutes) ..." >&2
scripts/install-packages.sh build test
log=$(mktemp)
cleanup() {
    [ -z "${simulator:-}" ] || kill "$simulator" 2>/dev/null || true
    rm -f "$log" "${ready:-}"
}
trap cleanup EXIT
if ! { cmake --preset release && cmake --build --preset release --parallel "$(nproc)" --target kelreader; } >"$log" 2>&1
then
    cat "$log" >&2
    exit 1
fi

kelreader=build/release/bin/kelreader
ready=$(mktemp)
"$kelreader" simulate --model "$model" --seed 2024 --count "$sheets" >"$ready" &
simulator=$!
for _ in $(seq 100); do
    grep -q '"ready"' "$ready" && break
    sleep 0.1
done
device=$(sed -n 's/.*"device":"\([^"]*\)".*/\1/p' "$ready" | head -n 1)
[ -n "$device" ] || { echo "run-demo.sh: the simulated reader did not start" >&2; exit 1; }

echo "A simulated reader (model $model) waits at $device; kelreader reads $sheets sheets from it." >&2
"$kelreader" scan --model "$model" --device "$device" --max-sheets "$sheets" --set SleepTime=20 --format table
