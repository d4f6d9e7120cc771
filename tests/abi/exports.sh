#!/bin/sh
# exports.sh LIBRARY EXPECTED WORK_DIR [HEADER...]
#
# Compares the names that a library exports with the checked-in list, one a line, and looks for each
# of them in the headers. A constructor or destructor has a line for each of its forms.
set -eu
library=$1 expected=$2 work=$3
list=$work/$(basename "$expected")
shift 3

mkdir -p "$work"
nm -D --defined-only "$library" >"$work/symbols.txt"
# Other libraries would share these: names of kind u keep dlclose from unloading the library.
if grep -e ' u ' -e ' _Z\(T[ISV]\)\?N\?K\?S[a-z]' "$work/symbols.txt"; then
    echo "$library: exports these instances of the standard library's templates" >&2
    exit 1
fi
c++filt <"$work/symbols.txt" |
    sed -e 's/^[0-9a-f]* . //' -e 's/@@.*//' \
        -e 's/std::__cxx11::basic_string<char, std::char_traits<char>, std::allocator<char> >/std::string/g' |
    LC_ALL=C sort >"$list"
if ! diff -u "$expected" "$list"; then
    echo "If this change is meant, see docs/abi.md, and type: ./dev abi --accept" >&2
    exit 1
fi

[ $# -gt 0 ] || exit 0
# C functions, and the operations of classes: the last name before the arguments.
sed -n -e 's/^\(Y_[A-Za-z0-9_]*\)$/\1/p' \
    -e 's/^[A-Za-z_].*::~*\([A-Za-z0-9_]*\)\(\[abi:cxx11\]\)*(.*/\1/p' "$list" |
    sort -u >"$work/operations.txt"
test -s "$work/operations.txt"
while read -r operation; do
    grep -qw -e "$operation" "$@" || {
        echo "exported, but in no public header: $operation" >&2
        exit 1
    }
done <"$work/operations.txt"
