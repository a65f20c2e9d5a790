#!/usr/bin/env bash
# Sets up, builds zolt-cli, then does Zolt's main job on a real Bruker experiment (aspirin, 1H):
# the built-in start-up script turns the FID into a phased, flattened, referenced spectrum with
# its peaks and integrals; the document is saved beside a private copy of the data with the
# peak and integral tables, and opening it again replays the processing.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
cd "$root"
bash scripts/setup.sh
cmake -S . -B build/release -DCMAKE_BUILD_TYPE=RelWithDebInfo >/dev/null
cmake --build build/release -j "$(nproc)" --target zolt-cli
cli=build/release/zolt-cli
demo=$root/build/demo
work=$demo/aspirin-1h
rm -rf "$demo"; mkdir -p "$demo/home"
cp -r build/testdata/bruker/aspirin-1h/1 "$work"
# A home of its own: the start-up script is written to its scripts folder, and the user's own
# preferences and scripts stay untouched.
export HOME=$demo/home

"$cli" info "$work"
echo
"$cli" process "$work"
echo
echo "peaks ($work/peaks.txt):"
cat "$work/peaks.txt"
echo "integrals ($work/integrals.txt):"
cat "$work/integrals.txt"
echo "saved: $work/fid.zolt"
"$cli" run -e 'local n, t = numdim() print("reopened: " .. n .. " dimension, " .. t .. " in the time domain, " .. peak() .. " peaks, " .. intreg() .. " integral regions")' "$work/fid.zolt"
