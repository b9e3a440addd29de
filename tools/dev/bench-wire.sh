#!/usr/bin/env bash
# What ./dev bench remote, library, peers and footprint do: build, make the music, measure.
# The table goes to build/bench as well.
set -euo pipefail

root=$(cd "$(dirname "$(readlink -f "${BASH_SOURCE[0]}")")/../.." && pwd)
jobs=${ORVO_JOBS:-$(nproc)}
music=$root/.dev/bench
memory=/dev/shm

# shellcheck source=tools/dev/packages.sh
source "$root/tools/dev/packages.sh"

say() { printf 'dev: %s\n' "$*" >&2; }

# make_music TRACKS FOLDER: that many tiny tagged files, made once
make_music() {
    if [[ -d $2 ]]; then return; fi
    need demo
    say "making $1 tracks in ${2#"$root"/}"
    mkdir -p "$(dirname "$2")"
    rm -rf "$2.part"
    "$root/tools/demo-music" --tracks "$1" "$2.part"
    mv "$2.part" "$2"
}

# make_library TRACKS FOLDER: tiny files with the tags of a library, without them for TRACKS below zero, made once
make_library() {
    if [[ -d $2 ]]; then return; fi
    say "making ${1#-} tracks in ${2#"$root"/}"
    rm -rf "$2.part"
    "$root/build/release/bin/orvo_bench_music" "$1" "$2.part"
    mv "$2.part" "$2"
}

# The daemon, without the service that comes with its package: a machine that had none keeps none.
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

name=$1
shift
options=(--memory "$memory" --disk "$root/build/bench" --table "$root/build/bench/$name.md")
host=(--host "$root/build/release/bin/orvo-host")
if [[ ! -d $memory ]]; then
    say "there is no $memory: what is called memory is this disk, and its bounds may break"
    options[1]=$root/build/bench
fi
need build test
cmake -S "$root" --preset release >/dev/null
cmake --build "$root/build/release" --parallel "$jobs" \
    --target orvo-host orvoctl orvo_playlists orvo_files orvo_player orvo_gateway
case $name in
remote)
    make_music 10000 "$music/music-10000"
    options+=("${host[@]}" --music "$music/music-10000")
    ;;
peers)
    install_mpd
    for count in 1000 10000 100000; do make_music "$count" "$music/music-peers/n$count"; done
    options+=("${host[@]}" --music "$music/music-peers")
    ;;
library)
    install_mpd
    need library
    cmake --build "$root/build/release" --target orvo_bench_music
    make_library 20000 "$music/library-20000-tagged"
    make_library 100000 "$music/library-100000-tagged"
    make_library -100000 "$music/library-100000-untagged"
    options+=("${host[@]}" --music "$music/library")
    ;;
footprint) options+=(--build "$root/build/release") ;;
esac
script=$root/bench/wire/$name.py
if [[ $name == library ]]; then script=$root/bench/library/library.py; fi
exec python3 "$script" "${options[@]}" "$@"
