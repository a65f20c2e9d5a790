#!/usr/bin/env bash
# Pictures of two test sets for looking at the plots: the aspirin proton spectrum after the
# start-up script (peak labels, integral curves and values) and the cyclosporin HSQC (positive
# and negative contours), as PNG, PDF and SVG in build/pictures/.
# usage: scripts/pictures.sh [BUILD_DIR]   (default build/release)
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
build=${1:-$root/build/release}
data=${ZOLT_TESTDATA_DIR:-$root/build/testdata}/bruker
out=$root/build/pictures
mkdir -p "$out"
cli=$build/zolt-cli
# The start-up script processes the FID as opening new data in the program does.
"$cli" plot --auto --size 1600x900 --out "$out/aspirin-1h.png" \
    -e "picture('$out/aspirin-1h.pdf', 'PDF ') picture('$out/aspirin-1h.svg', 'SVG ')" \
    "$data/aspirin-1h/1"
"$cli" plot --auto --size 1200x1000 --levels 10,10 --out "$out/cyclosporin-hsqc.png" \
    -e "picture('$out/cyclosporin-hsqc.pdf', 'PDF ')" \
    "$data/cyclosporin_hsqc/cyclosporin_hsqc/3"
echo "pictures in $out"
