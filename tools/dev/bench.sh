#!/usr/bin/env bash
# What ./dev bench does: build, make the music, measure.
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

# make_library TRACKS KIND: tiny files, tagged or untagged, made once
make_library() {
    local folder=$music/library-$1-$2 kind=()
    if [[ -d $folder ]]; then return; fi
    if [[ $2 == untagged ]]; then kind=(untagged); fi
    say "making $1 tracks in ${folder#"$root"/}"
    rm -rf "$folder.part"
    python3 "$root/bench/library/music.py" "$1" "${kind[@]}" |
        "$root/build/release/bin/orvo_bench_tag_files" "$folder.part"
    mv "$folder.part" "$folder"
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
targets=(orvo-host orvoctl orvo_playlists orvo_files orvo_lists orvo_player orvo_gateway)
case $name in
store) targets=(orvo_bench) ;;
library) targets+=(orvo_bench_tag_files) ;;
esac
cmake -S "$root" --preset release >/dev/null
cmake --build "$root/build/release" --parallel "$jobs" --target "${targets[@]}" >&2
folder=wire
case $name in
store)
    folder=store
    options+=(--program "$root/build/release/bin/orvo_bench")
    ;;
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
    folder=library
    install_mpd
    need library
    make_library 20000 tagged
    make_library 100000 tagged
    make_library 100000 untagged
    options+=("${host[@]}" --music "$music/library")
    ;;
footprint) options+=(--build "$root/build/release") ;;
esac
exec python3 "$root/bench/$folder/$name.py" "${options[@]}" "$@"
