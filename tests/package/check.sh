#!/usr/bin/env bash
# Installs a build into an empty folder and uses it from there, as a host would.
#
# usage: check.sh BUILD WORK    BUILD is a built tree, WORK a folder for everything made here
set -euo pipefail
# shellcheck source-path=SCRIPTDIR
source "$(dirname "$0")/steps.sh"

build=$(realpath "$1")
rm -rf "$2"
mkdir -p "$2"
work=$(realpath "$2")
source=$(realpath "$checks/../..")
prefix=$work/prefix
sample=$source/examples/host.cpp

step "install"
quietly cmake --install "$build" --prefix "$prefix"

step "no installed file names a folder of the build machine"
names_none_of "$prefix" "$source" "$build"

step "no program or library has the loader search the current folder"
for file in "$build"/bin/dmpclaim "$build"/lib/lib*.so "$prefix"/bin/dmpclaim "$prefix"/lib/lib*.so
do
    path=$(readelf -dW "$file" | sed -n 's/.*runpath: \[\(.*\)\]/\1/p')
    [[ $path == \$ORIGIN* && :$path: != *::* ]] || fail "RUNPATH of $file: $path"
done

step "the example host, built with CMake"
cmake_hosts "$work/host" "$prefix" "$sample"
"$work/host/host"

step "the example host, built with pkg-config"
pkg_config_hosts "$work/host_pc" "$prefix" "$sample"
diff <("$work/host/host") <("$work/host_pc/host")

step "the command, built from its own folder against the installed library"
quietly cmake -S "$source/command" -B "$work/command" -G Ninja -DCMAKE_PREFIX_PATH="$prefix"
quietly cmake --build "$work/command"
"$(find "$work/command" -name dmpclaim -type f -perm -u+x)" show /dev/sdc2

"$checks/own_framework.sh" "$build" "$work/own_framework"
