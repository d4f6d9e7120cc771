#!/bin/bash
# How much of one job's time eight jobs take for 64 disks with stale mappings: about an eighth.
#
#     benchmarks/jobs_benchmark.sh [BUILD]
#
# BUILD is the folder of the build, build/dev without it. Runs `dmpclaim active` with the simulated
# tools; the pauses of five seconds become pauses of half a second, and the tools cost what they
# cost. Takes about a minute.
set -euo pipefail

root=$(dirname -- "${BASH_SOURCE[0]}")/..
build=$(realpath -- "${1:-$root/build/dev}")
folder=$(mktemp -d)
trap 'rm -rf -- "$folder"' EXIT

# A node for each disk, not found until the disk has been scanned.
stale_disks() {
    local separator=''
    printf '{"arrays": [{"name": "arr0", "nodes": ['
    for number in {1..64}; do
        printf '%s{"name": "arr0_%d", "stale": {"rescans": 1}, "paths": [
            {"name": "sdx%d", "state": "ENABLED(A)", "type": "PRIMARY"}]}' \
            "$separator" "$number" "$number"
        separator=,
    done
    printf ']}]}\n'
}

# The milliseconds that the lookup of all disks takes with so many jobs.
milliseconds() {
    stale_disks >"$folder/state.json"
    : >"$folder/sleeps"
    local begin end
    begin=$(date +%s%3N)
    "$root/simulator/with_tools.sh" --tools "$build/simulator/tools" "$folder/state.json" \
        env LD_PRELOAD="$build/lib/libquick_sleep.so" SLEEP_LOG="$folder/sleeps" \
        SLEEP_MILLISECONDS=500 \
        "$build/bin/dmpclaim" active -j "$1" /dev/sdx{1..64} >"$folder/rows"
    end=$(date +%s%3N)
    if (($(wc -l <"$folder/sleeps") != 64 || $(grep -c ' no ' "$folder/rows") != 64)); then
        printf 'not every mapping was repaired by its scan\n' >&2
        exit 1
    fi
    printf '%d\n' "$((end - begin))"
}

eight=$(milliseconds 8)
one=$(milliseconds 1)
printf '64 disks: %d ms with 8 jobs, %d ms with 1 job, ratio %d.%03d (an eighth is 0.125)\n' \
    "$eight" "$one" "$((eight / one))" "$((eight * 1000 / one % 1000))"
