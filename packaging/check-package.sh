#!/usr/bin/env bash
# Builds the Debian package, checks its contents, and tests it in a new Debian 12 system: installs it, measures on the
# simulated card, opens the window on a virtual screen, removes it.
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

# Runs the test in the new system, in a process namespace that ends with it.
try_in() {
    local fresh="$1"
    cp "$2" "$fresh/tmp/sonavex.deb"
    cp packaging/try-package.sh "$fresh/tmp/try-package.sh"
    # shellcheck disable=SC2016  # for the inner shell
    unshare --mount --pid --fork --kill-child bash -c '
        mount -t proc proc "$1/proc"
        exec chroot "$1" /usr/bin/env -i PATH=/usr/sbin:/usr/bin:/sbin:/bin HOME=/root LC_ALL=C.UTF-8 \
            DEBIAN_FRONTEND=noninteractive bash /tmp/try-package.sh /tmp/sonavex.deb "$2"
    ' - "$fresh" "$3"
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
try_in "$work/fresh" "$package" "$version"
echo "$(basename "$package"): installs, measures and opens its window in a new Debian 12 system"
