#!/usr/bin/env bash
# Checks that a page tells the options of every subcommand.
#
# usage: every_subcommand.sh COMMAND PAGE.scd...
set -euo pipefail
command=$1
shift
missing=0
subcommands=$(COLUMNS=80 "$command" --help | awk '
    /^[^ ]/ { found = $0 == "Subcommands:"; next }
    found && /^  [^ ]/ { print $1 }')
[[ $subcommands ]]
for subcommand in $subcommands; do
    grep -qxF "{{options $subcommand}}" "$@" || {
        echo "no page has {{options $subcommand}}"
        missing=1
    }
done
exit $missing
