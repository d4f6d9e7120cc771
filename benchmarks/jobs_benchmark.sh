#!/bin/bash
# How much of one job's time eight jobs take for 64 disks with stale mappings: about an eighth.
#
#     benchmarks/jobs_benchmark.sh [BUILD]
#
# BUILD is the folder of the build, build/bench without it. Runs `dmpclaim active` with the simulated
# tools. Pauses of five seconds are cut to one, which is still many times as long as the tools take.
# In each of six rounds, eight jobs look up 64 disks, then one job looks up eight disks, which is an
# eighth of the work. Other load on the machine disturbs both sides of a round alike. The median of
# the rounds counts. Takes about 100 seconds.
set -euo pipefail

readonly pause=1000 rounds=6
root=$(dirname -- "$(realpath -- "${BASH_SOURCE[0]}")")/..
build=$(realpath -- "${1:-$root/build/bench}")

# Runs this script again under the simulated tools, with the folder of their state.
if (($# < 2)); then
    folder=$(mktemp -d)
    trap 'rm -rf -- "$folder"' EXIT
    : >"$folder/state.json"
    "$root/simulator/with_tools.sh" --tools "$build/simulator/tools" "$folder/state.json" \
        "${BASH_SOURCE[0]}" "$build" "$folder"
    exit
fi
folder=$2

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

# milliseconds JOBS DISKS: the time that the lookup of so many disks takes with so many jobs.
# Their names end in digits, as names of partitions do, and are asked about as they are.
milliseconds() {
    local disks begin end
    mapfile -t disks < <(seq -f '/dev/sdx%.0f' "$2")
    stale_disks >"$folder/state.json"
    : >"$folder/sleeps"
    begin=${EPOCHREALTIME/./}
    env LD_PRELOAD="$build/lib/libquick_sleep.so" SLEEP_LOG="$folder/sleeps" \
        SLEEP_MILLISECONDS=$pause \
        "$build/bin/dmpclaim" active --as-given -j "$1" "${disks[@]}" >"$folder/rows"
    end=${EPOCHREALTIME/./}
    if (($(wc -l <"$folder/sleeps") != $2 || $(grep -c ' no ' "$folder/rows") != $2)); then
        printf 'not every mapping was repaired by its scan\n' >&2
        exit 1
    fi
    printf '%d\n' "$(((end - begin) / 1000))"
}

for ((round = 1; round <= rounds; ++round)); do
    eight=$(milliseconds 8 64)
    eighth=$(milliseconds 1 8)
    printf '64 disks with 8 jobs: %d ms; 8 disks with 1 job: %d ms\n' "$eight" "$eighth" >&2
    printf '%d\n' $((eight * 1000 / (8 * eighth)))
done | sort -n | awk '
    { ratios[NR] = $1 }
    END {
        median = (ratios[int((NR + 1) / 2)] + ratios[int(NR / 2) + 1]) / 2
        printf "64 disks: 8 jobs take %.3f of the time of 1 job, median of %d rounds", median / 1000, NR
        printf " from %.3f to %.3f (an eighth is 0.125)\n", ratios[1] / 1000, ratios[NR] / 1000
    }'
