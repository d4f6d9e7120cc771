#!/usr/bin/env bash
# Installs the library for a host with a framework of its own, and uses it from there.
#
# usage: own_framework.sh BUILD WORK    BUILD is a built tree with the stand-ins, WORK a folder for
#                                       what is made here
set -euo pipefail
# shellcheck source-path=SCRIPTDIR
source "$(dirname "$0")/steps.sh"

build=$(realpath "$1")
rm -rf "$2"
mkdir -p "$2"
work=$(realpath "$2")
source=$(realpath "$checks/../..")
# The machine of the host: frameworks and installations, outside the folders of the build.
machine=$(mktemp -d)
trap 'rm -rf "$machine"' EXIT
hosts="$source/examples/framework_host.cpp;$checks/framework/calling_host.cpp"
libraries=(libzepdk_4_4ST.so libzecmn_4_4ST.so libzeutilST.so)

# install_library FRAMEWORK_DIR PREFIX [OPTION...]: always by way of one build folder.
install_library() {
    local framework=$1 prefix=$2
    shift 2
    quietly cmake -S "$source" -B "$work/library" -G Ninja -DCMAKE_BUILD_TYPE=Release \
        -DDMPCLAIM_WERROR=ON -DDMPCLAIM_FRAMEWORK_DIR="$framework" "$@" &&
        quietly cmake --build "$work/library" &&
        quietly cmake --install "$work/library" --prefix "$prefix"
}

library() { find "$1" -name 'libdmpclaim.so'; }
runpath() { readelf -dW "$(library "$1")" | sed -n 's/.*runpath: \[\(.*\)\]/\1/p'; }

# finds_framework PREFIX FOLDER: for the library alone the loader finds the framework in FOLDER,
# with ldd and in a program that loads the library.
finds_framework() {
    local prefix=$1 folder=$2 name found
    found=$(ldd -r "$(library "$prefix")" 2>&1)
    for name in "${libraries[@]}"; do
        [[ $found == *"$name => $folder/$name "* ]] || fail "not in $folder: $name, as in $found"
    done
    [[ $found != *undefined* ]] || fail "$found"
    "$work/load" "$(library "$prefix")"
}

# answer FOLDER NAME: the hosts in FOLDER use the framework NAME.
answer() {
    prints_and_traces "$1/framework_host" "$2 6 Entering Function removePartitionSuffix " \
        <<<"partition 2 of /dev/sdc"
    prints_and_traces "$1/calling_host" "$2 6 Entering Function getDeviceClaimStrings " \
        "$2 6 A runner of 1 runs /bin/echo one  two" \
        "$2 1 ExecuteCommand - exception thrown in command execution.$" \
        <"$checks/framework/calling_host.txt"
}

# uses_framework PREFIX FOLDER NAME: all that a host does with an installation.
uses_framework() {
    local prefix=$1 folder=$2 name=$3 found
    found=$(find "$prefix" -name 'libze*')
    [[ -z $found ]] || fail "stand-ins are installed: $found"
    diff -r "$source/pdk/include" "$prefix/include/dmpclaim/pdk/include"
    names_none_of "$prefix" "$source" "$build" "$work"
    finds_framework "$prefix" "$folder"

    cmake_hosts "$work/hosts_$name" "$prefix" "$hosts"
    answer "$work/hosts_$name" "$name"

    pkg_config_hosts "$work/pc_$name" "$prefix" "$hosts"
    answer "$work/pc_$name" "$name"
}

make_framework first "$machine/first" "$source"
make_framework second "$machine/second/lib" "$source"
g++ -std=c++17 -Wall -Wextra -Werror "$checks/framework/load.cpp" -o "$work/load"

step "a framework that does not exist"
refused "libzepdk_4_4ST.so is not in $machine/none/lib" \
    install_library "$machine/none" "$machine/prefix"

step "a framework in the folder that is named"
install_library "$machine/first" "$machine/first_prefix"
uses_framework "$machine/first_prefix" "$machine/first" first

step "another one, in the lib of the folder that is named, in the same build folder"
install_library "$machine/second" "$machine/second_prefix" -DCMAKE_INSTALL_RPATH=/opt/more
uses_framework "$machine/second_prefix" "$machine/second/lib" second
[[ $(runpath "$machine/second_prefix") == "/opt/more:$machine/second/lib" ]] ||
    fail "RUNPATH is $(runpath "$machine/second_prefix")"
names_none_of "$machine/second_prefix" "$machine/first"

# RUNPATH names the old folder, so the loader needs LD_LIBRARY_PATH, as here, or ldconfig.
step "a framework that has moved since"
mv "$machine/second" "$machine/moved"
refused "Set DMPCLAIM_FRAMEWORK_DIR to the folder of the framework that dmpclaim links to." \
    cmake_hosts "$work/hosts_moved" "$machine/second_prefix" "$hosts"
cmake_hosts "$work/hosts_moved" "$machine/second_prefix" "$hosts" \
    -DDMPCLAIM_FRAMEWORK_DIR="$machine/moved"
pkg_config_hosts "$work/pc_moved" "$machine/second_prefix" "$hosts" \
    --define-variable=frameworkdir="$machine/moved/lib"
LD_LIBRARY_PATH=$machine/moved/lib answer "$work/hosts_moved" second
LD_LIBRARY_PATH=$machine/moved/lib answer "$work/pc_moved" second

step "the stand-ins replace earlier ones, stripped or not"
quietly cmake --install "$build" --prefix "$machine/stand_ins" --strip
quietly cmake --install "$build" --prefix "$machine/stand_ins"
libdir=$(cd "$machine/stand_ins" && dirname "$(find . -name libdmpclaim.so -printf '%P\n')")

step "the stand-ins do not replace a framework, and not one file is installed"
make_framework taken "$machine/taken/$libdir" "$source"
cp -r "$machine/taken" "$work/taken"
refused "-DDMPCLAIM_FRAMEWORK_DIR=$machine/taken/$libdir" \
    cmake --install "$build" --prefix "$machine/taken"
diff -r "$work/taken" "$machine/taken"

step "nor do they below DESTDIR, where alone they look"
DESTDIR=$machine/image quietly cmake --install "$build" --prefix "$machine/taken"
diff -r "$work/taken" "$machine/taken"
make_framework taken "$machine/image/framework/$libdir" "$source"
DESTDIR=$machine/image refused "libzeutilST.so" cmake --install "$build" --prefix /framework

step "the library for a host's own framework does not mix with the stand-ins"
refused "Remove them, or choose another prefix: $machine/stand_ins/include/dmpclaim/pdk/include/" \
    install_library "$machine/first" "$machine/stand_ins"
find "$machine/stand_ins" \( -name 'libze*' -o -name 'czetracesink.h' \) -delete
install_library "$machine/first" "$machine/stand_ins"
