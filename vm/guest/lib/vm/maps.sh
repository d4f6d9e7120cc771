#!/bin/sh
# The kernel's multipath maps, for other scripts to source.

# map_over FOLDER: the name of the map that the device with this folder in sysfs is a path of;
# nothing when there is none.
map_over() {
    for map in "$1"/holders/*/dm; do
        [ -e "$map/uuid" ] || continue
        read -r uuid <"$map/uuid"
        [ "${uuid#mpath-}" = "$uuid" ] || cat "$map/name"
    done
}
