# shellcheck shell=sh
# Nodes with PowerPath's names, beside the disks that they stand for.

ask 0 show -n -r /dev/emcpowera /dev/emcpowera10
check 'emcpowera is a PowerPath disk' '/dev/emcpowera powerpath 16 no /dev/emcpowera -' \
    "$(echo "$answer" | sed -n 1p)"
check 'emcpowera10 is its partition 10' '/dev/emcpowera10 powerpath 16 yes /dev/emcpowera 10' \
    "$(echo "$answer" | sed -n 2p)"
for number in 1 2 10; do
    check_append /dev/emcpowera $number /dev/emcpowera$number
    check_strip /dev/emcpowera$number /dev/emcpowera
done
