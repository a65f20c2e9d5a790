#!/usr/bin/env bash
# Pictures of the test sets for looking at the plots, in build/pictures/: the aspirin proton
# spectrum after the start-up script (peak labels, integral curves and values), the cyclosporin
# HSQC (positive and negative contours with both projections, and as a chessboard), its COSY
# (gradient contours), its HMBC (fast plot) and the inversion-recovery series (arrayed and
# stacked, white-washed).
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
hsqc=$data/cyclosporin_hsqc/cyclosporin_hsqc/3
"$cli" plot --auto --size 1200x1000 --levels 10,10 --out "$out/cyclosporin-hsqc.png" \
    -e "picture('$out/cyclosporin-hsqc.pdf', 'PDF ')" "$hsqc"
"$cli" plot --auto --size 1200x1000 --levels 10,10 --out "$out/cyclosporin-hsqc-chessboard.png" \
    -e "bidi 'b' region(3.3, 5.8, 45, 65)" "$hsqc"
"$cli" plot --auto --size 1200x1000 --levels 12,0 --out "$out/cyclosporin-cosy.png" \
    -e "bidi 'w'" "$data/cyclosporin_cosy/cyclosporin_cosy/1"
"$cli" plot --auto --size 1200x1000 --levels 10,0 --out "$out/cyclosporin-hmbc.png" \
    -e "bidi 'x'" "$data/cyclosporin_hmbc/cyclosporin_hmbc/2"
# The series is a pseudo-2-D set whose rows are spectra: the spectrometer's processed rows.
ir=$data/inversionRecovery2D/inversionRecovery2D/1
"$cli" plot --processed --size 1600x700 --out "$out/inversion-recovery-arrayed.png" -e "bidi 'a'" "$ir"
"$cli" plot --processed --size 1200x900 --out "$out/inversion-recovery-stacked.png" -e "bidi 'z'" "$ir"
echo "pictures in $out"
