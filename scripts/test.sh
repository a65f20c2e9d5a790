#!/usr/bin/env bash
# Sets up, builds and runs every test: once plainly (GCC), once built by clang under
# AddressSanitizer and UndefinedBehaviorSanitizer (with float-cast-overflow, which GCC's
# sanitizer lacks; any finding stops the test), then each fuzz target for a short while.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
cd "$root"
bash scripts/setup.sh
jobs=$(nproc)

cmake -S . -B build/release -DCMAKE_BUILD_TYPE=RelWithDebInfo >/dev/null
cmake --build build/release -j "$jobs"
summary=$(mktemp)
(cd build/release && ctest --output-on-failure -j "$jobs" | tee -a "$summary")

CC=clang CXX=clang++ cmake -S . -B build/sanitize -DCMAKE_BUILD_TYPE=Debug -DZOLT_SANITIZE=ON \
    -DZOLT_GUI=OFF -DZOLT_BENCH=OFF >/dev/null
cmake --build build/sanitize -j "$jobs"
(cd build/sanitize && ASAN_OPTIONS=detect_leaks=1 UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1 \
    ctest --output-on-failure -j "$jobs" | tee -a "$summary")

bash scripts/fuzz.sh 20

# Both runs passed (set -o pipefail stops the script otherwise): one closing line for both.
total=$(grep -oE 'tests failed out of [0-9]+' "$summary" | awk '{s += $5} END {print s}')
rm -f "$summary"
echo "tests: $total passed, 0 failed"
