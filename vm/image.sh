#!/usr/bin/env bash
# image.sh FOLDER: makes the guest's kernel, its base archive and a busybox in FOLDER (vmlinuz,
# base.cpio, busybox) out of Debian's packages, unpacked and thinned out.
#
# The packages are kept in the user's cache. Their programs run on this machine too, so they are
# compared with the checksums in apt's signed package lists each time.
set -euo pipefail
unset CDPATH

# What the guest runs, and the libraries of that.
packages=(busybox-static udev multipath-tools kpartx dmsetup sg3-utils sg3-utils-udev fdisk
    prometheus-node-exporter
    libacl1 libaio1 libblkid1 libbsd0 libc6 libcap2 libdevmapper1.02.1 libedit2 libfdisk1 libgcc-s1
    libgcrypt20 libgpg-error0 libjson-c5 libkmod2 liblz4-1 liblzma5 libmd0 libmount1 libncursesw6
    libpcre2-8-0 libreadline8 libselinux1 libsgutils2-1.46-2 libsmartcols1 libssl3 libsystemd0
    libtinfo6 libudev1 liburcu8 libuuid1 libzstd1)
modules=(dm-multipath dm-round-robin scsi_debug sd_mod sg)
# Files that no program of the guest reads.
ballast=(boot lib/udev/hwdb.d usr/include usr/lib/x86_64-linux-gnu/gconv usr/share)

cache=$(realpath -ms "${XDG_CACHE_HOME:-$HOME/.cache}")/dmpclaim-vm

say() { printf 'vm: %s\n' "$*" >&2; }

# Debian's newest kernel for virtual machines: linux-image-cloud-amd64 only depends on it.
kernel_package() {
    apt-cache show --no-all-versions linux-image-cloud-amd64 |
        sed -n 's/^Depends: \(linux-image-[^ ,]*\).*/\1/p'
}

# Downloads all packages to the current folder, except those whose files are there with the right
# size. With --print-uris only prints a line each: where it comes from, name, size and checksum.
download() {
    local kernel
    kernel=$(kernel_package) && [[ $kernel ]] &&
        apt-get -qq -o APT::Sandbox::User=root download "$@" "$kernel" "${packages[@]}"
}

update_package_lists() {
    local as_root=()
    ((EUID == 0)) || as_root=(sudo)
    say 'updating the package lists with apt-get'
    "${as_root[@]}" apt-get -qq update >&2
}

# Prints CHECKSUM  FILE for each package that is not in the current folder. A line without a
# SHA-256 checksum stays as apt-get prints it, and sha256sum refuses it.
checksums() {
    local list
    list=$(download --print-uris) &&
        sed -E "s/^'[^']*' ([^ /]+) [0-9]+ SHA256:([0-9a-f]{64})$/\2  \1/" <<<"$list"
}

# are_right CHECKSUMS: whether the cache has all packages, as the lists have them.
are_right() { (cd "$cache" && sha256sum --quiet --strict --check <<<"$1"); }

# Has the packages in the cache, and prints their checksums.
fetch() {
    local sums
    sums=$(checksums) || return
    if ! are_right "$sums" >/dev/null 2>&1; then
        say "downloading the guest's packages to $cache"
        rm -f "$cache"/*.deb
        (cd "$cache" && download) && are_right "$sums" >&2 || return
    fi
    printf '%s\n' "$sums"
}

# The programs in the cache are run, so only the user may write to it.
make_cache() {
    (umask 077 && mkdir -p "$cache")
    [[ ! -L $cache && -O $cache ]] && ((!(8#$(stat -Lc %a "$cache") & 8#022))) && return
    say "$cache is a symbolic link, or others own it or may write to it: remove it"
    return 1
}

# Removes all modules but the wanted ones and those that they depend on.
thin_out_modules() {
    local folder=$1 names wanted
    names=$(IFS='|' && printf '/(%s).ko:' "${modules[*]}")
    wanted=$(grep -E "$names" "$folder/modules.dep" | tr -s ': ' '\n')
    (cd "$folder" && find kernel -name '*.ko' | grep -vxF "$wanted" | xargs rm)
}

# Gives every busybox applet its name, unless a package brought the real program.
link_applets() {
    local applet folder
    for applet in $(tree/bin/busybox --list); do
        for folder in bin sbin usr/bin usr/sbin; do
            [[ ! -e tree/$folder/$applet ]] || continue 2
        done
        ln -s busybox "tree/bin/$applet"
    done
}

# build CHECKSUMS: makes the image in the current folder.
build() {
    local package version
    while read -r _ package; do dpkg-deb -x "$cache/$package" tree; done <<<"$1"
    mv tree/boot/vmlinuz-* vmlinuz
    cp tree/bin/busybox .
    (cd tree && rm -rf "${ballast[@]}")
    version=$(ls tree/lib/modules)
    tree/bin/busybox depmod -b tree "$version"
    thin_out_modules "tree/lib/modules/$version"
    tree/bin/busybox depmod -b tree "$version"
    link_applets
    (cd tree && find . | bin/busybox cpio -o -H newc -R 0:0) >base.cpio
    rm -rf tree
}

main() {
    local sums
    mkdir "$1"
    cd "$1"
    make_cache
    # The folder itself is locked: a lock file could be a link that another account made.
    exec {lock}<"$cache"
    flock "$lock"
    # The packages in the lists may have been replaced, or there are no lists yet.
    sums=$(fetch || { update_package_lists && fetch; })
    build "$sums"
}

main "$@"
