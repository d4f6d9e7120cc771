#!/usr/bin/env bash
# Shows how `dmpclaim active` follows and repairs a disk's paths, with the simulated tools in
# /usr/sbin of a private mount namespace.
#
# usage: demo.sh DMPCLAIM TOOLS    the command, and the folder of the simulated tools
set -euo pipefail

dmpclaim=$1
tools=$2
here=$(dirname "$(readlink -f "$0")")
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
bold='' plain=''
if [[ -t 1 ]]; then
    bold=$'\e[1m' plain=$'\e[0m'
fi

# scene NAME WORDS: begins a scene on the scenario NAME.
scene() {
    printf '\n%s%s%s\n' "$bold" "$2" "$plain"
    rm -f "$work"/state.json*
    cp "$here/scenarios/$1.json" "$work/state.json"
}

# Runs the command among the simulated tools, says how long it took and which tools it ran.
active() {
    local begin=$EPOCHREALTIME status=0
    printf '$ dmpclaim active %s\n' "$*"
    "$here/with_tools.sh" --tools "$tools" "$work/state.json" \
        "${interrupted[@]}" "$dmpclaim" active --no-progress "$@" || status=$?
    ((status != 77)) || exit 77
    printf -- '-- status %d after %s seconds; the tools that ran:\n' "$status" \
        "$(awk -v a="$begin" -v b="$EPOCHREALTIME" 'BEGIN {printf "%.1f", b - a}')"
    if [[ -e $work/state.json.log ]]; then
        sed 's/^/   /' "$work/state.json.log"
    fi
}

interrupted=()

scene healthy 'A healthy disk: sdc is a path of the node whose active path is sdb.'
active /dev/sdc

scene failed-over 'A failed-over disk: the path sdb is down, sdc carries the I/O.'
active /dev/sdb

scene stale-repaired-by-waiting \
    'A stale mapping: the node is found after two rescans, each five seconds after a failure.'
active /dev/sdc

scene stale-repaired-by-refreshing \
    'A stale mapping that only a refresh repairs: without it the old node has no paths ...'
active /dev/sdc
printf '... and with --refresh the node is removed, all disks are scanned, and it is found again.\n'
rm -f "$work/state.json.log"
active --refresh /dev/sdc

scene hanging-tool 'A tool that hangs: after three seconds somebody presses Ctrl-C.'
interrupted=(timeout --foreground --preserve-status --signal=INT 3)
active /dev/sdc
if grep -qs "KOVM_SIMULATOR_STATE=$work/" /proc/[0-9]*/environ; then
    echo 'A tool is still running.'
    exit 1
fi
echo 'No tool is left running.'
