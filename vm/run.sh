#!/usr/bin/env bash
# Boots a small machine with real multipathed disks, runs checks in it with an installed library
# and command, and exits with the status of the checks.
set -euo pipefail

silence_limit=110 # seconds without a line from the guest: it hangs
total_limit=900   # seconds; a guest that is alive needs far less on a busy machine

# panic: a panic ends the guest. no_timer_check: the timer of a slow emulator is late.
# dont_del_part_nodes: the partitions of a multipathed disk's paths keep their nodes.
kernel_options='console=ttyS0 panic=-1 no_timer_check dont_del_part_nodes'

# Two controllers of one subsystem, through which the kernel multipaths the disk.
nvme_devices=(-device 'nvme-subsys,id=subsystem,nqn=two-ways'
    -device 'nvme,serial=1,subsys=subsystem' -device 'nvme,serial=1,subsys=subsystem'
    -device 'nvme-ns,drive=namespace,nsid=1')

# Checks that change nothing come first.
all_checks=(list partitions powerpath kinds doctor active paths nvme)

usage() {
    cat <<'USAGE'
usage: vm/run.sh PREFIX [CHECK...]

PREFIX is an installed tree with bin/dmpclaim. A CHECK is a program of vm/guest/checks; if none is
named, all are made.
USAGE
}

say() { printf 'vm: %s\n' "$*" >&2; }

# Also looks at the processor's flags: on some machines /dev/kvm opens, but no guest runs.
accelerator() {
    if [[ -w /dev/kvm ]] && grep -qwE 'vmx|svm' /proc/cpuinfo; then echo kvm; else echo tcg; fi
}

# The archive, its unpacked copy, and 400 MiB for what runs.
memory() { echo $((400 + 3 * $(stat -c %s "$1") / 1048576)); }

# Starts the guest. Its report comes on $report, its console goes to a file.
start() {
    local image=$1 checks=$2
    truncate -s 16M "$work/namespace"
    exec {report}< <(exec timeout "$total_limit" qemu-system-x86_64 -nodefaults -display none \
        -accel "$(accelerator)" -cpu max -machine q35 -smp 2 -m "$(memory "$work/initrd")" \
        -kernel "$image/vmlinuz" -initrd "$work/initrd" \
        -append "$kernel_options NONCE=$nonce CHECKS=$checks" \
        -drive "if=none,id=namespace,format=raw,file=$work/namespace" "${nvme_devices[@]}" \
        -no-reboot -serial "file:$work/console" -serial stdio </dev/null 2>&1)
    guest=$!
}

# Shows the report up to the verdict, which it keeps, or until the guest falls silent or ends.
follow() {
    local line
    while IFS= read -r -t "$silence_limit" -u "$report" line; do
        [[ $line == "$nonce "* ]] && verdict=${line#* } && return
        printf '%s\n' "$line"
    done
}

stop() {
    if [[ $guest ]] && kill "$guest" 2>/dev/null; then wait "$guest" || true; fi
    rm -rf "$work"
}

main() {
    local prefix=${1-} image=$work/image
    [[ -x $prefix/bin/dmpclaim ]] || { usage >&2 && exit 2; }
    shift
    (($#)) || set -- "${all_checks[@]}"
    "$here/image.sh" "$image"
    "$here/payload.sh" "$prefix" "$image/busybox" | cat "$image/base.cpio" - >"$work/initrd"
    start "$image" "$(IFS=, && echo "$*")"
    follow
    [[ $verdict == 0 ]] && return
    say "the end of the guest's console:"
    tail -n 60 "$work/console" >&2
    if [[ $verdict ]]; then say 'failed'; else say 'failed: the guest gave no verdict'; fi
    return 1
}

here=$(dirname "$(readlink -f "$0")")
work=$(mktemp -d)
nonce=$(</proc/sys/kernel/random/uuid)
verdict=''
guest=''
trap stop EXIT
main "$@"
