#!/usr/bin/env bash
# Runs the fuzz targets of the clang build for some seconds each and prints what came of it.
# usage: fuzz.sh [--seconds N] [--jobs N] [--on] [TARGET…]
#   --on  goes on after a finding until the time is over; otherwise the first one ends the run
# Exit status: 0 nothing found, 1 something found, 77 there is no such build.
set -euo pipefail

root=$(cd "$(dirname "$(readlink -f "${BASH_SOURCE[0]}")")/../.." && pwd)
bin=$root/build/fuzz/bin
inputs=$root/tests/fuzz
kept=$root/.dev/fuzz
seconds=10 jobs=1 on=0

# fuzz TARGET SCRATCH: one target; its figures on stdout.
fuzz() {
    local target=$1 scratch=$2 folder=$kept/$1 log=$kept/$1/log
    local findings=$folder/findings begun status=0 limits=() executions coverage file new=()
    mkdir -p "$folder/corpus" "$findings" "$scratch"
    begun=$(mktemp "$scratch/begun.XXXXXX")
    if [[ -f $inputs/dictionaries/$target.dict ]]; then
        limits+=("-dict=$inputs/dictionaries/$target.dict")
    fi
    # A target that has found nothing yet has no folder of regressions.
    local known=() kind
    for kind in corpus regressions; do
        if [[ -d $inputs/$kind/$target ]]; then known+=("$inputs/$kind/$target"); fi
    done
    if ((on)); then limits+=(-fork=1 -ignore_crashes=1 -ignore_timeouts=1 -ignore_ooms=1); fi
    # What an input may take: far more than any needs, also on a machine that does much else.
    UBSAN_OPTIONS=halt_on_error=1:print_stacktrace=1 TMPDIR=$scratch \
        "$bin/fuzz_$target" "-max_total_time=$seconds" -timeout=25 -rss_limit_mb=2048 \
        -max_len=4096 -print_final_stats=1 "-artifact_prefix=$findings/" "${limits[@]}" \
        "$folder/corpus" "${known[@]}" \
        >"$log" 2>&1 || status=$?
    executions=$(sed -nE 's/^stat::number_of_executed_units: *([0-9]+)$/\1/p; s/^#([0-9]+):? .*/\1/p' \
        "$log" | sort -n | tail -n 1)
    coverage=$(grep -oE ' cov: [0-9]+' "$log" | grep -oE '[0-9]+' | sort -n | tail -n 1 || true)
    while IFS= read -r file; do new+=("$file"); done < <(
        find "$findings" -type f -newer "$begun" | sort)
    printf '%-9s %10s executions, %6s edges covered, %s findings\n' "$target" \
        "${executions:-0}" "${coverage:-0}" "${#new[@]}"
    for file in "${new[@]}"; do
        printf '  %s\n' "${file#"$root/"}"
    done
    if ((${#new[@]})); then
        printf '  what was said: %s\n' "${log#"$root/"}"
        printf '  smaller:       %s -minimize_crash=1 -runs=10000 FILE\n' "build/fuzz/bin/fuzz_$target"
        printf '  keep it:       cp FILE tests/fuzz/regressions/%s/WHAT-IT-IS\n' "$target"
    elif ((status != 0)); then
        tail -n 20 "$log"
    fi
    ((${#new[@]} == 0 && status == 0))
}

main() {
    local targets=() shared='' target status=0 running=0 memory=/tmp
    while (($#)); do
        case $1 in
        --seconds) seconds=$2 && shift 2 ;;
        --jobs) jobs=$2 && shift 2 ;;
        --on) on=1 && shift ;;
        *) targets+=("$1") && shift ;;
        esac
    done
    if ((!${#targets[@]})); then targets=(gateway commands roles path numbers lists); fi
    for target in "${targets[@]}"; do
        if [[ ! -x $bin/fuzz_$target ]]; then
            printf 'there is no %s: ./dev build fuzz makes it\n' "build/fuzz/bin/fuzz_$target"
            exit 77
        fi
    done
    # The stores that are made and thrown away by the thousand need no disk.
    if [[ -d /dev/shm ]]; then memory=/dev/shm; fi
    shared=$(mktemp -d "$memory/orvo-fuzz-XXXXXX")
    # shellcheck disable=SC2064
    trap "rm -rf '$shared'" EXIT
    for target in "${targets[@]}"; do
        if ((running == jobs)); then
            wait -n || status=1
            running=$((running - 1))
        fi
        fuzz "$target" "$shared/$target" &
        running=$((running + 1))
    done
    while ((running > 0)); do
        wait -n || status=1
        running=$((running - 1))
    done
    exit "$status"
}

main "$@"
