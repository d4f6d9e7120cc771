# shellcheck shell=sh
# Every block device as dmpclaim lists it, against what the kernel says.

. /checks/kernel.sh

# difference NODE: where names are meant to differ from the kernel, the kernel's row (a pattern),
# the row by name, and the reason, a line each; nothing for all other nodes.
difference() {
    case $1 in
    /dev/dm-*)
        echo 'device-mapper 16 *'
        echo '- 0 no - -'
        echo 'the number of a map is not a name that a driver claims'
        ;;
    /dev/sd[a-d])
        echo "device-mapper 16 no $1 -"
        echo "native 2 no $1 -"
        echo 'a path of a map, and the name does not show it'
        ;;
    /dev/mapper/mpathap10)
        echo 'device-mapper 16 yes /dev/mapper/mpatha 10'
        echo "device-mapper 16 no $1 -"
        echo 'two digits behind the p are none of a partition'
        ;;
    /dev/mapper/mpathap*)
        echo "device-mapper 16 yes /dev/mapper/mpatha ${1#/dev/mapper/mpathap}"
        echo 'device-mapper 16 yes /dev/mapper/mpatha -'
        echo 'the number behind the p is not read back'
        ;;
    /dev/mapper/mpathb-part*)
        echo "device-mapper 16 yes /dev/mapper/mpathb ${1#/dev/mapper/mpathb-part}"
        echo '- 0 no - -'
        echo 'a name with a hyphen is claimed by nobody'
        ;;
    esac
}

# check_difference NODE ROW KERNEL: with the lines of the difference on standard input.
check_difference() {
    read -r pattern
    read -r meant
    read -r reason
    # shellcheck disable=SC2254 # a pattern
    case $3 in
    $pattern) check "$1 is '$2' by name, '$3' for the kernel: $reason" "$meant" "$2" ;;
    *) check "$1 for the kernel" "$pattern" "$3" ;;
    esac
}

# check_node NODE ROW: one row of the list.
check_node() {
    kernel=$(kernel_row "$1")
    difference "$1" >/tmp/difference
    if [ -s /tmp/difference ]; then
        check_difference "$1" "$2" "$kernel" </tmp/difference
    else
        check "$1 is '$2'" "$kernel" "$2"
    fi
}

ask 64 list -n -r -o NAME,OWNER,CLAIM,PARTITION,DISK,PARTNUM
echo "$answer" >/tmp/list
cut -d ' ' -f 1 /tmp/list | sort >/tmp/listed
nodes | sort >/tmp/nodes
check "list has the kernel's $(wc -l </tmp/nodes) nodes and no others" \
    '' "$(diff /tmp/nodes /tmp/listed)"

while read -r node row; do check_node "$node" "$row"; done </tmp/list

ask 64 list -J
check 'list -J has as many devices' \
    "$(wc -l </tmp/nodes)" "$(echo "$answer" | grep -c '"name": "/dev/')"
