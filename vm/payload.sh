#!/usr/bin/env bash
# payload.sh PREFIX BUSYBOX: prints the archive that makes the base image this project's guest:
# the files of guest/, the installed tree PREFIX as /opt/dmpclaim, and those shared libraries of
# this machine that the tree needs.
set -euo pipefail

prefix=$(readlink -f "$1")
export LD_LIBRARY_PATH=$prefix/lib/x86_64-linux-gnu # packages have no RUNPATH
busybox=$(readlink -f "$2")
guest=$(dirname "$(readlink -f "$0")")/guest

binaries() { find "$prefix" -type f \( -path '*/bin/*' -o -name '*.so*' \); }

# The libraries from outside the tree, as ldd finds them.
libraries() {
    local found
    found=$(binaries | xargs ldd)
    if grep 'not found' <<<"$found" >&2; then return 1; fi
    sed -n 's/^\t\(.* => \)\?\(\/[^ ]*\) (.*/\2/p' <<<"$found" | grep -v "^$prefix/" | sort -u
}

root=$(realpath "$(mktemp -d)")
trap 'rm -rf "$root"' EXIT
chmod 755 "$root" # it becomes the guest's root folder, also for accounts without privileges
cp -r "$guest/." "$root"
mkdir -p "$root/opt/dmpclaim"
cd "$prefix"
find . ! -type d \( -path '*/bin/*' -o -name '*.so*' \) -print0 |
    xargs -0 cp -P --parents -t "$root/opt/dmpclaim"
libraries | xargs cp -L --parents -t "$root"
cd "$root"
find . | "$busybox" cpio -o -H newc -R 0:0
