#!/bin/sh
# What the kernel's sysfs says about block devices, for the checks to source.

# shellcheck source=maps.sh
. /lib/vm/maps.sh

# All block device nodes that names are asked about.
nodes() {
    for device in /sys/class/block/*; do echo "/dev/${device##*/}"; done
    for node in /dev/mapper/* /dev/emcpower*; do [ ! -b "$node" ] || echo "$node"; done
}

# path_of FOLDER: the path of a device by its folder in sysfs: for a map the one with its name.
path_of() {
    if [ -e "$1/dm/name" ]; then echo "/dev/mapper/$(cat "$1/dm/name")"; else echo "/dev/${1##*/}"; fi
}

# The path of each device.
device_paths() {
    for device in /sys/class/block/*; do path_of "$device"; done
}

# sysfs_of NODE: the device's folder, found by its numbers, not by the node's name.
sysfs_of() {
    # shellcheck disable=SC2046 # two words, in base 16
    set -- $(stat -L -c '0x%t 0x%T' "$1")
    readlink -f "/sys/dev/block/$(($1)):$(($2))"
}

# node_beside NODE FOLDER: the node of the device in FOLDER, under a name of the driver that NODE is
# named by.
node_beside() {
    case $1 in
    /dev/emcpower*)
        for other in /dev/emcpower*; do
            [ "$(sysfs_of "$other")" != "$2" ] || echo "$other"
        done
        ;;
    *) echo "/dev/${2##*/}" ;;
    esac
}

# row_of_map NODE FOLDER: multipath's maps have the uuid mpath-WWID, those of their partitions
# partN-mpath-WWID.
row_of_map() {
    read -r uuid <"$2/dm/uuid"
    case $uuid in
    part*-mpath-*)
        read -r disk <"$(echo "$2"/slaves/*/dm/name)"
        number=${uuid#part}
        echo "device-mapper 16 yes /dev/mapper/$disk ${number%%-*}"
        ;;
    mpath-*) echo "device-mapper 16 no $1 -" ;;
    esac
}

# row_of_disk NODE FOLDER: a SCSI disk or its partition. PowerPath's driver is not here, so only
# the node's name identifies its devices. A map owns its paths.
row_of_disk() {
    case $1 in
    /dev/emcpower*) owner='powerpath 16' ;;
    *) owner='native 2' ;;
    esac
    [ -z "$(map_over "$2")" ] || owner='device-mapper 16'
    if [ -e "$2/partition" ]; then
        echo "$owner yes $(node_beside "$1" "${2%/*}") $(cat "$2/partition")"
    else
        echo "$owner no $1 -"
    fi
}

# kernel_row NODE: owner, claim, whether it is a partition, disk and number.
kernel_row() {
    folder=$(sysfs_of "$1")
    if [ -e "$folder/dm" ]; then
        row_of_map "$1" "$folder"
    else
        row_of_disk "$1" "$folder"
    fi
}
