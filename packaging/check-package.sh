#!/usr/bin/env bash
# Builds the Debian package, checks its contents, and tests it in a new Debian 12 system: installs it, measures on the
# simulated card, opens the window on a virtual screen, removes it. Then builds and tests the sources with ./run and
# ./test in another new system. Neither system runs systemd or a sound server.
#
#   packaging/check-package.sh [PACKAGE.deb]     checks an existing package instead of building one
#
# Needs root and the Debian archive that apt uses.
set -euo pipefail
# shellcheck source=tools/build.sh
source "$(dirname "${BASH_SOURCE[0]}")/../tools/build.sh"
cd "$root"

fail() {
    echo "check-package: $*" >&2
    exit 1
}

# The address from which apt gets the packages of this release.
archive() {
    # shellcheck disable=SC2016  # apt expands it
    apt-get indextargets --format '$(SITE)' 'Created-By: Packages' 'Codename: bookworm' | head -n 1
}

check_contents() {
    lintian --fail-on error "$1"
    local contents="$work/contents"
    dpkg-deb --extract "$1" "$contents"
    desktop-file-validate "$contents"/usr/share/applications/*.desktop
    appstreamcli validate --no-net "$contents"/usr/share/metainfo/*.metainfo.xml
    ! grep --recursive --text --fixed-strings --files-with-matches "$root" "$contents" ||
        fail "the files above contain the path of the build folder"
}

# copy_sources FOLDER: the files under version control, as they are in this tree.
copy_sources() {
    mkdir -p "$1"
    git ls-files -z | tar --create --null --files-from=- | tar --extract --directory="$1"
}

# try_in ROOT SCRIPT ARGUMENT...: runs a script of this folder in the new system, in a process namespace that ends with
# it. pivot_root, because programs below chroot cannot create user namespaces, which the tests of full disks need.
try_in() {
    cp "packaging/$2" "$1/tmp/"
    # shellcheck disable=SC2016  # for the inner shell
    unshare --mount --pid --fork --kill-child bash -c '
        mount --bind "$1" "$1"
        cd "$1"
        mount -t proc proc proc
        mount -t devpts -o newinstance,ptmxmode=666 devpts dev/pts
        mount -t tmpfs -o mode=1777 tmpfs dev/shm
        pivot_root . .
        umount -l .
        exec /usr/bin/env -i PATH=/usr/sbin:/usr/bin:/sbin:/bin HOME=/root LC_ALL=C.UTF-8 \
            DEBIAN_FRONTEND=noninteractive bash "/tmp/$2" "${@:3}"
    ' - "$@"
}

((EUID == 0)) || fail "must run as root"
tools/install-dependencies.sh tools/dependencies.txt tools/dependencies-package.txt
work="$(mktemp -d)"
trap 'rm -rf "$work"' EXIT

package="${1:-$(packaging/build-package.sh)}"
version="$(dpkg-deb --field "$package" Version)"
check_contents "$package"
debootstrap --variant=minbase bookworm "$work/fresh" "$(archive)" >"$work/log" 2>&1 ||
    { tail "$work/log" >&2; fail "the new system could not be created"; }
cp /etc/resolv.conf "$work/fresh/etc/resolv.conf"
cp -a "$work/fresh" "$work/sources"
cp "$package" "$work/fresh/tmp/sonavex.deb"
try_in "$work/fresh" try-package.sh /tmp/sonavex.deb "$version"
echo "$(basename "$package"): installs, measures and opens its window in a new Debian 12 system"
copy_sources "$work/sources/srv/sonavex"
try_in "$work/sources" try-source.sh /srv/sonavex
echo "The sources build, measure and pass their tests in a new Debian 12 system"
