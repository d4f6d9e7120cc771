#!/bin/sh
# exports.sh NM LIBRARY EXPECTED WORK_DIR HEADER...
#
# Compares the names that the library exports with the checked-in list, one a line, and looks for
# each of them in the public headers.
set -eu
nm=$1 library=$2 expected=$3 work=$4
shift 4

mkdir -p "$work"
"$nm" -DC --defined-only "$library" |
    sed -e 's/^[0-9a-f]* . //' -e 's/@@.*//' \
        -e 's/std::__cxx11::basic_string<char, std::char_traits<char>, std::allocator<char> >/std::string/g' |
    LC_ALL=C sort >"$work/exports.txt"
if ! diff -u "$expected" "$work/exports.txt"; then
    echo "If this change is meant, and the major version is raised where it must be:" >&2
    echo "    cp $work/exports.txt $expected" >&2
    exit 1
fi

# C functions, and the operations of classes: the last name before the arguments.
sed -n -e 's/^\(Y_[A-Za-z0-9_]*\)$/\1/p' \
    -e 's/^[A-Za-z_].*::~*\([A-Za-z0-9_]*\)\(\[abi:cxx11\]\)*(.*/\1/p' "$work/exports.txt" |
    sort -u >"$work/operations.txt"
test -s "$work/operations.txt"
while read -r operation; do
    grep -qw -e "$operation" "$@" || {
        echo "exported, but in no public header: $operation" >&2
        exit 1
    }
done <"$work/operations.txt"
