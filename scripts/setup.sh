#!/usr/bin/env bash
# Installs what Zolt needs to build and test on a fresh Debian machine, then unpacks the
# pinned spectrometer test data into build/testdata. Quick when everything is already there.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)

packages=(build-essential cmake pkg-config clang libclang-rt-14-dev unzip
          liblua5.1-0-dev liblapack-dev libblas-dev qt6-base-dev qt6-svg-dev xvfb xauth xdotool x11-apps netpbm
          libgtest-dev libbenchmark-dev libfftw3-dev)
missing=()
for p in "${packages[@]}"; do
    dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "ok installed" || missing+=("$p")
done
command -v npm >/dev/null 2>&1 || missing+=(nodejs npm)
if [ ${#missing[@]} -gt 0 ]; then
    sudo_cmd=""; [ "$(id -u)" -ne 0 ] && sudo_cmd="sudo"
    echo "setup: installing ${missing[*]}"
    $sudo_cmd apt-get update -qq
    DEBIAN_FRONTEND=noninteractive $sudo_cmd apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
fi

# The pinned data packages, installed from the lock file.
data="$root/tests/data"
if [ ! -f "$data/node_modules/.zolt-stamp" ] || [ "$data/package-lock.json" -nt "$data/node_modules/.zolt-stamp" ]; then
    echo "setup: installing the test-data packages"
    (cd "$data" && npm ci --no-audit --no-fund --loglevel=error >/dev/null)
    touch "$data/node_modules/.zolt-stamp"
fi

# Unpack each zipped Bruker experiment into build/testdata/bruker/<name>.
out="$root/build/testdata"
stamp="$out/.unpacked"
if [ ! -f "$stamp" ] || [ "$data/node_modules/.zolt-stamp" -nt "$stamp" ]; then
    echo "setup: unpacking the test data"
    rm -rf "$out"; mkdir -p "$out/bruker"
    while IFS= read -r zip; do
        name=$(basename "$zip" .zip)
        mkdir -p "$out/bruker/$name"
        unzip -qqo "$zip" -x '__MACOSX/*' -d "$out/bruker/$name"
    done < <(find "$data/node_modules/bruker-data-test/data/zipped" -name '*.zip' | sort)
    ln -sfn "$data/node_modules/jcamp-data-test/data" "$out/jcamp"
    ln -sfn "$data/node_modules/jeol-data-test/data" "$out/jeol"
    touch "$stamp"
fi
