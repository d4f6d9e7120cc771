#!/usr/bin/env bash
# layout.sh COMPILER SOURCE EXPECTED WORK_DIR INCLUDE_DIR...
#
# Compares size, bases and virtual slots of the public classes, as the compiler lays them out for a
# source that includes their headers, with the checked-in list. Hosts built against older headers
# rely on every line of it. Another class joins by a line `class NAME` there, and then by
# `./dev abi --accept`.
set -eu
compiler=$1 source=$2 expected=$3 work=$4
shift 4
here=$(dirname "$0")

mkdir -p "$work"
"$compiler" -std=c++17 "${@/#/-I}" -fsyntax-only -fdump-lang-class="$work/classes" "$source"
awk -f "$here/layout.awk" "$expected" "$work/classes" >"$work/layout.txt"
if ! diff -u "$expected" "$work/layout.txt"; then
    echo "If this change is meant, see docs/abi.md, and type: ./dev abi --accept" >&2
    exit 1
fi
