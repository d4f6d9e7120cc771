#!/usr/bin/env bash
# Holds binaries against what hardens them: position independence, full RELRO, BIND_NOW, a stack
# that is not executed, stack protector, checked functions of libc, marked targets of jumps (CET).
#
# usage: hardening.sh FILE...    programs or shared libraries
set -euo pipefail

# check FILE: prints what is missing.
check() {
    local headers symbols exported marked
    headers=$(readelf -hldW "$1")
    symbols=$(readelf --dyn-syms -W "$1")
    grep -qE 'Type: +DYN' <<<"$headers" || echo "position independence"
    grep -q ' GNU_RELRO ' <<<"$headers" || echo "RELRO"
    grep -qE '\(FLAGS\) .*BIND_NOW' <<<"$headers" || echo "BIND_NOW"
    grep -qE ' GNU_STACK .* RW ' <<<"$headers" || echo "a stack that is not executed"
    # No function of this one has an array on the stack, or calls a function that libc can check.
    if [[ $1 != */libzeutilST.so ]]; then
        grep -q '__stack_chk_fail@' <<<"$symbols" || echo "stack protector"
        grep -q '_chk@' <<<"$symbols" || echo "checked functions of libc"
    fi
    # The whole file's mark takes start files that have it; those of Debian 12's libc have not. Two
    # instructions come with the compiler's start files.
    [[ $(uname -m) == x86_64 ]] || return 0
    exported=$(grep -cE ' FUNC +(GLOBAL|WEAK) +DEFAULT +[0-9]+ ' <<<"$symbols" || true)
    marked=$(objdump -d --no-show-raw-insn "$1" | grep -c endbr64 || true)
    ((marked > exported + 2)) || echo "marked targets of jumps"
}

status=0
for file; do
    missing=$(check "$file")
    [[ ! $missing ]] || { printf '%s: no %s\n' "$file" "${missing//$'\n'/, no }" >&2; status=1; }
done
exit "$status"
