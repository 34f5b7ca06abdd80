#!/usr/bin/env bash
# Builds the Debian package from the preset release and prints its path, build/release/sonavex_VERSION_ARCHITECTURE.deb.
set -euo pipefail
# shellcheck source=tools/build.sh
source "$(dirname "${BASH_SOURCE[0]}")/../tools/build.sh"
cd "$root"

tools/install-dependencies.sh
build_preset release sonavex sonavex-measure sonavex-plot sonavex-help sonavex-packaging
rm -f build/release/*.deb
if ! cpack --config build/release/CPackConfig.cmake -B build/release >build/package.log 2>&1; then
    cat build/package.log >&2
    exit 1
fi
ls build/release/*.deb
