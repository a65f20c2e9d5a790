#!/usr/bin/env bash
# Sets up, builds zolt-cli and shows what it reads from a real Bruker experiment.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
cd "$root"
bash scripts/setup.sh
cmake -S . -B build/release -DCMAKE_BUILD_TYPE=RelWithDebInfo >/dev/null
cmake --build build/release -j "$(nproc)" --target zolt-cli
build/release/zolt-cli info build/testdata/bruker/aspirin-1h/1
