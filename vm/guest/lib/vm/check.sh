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

# ask_warned STATUS ARGS...: the same for questions whose answer comes with a warning.
ask_warned() {
    wanted=$1
    shift
    answer=$(dmpclaim "$@" 2>/tmp/complaint)
    status=$?
    [ "$status" = "$wanted" ] && [ -s /tmp/complaint ] && return
    check "dmpclaim $* warns" "status $wanted and a warning" "status $status $(cat /tmp/complaint)"
}

# check_existing DISK NUMBER NODE: --existing finds the node, and the way back.
check_existing() {
    answer=$(dmpclaim append --existing "$1" "$2" 2>/tmp/complaint)
    check "append --existing $1 $2 gives $3" "0 $3" "$? $answer"
    answer=$(dmpclaim strip --existing -n -r -o DISK,PARTNUM "$3" 2>/tmp/complaint)
    check "strip --existing $3 gives $1 and $2" "0 $1 $2" "$? $answer"
}

# as_nobody ARGS...: what dmpclaim prints without privileges.
as_nobody() {
    start-stop-daemon -S -c nobody -x /opt/dmpclaim/bin/dmpclaim -- "$@"
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
