#!/usr/bin/env bash
# Checks Debian packages: their binaries, and, in a copy of this machine's root folder, what a
# stranger does with them, from the installation to the removal.
#
# usage: debian.sh FOLDER    FOLDER holds the packages, and in source the tree that they came from
set -euo pipefail
# shellcheck source-path=SCRIPTDIR
source "$(dirname "$0")/steps.sh"

folder=$(realpath "$1")
unpacked=$folder/unpacked

# left_behind UPPER: what the stranger's machine has and this one has not, but for the records of
# dpkg and apt, caches, logs, and what the check put there.
left_behind() {
    local path
    find "$1" -mindepth 1 ! -type c -printf '/%P\n' |
        grep -vE '^/(var/(lib/(dpkg|apt)|cache|log)|etc/ld\.so\.cache|stranger|tmp|root)(/|$)' |
        while IFS= read -r path; do
            [[ -e $path || -L $path ]] || printf '%s\n' "$path"
        done
}

# Runs the stranger's steps in a root folder whose changes are thrown away.
stranger() {
    local root=$1 left
    mount -t tmpfs tmpfs "$root"
    mkdir "$root"/{upper,work,machine}
    mount -t overlay overlay -o "lowerdir=/,upperdir=$root/upper,workdir=$root/work" "$root/machine"
    for name in dev proc sys; do mount --rbind "/$name" "$root/machine/$name"; done
    mkdir -p "$root/machine/stranger"
    cp -L /etc/resolv.conf /etc/hosts "$root/machine/etc"
    cp -r "$folder"/*.deb "$checks" "$checks/../examples" "$checks/../completion" \
        "$root/machine/stranger"
    chroot "$root/machine" /stranger/package/stranger.sh
    left=$(left_behind "$root/upper")
    [[ ! $left ]] || fail "the packages left behind: $left"
}

if [[ ${2-} == --in-namespace ]]; then
    stranger "$3"
    exit
fi

rm -rf "$unpacked"
for package in "$folder"/*.deb; do dpkg-deb --extract "$package" "$unpacked"; done

step "what is shipped is hardened, has no RUNPATH, and names no folder of the build machine"
mapfile -t binaries < <(find "$unpacked" -type f \( -path '*/bin/*' -o -name '*.so*' \))
((${#binaries[@]} == 5)) || fail "not 5 binaries: ${binaries[*]}"
"$checks/hardening.sh" "${binaries[@]}"
for file in "${binaries[@]}"; do
    readelf -dW "$file" | grep -E 'R(UN)?PATH' && fail "$file has a RUNPATH"
done
names_none_of "$unpacked" "$folder"

"$checks/same_bytes.sh" "$folder/source/build/debian" "$folder/again"

if ! unshare --mount true 2>/dev/null; then
    [[ ! ${CI-} ]] || fail "installing the packages takes root and mount namespaces"
    echo "Skipped: installing the packages takes root and mount namespaces."
    exit 0
fi
root=$(mktemp -d)
trap 'rmdir "$root"' EXIT
unshare --mount "$0" "$folder" --in-namespace "$root"
