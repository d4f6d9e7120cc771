#!/bin/sh
# Makes three SCSI disks, each seen through two hosts: sda and sdb are the first one, sdc and sdd
# the second one, sde and sdf the third one. The kernel probes in the background, so each comes
# after the one before is there; else names are random.
set -eu
# shellcheck source=wait.sh
. /lib/vm/wait.sh

driver=/sys/bus/pseudo/drivers/scsi_debug

# scan ADAPTER DISK: has the host of one of the driver's adapters look for its next disk.
scan() {
    for host in "$driver/$1"/host*/scsi_host/host*; do echo '- - -' >"$host/scan"; done
    wait_for 60 [ -b "/dev/$2" ]
}

# The NVMe disk stays away until a scan of the bus: the other checks count devices.
for controller in /sys/bus/pci/drivers/nvme/0*; do
    [ ! -e "$controller" ] || echo 1 >"$controller/remove"
done

modprobe -a sd_mod sg
modprobe scsi_debug vpd_use_hostno=0 add_host=1 max_luns=1 dev_size_mb=16 delay=0
wait_for 60 [ -b /dev/sda ]

# All disks of this driver share one store, so this is the partition table of every one.
sfdisk --quiet /dev/sda <<'TABLE'
label: gpt
/dev/sda1 : size=1MiB
/dev/sda2 : size=1MiB
/dev/sda10 : size=1MiB
TABLE

echo 1 >"$driver/add_host"
wait_for 60 [ -b /dev/sdb ]
echo 2 >"$driver/max_luns"
scan adapter0 sdc
scan adapter1 sdd
echo 3 >"$driver/max_luns"
scan adapter0 sde
scan adapter1 sdf
