#!/usr/bin/env bash
# Sets up, builds zolt-cli, then on a real Bruker experiment (aspirin, 1H): shows what the
# reader finds, processes the FID into a phased, flattened spectrum and saves the document
# beside a private copy of the data; opening that copy again replays the processing.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
cd "$root"
bash scripts/setup.sh
cmake -S . -B build/release -DCMAKE_BUILD_TYPE=RelWithDebInfo >/dev/null
cmake --build build/release -j "$(nproc)" --target zolt-cli
cli=build/release/zolt-cli
work=build/demo/aspirin-1h
rm -rf "$work"; mkdir -p "$(dirname "$work")"
cp -r build/testdata/bruker/aspirin-1h/1 "$work"

"$cli" info "$work"
echo
"$cli" run scripts/demo.lua --save "$work"
echo "saved: $work/fid.zolt"
"$cli" run -e 'local n, t = numdim() print("reopened: " .. n .. " dimension, " .. t .. " in the time domain")' "$work"
