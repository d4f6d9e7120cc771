#!/usr/bin/env bash
# Prints the folder with the guest's kernel, its base archive and a busybox (vmlinuz, base.cpio,
# busybox): Debian's packages, unpacked and thinned out. Made once, and again when this recipe or a
# package changes.
set -euo pipefail

# What the guest runs, and the libraries of that.
packages=(busybox-static udev multipath-tools kpartx dmsetup sg3-utils sg3-utils-udev fdisk
    libacl1 libaio1 libblkid1 libbsd0 libc6 libcap2 libdevmapper1.02.1 libedit2 libfdisk1 libgcc-s1
    libgcrypt20 libgpg-error0 libjson-c5 libkmod2 liblz4-1 liblzma5 libmd0 libmount1 libncursesw6
    libpcre2-8-0 libreadline8 libselinux1 libsgutils2-1.46-2 libsmartcols1 libssl3 libsystemd0
    libtinfo6 libudev1 liburcu8 libuuid1 libzstd1)
modules=(dm-multipath dm-round-robin scsi_debug sd_mod sg)
# What no program of the guest reads.
ballast=(boot lib/udev/hwdb.d usr/include usr/lib/x86_64-linux-gnu/gconv usr/share)

recipe=$(readlink -f "$0")
cache=${XDG_CACHE_HOME:-$HOME/.cache}/dmpclaim-vm

say() { printf 'vm: %s\n' "$*" >&2; }

# The package behind the one that always names Debian's newest kernel for virtual machines.
kernel_package() {
    apt-cache show --no-all-versions linux-image-cloud-amd64 |
        sed -n 's/^Depends: \(linux-image-[^ ,]*\).*/\1/p'
}

# Downloads all packages to the current folder; with --print-uris it only prints where they come
# from, a line each, with version and checksum.
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

# What the package lists name may be gone, or there are none yet.
download_somehow() { download "$@" || { update_package_lists && download "$@"; }; }

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

# Makes the image in the current folder.
build() {
    local package version
    download_somehow
    for package in *.deb; do dpkg-deb -x "$package" tree; done
    mv tree/boot/vmlinuz-* vmlinuz
    cp tree/bin/busybox .
    (cd tree && rm -rf "${ballast[@]}")
    version=$(ls tree/lib/modules)
    tree/bin/busybox depmod -b tree "$version"
    thin_out_modules "tree/lib/modules/$version"
    tree/bin/busybox depmod -b tree "$version"
    link_applets
    (cd tree && find . | bin/busybox cpio -o -H newc -R 0:0) >base.cpio
    rm -rf tree ./*.deb
}

# Images that nobody used for a month.
remove_old_images() { find "$cache" -mindepth 1 -maxdepth 1 -type d -mtime +30 -exec rm -rf {} +; }

main() {
    local list image
    list=$(download_somehow --print-uris)
    image=$cache/$(cat "$recipe" - <<<"$list" | sha256sum | cut -c 1-16)
    mkdir -p "$cache"
    exec {lock}>"$cache/lock"
    flock "$lock"
    if [[ ! -d $image ]]; then
        say "building the guest's image in $image"
        rm -rf "$cache/new" && mkdir "$cache/new"
        (cd "$cache/new" && build)
        mv "$cache/new" "$image"
        remove_old_images
    fi
    touch "$image"
    printf '%s\n' "$image"
}

main
