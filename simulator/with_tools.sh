#!/bin/bash
# Runs a command with the simulated kodmpadm and kodisk in /usr/sbin.
#
#     simulator/with_tools.sh [--tools FOLDER] STATE COMMAND [ARGUMENT...]
#
# STATE is the tools' state file, which they change: a copy of one of simulator/scenarios/. FOLDER
# holds the two tools and nothing else; without it they are those of the preset dev.
#
# A read-only overlay mount shows the tools in /usr/sbin, in a private mount namespace: no other
# process sees them, and nothing on the machine changes. Without root, the script creates a user
# namespace too, in which the command is root. The script executes the command in its own process,
# so the command has its process id, and its exit status and signals are the command's. The script
# itself exits with 77 where such namespaces are not permitted and with 2 for wrong arguments.
set -euo pipefail

tools=$(dirname -- "${BASH_SOURCE[0]}")/../build/dev/simulator/tools
sbin=$(realpath -- /usr/sbin)

complain() {
    printf '%s: %s\n' "${0##*/}" "$2" >&2
    exit "$1"
}

if [[ ${1-} == --tools && $# -ge 2 ]]; then
    tools=$2
    shift 2
fi
[[ $# -ge 2 ]] || complain 2 'usage: with_tools.sh [--tools FOLDER] STATE COMMAND [ARGUMENT...]'
[[ -f $1 ]] || complain 2 "no state file $1"
[[ -x $tools/kodmpadm && -x $tools/kodisk ]] || complain 2 "no tools in $tools, build them first"

# The lower folder is ".", because a path would need escapes for colons and commas. CDPATH is empty
# because cd looks relative folders up in it; the added "/" keeps cd from taking "-" for OLDPWD.
# shellcheck disable=SC2016 # expanded by the inner shell
overlay='(CDPATH="" cd -- "$0/" && mount -t overlay kovm-simulator -o ro,lowerdir=.:"$1" "$1")'
state=$(realpath -- "$1")
shift

for namespaces in -m -Urm; do
    if reason=$(unshare "$namespaces" bash -c "$overlay" "$tools" "$sbin" 2>&1); then
        export KOVM_SIMULATOR_STATE=$state
        exec unshare "$namespaces" bash -c "$overlay"' && shift && exec -- "$@"' \
            "$tools" "$sbin" "$@"
    fi
done
complain 77 "no private mount namespace is permitted here: $reason"
