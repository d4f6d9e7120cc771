#!/usr/bin/env bash
# Installs a build into an empty folder and uses it from there, as a host would.
#
# usage: check.sh BUILD WORK    BUILD is a built tree, WORK a folder for everything made here
set -euo pipefail

build=$(realpath "$1")
rm -rf "$2"
mkdir -p "$2"
work=$(realpath "$2")
source=$(realpath "$(dirname "$0")/../..")
prefix=$work/prefix
sample=$source/examples/host.cpp

step() { printf '== %s\n' "$*"; }
quietly() { "$@" >"$work/log" 2>&1 || { cat "$work/log"; return 1; }; }

step "install"
quietly cmake --install "$build" --prefix "$prefix"
pc=$(find "$prefix" -name dmpclaim.pc)
libdir=$(dirname "$(dirname "$pc")")

step "no installed file names a folder of the build machine"
if grep -rlF -e "$source" "$prefix"; then
    exit 1
fi

step "the example host, built with CMake"
quietly cmake -S "$source/tests/package" -B "$work/host" -G Ninja \
    -DCMAKE_PREFIX_PATH="$prefix" -DHOST_SOURCE="$sample"
quietly cmake --build "$work/host"
"$work/host/host"

step "the example host, built with pkg-config"
read -ra flags < <(PKG_CONFIG_PATH=$(dirname "$pc") pkg-config --cflags --libs dmpclaim)
g++ -std=c++17 -Wall -Wextra -Werror "$sample" -o "$work/host_pc" "${flags[@]}" \
    -Wl,-rpath,"$libdir"
diff <("$work/host/host") <("$work/host_pc")

step "the command, built from its own folder against the installed library"
quietly cmake -S "$source/command" -B "$work/command" -G Ninja -DCMAKE_PREFIX_PATH="$prefix"
quietly cmake --build "$work/command"
"$(find "$work/command" -name dmpclaim -type f -perm -u+x)" show /dev/sdc2

step "the library, built against a host's own framework"
quietly cmake -S "$source" -B "$work/own_framework" -G Ninja \
    -DDMPCLAIM_FRAMEWORK_DIR="$libdir" -DDMPCLAIM_WERROR=ON
quietly cmake --build "$work/own_framework"
quietly cmake --install "$work/own_framework" --prefix "$work/own_prefix"
if find "$work/own_framework" "$work/own_prefix" -name 'libze*' | grep .; then
    echo "a stand-in was built although the host has its own framework"
    exit 1
fi
