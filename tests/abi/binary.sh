#!/bin/sh
# binary.sh READELF NM LIBRARY PRIVATE_DIR...
#
# What the library's file tells of itself: its soname, the framework beside it instead of inside,
# and no path of the machine that it was built on.
set -eu
readelf=$1 nm=$2 library=$3
shift 3

fail()
{
    echo "$library: $1" >&2
    exit 1
}

dynamic=$("$readelf" -dW "$library")
echo "$dynamic" | grep -q 'SONAME.*\[libdmpclaim\.so\.1\]' || fail "its soname is not libdmpclaim.so.1"
echo "$dynamic" | grep -q 'NEEDED.*\[libzepdk_4_4ST\.so\]' || fail "it does not need libzepdk_4_4ST.so"

symbols=$("$nm" -C --defined-only "$library")
echo "$symbols" | grep -q 'CDmpClaimManager::claim(' || fail "it has no symbols to look at"
for name in 'CZeTraceLog::trace(' 'CZeStringTool::' 'CZeExecPipe'; do
    if echo "$symbols" | grep -F -e "$name"; then
        fail "it contains the framework's $name"
    fi
done

for folder in "$@"; do
    if strings -a "$library" | grep -F -e "$folder"; then
        fail "it holds a path of this machine"
    fi
done
