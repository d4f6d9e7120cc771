#!/usr/bin/env bash
# Builds what is packaged again, in another folder. Each library, the command and each manual page
# has to be the same, byte by byte.
#
# usage: same_bytes.sh BUILD WORK    BUILD is the tree that was built for packages, WORK a folder for
#                                    the other build
set -euo pipefail
# shellcheck source-path=SCRIPTDIR
source "$(dirname "$0")/steps.sh"

first=$(realpath "$1")
rm -rf "$2"
mkdir -p "$2"
work=$(realpath "$2")
source=$(realpath "$checks/../..")

cached() { sed -n "s/^$1:[A-Z]*=//p" "$first/CMakeCache.txt"; }

step "what is packaged, built again, is the same"
compiler_flags=$(cached CMAKE_CXX_FLAGS)
compiler_flags=${compiler_flags//"$(cached CMAKE_HOME_DIRECTORY)"/$source}
quietly cmake -S "$source" -B "$work" -G Ninja -DCMAKE_BUILD_TYPE=None -DBUILD_TESTING=OFF \
    -DCMAKE_SKIP_RPATH=ON -DCMAKE_CXX_FLAGS="$compiler_flags" \
    -DCMAKE_SHARED_LINKER_FLAGS="$(cached CMAKE_SHARED_LINKER_FLAGS)" \
    -DCMAKE_EXE_LINKER_FLAGS="$(cached CMAKE_EXE_LINKER_FLAGS)"
LD_LIBRARY_PATH=$work/lib quietly cmake --build "$work"
cd "$first"
for file in lib/lib*.so bin/dmpclaim man/*.[0-9]; do
    cmp "$file" "$work/$file" || fail "built again, $file is another file"
done
