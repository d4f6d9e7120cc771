#!/usr/bin/env bash
# layout.sh COMPILER SOURCE EXPECTED WORK_DIR INCLUDE_DIR...
#
# Compares size, bases and virtual slots of the public classes, as the compiler lays them out for a
# source that uses them and for the built-in modules, with the checked-in list. Hosts built against
# older headers rely on every line of it. A class that the library exports joins by
# `./dev abi --accept`, one of the framework by a line `class NAME` there before.
set -eu
compiler=$1 source=$2 expected=$3 work=$4
shift 4
here=$(dirname "$0")

folder=providers/device/scsitool

mkdir -p "$work"
"$compiler" -std=c++17 "${@/#/-I}" -fsyntax-only -fdump-lang-class="$work/classes" -x c++ - <<SOURCE
#include "$source"
#include "$folder/dmp_built_in_modules.h"
SOURCE
{
    grep '^class ' "$expected"
    sed -n 's/^class CZE_EXPORT \([A-Za-z]*\).*/class \1/p' "$here/../../$folder"/*.h
} >"$work/wanted"
awk -f "$here/layout.awk" "$work/wanted" "$work/classes" >"$work/layout.txt"
if ! diff -u "$expected" "$work/layout.txt"; then
    echo "If this change is meant, see docs/abi.md, and type: ./dev abi --accept" >&2
    exit 1
fi
