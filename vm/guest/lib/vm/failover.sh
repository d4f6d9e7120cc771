#!/bin/sh
# Taking paths of maps away and giving them back, for checks to source.

# shellcheck source=check.sh
. /lib/vm/check.sh
# shellcheck source=wait.sh
. /lib/vm/wait.sh

# reads DISK: how many reads the kernel has counted.
reads() {
    read -r count _ <"/sys/block/$1/stat"
    echo "$count"
}

# read_map MAP: reads from the disk itself, not from memory.
read_map() { dd if="/dev/mapper/$1" of=/dev/null bs=4k count=16 iflag=direct 2>/dev/null; }

# carries MAP DISK OTHER: DISK, and not OTHER, serves what is read from the map.
carries() {
    before=$(reads "$2")
    before_other=$(reads "$3")
    read_map "$1" && [ "$(reads "$2")" -gt "$before" ] &&
        [ "$(reads "$3")" -eq "$before_other" ]
}

# is_down NUMBERS, is_up NUMBERS: the kernel has failed the path, or would use it.
is_down() { dmsetup status | grep -q " $1 F "; }
is_up() { dmsetup status | grep -q " $1 A "; }

# turn DISK STATE: takes a path away (offline) or gives it back (running).
turn() { echo "$2" >"/sys/block/$1/device/state"; }

# check_soon WHAT COMMAND...: the command succeeds before long.
check_soon() {
    what=$1
    shift
    check "$what" yes "$(wait_for 60 "$@" && echo yes)"
}
