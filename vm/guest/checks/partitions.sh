# shellcheck shell=sh
# From a disk to its partitions and back, on names that exist.

# check_warning STATUS NODE CODE: explain ends with the status and warns.
check_warning() {
    ask "$1" explain -J "$2"
    check "explain $2 warns: $3" "$3" \
        "$(echo "$answer" | sed -n 's/.*"code": "\(.*\)".*/\1/p' | grep -x "$3")"
}

for number in 1 2; do
    check_append /dev/mapper/mpatha $number /dev/mapper/mpathap$number
    check_strip /dev/mapper/mpathap$number /dev/mapper/mpatha
done
# Two digits go on and do not come off.
check_append /dev/mapper/mpatha 10 /dev/mapper/mpathap10
check_strip /dev/mapper/mpathap10 /dev/mapper/mpathap10
check_warning 0 /dev/mapper/mpathap10 two-digits-behind-p

# The distribution's names are not the library's.
ask 0 append /dev/mapper/mpathb 1
check 'append /dev/mapper/mpathb 1 gives /dev/mapper/mpathbp1' /dev/mapper/mpathbp1 "$answer"
check '/dev/mapper/mpathbp1 does not exist' no "$([ -e /dev/mapper/mpathbp1 ] || echo no)"
check_warning 0 /dev/mapper/mpathb other-partition-names
for number in 1 2 10; do
    ask 32 strip /dev/mapper/mpathb-part$number
    check "strip /dev/mapper/mpathb-part$number gives nothing" '' "$answer"
    check_warning 32 /dev/mapper/mpathb-part$number udev-partition-name
done

for number in 1 2 10; do
    check_append /dev/sda $number /dev/sda$number
    check_strip /dev/sda$number /dev/sda
done
