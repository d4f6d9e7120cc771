#!/usr/bin/env bash
# Holds what the libraries export against the checked-in lists: the same names from every compiler
# and optimisation, the same slots, and, with libabigail, the same types behind the names.
#
# usage: check.sh [--accept] BUILD WORK    BUILD is a built tree with the stand-ins, WORK a folder for
#                                          what is made here; --accept renews the lists
set -euo pipefail
accept=
if [[ $1 == --accept ]]; then
    accept=1
    shift
fi
here=$(dirname "$(realpath "$0")")
source=$(realpath "$here/../..")
build=$(realpath "$1")
mkdir -p "$2"
work=$(realpath "$2")

step() { printf '== %s\n' "$*"; }

# checked LIST COMMAND...: runs the command, which compares a list that it leaves in WORK with the
# checked-in one. With --accept the checked-in one becomes the same first.
checked() {
    local list=$1
    shift
    if [[ $accept ]] && ! "$@" >/dev/null 2>&1; then
        cp "$work/${list##*/}" "$here/$list"
    fi
    "$@"
}

# exports NAME LIBRARY: NAME.txt is the list of the library's names.
exports() { checked "exports/$1.txt" "$here/exports.sh" "$2" "$here/exports/$1.txt" "$work"; }

# build_as NAME OPTION...: builds the library alone, with the options, and checks its names.
build_as() {
    local name=$1 folder=$work/$1
    shift
    step "exports of $name"
    cmake -S "$source" -B "$folder" -G Ninja -DDMPCLAIM_FRAMEWORK_DIR="$build/lib" \
        -DDMPCLAIM_WERROR=ON -DCMAKE_BUILD_TYPE=None "$@" >/dev/null
    cmake --build "$folder" -- --quiet
    exports dmpclaim "$folder/lib/libdmpclaim.so"
}

# What abidw describes: the library's types that the headers define, without places in sources.
describe() {
    abidw --headers-dir "$source/pdk" --headers-dir "$source/providers" \
        --headers-dir "$source/vstring" --drop-private-types --exported-interfaces-only \
        --no-show-locs --no-comp-dir-path --no-corpus-path "$1" --out-file "$2"
}

# The libraries that a description says are needed: what hosts exchange with them is their types.
needed() { sed -n '/<elf-needed>/,/<\/elf-needed>/p' "$1"; }

types() {
    describe "$1" "$work/dmpclaim.abi"
    if abidiff "$here/dmpclaim.abi" "$work/dmpclaim.abi" &&
        diff <(needed "$here/dmpclaim.abi") <(needed "$work/dmpclaim.abi"); then
        return 0
    fi
    echo "If this change is meant, see docs/abi.md, and type: ./dev abi --accept" >&2
    return 1
}

step "exports of what is shipped"
exports dmpclaim "$build/lib/libdmpclaim.so"
exports zepdk "$build/lib/libzepdk_4_4ST.so"
exports zecmn "$build/lib/libzecmn_4_4ST.so"
exports zeutil "$build/lib/libzeutilST.so"

build_as g++-O0 -DCMAKE_CXX_COMPILER=g++ -DCMAKE_CXX_FLAGS=-O0
build_as g++-O2 -DCMAKE_CXX_COMPILER=g++ -DCMAKE_CXX_FLAGS="-O2 -g"
build_as g++-O3 -DCMAKE_CXX_COMPILER=g++ -DCMAKE_CXX_FLAGS=-O3
build_as g++-LTO -DCMAKE_CXX_COMPILER=g++ -DCMAKE_CXX_FLAGS=-O2 \
    -DCMAKE_INTERPROCEDURAL_OPTIMIZATION=ON
build_as clang++-O0 -DCMAKE_CXX_COMPILER=clang++ -DCMAKE_CXX_FLAGS=-O0
build_as clang++-O2 -DCMAKE_CXX_COMPILER=clang++ -DCMAKE_CXX_FLAGS=-O2

step "slots and sizes of the public classes"
checked layout.txt "$here/layout.sh" g++ "$source/tests/headers/use.cpp" "$here/layout.txt" "$work" \
    "$source"

step "types behind the names"
checked dmpclaim.abi types "$work/g++-O2/lib/libdmpclaim.so"
