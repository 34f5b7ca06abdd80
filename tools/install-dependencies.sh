#!/usr/bin/env bash
# Installs the missing Debian packages of the given lists (default: tools/dependencies.txt). When none is missing it
# prints nothing and needs no network and no privileges.
set -euo pipefail

here="$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)"
(($#)) || set -- "$here/dependencies.txt"

fail() {
    echo "install-dependencies: $*" >&2
    exit 1
}

if ! command -v dpkg-query >/dev/null || ! command -v apt-get >/dev/null; then
    fail "this is not a Debian system; install the packages named in $* by hand"
fi

wanted=()
for list in "$@"; do
    [[ -r $list ]] || fail "cannot read $list"
    while read -r package _; do
        [[ -z $package || $package == \#* ]] || wanted+=("$package")
    done <"$list"
done

installed="$(dpkg-query --show --showformat=':${db:Status-Status}:${Package}:\n')"
missing=()
for package in "${wanted[@]}"; do
    [[ $installed == *":installed:$package:"* ]] || missing+=("$package")
done
((${#missing[@]})) || exit 0

as_root=()
if ((EUID != 0)); then
    command -v sudo >/dev/null ||
        fail "these packages are missing and installing them needs root or sudo: ${missing[*]}"
    as_root=(sudo)
fi

log="$(mktemp)"
trap 'rm -f "$log"' EXIT

# Waits for another package manager, such as unattended upgrades, to finish.
apt() {
    "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive LC_ALL=C \
        apt-get --quiet --yes -o DPkg::Lock::Timeout=300 "$@" </dev/null >>"$log" 2>&1
}

echo "Installing: ${missing[*]}" >&2
# One unreachable repository makes the update fail, although the packages may still be available.
apt update || true
if ! apt install --no-install-recommends "${missing[@]}"; then
    cat "$log" >&2
    fail "apt-get failed; see above"
fi
