#!/usr/bin/env bash
# layout.sh COMPILER HEADERS_CPP EXPECTED WORK_DIR INCLUDE_DIR...
#
# Compares size, bases and virtual slots of the public classes, as the compiler lays them out, with
# the checked-in list. Hosts built against older headers rely on every line of it. Another class
# joins by a line `class NAME` there, and then by the command that the failing test shows.
set -eu
compiler=$1 headers=$2 expected=$3 work=$4
shift 4
here=$(dirname "$0")

mkdir -p "$work"
"$compiler" -std=c++17 "${@/#/-I}" -fsyntax-only -fdump-lang-class="$work/classes" "$headers"
awk -f "$here/layout.awk" "$expected" "$work/classes" >"$work/layout.txt"
if ! diff -u "$expected" "$work/layout.txt"; then
    echo "If this change is meant, and the major version is raised where it must be:" >&2
    echo "    cp $work/layout.txt $expected" >&2
    exit 1
fi
