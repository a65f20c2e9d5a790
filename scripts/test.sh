#!/usr/bin/env bash
# Sets up, builds and runs every test: once plainly, once under AddressSanitizer and
# UndefinedBehaviorSanitizer, then each fuzz target for a short while.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
cd "$root"
bash scripts/setup.sh
jobs=$(nproc)

cmake -S . -B build/release -DCMAKE_BUILD_TYPE=RelWithDebInfo >/dev/null
cmake --build build/release -j "$jobs"
summary=$(mktemp)
(cd build/release && ctest --output-on-failure -j "$jobs" | tee -a "$summary")

cmake -S . -B build/asan -DCMAKE_BUILD_TYPE=Debug -DZOLT_SANITIZE=ON -DZOLT_GUI=OFF -DZOLT_BENCH=OFF >/dev/null
cmake --build build/asan -j "$jobs"
(cd build/asan && ASAN_OPTIONS=detect_leaks=1 UBSAN_OPTIONS=print_stacktrace=1 \
    ctest --output-on-failure -j "$jobs" | tee -a "$summary")

bash scripts/fuzz.sh 20

# Both runs passed (set -o pipefail stops the script otherwise): one closing line for both.
total=$(grep -oE 'tests failed out of [0-9]+' "$summary" | awk '{s += $5} END {print s}')
rm -f "$summary"
echo "tests: $total passed, 0 failed"
