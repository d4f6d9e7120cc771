#!/usr/bin/env bash
# Holds what zsh completes against the command's own help: types words and a Tab into a zsh, and reads
# the line that comes back.
#
# usage: zsh_test.sh COMMAND COMPLETION
set -euo pipefail
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
ln -s "$(realpath "$1")" "$folder/dmpclaim"
cp "$2" "$folder/_dmpclaim"

cat >"$folder/type.zsh" <<'ZSH'
zmodload zsh/zpty
# typed TEXT: the line after a Tab.
typed() {
    zpty shell zsh -f -i
    zpty -w shell "PATH=$1:\$PATH; fpath=($1 \$fpath); PS1=; autoload -U compinit; compinit -u -D"
    zpty -w shell "show() { print -r -- \"<\$BUFFER>\"; zle kill-whole-line }; zle -N show; bindkey '^X' show"
    zpty -w -n shell $'\n'"$2"$'\t\x18'
    local line
    while zpty -r shell line; do
        if [[ $line == *'<'dmpclaim*'>'* ]]; then
            line=${line##*<}
            print -r -- "${line%%>*}"
            break
        fi
    done
    zpty -d shell
}
typed "$1" "$2"
ZSH

failures=0
expect() {
    local line
    line=$(timeout 20 zsh -f "$folder/type.zsh" "$folder" "$1") || true
    if [[ ${line% } != "$2" ]]; then
        printf "for '%s': '%s' instead of '%s'\n" "$1" "$line" "$2" >&2
        failures=$((failures + 1))
    fi
}

expect 'dmpclaim sho' 'dmpclaim show'
expect 'dmpclaim active --ref' 'dmpclaim active --refresh'
expect 'dmpclaim list -o OWNER,KIN' 'dmpclaim list -o OWNER,KIND'
expect 'dmpclaim doctor --only path-l' 'dmpclaim doctor --only path-lost'
exit $((failures > 0))
