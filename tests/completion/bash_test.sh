#!/usr/bin/env bash
# Holds what bash completes against the command's own help.
#
# usage: bash_test.sh COMMAND COMPLETION
set -euo pipefail
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
ln -s "$(realpath "$1")" "$folder/dmpclaim"
PATH=$folder:$PATH
# shellcheck source=/dev/null
source "$2"

failures=0

# completed WORD...: what is offered for the last word.
completed() {
    COMP_WORDS=("$@")
    COMP_CWORD=$(($# - 1))
    COMPREPLY=()
    _dmpclaim
    printf '%s\n' "${COMPREPLY[@]}"
}

# expect TEXT WORD...: exactly the lines of TEXT are offered, in any order.
expect() {
    local text=$1
    shift
    if ! diff <(sort <<<"$text") <(completed "$@" | sort); then
        echo "for: $*" >&2
        failures=$((failures + 1))
    fi
}

expect show dmpclaim sho
expect $'--json\n--json-lines' dmpclaim --js
expect $'--json\n--json-lines' dmpclaim show --js
expect --refresh dmpclaim active --ref
expect '' dmpclaim list --ref
expect ACTIVE dmpclaim active -o ACT
expect OWNER,KIND dmpclaim list -o OWNER,KIN
expect path-lost dmpclaim doctor --only path-l
expect "$folder/dmpclaim" dmpclaim show "$folder/"
subcommands=$(completed dmpclaim '')
[[ $(wc -l <<<"$subcommands") -ge 8 ]] || { echo "few subcommands: $subcommands" >&2; failures=1; }

# Every option that a help text tells is offered.
for subcommand in $subcommands; do
    while read -r option; do
        completed dmpclaim "$subcommand" "$option" | grep -qxFe "$option" || {
            echo "not offered: dmpclaim $subcommand $option" >&2
            failures=$((failures + 1))
        }
    done < <(dmpclaim "$subcommand" --help | grep -oE '^  (-.,)?--[a-z-]+' | grep -oe '--.*')
done
exit $((failures > 0))
