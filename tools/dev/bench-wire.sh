#!/usr/bin/env bash
# What ./dev bench remote, peers and footprint do: build, make the music, measure.
# Figures are kept as JSON as well. Ends with 1 where a bound is broken.
set -euo pipefail

root=$(cd "$(dirname "$(readlink -f "${BASH_SOURCE[0]}")")/../.." && pwd)
jobs=${ORVO_JOBS:-$(nproc)}
out=$root/.dev/bench
figures=$root/build/release/bench-figures # what the plot is made of
memory=/dev/shm

# shellcheck source=tools/dev/packages.sh
source "$root/tools/dev/packages.sh"

say() { printf 'dev: %s\n' "$*" >&2; }

build() {
    need build
    cmake -S "$root" --preset release >/dev/null
    cmake --build "$root/build/release" --parallel "$jobs" --target all "$@"
}

# music TRACKS FOLDER: that many tiny tagged files, made once
music() {
    if [[ -d $2 ]]; then return; fi
    need demo
    say "making $1 tracks in ${2#"$root"/}"
    rm -rf "$2.part"
    "$root/tools/demo-music" --tracks "$1" "$2.part"
    mv "$2.part" "$2"
}

# A track of a day, of which nothing takes room on the disk.
long_track() {
    local bytes=2000000000
    if [[ -e $1 ]]; then return; fi
    python3 - "$1" "$bytes" <<'PY'
import struct, sys
size = int(sys.argv[2])
with open(sys.argv[1], "wb") as file:
    file.write(b"RIFF" + struct.pack("<I", size + 36) + b"WAVEfmt " +
               struct.pack("<IHHIIHH", 16, 1, 1, 8000, 16000, 2, 16) +
               b"data" + struct.pack("<I", size))
    file.truncate(size + 44)
PY
}

# The daemon, without the service that comes with its package: whoever had none keeps none.
install_mpd() {
    if command -v mpd >/dev/null; then return; fi
    local units=(mpd.service mpd.socket) as_root=()
    if ((EUID != 0)); then as_root=(sudo); fi
    if [[ ! -d /run/systemd/system ]]; then
        need peers
        return
    fi
    "${as_root[@]}" systemctl mask --quiet "${units[@]}"
    local status=0
    (need peers) || status=$?
    "${as_root[@]}" systemctl unmask --quiet "${units[@]}"
    "${as_root[@]}" systemctl disable --quiet "${units[@]}" || true
    if ((status)); then exit "$status"; fi
}

bench_remote() {
    build orvo-bench-remote
    music 10000 "$out/music-10000"
    "$root/build/release/bin/orvo-bench-remote" --host "$root/build/release/bin/orvo-host" \
        --music "$out/music-10000" --tracks 10000 --memory "$memory" --disk "$out" \
        --json "$out/remote.json" "$@"
}

# A whole run also draws the plot.
bench_peers() {
    local whole=1
    if (($#)); then whole=0; fi
    if ((whole)); then need bench; fi
    install_mpd
    build orvo-bench-peers
    mkdir -p "$out/music-peers"
    for count in 1000 10000 100000; do music "$count" "$out/music-peers/n$count"; done
    long_track "$out/music-peers/long.wav"
    "$root/build/release/bin/orvo-bench-peers" --host "$root/build/release/bin/orvo-host" \
        --music "$out/music-peers" --memory "$memory" --disk "$out" --json "$figures/peers.json" "$@"
    if ((whole)); then "$root/bench/plot.py" "$root/docs/images/performance.svg" "$figures"/*.json; fi
}

bench_footprint() {
    build orvo-bench-footprint
    "$root/build/release/bin/orvo-bench-footprint" --build "$root/build/release" \
        --memory "$memory" --disk "$out" --json "$out/footprint.json" "$@"
}

mkdir -p "$out" "$figures"
if [[ ! -d $memory ]]; then
    say "there is no $memory: what is called memory is this disk, and its bounds may break"
    memory=$out
fi
name=$1
shift
"bench_$name" "$@"
