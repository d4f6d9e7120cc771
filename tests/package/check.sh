#!/usr/bin/env bash
# Configures the library as a packager of it alone does, installs it, and uses it as a host would.
#
# usage: check.sh WORK    WORK is a folder for what is made here
set -euo pipefail
# shellcheck source-path=SCRIPTDIR
source "$(dirname "$0")/steps.sh"

source=$(realpath "$checks/../..")
rm -rf "$1"
mkdir -p "$1"
work=$(realpath "$1")
build=$work/build
machine=$(mktemp -d) # of the host, outside the folders of the build
trap 'rm -rf "$machine"' EXIT
prefix=$machine/prefix
sample=$source/examples/host.cpp

configure() { cmake -S "$source" -B "$build" -G Ninja "$@"; }
build_type() { sed -n 's/^CMAKE_BUILD_TYPE:[A-Z]*=//p' "$build/CMakeCache.txt"; }
# installed FOLDER: the files in it.
installed() { find "$1" ! -type d -printf '%P\n' | sort; }

step "what cannot be built is refused when it is configured"
refused "dmpclaim is a shared library only" configure -DBUILD_SHARED_LIBS=OFF
if [[ $(uname -m) == x86_64 ]]; then
    refused "dmpclaim is for 64-bit Linux only" configure --fresh -DCMAKE_C_FLAGS=-m32 \
        -DCMAKE_CXX_FLAGS=-m32 -DCMAKE_TRY_COMPILE_TARGET_TYPE=STATIC_LIBRARY
fi
refused "names 'runtimes', which is no component" configure --fresh -DDMPCLAIM_COMPONENTS=runtimes
refused "ACE is missing, its library or its header ace/SString.h. Install Debian's libace-dev" \
    configure --fresh -DCMAKE_IGNORE_PATH=/usr/include

step "flags of a distribution stay alone; without any, the build optimises and says so"
library_alone=(-DDMPCLAIM_WERROR=ON "-DDMPCLAIM_COMPONENTS=runtime;development;framework"
    -DCMAKE_DISABLE_FIND_PACKAGE_CLI11=ON -DCMAKE_DISABLE_FIND_PACKAGE_GTest=ON
    -DCMAKE_DISABLE_FIND_PACKAGE_PkgConfig=ON)
CXXFLAGS=-O1 quietly configure --fresh "${library_alone[@]}"
[[ $(build_type) == "" ]] || fail "the kind of build is $(build_type)"
said=$(env -u CXXFLAGS cmake -S "$source" -B "$build" -G Ninja --fresh "${library_alone[@]}" 2>&1)
[[ $said == *"building as Release, which optimises"* ]] || fail "not told of Release: $said"
[[ $(build_type) == Release ]] || fail "the kind of build is $(build_type)"

step "the library alone is built without CLI11 and GoogleTest, and hardened"
quietly cmake --build "$build"
"$checks/hardening.sh" "$build"/lib/*.so

step "each component is installed by itself, and all together are everything"
quietly cmake --install "$build" --prefix "$prefix"
for component in runtime development framework; do
    quietly cmake --install "$build" --prefix "$work/$component" --component "$component"
done
diff <(installed "$work/runtime") - <<'LIST'
lib/libdmpclaim.so.1
lib/libdmpclaim.so.1.0.0
LIST
diff <(installed "$work/framework") - <<'LIST'
include/dmpclaim/pdk/include/czeprintable.h
include/dmpclaim/pdk/include/czetracesink.h
lib/cmake/dmpclaim/dmpclaimStandIns-release.cmake
lib/cmake/dmpclaim/dmpclaimStandIns.cmake
lib/libzecmn_4_4ST.so
lib/libzepdk_4_4ST.so
lib/libzeutilST.so
LIST
diff <(for component in runtime development framework; do installed "$work/$component"; done |
    sort) <(installed "$prefix")
grep -aq 'dmpclaim: a stand-in for the framework, version ' "$prefix/lib/libzeutilST.so"

step "no copy or lock of an editor is installed"
strays=("$source"/pdk/include/{czeexport.h~,.#czeexport.h,.czeexport.h.swp})
trap 'rm -rf "$machine" "${strays[@]}"' EXIT
touch "${strays[@]}"
(cd "$work" && quietly cmake --install "$build" --prefix beside_strays)
rm "${strays[@]}"
diff <(installed "$prefix") <(installed "$work/beside_strays")

step "a prefix that was given from the current folder is known by its whole path"
grep -qx "prefix=$work/beside_strays" "$work/beside_strays/lib/pkgconfig/dmpclaim.pc"

step "no installed file names a folder of the build machine"
names_none_of "$prefix" "$source" "$build"

step "no library has the loader search the current folder"
for file in "$build"/lib/lib*.so "$prefix"/lib/lib*.so; do
    path=$(readelf -dW "$file" | sed -n 's/.*runpath: \[\(.*\)\]/\1/p')
    [[ $path == "\$ORIGIN" ]] || fail "RUNPATH of $file: $path"
done

step "the example host, built with CMake"
cmake_hosts "$work/host" "$prefix" "$sample"
"$work/host/host"

step "a host without ACE is told so"
refused "Install Debian's libace-dev, or set ACE_LIBRARY and ACE_INCLUDE_DIR" \
    cmake_hosts "$work/host_without_ace" "$prefix" "$sample" -DCMAKE_IGNORE_PATH=/usr/include

step "the example host, built with pkg-config, runs without the development files"
pkg_config_hosts "$work/host_pc" "$prefix" "$sample"
[[ $(pkg-config --variable=libdir dmpclaim) == "$prefix/lib" ]] || fail "libdir is not $prefix/lib"
mkdir "$work/removed"
mv "$prefix"/{include,lib/pkgconfig,lib/cmake,lib/libdmpclaim.so} "$work/removed"
diff <("$work/host/host") <("$work/host_pc/host")
quietly cmake --install "$build" --prefix "$prefix"

step "libraries in a folder of their own, outside the prefix"
quietly configure -DCMAKE_INSTALL_LIBDIR="$work/elsewhere/lib" \
    -DCMAKE_INSTALL_PREFIX="$work/elsewhere/prefix"
quietly cmake --install "$build"
cmake_hosts "$work/host_elsewhere" "$work/elsewhere" "$sample"
pkg_config_hosts "$work/host_elsewhere_pc" "$work/elsewhere" "$sample"
diff <("$work/host/host") <("$work/host_elsewhere/host")
diff <("$work/host/host") <("$work/host_elsewhere_pc/host")

step "what is left out is not installed"
quietly configure -DCMAKE_INSTALL_LIBDIR=lib -DDMPCLAIM_COMPONENTS="runtime;development"
quietly cmake --install "$build" --prefix "$work/without"
diff <(installed "$work/without") \
    <(for component in runtime development; do installed "$work/$component"; done | sort)
refused "Set DMPCLAIM_FRAMEWORK_DIR to the folder of the framework" \
    cmake_hosts "$work/host_without" "$work/without" "$sample"
quietly configure -DDMPCLAIM_COMPONENTS="runtime;development;framework"

step "the command, built from its own folder against the installed library"
quietly cmake -S "$source/command" -B "$work/command" -G Ninja -DCMAKE_PREFIX_PATH="$prefix"
quietly cmake --build "$work/command"
"$work/command/bin/dmpclaim" show /dev/sdc2

"$checks/own_framework.sh" "$build" "$work/own_framework"
