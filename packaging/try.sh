#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# try.sh PACKAGES TREE: installs the packages of that folder into a bare Debian 12 tree and runs their tests there, first
# with what a small program's maker takes, then with all packages. TREE stays, to be looked at; TREE-bare is kept for the
# next time. As root, with debootstrap.
set -euo pipefail
[ "$(id -u)" = 0 ] || { echo "a bare Debian tree is made with debootstrap and chroot: as root only"; exit 1; }
command -v debootstrap >/dev/null || { echo "debootstrap is missing"; exit 1; }
# What is mounted in the tree is seen by this script alone, and gone after it.
[ -n "${KX_MOUNTS_ARE_OWN:-}" ] || KX_MOUNTS_ARE_OWN=1 exec unshare --mount "$0" "$@"

packages=$(realpath "$1") tree=$(realpath -m "$2")
tests=$(realpath "$(dirname "$0")/debian/tests")

# The mirrors from which this machine has Debian 12, as lines of sources.list.
mirrors() {
    apt-get indextargets --format 'deb $(REPO_URI) $(RELEASE) $(COMPONENT)' 'Created-By: Packages' 'Origin: Debian' |
        grep ' bookworm' || { echo "no mirror of Debian 12 in this machine's package sources" >&2; return 1; }
}

bare_tree() {
    if [ ! -d "$tree-bare" ]; then
        rm -rf "$tree-bare.new"
        local mirror
        mirror=$(mirrors | awk '$3 == "bookworm" && !first { first = $2 } END { print first }')
        debootstrap --variant=minbase bookworm "$tree-bare.new" "$mirror"
        mv "$tree-bare.new" "$tree-bare"
    fi
    rm -rf "$tree"
    cp -a --reflink=auto "$tree-bare" "$tree"
    mount -t proc proc "$tree/proc"
}

# Debian's packages come the way that this machine takes, ours from a folder in the tree.
with_our_packages() {
    mkdir "$tree/packages"
    cp "$packages"/*.deb "$tree/packages"
    (cd "$tree/packages" && dpkg-scanpackages . >Packages)
    { mirrors; echo "deb [trusted=yes] file:/packages ./"; } >"$tree/etc/apt/sources.list"
    apt-config dump Acquire::http Acquire::https Acquire::Check-Valid-Until Acquire::Check-Date \
        >"$tree/etc/apt/apt.conf.d/90host"
    cp /etc/resolv.conf "$tree/etc/resolv.conf"
    cp -r "$tests" "$tree/tests"
    inside apt-get update
}

inside() {
    chroot "$tree" env -i PATH=/usr/sbin:/usr/bin:/sbin:/bin HOME=/root LANG=C.UTF-8 DEBIAN_FRONTEND=noninteractive "$@"
}

ours() { sed -n 's/^Package: //p' "$tree/packages/Packages"; }

# A program without windows brings along, recommended packages included, neither those for windows nor those for videos.
daemon_stays_light() {
    ! inside apt-get install -s "$(ours | grep -E '^libkxfoundation[0-9.]+$')" | grep -E '^Inst lib(av|cairo|pango|sdl)'
}

step() { echo "=== $*"; "$@"; }

step bare_tree
step with_our_packages
step daemon_stays_light
step inside apt-get install -y --no-install-recommends libkxfoundation-dev kxfoundation-tools cmake g++ make pkg-config
step inside /tests/quickstart
# shellcheck disable=SC2046
step inside apt-get install -y --no-install-recommends $(ours) xauth xvfb
step inside /tests/modules
