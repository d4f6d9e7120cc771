# Completion of dmpclaim for bash. Subcommands, options, columns and codes come from its own help.

# The words that begin the entries below the title $1 of the help of the subcommand $2.
_dmpclaim_entries() {
    COLUMNS=80 dmpclaim ${2:+"$2"} --help 2>/dev/null |
        awk -v title="$1:" '
            /^[^ ]/ { found = $0 == title; next }
            found && /^ ? ? ? ?[^ ]/ { print $1 }'
}

_dmpclaim_options() {
    _dmpclaim_entries Options "$1" | tr ',' '\n' | sed -n 's/^\(--[a-z-]*\).*/\1/p'
}

_dmpclaim() {
    local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]} word
    local subcommand='' subcommands
    subcommands=$(_dmpclaim_entries Subcommands)
    for word in "${COMP_WORDS[@]:1:COMP_CWORD-1}"; do
        if [[ " ${subcommands//$'\n'/ } " == *" $word "* ]]; then subcommand=$word; break; fi
    done
    local words=''
    case $previous in
    -o | --output) words=$(_dmpclaim_entries Columns "$subcommand") ;;
    --only | --ignore) words=$(_dmpclaim_entries 'Codes of findings' "$subcommand") ;;
    --trace-file | --output-file) ;;
    *)
        if [[ $current == -* ]]; then
            words="$(_dmpclaim_options "$subcommand") $(_dmpclaim_options '')"
        elif [[ ! $subcommand || $previous == help ]]; then
            words=$subcommands
        fi
        ;;
    esac
    if [[ $words ]]; then
        # Of a list with commas the last word is completed.
        local list=''
        if [[ $current == *,* ]]; then list=${current%,*},; fi
        mapfile -t COMPREPLY < <(compgen -P "$list" -W "$words" -- "${current##*,}" | sort -u)
    else
        mapfile -t COMPREPLY < <(compgen -f -- "$current")
        compopt -o filenames 2>/dev/null
    fi
}

complete -F _dmpclaim dmpclaim
