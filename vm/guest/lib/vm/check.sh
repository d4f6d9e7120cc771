#!/bin/sh
# Functions for checks, which source this file.

# check WHAT EXPECTED ACTUAL: the one line of a check.
check() {
    if [ "$2" = "$3" ]; then
        echo "ok: $1"
    else
        echo "FAILED: $1: expected '$2', got '$3'"
    fi
}

# ask STATUS ARGS...: runs dmpclaim, leaves what it prints in $answer, and fails the check when
# it ends with another status or complains.
ask() {
    wanted=$1
    shift
    answer=$(dmpclaim "$@" 2>/tmp/complaint)
    status=$?
    [ "$status" = "$wanted" ] && [ ! -s /tmp/complaint ] && return
    check "dmpclaim $*" "status $wanted" "status $status $(cat /tmp/complaint)"
}

# check_append DISK NUMBER NODE: the partition's name is that of the node which exists.
check_append() {
    ask 0 append "$1" "$2"
    check "append $1 $2 gives $3" "$3" "$answer"
    check "$3 exists" yes "$([ -b "$3" ] && echo yes)"
}

# check_strip NODE DISK
check_strip() {
    ask 0 strip "$1"
    check "strip $1 gives $2" "$2" "$answer"
}
