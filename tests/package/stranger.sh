#!/usr/bin/env bash
# What a stranger does with the packages, on a machine that may be ruined: debian.sh makes one, with
# the packages and the tests in /stranger.
set -euo pipefail
# shellcheck source-path=SCRIPTDIR
source "$(dirname "$0")/steps.sh"

cd /stranger
export DEBIAN_FRONTEND=noninteractive
libraries=/usr/lib/$(gcc -print-multiarch)
examples=/usr/share/doc/libdmpclaim-dev/examples

# prints NAME PROGRAM...: the program prints what is expected of the example NAME.
prints() { diff "examples/$1.txt" <("${@:2}"); }

# What the packages depend on has to come with them.
step "a machine without ACE"
quietly apt-get -y purge libace-dev 'libace-[0-9]*'

step "a framework's own library is not replaced by a stand-in"
echo own >"$libraries/libzeutilST.so"
refused "$libraries/libzeutilST.so is a framework's own library" dpkg -i dmpclaim-framework_*.deb
[[ $(<"$libraries/libzeutilST.so") == own ]]
rm "$libraries/libzeutilST.so"

step "install"
quietly apt-get -y --no-install-recommends install ./*.deb

step "the command, its pages and its completion"
dmpclaim show /dev/sdc2
for page in dmpclaim.8 dmpclaim-doctor.8 libdmpclaim.3; do quietly man -w "$page"; done
completion/bash_test.sh /usr/bin/dmpclaim /usr/share/bash-completion/completions/dmpclaim

step "the examples, built with CMake"
cmake_hosts hosts "" "$(printf '%s;' "$examples"/*)"
for name in host nvme_host framework_host strings; do prints "$name" "hosts/$name"; done
prints active_host hosts/active_host 10 /dev/vda /dev/mapper/mpathb

step "a project in C alone"
cmake_hosts c_host "" "$examples/strings.c" -DLANGUAGES=C
prints strings c_host/strings

step "hosts, built with pkg-config alone"
read -ra flags < <(pkg-config --cflags --libs dmpclaim)
[[ $(pkg-config --variable=libdir dmpclaim) == "$libraries" ]]
g++ -std=c++17 "$examples/host.cpp" -o host "${flags[@]}"
gcc -std=c11 "$examples/strings.c" -o strings "${flags[@]}"
prints host ./host
prints strings ./strings

step "a framework of the host's own, beside the stand-ins"
make_framework own /opt/own/lib /usr/include/dmpclaim
cmake_hosts own_hosts "" "$examples/framework_host.cpp" -DDMPCLAIM_FRAMEWORK_DIR=/opt/own
pkg_config_hosts own_pc "$libraries" "$examples/framework_host.cpp" \
    --define-variable=frameworkdir=/opt/own/lib
for folder in own_hosts own_pc; do
    prints_and_traces "$folder/framework_host" "own 6 Entering Function removePartitionSuffix " \
        <examples/framework_host.txt
done
rm -r /opt/own

step "without the development files hosts still run"
quietly apt-get -y purge libdmpclaim-dev
prints host ./host

step "the timer, and the removal of everything"
if command -v systemctl >/dev/null; then quietly systemctl enable dmpclaim-metrics.timer; fi
quietly apt-get -y purge dmpclaim libdmpclaim1 dmpclaim-framework libace-dev 'libace-[0-9]*'
found=$(dpkg-query -W -f '${Package} ${db:Status-Status}\n' '*dmpclaim*' 2>/dev/null |
    grep -v ' not-installed$' || true)
[[ ! $found ]] || fail "dpkg still knows: $found"
