#!/usr/bin/env bash
# A screenshot of the desktop program on a real (virtual) X screen: zolt opens a private copy of
# the aspirin proton FID under Xvfb with a home of its own (so the start-up script is written
# fresh and processes the data), the screen is grabbed every 100 ms until the picture has
# settled, and the time from start to the first frame showing the finished spectrum is reported.
# The pictures in build/screenshots: aspirin.png (the frame) with the phase dialog and the
# console beside it; then the cyclosporin HSQC handed over by a second start (hsqc.png), the
# Levels & Colors and Settings dialogs over it, and the two windows tiled side by side.
# usage: scripts/screenshots.sh [BUILD_DIR]   (default build/release)
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)

if [ "${1:-}" = "--on-screen" ]; then
    # Runs inside xvfb-run: DISPLAY is the virtual screen.
    zolt=$2 data=$3 out=$4 hsqc=$5
    window_menu_x=${ZOLT_WINDOW_MENU_X:-421}
    shots=$out/shots
    mkdir -p "$shots"
    grab() { xwd -root -silent > "$shots/now.xwd"; md5sum < "$shots/now.xwd" | cut -c1-32; }
    blank=$(grab)
    # Waits until the screen shows the same picture for two seconds, at most $1 seconds.
    settle() {
        local settled=0 begin
        begin=$(date +%s%N)
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
            if [ $(((now - begin) / 1000000000)) -ge "$1" ]; then
                echo "screenshots: the screen did not settle within $1 seconds" >&2
                kill "$pid"
                exit 1
            fi
        done
    }
    start=$(date +%s%N)
    "$zolt" "$data" 2> "$out/zolt.log" &
    pid=$!
    last=$blank since=$start changes=0
    settle 120
    finished=$since
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
    # A window still busy shows nothing but black, a picture of a few hundred bytes: it is
    # grabbed again until it has drawn itself (at most 20 seconds).
    window() {
        local id
        for _ in $(seq 100); do
            # By the id of the visible window: a name may also belong to a hidden one.
            id=$(xdotool search --onlyvisible --name "^$1\$" | head -1 || true)
            [ -n "$id" ] && xwd -silent -id "$id" | xwdtopnm 2>/dev/null | pnmtopng > "$out/$2.png"
            [ "$(stat -c %s "$out/$2.png")" -gt 2000 ] && return
            sleep 0.2
        done
    }
    if command -v xdotool >/dev/null; then
        # A key typed on the frame, then a moment for what it opens to draw itself.
        key() { xdotool search --onlyvisible --name '^Zolt$' windowfocus --sync key "$1"; sleep 3; }
        # A click on the dialog's Cancel, at the right end of its bottom row: a key may reach
        # the frame instead, which the program still takes for the active window.
        closeDialog() {
            local id w h
            for _ in 1 2 3; do
                id=$(xdotool search --onlyvisible --name "^$1\$" | head -1 || true)
                [ -n "$id" ] || return 0
                eval "$(xdotool getwindowgeometry --shell "$id")"
                w=$WIDTH h=$HEIGHT
                xdotool mousemove --window "$id" $((w - 40)) $((h - 22)) click 1
                sleep 1.5
            done
        }
        # The HSQC, handed to the running program as a second start would, processed there.
        ZOLT_INSTANCE_NAME=$ZOLT_INSTANCE_NAME "$zolt" "$hsqc" 2>> "$out/zolt.log"
        settle 60
        window Zolt hsqc
        # Window > Tile Vertically: the menu opened with a click on its title, the first item
        # chosen with the keys (no window manager gives the menu bar keyboard access).
        frame=$(xdotool search --onlyvisible --name '^Zolt$' | head -1)
        xdotool mousemove --window "$frame" "$window_menu_x" 9 click 1
        sleep 1.5
        xdotool key Down Return
        sleep 3
        window Zolt tiled
        key ctrl+u
        window "Levels & Colors" levels-colors
        closeDialog "Levels & Colors"
        key ctrl+q
        window Settings settings
        closeDialog Settings
        key ctrl+k
        window "Phase Correction" phase-dialog
        closeDialog "Phase Correction"
        key ctrl+0
        window Console console
        key ctrl+0
    fi
    kill "$pid"
    wait "$pid" 2>/dev/null || true
    rm -rf "$shots"
    ms=$(((finished - start) / 1000000))
    echo "start to finished spectrum: $ms ms (the screen grabbed every 100 ms; $changes changes)"
    echo "screenshot: $out/aspirin.png"
    exit 0
fi

build=${1:-$root/build/release}
testdata=${ZOLT_TESTDATA_DIR:-$root/build/testdata}
data=$testdata/bruker/aspirin-1h/1
hsqc=$testdata/bruker/cyclosporin_hsqc/cyclosporin_hsqc/3
out=$root/build/screenshots
for tool in xvfb-run xwd xwdtopnm; do  # xdotool, for the dialogs, is optional
    command -v "$tool" >/dev/null || { echo "screenshots: $tool is missing: run scripts/setup.sh" >&2; exit 1; }
done
[ -f "$build/CMakeCache.txt" ] || cmake -S "$root" -B "$build" -DCMAKE_BUILD_TYPE=RelWithDebInfo >/dev/null
cmake --build "$build" -j "$(nproc)" --target zolt
rm -rf "$out"; mkdir -p "$out/home"
cp -r "$data" "$out/aspirin-1h"
mkdir -p "$out/cyclosporin_hsqc" && cp -r "$hsqc" "$out/cyclosporin_hsqc/3"
# A home of its own: the start-up script is written to its scripts folder, the user's own
# preferences stay untouched, and a running program of the user's does not take the files.
export HOME=$out/home XDG_CONFIG_HOME=$out/home/.config ZOLT_INSTANCE_NAME=zolt-screenshots-$$
unset QT_QPA_PLATFORM
xvfb-run -a -s "-screen 0 1400x900x24" bash "$0" --on-screen "$build/zolt" "$out/aspirin-1h" "$out" \
    "$out/cyclosporin_hsqc/3"
