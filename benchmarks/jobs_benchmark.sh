#!/bin/bash
# How long `dmpclaim active` takes to look 64 disks with stale mappings up with 1 to 16 jobs.
#
#     benchmarks/jobs_benchmark.sh BUILD
#
# Uses the simulated tools. Pauses of five seconds are cut to one, which is still many times
# as long as the tools take. Few jobs look fewer disks up, eight each, and the time counts as
# many times. In each round every number of jobs has its turn: other load on the machine disturbs all
# alike. Prints what `compare` of comparison.h prints. A round takes about 36 seconds.
set -euo pipefail

readonly pause=1000 disks=64
root=$(dirname -- "$(realpath -- "${BASH_SOURCE[0]}")")/..
build=$(realpath -- "$1")
case ${BENCHMARK_SECONDS-1} in
0*) rounds=1 ;;
*) rounds=2 ;;
esac

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
    for ((number = 1; number <= disks; ++number)); do
        printf '%s{"name": "arr0_%d", "stale": {"rescans": 1}, "paths": [
            {"name": "sdx%d", "state": "ENABLED(A)", "type": "PRIMARY"}]}' \
            "$separator" "$number" "$number"
        separator=,
    done
    printf ']}]}\n'
}

# nanoseconds JOBS: the time that so many jobs take for all disks. Their names end in digits, as
# names of partitions do, and are asked about as they are.
nanoseconds() {
    local share=$(($1 < 8 ? 8 * $1 : disks)) names begin end
    mapfile -t names < <(seq -f '/dev/sdx%.0f' "$share")
    stale_disks >"$folder/state.json"
    : >"$folder/sleeps"
    begin=${EPOCHREALTIME/./}
    env LD_PRELOAD="$build/lib/libquick_sleep.so" SLEEP_LOG="$folder/sleeps" \
        SLEEP_MILLISECONDS=$pause \
        "$build/bin/dmpclaim" active --as-given -j "$1" "${names[@]}" >"$folder/rows"
    end=${EPOCHREALTIME/./}
    if (($(wc -l <"$folder/sleeps") != share || $(grep -c ' no ' "$folder/rows") != share)); then
        printf 'not every mapping was repaired by its scan\n' >&2
        exit 1
    fi
    printf '%d\n' $(((end - begin) * 1000 * disks / share))
}

declare -A results
for ((round = 1; round <= rounds; ++round)); do
    for jobs in 1 2 4 8 16; do
        results[$jobs]+=${results[$jobs]:+, }$(nanoseconds "$jobs")
    done
done
printf '{"name": "look %d stale disks up with so many jobs", "sides": {' "$disks"
for jobs in 1 2 4 8 16; do
    printf '%s"%d": [%s]' "${separator-}" "$jobs" "${results[$jobs]}"
    separator=', '
done
printf '}, "left": {}}\n'
