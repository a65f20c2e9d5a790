#!/usr/bin/env bash
# A screenshot of the desktop program on a real (virtual) X screen: zolt opens a private copy of
# the aspirin proton FID under Xvfb with a home of its own (so the start-up script is written
# fresh and processes the data), the screen is grabbed every 100 ms until the picture has
# settled, and the time from start to the first frame showing the finished spectrum is reported.
# The picture is build/screenshots/aspirin.png.
# usage: scripts/screenshots.sh [BUILD_DIR]   (default build/release)
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)

if [ "${1:-}" = "--on-screen" ]; then
    # Runs inside xvfb-run: DISPLAY is the virtual screen.
    zolt=$2 data=$3 out=$4
    shots=$out/shots
    mkdir -p "$shots"
    grab() { xwd -root -silent > "$shots/now.xwd"; md5sum < "$shots/now.xwd" | cut -c1-32; }
    blank=$(grab)
    start=$(date +%s%N)
    "$zolt" "$data" 2> "$out/zolt.log" &
    pid=$!
    last=$blank since=$start changes=0 settled=0
    # Settled: the same picture for two seconds. Its first appearance is the finished frame.
    while [ "$settled" -lt 20 ]; do
        sleep 0.1
        if ! kill -0 "$pid" 2>/dev/null; then
            echo "screenshots: zolt ended early; its messages:" >&2
            cat "$out/zolt.log" >&2
            exit 1
        fi
        now=$(date +%s%N)
        sum=$(grab)
        if [ "$sum" != "$last" ]; then
            last=$sum since=$now settled=0 changes=$((changes + 1))
            cp "$shots/now.xwd" "$shots/latest.xwd"
        else
            settled=$((settled + 1))
        fi
        if [ $(((now - start) / 1000000000)) -ge 120 ]; then
            echo "screenshots: the screen did not settle within 2 minutes" >&2
            kill "$pid"
            exit 1
        fi
    done
    if [ "$last" = "$blank" ]; then
        echo "screenshots: zolt showed no window" >&2
        kill "$pid"
        exit 1
    fi
    # The frame alone, without the empty screen around it.
    xwd -silent -name Zolt > "$shots/frame.xwd" 2>/dev/null || cp "$shots/latest.xwd" "$shots/frame.xwd"
    xwdtopnm < "$shots/frame.xwd" 2>/dev/null | pnmtopng > "$out/aspirin.png"
    # The dialogs a spectroscopist opens first, each window grabbed alone (a dialog is not in the
    # root window's picture without a compositing manager). No window manager gives the frame
    # the focus: it is set directly.
    window() { xwd -silent -name "$1" | xwdtopnm 2>/dev/null | pnmtopng > "$out/$2.png"; }
    if command -v xdotool >/dev/null; then
        xdotool search --name '^Zolt$' windowfocus --sync key ctrl+k
        sleep 1.5
        window "Phase Correction" phase-dialog
        xdotool search --name '^Phase Correction$' windowfocus --sync
        xdotool key Escape
        sleep 0.3
        xdotool search --name '^Zolt$' windowfocus --sync key ctrl+0
        sleep 1.5
        window Console console
    fi
    kill "$pid"
    wait "$pid" 2>/dev/null || true
    rm -rf "$shots"
    ms=$(((since - start) / 1000000))
    echo "start to finished spectrum: $ms ms (the screen grabbed every 100 ms; $changes changes)"
    echo "screenshot: $out/aspirin.png"
    exit 0
fi

build=${1:-$root/build/release}
data=${ZOLT_TESTDATA_DIR:-$root/build/testdata}/bruker/aspirin-1h/1
out=$root/build/screenshots
for tool in xvfb-run xwd xwdtopnm; do  # xdotool, for the dialogs, is optional
    command -v "$tool" >/dev/null || { echo "screenshots: $tool is missing: run scripts/setup.sh" >&2; exit 1; }
done
[ -f "$build/CMakeCache.txt" ] || cmake -S "$root" -B "$build" -DCMAKE_BUILD_TYPE=RelWithDebInfo >/dev/null
cmake --build "$build" -j "$(nproc)" --target zolt
rm -rf "$out"; mkdir -p "$out/home"
cp -r "$data" "$out/aspirin-1h"
# A home of its own: the start-up script is written to its scripts folder, the user's own
# preferences stay untouched, and a running program of the user's does not take the files.
export HOME=$out/home XDG_CONFIG_HOME=$out/home/.config ZOLT_INSTANCE_NAME=zolt-screenshots-$$
unset QT_QPA_PLATFORM
xvfb-run -a -s "-screen 0 1400x900x24" bash "$0" --on-screen "$build/zolt" "$out/aspirin-1h" "$out"
