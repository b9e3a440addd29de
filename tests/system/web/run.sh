#!/usr/bin/env bash
# Runs the suite: run.sh HOST_PROGRAM WORK_FOLDER [NAME_PATTERN], or measures how a long list scrolls:
# run.sh --scrolling HOST_PROGRAM WORK_FOLDER. The work folder keeps the music between runs.
set -euo pipefail
what=suite
if [[ ${1:-} == --scrolling ]]; then
    what=scrolling
    shift
fi
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
host=$(realpath "$1")
mkdir -p "$2"
work=$(realpath "$2")
pattern=${3:-}

complain() { printf 'web tests: %s\n' "$*" >&2; exit 1; }
for program in node npm chromium; do
    command -v "$program" >/dev/null || complain "$program is missing; ./dev test installs it"
done

if [[ ! -d $here/node_modules || $here/package-lock.json -nt $here/node_modules/.package-lock.json ]]; then
    (cd "$here" && npm ci --ignore-scripts >"$work/npm.log" 2>&1) || complain "npm ci failed, see $work/npm.log"
fi
rm -f "$work"/failed\ *
# Made under another name first: an interrupted run leaves no half of a library.
music() {
    local folder=$work/$1
    shift
    [[ -d $folder ]] && return
    rm -rf "$folder.part"
    "$here/../../../tools/demo-music" "$@" "$folder.part"
    mv "$folder.part" "$folder"
}
# Tunes that do not end while a story looks at them: what plays changes only when a story says so.
music tunes --rest 60
music many-tracks --tracks 3000

cd "$here"
export ORVO_HOST=$host ORVO_WORK=$work
if [[ $what == scrolling ]]; then
    exec node scrolling.mjs
fi
exec node --test-reporter=spec ${pattern:+--test-name-pattern="$pattern"} suite.mjs
