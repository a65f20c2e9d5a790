#!/usr/bin/env bash
# Builds the libFuzzer targets with clang and runs each for the given number of seconds;
# undefined behaviour, like a crash or a leak, stops the run and fails the script.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
seconds=${1:-20}
cd "$root"
CC=clang CXX=clang++ cmake -S . -B build/fuzz -DCMAKE_BUILD_TYPE=RelWithDebInfo -DZOLT_FUZZ=ON \
    -DZOLT_GUI=OFF -DZOLT_BENCH=OFF >/dev/null
for src in fuzz/*.cpp; do
    [ -e "$src" ] || continue
    name=$(basename "$src" .cpp)
    cmake --build build/fuzz -j "$(nproc)" --target "$name"
    corpus="build/fuzz/corpus/$name"; mkdir -p "$corpus"
    seeds="fuzz/seeds/$name"
    echo "fuzz: $name for ${seconds}s"
    UBSAN_OPTIONS=halt_on_error=1:print_stacktrace=1 \
        "build/fuzz/$name" -max_total_time="$seconds" -rss_limit_mb=2048 -timeout=10 \
        "$corpus" $( [ -d "$seeds" ] && echo "$seeds" ) 2>&1 | tail -n 2
done
