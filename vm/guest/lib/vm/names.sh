#!/bin/sh
# Gives the disks their names: mpatha with the partitions mpathap1 and so on, mpathb with
# mpathb-part1 and so on, emcpowera with emcpowera1 and so on.
set -eu
# shellcheck source=settle.sh
. /lib/vm/settle.sh
# shellcheck source=wait.sh
. /lib/vm/wait.sh

# alias_node NODE DISK: a second node for a device, as PowerPath's pseudo device would be.
alias_node() {
    IFS=: read -r major minor <"/sys/class/block/$2/dev"
    mknod "$1" b "$major" "$minor"
}

modprobe -a dm-multipath dm-round-robin
/lib/systemd/systemd-udevd --daemon --resolve-names=never
udevadm trigger --action=add --subsystem-match=block
settle
multipathd -d -s &

wait_for 60 [ -b /dev/mapper/mpatha ]
kpartx -a -s -p p /dev/mapper/mpatha
for number in 1 2 10; do wait_for 60 [ -b "/dev/mapper/mpathb-part$number" ]; done
settle

alias_node /dev/emcpowera sde
for number in 1 2 10; do alias_node "/dev/emcpowera$number" "sde$number"; done
