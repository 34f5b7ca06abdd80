#!/usr/bin/env bash
# Builds the Debian package and prints its path, build/package/sonavex_VERSION_ARCHITECTURE.deb.
set -euo pipefail
# shellcheck source=tools/build.sh
source "$(dirname "${BASH_SOURCE[0]}")/../tools/build.sh"
cd "$root"

"$root/tools/install-dependencies.sh"
mkdir -p build
cmake --preset release -B build/package -DSONAVEX_BUILD_TESTS=OFF -DSONAVEX_BUILD_BENCH=OFF >build/package.log
rm -f build/package/*.deb
build_preset package package
ls build/package/*.deb
